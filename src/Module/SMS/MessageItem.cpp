#include "MessageItem.h"

#include <QVariantList>

namespace {

QVariantList toVariantList(const QStringList& strings) {
    QVariantList list;
    list.reserve(strings.size());
    for (const QString& text : strings) {
        list.append(text);
    }
    return list;
}

QString valueOr(const QString& value, const QString& fallback) {
    return value.isNull() ? fallback : value;
}

} // namespace

MessageItem::MessageItem() : _dictionary(std::make_shared<QVariantMap>()) {}

MessageItem MessageItem::initWithDictionary(const QVariantMap& dictionary) {
    MessageItem item;
    *item._dictionary = dictionary;
    return item;
}

MessageItem MessageItem::createMessageItem(const QStringList& numbers, const QString& content,
                                           const QString& readtag, const QString& storage,
                                           const QDateTime& time, qint64 msgRef, const QString& boxType) {
    MessageItem item;
    QVariantMap& dictionary = *item._dictionary;
    dictionary.insert(SMS_KEY_NUMBERS, toVariantList(numbers));
    dictionary.insert(SMS_KEY_CONTENT, valueOr(content, QStringLiteral("")));
    dictionary.insert(SMS_KEY_TAG, valueOr(readtag, QStringLiteral("READ")));
    dictionary.insert(SMS_KEY_STORAGE, valueOr(storage, QStringLiteral("LOCAL")));
    dictionary.insert(SMS_KEY_CREATE_TIME, time.isValid() ? time : QDateTime::currentDateTime());
    dictionary.insert(SMS_KEY_MSG_REF, msgRef);
    dictionary.insert(SMS_KEY_BOX, valueOr(boxType, SMS_BOX_OUTBOX));
    return item;
}

MessageItem MessageItem::createMessageItemByNumbers(const QStringList& numbers, const QString& content) {
    return createMessageItem(numbers, content, QString(), QStringLiteral("LOCAL"), QDateTime(), 0,
                             SMS_BOX_OUTBOX);
}

QStringList MessageItem::getNumbers() const {
    QStringList numbers;
    const QVariantList list = _dictionary->value(SMS_KEY_NUMBERS).toList();
    for (const QVariant& number : list) {
        numbers.append(number.toString());
    }
    return numbers;
}

void MessageItem::setNumbers(const QStringList* numbers) {
    _dictionary->insert(SMS_KEY_NUMBERS,
                        numbers ? toVariantList(*numbers) : QVariantList{QStringLiteral("")});
}

QString MessageItem::getFristNumber() const {
    const QVariantList list = _dictionary->value(SMS_KEY_NUMBERS).toList();
    return list.isEmpty() ? QStringLiteral("") : list.first().toString();
}

QString MessageItem::getContent() const {
    return _dictionary->value(SMS_KEY_CONTENT).toString();
}

void MessageItem::setContent(const QString& content) {
    _dictionary->insert(SMS_KEY_CONTENT, content);
}

QString MessageItem::getTag() const {
    return _dictionary->value(SMS_KEY_TAG).toString();
}

void MessageItem::setTag(const QString& tag) {
    _dictionary->insert(SMS_KEY_TAG, tag);
}

QString MessageItem::getStorage() const {
    return _dictionary->value(SMS_KEY_STORAGE).toString();
}

void MessageItem::setStorage(const QString& storage) {
    _dictionary->insert(SMS_KEY_STORAGE, storage);
}

QDateTime MessageItem::getCreateTime() const {
    return _dictionary->value(SMS_KEY_CREATE_TIME).toDateTime();
}

void MessageItem::setCreateTime(const QDateTime& time) {
    _dictionary->insert(SMS_KEY_CREATE_TIME, time);
}

qint64 MessageItem::getMsgRef() const {
    return _dictionary->value(SMS_KEY_MSG_REF).toLongLong();
}

void MessageItem::setMsgRef(qint64 msgRef) {
    _dictionary->insert(SMS_KEY_MSG_REF, msgRef);
}

QString MessageItem::getBoxType() const {
    return _dictionary->value(SMS_KEY_BOX).toString();
}

void MessageItem::setBoxType(const QString& boxType) {
    _dictionary->insert(SMS_KEY_BOX, boxType);
}
