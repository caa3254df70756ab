#include "BinaryPropertyList.h"

#include <QDateTime>
#include <QTimeZone>
#include <QVariantList>
#include <QVariantMap>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

// Layout: "bplist00", the objects, the offset table (one offset per object), and a 32-byte trailer:
// 6 unused bytes, offset size, reference size, object count, top object, offset table position (the last
// three 8 bytes each, big-endian). An object starts with a marker byte: type in the high nibble, size or
// count in the low one (0xF: the count follows as an integer object).
constexpr quint64 kHeaderSize = 8;
constexpr quint64 kTrailerSize = 32;
constexpr int kMaxDepth = 256;
constexpr quint64 kMaxVisits = 1 << 20;

class Reader {
public:
    explicit Reader(const QByteArray& data)
        : _data(reinterpret_cast<const unsigned char*>(data.constData())),
          _size(static_cast<quint64>(data.size())) {}

    QVariant parse() {
        if (_size < kHeaderSize + kTrailerSize + 2 || std::memcmp(_data, "bplist00", kHeaderSize) != 0) {
            return {};
        }
        const unsigned char* trailer = _data + _size - kTrailerSize;
        _offsetSize = trailer[6];
        _refSize = trailer[7];
        const quint64 objects = bigEndian(trailer + 8, 8);
        const quint64 top = bigEndian(trailer + 16, 8);
        _offsetTable = bigEndian(trailer + 24, 8);
        const quint64 tableEnd = _size - kTrailerSize;
        if (_offsetSize < 1 || _offsetSize > 8 || _refSize < 1 || _refSize > 8 || objects == 0 ||
            top >= objects || _offsetTable < kHeaderSize + 1 || _offsetTable > tableEnd ||
            objects > (tableEnd - _offsetTable) / _offsetSize) {
            return {};
        }
        _objects = objects;
        QVariant root;
        return object(top, 0, &root) ? root : QVariant();
    }

private:
    static quint64 bigEndian(const unsigned char* bytes, unsigned count) {
        quint64 value = 0;
        for (unsigned i = 0; i < count; ++i) {
            value = (value << 8) | bytes[i];
        }
        return value;
    }

    // Objects lie between the header and the offset table.
    bool has(quint64 at, quint64 length) const { return at <= _offsetTable && length <= _offsetTable - at; }

    bool readUInt(quint64 at, unsigned bytes, quint64* value) const {
        if (bytes < 1 || bytes > 8 || !has(at, bytes)) {
            return false;
        }
        *value = bigEndian(_data + at, bytes);
        return true;
    }

    bool objectOffset(quint64 index, quint64* offset) const {
        if (index >= _objects) {
            return false;
        }
        *offset = bigEndian(_data + _offsetTable + index * _offsetSize, _offsetSize);
        return *offset >= kHeaderSize && *offset < _offsetTable;
    }

    bool count(quint64 at, unsigned info, quint64* value, quint64* start) const {
        if (info != 0xF) {
            *value = info;
            *start = at + 1;
            return true;
        }
        if (!has(at + 1, 1) || (_data[at + 1] >> 4) != 0x1 || (_data[at + 1] & 0xF) > 3) {
            return false;
        }
        const unsigned bytes = 1u << (_data[at + 1] & 0xF);
        *start = at + 2 + bytes;
        return readUInt(at + 2, bytes, value);
    }

    bool references(quint64 start, quint64 entries, QList<quint64>* refs) const {
        if (entries > _offsetTable / _refSize || !has(start, entries * _refSize)) {
            return false;
        }
        refs->reserve(static_cast<qsizetype>(entries));
        for (quint64 i = 0; i < entries; ++i) {
            refs->append(bigEndian(_data + start + i * _refSize, _refSize));
        }
        return true;
    }

    bool integer(quint64 at, unsigned info, QVariant* out) const {
        if (info <= 3) {
            quint64 value = 0;
            if (!readUInt(at + 1, 1u << info, &value)) {
                return false;
            }
            // 1, 2 and 4 bytes are unsigned; 8 bytes are signed.
            *out = QVariant::fromValue<qint64>(static_cast<qint64>(value));
            return true;
        }
        // 16 bytes: an unsigned value above 2^63-1 (high half zero), or a sign-extended negative one.
        quint64 high = 0;
        quint64 low = 0;
        if (info != 4 || !readUInt(at + 1, 8, &high) || !readUInt(at + 9, 8, &low)) {
            return false;
        }
        if (high == 0 && low > static_cast<quint64>(std::numeric_limits<qint64>::max())) {
            *out = QVariant::fromValue<quint64>(low);
        } else if (high == 0 || (high == ~0ULL && (low >> 63) != 0)) {
            *out = QVariant::fromValue<qint64>(static_cast<qint64>(low));
        } else {
            return false;
        }
        return true;
    }

    bool real(quint64 at, unsigned info, double* out) const {
        quint64 bits = 0;
        if (info == 2 && readUInt(at + 1, 4, &bits)) {
            const auto narrow = static_cast<uint32_t>(bits);
            float value = 0;
            std::memcpy(&value, &narrow, sizeof value);
            *out = value;
            return true;
        }
        if (info == 3 && readUInt(at + 1, 8, &bits)) {
            std::memcpy(out, &bits, sizeof *out);
            return true;
        }
        return false;
    }

    bool object(quint64 index, int depth, QVariant* out) {
        quint64 at = 0;
        if (depth > kMaxDepth || ++_visits > kMaxVisits || !objectOffset(index, &at)) {
            return false;
        }
        const unsigned marker = _data[at];
        const unsigned info = marker & 0xF;
        quint64 length = 0;
        quint64 start = 0;
        switch (marker >> 4) {
        case 0x0:
            if (info != 0x8 && info != 0x9) {
                return false;
            }
            *out = QVariant(info == 0x9);
            return true;
        case 0x1:
            return integer(at, info, out);
        case 0x2: {
            double value = 0;
            if (!real(at, info, &value)) {
                return false;
            }
            *out = QVariant(value);
            return true;
        }
        case 0x3: {
            // Seconds since 2001-01-01 UTC, as a double.
            double seconds = 0;
            if (!real(at, info, &seconds) || !std::isfinite(seconds) || std::fabs(seconds) > 1e11) {
                return false;
            }
            static const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
            *out = QVariant(epoch.addMSecs(static_cast<qint64>(std::llround(seconds * 1000.0))));
            return true;
        }
        case 0x4:
        case 0x5:
        case 0x7:
            if (!count(at, info, &length, &start) || !has(start, length)) {
                return false;
            }
            if ((marker >> 4) == 0x4) {
                *out =
                    QByteArray(reinterpret_cast<const char*>(_data + start), static_cast<qsizetype>(length));
            } else {
                *out = QString::fromUtf8(reinterpret_cast<const char*>(_data + start),
                                         static_cast<qsizetype>(length));
            }
            return true;
        case 0x6: {
            // UTF-16, big-endian; the count is in code units.
            if (!count(at, info, &length, &start) || length > _offsetTable / 2 || !has(start, length * 2)) {
                return false;
            }
            QString text(static_cast<qsizetype>(length), Qt::Uninitialized);
            for (quint64 i = 0; i < length; ++i) {
                text[static_cast<qsizetype>(i)] =
                    QChar(static_cast<char16_t>(bigEndian(_data + start + 2 * i, 2)));
            }
            *out = text;
            return true;
        }
        case 0x8: {
            quint64 uid = 0;
            if (!readUInt(at + 1, info + 1, &uid)) {
                return false;
            }
            *out = QVariant::fromValue<quint64>(uid);
            return true;
        }
        case 0xA:
        case 0xB:
        case 0xC: {
            QList<quint64> refs;
            if (!count(at, info, &length, &start) || !references(start, length, &refs)) {
                return false;
            }
            QVariantList list;
            list.reserve(refs.size());
            for (const quint64 ref : refs) {
                QVariant item;
                if (!object(ref, depth + 1, &item)) {
                    return false;
                }
                list.append(item);
            }
            *out = list;
            return true;
        }
        case 0xD: {
            QList<quint64> refs;
            if (!count(at, info, &length, &start) || length > _offsetTable / 2 ||
                !references(start, length * 2, &refs)) {
                return false;
            }
            QVariantMap map;
            for (quint64 i = 0; i < length; ++i) {
                QVariant key;
                QVariant value;
                if (!object(refs[static_cast<qsizetype>(i)], depth + 1, &key) ||
                    key.typeId() != QMetaType::QString ||
                    !object(refs[static_cast<qsizetype>(length + i)], depth + 1, &value)) {
                    return false;
                }
                map.insert(key.toString(), value);
            }
            *out = map;
            return true;
        }
        default:
            return false;
        }
    }

    const unsigned char* _data;
    quint64 _size;
    unsigned _offsetSize = 0;
    unsigned _refSize = 0;
    quint64 _objects = 0;
    quint64 _offsetTable = 0;
    quint64 _visits = 0;
};

} // namespace

QVariant BinaryPropertyList::parse(const QByteArray& data) {
    return Reader(data).parse();
}
