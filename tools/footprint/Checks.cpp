#include "Checks.h"

#include "ChecksForms.h"
#include "Checksum.h"
#include "ElementWalk.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// The library's own digest stops at a connected device with a wrong checksum. This one goes on.
class CDigest
{
public:
    CDigest() : m_stream(m_algorithm), m_writer(m_stream, m_name) { m_algorithm.init(); }

    void Add(const CElementNode& element, bool withChecksum)
    {
        std::vector<const CReadOnlyAttribute*> attributes = AttributesOf(element);
        std::sort(attributes.begin(), attributes.end(), CNodeSorter());
        for (const CReadOnlyAttribute* attribute : attributes) {
            if (withChecksum || attribute->GetNodeName() != "checksum") {
                m_writer.SetAttribute(*attribute);
            }
        }
        std::vector<CStep> steps = StepsBelow(element);
        std::stable_sort(steps.begin(), steps.end(), [](const CStep& left, const CStep& right) {
            return CNodeSorter()(left.element, right.element); // entries have one name and keep their order
        });
        for (const CStep& step : steps) {
            const auto* device = dynamic_cast<const CConnectedDevice*>(step.element);
            if (device != nullptr && !device->m_checksum.IsEmpty()) {
                m_stream.WriteConnectedDeviceLine("checksum=\"" + NarrowText(device->m_checksum.GetValue()) + "\"",
                                                  true);
            } else {
                Add(*step.element, true);
            }
        }
    }

    std::string Result()
    {
        CMD5ChecksumContainer digest;
        std::string text;
        m_algorithm.finalize(digest);
        digest.toHex(text);
        return text;
    }

private:
    const std::string m_name;
    CMD5Checksum m_algorithm;
    CChecksumStream m_stream;
    CXmlStreamWriter m_writer;
};

/// An element with its place in the file.
struct CPlace
{
    const CElementNode& element;
    const CLineNode& node;
    std::size_t line; ///< of the element, or of the next one around it that is in the file
    std::string path;
};

class CChecker
{
public:
    explicit CChecker(CFindings& findings) : m_findings(&findings) {}

    void Check(const CPlace& place)
    {
        CheckForms(place);
        CheckElement(place);
        for (const CPlace& below : PlacesBelow(place)) {
            Check(below);
        }
    }

private:
    static std::vector<CPlace> PlacesBelow(const CPlace& place)
    {
        static const CLineNode nowhere;
        std::vector<CPlace> places;
        std::size_t index = 0;
        for (const CStep& step : StepsBelow(place.element)) {
            const CLineNode& node = index < place.node.below.size() ? place.node.below[index] : nowhere;
            places.push_back(
                {*step.element, node, node.line == 0 ? place.line : node.line, place.path + "/" + step.Text()});
            ++index;
        }
        return places;
    }

    void Note(const CPlace& place, const CReadOnlyAttribute& attribute, const char* rule, const std::string& text)
    {
        m_findings->Add(place.line, place.path + "/@" + attribute.GetNodeName(), rule, text);
    }

    void CheckForms(const CPlace& place)
    {
        for (const CReadOnlyAttribute* attribute : AttributesOf(place.element)) {
            if (attribute->IsEmpty()) {
                continue;
            }
            const CForm* form = FormOf(place.element.GetElementName(), attribute->GetNodeName());
            if (form != nullptr && !form->fits(attribute->GetValue())) {
                Note(place, *attribute, form->rule, Quoted(attribute->GetValue()) + " " + form->words);
            }
        }
    }

    void CheckElement(const CPlace& place)
    {
        const CElementNode& element = place.element;
        if (const auto* footprint = dynamic_cast<const CDeviceFootprintData*>(&element)) {
            CheckChecksum(place, *footprint);
        } else if (const auto* device = dynamic_cast<const CDeviceData*>(&element)) {
            Require(place, device->m_deviceId, "a device needs an id");
            Require(place, device->m_type, "a device needs a type to be saved");
        } else if (const auto* instruction = dynamic_cast<const CTestInstruction*>(&element)) {
            Require(place, instruction->m_version, "a test instruction needs a version");
        } else if (const auto* instructions = dynamic_cast<const CTestInstructionList*>(&element)) {
            CheckTestInstructions(place, *instructions);
        } else if (const auto* service = dynamic_cast<const CService*>(&element)) {
            RequireNumber(place, service->m_serviceCode, "a service needs a code");
        } else if (const auto* task = dynamic_cast<const CMaintenanceTask*>(&element)) {
            Require(place, task->m_name, "a maintenance task needs a name");
            CheckDone(place, task->m_done);
        } else if (const auto* board = dynamic_cast<const CHardware*>(&element)) {
            CheckBoard(place, *board);
        } else if (const auto* boards = dynamic_cast<const CHardwareList*>(&element)) {
            CheckBoards(place, *boards);
        } else if (const auto* product = dynamic_cast<const CProduct*>(&element)) {
            RequireNumber(place, product->m_id, "a product needs an id");
        } else if (const auto* products = dynamic_cast<const CProductList*>(&element)) {
            CheckIds(place, *products);
        } else if (const auto* software = dynamic_cast<const CSoftware*>(&element)) {
            Require(place, software->m_name, "software needs a name to be saved");
        }
    }

    void CheckChecksum(const CPlace& place, const CDeviceFootprintData& device)
    {
        if (device.m_checksum.IsEmpty()) {
            return; // counts as right
        }
        const std::string computed = ChecksumOf(device);
        if (NarrowText(device.m_checksum.GetValue()) != computed) {
            Note(place, device.m_checksum, "checksum",
                 "is " + Quoted(device.m_checksum.GetValue()) + ", but the content has " + Quoted(computed));
        }
    }

    void Require(const CPlace& place, const CReadOnlyAttribute& attribute, const char* words)
    {
        if (attribute.IsEmpty()) {
            Note(place, attribute, "required", words);
        }
    }

    /// Where -1 stands for a number that is not set.
    void RequireNumber(const CPlace& place, const CReadOnlyAttribute& attribute, const std::string& words)
    {
        if (attribute.IsEmpty()) {
            Note(place, attribute, "required", words);
        } else if (Number(attribute.GetValue()) == L"-1") {
            Note(place, attribute, "required", words + "; -1 is none");
        }
    }

    void CheckDone(const CPlace& place, const CReadOnlyAttribute& done)
    {
        if (done.IsEmpty()) {
            Note(place, done, "required", "a maintenance task needs 'true' or 'false'");
        } else if (done.GetValue() != L"true" && done.GetValue() != L"false") {
            Note(place, done, "boolean", Quoted(done.GetValue()) + " is neither 'true' nor 'false'");
        }
    }

    /// The first one of several needs no name either.
    void CheckTestInstructions(const CPlace& place, const CTestInstructionList& instructions)
    {
        std::size_t index = 0;
        const std::vector<CPlace> places = PlacesBelow(place);
        for (const CTestInstruction& instruction : instructions) {
            if (index > 0) {
                Require(places[index], instruction.m_name, "a test instruction behind another one needs a name");
            }
            ++index;
        }
    }

    void CheckBoard(const CPlace& place, const CHardware& board)
    {
        Require(place, board.m_id, "a board needs an id");
        if (NameOfBoard(board.m_name.GetValue()).empty()) {
            Note(place, board.m_name, "required",
                 board.m_name.IsEmpty()
                     ? "a board needs a name"
                     : "a board needs a name in front of variant and option: " + Quoted(board.m_name.GetValue()));
        }
    }

    /// Notes ids that stand in several entries of a list. @return the first place of each id in the list.
    template<class TList>
    std::unordered_map<std::wstring, std::size_t> CheckIds(const CPlace& place, const TList& list)
    {
        std::unordered_map<std::wstring, std::size_t> first;
        const std::vector<CPlace> places = PlacesBelow(place);
        std::size_t index = 0;
        for (const auto& entry : list) {
            if (!entry.m_id.IsEmpty()) {
                const auto [known, isNew] = first.emplace(Number(entry.m_id.GetValue()), index);
                if (!isNew) {
                    Note(places[index], entry.m_id, "unique-id",
                         Quoted(entry.m_id.GetValue()) + " is the id of line " +
                             std::to_string(places[known->second].line) + " already");
                }
            }
            ++index;
        }
        return first;
    }

    void CheckBoards(const CPlace& place, const CHardwareList& boards)
    {
        constexpr std::size_t none = static_cast<std::size_t>(-1);
        const std::unordered_map<std::wstring, std::size_t> first = CheckIds(place, boards);
        const std::vector<CPlace> places = PlacesBelow(place);
        std::vector<std::size_t> parents;
        for (const CHardware& board : boards) {
            parents.push_back(none);
            const std::wstring parentId = Number(board.m_parentId.GetValue());
            const auto parent = first.find(parentId);
            if (parent != first.end()) {
                parents.back() = parent->second;
            } else if (!parentId.empty() && parentId != L"0") { // the facade saves 0 for none
                Note(places[parents.size() - 1], board.m_parentId, "parent",
                     "no board has the id " + Quoted(board.m_parentId.GetValue()));
            }
        }
        CheckCircles(places, parents, none);
    }

    /// Notes the first board of each circle.
    void CheckCircles(const std::vector<CPlace>& places, const std::vector<std::size_t>& parents, std::size_t none)
    {
        std::vector<std::size_t> seenFrom(parents.size(), none);
        for (std::size_t start = 0; start < parents.size(); ++start) {
            std::size_t board = start;
            while (board != none && seenFrom[board] == none) {
                seenFrom[board] = start;
                board = parents[board];
            }
            if (board == none || seenFrom[board] != start) {
                continue;
            }
            std::vector<std::size_t> circle = {board};
            for (std::size_t next = parents[board]; next != board; next = parents[next]) {
                circle.push_back(next);
            }
            const std::size_t lowest = *std::min_element(circle.begin(), circle.end());
            Note(places[lowest], static_cast<const CHardware&>(places[lowest].element).m_parentId, "parent",
                 circle.size() == 1 ? "the board carries itself"
                                    : "the parents of " + std::to_string(circle.size()) + " boards make a circle");
        }
    }

    CFindings* m_findings;
};

} // namespace

std::string ChecksumOf(const CDeviceFootprintData& device)
{
    CDigest digest;
    digest.Add(device, false);
    return digest.Result();
}

void CheckFootprint(const CDeviceFootprint& document, const CLineMap& lines, CFindings& findings)
{
    CChecker(findings).Check({document, lines.root, lines.root.line, "/" + document.GetElementName()});
}

} // namespace footprint
