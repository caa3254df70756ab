// Feeds the vCard reader with files a user imports: whatever reads is written out (3.0 and 4.0) and must
// read back to as many contacts.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QByteArray>

#include "Contacts/VCard.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const VCard::ReadResult read =
        VCard::read(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    for (const VCard::Version version : {VCard::Version::V3, VCard::Version::V4}) {
        const VCard::ReadResult again = VCard::read(VCard::write(read.contacts, version));
        if (!read.contacts.isEmpty() && again.contacts.size() != read.contacts.size())
            std::abort();
    }
    return 0;
}
