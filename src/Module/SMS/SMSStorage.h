#pragma once

#include "MessageItem.h"

#include <QList>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <array>
#include <optional>

// The messages the user writes and sends, kept on the computer: outbox, sent box, drafts and archive.
// One property-list file in the user data folder: "LocalSMS.plist", or "SMSInBox_<IMSI>" per SIM. The file
// is a dictionary of four arrays of message dictionaries under "OUTBOX", "SENDBOX", "DRAFT" and
// "ACHIEVEBOX"; the boxes are looked up by their type names ("OUTBOX", "SENDBOX", "DRAFTDBOX",
// "ACHIVEBOX"). Other keys of the file are kept as they are.
//
// The store is read when it is made, and every change reads the file again under its StoreLock, applies
// itself and writes the file whole, so two processes on one user's data (the app and a tool command) keep
// each other's changes. A missing or unreadable file starts it empty. Writes replace the file in one step,
// so a failed write leaves the old file intact; a leftover of a killed write is merged in at the next read.
class SMSStorage {
public:
    static constexpr int kOK = 0;
    static constexpr int kSaveFailed = 1;
    static constexpr int kNoSuchMessage = 2;
    static constexpr int kUnknownBox = 3;

    // init: the shared "LocalSMS.plist".
    SMSStorage();
    // initByIMSI: the SIM's own "SMSInBox_<IMSI>"; a null or empty IMSI falls back to the shared file.
    explicit SMSStorage(const QString& imsi);

    // Reads the file again, replacing the lists.
    void loadSMS();

    // A box's items or message dictionaries (current content), nothing for an unknown box type name.
    std::optional<QList<MessageItem>> getMessageListByBoxType(const QString& boxType) const;
    std::optional<QVariantList> getMessageDictListByBoxType(const QString& boxType) const;
    QList<MessageItem> getOutBoxList() const;
    QList<MessageItem> getSendBoxList() const;
    QList<MessageItem> getDarftList() const;
    QList<MessageItem> getAchieveBoxList() const;

    // Appends the item to the box named by its "BOX" and writes the file: 0, 1 when the write failed (the
    // item stays in the lists), 3 for an unknown box (nothing changes).
    int saveMessageItem(const MessageItem& item);
    // Removes from the item's box every message with the item's numbers, time (whole seconds) and text,
    // and writes the file; the same results.
    int deletMessageItem(const MessageItem& item);
    // Moves the item to another box in one write: 0, 1 when the write failed (the message stays where it
    // was), 2 when its box no longer holds it, 3 for an unknown box.
    int moveMessageItem(const MessageItem& item, const QString& targetBox);
    // The same for a message that becomes another (a draft sent, an unsent message kept in the outbox):
    // the item leaves its box and the replacement enters its own in one write.
    int replaceMessageItem(const MessageItem& item, const MessageItem& replacement);
    // Writes the whole store (after changing held dictionaries in place), keeping messages another process
    // added meanwhile: 0, or 1 after logging the failure.
    int saveMessageData();

    QString filePath() const { return _strFilePath; }
    QString imsi() const { return _strIMSI; }

private:
    struct Box {
        QString typeName;
        QString fileKey;
        QList<MessageItem> dictionaries; // the file's array, one handle per dictionary
        QList<MessageItem> items;        // the item list, sharing those dictionaries
    };

    void init();
    const Box* findBox(const QString& boxType) const;
    Box* findBox(const QString& boxType);
    void initMessageItemListByBox(Box& box);
    // Call with the store's lock held.
    void readFile();
    int writeFile();
    static bool removeFrom(Box& box, const MessageItem& item);

    std::array<Box, 4> _boxes;
    QString _strFilePath;
    QVariantMap _dictFile;
    QString _strIMSI;
};
