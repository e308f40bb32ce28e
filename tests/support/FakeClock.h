#ifndef NYXTEST_FAKECLOCK_H
#define NYXTEST_FAKECLOCK_H

#include <ctime>

namespace NyxTest
{

/// While it lives, time() gives a time that stands still, for the library too: the test program's own time() takes the
/// place of the C library's. There is one such clock at a time.
class FakeClock
{
public:
    /// 59 seconds past 08:05 on 1 March 2015, UTC.
    static constexpr std::time_t Start = 1425197159;

    explicit FakeClock(std::time_t now = Start) { Set(now); }
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;
    ~FakeClock();

    void Set(std::time_t now);
    void Advance(std::time_t seconds);
};

} // namespace NyxTest

#endif
