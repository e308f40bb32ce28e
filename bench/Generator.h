#ifndef NYXCONFIG_GENERATOR_H
#define NYXCONFIG_GENERATOR_H

#include <string>
#include <vector>

namespace bench
{

/// A footprint to measure with.
struct Document
{
    const char* name;
    unsigned boards;
    unsigned software; ///< entries on the upper level; each has one below, and that one has one
    unsigned products;
    unsigned devices; ///< connected devices
    bool isWide;      ///< with many characters that a file carries as references
    bool isDeep;      ///< software nested as far as it goes
};

/// typical, wide-text, large, huge and deep.
const std::vector<Document>& Documents();
/// @throw std::runtime_error for an unknown name.
const Document& DocumentByName(const std::string& name);

/// The document as the library writes it. The same text in every run, on every machine.
/// @param isShuffled with the boards in another order.
std::string MakeText(const Document& document, bool isShuffled = false);

/// The document in a file, with its checksum.
void MakeFile(const Document& document, const std::string& file, bool isShuffled = false);

} // namespace bench

#endif
