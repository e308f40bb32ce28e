#ifndef NYXCONFIG_TEMPMOUNT_H
#define NYXCONFIG_TEMPMOUNT_H

#include <string>

namespace NyxTest
{

/// Whether tests may mount: they have a mount name space of their own, from run-private, and the right to.
bool MountsAllowed();

/// While it lives, an empty file system in memory covers a folder.
class TempMount
{
public:
    /// @param options as "size=4k". A failure fails the test.
    TempMount(const std::string& folder, const std::string& options);
    TempMount(const TempMount&) = delete;
    TempMount& operator=(const TempMount&) = delete;
    ~TempMount();

    /// Nothing can be written to it any more, not even by root. A failure fails the test.
    void MakeReadOnly();

private:
    std::string m_folder;
};

} // namespace NyxTest

#endif
