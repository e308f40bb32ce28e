#include "Commands.h"
#include "DiffText.h"
#include "Differences.h"
#include "HistoryEntries.h"
#include "Json.h"
#include "Loading.h"
#include "Redaction.h"
#include "Terminal.h"

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace footprint
{

namespace fs = std::filesystem;
using namespace KvDeviceFootprint;

namespace
{

struct COptions
{
    std::string folder;
    bool json = false;
    bool redact = false;
};

const char* NameOf(EEntryState state)
{
    switch (state) {
    case EEntryState::eIntact:
        return "intact";
    case EEntryState::eNoChecksum:
        return "noChecksum";
    case EEntryState::eWrongChecksum:
        return "wrongChecksum";
    default:
        return "unreadable";
    }
}

const char* WordsFor(EEntryState state)
{
    switch (state) {
    case EEntryState::eIntact:
        return "intact";
    case EEntryState::eNoChecksum:
        return "no checksum";
    case EEntryState::eWrongChecksum:
        return "damaged: wrong checksum";
    default:
        return "unreadable";
    }
}

/// Goes through a history, with two entries at a time in memory.
class CHistoryCommand
{
public:
    CHistoryCommand(const COptions& options, const COutputs& outputs)
        : m_options(options), m_outputs(outputs), m_redaction(options.redact)
    {
    }

    ExitStatus Run()
    {
        std::error_code error;
        const fs::file_type type = fs::status(m_options.folder, error).type();
        if (type != fs::file_type::directory) {
            const bool isMissing = type == fs::file_type::not_found;
            return Fail(isMissing ? "no such folder" : (error ? error.message() : "is no folder"));
        }
        const std::vector<CHistoryName> names = HistoryNames(m_options.folder);
        m_latest = LatestName(m_options.folder);
        if (names.empty() && !m_latest.isThere) {
            return Fail("no history entries (DeviceFootprint_<deviceId>_<date>.xml) in this folder");
        }
        for (const CHistoryName& name : names) {
            AddEntry(name);
        }
        const bool isLatestWrong = m_latest.isDangling || !m_latest.isThere;
        if (m_options.json) {
            WriteJson(m_outputs.data, TJson{{"folder", m_redaction.Text(m_options.folder)},
                                            {"latest", m_latest.isThere ? TJson(Shown(m_latest.file)) : TJson()},
                                            {"latestIsThere", m_latest.isThere && !m_latest.isDangling},
                                            {"entries", std::move(m_entries)}});
        } else {
            WriteSummary(names.size());
        }
        return m_damaged != 0 || isLatestWrong ? eFindings : eGood;
    }

private:
    struct CEntry
    {
        CHistoryName name;
        CDeviceFootprint document;
        EEntryState state = EEntryState::eUnreadable;
    };

    ExitStatus Fail(const std::string& why) const
    {
        m_outputs.messages << "footprint: " << Harmless(m_options.folder) << ": " << why << "\n";
        return eFailed;
    }

    std::string Shown(const std::string& file) const { return m_redaction.Text(file); }

    void AddEntry(const CHistoryName& name)
    {
        m_redaction.DeviceId(name.deviceId); // may be all that is known of the device
        auto entry = std::make_unique<CEntry>();
        entry->name = name;
        const std::string file = (fs::path(m_options.folder) / name.file).string();
        std::string error;
        std::vector<std::string> unknownTags;
        if (LoadFootprint(file, entry->document, error, &unknownTags)) {
            entry->state = StateOf(entry->document);
            m_redaction.Learn(entry->document);
        }
        const std::string beginning = Harmless(file) + ": ";
        if (error.rfind(beginning, 0) == 0) {
            error.erase(0, beginning.size());
        }
        m_damaged += IsDamaged(entry->state) ? 1U : 0U;
        if (m_options.json) {
            m_entries.push_back(Json(*entry, error));
        } else {
            Write(*entry, error);
            for (const std::string& tag : unknownTags) {
                m_outputs.messages << "footprint: " << Harmless(Shown(file))
                                   << ": left out, not known: " << Harmless(tag) << "\n";
            }
        }
        m_isFirst = false;
        m_isFormerDamaged = IsDamaged(entry->state);
        if (entry->state != EEntryState::eUnreadable) {
            m_former = std::move(entry);
        }
    }

    bool IsLatest(const CEntry& entry) const { return m_latest.isThere && m_latest.file == entry.name.file; }

    void Write(const CEntry& entry, const std::string& error)
    {
        const bool isBad = IsDamaged(entry.state);
        m_outputs.data << Styled(Harmless(Shown(entry.name.file)), EStyle::eHeading, m_outputs.colour) << "  "
                       << Styled(WordsFor(entry.state), isBad ? EStyle::eBad : EStyle::eGood, m_outputs.colour)
                       << (error.empty() ? "" : ": " + m_redaction.Text(error)) << (IsLatest(entry) ? "  (latest)" : "")
                       << "\n";
        if (entry.state == EEntryState::eUnreadable) {
            return;
        }
        if (m_former == nullptr) {
            m_outputs.data << (m_isFirst ? "  the first entry\n" : "  no entry before it can be read\n");
            return;
        }
        if (m_isFormerDamaged) {
            m_outputs.data << "  the entry before is damaged, which makes a new one by itself\n";
        }
        const CExplanation explanation = Explain(m_former->document, entry.document);
        const CDiffText text(m_former->document, entry.document, explanation, m_redaction);
        m_outputs.data << "  " << text.Summary() << ", to " << Harmless(Shown(m_former->name.file)) << "\n";
        text.Write(m_outputs.data, m_outputs.colour, 4, true);
        if (explanation.isSame && !m_isFormerDamaged) {
            m_outputs.data << "    the default rules ask for no entry here: other rules, or another program, made it\n";
        }
    }

    TJson Json(const CEntry& entry, const std::string& error)
    {
        TJson json;
        json["file"] = Shown(entry.name.file);
        json["date"] = entry.name.date.empty() ? TJson() : TJson(entry.name.date);
        json["isLatest"] = IsLatest(entry);
        json["state"] = NameOf(entry.state);
        json["error"] = error.empty() ? TJson() : TJson(m_redaction.Text(error));
        json["comparedWith"] = TJson();
        if (entry.state == EEntryState::eUnreadable || m_former == nullptr) {
            return json;
        }
        const CExplanation explanation = Explain(m_former->document, entry.document);
        const CDiffText text(m_former->document, entry.document, explanation, m_redaction);
        json["comparedWith"] = Shown(m_former->name.file);
        json["entryBeforeIsDamaged"] = m_isFormerDamaged;
        json["verdict"] = explanation.isSame ? "same" : "differs";
        json["differences"] = text.Count();
        json["deciding"] = text.Json(true);
        return json;
    }

    void WriteSummary(std::size_t count)
    {
        std::string summary = std::to_string(count) + (count == 1 ? " entry" : " entries");
        summary += m_damaged == 0 ? ", none damaged" : ", " + std::to_string(m_damaged) + " damaged";
        std::string latest;
        if (!m_latest.isThere) {
            latest = "; no file .latest names the latest one";
        } else if (m_latest.isDangling) {
            latest = "; .latest names a file that is not there: " + Shown(m_latest.file);
        }
        const bool isBad = m_damaged != 0 || !latest.empty();
        m_outputs.data << Styled(Harmless(summary + latest), isBad ? EStyle::eBad : EStyle::eGood, m_outputs.colour)
                       << "\n";
    }

    const COptions& m_options;
    const COutputs& m_outputs;
    CRedaction m_redaction;
    CLatestName m_latest;
    std::unique_ptr<CEntry> m_former; ///< the last one that could be read
    bool m_isFirst = true;
    bool m_isFormerDamaged = false; ///< the one just before, readable or not
    std::size_t m_damaged = 0;
    TJson m_entries = TJson::array();
};

} // namespace

void AddHistory(CLI::App& program, TCommand& selected)
{
    CLI::App* const command = program.add_subcommand(
        "history", "Show the entries of a history folder, and what decided each step.\n"
                   "The entries come by their dates, with the latest marked, each intact or not. Below each stands\n"
                   "what made it: the differences to the entry before that decide, with the rule.");
    const auto options = std::make_shared<COptions>();
    command->add_option("FOLDER", options->folder, "History folder, with its DeviceFootprint_*.xml and .latest")
        ->required();
    command->add_flag("--json", options->json, "Write the history as JSON");
    command->add_flag("--redact", options->redact,
                      "Hide serial numbers, device ids and persons; what is equal stays equal");
    command->footer(Examples({{"footprint history history/", "what has happened to the device"},
                              {"footprint history --json history/", "for other programs"}}));
    command->callback([options, &selected]() {
        selected = [options](const COutputs& outputs) { return CHistoryCommand(*options, outputs).Run(); };
    });
}

} // namespace footprint
