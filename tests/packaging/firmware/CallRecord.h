#ifndef NYXCONFIG_CALLRECORD_H
#define NYXCONFIG_CALLRECORD_H

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

/// Appends a line to the file that the environment variable CALL_RECORD names.
__attribute__((format(printf, 1, 2))) inline void RecordCall(const char* format, ...)
{
    const char* fileName = std::getenv("CALL_RECORD");
    std::FILE* file = fileName == nullptr ? nullptr : std::fopen(fileName, "a");
    if (file == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(file, format, arguments);
    va_end(arguments);
    std::fputc('\n', file);
    std::fclose(file);
}

#endif
