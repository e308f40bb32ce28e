#ifndef NYXCONFIG_VELAPROPERTIES_H
#define NYXCONFIG_VELAPROPERTIES_H

#include "VelaExport.h"

#include <QString>

/**
 * The properties that testers of the instrument can set, given by libvelautil.
 *
 * A property is named by a group, in which "/" separates the levels, and a key. These declarations are the binary
 * interface of the firmware's library: the parameter types, the class name and the global namespace are part of it.
 * Both operations may be called from any thread, and neither throws an exception of its own.
 */
class VELA_EXPORT VelaProperties
{
public:
    /**
     * The value of a whole-number property.
     * @param group         group of the property, for instance "TestFeatures/Generic"
     * @param key           name of the property in the group
     * @param defaultValue  the result if the property is absent or no whole number of 32 bits
     * @param scope         defined by the firmware; the stand-in for a PC ignores it
     */
    static int getIntegerProperty(const QString& group, const QString& key, int defaultValue, int scope);

    /**
     * The value of a text property.
     * @param group         group of the property
     * @param key           name of the property in the group
     * @param defaultValue  the result if the property is absent
     * @param scope         defined by the firmware; the stand-in for a PC ignores it
     * @param found         unless null, set to true if the property is present and to false if not
     */
    static QString getStringProperty(const QString& group, const QString& key, const QString& defaultValue, int scope,
                                     bool* found);
};

#endif
