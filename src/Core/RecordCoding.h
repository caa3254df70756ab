#pragma once

#include <QDataStream>

// Stream operators for the request and result records: every record with encodeWithCoder/initWithCoder
// members goes into a QDataStream (and so into a streamed QVariant) through them.
//
// A record codes its fields as a plain sequence without keys: the integer fields first, then the object
// fields, each group in declaration order. Only this program reads what it wrote, so only the symmetry
// matters; a short or damaged stream sets the stream's status and leaves what it could not read zero or
// null.
template <typename Record>
concept CodedRecord = requires(const Record& in, Record& out, QDataStream& stream) {
    in.encodeWithCoder(stream);
    out.initWithCoder(stream);
};

template <CodedRecord Record> QDataStream& operator<<(QDataStream& stream, const Record& record) {
    record.encodeWithCoder(stream);
    return stream;
}

template <CodedRecord Record> QDataStream& operator>>(QDataStream& stream, Record& record) {
    record.initWithCoder(stream);
    return stream;
}
