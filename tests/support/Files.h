#ifndef NYXCONFIG_FILES_H
#define NYXCONFIG_FILES_H

#include <cstddef>
#include <string>
#include <vector>

namespace NyxTest
{

/// The bytes of a file. A file that can not be read fails the test and gives an empty text.
std::string ReadFile(const std::string& path);

/// Replaces the content of a file. A failure fails the test.
void WriteFile(const std::string& path, const std::string& content);

bool FileExists(const std::string& path);

/// Names of the entries of a folder, sorted, without "." and "..". Empty if there is no such folder.
std::vector<std::string> FolderEntries(const std::string& path);

/// Path of a file in tests/data.
std::string DataFile(const std::string& name);

/// Full paths of the footprint documents in tests/data/golden, sorted: those that are input, and with @p resaved also
/// those that were written by a save.
std::vector<std::string> GoldenDocuments(bool resaved = false);

/// How many file descriptors the process has open.
std::size_t CountOpenFiles();

} // namespace NyxTest

#endif
