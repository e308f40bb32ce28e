#ifndef NYXCONFIG_TERMINAL_H
#define NYXCONFIG_TERMINAL_H

#include <cstddef>
#include <string>

namespace footprint
{

/// Text of a device made harmless for a terminal: control characters and what is no UTF-8 become visible escapes such
/// as "\x1b", so do the characters that change the direction of writing, break lines or are not to be seen ("\u202e").
std::string Harmless(const std::string& text);

/// How many columns of a terminal a text takes that Harmless() has made: 2 for wide characters, 0 for combining ones.
std::size_t DisplayWidth(const std::string& text);

/// Whether what goes to this file descriptor may be coloured: it is a terminal that knows colours, and there is no
/// NO_COLOR in the environment.
bool ColourWanted(int descriptor);

/// What the colours are for.
enum class EStyle
{
    ePlain,
    eHeading,
    eGood,
    eBad,
    eFaint
};

/// The text in a style, or as it is.
std::string Styled(const std::string& text, EStyle style, bool colour);

} // namespace footprint

#endif
