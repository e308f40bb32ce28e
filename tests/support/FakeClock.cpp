#include "FakeClock.h"

#include <dlfcn.h>

// The definitions here go before those of the C library, for the library under test as well.
#define NYXTEST_INTERPOSED extern "C" __attribute__((visibility("default")))

namespace
{

bool s_isFake = false;
bool s_breakdownFails = false;
std::time_t s_now = 0;
std::time_t s_step = 0;

template<class Function>
Function* Real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

NYXTEST_INTERPOSED std::time_t time(std::time_t* result) noexcept
{
    std::time_t now = s_now;
    if (!s_isFake) {
        timespec real{};
        clock_gettime(CLOCK_REALTIME, &real);
        now = real.tv_sec;
    }
    s_now += s_step;
    if (result != nullptr) {
        *result = now;
    }
    return now;
}

NYXTEST_INTERPOSED std::tm* gmtime(const std::time_t* seconds) noexcept
{
    static const auto real = Real<std::tm*(const std::time_t*)>("gmtime");
    return s_breakdownFails ? nullptr : real(seconds);
}

NYXTEST_INTERPOSED std::tm* gmtime_r(const std::time_t* seconds, std::tm* result) noexcept
{
    static const auto real = Real<std::tm*(const std::time_t*, std::tm*)>("gmtime_r");
    return s_breakdownFails ? nullptr : real(seconds, result);
}

namespace NyxTest
{

FakeClock::FakeClock(std::time_t now)
{
    Set(now);
}

FakeClock::~FakeClock()
{
    s_isFake = false;
    s_breakdownFails = false;
    s_step = 0;
}

void FakeClock::Set(std::time_t now)
{
    s_now = now;
    s_isFake = true;
}

void FakeClock::Advance(std::time_t seconds)
{
    s_now += seconds;
}

void FakeClock::AdvanceAtEachCall(std::time_t seconds)
{
    s_step = seconds;
}

void FakeClock::FailBreakdown()
{
    s_breakdownFails = true;
}

} // namespace NyxTest
