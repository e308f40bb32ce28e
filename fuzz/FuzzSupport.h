#ifndef NYXCONFIG_FUZZSUPPORT_H
#define NYXCONFIG_FUZZSUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>

/// What libFuzzer calls with each input; every fuzz target defines it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace NyxFuzz
{

/// From the first call on, standard output and error streams format what they get and drop it.
void Silence();

inline std::string TextOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process, which is a finding, unless @p holds.
void Require(bool holds, const char* what);

/// A file that lives in memory, for operations that take a path.
class MemoryFile
{
public:
    explicit MemoryFile(const std::string& content = {});
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    const std::string& Path() const { return m_path; }

private:
    int m_descriptor;
    std::string m_path;
};

} // namespace NyxFuzz

#endif
