#ifndef NYXCONFIG_FAKECLOCK_H
#define NYXCONFIG_FAKECLOCK_H

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

    explicit FakeClock(std::time_t now = Start);
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;
    ~FakeClock();

    void Set(std::time_t now);
    void Advance(std::time_t seconds);
    /// Lets each call of time() advance the clock, behind the time that the call gives.
    void AdvanceAtEachCall(std::time_t seconds);
    /// Makes gmtime() and gmtime_r() fail until the end of the clock.
    void FailBreakdown();
};

} // namespace NyxTest

#endif
