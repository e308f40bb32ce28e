#include "FillFootprint.h"

#include <list>
#include <string>

namespace NyxTest
{

using namespace KvDeviceFootprint;

namespace
{

class Filler
{
public:
    explicit Filler(const FillAmount& amount) : m_amount(amount) {}

    void Fill(CElementNode& element)
    {
        std::list<CReadOnlyAttribute*> attributes;
        element.GetAttributeNodes(attributes);
        for (CReadOnlyAttribute* attribute : attributes) {
            if (attribute->IsEmpty() && attribute->GetNodeName() != "checksum") {
                attribute->Set(NextValue(attribute->GetNodeName()));
            }
        }
        std::list<CElementNode*> children;
        element.GetChildElements(children);
        for (CElementNode* child : children) {
            if (!FillList(*child)) {
                Fill(*child);
            }
        }
    }

private:
    std::wstring NextValue(const std::string& name)
    {
        ++m_number;
        std::wstring value = WidenText(name) + L"-" + std::to_wstring(m_number) + L"-v";
        if (m_number % 5 == 0) {
            value += L" <&>\"'\t\n\u00e9\u20ac\U0001F600";
            value += static_cast<wchar_t>(-28);
        }
        return value;
    }

    bool FillList(CElementNode& element)
    {
        return FillDevices(element) || FillSoftware(element) ||
               FillPlainList<CHardware, CMaintenance, CMaintenanceInfo, CMaintenanceTask, CProduct, CProgrammablePart,
                             CProperty, CService, CTestInstruction>(element);
    }

    template<class... T>
    bool FillPlainList(CElementNode& element)
    {
        return (FillListOf<T>(element) || ...);
    }

    template<class T>
    bool FillListOf(CElementNode& element)
    {
        auto* list = dynamic_cast<CElementNodeList<T>*>(&element);
        if (list == nullptr) {
            return false;
        }
        for (std::size_t i = 0; i < m_amount.entries; ++i) {
            Fill(list->CreateEntry());
        }
        return true;
    }

    bool FillSoftware(CElementNode& element)
    {
        if (dynamic_cast<CSoftwareList*>(&element) == nullptr) {
            return false;
        }
        if (m_softwareLevel < m_amount.softwareLevels) {
            ++m_softwareLevel;
            FillListOf<CSoftware>(element);
            --m_softwareLevel;
        }
        return true;
    }

    bool FillDevices(CElementNode& element)
    {
        auto* list = dynamic_cast<CConnectedDeviceList*>(&element);
        if (list == nullptr) {
            return false;
        }
        if (m_deviceLevel < m_amount.deviceLevels) {
            ++m_deviceLevel;
            FillListOf<CConnectedDevice>(element);
            --m_deviceLevel;
        }
        for (CConnectedDevice& device : *list) {
            std::string checksum;
            device.ComputeChecksum(checksum);
            device.m_checksum.Set(checksum);
        }
        return true;
    }

    FillAmount m_amount;
    std::size_t m_number = 0;
    std::size_t m_softwareLevel = 0;
    std::size_t m_deviceLevel = 0;
};

} // namespace

void FillFootprint(CDeviceFootprintData& footprint, const FillAmount& amount)
{
    Filler(amount).Fill(footprint);
}

} // namespace NyxTest
