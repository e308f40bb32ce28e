// Stand-in for a PC: the trace goes to standard error or to the system log.

#include "Debug.h"

#include <QByteArray>

#include <cerrno>
#include <cstddef>
#include <mutex>

#include <syslog.h>
#include <unistd.h>

namespace
{

const char* const traceVariable = "NYXCONFIG_TRACE";

enum class Sink
{
    None,
    StandardError,
    SystemLog
};

/// Tracing must not disturb the code that it watches, which may look at errno afterwards.
class ErrnoKeeper
{
public:
    ErrnoKeeper() : m_saved(errno) {}
    ~ErrnoKeeper() { errno = m_saved; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    int m_saved;
};

/// One write, so that the line also stays whole beside those of other processes. A failure has nowhere to be reported.
void writeToStandardError(const QByteArray& line)
{
    static std::mutex oneLineAtATime; // a long line may take the pipe more than one write
    const std::lock_guard<std::mutex> lock(oneLineAtATime);

    const char* rest = line.constData();
    std::size_t size = static_cast<std::size_t>(line.size());
    while (size > 0) {
        const ssize_t written = ::write(STDERR_FILENO, rest, size);
        if (written >= 0) {
            rest += written;
            size -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            return;
        }
    }
}

Sink sinkFromEnvironment()
{
    const QByteArray name = qgetenv(traceVariable);
    if (name.isEmpty()) {
        return Sink::None;
    }
    if (name == "stderr") {
        return Sink::StandardError;
    }
    if (name == "syslog") {
        return Sink::SystemLog;
    }
    writeToStandardError(QByteArray(traceVariable) + ": unknown value \"" + name +
                         "\", trace stays off; use stderr or syslog\n");
    return Sink::None;
}

/// Fixed at the first use: a switch that is read once needs no care about other threads changing the environment.
Sink sink()
{
    static const Sink chosen = sinkFromEnvironment();
    return chosen;
}

QByteArray traceLine(moduleId module, int level, QString text)
{
    text.replace(QLatin1Char('\n'), QLatin1Char(' ')); // one call is one line
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    return "[trace module " + QByteArray::number(module) + " level " + QByteArray::number(level) + "] " + text.toUtf8();
}

} // namespace

namespace KvOrdo
{

bool Debug::isActive(moduleId /*module*/, int /*level*/, int /*channel*/)
{
    const ErrnoKeeper keeper;
    return sink() != Sink::None;
}

void Debug::println(moduleId module, int /*channel*/, const QString& text, int level, int, const char*, int)
{
    const ErrnoKeeper keeper;
    switch (sink()) {
    case Sink::None:
        break;
    case Sink::StandardError:
        writeToStandardError(traceLine(module, level, text) + '\n');
        break;
    case Sink::SystemLog:
        ::syslog(LOG_USER | LOG_DEBUG, "%s", traceLine(module, level, text).constData());
        break;
    }
}

} // namespace KvOrdo
