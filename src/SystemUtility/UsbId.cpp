#include "UsbId.h"

#include <libudev.h>

#include <cstring>

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

bool UsbId::ofDevice(udev_device* usbDevice, UsbId& id) {
    auto attribute = [usbDevice](const char* name) {
        const char* text = usbDevice != nullptr ? udev_device_get_sysattr_value(usbDevice, name) : nullptr;
        return text != nullptr ? QString::fromLatin1(text, qsizetype(strnlen(text, 8))).trimmed() : QString();
    };
    return parse(attribute("idVendor") + QLatin1Char(':') + attribute("idProduct"), id);
}
