#pragma once

#include <QString>

#include <cstdint>

struct udev_device;

// A USB vendor and product id pair, written as lsusb prints it: "1bbb:0017".
struct UsbId {
    uint16_t vendor = 0;
    uint16_t product = 0;

    QString text() const { return QString::asprintf("%04x:%04x", vendor, product); }
    // "vvvv:pppp", four hex digits each; false for anything else.
    static bool parse(QStringView text, UsbId& id);
    // The idVendor and idProduct attributes of a udev "usb_device"; false when they are missing or bad.
    static bool ofDevice(udev_device* usbDevice, UsbId& id);

    friend bool operator==(const UsbId&, const UsbId&) = default;
};
