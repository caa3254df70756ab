#pragma once

#include <QByteArray>
#include <QVariant>

// Reads a binary property list ("bplist00") into the same QVariant tree as PropertyList. Every offset,
// count and reference is checked against the data before it is used, nesting is limited and so is the
// number of objects visited (shared references cannot blow up). Anything malformed gives an invalid
// QVariant for the whole document.
class BinaryPropertyList {
public:
    static QVariant parse(const QByteArray& data);
};
