// usage: benchmarks FOLDER [OPTIONS OF GOOGLE BENCHMARK]
//        benchmarks FOLDER --only-files
//
// Makes the documents in FOLDER, checks that all peers do the same work as the library, and measures. A name of a
// benchmark is operation/document/library.

#include "FacadeItems.h"
#include "Generator.h"
#include "Operations.h"
#include "Peers.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>

namespace bench
{

namespace
{

using KvDeviceFootprint::CComparatorRules;
using KvDeviceFootprint::CDefaultHistoryComparatorRulesFactory;
using KvDeviceFootprint::CDeviceFootprint;

std::string folder;

std::string FileOf(const std::string& document)
{
    return folder + "/" + document + ".xml";
}

std::string ShuffledFileOf(const std::string& document)
{
    return folder + "/" + document + "-shuffled.xml";
}

/// Makes the documents that an earlier run in the folder has not left there.
void MakeFiles()
{
    for (const Document& document : Documents()) {
        if (!std::ifstream(FileOf(document.name))) {
            MakeFile(document, FileOf(document.name));
        }
    }
    for (const char* document : {"typical", "large"}) {
        if (!std::ifstream(ShuffledFileOf(document))) {
            MakeFile(DocumentByName(document), ShuffledFileOf(document), true);
        }
    }
}

// --- Checks ---------------------------------------------------------------------------------------------------------

void Expect(bool holds, const std::string& what)
{
    if (!holds) {
        Fail("the check failed: " + what);
    }
}

/// Each peer reads, writes, digests and compares as the library does.
void CheckPeers(const std::string& document)
{
    const std::string file = FileOf(document);
    const std::string text = ReadFile(file);
    const std::string copy = folder + "/copy.xml";
    CDeviceFootprint ours;
    Load(file, ours);
    Validate(ours);
    std::string saved;
    Expect(ours.GetDeviceFootprintString(false, saved) && saved == text, document + " by nyxconfig");
    for (const Peer* reader : Peers()) {
        if (reader->load == nullptr) {
            continue;
        }
        const std::string name = document + " by " + reader->name;
        Footprint footprint;
        reader->load(file, footprint);
        const std::string digest = Digest(footprint);
        Expect(std::wstring(digest.begin(), digest.end()) == ours.m_checksum.GetValue(), "digest of " + name);
        for (const Peer* writer : Peers()) {
            if (writer->save != nullptr) {
                writer->save(footprint, copy);
                Expect(ReadFile(copy) == text, name + ", written by " + writer->name);
            }
        }
        Footprint other = footprint;
        Expect(IsSame(footprint, other), "comparison of " + name);
        other.hardwareData.hardwareList.reverse();
        Expect(IsSame(footprint, other), "comparison in another order of " + name);
        other.hardwareData.hardwareList.back().programmableParts.front().version += L"1";
        Expect(!IsSame(footprint, other), "comparison with a difference of " + name);
    }
}

// --- Benchmarks -----------------------------------------------------------------------------------------------------

struct Operation
{
    std::function<void()> measured;
    /// What has to follow and is not measured: freeing, and the removal of files, so that all write new ones.
    std::function<void()> end = [] {};
};

/// The time that this process has had on a processor: what others do on the machine does not count.
double ProcessorSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// @param prepare called before the measurement begins, as it may load what the operation works on.
void Register(const std::string& name, const std::function<Operation()>& prepare)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [prepare](benchmark::State& state) {
                                     const Operation operation = prepare();
                                     for ([[maybe_unused]] auto _ : state) {
                                         const double begin = ProcessorSeconds();
                                         operation.measured();
                                         state.SetIterationTime(ProcessorSeconds() - begin);
                                         operation.end();
                                     }
                                 })
        ->Unit(benchmark::kMicrosecond)
        ->UseManualTime();
}

std::shared_ptr<CDeviceFootprint> Loaded(const std::string& file)
{
    auto footprint = std::make_shared<CDeviceFootprint>();
    Load(file, *footprint);
    return footprint;
}

std::shared_ptr<Footprint> LoadedByPeer(const std::string& file)
{
    auto footprint = std::make_shared<Footprint>();
    Rapidxml.load(file, *footprint);
    return footprint;
}

/// A subject that is made anew for each operation.
template<class Subject, class Measured>
Operation OnNewSubject(Measured measured)
{
    const auto subject = std::make_shared<std::optional<Subject>>();
    return {[subject, measured] { measured(subject->emplace()); }, [subject] { subject->reset(); }};
}

void RegisterLoad(const std::string& document)
{
    const std::string file = FileOf(document);
    Register("load/" + document + "/nyxconfig", [file] {
        return OnNewSubject<CDeviceFootprint>([file](CDeviceFootprint& footprint) { Load(file, footprint); });
    });
    for (const Peer* peer : Peers()) {
        // tinyxml2 refuses elements that are nested so deep.
        if (peer->load == nullptr || (document == "deep" && peer == &Tinyxml2)) {
            continue;
        }
        Register("load/" + document + "/" + peer->name, [file, peer] {
            return OnNewSubject<Footprint>([file, peer](Footprint& footprint) { peer->load(file, footprint); });
        });
    }
}

/// The operation, done once before: a virtual machine may have to get pages for a new file from its host first.
Operation DoneOnce(Operation operation)
{
    operation.measured();
    operation.end();
    return operation;
}

void RegisterSave(const std::string& document)
{
    const std::string file = FileOf(document);
    Register("save/" + document + "/nyxconfig", [file] {
        const auto footprint = Loaded(file);
        return DoneOnce({[footprint] { Save(*footprint, folder); },
                         [footprint] { std::remove(footprint->GetFullFilenameOfLastSave().c_str()); }});
    });
    for (const Peer* peer : Peers()) {
        if (peer->save == nullptr) {
            continue;
        }
        Register("save/" + document + "/" + peer->name, [file, peer] {
            const std::string copy = folder + "/copy.xml";
            std::remove(copy.c_str());
            return DoneOnce({[footprint = LoadedByPeer(file), peer, copy] {
                                 const std::string digest = Digest(*footprint);
                                 footprint->checksum.assign(digest.begin(), digest.end());
                                 peer->save(*footprint, copy);
                             },
                             [copy] { std::remove(copy.c_str()); }});
        });
    }
}

void RegisterDigest(const std::string& document)
{
    const std::string file = FileOf(document);
    Register("digest/" + document + "/nyxconfig",
             [file]() -> Operation { return {[footprint = Loaded(file)] { Validate(*footprint); }}; });
    Register("digest/" + document + "/OpenSSL", [file]() -> Operation {
        return {[footprint = LoadedByPeer(file)] {
            const std::string digest = Digest(*footprint);
            Expect(std::wstring(digest.begin(), digest.end()) == footprint->checksum, "digest");
        }};
    });
}

void RegisterCompare(const std::string& name, const std::string& file, const std::string& otherFile)
{
    Register("compare/" + name + "/nyxconfig", [file, otherFile]() -> Operation {
        const auto rules = std::make_shared<CComparatorRules>();
        CDefaultHistoryComparatorRulesFactory().CreateRules(*rules);
        return {[lhs = Loaded(file), rhs = Loaded(otherFile), rules] { Compare(*lhs, *rhs, *rules); }};
    });
    Register("compare/" + name + "/hash map", [file, otherFile]() -> Operation {
        return {
            [lhs = LoadedByPeer(file), rhs = LoadedByPeer(otherFile)] { Expect(IsSame(*lhs, *rhs), "comparison"); }};
    });
}

/// What an application gives the facade for BIOS and operating system, without which there is no save.
template<class Interface>
class Program : public Interface
{
public:
    std::wstring getName() const override { return L"name"; }
    std::wstring getVersion() const override { return L"1.00"; }
    std::wstring getPartNumber() const override { return L"1234.5678.02"; }
    std::wstring getPartChangeIndex() const override { return L"01.00"; }
};

struct Facade
{
    Facade() = default;
    Facade(const Facade&) = delete;
    Facade& operator=(const Facade&) = delete;
    ~Facade() { NyxTest::DeleteItems(config); }

    KvOrdo::CNyxConfig config;
};

/// Both write a link file.
void RegisterFacade()
{
    Register("facade/typical/CNyxConfig", [] {
        return OnNewSubject<Facade>([](Facade& facade) {
            KvOrdo::CNyxConfig& config = facade.config;
            config.loadFile(FileOf("typical"), true);
            KvOrdo::SoftwareDataDescItem& software = *config.getSoftwareData();
            software.setBiosItem(std::make_unique<Program<KvOrdo::IBiosDescItem>>().release());
            software.setOperatingSystemItem(std::make_unique<Program<KvOrdo::IOperatingSystemDescItem>>().release());
            config.saveFile(folder, true);
        });
    });
    Register("facade/typical/CDeviceFootprint", [] {
        return OnNewSubject<CDeviceFootprint>([](CDeviceFootprint& footprint) {
            Load(FileOf("typical"), footprint);
            Expect(footprint.Save(folder), "save with a link file");
        });
    });
}

void RegisterAll()
{
    for (const char* document : {"typical", "wide-text", "large", "huge", "deep"}) {
        RegisterLoad(document);
        RegisterSave(document);
        RegisterDigest(document);
    }
    RegisterCompare("typical", FileOf("typical"), FileOf("typical"));
    RegisterCompare("typical shuffled", FileOf("typical"), ShuffledFileOf("typical"));
    RegisterCompare("large shuffled", FileOf("large"), ShuffledFileOf("large"));
    RegisterCompare("large", FileOf("large"), FileOf("large"));
    RegisterCompare("huge", FileOf("huge"), FileOf("huge"));
    RegisterFacade();
}

int Run(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: benchmarks FOLDER [--only-files | OPTIONS OF GOOGLE BENCHMARK]\n";
        return 2;
    }
    folder = argv[1];
    MakeFiles();
    CheckPeers("typical");
    CheckPeers("wide-text");
    if (argc == 3 && std::strcmp(argv[2], "--only-files") == 0) {
        return 0;
    }
    argv[1] = argv[0];
    ++argv;
    --argc;
    RegisterAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace

} // namespace bench

int main(int argc, char** argv)
{
    try {
        return bench::Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "benchmarks: " << error.what() << "\n";
        return 1;
    }
}
