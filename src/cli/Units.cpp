#include "Units.h"

#include <cstdio>

#include "LocaleFormat.h"
#include "ModemLink.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

std::string ByteText(quint64 bytes) {
    return LocaleFormat::dataSize(bytes, QLocale::c()).toStdString();
}

std::string RateText(quint64 bytesPerSecond) {
    return ByteText(bytesPerSecond) + "/s";
}

std::string DurationText(quint64 seconds) {
    char text[40];
    std::snprintf(text, sizeof(text), "%llu:%02u:%02u", static_cast<unsigned long long>(seconds / 3600),
                  static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60));
    return text;
}

std::string SignalLevelText(int level, int dbm) {
    if (level < 0 || level > 5)
        return "unknown";
    const std::string text = std::to_string(level) + "/5";
    return dbm < 0 ? text + " (" + std::to_string(dbm) + " dBm)" : text;
}

int ReadSignalDbm(ModemLink& link) {
    constexpr int kTimeoutMs = 5000;
    const QVariantMap response = link.call(MESSAGE_NETWORK_GET_SIGNAL_DBM, {}, kTimeoutMs);
    return WorkNotification::GetErrorCode(response) == WORKER_OK
               ? WorkNotification::GetValueObject(response).toInt()
               : 0;
}
