#ifndef NYXCONFIG_ITEMOWNER_H
#define NYXCONFIG_ITEMOWNER_H

#include <list>
#include <memory>

namespace KvOrdo
{

class CMaintenanceDataDescItem;
class CMaintenanceDescItem;
class SoftwareDescItem;

/// Deletes items that a load has made and then lost by an exception, with all that they hold. What the items' own
/// destructors leave to the application (tasks, nested software) has no other owner yet.
struct CItemDeleter
{
    void operator()(CMaintenanceDescItem* item) const;
    void operator()(CMaintenanceDataDescItem* item) const;
    void operator()(SoftwareDescItem* item) const;
    template<class Item>
    void operator()(Item* item) const
    {
        delete item;
    }
};

/// An item under construction.
template<class Item>
using CItemOwner = std::unique_ptr<Item, CItemDeleter>;

/// Items under construction.
template<class Item>
using CItemOwners = std::list<CItemOwner<Item>>;

/// Gives the items away, as pointers to their interface.
template<class Interface, class Item>
std::list<Interface*> Release(CItemOwners<Item>& owners)
{
    std::list<Interface*> items;
    for (CItemOwner<Item>& owner : owners) {
        items.push_back(owner.get());
    }
    for (CItemOwner<Item>& owner : owners) {
        static_cast<void>(owner.release());
    }
    return items;
}

} // namespace KvOrdo

#endif
