#include "ListClasses.h"

#include "ElementWalk.h"

#include <atomic>
#include <mutex>
#include <numeric>
#include <typeindex>
#include <unordered_map>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// All known list classes. None is ever taken away.
class CRegistry
{
public:
    CRegistry()
    {
        AddAll<CHardwareList, CProgrammableParts, CProductList, CSoftwareList, CMaintenances, CMaintenanceTasks,
               CMaintenanceInfos, CServices, CProperties, CTestInstructionList, CConnectedDeviceList>();
    }

    void Add(std::unique_ptr<CListClass> listClass)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const bool isKnown = std::any_of(m_classes.begin(), m_classes.end(), [&listClass](const auto& known) {
            return known->Type() == listClass->Type();
        });
        if (!isKnown) {
            m_classes.push_back(std::move(listClass));
            ++m_version;
        }
    }

    unsigned Version() const { return m_version; }

    const CListClass* Search(const CElementNode& element) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const CListClass* found = nullptr;
        for (const auto& known : m_classes) {
            if (known->Type() == typeid(element)) {
                return known.get();
            }
            // Those with any list of an entry class come last, in case of several.
            if (known->IsClassOf(element) && (found == nullptr || found->MakeEmpty() == nullptr)) {
                found = known.get();
            }
        }
        return found;
    }

private:
    template<class... L>
    void AddAll()
    {
        (Add(std::make_unique<CListClassOf<L>>()), ...);
        (Add(std::make_unique<CListClassOf<CElementNodeList<typename L::value_type>>>()), ...);
    }

    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<CListClass>> m_classes;
    std::atomic<unsigned> m_version{0};
};

CRegistry& Registry()
{
    static CRegistry s_registry;
    return s_registry;
}

} // namespace

void AddListClass(std::unique_ptr<CListClass> listClass)
{
    Registry().Add(std::move(listClass));
}

const CListClass* FindListClass(const CElementNode& element)
{
    // What class an element is of can be asked very often.
    thread_local std::unordered_map<std::type_index, const CListClass*> s_found;
    thread_local unsigned s_version = 0;
    CRegistry& registry = Registry();
    if (s_version != registry.Version()) {
        s_found.clear();
        s_version = registry.Version();
    }
    const auto [place, isNew] = s_found.try_emplace(typeid(element), nullptr);
    if (isNew) {
        place->second = registry.Search(element);
    }
    return place->second;
}

void CopyTexts(CElementNode& copy, const CElementNode& original)
{
    // Only a device has connected devices.
    const auto* from = dynamic_cast<const CDeviceFootprintData*>(&original);
    auto* to = dynamic_cast<CDeviceFootprintData*>(&copy);
    if (from == nullptr || to == nullptr) {
        return;
    }
    to->m_pConnectedDevices->m_connectedDeviceStrings = from->m_pConnectedDevices->m_connectedDeviceStrings;
    auto device = to->m_pConnectedDevices->begin();
    for (const CConnectedDevice& other : *from->m_pConnectedDevices) {
        if (device == to->m_pConnectedDevices->end()) {
            return;
        }
        CopyTexts(*device, other);
        ++device;
    }
}

namespace
{

void OrderInMemory(CElementNode& copy, const CElementNode& original)
{
    std::list<CElementNode*> children;
    std::list<CElementNode*> originals;
    copy.GetChildElements(children);
    original.GetChildElements(originals);
    auto counterpart = originals.begin();
    for (CElementNode* child : children) {
        if (counterpart == originals.end()) {
            return;
        }
        OrderInMemory(*child, **counterpart++);
    }
    const CListClass* const listClass = children.empty() ? FindListClass(copy) : nullptr;
    if (listClass == nullptr) {
        return;
    }
    const auto entries = listClass->Entries(copy);
    if (!std::is_sorted(entries.begin(), entries.end(), std::less<>())) {
        const auto from = listClass->Entries(original);
        std::vector<std::size_t> order(from.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        listClass->Rebuild(copy, from, order, from.size()); // which does the same for the entries
        return;
    }
    const auto editor = listClass->Edit(copy);
    std::size_t slot = 0;
    for (const CElementNode* entry : listClass->Entries(original)) {
        OrderInMemory(editor->Entry(slot++), *entry);
    }
}

} // namespace

void CompleteCopy(CElementNode& copy, const CElementNode& original)
{
    CopyTexts(copy, original);
    OrderInMemory(copy, original);
}

} // namespace footprint
