#include "ExportRun.h"

#include "ExportDatabase.h"
#include "ExportPaths.h"
#include "ExportProgress.h"
#include "ExportPseudonyms.h"
#include "ExportText.h"
#include "Loading.h"
#include "Terminal.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <unordered_set>

#include <sched.h>

namespace footprint
{

namespace fs = std::filesystem;

namespace
{

std::size_t Cores()
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    return sched_getaffinity(0, sizeof cores, &cores) == 0 ? static_cast<std::size_t>(CPU_COUNT(&cores)) : 1;
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& with)
{
    for (std::size_t place = text.find(what); place != std::string::npos; place = text.find(what, place)) {
        text.replace(place, what.size(), with);
        place += with.size();
    }
}

/// The words for a failure without the file's name in front, which has a column and a place of its own.
std::string WithoutName(const std::string& error, const std::string& path)
{
    const std::string front = Harmless(path) + ": ";
    return error.compare(0, front.size(), front) == 0 ? error.substr(front.size()) : error;
}

bool LoadValid(const std::string& file, KvDeviceFootprint::CDeviceFootprint& document, std::string& error)
{
    if (!LoadFootprint(file, document, error)) {
        return false;
    }
    if (!document.ValidateChecksum()) {
        error = "the checksum is wrong";
        return false;
    }
    return true;
}

/// One export from beginning to end.
class CExportRun
{
public:
    CExportRun(const CExportOptions& options, const COutputs& outputs)
        : m_options(options), m_outputs(outputs), m_paths(options.paths),
          m_progress(outputs.messages, outputs.progress, outputs.progress ? CExportPaths::Count(options.paths) : 0)
    {
        if (m_options.jobs == 0) {
            m_options.jobs = Cores();
        }
        if (!m_options.load) {
            m_options.load =
                m_options.verify ? TExportLoader(LoadValid) : [](const auto& file, auto& document, auto& error) {
                    return LoadFootprint(file, document, error);
                };
        }
        if (m_options.redact) {
            m_pseudonyms = std::make_unique<CExportPseudonyms>();
        }
    }

    /// Brings a database up to date.
    void ToDatabase(CExportDatabase& database)
    {
        if (m_pseudonyms) {
            database.m_shownPath = [this](const std::string& path) { return ShownPath(path); };
        }
        database.m_commitInterval = m_options.commitInterval;
        m_database = &database;
        LoadAll([&](std::vector<CExportAnswer>& answers) { database.Store(answers); });
        m_dropped = database.Finish(!m_paths.IsIncomplete());
    }

    /// Writes records to standard output.
    void ToStream()
    {
        std::int64_t number = 0;
        LoadAll([&](const std::vector<CExportAnswer>& answers) {
            for (const CExportAnswer& answer : answers) {
                WriteExportStream(answer, ++number, ShownPath(answer.task.path), m_outputs.data);
            }
            if (!m_outputs.data) {
                throw std::runtime_error("can not write to standard output");
            }
        });
    }

    ExitStatus Status()
    {
        m_progress.Say(std::to_string(m_files) + " files: " + std::to_string(m_files - m_unchanged) + " read, " +
                       std::to_string(m_unchanged) + " unchanged, " + std::to_string(m_dropped) + " dropped; " +
                       std::to_string(m_damaged) + " damaged");
        return m_damaged == 0 ? eGood : eFindings;
    }

private:
    using TStore = std::function<void(std::vector<CExportAnswer>& answers)>;

    void LoadAll(const TStore& store)
    {
        const TStore count = [&](std::vector<CExportAnswer>& answers) {
            for (CExportAnswer& answer : answers) {
                Count(answer);
            }
            store(answers);
        };
        CExportWorkers::CSettings settings;
        settings.processes = m_options.jobs;
        settings.timeout = m_options.timeout;
        settings.load = m_options.load;
        if (m_pseudonyms) {
            settings.pseudonym = [this](const std::string& attribute, const std::string& value) {
                return m_pseudonyms->Value(attribute, value);
            };
        }
        CExportWorkers(settings).Run([&](CExportTask& task) { return Next(task, count); }, count);
    }

    /// The next file that is to be loaded.
    bool Next(CExportTask& task, const TStore& store)
    {
        std::string error;
        while (m_paths.Next(task, error)) {
            if (m_ahead.count(task.path) != 0 || IsKnown(task)) {
                continue;
            }
            m_ahead.insert(task.path);
            if (error.empty()) {
                return true;
            }
            std::vector<CExportAnswer> answers(1);
            answers.front().task = task;
            answers.front().error = error;
            store(answers);
        }
        return false;
    }

    /// Whether nothing is to be done for a file; notes what the database knows of it.
    bool IsKnown(CExportTask& task)
    {
        if (m_database == nullptr) {
            return false;
        }
        const std::optional<CExportDatabase::CKnown> known = m_database->Find(task);
        if (!known) {
            return false;
        }
        task.formerKey = known->key;
        if (!known->isUnchanged) {
            return false;
        }
        if (m_database->Keep(known->key)) {
            ++m_files;
            ++m_unchanged;
            if (!known->error.empty()) {
                Damaged(task.path, known->error);
            }
            m_progress.Show(m_files);
        }
        return true;
    }

    void Count(CExportAnswer& answer)
    {
        ++m_files;
        if (!answer.error.empty()) {
            answer.error = WithoutName(answer.error, answer.task.path);
            Damaged(answer.task.path, answer.error);
            if (m_pseudonyms) {
                ReplaceAll(answer.error, answer.task.path, ShownPath(answer.task.path));
                ReplaceAll(answer.error, Harmless(answer.task.path), ShownPath(answer.task.path));
            }
        }
        m_ahead.erase(answer.task.path);
        m_progress.Show(m_files);
    }

    void Damaged(const std::string& path, const std::string& error)
    {
        ++m_damaged;
        m_progress.Say(Harmless(path) + ": " + Harmless(error));
    }

    std::string ShownPath(const std::string& path) const { return m_pseudonyms ? m_pseudonyms->Path(path) : path; }

    CExportOptions m_options;
    const COutputs& m_outputs;
    CExportPaths m_paths;
    CExportProgress m_progress;
    std::unique_ptr<CExportPseudonyms> m_pseudonyms;
    CExportDatabase* m_database = nullptr;
    std::unordered_set<std::string> m_ahead; // files that are being loaded
    std::uint64_t m_files = 0;
    std::uint64_t m_unchanged = 0;
    std::uint64_t m_damaged = 0;
    std::uint64_t m_dropped = 0;
};

/// A redacted database is made anew, under another name until it is complete: what is hidden has another name in each
/// run, and a part of it must not stay.
void MakeRedacted(CExportRun& run, const std::string& file)
{
    if (fs::exists(file)) {
        const CExportDatabase former(file); // of an export and of nobody else, or it throws
    }
    const std::string unfinished = file + ".new";
    fs::remove(unfinished);
    try {
        CExportDatabase database(unfinished, CExportDatabase::ESafety::eDisposable);
        run.ToDatabase(database);
    } catch (...) {
        fs::remove(unfinished);
        throw;
    }
    fs::rename(unfinished, file);
}

void UpdateDatabase(CExportRun& run, const CExportOptions& options, const std::string& file)
{
    if (options.redact) {
        MakeRedacted(run, file);
        return;
    }
    CExportDatabase database(file);
    run.ToDatabase(database);
}

void UpdateText(CExportRun& run, const CExportOptions& options, EExportText form)
{
    const std::string& folder = options.output;
    fs::create_directories(folder);
    const std::string file = folder + "/fleet.sqlite";
    UpdateDatabase(run, options, file);
    std::int64_t token = 0;
    {
        CExportDatabase database(file);
        if (database.IsWritten(ExportTextName(form)) && HasExportText(folder, form)) {
            return;
        }
        token = database.BeginWriting(ExportTextName(form));
    }
    WriteExportText(file, folder, form, options.jobs == 0 ? Cores() : options.jobs);
    CExportDatabase(file).EndWriting(ExportTextName(form), token);
}

} // namespace

ExitStatus RunExport(const CExportOptions& options, const COutputs& outputs)
{
    const bool isSqlite = options.format == "sqlite";
    const EExportText form = options.format == "csv" ? EExportText::eCsv : EExportText::eNdjson;
    if (options.output.empty() && (isSqlite || form == EExportText::eCsv)) {
        throw std::runtime_error(options.format + " needs a place for the output: -o OUT");
    }
    CExportRun run(options, outputs);
    if (options.output.empty()) {
        run.ToStream();
    } else if (isSqlite) {
        UpdateDatabase(run, options, options.output);
    } else {
        UpdateText(run, options, form);
    }
    return run.Status();
}

} // namespace footprint
