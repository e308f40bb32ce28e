// The property store of a firmware: other values than the stand-in has, and each call is recorded.

#include "VelaProperties.h"

#include "CallRecord.h"

int VelaProperties::getIntegerProperty(const QString& group, const QString& key, int defaultValue, int scope)
{
    RecordCall("getIntegerProperty %s %s %d %d", group.toLatin1().constData(), key.toLatin1().constData(), defaultValue,
               scope);
    return key == QLatin1String("Switch") ? 1 : defaultValue;
}

QString VelaProperties::getStringProperty(const QString& group, const QString& key, const QString& defaultValue,
                                          int scope, bool* found)
{
    RecordCall("getStringProperty %s %s \"%s\" %d %s", group.toLatin1().constData(), key.toLatin1().constData(),
               defaultValue.toLatin1().constData(), scope, found == nullptr ? "null" : "given");
    return key == QLatin1String("Text") ? QString::fromLatin1("text of the firmware") : defaultValue;
}
