#pragma once

#include <QList>
#include <QVariant>

// The records of a result list, whether it came as a QList of the record or as a QVariantList of them;
// elements of another type are left out.
template <typename Record> QList<Record> RecordList(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QList<Record>>())
        return value.value<QList<Record>>();
    QList<Record> records;
    for (const QVariant& item : value.toList()) {
        if (item.metaType() == QMetaType::fromType<Record>())
            records.append(item.value<Record>());
    }
    return records;
}
