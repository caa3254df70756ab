#pragma once

#include "RecordCoding.h"

#include <QMetaType>
#include <QString>

// Phonebook requests and results. Storage codes are those of the AT sublayer's phonebook family.

// nStore / nStoreIn: the SIM's phonebook, or the modem's own (any code but the SIM's).
inline constexpr qint32 kSimStore = 0;
inline constexpr qint32 kModemStore = 1;

// One entry of the "MESSAGE_PB_INIT_LIST" result; also the argument of "MESSAGE_PB_UPDATE_ITEM".
struct BLPbItem {
    qint32 nStore = 0;
    QString strName;
    QString strNumber;
    qint32 nIndex = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPbItem& other) const = default;
};

// Argument of "MESSAGE_PB_ADD_ITEM"; the device chooses the index.
struct BLPBNewItem {
    qint32 nStoreIn = 0;
    QString strName;
    QString strNumber;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPBNewItem& other) const = default;
};

// Argument of "MESSAGE_PB_DELETE_ITEM".
struct BLPBDeleteItem {
    qint32 nStoreIn = 0;
    qint32 nIndex = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPBDeleteItem& other) const = default;
};

// Result of "MESSAGE_PB_GET_STORAGE_INFO".
struct BLPBStorageInfo {
    qint32 nSimTotal = 0;
    qint32 nSimUsed = 0;
    qint32 nMeTotal = 0;
    qint32 nMeUsed = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPBStorageInfo& other) const = default;
};

// Result of "MESSAGE_PB_GET_CONSTRAINT": the longest number and name each storage accepts.
struct BLPbConstraint {
    qint32 nMeMaxNumberLen = 0;
    qint32 nMeMaxNameLen = 0;
    qint32 nSimMaxNumberLen = 0;
    qint32 nSimMaxNameLen = 0;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLPbConstraint& other) const = default;
};

Q_DECLARE_METATYPE(BLPbItem)
Q_DECLARE_METATYPE(BLPBNewItem)
Q_DECLARE_METATYPE(BLPBDeleteItem)
Q_DECLARE_METATYPE(BLPBStorageInfo)
Q_DECLARE_METATYPE(BLPbConstraint)
