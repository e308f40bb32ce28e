#ifndef NYXCONFIG_DEBUG_H
#define NYXCONFIG_DEBUG_H

#include "VelaExport.h"

#include <QString>

/**
 * The trace modules of the firmware. The numbers belong to the firmware: never renumber. Only those that this library
 * uses have a name here. In the global namespace, which the symbols of `KvOrdo::Debug` depend on.
 */
enum moduleId : int
{
    moduleIdConfiguration = 2 ///< the instrument's configuration, to which the device footprint belongs
};

namespace KvOrdo
{

/**
 * The switchable trace channel of the instrument, given by libvelatrace.
 *
 * These declarations are the binary interface of the firmware's library: the parameter types and the names are part of
 * it, and the meaning of the numbers is the firmware's. Both operations may be called from any thread.
 */
class VELA_EXPORT Debug
{
public:
    /// True if trace is on for this module and level; cheap enough to be asked before any text is made.
    static bool isActive(moduleId module, int level, int channel);

    /**
     * Writes one line to the trace channel.
     * @param module   who traces
     * @param channel  as given to isActive()
     * @param text     the line, without a line end
     * @param level    as given to isActive()
     *
     * The last three arguments are the firmware's; callers without need of them pass 0, a null pointer and -1.
     */
    static void println(moduleId module, int channel, const QString& text, int level, int, const char*, int);
};

} // namespace KvOrdo

#endif
