#include "Commands.h"
#include "DiffText.h"
#include "Differences.h"
#include "HistoryEntries.h"
#include "Json.h"
#include "Loading.h"
#include "Redaction.h"
#include "Terminal.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

struct COptions
{
    std::string oldFile;
    std::string newFile;
    bool json = false;
    bool redact = false;
};

bool Load(const std::string& file, CDeviceFootprint& document, CRedaction& redaction, const COutputs& outputs)
{
    std::string error;
    std::vector<std::string> unknownTags;
    if (!LoadFootprint(file, document, error, &unknownTags)) {
        outputs.messages << "footprint: " << error << "\n";
        return false;
    }
    for (const std::string& tag : unknownTags) {
        outputs.messages << "footprint: " << Harmless(file) << ": left out, not known: " << Harmless(tag) << "\n";
    }
    redaction.Learn(document);
    return true;
}

ExitStatus Diff(const COptions& options, const COutputs& outputs)
{
    CDeviceFootprint oldDocument;
    CDeviceFootprint newDocument;
    CRedaction redaction(options.redact);
    // Both, so that one run says all that is wrong.
    const bool isOldLoaded = Load(options.oldFile, oldDocument, redaction, outputs);
    if (!Load(options.newFile, newDocument, redaction, outputs) || !isOldLoaded) {
        return eFailed;
    }
    // As the library does it: what is not intact is not compared.
    const bool isOldDamaged = StateOf(oldDocument) == EEntryState::eWrongChecksum;
    const CExplanation explanation = Explain(oldDocument, newDocument);
    const CDiffText text(oldDocument, newDocument, explanation, redaction);
    const bool isEntryNeeded = isOldDamaged || !explanation.isSame;
    if (options.json) {
        TJson json;
        json["old"] = redaction.Text(options.oldFile);
        json["new"] = redaction.Text(options.newFile);
        json["differences"] = text.Json(false);
        json["oldIsDamaged"] = isOldDamaged;
        json["verdict"] = explanation.isSame ? "same" : "differs";
        json["needsNewEntry"] = isEntryNeeded;
        WriteJson(outputs.data, json);
    } else {
        text.Write(outputs.data, outputs.colour, 0, false);
        std::string verdict = explanation.isSame ? "same: " : "differs: ";
        verdict += isEntryNeeded ? "needs a new history entry" : "needs no new history entry";
        if (isOldDamaged) {
            verdict += ", as the checksum of the old footprint is wrong";
        }
        verdict += " (" + text.Summary() + ")";
        outputs.data << Styled(verdict, isEntryNeeded ? EStyle::eBad : EStyle::eGood, outputs.colour) << "\n";
    }
    return text.Count() == 0 && !isOldDamaged ? eGood : eFindings;
}

} // namespace

void AddDiff(CLI::App& program, TCommand& selected)
{
    CLI::App* const command = program.add_subcommand(
        "diff", "Show what is different between two footprints, and why that makes a history entry.\n"
                "A \"!\" marks the differences that decide, with the rule; the rules are the library's default ones.\n"
                "Entries of lists are paired by what identifies them. The last line gives the library's verdict:\n"
                "whether NEW needs a new history entry if OLD is the latest one.");
    const auto options = std::make_shared<COptions>();
    command->add_option("OLD", options->oldFile, "Footprint file, such as the latest entry of a history")->required();
    command->add_option("NEW", options->newFile, "Footprint file to compare with it")->required();
    command->add_flag("--json", options->json, "Write the differences as JSON");
    command->add_flag("--redact", options->redact,
                      "Hide serial numbers, device ids and persons; what is equal stays equal");
    command->footer(Examples({{"footprint diff before.xml after.xml", "what has changed"},
                              {"footprint diff --json before.xml after.xml", "for other programs"}}));
    command->callback(
        [options, &selected]() { selected = [options](const COutputs& outputs) { return Diff(*options, outputs); }; });
}

} // namespace footprint
