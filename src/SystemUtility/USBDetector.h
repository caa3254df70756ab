#pragma once

#include <QByteArray>
#include <QVariant>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

class ThreadWorker;
struct DetectorRunLoop;
struct udev_device;
struct udev_enumerate;

// Watches the USB bus, on a thread of its own, for the removal of the modem: any stick of the device table
// (ModemTable) or one whose ports were probed (PortProbe).
// The removal of a matching USB device marks the detector unplugged, for good, and runs the removal
// action on the detector thread; a second removal runs it again. Arrivals are only printed: whether the
// modem is there is decided by DeviceUtility::getModemDeviceName. After a removal, make a new detector
// to watch again. Destroying the detector ends its thread.
//
// The watch is a udev monitor on "usb_device" events: udevd's, or the kernel's where no udevd runs.
class USBDetector {
public:
    using RemoveAction = std::function<void()>;

    // Starts the detector thread.
    USBDetector();
    ~USBDetector();
    USBDetector(const USBDetector&) = delete;
    USBDetector& operator=(const USBDetector&) = delete;

    // The action run on the detector thread when the modem is removed; an empty one runs nothing.
    void setDeviceRemoveSEL(RemoveAction removeCallback);
    bool unplugged() const;
    // Sets the unplugged flag, then runs the removal action if one is set.
    void markAsUnplugged();
    // The thread body: watches until the detector is destroyed.
    QVariant threadUSBDetecting(const QVariant& argument, ThreadWorker& worker);

    // True once the present devices are listed and the monitor is armed; false at the deadline.
    bool waitUntilWatching(std::chrono::milliseconds timeout) const;

private:
    std::shared_ptr<ThreadWorker> _thread;
    mutable std::mutex _callbackLock;
    RemoveAction _removeCallback;
    std::shared_ptr<DetectorRunLoop> _runLoop;
};

// One matched USB device that is present: made when it is added, freed when it is removed.
struct USBDeviceRecord {
    const void* notification = nullptr; // its registration with the detector thread's run loop
    udev_device* deviceInterface = nullptr;
    QByteArray deviceName;   // the USB product string (ASCII), or the kernel name
    uint32_t locationID = 0; // bus number in the top byte, then one nibble per port of the path
};

// The message a removal brings to DeviceNotification; others are ignored.
constexpr unsigned int kUSBMessageServiceIsTerminated = 0xE0000010;
constexpr unsigned int kUSBMessageServiceChanged = 0xE0000000;

// The detector thread's functions. Their state (the detector to tell, the monitor, the list of present
// devices, the run loop) belongs to the thread that runs them.
int startUSBDetector(USBDetector* detector);
// Watches for the sticks of the device table and the probed ones, or argv[1] and argv[2] (vendor and
// product, decimal). Returns 0 when the run loop ends, -1 when the watch cannot be set up.
int mainUSBDetector(int argc, const char* const argv[]);
// Records every device of the list and arms its removal notification.
void DeviceAdded(void* refCon, udev_enumerate* iterator);
void DeviceNotification(void* refCon, udev_device* service, unsigned int messageType, void* messageArgument);
// SIGINT: says so and ends the process with status 0.
void SignalHandler(int sigraised);
