// usage: process_LIBRARY load FILE
//        process_LIBRARY all FILE FOLDER
//
// What a program does at its start, with one library: load, or load, validate and save. Prints its peak memory in KiB.

#ifdef PEER
#include "Peers.h"
#else
#include "Operations.h"
#endif

#include <sys/resource.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace
{

#ifdef PEER

void Work(const std::string& file, const char* folder)
{
    bench::Footprint footprint;
    bench::PEER.load(file, footprint);
    if (folder == nullptr) {
        return;
    }
    std::string digest = bench::Digest(footprint);
    if (std::wstring(digest.begin(), digest.end()) != footprint.checksum) {
        bench::Fail("wrong checksum");
    }
    digest = bench::Digest(footprint);
    footprint.checksum.assign(digest.begin(), digest.end());
    // By hand is quicker than any library.
    bench::ByHand.save(footprint, std::string(folder) + "/copy.xml");
}

#else

void Work(const std::string& file, const char* folder)
{
    KvDeviceFootprint::CDeviceFootprint footprint;
    bench::Load(file, footprint);
    if (folder != nullptr) {
        bench::Validate(footprint);
        bench::Save(footprint, folder);
    }
}

#endif

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || (std::strcmp(argv[1], "all") == 0 && argc < 4)) {
        std::fputs("usage: process load FILE | process all FILE FOLDER\n", stderr);
        return 2;
    }
    try {
        Work(argv[2], std::strcmp(argv[1], "all") == 0 ? argv[3] : nullptr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "process: %s\n", error.what());
        return 1;
    }
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return 0;
}
