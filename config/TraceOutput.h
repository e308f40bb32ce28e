#ifndef NYXCONFIG_TRACEOUTPUT_H
#define NYXCONFIG_TRACEOUTPUT_H

#include "Debug.h"

#include <QString>

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace KvOrdo
{

/// Switches nyxPrintf() on at compile time.
struct OutpEnabledPolicy
{
    static constexpr bool isEnabled = true;
};

/// Switches nyxPrintf() off at compile time: nothing is asked, formatted or written.
struct OutpDisabledPolicy
{
    static constexpr bool isEnabled = false;
};

/**
 * Output policy of nyxPrintf(): the text goes to the instrument's trace channel as one line.
 *
 * @tparam module      the trace module in whose name the line is written
 * @tparam level       trace level, asked for and passed on with the line
 * @tparam channel     trace channel, asked for and passed on with the line
 * @tparam bufferSize  size of the buffer on the caller's stack in bytes; a text of bufferSize or more is cut to
 *                     bufferSize - 1 bytes
 */
template<moduleId module, int level, int channel, std::size_t bufferSize>
struct DebugServerOutpPolicy
{
    static_assert(bufferSize > 0, "the terminating zero needs a place");

    /**
     * Formats as printf does, reads the result as Latin-1 and writes it. With the trace switched off it does neither.
     * A text that can not be formatted gives an empty line. Thread-safe; `arguments` is used up.
     */
    __attribute__((format(printf, 1, 0))) static void print(const char* format, va_list arguments)
    {
        if (!Debug::isActive(module, level, channel)) {
            return;
        }
        char buffer[bufferSize];
        if (std::vsnprintf(buffer, bufferSize, format, arguments) < 0) {
            buffer[0] = '\0';
        }
        Debug::println(module, channel, QString::fromLatin1(buffer), level, 0, nullptr, -1);
    }
};

/**
 * Trace output in the manner of printf, put together from two compile-time policies.
 *
 * @tparam EnabledPolicy  OutpEnabledPolicy or OutpDisabledPolicy
 * @tparam OutputPolicy   decides where the text goes: has a static operation print(const char*, va_list)
 * @param format          as for printf; the arguments must match it
 */
template<class EnabledPolicy, class OutputPolicy>
__attribute__((format(printf, 1, 2))) void nyxPrintf([[maybe_unused]] const char* format, ...)
{
    if constexpr (EnabledPolicy::isEnabled) {
        va_list arguments;
        va_start(arguments, format);
        OutputPolicy::print(format, arguments);
        va_end(arguments);
    }
}

} // namespace KvOrdo

#endif
