// The main program of a fuzz target without libFuzzer: replays files, and all files of folders, given as arguments.

#include "FuzzSupport.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace
{

using Path = std::filesystem::path;

void Add(const Path& path, std::vector<Path>& files)
{
    if (!std::filesystem::is_directory(path)) {
        files.push_back(path);
        return;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
}

bool Replay(const Path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad()) {
        std::fprintf(stderr, "can not read %s\n", path.c_str());
        return false;
    }
    std::printf("%s\n", path.c_str());
    std::fflush(stdout); // so that the last line names the input that ends the process
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<Path> files;
    for (int i = 1; i < argc; ++i) {
        Add(argv[i], files);
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        std::fprintf(stderr, "nothing to replay\n");
        return 1;
    }
    return std::all_of(files.begin(), files.end(), Replay) ? 0 : 1;
}
