#ifndef NYXCONFIG_STANDARDOUTPUT_H
#define NYXCONFIG_STANDARDOUTPUT_H

#include <array>
#include <streambuf>
#include <string>

namespace footprint
{

/// The program's data on its way to standard output. It keeps the reason of the first failure; what comes after that is
/// refused, so that a stream on it turns bad.
class CStandardOutput : public std::streambuf
{
public:
    CStandardOutput();
    CStandardOutput(const CStandardOutput&) = delete;
    CStandardOutput& operator=(const CStandardOutput&) = delete;
    /// Writes what is left.
    ~CStandardOutput() override;

    /// Words for the failure; empty if there was none.
    const std::string& Error() const { return m_error; }

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    std::array<char, 65536> m_buffer{};
    std::string m_error;
};

/// Gives a process that was started without standard input, output or error something in their places, so that no file
/// that it opens gets there. Writing to such a standard output fails.
void OpenMissingStandardFiles();

} // namespace footprint

#endif
