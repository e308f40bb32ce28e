#include "StandardOutput.h"

#include <cerrno>
#include <cstddef>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace footprint
{

CStandardOutput::CStandardOutput()
{
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
}

CStandardOutput::~CStandardOutput()
{
    CStandardOutput::sync();
}

CStandardOutput::int_type CStandardOutput::overflow(int_type character)
{
    if (CStandardOutput::sync() != 0) {
        return traits_type::eof();
    }
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(character);
        pbump(1);
    }
    return traits_type::not_eof(character);
}

int CStandardOutput::sync()
{
    for (const char* begin = pbase(); begin != pptr() && m_error.empty();) {
        const ssize_t written = write(STDOUT_FILENO, begin, static_cast<std::size_t>(pptr() - begin));
        if (written >= 0) {
            begin += written;
        } else if (errno != EINTR) {
            m_error = std::error_code(errno, std::generic_category()).message();
        }
    }
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
    return m_error.empty() ? 0 : -1;
}

void OpenMissingStandardFiles()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // The lowest free number is taken: this one. Only reading works on a standard output that was not there.
            open("/dev/null", descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace footprint
