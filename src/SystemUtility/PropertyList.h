#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

// Property-list files: reads XML and binary property lists into QVariant trees, writes XML.
//
// Types: string <-> QString, integer <-> qint64 (or quint64 for values above 2^63-1, which read back
// unsigned), real <-> double, true/false <-> bool, date <-> QDateTime (UTC, whole seconds), data <->
// QByteArray, array <-> QVariantList, dict <-> QVariantMap. On writing, any QVariant integer type is an
// integer, QStringList an array and QVariantHash a dict; other types are left out of the file.
//
// A missing, empty, truncated or malformed file reads as "nothing there": an invalid QVariant, an empty
// map or an empty list. Writes go to a temporary file in the same folder, renamed into place.
class PropertyList {
public:
    static QVariant read(const QString& path);
    static QVariantMap readMap(const QString& path);
    static QVariantList readList(const QString& path);

    // true when the file was written whole and renamed into place.
    static bool write(const QString& path, const QVariant& root);

    // The same without the file: parse XML or binary bytes; produce the XML text.
    static QVariant fromData(const QByteArray& data);
    static QByteArray toXml(const QVariant& root);
};
