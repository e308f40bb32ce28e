#ifndef NYXCONFIG_CHWTESTUTILITIES_H
#define NYXCONFIG_CHWTESTUTILITIES_H

#include "nyxconfig_export.h"

#include <QString>

namespace KvOrdo
{

/**
 * Test hooks: asks for a property that testers can set, and traces that it is set.
 *
 * `group` and `key` name the property as VelaProperties does. `caller` is the name of the asking operation, for the
 * trace line; an empty one means that nothing is traced. The trace line takes the names as Latin-1 ("?" for any other
 * character) and is cut after 1023 characters. In it "%%" in a name becomes "%", and any other "%" stays as it is.
 * Nothing is kept between calls, which may come from any thread.
 */
class NYXCONFIG_EXPORT CHwTestUtilities
{
public:
    /// The value of a whole-number property, 0 if it is absent. Only the value 1 is traced.
    static int initTestOutput(const QString& group, const QString& key, const QString& caller);

    /// The value of a text property, empty if it is absent. Any other value than the empty one is traced.
    static QString initTestString(const QString& group, const QString& key, const QString& caller);
};

} // namespace KvOrdo

#endif
