#ifndef NYXCONFIG_FILES_H
#define NYXCONFIG_FILES_H

#include <cstdio>
#include <memory>
#include <string>

namespace bench
{

/// @throw std::runtime_error with the words, as every fault of a benchmark.
[[noreturn]] void Fail(const std::string& words);

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// @param mode as for std::fopen().
File OpenFile(const std::string& file, const char* mode);

/// A file's whole content.
std::string ReadFile(const std::string& file);

} // namespace bench

#endif
