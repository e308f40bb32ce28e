#include "TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdlib.h>
#include <system_error>

namespace NyxTest
{

namespace fs = std::filesystem;

TempFolder::TempFolder()
{
    std::string pattern = (fs::temp_directory_path() / "nyxconfig-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        ADD_FAILURE() << "no temporary folder " << pattern;
        return;
    }
    m_path = pattern;
}

TempFolder::~TempFolder()
{
    if (!m_path.empty()) {
        std::error_code error;
        fs::remove_all(m_path, error);
    }
}

} // namespace NyxTest
