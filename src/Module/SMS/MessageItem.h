#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

// Box type names. The store file names two of the boxes differently ("DRAFT", "ACHIEVEBOX"); both
// spellings stay as they are, existing files and items use them.
inline const QString SMS_BOX_OUTBOX = QStringLiteral("OUTBOX");
inline const QString SMS_BOX_SENDBOX = QStringLiteral("SENDBOX");
inline const QString SMS_BOX_DRAFT = QStringLiteral("DRAFTDBOX");
inline const QString SMS_BOX_ACHIVE = QStringLiteral("ACHIVEBOX");

// Keys of one message dictionary.
inline const QString SMS_KEY_NUMBERS = QStringLiteral("NUMBERS");         // array of recipient strings
inline const QString SMS_KEY_CONTENT = QStringLiteral("CONTENT");         // the text
inline const QString SMS_KEY_TAG = QStringLiteral("TAG");                 // read tag, "READ" by default
inline const QString SMS_KEY_STORAGE = QStringLiteral("STORAGE");         // "LOCAL" by default
inline const QString SMS_KEY_CREATE_TIME = QStringLiteral("CREATE_TIME"); // date
inline const QString SMS_KEY_MSG_REF = QStringLiteral("MSG_REF");         // number
inline const QString SMS_KEY_BOX = QStringLiteral("BOX");                 // box type name

// One locally kept message: a handle on one dictionary. Copies of a MessageItem share the dictionary, so
// a change made through any copy shows in the store that holds it; isSameItem() tells whether two handles
// are the same message (as opposed to two messages with equal content).
class MessageItem {
public:
    // An item around an empty dictionary.
    MessageItem();
    // An item around (a copy of) the given dictionary, as read from the store file.
    static MessageItem initWithDictionary(const QVariantMap& dictionary);

    // Null strings and an invalid date stand for missing arguments and get the defaults: tag "READ",
    // storage "LOCAL", the current date and time, box "OUTBOX"; content "" and message reference 0.
    static MessageItem createMessageItem(const QStringList& numbers, const QString& content,
                                         const QString& readtag, const QString& storage,
                                         const QDateTime& time, qint64 msgRef, const QString& boxType);
    // The given recipients and text in the outbox, stored locally, with the other defaults.
    static MessageItem createMessageItemByNumbers(const QStringList& numbers, const QString& content);

    // The dictionary itself (shared with every copy of this item).
    QVariantMap& getMessageDictionary() const { return *_dictionary; }
    bool isSameItem(const MessageItem& other) const { return _dictionary == other._dictionary; }

    QStringList getNumbers() const;
    // No list given stores a list holding one empty string.
    void setNumbers(const QStringList* numbers);
    void setNumbers(const QStringList& numbers) { setNumbers(&numbers); }
    // The first recipient, "" when there is none.
    QString getFristNumber() const;

    QString getContent() const;
    void setContent(const QString& content);
    QString getTag() const;
    void setTag(const QString& tag);
    QString getStorage() const;
    void setStorage(const QString& storage);
    QDateTime getCreateTime() const;
    void setCreateTime(const QDateTime& time);
    qint64 getMsgRef() const;
    void setMsgRef(qint64 msgRef);
    QString getBoxType() const;
    void setBoxType(const QString& boxType);

private:
    std::shared_ptr<QVariantMap> _dictionary;
};
