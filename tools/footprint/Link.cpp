#include "Commands.h"
#include "DeviceFootprintLink.h"
#include "Json.h"
#include "Loading.h"
#include "Redaction.h"
#include "Tables.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;
using KvDeviceFootprint::DeviceFootprintLink;

namespace
{

/// What a link file names.
struct CTarget
{
    std::string path; ///< empty if the link file names none
    bool isThere = false;
};

struct CDeviceLink
{
    std::string folder; ///< without its path
    std::string file;
    std::string trouble; ///< why the link file says nothing; empty if it does
    CTarget footprint;
    CTarget history;

    bool IsGood() const { return trouble.empty() && footprint.isThere && (history.path.empty() || history.isThere); }
};

std::string LinkBase()
{
    std::string base;
    CDeviceFootprint().GetDeviceFootprintLinkBasePath(base);
    return base;
}

CDeviceLink ReadLink(const fs::path& folder)
{
    CDeviceLink device;
    device.folder = folder.filename().string();
    device.file = (folder / CDeviceFootprint::DeviceFootprintLinkFileName).string();
    std::error_code error;
    DeviceFootprintLink link;
    if (!fs::exists(device.file, error)) {
        device.trouble = error ? error.message() : "missing";
    } else if (!DeviceFootprintLink::CreateFromFile(device.file, link)) {
        device.trouble = "can not be read, or is no link file";
    } else {
        device.footprint.path = link.getLatestDeviceFootprintPath();
        device.footprint.isThere = fs::is_regular_file(device.footprint.path, error);
        device.history.path = link.getDeviceFootprintHistoryFolder();
        device.history.isThere = fs::is_directory(device.history.path, error);
    }
    return device;
}

/// The links below the base folder, by the names of their folders. None if there is no such folder.
std::vector<CDeviceLink> ReadLinks(const std::string& base)
{
    std::vector<CDeviceLink> devices;
    if (fs::exists(base)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(base)) {
            std::error_code error;
            if (entry.is_directory(error)) {
                devices.push_back(ReadLink(entry.path()));
            }
        }
    }
    std::sort(devices.begin(), devices.end(),
              [](const CDeviceLink& left, const CDeviceLink& right) { return left.folder < right.folder; });
    return devices;
}

/// Hides what the footprint holds and what the folder is named after.
void Redact(CDeviceLink& device, CRedaction& redaction)
{
    if (!redaction.IsOn()) {
        return;
    }
    CDeviceFootprint document;
    std::string error;
    if (device.footprint.isThere && LoadFootprint(device.footprint.path, document, error)) {
        redaction.Learn(document);
    }
    const std::size_t mark = device.folder.rfind('_');
    const std::string hidden = mark == std::string::npos ? redaction.Text(device.folder)
                                                         : redaction.Text(device.folder.substr(0, mark)) + "_" +
                                                               redaction.SerialNumber(device.folder.substr(mark + 1));
    device.file = fs::path(device.file).parent_path().parent_path() / hidden / fs::path(device.file).filename();
    device.folder = hidden;
    device.footprint.path = redaction.Text(device.footprint.path);
    device.history.path = redaction.Text(device.history.path);
}

TJson ToJson(const CTarget& target)
{
    return target.path.empty() ? TJson() : TJson{{"path", target.path}, {"exists", target.isThere}};
}

void WriteText(const std::vector<CDeviceLink>& devices, const COutputs& outputs)
{
    const auto state = [](const CTarget& target) {
        return target.path.empty() ? CCell("not named", EStyle::eFaint)
               : target.isThere    ? CCell("there", EStyle::eGood)
                                   : CCell("missing", EStyle::eBad);
    };
    bool isFirst = true;
    for (const CDeviceLink& device : devices) {
        outputs.data << (isFirst ? "" : "\n") << Styled(Harmless(device.folder), EStyle::eHeading, outputs.colour)
                     << "\n";
        isFirst = false;
        CTable table({"", "", ""});
        if (device.trouble.empty()) {
            table.AddRow({"Footprint", state(device.footprint), device.footprint.path});
            table.AddRow({"History", state(device.history), device.history.path});
        } else {
            table.AddRow({"Link file", CCell(device.trouble, EStyle::eBad)});
        }
        table.Write(outputs.data, outputs.colour);
    }
}

ExitStatus ShowLinks(bool asJson, bool redact, const COutputs& outputs)
{
    const std::string base = LinkBase();
    std::vector<CDeviceLink> devices = ReadLinks(base);
    CRedaction redaction(redact);
    for (CDeviceLink& device : devices) {
        Redact(device, redaction);
    }
    if (asJson) {
        TJson json = {{"folder", base}, {"devices", TJson::array()}};
        for (const CDeviceLink& device : devices) {
            json["devices"].push_back({{"folder", device.folder},
                                       {"linkFile", device.file},
                                       {"trouble", device.trouble.empty() ? TJson() : TJson(device.trouble)},
                                       {"footprint", ToJson(device.footprint)},
                                       {"history", ToJson(device.history)}});
        }
        WriteJson(outputs.data, json);
    } else {
        WriteText(devices, outputs);
    }
    if (devices.empty()) {
        outputs.messages << "footprint: there are no link files in " << base << "\n";
    }
    const bool areGood =
        std::all_of(devices.begin(), devices.end(), [](const CDeviceLink& device) { return device.IsGood(); });
    return areGood ? eGood : eFindings;
}

} // namespace

void AddLink(CLI::App& program, TCommand& selected)
{
    CLI::App* const command =
        program.add_subcommand("link", "List the link files of this machine: each device's footprint and history");
    const auto json = std::make_shared<bool>(false);
    const auto redact = std::make_shared<bool>(false);
    command->add_flag("--json", *json, "Write the list as JSON");
    command->add_flag("--redact", *redact, "Hide serial numbers and device ids in the names");
    command->footer(Examples({{"footprint link", "where the footprints of this machine are"},
                              {"footprint link --json", "for other programs"}}));
    command->callback([json, redact, &selected]() {
        selected = [json, redact](const COutputs& outputs) { return ShowLinks(*json, *redact, outputs); };
    });
}

} // namespace footprint
