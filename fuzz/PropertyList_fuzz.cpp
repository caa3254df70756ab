// Feeds the property-list reader with files a user folder could hold: XML and binary ("bplist00")
// documents, read through the reader's own format detection and through the binary reader directly.
// Whatever reads is written out as XML and read back.

#include <cstddef>
#include <cstdint>

#include <QByteArray>
#include <QVariant>

#include "BinaryPropertyList.h"
#include "PropertyList.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QVariant root = PropertyList::fromData(bytes);
    BinaryPropertyList::parse(bytes);
    if (root.isValid()) {
        const QByteArray xml = PropertyList::toXml(root);
        PropertyList::fromData(xml);
    }
    return 0;
}
