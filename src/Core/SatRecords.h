#pragma once

#include "RecordCoding.h"

#include <QList>
#include <QMetaType>
#include <QString>

// SIM toolkit requests and results.

// One entry of the card's main menu or of a select-item list: the card's item identifier and its text.
struct BLSatMenuItem {
    qint32 nItemId = 0;
    QString strText;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSatMenuItem& other) const = default;
};

// A proactive command as the toolkit screens show it, read by the toolkit controller from the card's
// listing: the main menu, or what the card sends next. nCommand is the modem's number of the
// command (17 main menu, 11 select item, 1 display text, 2 get inkey, 3 get input, 20 end of the
// dialogue, ...), nType the codec's type of it (-1 for a number the codec does not know). strText is the
// menu's title or the text to show; the get-input fields are filled only for that command.
struct BLSatCommand {
    qint32 nCommand = 0;
    qint32 nType = 0;
    qint32 nDefaultItem = 0; // select item: 0 none
    qint32 nFormat = 0;      // get inkey and get input: 0 digits, 1 default alphabet, 2 UCS2, 3 yes/no
    qint32 nMinLength = 0;   // get input
    qint32 nMaxLength = 0;   // get input
    QString strText;
    QString strDefaultText; // get input
    QList<BLSatMenuItem> lstItems;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSatCommand& other) const = default;
};

// The answer to the command the card sent last, as the toolkit screens give it. nCommand is that
// command's number as BLSatCommand gave it; nResult the general result (0 done, 16 ended by the user,
// 17 one step back). nItemId is the chosen item of a menu, or the answer to a yes/no get inkey (1 yes,
// 0 no) when strText is empty; strText is the key of a get inkey or the text of a get input.
struct BLSatResponse {
    qint32 nCommand = 0;
    qint32 nResult = 0;
    qint32 nItemId = 0;
    QString strText;

    void encodeWithCoder(QDataStream& coder) const;
    void initWithCoder(QDataStream& coder);
    bool operator==(const BLSatResponse& other) const = default;
};

// The toolkit's raw requests carry dictionaries with these keys. "MESSAGE_STK_SELECT_ITEM" takes the
// answer as the modem takes it ("AT+STGR=0,0,2", kCommand) and the character set it was built for
// (kCharSet); it goes out only while the modem still uses that set (kSent). The answers of it, of
// "MESSAGE_STK_GET_MENU" and of "MESSAGE_STK_POLL" hold the card's "+STGI:" listing as the modem gave it
// (kListing, empty while the card has announced nothing) and the set its texts are in (kCharSet, a
// USSD_TE_* number).
namespace SatKey {
inline const QString kCommand = QStringLiteral("COMMAND");
inline const QString kCharSet = QStringLiteral("CHARSET");
inline const QString kSent = QStringLiteral("SENT");
inline const QString kListing = QStringLiteral("LISTING");
} // namespace SatKey

Q_DECLARE_METATYPE(BLSatMenuItem)
Q_DECLARE_METATYPE(BLSatCommand)
Q_DECLARE_METATYPE(BLSatResponse)
