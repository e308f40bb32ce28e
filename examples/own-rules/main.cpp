// An application with rules of its own about what matters in a history, and why two footprints differ by them.
// Usage: own-rules FORMER PRESENT

#include <Comparators.h>
#include <DeviceFootprint.h>
#include <Differences.h>

#include <iostream>
#include <memory>

using namespace KvDeviceFootprint;

namespace
{

/// What decides by default, and the part name.
class CNamedDeviceComparator : public CDeviceDataComparator
{
public:
    bool CompareInternal(const CDeviceData& lhs, const CDeviceData& rhs) const override
    {
        return CDeviceDataComparator::CompareInternal(lhs, rhs) && lhs.m_partName.IsEqual(rhs.m_partName, true);
    }
};

/// For an instrument that is running all day: operating hours are no news.
class CApplicationRules : public CComparatorRulesFactory
{
public:
    void CreateRules(CComparatorRules& rules) const override
    {
        CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
        // The set takes them over, in place of those that it had for these elements.
        rules.Add(std::make_unique<CNamedDeviceComparator>().release());
        rules.Add(std::make_unique<CComparatorDefault<CMaintenanceData>>().release());
    }
};

bool Load(CDeviceFootprint& footprint, const char* file)
{
    if (!footprint.Load(file)) {
        std::cerr << file << ": " << CDeviceFootprint::GetLastError() << "\n";
        return false;
    }
    return true;
}

void Print(const footprint::CDifference& difference)
{
    using EKind = footprint::CDifference::EKind;
    std::cout << difference.path << " ";
    switch (difference.kind) {
    case EKind::eChanged:
        std::cout << difference.attribute << ": \"" << difference.oldValue << "\", now \"" << difference.newValue
                  << "\"";
        break;
    case EKind::eAdded:
        std::cout << "was added";
        break;
    case EKind::eRemoved:
        std::cout << "was removed";
        break;
    case EKind::eOrder:
    case EKind::eParent:
        std::cout << "is at another place";
        break;
    case EKind::eUnequal:
        std::cout << "is different to the rule, whatever is done";
        break;
    }
    std::cout << " (" << difference.ruleClass << ")\n";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: own-rules FORMER PRESENT\n";
        return 2;
    }
    CDeviceFootprint former;
    CDeviceFootprint present;
    if (!Load(former, argv[1]) || !Load(present, argv[2])) {
        return 2;
    }
    // The same rules go to SaveAndWriteHistory() as its last argument.
    const footprint::CExplanation explanation = footprint::Explain(former, present, CApplicationRules());
    for (const footprint::CDifference& difference : explanation.differences) {
        if (difference.Decides()) {
            Print(difference);
        }
    }
    std::cout << (explanation.isSame ? "nothing that matters has changed\n" : "a new entry for the history\n");
    return 0;
}
