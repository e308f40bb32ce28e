#ifndef NYXCONFIG_REPORTFILE_H
#define NYXCONFIG_REPORTFILE_H

#include <functional>
#include <iosfwd>
#include <string>

namespace footprint
{

/**
 * Writes a file as a whole: what is there before stays until all of the new content is on the disk, and stays for good
 * if anything fails. What is no regular file, such as /dev/null, is written to as it is.
 *
 * @param write fills the temporary file with this name, in the same folder.
 * @throw std::runtime_error in words, or what @p write throws.
 */
void ReplaceFile(const std::string& file, const std::function<void(const std::string& temporary)>& write);

/// Writes to a file with ReplaceFile(), or to @p data if it is called "-".
void WriteOutput(const std::string& file, std::ostream& data, const std::function<void(std::ostream& output)>& write);

/// Runs the program "dot" of Graphviz with a graph as its input. No shell has a part in it.
/// @param format such as "svg". @param output receives the picture.
/// @throw std::runtime_error in words.
void RunDot(const std::string& graph, const std::string& format, const std::string& output);

} // namespace footprint

#endif
