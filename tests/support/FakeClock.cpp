#include "FakeClock.h"

namespace NyxTest
{

namespace
{

bool g_isFake = false;
std::time_t g_now = 0;

std::time_t RealTime()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
}

} // namespace

FakeClock::~FakeClock()
{
    g_isFake = false;
}

void FakeClock::Set(std::time_t now)
{
    g_now = now;
    g_isFake = true;
}

void FakeClock::Advance(std::time_t seconds)
{
    g_now += seconds;
}

} // namespace NyxTest

// Visible, so that the library's calls arrive here.
extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* result)
{
    const std::time_t now = NyxTest::g_isFake ? NyxTest::g_now : NyxTest::RealTime();
    if (result != nullptr) {
        *result = now;
    }
    return now;
}
