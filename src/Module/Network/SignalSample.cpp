#include "SignalSample.h"

namespace {

// The dictionary's number when it is one and within low..high, else fallback.
qint64 Bounded(const QVariantMap& map, const char* key, qint64 low, qint64 high, qint64 fallback) {
    const QVariant value = map.value(QLatin1String(key));
    bool ok = false;
    const qint64 number = value.toLongLong(&ok);
    return ok && value.typeId() != QMetaType::QString && number >= low && number <= high ? number : fallback;
}

} // namespace

int SignalSample::barsOf(int dbm) {
    // CSQ 2, 8, 12, 16 and 20 as dBm: the steps of the status bar's table.
    constexpr int kSteps[] = {-109, -97, -89, -81, -73};
    if (dbm >= 0 || dbm < -200)
        return -1;
    int bars = 0;
    for (const int step : kSteps)
        bars += dbm >= step;
    return bars;
}

const char* SignalSample::qualityWordOf(int dbm) {
    if (dbm >= 0 || dbm < -200)
        return "unknown";
    if (dbm >= -73)
        return "excellent";
    if (dbm >= -85)
        return "good";
    if (dbm >= -97)
        return "fair";
    return dbm > -110 ? "poor" : "no signal";
}

QString SignalSample::cellText() const {
    if (!hasCell())
        return {};
    return QStringLiteral("%1/%2").arg(lac, 0, 16).arg(ci, 0, 16).toUpper();
}

SignalSample SignalSample::fromValue(const QVariant& value) {
    const QVariantMap map = value.toMap();
    SignalSample sample;
    sample.rssiDbm = static_cast<int>(Bounded(map, "RSSI_DBM", -113, -51, 0));
    sample.rscpDbm = static_cast<int>(Bounded(map, "RSCP_DBM", -121, -25, 0));
    sample.ecIoTenths = static_cast<int>(Bounded(map, "ECIO_TENTHS", -245, 0, 1));
    sample.bearer = static_cast<int>(Bounded(map, "BEARER", 0, kUnknownBearer, kUnknownBearer));
    sample.lac = Bounded(map, "LAC", 0, 0xFFFF, -1);
    sample.ci = Bounded(map, "CI", 0, 0xFFFFFFFF, -1);
    if (sample.lac < 0 || sample.ci < 0)
        sample.lac = sample.ci = -1;
    return sample;
}
