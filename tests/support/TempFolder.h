#ifndef NYXCONFIG_TEMPFOLDER_H
#define NYXCONFIG_TEMPFOLDER_H

#include <string>

namespace NyxTest
{

/// A folder for one test, empty at first, deleted with all that it holds.
class TempFolder
{
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    /// Without a closing separator.
    const std::string& Path() const { return m_path; }
    /// Path of an entry.
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

} // namespace NyxTest

#endif
