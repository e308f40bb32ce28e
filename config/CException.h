#ifndef NYXCONFIG_CEXCEPTION_H
#define NYXCONFIG_CEXCEPTION_H

#include "nyxconfig_export.h"

#include <string>

namespace KvOrdo
{

/// The base of all exceptions of the facade: a message. It does not derive from the standard exception class, so it
/// must be caught by name.
class NYXCONFIG_EXPORT CException
{
public:
    /// The text is copied.
    explicit CException(std::string message);
    /// The text is narrowed by toCharString().
    explicit CException(std::wstring message);
    CException(const CException&) = default;
    CException& operator=(const CException&) = default;
    virtual ~CException();

    /// The message, without a line end. Valid as long as the exception.
    const std::string& getMessage() const { return m_message; }

    /// Replaces @p target by the low byte of each character of @p source, unchecked. Always true.
    static bool toCharString(std::string& target, const std::wstring& source);

private:
    std::string m_message;
};

} // namespace KvOrdo

#endif
