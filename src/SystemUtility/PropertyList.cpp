#include "PropertyList.h"

#include "BinaryPropertyList.h"
#include "PrivateFile.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QStringList>
#include <QTimeZone>

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

namespace {

// Property-list dates count seconds from 2001-01-01 00:00:00 UTC.
const QDateTime& referenceDate() {
    static const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
    return epoch;
}

constexpr qint64 kMaxFileSize = 64 * 1024 * 1024;
constexpr int kMaxDepth = 256;

struct PlistDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<void, PlistDeleter>;

struct CharDeleter {
    void operator()(char* text) const { std::free(text); }
};
using CharPtr = std::unique_ptr<char, CharDeleter>;

// libplist keeps every integer as 64 bits plus a width; a value above 2^63-1 is either a negative number
// or an unsigned one written as <integer>18446744073709551615</integer>, and only its XML text tells.
bool isNegativeInteger(plist_t node) {
    PlistPtr wrapper(plist_new_array());
    plist_array_append_item(wrapper.get(), plist_copy(node));
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(wrapper.get(), &xml, &length);
    CharPtr owned(xml);
    return xml && QByteArray::fromRawData(xml, length).contains("<integer>-");
}

// An unsigned value above 2^63-1: plist_new_uint would write it as a negative number.
plist_t newLargeUnsigned(quint64 value) {
    const QByteArray xml = "<plist><integer>" + QByteArray::number(value) + "</integer></plist>";
    plist_t node = nullptr;
    plist_from_xml(xml.constData(), static_cast<uint32_t>(xml.size()), &node);
    return node;
}

QVariant toVariant(plist_t node, int depth) {
    if (!node || depth > kMaxDepth) {
        return {};
    }
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return QVariant(value != 0);
    }
    case PLIST_UINT: {
        uint64_t value = 0;
        plist_get_uint_val(node, &value);
        if (value > static_cast<uint64_t>(std::numeric_limits<qint64>::max()) && !isNegativeInteger(node)) {
            return QVariant::fromValue<quint64>(value);
        }
        return QVariant::fromValue<qint64>(static_cast<qint64>(value));
    }
    case PLIST_UID: {
        uint64_t value = 0;
        plist_get_uid_val(node, &value);
        return QVariant::fromValue<quint64>(value);
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return QVariant(value);
    }
    case PLIST_STRING: {
        uint64_t length = 0;
        const char* text = plist_get_string_ptr(node, &length);
        return QVariant(text ? QString::fromUtf8(text, static_cast<qsizetype>(length)) : QString(""));
    }
    case PLIST_DATA: {
        uint64_t length = 0;
        const char* bytes = plist_get_data_ptr(node, &length);
        return QVariant(bytes ? QByteArray(bytes, static_cast<qsizetype>(length)) : QByteArray());
    }
    case PLIST_DATE: {
        int32_t sec = 0;
        int32_t usec = 0;
        plist_get_date_val(node, &sec, &usec);
        return QVariant(referenceDate().addSecs(sec).addMSecs(usec / 1000));
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t count = plist_array_get_size(node);
        for (uint32_t i = 0; i < count; ++i) {
            list.append(toVariant(plist_array_get_item(node, i), depth + 1));
        }
        return list;
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter it = nullptr;
        plist_dict_new_iter(node, &it);
        if (!it) {
            return map;
        }
        for (;;) {
            char* key = nullptr;
            plist_t value = nullptr;
            plist_dict_next_item(node, it, &key, &value);
            CharPtr ownedKey(key);
            if (!value) {
                break;
            }
            map.insert(QString::fromUtf8(key ? key : ""), toVariant(value, depth + 1));
        }
        std::free(it);
        return map;
    }
    default:
        return {};
    }
}

plist_t fromVariant(const QVariant& value, int depth) {
    if (depth > kMaxDepth) {
        return nullptr;
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
        return plist_new_bool(value.toBool() ? 1 : 0);
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        // Negative values are stored two's complement and written back with their sign.
        return plist_new_uint(static_cast<uint64_t>(value.toLongLong()));
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong: {
        const quint64 number = value.toULongLong();
        if (number > static_cast<quint64>(std::numeric_limits<qint64>::max())) {
            return newLargeUnsigned(number);
        }
        return plist_new_uint(number);
    }
    case QMetaType::Float:
    case QMetaType::Double:
        return plist_new_real(value.toDouble());
    case QMetaType::QString:
        return plist_new_string(value.toString().toUtf8().constData());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return plist_new_data(bytes.constData(), static_cast<uint64_t>(bytes.size()));
    }
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        if (!date.isValid()) {
            return nullptr;
        }
        const qint64 msecs = referenceDate().msecsTo(date);
        const qint64 sec = msecs >= 0 ? msecs / 1000 : -((-msecs + 999) / 1000);
        if (sec < std::numeric_limits<int32_t>::min() || sec > std::numeric_limits<int32_t>::max()) {
            return nullptr;
        }
        const qint64 usec = (msecs - sec * 1000) * 1000;
        return plist_new_date(static_cast<int32_t>(sec), static_cast<int32_t>(usec));
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        plist_t array = plist_new_array();
        for (const QVariant& item : value.toList()) {
            if (plist_t child = fromVariant(item, depth + 1)) {
                plist_array_append_item(array, child);
            }
        }
        return array;
    }
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash: {
        plist_t dict = plist_new_dict();
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (plist_t child = fromVariant(it.value(), depth + 1)) {
                plist_dict_set_item(dict, it.key().toUtf8().constData(), child);
            }
        }
        return dict;
    }
    default:
        return nullptr;
    }
}

bool looksLikeXml(const QByteArray& data) {
    qsizetype i = data.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (i < data.size() && (data[i] == ' ' || data[i] == '\t' || data[i] == '\r' || data[i] == '\n')) {
        ++i;
    }
    return i < data.size() && data[i] == '<';
}

} // namespace

QVariant PropertyList::fromData(const QByteArray& data) {
    if (data.isEmpty() || data.size() > kMaxFileSize) {
        return {};
    }
    if (data.startsWith("bplist00")) {
        // libplist 2.2 aborts on some malformed binary lists (a key holding a NUL byte fails an
        // assertion), so binary input is decoded by our own bounds-checked reader.
        return BinaryPropertyList::parse(data);
    }
    if (!looksLikeXml(data)) {
        return {};
    }
    plist_t root = nullptr;
    plist_from_xml(data.constData(), static_cast<uint32_t>(data.size()), &root);
    PlistPtr owned(root);
    return toVariant(root, 0);
}

QByteArray PropertyList::toXml(const QVariant& root) {
    PlistPtr node(fromVariant(root, 0));
    if (!node) {
        return {};
    }
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(node.get(), &xml, &length);
    CharPtr owned(xml);
    return xml ? QByteArray(xml, length) : QByteArray();
}

QVariant PropertyList::read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxFileSize) {
        return {};
    }
    // At most the size checked above: reading up to the limit would set aside a buffer of the whole limit
    // for every file, however small.
    return fromData(file.read(file.size()));
}

QVariantMap PropertyList::readMap(const QString& path) {
    const QVariant root = read(path);
    return root.typeId() == QMetaType::QVariantMap ? root.toMap() : QVariantMap();
}

QVariantList PropertyList::readList(const QString& path) {
    const QVariant root = read(path);
    return root.typeId() == QMetaType::QVariantList ? root.toList() : QVariantList();
}

bool PropertyList::write(const QString& path, const QVariant& root) {
    const QByteArray xml = toXml(root);
    if (xml.isEmpty()) {
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    // A new file gets the umask's mode and a replaced one keeps its old mode: both become the owner's alone.
    // A full disk shows only when the buffer goes out: a failed flush must not be committed.
    if (!PrivateFile::restrictDescriptor(file.handle()) || file.write(xml) != xml.size() || !file.flush()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}
