#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <streambuf>

#include <sys/mman.h>
#include <unistd.h>

namespace NyxFuzz
{

namespace
{

template<class Char>
class NullBuffer : public std::basic_streambuf<Char>
{
protected:
    using Traits = std::char_traits<Char>;

    typename Traits::int_type overflow(typename Traits::int_type unit) override { return Traits::not_eof(unit); }
    std::streamsize xsputn(const Char* /*text*/, std::streamsize count) override { return count; }
};

template<class Char>
void Drop(std::basic_ostream<Char>& stream)
{
    // The streams are flushed when the process ends, so the buffer outlives everything.
    static auto* const buffer = new NullBuffer<Char>;
    stream.rdbuf(buffer);
}

} // namespace

void Silence()
{
    static const bool silenced = [] {
        Drop(std::cout);
        Drop(std::cerr);
        Drop(std::wcerr);
        return true;
    }();
    static_cast<void>(silenced);
}

void Require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "not so: %s\n", what);
        std::abort();
    }
}

MemoryFile::MemoryFile(const std::string& content)
    : m_descriptor(memfd_create("fuzz", MFD_CLOEXEC)), m_path("/proc/self/fd/" + std::to_string(m_descriptor))
{
    Require(m_descriptor >= 0, "there is a file in memory");
    const auto written = write(m_descriptor, content.data(), content.size());
    Require(written == static_cast<ssize_t>(content.size()), "the file in memory is written");
}

MemoryFile::~MemoryFile()
{
    close(m_descriptor);
}

} // namespace NyxFuzz
