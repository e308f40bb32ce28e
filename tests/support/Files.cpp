#include "Files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace NyxTest
{

namespace fs = std::filesystem;

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content << std::flush;
    EXPECT_TRUE(file.good()) << path;
}

bool FileExists(const std::string& path)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

std::vector<std::string> FolderEntries(const std::string& path)
{
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(path, error)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string DataFile(const std::string& name)
{
    return std::string(NYX_TEST_DATA) + "/" + name;
}

std::vector<std::string> GoldenDocuments(bool resaved)
{
    const std::string folder = DataFile("golden");
    std::vector<std::string> documents;
    for (const std::string& name : FolderEntries(folder)) {
        const fs::path path(name);
        const bool isResaved = path.stem().extension() == ".resave";
        if (path.extension() == ".xml" && (resaved || !isResaved)) {
            documents.push_back(folder + "/" + name);
        }
    }
    EXPECT_FALSE(documents.empty()) << folder;
    return documents;
}

std::size_t CountOpenFiles()
{
    return FolderEntries("/proc/self/fd").size();
}

} // namespace NyxTest
