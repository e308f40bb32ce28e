#ifndef NYXCONFIG_DOCUMENTTEST_H
#define NYXCONFIG_DOCUMENTTEST_H

#include "DeviceFootprint.h"
#include "ErrorWord.h"
#include "FakeClock.h"
#include "Files.h"
#include "TempFolder.h"
#include "WorkingFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace NyxTest
{

/// The first line of each document.
inline const std::string xmlDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n";

/// Where link files stand.
inline const std::string linkBase = "/var/lib/devicefootprint";

/// FakeClock::Start in a document.
inline const std::string startText = "2015-03-01T08:05:59";

inline std::string Text(const KvDeviceFootprint::CReadOnlyAttribute& attribute)
{
    return KvDeviceFootprint::NarrowText(attribute.GetValue());
}

/// Gives some text, and then fails instead of ending.
class BrokenBuffer : public std::streambuf
{
public:
    explicit BrokenBuffer(const std::string& text) : m_text(text)
    {
        setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
    }

protected:
    int_type underflow() override { throw std::runtime_error("broken"); }

private:
    std::string m_text;
};

/// Every case starts with a clock that stands still, no link folders, nothing reported, an empty folder and a document
/// whose device has an id; it closes its files.
class DocumentTest : public testing::Test
{
protected:
    DocumentTest()
    {
        if (std::getenv("NYX_PRIVATE_LINK_BASE") != nullptr) {
            for (const std::string& entry : FolderEntries(linkBase)) {
                std::filesystem::remove_all(linkBase + "/" + entry);
            }
        }
        m_footprint.m_deviceData.m_deviceId = "1111.2222.33-100001-x";
        m_openFiles = CountOpenFiles();
    }
    ~DocumentTest() override { EXPECT_EQ(CountOpenFiles(), m_openFiles) << "files stay open"; }

    /// The link file of that device without a type.
    static std::string LinkText() { return ReadFile(linkBase + "/1111.2222.33_100001/deviceFootprintLink.xml"); }

    /// Puts a file into the folder. @return its path.
    std::string File(const std::string& name, const std::string& content) const
    {
        WriteFile(m_folder / name, content);
        return m_folder / name;
    }

    ErrorWord m_errorWord;
    FakeClock m_clock;
    TempFolder m_folder;
    KvDeviceFootprint::CDeviceFootprint m_footprint;
    std::size_t m_openFiles = 0;
};

} // namespace NyxTest

#endif
