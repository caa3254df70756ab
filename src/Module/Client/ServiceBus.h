#pragma once

#include <QString>
#include <QVariantMap>

// Where dialtoned is found on the session bus, and the form of what travels there.
namespace ServiceBus {

inline const QString kServiceName = QStringLiteral("org.dialtone.Modem1");
inline const QString kObjectPath = QStringLiteral("/org/dialtone/Modem1");
inline const QString kInterface = QStringLiteral("org.dialtone.Modem1");
// In a notification's "USER_INFO": the unique bus name of the client whose request it answers, so that
// the client does not take its own answer twice.
inline const QString kClientKey = QStringLiteral("CLIENT");

// A dictionary of the request protocol as D-Bus can carry it: records become dictionaries of their fields
// with "class" naming the record, dates ISO 8601 texts, byte arrays hex texts; values without a value (a
// null text, an invalid date) are left out.
QVariantMap toBus(const QVariantMap& map);
// The other way: what QtDBus hands over (nested containers as QDBusArgument) back into plain values,
// records and lists of records. Keys whose value cannot be read are left out; false when any was.
bool fromBus(const QVariantMap& map, QVariantMap& out);

} // namespace ServiceBus
