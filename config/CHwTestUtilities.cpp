#include "CHwTestUtilities.h"

#include "TraceOutput.h"
#include "VelaProperties.h"

#include <QByteArray>

namespace KvOrdo
{

namespace
{

const int propertyScope = 2; // defined by the firmware

/**
 * The text of a trace line serves as its own format, with no arguments behind it. The only conversion that needs none
 * is "%%"; of any other, which a name may hold by chance, the "%" is doubled so that it is printed as it stands.
 */
QByteArray formatWithoutArguments(const QByteArray& text)
{
    QByteArray format;
    for (int i = 0; i < text.size(); ++i) {
        format += text.at(i);
        if (text.at(i) == '%') {
            format += '%';
            const bool isPair = i + 1 < text.size() && text.at(i + 1) == '%';
            i += isPair ? 1 : 0;
        }
    }
    return format;
}

void traceProperty(const QString& caller, const char* found, const QString& group, const QString& key,
                   const char* outcome)
{
    const QString text = caller + QLatin1String(found) + group + QLatin1Char('/') + key + QLatin1String(outcome);
    const QByteArray format = formatWithoutArguments(text.toLatin1());
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security" // made safe above
    nyxPrintf<OutpEnabledPolicy, DebugServerOutpPolicy<moduleIdConfiguration, 3, 1, 1024>>(format.constData());
#pragma GCC diagnostic pop
}

} // namespace

int CHwTestUtilities::initTestOutput(const QString& group, const QString& key, const QString& caller)
{
    const int value = VelaProperties::getIntegerProperty(group, key, 0, propertyScope);
    if (value == 1 && !caller.isEmpty()) {
        traceProperty(caller, "(): Trace-O/Ps for [", group, key, "] activated.");
    }
    return value;
}

QString CHwTestUtilities::initTestString(const QString& group, const QString& key, const QString& caller)
{
    QString value = VelaProperties::getStringProperty(group, key, QString(), propertyScope, nullptr);
    if (!value.isEmpty() && !caller.isEmpty()) {
        traceProperty(caller, "(): Test string for [", group, key, "] found.");
    }
    return value;
}

} // namespace KvOrdo
