#ifndef NYXCONFIG_ERRORREPORT_H
#define NYXCONFIG_ERRORREPORT_H

#include <string>

namespace KvOrdo
{

/// Writes the text and a line end to the narrow or the wide error stream. Where the process's standard error can not
/// take text of that width any more, the text goes to the other stream instead of nowhere.
void WriteError(const std::string& text);
void WriteError(const std::wstring& text);

/// Writes the text and a line end to the narrow error stream; then, with throwOnError, throws CNyxConfigException with
/// it.
void ReportError(const std::string& text, bool throwOnError);

} // namespace KvOrdo

#endif
