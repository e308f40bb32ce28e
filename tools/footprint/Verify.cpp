#include "Verify.h"

#include "Checks.h"
#include "ChecksLink.h"
#include "Commands.h"
#include "DeviceFootprint.h"
#include "Json.h"
#include "LineMap.h"
#include "Loading.h"
#include "Terminal.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <system_error>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;

namespace
{

struct COptions
{
    std::vector<std::string> paths;
    bool json = false;
    bool quiet = false;
};

bool IsLinkFile(const std::string& file)
{
    return fs::path(file).filename() == CDeviceFootprint::DeviceFootprintLinkFileName;
}

void VerifyFootprint(const std::string& file, std::istream& input, CFindings& findings)
{
    CDeviceFootprint document;
    std::string error;
    const bool isLoaded = LoadFootprint(file, document, error);
    const CLineMap lines = MapLines(input, findings);
    if (isLoaded) {
        CheckFootprint(document, lines, findings);
    } else if (lines.isWhole) {
        const std::string name = Harmless(file) + ": ";
        findings.Add(1, "/", "load", error.substr(error.compare(0, name.size(), name) == 0 ? name.size() : 0));
    } else {
        findings.Add(lines.stop.line, lines.stop.path, lines.stop.rule, lines.stop.text);
    }
}

/// Goes through a folder and all below it. Links to folders are not followed, for they can lead in a circle.
void CollectFiles(const fs::path& folder, std::vector<std::string>& files, std::vector<CVerdict>& troubles)
{
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        const fs::file_type type = entry->status(ignored).type();
        if (entry->symlink_status(ignored).type() == fs::file_type::directory) {
            CollectFiles(entry->path(), files, troubles);
        } else if (entry->path().extension() == ".xml" &&
                   (type == fs::file_type::regular || type == fs::file_type::none ||
                    type == fs::file_type::not_found)) {
            files.push_back(entry->path().string()); // also a link that leads nowhere: somebody misses the file
        }
    }
    if (error) {
        troubles.push_back({folder.string(), error.message(), {}});
    }
}

TJson ToJson(CVerdict& verdict)
{
    TJson findings = TJson::array();
    for (const CFinding& finding : verdict.findings.InOrder()) {
        findings.push_back(
            {{"line", finding.line}, {"path", finding.path}, {"rule", finding.rule}, {"text", finding.text}});
    }
    return {{"file", verdict.file}, {"findings", findings}, {"count", verdict.findings.Count()}};
}

/// Takes what is found, file by file, and sums it up.
class CReport
{
public:
    CReport(const COptions& options, const COutputs& outputs) : m_options(&options), m_outputs(&outputs) {}

    void Add(CVerdict& verdict)
    {
        if (!verdict.trouble.empty()) {
            ++m_troubles;
            m_outputs->messages << "footprint: " << Harmless(verdict.file) << ": " << Harmless(verdict.trouble) << "\n";
            m_troublesAsJson.push_back({{"path", verdict.file}, {"text", verdict.trouble}});
            return;
        }
        ++m_files;
        m_findings += verdict.findings.Count();
        m_badFiles += verdict.findings.IsEmpty() ? 0 : 1;
        if (m_options->json) {
            m_filesAsJson.push_back(ToJson(verdict));
        } else if (!m_options->quiet) {
            Write(verdict);
        }
    }

    ExitStatus Finish()
    {
        if (m_files == 0 && m_troubles == 0) {
            m_outputs->messages << "footprint: there is no footprint file to check\n";
            ++m_troubles;
        }
        if (m_options->json) {
            WriteJson(m_outputs->data, {{"files", m_filesAsJson}, {"notChecked", m_troublesAsJson}});
        }
        if (!m_options->quiet) {
            m_outputs->messages << "footprint: " << m_files << (m_files == 1 ? " file" : " files") << " checked, "
                                << m_badFiles << " with findings, " << m_findings
                                << (m_findings == 1 ? " finding" : " findings");
            if (m_troubles > 0) {
                m_outputs->messages << "; not everything could be checked";
            }
            m_outputs->messages << "\n";
        }
        return m_troubles > 0 ? eFailed : m_findings > 0 ? eFindings : eGood;
    }

private:
    void Write(CVerdict& verdict)
    {
        const std::string file = Harmless(verdict.file);
        for (const CFinding& finding : verdict.findings.InOrder()) {
            m_outputs->data << file << ":" << finding.line << ": " << finding.path << ": " << finding.text << " ["
                            << finding.rule << "]\n";
        }
        const std::size_t left = verdict.findings.Count() - verdict.findings.CountOfKept();
        if (left > 0) {
            m_outputs->messages << "footprint: " << file << ": " << left << " more findings are not listed\n";
        }
    }

    const COptions* m_options;
    const COutputs* m_outputs;
    std::size_t m_files = 0;
    std::size_t m_badFiles = 0;
    std::size_t m_findings = 0;
    std::size_t m_troubles = 0;
    TJson m_filesAsJson = TJson::array();
    TJson m_troublesAsJson = TJson::array();
};

ExitStatus Verify(const COptions& options, const COutputs& outputs)
{
    CReport report(options, outputs);
    for (const std::string& path : options.paths) {
        std::vector<CVerdict> troubles;
        for (const std::string& file : FilesToVerify(path, troubles)) {
            CVerdict verdict = VerifyFile(file);
            report.Add(verdict);
        }
        for (CVerdict& trouble : troubles) {
            report.Add(trouble);
        }
    }
    return report.Finish();
}

} // namespace

CVerdict VerifyFile(const std::string& file)
{
    CVerdict verdict = {file, "", {}};
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        verdict.trouble = "is no file that can be read twice";
        return verdict;
    }
    errno = 0;
    std::ifstream input(file, std::ios::binary);
    if (!input.is_open()) {
        verdict.trouble = (error ? error : std::error_code(errno, std::generic_category())).message();
        return verdict;
    }
    const bool isEmpty = input.peek() == std::ifstream::traits_type::eof();
    if (input.bad()) {
        verdict.trouble = "can not be read";
    } else if (isEmpty) {
        verdict.findings.Add(1, "/", "load", "the file is empty");
    } else if (IsLinkFile(file)) {
        CheckLinkFile(input, verdict.findings);
    } else {
        VerifyFootprint(file, input, verdict.findings);
    }
    return verdict;
}

std::vector<std::string> FilesToVerify(const std::string& path, std::vector<CVerdict>& troubles)
{
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) {
        return {path};
    }
    std::vector<std::string> files;
    CollectFiles(path, files, troubles);
    if (files.empty() && troubles.empty()) {
        troubles.push_back({path, "there is no *.xml file below", {}});
    }
    std::sort(files.begin(), files.end());
    return files;
}

void AddVerify(CLI::App& program, TCommand& selected)
{
    CLI::App* const command = program.add_subcommand(
        "verify",
        "Check footprints: whether they load, their checksums, the forms of values, ids and parents, and what "
        "must not be missing or is lost at the next save. A finding is a line 'file:line: element: text "
        "[rule]'.");
    const auto options = std::make_shared<COptions>();
    command->add_option("PATH", options->paths, "Footprint files, or folders with such files in them and below")
        ->required();
    CLI::Option* const json = command->add_flag("--json", options->json, "Write the findings as JSON");
    command->add_flag("-q,--quiet", options->quiet, "Write no findings: the exit status tells")->excludes(json);
    command->footer(Examples({{"footprint verify device.xml", "one file"},
                              {"footprint verify --json archive", "all below a folder, for other programs"}}));
    command->callback([options, &selected]() {
        selected = [options](const COutputs& outputs) { return Verify(*options, outputs); };
    });
}

} // namespace footprint
