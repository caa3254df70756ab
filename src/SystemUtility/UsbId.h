#pragma once

#include <QString>

#include <cstdint>

// A USB vendor and product id pair, written as lsusb prints it: "1bbb:0017".
struct UsbId {
    uint16_t vendor = 0;
    uint16_t product = 0;

    QString text() const { return QString::asprintf("%04x:%04x", vendor, product); }
    // "vvvv:pppp", four hex digits each; false for anything else.
    static bool parse(QStringView text, UsbId& id);

    friend bool operator==(const UsbId&, const UsbId&) = default;
};
