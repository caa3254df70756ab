#pragma once

#include <QSettings>
#include <QString>

#include <memory>

// The settings the modem applies again after every start: the storage for new messages ("sms/storage",
// SmsStorage::k...) and the validity period of sent messages ("sms/validity", as "pdu encode --validity"
// takes it). The modem service applies them whenever the modem comes up; the tool, running without the
// service, applies them itself. One file, "dialtoned.ini" in the configuration folder; the tool's earlier
// "dialtone-cli.ini" in the old data folder becomes it when the old places are moved (OldPlaces).
namespace ServiceSettings {

inline const QString kStorageKey = QStringLiteral("sms/storage");
inline const QString kValidityKey = QStringLiteral("sms/validity");

QString path();
std::unique_ptr<QSettings> open();
// Writes one value and keeps the file private.
void save(const QString& key, const QVariant& value);

} // namespace ServiceSettings
