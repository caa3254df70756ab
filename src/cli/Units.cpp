#include "Units.h"

#include <cstdio>

#include "ModemLink.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

std::string ByteText(quint64 bytes) {
    static const char* const units[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (bytes < 1024)
        return std::to_string(bytes) + " B";
    double value = static_cast<double>(bytes) / 1024.0;
    std::size_t unit = 0;
    // 1023.96 MiB would round to "1024.0 MiB": such a value shows in the next unit.
    while (value >= 1023.95 && unit + 1 < std::size(units)) {
        value /= 1024.0;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f %s", value, units[unit]);
    return text;
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
