#include "FileSystemUtils.h"
#include "SymlinkCreator.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <fcntl.h>
#include <fnmatch.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Files.h"
#include "StreamCapture.h"
#include "TempFolder.h"

using namespace KvDeviceFootprint;

namespace
{

using Names = std::vector<std::string>;

static_assert(DFP_DIR_NATIVE_SEPERATOR_CHAR == '/' && DFP_DIR_NONSYSTEM_SEPERATOR_CHAR == '\\',
              "the separators are part of the interface");
static_assert(!std::is_default_constructible_v<FileSystemUtils>, "there is no object");

/// Each case works in a folder of its own, which is the current one too.
class FileSystemUtilsTest : public testing::Test
{
protected:
    FileSystemUtilsTest()
    {
        m_folder = std::filesystem::canonical(m_temporary.Path()).string();
        std::filesystem::current_path(m_folder);
    }
    ~FileSystemUtilsTest() override { std::filesystem::current_path(m_former); }

    std::string PathOf(const std::string& name) const { return m_folder + '/' + name; }

    std::string MakeFile(const std::string& name) const
    {
        NyxTest::WriteFile(PathOf(name), "content");
        return PathOf(name);
    }
    std::string MakeFolder(const std::string& name) const
    {
        std::filesystem::create_directories(PathOf(name));
        return PathOf(name);
    }
    /// A file last changed at a given time.
    std::string MakeFileOf(const std::string& name, time_t seconds, long nanoseconds = 0) const
    {
        std::string path = MakeFile(name);
        const timespec time = {seconds, nanoseconds};
        const timespec times[] = {time, time};
        if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) {
            throw std::runtime_error("no time set");
        }
        return path;
    }
    /// A socket in the current folder, which keeps its address short.
    static void MakeSocket(const std::string& name)
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, name.c_str(), sizeof(address.sun_path) - 1);
        const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        const bool bound = bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
        close(descriptor);
        if (!bound) {
            throw std::runtime_error("no socket made");
        }
    }

    std::string m_folder;

private:
    const std::filesystem::path m_former = std::filesystem::current_path();
    NyxTest::TempFolder m_temporary;
};

/// An entry as the callbacks of scandir get it.
struct dirent EntryOf(const std::string& name)
{
    struct dirent entry = {};
    name.copy(entry.d_name, sizeof(entry.d_name) - 1);
    return entry;
}

int AgeOrder(const std::string& first, const std::string& second)
{
    const struct dirent firstEntry = EntryOf(first);
    const struct dirent secondEntry = EntryOf(second);
    const struct dirent* firstPointer = &firstEntry;
    const struct dirent* secondPointer = &secondEntry;
    return FileSystemUtils::FileAgeSort(&firstPointer, &secondPointer);
}

int PassAll(const struct dirent* /*entry*/)
{
    return 1;
}

int PassShortNames(const struct dirent* entry)
{
    return std::strlen(entry->d_name) <= 2 ? 1 : 0;
}

int ReverseOrder(const struct dirent** first, const struct dirent** second)
{
    return std::strcmp((*second)->d_name, (*first)->d_name);
}

int AllEqual(const struct dirent** /*first*/, const struct dirent** /*second*/)
{
    return 0;
}

Names Sorted(Names names)
{
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

TEST_F(FileSystemUtilsTest, DirExistsForAnythingOfTheName)
{
    EXPECT_TRUE(FileSystemUtils::CheckDirExists(MakeFolder("folder")));
    EXPECT_TRUE(FileSystemUtils::CheckDirExists(MakeFile("file")));
    EXPECT_FALSE(FileSystemUtils::CheckDirExists(PathOf("missing")));
    EXPECT_FALSE(FileSystemUtils::CheckDirExists(""));
    ASSERT_TRUE(createSymlinkLinux(PathOf("dangling"), "missing"));
    EXPECT_FALSE(FileSystemUtils::CheckDirExists(PathOf("dangling")));
}

TEST_F(FileSystemUtilsTest, FileExistsForAnythingOfTheName)
{
    EXPECT_TRUE(FileSystemUtils::CheckFileExists(MakeFile("file")));
    EXPECT_TRUE(FileSystemUtils::CheckFileExists(MakeFolder("folder")));
    EXPECT_FALSE(FileSystemUtils::CheckFileExists(PathOf("missing")));
    EXPECT_FALSE(FileSystemUtils::CheckFileExists(""));
}

TEST_F(FileSystemUtilsTest, CreateDirMakesAFolderForItsOwner)
{
    const mode_t former = umask(0);
    EXPECT_TRUE(FileSystemUtils::CreateDir(PathOf("folder")));
    umask(former);
    struct stat status = {};
    ASSERT_EQ(stat(PathOf("folder").c_str(), &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_TRUE(FileSystemUtils::CreateDir(PathOf("folder")));
}

TEST_F(FileSystemUtilsTest, CreateDirOnAFileIsTrueAndCreatesNothing)
{
    const std::string file = MakeFile("file");
    EXPECT_TRUE(FileSystemUtils::CreateDir(file));
    EXPECT_TRUE(std::filesystem::is_regular_file(file));
    EXPECT_EQ(std::filesystem::file_size(file), 7U);
}

TEST_F(FileSystemUtilsTest, CreateDirMakesOneLevelOnly)
{
    EXPECT_FALSE(FileSystemUtils::CreateDir(PathOf("missing/folder")));
    EXPECT_FALSE(std::filesystem::exists(PathOf("missing")));
    EXPECT_FALSE(FileSystemUtils::CreateDir(""));
}

TEST_F(FileSystemUtilsTest, DeleteDirTakesEmptyFoldersOnly)
{
    MakeFolder("full/inner");
    EXPECT_FALSE(FileSystemUtils::DeleteDir(PathOf("full")));
    EXPECT_TRUE(FileSystemUtils::DeleteDir(PathOf("full/inner")));
    EXPECT_TRUE(FileSystemUtils::DeleteDir(PathOf("full")));
    EXPECT_FALSE(FileSystemUtils::DeleteDir(PathOf("full")));
    EXPECT_FALSE(FileSystemUtils::DeleteDir(MakeFile("file")));
}

TEST_F(FileSystemUtilsTest, CreateEmptyFileMakesOrEmptiesAndCloses)
{
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    EXPECT_TRUE(FileSystemUtils::CreateEmptyFile(PathOf("new")));
    EXPECT_TRUE(FileSystemUtils::CreateEmptyFile(MakeFile("old")));
    EXPECT_EQ(std::filesystem::file_size(PathOf("new")), 0U);
    EXPECT_EQ(std::filesystem::file_size(PathOf("old")), 0U);
    EXPECT_FALSE(FileSystemUtils::CreateEmptyFile(PathOf("missing/file")));
    EXPECT_FALSE(FileSystemUtils::CreateEmptyFile(m_folder));
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
}

TEST_F(FileSystemUtilsTest, DeleteFileAtTakesFilesOnly)
{
    EXPECT_TRUE(FileSystemUtils::DeleteFileAt(MakeFile("file")));
    EXPECT_FALSE(std::filesystem::exists(PathOf("file")));
    EXPECT_FALSE(FileSystemUtils::DeleteFileAt(PathOf("file")));
    EXPECT_FALSE(FileSystemUtils::DeleteFileAt(MakeFolder("folder")));
}

TEST_F(FileSystemUtilsTest, RelativePathsDoNotBeginWithASeparator)
{
    for (const char* const path : {"", "name", "./name", "../name", "name/", "\\name", " /name"}) {
        EXPECT_TRUE(FileSystemUtils::IsRelativePath(path)) << path;
    }
    for (const char* const path : {"/", "/name", "//name", "/.."}) {
        EXPECT_FALSE(FileSystemUtils::IsRelativePath(path)) << path;
    }
}

TEST_F(FileSystemUtilsTest, AbsolutePathIsResolved)
{
    MakeFolder("folder");
    MakeFile("file");
    ASSERT_TRUE(createSymlinkLinux(PathOf("link"), "file"));
    for (const char* const path : {"file", "./file", "folder/../file", "link", "folder//../link"}) {
        std::string absolutePath = "former content";
        EXPECT_TRUE(FileSystemUtils::ToAbsolutePath(path, absolutePath)) << path;
        EXPECT_EQ(absolutePath, PathOf("file")) << path;
    }
    std::string path = "folder/";
    EXPECT_TRUE(FileSystemUtils::ToAbsolutePath(path, path));
    EXPECT_EQ(path, PathOf("folder"));
}

TEST_F(FileSystemUtilsTest, AbsolutePathOfWhatDoesNotExistIsEmptied)
{
    for (const std::string& path : {std::string(), std::string("missing"), PathOf("missing"), std::string("file/.."),
                                    std::string(PATH_MAX + 1, 'x'), std::string("folder/missing/file")}) {
        std::string absolutePath = "former content";
        EXPECT_FALSE(FileSystemUtils::ToAbsolutePath(path, absolutePath)) << path;
        EXPECT_EQ(absolutePath, "") << path;
    }
}

TEST_F(FileSystemUtilsTest, ConvertSeparatorsReplacesEachBackslash)
{
    const struct
    {
        const char* path;
        const char* converted;
    } rows[] = {{"", ""}, {"a/b", "a/b"}, {"\\", "/"}, {"\\a\\\\b/c\\", "/a//b/c/"}};
    for (const auto& row : rows) {
        std::string path = row.path;
        FileSystemUtils::ConvertSeparators(path);
        EXPECT_EQ(path, row.converted);
    }
}

TEST_F(FileSystemUtilsTest, AppendSeparatorWithAndWithoutConversion)
{
    const struct
    {
        const char* path;
        const char* converted;
        const char* unconverted;
    } rows[] = {{"", "/", "/"},     {"/", "/", "/"},           {"a", "a/", "a/"},
                {"a/", "a/", "a/"}, {"a//", "a//", "a//"},     {"a\\", "a/", "a\\/"},
                {"\\", "/", "\\/"}, {"a\\b", "a/b/", "a\\b/"}, {"a\\/", "a//", "a\\/"}};
    for (const auto& row : rows) {
        std::string path = row.path;
        FileSystemUtils::AppendSeparator(path, true);
        EXPECT_EQ(path, row.converted) << row.path;
        path = row.path;
        FileSystemUtils::AppendSeparator(path, false);
        EXPECT_EQ(path, row.unconverted) << row.path;
    }
}

TEST_F(FileSystemUtilsTest, CombinePathsPutsOneSeparatorBetween)
{
    const struct
    {
        const char* first;
        const char* second;
        const char* combined;
    } rows[] = {
        {"folder", "name", "folder/name"},
        {"folder///", "name", "folder/name"},
        {"folder\\\\", "name", "folder/name"},
        {"/", "name", "/name"},
        {"///", "name", "/name"},
        {"\\", "name", "/name"},
        {"folder", "/name", "folder//name"},
        {"folder", "\\name\\", "folder//name/"},
        {"a\\b", "c\\d", "a/b/c/d"},
        {"folder///", "", "folder///"},
        {"fol\\der\\", "", "fol/der/"},
        {"", "", ""},
        {"", "na\\me", "na/me"},
        {"", "/name", "/name"},
    };
    for (const auto& row : rows) {
        std::string combined = "former content";
        EXPECT_TRUE(FileSystemUtils::CombinePaths(row.first, row.second, combined));
        EXPECT_EQ(combined, row.combined) << row.first << " and " << row.second;
        EXPECT_EQ(FileSystemUtils::CombinePaths(row.first, row.second), row.combined);
    }
}

TEST_F(FileSystemUtilsTest, CombinePathsMayWriteOverItsInputs)
{
    std::string first = "folder/";
    std::string second = "name";
    EXPECT_TRUE(FileSystemUtils::CombinePaths(first, second, second));
    EXPECT_EQ(second, "folder/name");
    EXPECT_TRUE(FileSystemUtils::CombinePaths(first, "other", first));
    EXPECT_EQ(first, "folder/other");
}

TEST_F(FileSystemUtilsTest, AgeOrderStartsInTheCurrentFolder)
{
    // Only so before the first listing: looked at in a process that has made none.
    MakeFileOf("old", 1000000000);
    MakeFileOf("new", 1000000001);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto lookOnce = [this] {
        const int order = AgeOrder("new", "old");
        std::filesystem::remove_all(m_folder);
        std::_Exit(order == -1 ? 0 : 1);
    };
    EXPECT_EXIT(lookOnce(), testing::ExitedWithCode(0), "");
}

TEST_F(FileSystemUtilsTest, AgeOrderOfNewerOlderEqualAndMissing)
{
    MakeFolder("list");
    MakeFileOf("list/old", 1000000000, 999999999);
    MakeFileOf("list/new", 1000000001);
    MakeFileOf("list/newer in the same second", 1000000001, 999999999);
    Names names;
    for (const std::string& folder : {PathOf("list"), PathOf("list/"), std::string("list\\")}) {
        FileSystemUtils::GetDirectoryContent(folder, "*", names);
        EXPECT_EQ(AgeOrder("new", "old"), -1) << folder;
        EXPECT_EQ(AgeOrder("old", "new"), 1) << folder;
        EXPECT_EQ(AgeOrder("new", "newer in the same second"), 0);
        EXPECT_EQ(AgeOrder("newer in the same second", "new"), 0);
        EXPECT_EQ(AgeOrder("old", "missing"), 0);
        EXPECT_EQ(AgeOrder("missing", "old"), 0);
    }
}

TEST_F(FileSystemUtilsTest, ContentIsListedByName)
{
    MakeFile("b.xml");
    MakeFile("a.xml");
    MakeFile(".hidden.xml");
    MakeFile("c.txt");
    MakeFolder("folder.xml");
    Names names = {"former content"};
    EXPECT_TRUE(FileSystemUtils::GetDirectoryContent(m_folder, "*.xml", names));
    EXPECT_EQ(Sorted(names), (Names{".hidden.xml", "a.xml", "b.xml", "folder.xml"}));
    EXPECT_TRUE(FileSystemUtils::GetDirectoryContent(m_folder, "?.*", names));
    EXPECT_EQ(names, (Names{"a.xml", "b.xml", "c.txt"}));
    EXPECT_TRUE(FileSystemUtils::GetDirectoryContent(m_folder, "*", names));
    EXPECT_EQ(Sorted(names), (Names{".hidden.xml", "a.xml", "b.xml", "c.txt", "folder.xml"}));
}

TEST_F(FileSystemUtilsTest, ContentWithoutAMatchIsEmptyAndTrue)
{
    MakeFile("file");
    for (const char* const mask : {"nothing*", "", "FILE"}) {
        Names names = {"former content"};
        EXPECT_TRUE(FileSystemUtils::GetDirectoryContent(m_folder, mask, names)) << mask;
        EXPECT_TRUE(names.empty()) << mask;
        names = {"former content"};
        EXPECT_TRUE(FileSystemUtils::GetSortedDirectoryContent(m_folder, mask, names)) << mask;
        EXPECT_TRUE(names.empty()) << mask;
    }
}

TEST_F(FileSystemUtilsTest, ContentOfAFolderThatCanNotBeReadIsEmptyAndFalse)
{
    for (const std::string& folder : {PathOf("missing"), MakeFile("file"), std::string()}) {
        Names names = {"former content"};
        EXPECT_FALSE(FileSystemUtils::GetDirectoryContent(folder, "*", names)) << folder;
        EXPECT_TRUE(names.empty());
        names = {"former content"};
        EXPECT_FALSE(FileSystemUtils::GetSortedDirectoryContent(folder, "*", names)) << folder;
        EXPECT_TRUE(names.empty());
    }
}

TEST_F(FileSystemUtilsTest, ContentMayBeAskedForWithAnEntryOfItsOutput)
{
    MakeFolder("folder");
    MakeFile("folder/file");
    Names names = {"folder", "*"};
    EXPECT_TRUE(FileSystemUtils::GetDirectoryContent(names[0], names[1], names));
    EXPECT_EQ(names, (Names{"file"}));
}

TEST_F(FileSystemUtilsTest, SortedContentHasTheNewestFirst)
{
    MakeFileOf("a", 1000000001);
    MakeFileOf("b", 1000000003);
    MakeFileOf("c", 1000000002);
    MakeFileOf("d", 1000000000);
    Names names;
    EXPECT_TRUE(FileSystemUtils::GetSortedDirectoryContent(m_folder, "*", names));
    EXPECT_EQ(names, (Names{"b", "c", "a", "d"}));
    EXPECT_TRUE(FileSystemUtils::GetSortedDirectoryContent(".", "[!b]", names));
    EXPECT_EQ(names, (Names{"c", "a", "d"}));
}

TEST_F(FileSystemUtilsTest, SortedContentOfOneSecondKeepsTheOrderForEqualKeys)
{
    for (int i = 0; i < 20; ++i) {
        MakeFileOf("file" + std::to_string(i), 1000000000, 1000000L * i);
    }
    Names expected;
    ASSERT_TRUE(FileSystemUtils::GetSortedDirectoryContentNonWin(m_folder, "", PassAll, AllEqual, expected));
    Names names;
    EXPECT_TRUE(FileSystemUtils::GetSortedDirectoryContent(m_folder, "*", names));
    EXPECT_EQ(names, expected);
    EXPECT_EQ(names.size(), 20U);
}

TEST_F(FileSystemUtilsTest, CommonCoreTakesAnySelectionAndOrder)
{
    for (const char* const name : {"a", "bb", "ccc", "d"}) {
        MakeFile(name);
    }
    Names names;
    EXPECT_TRUE(FileSystemUtils::GetSortedDirectoryContentNonWin(m_folder, "", PassShortNames, ReverseOrder, names));
    EXPECT_EQ(names, (Names{"d", "bb", "a"}));
    EXPECT_TRUE(FileSystemUtils::GetSortedDirectoryContentNonWin(m_folder, "", nullptr, nullptr, names));
    EXPECT_EQ(Sorted(names), (Names{"a", "bb", "ccc", "d"}));
}

TEST_F(FileSystemUtilsTest, MaskMatchesAsAShellPattern)
{
    const char* const masks[] = {
        "*", "a*", "?", "[a-c]*", "[", "[a", "\\", "a\\", "[[:alpha:]]", "[[:nonsense:]]", "*.xml", "", "\xff*"};
    const char* const names[] = {"a", "b.xml", ".xml", "[", "[a", "\\", "abc"};
    Names ignored;
    for (const char* const mask : masks) {
        // A listing leaves its mask behind.
        ASSERT_TRUE(FileSystemUtils::GetDirectoryContent(m_folder, mask, ignored));
        for (const char* const name : names) {
            const struct dirent entry = EntryOf(name);
            EXPECT_EQ(FileSystemUtils::SearchMaskMatcher(&entry) != 0, fnmatch(mask, name, 0) != FNM_NOMATCH)
                << mask << ' ' << name;
        }
    }
}

TEST_F(FileSystemUtilsTest, LatestIsThePureNameOfTheNewest)
{
    MakeFolder("list");
    MakeFileOf("list/a.xml", 1000000001);
    MakeFileOf("list/b.xml", 1000000002);
    MakeFileOf("list/c.txt", 1000000003);
    std::string latest = "former content";
    EXPECT_TRUE(FileSystemUtils::FindLatestInDir(PathOf("list"), "*.xml", latest));
    EXPECT_EQ(latest, "b.xml");
    EXPECT_TRUE(FileSystemUtils::FindLatestInDir(PathOf("list"), "*", latest));
    EXPECT_EQ(latest, "c.txt");
}

TEST_F(FileSystemUtilsTest, LatestOfNothingIsEmptied)
{
    MakeFolder("empty");
    for (const std::string& folder : {PathOf("empty"), PathOf("missing")}) {
        std::string latest = "former content";
        EXPECT_FALSE(FileSystemUtils::FindLatestInDir(folder, "*", latest)) << folder;
        EXPECT_EQ(latest, "") << folder;
    }
    MakeFile("file");
    std::string latest = "former content";
    EXPECT_FALSE(FileSystemUtils::FindLatestInDir(m_folder, "nothing", latest));
    EXPECT_EQ(latest, "");
}

TEST_F(FileSystemUtilsTest, DeleteContentsOfAMissingOrEmptyFolderIsTrueAndSilent)
{
    MakeFile("file");
    testing::internal::CaptureStdout();
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(PathOf("missing"), true));
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(PathOf("file"), false));
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(MakeFolder("empty"), false));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(std::filesystem::exists(PathOf("empty")));
    EXPECT_TRUE(std::filesystem::exists(PathOf("file")));
}

TEST_F(FileSystemUtilsTest, DeleteContentsTellsWhatItDoes)
{
    MakeFolder("folder");
    for (const char* const folder : {"folder", "folder/", "folder\\"}) {
        MakeFile("folder/file");
        testing::internal::CaptureStdout();
        EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(folder, false));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "Try to remove file folder/file ...\nsuccess!\n");
        EXPECT_FALSE(std::filesystem::exists(PathOf("folder/file")));
    }
}

TEST_F(FileSystemUtilsTest, DeleteContentsRecursivelyTellsInnerEntriesFirst)
{
    MakeFolder("folder/inner");
    MakeFile("folder/inner/file");
    testing::internal::CaptureStdout();
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents("folder", true));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Try to remove file folder/inner ...\n"
                                                      "Try to remove file folder/inner/file ...\nsuccess!\nsuccess!\n");
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("folder")));
}

TEST_F(FileSystemUtilsTest, DeleteContentsWithoutRecursionTakesOnlyEmptySubfolders)
{
    MakeFolder("folder/empty");
    testing::internal::CaptureStdout();
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents("folder", false));
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("folder")));

    MakeFolder("folder/full");
    MakeFile("folder/full/file");
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    EXPECT_FALSE(FileSystemUtils::DeleteDirectoryContents("folder", false));
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Try to remove file folder/empty ...\nsuccess!\n"
                                                      "Try to remove file folder/full ...\n");
    EXPECT_TRUE(std::filesystem::exists(PathOf("folder/full/file")));
}

TEST_F(FileSystemUtilsTest, DeleteContentsTakesManyEntriesOfAllKinds)
{
    MakeFolder("folder/a/b/c");
    for (int i = 0; i < 500; ++i) {
        MakeFile("folder/file" + std::to_string(i));
    }
    MakeFile("folder/a/b/.hidden");
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    testing::internal::CaptureStdout();
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(PathOf("folder"), true));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("folder")));
}

TEST_F(FileSystemUtilsTest, DeleteContentsTakesPathsOfAnyLength)
{
    const std::string name(200, 'n');
    const std::string inner = "folder/" + name + '/' + name;
    MakeFolder(inner);
    MakeFile(inner + "/file");
    testing::internal::CaptureStdout();
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(PathOf("folder"), true));
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_NE(output.find("Try to remove file " + PathOf(inner) + "/file ...\nsuccess!\n"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("folder")));
}

TEST_F(FileSystemUtilsTest, DeleteContentsTakesALinkButNotWhatItLeadsTo)
{
    MakeFolder("target");
    MakeFile("target/file");
    MakeFolder("folder");
    ASSERT_TRUE(createSymlinkLinux(PathOf("folder/link"), PathOf("target")));
    testing::internal::CaptureStdout();
    EXPECT_TRUE(FileSystemUtils::DeleteDirectoryContents(PathOf("folder"), true));
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("folder")));
    EXPECT_TRUE(std::filesystem::exists(PathOf("target/file")));
}

TEST_F(FileSystemUtilsTest, DeleteContentsTakesASocketForAFolderAndFails)
{
    MakeFolder("folder/inner");
    MakeSocket("folder/inner/socket");
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    testing::internal::CaptureStdout();
    for (const bool recursive : {true, false}) {
        EXPECT_FALSE(FileSystemUtils::DeleteDirectoryContents("folder/inner", recursive));
    }
    EXPECT_FALSE(FileSystemUtils::DeleteDirectoryContents("folder", true));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Try to remove file folder/inner/socket ...\n"
                                                      "Try to remove file folder/inner/socket ...\n"
                                                      "Try to remove file folder/inner ...\n"
                                                      "Try to remove file folder/inner/socket ...\n");
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
    EXPECT_TRUE(std::filesystem::is_socket(PathOf("folder/inner/socket")));
}

TEST_F(FileSystemUtilsTest, SymlinksAreMadeAndRemoved)
{
    const struct
    {
        bool (*create)(const std::string&, const std::string&);
        bool (*remove)(const std::string&);
    } forms[] = {{createSymlinkLinux, deleteSymlinkLinux},
                 {SymlinkCreator::CreateSymlink, SymlinkCreator::DeleteSymlink}};
    MakeFile("target");
    for (const auto& form : forms) {
        // The link path comes first; the target is taken as it is, existing or not.
        EXPECT_TRUE(form.create(PathOf("link"), "target"));
        EXPECT_EQ(std::filesystem::read_symlink(PathOf("link")), "target");
        EXPECT_FALSE(form.create(PathOf("link"), "target"));
        EXPECT_TRUE(form.remove(PathOf("link")));
        EXPECT_FALSE(form.remove(PathOf("link")));
        EXPECT_TRUE(std::filesystem::exists(PathOf("target")));
        EXPECT_TRUE(form.create(PathOf("dangling"), PathOf("missing")));
        EXPECT_TRUE(std::filesystem::is_symlink(PathOf("dangling")));
        EXPECT_TRUE(form.remove(PathOf("dangling")));
        EXPECT_FALSE(form.create(PathOf("missing/link"), "target"));
        EXPECT_FALSE(form.remove(m_folder));
    }
}
