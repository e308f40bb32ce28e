// usage: measure_export FOLDER OUTPUT PROGRAM
//
// Measures how long PROGRAM, the command-line tool, exports the footprints below FOLDER into the database OUTPUT,
// against the time that the library alone takes to load them in a program that has nothing but the C library's
// allocator; then again with nothing to do, and once more interrupted half-way. OUTPUT is made anew. To be run on a
// machine with nothing else to do: the time of all cores counts.

#include "ExportTables.h"
#include "Loading.h"
#include "Sqlite.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>

#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using TClock = std::chrono::steady_clock;

struct CMeasured
{
    double wall = 0;
    double processor = 0;
    double peak = 0; ///< megabytes, of the largest process
    int status = 0;
};

double Seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Does something in a process of its own, which is killed after @p seconds unless that is 0.
CMeasured Measure(const std::function<int()>& work, double seconds = 0)
{
    const TClock::time_point begin = TClock::now();
    const pid_t process = fork();
    if (process == 0) {
        _exit(work());
    }
    if (seconds > 0) {
        usleep(static_cast<useconds_t>(seconds * 1e6));
        kill(process, SIGKILL);
    }
    CMeasured measured;
    rusage usage = {};
    wait4(process, &measured.status, 0, &usage);
    measured.wall = std::chrono::duration<double>(TClock::now() - begin).count();
    measured.processor = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    measured.peak = static_cast<double>(usage.ru_maxrss) / 1024;
    return measured;
}

std::string Counts(const std::string& database)
{
    footprint::CSqlite connection(database, footprint::CSqlite::eReadWrite);
    std::string counts = std::to_string(connection.Number("SELECT count(*) FROM files")) + " files";
    for (const footprint::CExportTable& table : footprint::ExportTables()) {
        counts += ", " + std::to_string(connection.Number("SELECT count(*) FROM " + table.name)) + " " + table.name;
    }
    return counts;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: measure_export FOLDER OUTPUT PROGRAM\n";
        return 2;
    }
    const footprint::CLibraryTalk talk;
    const std::string folder = argv[1];
    const std::string output = argv[2];
    const std::string program = argv[3];
    std::size_t count = 0;
    std::uintmax_t bytes = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            ++count;
            bytes += entry.file_size();
        }
    }
    const auto files = static_cast<double>(count);
    const auto load = [&] {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
            KvDeviceFootprint::CDeviceFootprint document;
            if (entry.is_regular_file() && !document.Load(entry.path().string())) {
                return 1;
            }
        }
        return 0;
    };
    const auto exported = [&] {
        execl(program.c_str(), program.c_str(), "export", folder.c_str(), "--format", "sqlite", "-o", output.c_str(),
              nullptr);
        return 2;
    };
    cpu_set_t set;
    sched_getaffinity(0, sizeof set, &set);
    const int cores = CPU_COUNT(&set);

    load(); // so that the files come from memory, for the library as for the export
    const CMeasured library = Measure(load);
    std::printf("%zu files of %.0f bytes on the average, %d cores\n", count, static_cast<double>(bytes) / files, cores);
    std::printf("library alone: %.2f s on one core, %.3f ms a file\n", library.wall, library.wall / files * 1e3);

    fs::remove(output);
    const CMeasured first = Measure(exported);
    std::printf("export: %.2f s, %.0f files a second, %.0f a second and core; processor %.2f s, peak %.1f MB\n",
                first.wall, files / first.wall, files / first.wall / cores, first.processor, first.peak);
    std::printf("ratio: %.2f by wall time x cores, %.2f by processor time\n", first.wall * cores / library.wall,
                first.processor / library.processor);
    const std::string counts = Counts(output);
    std::printf("%s; %.0f MB\n", counts.c_str(), static_cast<double>(fs::file_size(output)) / 1e6);

    const CMeasured again = Measure(exported);
    std::printf("again, nothing changed: %.2f s, peak %.1f MB\n", again.wall, again.peak);

    fs::remove(output);
    Measure(exported, first.wall / 2);
    const CMeasured rest = Measure(exported);
    std::printf("interrupted after %.2f s, then the rest in %.2f s\n", first.wall / 2, rest.wall);
    const bool isSame = Counts(output) == counts;
    std::printf("the content is %s\n", isSame ? "the same" : "ANOTHER ONE");
    return library.status == 0 && first.status == 0 && rest.status == 0 && isSame ? 0 : 1;
}
