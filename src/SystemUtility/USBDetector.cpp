#include "USBDetector.h"

#include "DebugSink.h"
#include "DeviceUtility.h"
#include "ModemTable.h"
#include "PortProbe.h"
#include "PropertyList.h"
#include "ThreadWorker.h"

#include <libudev.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

// The run loop of one detector thread: woken by the monitor or by a stop request.
struct DetectorRunLoop {
    DetectorRunLoop() : wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~DetectorRunLoop() {
        if (wakeFd >= 0) {
            close(wakeFd);
        }
    }

    void stop() {
        stopRequested = true;
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(wakeFd, &one, sizeof one);
    }
    void setWatching(bool value) {
        {
            std::lock_guard lock(mutex);
            watching = value;
        }
        changed.notify_all();
    }

    const int wakeFd;
    std::atomic<bool> stopRequested{false};
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    bool watching = false;
    bool ownerReady = false;             // the detector has its worker: removals may be reported
    std::list<USBDeviceRecord*> records; // detector thread only
};

namespace {

// The detector thread's state; each detector thread has its own.
thread_local USBDetector* gUSBDetector = nullptr;
thread_local udev_monitor* gNotifyPort = nullptr;
thread_local udev_enumerate* gAddedIter = nullptr;
thread_local DetectorRunLoop* gRunLoop = nullptr;
thread_local QList<UsbId> gWatchedIds; // the table's sticks and the probed ones

long hexSysattr(udev_device* device, const char* name) {
    const char* text = udev_device_get_sysattr_value(device, name);
    if (text == nullptr || strnlen(text, 8) > 6) {
        return -1;
    }
    char* end = nullptr;
    const long value = std::strtol(text, &end, 16);
    return end != text ? value : -1;
}

bool matchesModem(udev_device* device) {
    const char* type = udev_device_get_devtype(device);
    const long vendor = hexSysattr(device, "idVendor");
    const long product = hexSysattr(device, "idProduct");
    return type != nullptr && std::strcmp(type, "usb_device") == 0 && vendor >= 0 && product >= 0 &&
           gWatchedIds.contains(UsbId{static_cast<uint16_t>(vendor), static_cast<uint16_t>(product)});
}

QList<UsbId> watchedIds() {
    QList<UsbId> ids;
    const ModemTable table = ModemTable::installed();
    for (const ModemModel& model : table.models()) {
        ids << model.modemId;
    }
    const QStringList probed = PropertyList::readMap(PortProbe::rememberedPath()).keys();
    for (const QString& text : probed) {
        UsbId id;
        if (UsbId::parse(text, id) && !ids.contains(id)) {
            ids << id;
        }
    }
    if (ids.isEmpty()) {
        ids << UsbId{DeviceUtility::kVendorID, DeviceUtility::kProductID};
    }
    return ids;
}

// Bus number in the top byte, then the port path one nibble each: bus 1, ports 4.2 give 0x01420000.
bool locationID(udev_device* device, uint32_t& location) {
    const char* bus = udev_device_get_sysattr_value(device, "busnum");
    const char* path = udev_device_get_sysattr_value(device, "devpath");
    if (bus == nullptr || path == nullptr) {
        return false;
    }
    location = (static_cast<uint32_t>(std::atoi(bus)) & 0xff) << 24;
    int shift = 20;
    for (const char* port = path; *port != '\0' && shift >= 0; shift -= 4) {
        location |= (static_cast<uint32_t>(std::atoi(port)) & 0xf) << shift;
        port = std::strchr(port, '.');
        if (port == nullptr) {
            break;
        }
        ++port;
    }
    return true;
}

uint32_t deviceHandle(udev_device* device) {
    const char* bus = udev_device_get_sysattr_value(device, "busnum");
    const char* number = udev_device_get_sysattr_value(device, "devnum");
    return (bus ? static_cast<uint32_t>(std::atoi(bus)) << 16 : 0) |
           (number ? std::atoi(number) & 0xffff : 0);
}

const char* monitorSource() {
    // The "udev" source needs a running udevd (or umockdev, which stands in for it).
    if (std::getenv("UMOCKDEV_DIR") != nullptr || access("/run/udev/control", F_OK) == 0) {
        return "udev";
    }
    return "kernel";
}

void runLoopRun(DetectorRunLoop& runLoop, udev* context) {
    const int monitorFd = udev_monitor_get_fd(gNotifyPort);
    runLoop.setWatching(true);
    while (!runLoop.stopRequested) {
        pollfd fds[2] = {{monitorFd, POLLIN, 0}, {runLoop.wakeFd, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        if (runLoop.stopRequested) {
            break;
        }
        if ((fds[0].revents & POLLIN) == 0) {
            continue;
        }
        udev_device* device = udev_monitor_receive_device(gNotifyPort);
        if (device == nullptr) {
            continue;
        }
        const char* action = udev_device_get_action(device);
        const char* syspath = udev_device_get_syspath(device);
        USBDeviceRecord* found = nullptr;
        for (USBDeviceRecord* record : runLoop.records) {
            const char* recorded = udev_device_get_syspath(record->deviceInterface);
            if (syspath != nullptr && recorded != nullptr && std::strcmp(recorded, syspath) == 0) {
                found = record;
                break;
            }
        }
        if (action != nullptr && std::strcmp(action, "add") == 0) {
            if (found == nullptr && matchesModem(device)) {
                // A list of just this device, matched by its name like the initial one.
                udev_enumerate* added = udev_enumerate_new(context);
                if (added != nullptr) {
                    udev_enumerate_add_match_subsystem(added, "usb");
                    udev_enumerate_add_match_sysname(added, udev_device_get_sysname(device));
                    udev_enumerate_add_match_property(added, "DEVTYPE", "usb_device");
                    udev_enumerate_scan_devices(added);
                    DeviceAdded(nullptr, added);
                    udev_enumerate_unref(added);
                }
            }
        } else if (action != nullptr && found != nullptr) {
            // sysfs is gone on removal: the record is found by its path.
            const bool removed = std::strcmp(action, "remove") == 0;
            DeviceNotification(found, device,
                               removed ? kUSBMessageServiceIsTerminated : kUSBMessageServiceChanged, nullptr);
        }
        udev_device_unref(device);
    }
    runLoop.setWatching(false);
}

void freeRecord(USBDeviceRecord* record) {
    if (gRunLoop != nullptr) {
        gRunLoop->records.remove(record);
    }
    udev_device_unref(record->deviceInterface);
    delete record;
}

} // namespace

USBDetector::USBDetector() : _runLoop(std::make_shared<DetectorRunLoop>()) {
    std::shared_ptr<DetectorRunLoop> runLoop = _runLoop;
    _thread = ThreadWorker::workOn(
        [this, runLoop](const QVariant& argument, ThreadWorker& worker) {
            {
                std::unique_lock lock(runLoop->mutex);
                runLoop->changed.wait(lock, [&] { return runLoop->ownerReady; });
            }
            gRunLoop = runLoop.get();
            const QVariant result =
                runLoop->stopRequested ? QVariant() : threadUSBDetecting(argument, worker);
            gRunLoop = nullptr;
            return result;
        },
        QVariant());
    {
        std::lock_guard lock(_runLoop->mutex);
        _runLoop->ownerReady = true;
    }
    _runLoop->changed.notify_all();
}

USBDetector::~USBDetector() {
    _runLoop->stop();
    if (gUSBDetector == this) {
        // Destroyed by its own removal action: the thread ends once the action returns.
        gUSBDetector = nullptr;
        return;
    }
    if (_thread && !_thread->waitUntilFinished(std::chrono::seconds(10))) {
        std::fprintf(stderr, "USBDetector: the detector thread did not stop\n");
    }
}

void USBDetector::setDeviceRemoveSEL(RemoveAction removeCallback) {
    std::lock_guard lock(_callbackLock);
    _removeCallback = std::move(removeCallback);
}

bool USBDetector::unplugged() const {
    return _thread && _thread->cancelled() != 0;
}

void USBDetector::markAsUnplugged() {
    if (_thread) {
        _thread->markAsCancelled();
    }
    RemoveAction action;
    {
        std::lock_guard lock(_callbackLock);
        action = _removeCallback;
    }
    if (action) {
        action();
    }
}

QVariant USBDetector::threadUSBDetecting(const QVariant&, ThreadWorker&) {
    startUSBDetector(this);
    return {};
}

bool USBDetector::waitUntilWatching(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(_runLoop->mutex);
    return _runLoop->changed.wait_for(lock, timeout, [this] { return _runLoop->watching; });
}

int startUSBDetector(USBDetector* detector) {
    gUSBDetector = detector;
    return mainUSBDetector(0, nullptr);
}

int mainUSBDetector(int argc, const char* const argv[]) {
    gWatchedIds = watchedIds();
    if (argc > 1) {
        const long product = argc > 2 ? std::strtol(argv[2], nullptr, 10) : DeviceUtility::kProductID;
        gWatchedIds = {
            UsbId{static_cast<uint16_t>(std::strtol(argv[1], nullptr, 10)), static_cast<uint16_t>(product)}};
    }

    struct sigaction action = {};
    action.sa_handler = SignalHandler;
    sigemptyset(&action.sa_mask);
    if (sigaction(SIGINT, &action, nullptr) != 0) {
        std::fprintf(stderr, "Could not establish new signal handler");
    }

    udev* context = udev_new();
    if (context == nullptr) {
        std::fprintf(stderr, "ERR: Couldn't create a udev context(%08x)\n", errno);
        return -1;
    }
    QStringList idTexts;
    for (const UsbId& id : std::as_const(gWatchedIds)) {
        idTexts << id.text();
    }
    DebugPrint("Looking for devices matching %s\n", qPrintable(idTexts.join(QLatin1Char(' '))));

    udev_enumerate* matching = udev_enumerate_new(context);
    if (matching == nullptr) {
        std::fprintf(stderr, "Can't create a USB matching enumeration");
        udev_unref(context);
        return -1;
    }
    udev_enumerate_add_match_subsystem(matching, "usb");
    udev_enumerate_add_match_property(matching, "DEVTYPE", "usb_device");

    DetectorRunLoop ownRunLoop; // when called without a detector
    DetectorRunLoop* runLoop = gRunLoop != nullptr ? gRunLoop : &ownRunLoop;
    gRunLoop = runLoop;
    gNotifyPort = udev_monitor_new_from_netlink(context, monitorSource());
    if (gNotifyPort == nullptr ||
        udev_monitor_filter_add_match_subsystem_devtype(gNotifyPort, "usb", "usb_device") < 0 ||
        udev_monitor_enable_receiving(gNotifyPort) < 0) {
        std::fprintf(stderr, "ERR: Couldn't create a udev monitor\n");
        udev_monitor_unref(gNotifyPort);
        gNotifyPort = nullptr;
        udev_enumerate_unref(matching);
        udev_unref(context);
        return -1;
    }

    // The devices already present, then every later arrival, go through DeviceAdded.
    gAddedIter = matching;
    udev_enumerate_scan_devices(gAddedIter);
    DeviceAdded(nullptr, gAddedIter);

    DebugPrint("Starting run loop.\n");
    runLoopRun(*runLoop, context);
    DebugPrint("Unexpectedly back from the run loop!\n");

    while (!runLoop->records.empty()) {
        freeRecord(runLoop->records.front());
    }
    udev_monitor_unref(gNotifyPort);
    gNotifyPort = nullptr;
    udev_enumerate_unref(gAddedIter);
    gAddedIter = nullptr;
    udev_unref(context);
    if (runLoop == &ownRunLoop) {
        gRunLoop = nullptr;
    }
    return 0;
}

void DeviceAdded(void*, udev_enumerate* iterator) {
    udev* context = udev_enumerate_get_udev(iterator);
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(iterator)) {
        udev_device* device = udev_device_new_from_syspath(context, udev_list_entry_get_name(entry));
        if (device == nullptr) {
            std::fprintf(stderr, "unable to create a plugin (%08x)\n", errno);
            continue;
        }
        if (!matchesModem(device)) {
            udev_device_unref(device);
            continue;
        }
        DebugPrint("Device %04lx:%04lx (0x%08x) added.\n", hexSysattr(device, "idVendor"),
                   hexSysattr(device, "idProduct"), deviceHandle(device));
        auto* record = new USBDeviceRecord;
        const char* product = udev_device_get_sysattr_value(device, "product");
        const char* name = product != nullptr ? product : udev_device_get_sysname(device);
        record->deviceName = name != nullptr ? QByteArray(name, strnlen(name, 255)) : QByteArray();
        DebugPrint("%s\n", record->deviceName.constData());
        record->deviceInterface = device;
        if (!locationID(device, record->locationID)) {
            std::fprintf(stderr, "GetLocationID returned %08x\n", ENOENT);
            udev_device_unref(device);
            delete record;
            continue;
        }
        DebugPrint("Location ID: 0x%lx\n", static_cast<unsigned long>(record->locationID));
        if (gRunLoop == nullptr) {
            std::fprintf(stderr, "udev interest registration returned 0x%08x\n", EINVAL);
            udev_device_unref(device);
            delete record;
            continue;
        }
        record->notification = gRunLoop;
        gRunLoop->records.push_back(record);
    }
}

void DeviceNotification(void* refCon, udev_device*, unsigned int messageType, void*) {
    auto* record = static_cast<USBDeviceRecord*>(refCon);
    if (record == nullptr || messageType != kUSBMessageServiceIsTerminated) {
        return;
    }
    DebugPrint("Device 0x%08x removed.\n", deviceHandle(record->deviceInterface));
    DebugPrint("%s\n", record->deviceName.constData());
    DebugPrint("It was at location: 0x%lx\n", static_cast<unsigned long>(record->locationID));
    freeRecord(record);
    if (gUSBDetector != nullptr) {
        gUSBDetector->markAsUnplugged();
    }
}

void SignalHandler(int) {
    // Only async-signal-safe calls here; the monitor and the device list go with the process.
    static const char text[] = "\nInterrupted\n";
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text, sizeof text - 1);
    _exit(0);
}
