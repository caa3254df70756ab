#pragma once

#include "RecordCoding.h"

#include <QMetaType>
#include <QString>

// PIN requests and results. The state codes are those of the AT sublayer's PIN family.

// Result of "MESSAGE_PIN_GET_INFO": attempts left for the PIN and for the PUK.
struct BLPINInfo {
    qint32 nPinCnt = 0;
    qint32 nPukCnt = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPINInfo& other) const = default;
};

// SIM states of "MESSAGE_PIN_CHECK_STATE" (nState); other values are personalisation locks.
namespace SimState {
inline constexpr qint32 kAbsent = 0;
inline constexpr qint32 kReady = 1;
inline constexpr qint32 kPin = 2;
inline constexpr qint32 kPuk = 3;
inline constexpr qint32 kBlocked = 17;
} // namespace SimState

// Result codes of the PIN tries that the front ends tell apart (the modem's own SIM error numbers).
namespace PinResult {
inline constexpr qint32 kPukRequired = 10;
inline constexpr qint32 kWrongCode = 14; // "incorrect password": an attempt was spent
} // namespace PinResult

// Result of "MESSAGE_PIN_CHECK_STATE": the SIM/PIN state and both attempt counters.
struct BLPinCheckState {
    qint32 nState = 0;
    qint32 nPinCnt = 0;
    qint32 nPukCnt = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPinCheckState& other) const = default;
};

// Argument of "MESSAGE_PIN_ENABLE": switch the PIN request on or off, with the current PIN.
struct BLPINEnableInfo {
    bool blPinEnable = false;
    QString strPinCode;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPINEnableInfo& other) const = default;
};

// Argument of "MESSAGE_PIN_CHANGE".
struct BLPINChangeInfo {
    QString strOldPin;
    QString strNewPin;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPINChangeInfo& other) const = default;
};

// Argument of "MESSAGE_PIN_VERIFY_PUK": the PUK and the PIN to set with it.
struct BLPINVerifyPukInfo {
    QString strPUK;
    QString strNewPin;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPINVerifyPukInfo& other) const = default;
};

Q_DECLARE_METATYPE(BLPINInfo)
Q_DECLARE_METATYPE(BLPinCheckState)
Q_DECLARE_METATYPE(BLPINEnableInfo)
Q_DECLARE_METATYPE(BLPINChangeInfo)
Q_DECLARE_METATYPE(BLPINVerifyPukInfo)
