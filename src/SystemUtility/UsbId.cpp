#include "UsbId.h"

namespace {

bool parseHex16(QStringView text, uint16_t& value) {
    if (text.size() != 4) {
        return false;
    }
    bool ok = false;
    const uint number = text.toUInt(&ok, 16);
    value = static_cast<uint16_t>(number);
    return ok;
}

} // namespace

bool UsbId::parse(QStringView text, UsbId& id) {
    UsbId parsed;
    if (text.size() != 9 || text[4] != QLatin1Char(':') || !parseHex16(text.first(4), parsed.vendor) ||
        !parseHex16(text.sliced(5), parsed.product)) {
        return false;
    }
    id = parsed;
    return true;
}
