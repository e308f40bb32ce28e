#ifndef NYXCONFIG_VIRTUALSLOT_H
#define NYXCONFIG_VIRTUALSLOT_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace NyxTest
{

/// A virtual destructor takes two slots: the complete and the deleting one.
constexpr std::size_t DestructorSlots = 2;

/// The slot of a virtual operation in its class's virtual table. In the Itanium C++ ABI the first word of a pointer to
/// a virtual member is 1 + the byte offset in that table.
template<class Signature, class Class>
std::size_t VirtualSlot(Signature Class::*member)
{
    static_assert(sizeof(member) >= sizeof(std::ptrdiff_t));
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    EXPECT_EQ(word % 2, 1) << "the member is not virtual";
    return static_cast<std::size_t>(word - 1) / sizeof(void*);
}

/// Whether the member is virtual at all.
template<class Signature, class Class>
bool IsVirtual(Signature Class::*member)
{
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    return word % 2 == 1;
}

/// Its one operation takes the first slot behind those of the base.
template<class Base>
class BehindBase : public Base
{
public:
    virtual void Behind() {}
};

/// How many slots the virtual table of a class has.
template<class Base>
std::size_t SlotCount()
{
    return VirtualSlot(&BehindBase<Base>::Behind);
}

} // namespace NyxTest

#endif
