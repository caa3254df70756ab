#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

// One signal reading as the views and the history use it, from the worker's "MESSAGE_NETWORK_GET_SIGNAL"
// dictionary. Every field is checked on the way in: a value out of its range reads as unknown.
struct SignalSample {
    static constexpr int kUnknownBearer = 8;

    int rssiDbm = 0;             // -113 .. -51; 0 unknown
    int rscpDbm = 0;             // -121 .. -25; 0 unknown
    int ecIoTenths = 1;          // Ec/Io in tenths of a dB, -245 .. 0; 1 unknown
    int bearer = kUnknownBearer; // 0 no service, 1 GPRS ... 7 GSM
    qint64 lac = -1;             // 0 .. 0xFFFF; -1 unknown
    qint64 ci = -1;              // 0 .. 0xFFFFFFFF; -1 unknown

    bool hasRssi() const { return rssiDbm < 0; }
    bool hasRscp() const { return rscpDbm < 0; }
    bool hasEcIo() const { return ecIoTenths <= 0; }
    bool hasCell() const { return lac >= 0 && ci >= 0; }
    int bars() const { return barsOf(rssiDbm); }
    const char* qualityWord() const { return qualityWordOf(rssiDbm); }
    // Bars 0..5 of a dBm figure as the status bar shows them (the steps of its CSQ table); -1 unknown.
    static int barsOf(int dbm);
    // "excellent", "good", "fair", "poor", "no signal" (-110 dBm and below) or "unknown"; untranslated.
    static const char* qualityWordOf(int dbm);
    // "1A2B/C3D4E5" (area and cell in hexadecimal), "" when unknown.
    QString cellText() const;

    static SignalSample fromValue(const QVariant& value);
    bool operator==(const SignalSample& other) const = default;
};
