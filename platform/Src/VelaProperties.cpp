// Stand-in for a PC: the properties stand in an INI file.

#include "VelaProperties.h"

#include <QByteArray>
#include <QFile>
#include <QSettings>
#include <QStringList>
#include <QVariant>

namespace
{

const char* const fileVariable = "NYXCONFIG_PROPERTIES";
const char* const defaultFile = "/etc/nyxconfig/properties.ini";

QString propertiesFile()
{
    const QByteArray fileName = qgetenv(fileVariable);
    return fileName.isEmpty() ? QString::fromLatin1(defaultFile) : QFile::decodeName(fileName);
}

/// The value as it stands in the file; invalid if there is none. Looked up anew each time, so that changes are seen.
QVariant storedValue(const QString& group, const QString& key)
{
    if (key.isEmpty()) {
        return QVariant(); // QSettings would complain about it on the error stream
    }
    QSettings properties(propertiesFile(), QSettings::IniFormat);
    properties.setIniCodec("UTF-8");
    properties.beginGroup(group);
    return properties.value(key);
}

QString toText(const QVariant& value)
{
    // An unquoted text with commas comes as a list.
    return value.type() == QVariant::StringList ? value.toStringList().join(QLatin1String(", ")) : value.toString();
}

} // namespace

int VelaProperties::getIntegerProperty(const QString& group, const QString& key, int defaultValue, int /*scope*/)
{
    bool isNumber = false;
    const int number = toText(storedValue(group, key)).toInt(&isNumber);
    return isNumber ? number : defaultValue;
}

QString VelaProperties::getStringProperty(const QString& group, const QString& key, const QString& defaultValue,
                                          int /*scope*/, bool* found)
{
    const QVariant value = storedValue(group, key);
    if (found != nullptr) {
        *found = value.isValid();
    }
    return value.isValid() ? toText(value) : defaultValue;
}
