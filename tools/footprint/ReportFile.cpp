#include "ReportFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace footprint
{

namespace fs = std::filesystem;

namespace
{

std::string ErrorText(int error)
{
    return std::error_code(error, std::generic_category()).message();
}

[[noreturn]] void Fail(const std::string& file, int error)
{
    throw std::runtime_error("can not write " + file + ": " + ErrorText(error));
}

/// A file that is gone at the end, unless it has got its name.
class CTemporaryFile
{
public:
    explicit CTemporaryFile(const fs::path& file)
        : m_name((file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string())
    {
        const int descriptor = mkostemp(m_name.data(), O_CLOEXEC);
        if (descriptor < 0) {
            Fail(file.string(), errno);
        }
        close(descriptor);
        m_isThere = true;
    }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;
    ~CTemporaryFile()
    {
        if (m_isThere) {
            unlink(m_name.c_str());
        }
    }

    const std::string& Name() const { return m_name; }

    /// To the disk, and in the place of the file. It may be read by whom a new file may be read by, or as before.
    void Replace(const fs::path& file)
    {
        const mode_t mask = umask(0);
        umask(mask);
        struct stat before = {};
        const mode_t mode = stat(file.c_str(), &before) == 0 ? before.st_mode & 0777U : 0666U & ~mask;
        const int descriptor = open(m_name.c_str(), O_RDONLY | O_CLOEXEC);
        const bool isDone = descriptor >= 0 && fchmod(descriptor, mode) == 0 && fsync(descriptor) == 0 &&
                            rename(m_name.c_str(), file.c_str()) == 0;
        const int error = errno;
        if (descriptor >= 0) {
            close(descriptor);
        }
        if (!isDone) {
            Fail(file.string(), error);
        }
        m_isThere = false;
    }

private:
    std::string m_name;
    bool m_isThere = false;
};

class CSpawnFiles
{
public:
    CSpawnFiles() { posix_spawn_file_actions_init(&m_actions); }
    CSpawnFiles(const CSpawnFiles&) = delete;
    CSpawnFiles& operator=(const CSpawnFiles&) = delete;
    ~CSpawnFiles() { posix_spawn_file_actions_destroy(&m_actions); }

    void Open(int descriptor, const char* file, int flags)
    {
        posix_spawn_file_actions_addopen(&m_actions, descriptor, file, flags, 0);
    }
    void Take(int descriptor, int from) { posix_spawn_file_actions_adddup2(&m_actions, from, descriptor); }
    const posix_spawn_file_actions_t* Get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

struct CCloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

void ReplaceFile(const std::string& file, const std::function<void(const std::string& temporary)>& write)
{
    // A link stays one; what it leads to is replaced.
    std::error_code error;
    const fs::path target =
        fs::is_symlink(fs::symlink_status(file, error)) ? fs::weakly_canonical(file) : fs::path(file);
    const fs::file_type type = fs::status(target, error).type();
    if (type == fs::file_type::directory) {
        Fail(file, EISDIR);
    }
    if (type != fs::file_type::not_found && type != fs::file_type::regular) {
        write(target.string());
        return;
    }
    CTemporaryFile temporary(target);
    write(temporary.Name());
    temporary.Replace(target);
}

void WriteOutput(const std::string& file, std::ostream& data, const std::function<void(std::ostream& output)>& write)
{
    if (file == "-") {
        write(data);
        return;
    }
    ReplaceFile(file, [&](const std::string& temporary) {
        std::ofstream output(temporary, std::ios::binary);
        errno = 0;
        write(output);
        output.close();
        if (!output) {
            Fail(file, errno == 0 ? EIO : errno);
        }
    });
}

void RunDot(const std::string& graph, const std::string& format, const std::string& output)
{
    const std::unique_ptr<std::FILE, CCloseFile> input(std::tmpfile());
    if (!input || std::fwrite(graph.data(), 1, graph.size(), input.get()) != graph.size() ||
        std::fflush(input.get()) != 0 || lseek(fileno(input.get()), 0, SEEK_SET) != 0) {
        throw std::runtime_error("can not keep the graph for dot: " + ErrorText(errno));
    }
    CSpawnFiles files;
    files.Take(STDIN_FILENO, fileno(input.get()));
    files.Open(STDOUT_FILENO, output.c_str(), O_WRONLY | O_TRUNC);
    files.Open(STDERR_FILENO, "/dev/null", O_WRONLY);
    std::string program = "dot";
    std::string option = "-T" + format;
    const std::array<char*, 3> words = {program.data(), option.data(), nullptr};
    pid_t child = -1;
    const int error = posix_spawnp(&child, program.c_str(), files.Get(), nullptr, words.data(), environ);
    if (error == ENOENT) {
        throw std::runtime_error("the program \"dot\" of Graphviz is not installed; it makes the picture");
    }
    if (error != 0) {
        throw std::runtime_error("can not run \"dot\": " + ErrorText(error));
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("\"dot\" could not make the picture");
    }
}

} // namespace footprint
