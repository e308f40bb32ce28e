#ifndef NYXCONFIG_ERRORREPORT_H
#define NYXCONFIG_ERRORREPORT_H

#include <string>

namespace KvOrdo
{

/// Writes the text and a line end to the narrow error stream.
void WriteError(const std::string& text);

/// Writes the text and a line end to the wide error stream. Where the process's standard error can not take wide text
/// any more, the text goes to the narrow stream instead of nowhere.
void WriteError(const std::wstring& text);

/// Writes the text and a line end to the narrow error stream; then, with throwOnError, throws CNyxConfigException with
/// it.
void ReportError(const std::string& text, bool throwOnError);

} // namespace KvOrdo

#endif
