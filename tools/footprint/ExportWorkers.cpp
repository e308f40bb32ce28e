#include "ExportWorkers.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

namespace footprint
{

namespace
{

using TClock = std::chrono::steady_clock;

/// Files that a process has before it: enough for the time that storing what all processes have answered takes, and few
/// enough for their names to fit into the socket, so that giving one to it never waits.
constexpr std::size_t filesAhead = 48;
constexpr std::size_t namesAhead = 1 << 15; // bytes
constexpr int pipeSize = 1 << 20;
constexpr std::size_t readSize = 1 << 18;
constexpr std::size_t longestError = 4096;
/// Nobody means a frame beyond this: then the process has damaged its memory.
constexpr std::uint64_t largestFrame = 1 << 30;

/// Begins what a process says about a file. Then the tables follow, or the error.
struct CFrameHead
{
    std::uint64_t errorSize = 0;
    std::array<std::uint64_t, eExportTableCount> sizes{};

    std::uint64_t Size() const
    {
        std::uint64_t size = sizeof(CFrameHead) + errorSize;
        for (const std::uint64_t table : sizes) {
            size += table;
        }
        return size;
    }
};

[[noreturn]] void ThrowSystemError(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// What a process does that loads files. It ends when nobody listens or asks any more.
class CLoading
{
public:
    CLoading(const CExportWorkers::CSettings& settings, int requests, int answers)
        : m_settings(&settings), m_requests(requests), m_answers(answers)
    {
    }

    void Run()
    {
        std::string path;
        while (ReadPath(path)) {
            m_rows.Clear();
            std::string error = Load(path);
            error.resize(std::min(error.size(), longestError));
            if (!Write(error)) {
                return;
            }
        }
    }

private:
    std::string Load(const std::string& path)
    {
        std::string error;
        try {
            KvDeviceFootprint::CDeviceFootprint document;
            if (m_settings->load(path, document, error)) {
                AddFootprint(document, m_rows, m_settings->pseudonym);
                return {};
            }
        } catch (const std::exception& exception) {
            error = exception.what();
        }
        m_rows.Clear();
        return error.empty() ? "it can not be loaded" : error;
    }

    bool ReadPath(std::string& path) const
    {
        std::uint32_t size = 0;
        if (!ReadAll(reinterpret_cast<char*>(&size), sizeof size)) {
            return false;
        }
        path.resize(size);
        return ReadAll(path.data(), size);
    }

    bool ReadAll(char* bytes, std::size_t size) const
    {
        while (size > 0) {
            const ssize_t count = read(m_requests, bytes, size);
            if (count <= 0) {
                if (count < 0 && errno == EINTR) {
                    continue;
                }
                return false;
            }
            bytes += count;
            size -= static_cast<std::size_t>(count);
        }
        return true;
    }

    bool Write(std::string& error)
    {
        CFrameHead head;
        head.errorSize = error.size();
        std::array<iovec, eExportTableCount + 2> parts{};
        parts[0] = {&head, sizeof head};
        parts[1] = {error.data(), error.size()};
        for (std::size_t table = 0; table < eExportTableCount; ++table) {
            const CExportBuffer& rows = m_rows.Tables()[table];
            head.sizes[table] = rows.size();
            parts[table + 2] = {const_cast<char*>(rows.data()), rows.size()};
        }
        std::size_t first = 0;
        while (first < parts.size()) {
            ssize_t count = writev(m_answers, &parts[first], static_cast<int>(parts.size() - first));
            if (count < 0) {
                if (errno == EINTR) {
                    continue;
                }
                return false;
            }
            while (first < parts.size() && static_cast<std::size_t>(count) >= parts[first].iov_len) {
                count -= static_cast<ssize_t>(parts[first].iov_len);
                ++first;
            }
            if (first < parts.size()) {
                parts[first].iov_base = static_cast<char*>(parts[first].iov_base) + count;
                parts[first].iov_len -= static_cast<std::size_t>(count);
            }
        }
        return true;
    }

    const CExportWorkers::CSettings* m_settings;
    int m_requests;
    int m_answers;
    CExportRows m_rows;
};

/// Closes all files but the standard ones and two others, such as those of the processes before this one: the end of
/// one process must not go unnoticed because another one holds its files.
void CloseOthers(int one, int other)
{
    const auto low = static_cast<unsigned>(std::min(one, other));
    const auto high = static_cast<unsigned>(std::max(one, other));
    if (low > 3) {
        close_range(3, low - 1, 0);
    }
    if (high > low + 1) {
        close_range(low + 1, high - 1, 0);
    }
    close_range(high + 1, ~0U, 0);
}

} // namespace

/// A process that loads files, seen from the one that asks it to.
class CExportWorkers::CWorker
{
public:
    explicit CWorker(const CSettings& settings) : m_settings(&settings) {}
    CWorker(const CWorker&) = delete;
    CWorker(CWorker&& other) noexcept = default; // while it does not run
    CWorker& operator=(const CWorker&) = delete;
    ~CWorker() { End(SIGKILL); }

    bool IsRunning() const { return m_process > 0; }
    bool IsFull() const { return m_files.size() >= filesAhead || m_names >= namesAhead; }
    bool IsIdle() const { return m_files.empty(); }
    int Answers() const { return m_answers; }

    void Start()
    {
        std::array<int, 2> requests{};
        std::array<int, 2> answers{};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, requests.data()) != 0) {
            ThrowSystemError("can not talk to another process");
        }
        if (pipe2(answers.data(), O_CLOEXEC) != 0) {
            const int error = errno;
            close(requests[0]);
            close(requests[1]);
            errno = error;
            ThrowSystemError("can not talk to another process");
        }
        fcntl(answers[1], F_SETPIPE_SZ, pipeSize); // serves speed alone
        const pid_t parent = getpid();
        m_process = fork();
        if (m_process == 0) {
            // A process that hangs ends with the export, too.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (getppid() == parent) {
                CloseOthers(requests[1], answers[1]);
                // The one process that stores is what all of them wait for: it goes first.
                [[maybe_unused]] const int priority = nice(5);
                Work(requests[1], answers[1]);
            }
            _exit(0);
        }
        const int error = errno;
        close(requests[1]);
        close(answers[1]);
        m_requests = requests[0];
        m_answers = answers[0];
        m_begin = m_end = 0;
        if (m_process < 0) {
            End(0);
            errno = error;
            ThrowSystemError("can not start another process");
        }
    }

    /// Gives it a file. If the process is gone, its pipe will tell.
    void Give(CExportTask task)
    {
        if (m_files.empty()) {
            m_since = TClock::now();
        }
        const auto size = static_cast<std::uint32_t>(task.path.size());
        std::string request(reinterpret_cast<const char*>(&size), sizeof size);
        request += task.path;
        m_names += task.path.size();
        m_files.push_back(std::move(task));
        while (send(m_requests, request.data(), request.size(), MSG_NOSIGNAL) < 0 && errno == EINTR) {
        }
    }

    /// Takes what the process has written; false at its end.
    bool Read()
    {
        if (m_begin > 0) {
            std::copy(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_begin),
                      m_buffer.begin() + static_cast<std::ptrdiff_t>(m_end), m_buffer.begin());
            m_end -= m_begin;
            m_begin = 0;
        }
        if (FrameSize() > largestFrame) {
            return false;
        }
        const std::size_t room = std::max(m_end + readSize, static_cast<std::size_t>(FrameSize()));
        if (m_buffer.size() < room) {
            m_buffer.resize(room);
        }
        const ssize_t count = read(m_answers, m_buffer.data() + m_end, m_buffer.size() - m_end);
        if (count < 0) {
            return errno == EINTR || errno == EAGAIN;
        }
        m_end += static_cast<std::size_t>(count);
        return count > 0;
    }

    /// The answers that are complete. They stay valid until the next Read().
    void Answered(std::vector<CExportAnswer>& answers)
    {
        for (std::uint64_t size = FrameSize(); size != 0 && size <= m_end - m_begin && !m_files.empty();
             size = FrameSize()) {
            CFrameHead head;
            std::memcpy(&head, &m_buffer[m_begin], sizeof head);
            CExportAnswer answer;
            const char* bytes = &m_buffer[m_begin] + sizeof head;
            const auto take = [&bytes](std::uint64_t length) {
                const CBytes taken{bytes, static_cast<std::size_t>(length)};
                bytes += taken.size;
                return taken;
            };
            const CBytes error = take(head.errorSize);
            answer.error.assign(error.begin, error.size);
            for (std::size_t table = 0; table < eExportTableCount; ++table) {
                answer.tables[table] = take(head.sizes[table]);
            }
            answer.task = std::move(m_files.front());
            m_files.pop_front();
            m_names -= answer.task.path.size();
            answers.push_back(std::move(answer));
            m_begin += static_cast<std::size_t>(size);
            m_since = TClock::now();
        }
    }

    /// A frame of a large file takes a large buffer, which is given back.
    void Trim()
    {
        if (m_begin == m_end && m_buffer.size() > 8 * readSize) {
            m_begin = m_end = 0;
            m_buffer.resize(readSize);
            m_buffer.shrink_to_fit();
        }
    }

    bool IsLate() const { return !m_files.empty() && TClock::now() - m_since > m_settings->timeout; }

    /// Ends the process unless it has ended.
    /// @return words for how it ended.
    std::string End(int signal)
    {
        if (m_requests >= 0) {
            close(std::exchange(m_requests, -1));
            close(std::exchange(m_answers, -1));
        }
        if (m_process <= 0) {
            m_process = 0;
            return {};
        }
        if (signal != 0) {
            kill(m_process, signal);
        }
        int status = 0;
        while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
        }
        m_process = 0;
        if (WIFSIGNALED(status)) {
            return "signal " + std::to_string(WTERMSIG(status));
        }
        return "exit status " + std::to_string(WEXITSTATUS(status));
    }

    /// The files that it was given and did not answer; the first of them it was just loading.
    std::deque<CExportTask> TakeFiles()
    {
        m_names = 0;
        return std::exchange(m_files, {});
    }

private:
    void Work(int requests, int answers) const
    {
        std::signal(SIGPIPE, SIG_IGN);
        try {
            CLoading(*m_settings, requests, answers).Run();
        } catch (...) {
            _exit(1); // out of memory for the rows, say
        }
    }

    /// Size of the frame that begins at what is to be read next; 0 if that is not known yet.
    std::uint64_t FrameSize() const
    {
        if (m_end - m_begin < sizeof(CFrameHead)) {
            return 0;
        }
        CFrameHead head;
        std::memcpy(&head, &m_buffer[m_begin], sizeof head);
        return head.Size();
    }

    const CSettings* m_settings;
    pid_t m_process = 0;
    int m_requests = -1;
    int m_answers = -1;
    std::deque<CExportTask> m_files;
    std::size_t m_names = 0;    // bytes in their names
    TClock::time_point m_since; // when the first of them was begun
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

CExportWorkers::CExportWorkers(const CSettings& settings) : m_settings(settings)
{
    m_workers.reserve(m_settings.processes);
    for (std::size_t index = 0; index < std::max(m_settings.processes, std::size_t{1}); ++index) {
        m_workers.emplace_back(m_settings);
    }
}

CExportWorkers::~CExportWorkers() = default;

void CExportWorkers::Run(const TNext& next, const TStore& store)
{
    m_more = true;
    std::vector<CExportAnswer> answers;
    for (;;) {
        Feed(next);
        if (std::all_of(m_workers.begin(), m_workers.end(), [](const CWorker& worker) { return worker.IsIdle(); })) {
            return;
        }
        answers.clear();
        Collect(200, answers);
        if (!answers.empty()) {
            Feed(next); // for the processes go on meanwhile
            store(answers);
            for (CWorker& worker : m_workers) {
                worker.Trim();
            }
        }
    }
}

bool CExportWorkers::Take(const TNext& next, CExportTask& task)
{
    if (!m_again.empty()) {
        task = std::move(m_again.front());
        m_again.pop_front();
        return true;
    }
    m_more = m_more && next(task);
    return m_more;
}

void CExportWorkers::Feed(const TNext& next)
{
    // In turns, so that a few files are spread over all processes.
    for (bool given = true; given;) {
        given = false;
        for (CWorker& worker : m_workers) {
            CExportTask task;
            if (worker.IsFull() || !Take(next, task)) {
                continue;
            }
            if (!worker.IsRunning()) {
                worker.Start();
            }
            worker.Give(std::move(task));
            given = true;
        }
    }
}

void CExportWorkers::Collect(int timeout, std::vector<CExportAnswer>& answers)
{
    std::vector<pollfd> polled;
    for (const CWorker& worker : m_workers) {
        polled.push_back({worker.IsRunning() ? worker.Answers() : -1, POLLIN, 0});
    }
    if (poll(polled.data(), polled.size(), timeout) < 0 && errno != EINTR) {
        ThrowSystemError("can not wait for another process");
    }
    for (std::size_t index = 0; index < m_workers.size(); ++index) {
        CWorker& worker = m_workers[index];
        if (polled[index].fd < 0) {
            continue;
        }
        if (polled[index].revents == 0) {
            if (worker.IsLate()) {
                GiveUp(worker, answers);
            }
            continue;
        }
        if (worker.Read()) {
            worker.Answered(answers);
        } else {
            GiveUp(worker, answers);
        }
    }
}

void CExportWorkers::GiveUp(CWorker& worker, std::vector<CExportAnswer>& answers)
{
    const bool isLate = worker.IsLate();
    const std::string end = worker.End(SIGKILL);
    std::deque<CExportTask> files = worker.TakeFiles();
    if (files.empty()) {
        return; // it was idle: whoever ended it has done no harm
    }
    if (isLate || files.front().retried) {
        CExportAnswer answer;
        answer.task = std::move(files.front());
        answer.error = isLate ? "loading it takes too long" : "loading it ends the process: " + end;
        answers.push_back(std::move(answer));
        files.pop_front();
    } else {
        files.front().retried = true;
    }
    std::move(files.rbegin(), files.rend(), std::front_inserter(m_again));
}

} // namespace footprint
