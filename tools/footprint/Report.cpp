#include "Commands.h"

#include "ElementWalk.h"
#include "Loading.h"
#include "Redaction.h"
#include "ReportBoards.h"
#include "ReportFile.h"
#include "ReportHistory.h"
#include "ReportPage.h"
#include "ReportValues.h"
#include "Terminal.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;
using KvDeviceFootprint::CDeviceFootprintData;

namespace
{

struct COptions
{
    std::string path;
    std::string page;
    std::string boards;
    bool redact = false;
};

/// The formats of pictures of boards, by the ends of their files' names.
const std::set<std::string> boardFormats = {"dot", "pdf", "png", "svg"};

/// With more of them, dot takes very long.
constexpr std::size_t mostDrawnBoards = 2000;

std::string FormatOf(const std::string& file)
{
    const std::string end = fs::path(file).extension().string();
    return end.empty() ? end : end.substr(1);
}

/// What stands for a file or folder in the page: its name without those around it.
std::string NameOf(const std::string& path)
{
    fs::path name = fs::absolute(path).lexically_normal();
    name = name.has_filename() ? name : name.parent_path();
    return name.filename().string();
}

class CReportCommand
{
public:
    CReportCommand(const COptions& options, const COutputs& outputs)
        : m_options(options), m_outputs(outputs), m_redaction(options.redact)
    {
    }

    ExitStatus Run()
    {
        RefuseInput(m_options.page);
        RefuseInput(m_options.boards);
        m_report.source = NameOf(m_options.path);
        if (!(fs::is_directory(fs::status(m_options.path)) ? LoadFolder() : LoadFile())) {
            return eFailed;
        }
        if (!m_options.boards.empty()) {
            if (m_report.device == nullptr) {
                throw std::runtime_error("no entry can be read, so there are no boards to draw");
            }
            WriteBoards(*m_report.device);
        }
        if (!m_options.page.empty()) {
            WriteOutput(m_options.page, m_outputs.data,
                        [this](std::ostream& output) { WriteReport(output, m_report, m_redaction); });
        }
        return m_isDamaged ? eFindings : eGood;
    }

private:
    /// A report must not replace what it is made of.
    void RefuseInput(const std::string& file) const
    {
        std::error_code error;
        const fs::path path(file);
        if (!file.empty() && fs::exists(path, error) &&
            (fs::equivalent(path, m_options.path, error) ||
             (path.filename().string().rfind("DeviceFootprint_", 0) == 0 && path.extension() == ".xml") ||
             path.filename() == CDeviceFootprint::LatestHistoryEntryFileName)) {
            throw std::runtime_error(file + " is a footprint; the report needs another file");
        }
    }

    bool LoadFile()
    {
        std::string error;
        std::vector<std::string> unknownTags;
        if (!LoadFootprint(m_options.path, m_document, error, &unknownTags)) {
            m_outputs.messages << "footprint: " << error << "\n";
            return false;
        }
        m_redaction.Learn(m_document);
        m_report.device = &m_document;
        m_report.integrity = StateOf(m_document);
        m_isDamaged = m_report.integrity == EEntryState::eWrongChecksum;
        if (m_isDamaged) {
            m_outputs.messages << "footprint: " << Harmless(m_options.path) << ": wrong checksum\n";
        }
        constexpr std::size_t mostTags = 20;
        for (std::size_t index = 0; index < std::min(unknownTags.size(), mostTags); ++index) {
            m_report.remarks.push_back("Not known and left out: " + Shortened(Harmless(unknownTags[index]), 200));
        }
        if (unknownTags.size() > mostTags) {
            m_report.remarks.push_back("and " + std::to_string(unknownTags.size() - mostTags) + " more of this kind");
        }
        return true;
    }

    bool LoadFolder()
    {
        m_history = ReadReportHistory(m_options.path, m_redaction);
        if (m_history.entries.empty()) {
            m_outputs.messages << "footprint: " << Harmless(m_options.path)
                               << ": no history entries (DeviceFootprint_<deviceId>_<date>.xml) in this folder\n";
            return false;
        }
        m_report.history = &m_history;
        m_report.device = m_history.shown.get();
        m_report.remarks = m_history.remarks;
        std::size_t damaged = 0;
        for (const CReportEntry& entry : m_history.entries) {
            if (IsDamaged(entry.state)) {
                ++damaged;
                m_outputs.messages << "footprint: " << Harmless(m_options.path + "/" + entry.file) << ": "
                                   << (entry.error.empty() ? "wrong checksum" : entry.error) << "\n";
            }
        }
        m_isDamaged = damaged != 0;
        if (m_isDamaged) {
            m_report.remarks.push_back(std::to_string(damaged) + " of " + std::to_string(m_history.entries.size()) +
                                       (damaged == 1 ? " entries is damaged." : " entries are damaged."));
        }
        if (m_report.device != nullptr) {
            m_report.integrity = m_history.entries[m_history.shownEntry].state;
            if (!m_history.entries[m_history.shownEntry].isLatest) {
                m_report.remarks.emplace_back("The latest entry can not be read; below is the last one that can.");
            }
        }
        return true;
    }

    void WriteBoards(const CDeviceFootprintData& data)
    {
        CBoardBox device;
        device.name = m_redaction.Value(data.m_deviceData.m_partName.IsEmpty() ? data.m_deviceData.m_type
                                                                               : data.m_deviceData.m_partName);
        device.name = device.name.empty() ? "Device" : device.name;
        device.number = m_redaction.Value(data.m_deviceData.m_deviceId);
        const std::vector<CBoardPlace> tree = BoardTree(data.m_hardwareData.m_hardwareList);
        const std::string graph = BoardGraph(BoardBoxes(tree, m_redaction, ""), device);
        const std::string format = FormatOf(m_options.boards);
        if (format == "dot") {
            WriteOutput(m_options.boards, m_outputs.data, [&graph](std::ostream& output) { output << graph; });
        } else if (tree.size() > mostDrawnBoards) {
            throw std::runtime_error(std::to_string(tree.size()) +
                                     " boards are too many for a picture by dot; .dot gives the graph itself");
        } else {
            ReplaceFile(m_options.boards, [&](const std::string& temporary) { RunDot(graph, format, temporary); });
        }
    }

    const COptions& m_options;
    const COutputs& m_outputs;
    CRedaction m_redaction;
    CDeviceFootprint m_document;
    CReportHistory m_history;
    CReport m_report;
    bool m_isDamaged = false;
};

} // namespace

void AddReport(CLI::App& program, TCommand& selected)
{
    CLI::App* const command = program.add_subcommand(
        "report", "Write a page about a footprint or a history, for a browser or a printer.\n"
                  "The page is one file and needs no network: identity, the boards as a picture, tables that sort,\n"
                  "and of a history folder what has changed when, and the operating hours over time.");
    const auto options = std::make_shared<COptions>();
    command->add_option("PATH", options->path, "A footprint file, or a history folder with its DeviceFootprint_*.xml")
        ->required();
    auto* const page =
        command->add_option("-o,--output", options->page, "Where the page goes; \"-\" is standard output")
            ->type_name("FILE");
    command
        ->add_option("--board-tree", options->boards,
                     "Draw the boards into a file of their own too: .svg, .png or .pdf, which takes Graphviz's\n"
                     "program dot, or .dot, which does not")
        ->type_name("FILE")
        ->check([](const std::string& file) {
            return boardFormats.count(FormatOf(file)) != 0 ? std::string()
                                                           : std::string("must end in .svg, .png, .pdf or .dot");
        });
    command->add_flag("--redact", options->redact,
                      "Hide serial numbers, device ids and persons; equal ones stay equal");
    command->footer(Examples({{"footprint report device.xml -o device.html", "a page about one footprint"},
                              {"footprint report history/ -o history.html", "the same, and how it came to be"},
                              {"footprint report device.xml --board-tree boards.pdf", "the boards alone"}}));
    command->callback([options, &selected, page] {
        if (options->page.empty() && options->boards.empty()) {
            throw CLI::RequiredError(page->get_name());
        }
        selected = [options](const COutputs& outputs) { return CReportCommand(*options, outputs).Run(); };
    });
}

} // namespace footprint
