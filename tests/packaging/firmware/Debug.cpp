// The trace channel of a firmware: always on, and each call is recorded.

#include "Debug.h"

#include "CallRecord.h"

namespace KvOrdo
{

bool Debug::isActive(moduleId module, int level, int channel)
{
    RecordCall("isActive %d %d %d", static_cast<int>(module), level, channel);
    return true;
}

void Debug::println(moduleId module, int channel, const QString& text, int level, int number, const char* name,
                    int last)
{
    RecordCall("println %d %d \"%s\" %d %d %s %d", static_cast<int>(module), channel, text.toLatin1().constData(),
               level, number, name == nullptr ? "null" : name, last);
}

} // namespace KvOrdo
