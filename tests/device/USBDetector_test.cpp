#include "DebugSink.h"
#include "DeviceTestSupport.h"
#include "DeviceUtility.h"
#include "ModemDialect.h"
#include "PortProbe.h"
#include "PropertyList.h"
#include "ThreadWorker.h"
#include "USBDetector.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace {

// The detector's printed texts go to a file of the test's.
class CapturedDebugTexts {
public:
    explicit CapturedDebugTexts(const QString& path)
        : _path(path), _file(std::fopen(path.toLocal8Bit(), "w")) {
        _old = GetDebugSink();
        SetDebugSink(_file);
    }
    ~CapturedDebugTexts() {
        SetDebugSink(_old);
        std::fclose(_file);
    }
    QString text() const { return QString::fromLocal8Bit(TempWorld::readFile(_path)); }
    int count(const QString& piece) const { return text().count(piece); }

private:
    QString _path;
    std::FILE* _file;
    std::FILE* _old;
};

class Detector : public UdevTest {
protected:
    void SetUp() override {
        UdevTest::SetUp();
        texts.emplace(world.path("debug.txt"));
    }
    void TearDown() override {
        detector.reset(); // its thread stops before the texts' file closes
        texts.reset();
    }
    void start() {
        detector = std::make_unique<USBDetector>();
        detector->setDeviceRemoveSEL([this] { ++removals; });
        ASSERT_TRUE(detector->waitUntilWatching(std::chrono::seconds(10)));
    }
    // Every event sent before this one has been handled once the detector prints this arrival (its own
    // line: an earlier arrival may still be printing when the barrier is sent).
    QString barrier(const QString& name, int devnum) {
        const QString line =
            QStringLiteral("Device 1bbb:0017 (0x%1) added.").arg(0x10000 + devnum, 8, 16, QLatin1Char('0'));
        const QString syspath = testbed->addUsbDevice(name, "1bbb", "0017", devnum);
        EXPECT_TRUE(waitFor([&] { return texts->text().contains(line); })) << texts->text().toStdString();
        return syspath;
    }

    std::optional<CapturedDebugTexts> texts;
    std::unique_ptr<USBDetector> detector;
    std::atomic<int> removals{0};
};

// Removing the modem (its tty and interface first, as the kernel does) is reported once; the flag stays
// set, and a second removal runs the action again.
TEST_F(Detector, RemovalReportedOncePerEvent) {
    const QString modem = testbed->addStickRecord("1-4", "1bbb", "0017", {0}, 0, {}, "4.2");
    start();
    EXPECT_EQ(texts->count("added."), 1) << "the modem present at start";
    EXPECT_TRUE(texts->text().contains("Location ID: 0x1420000")) << texts->text().toStdString();
    EXPECT_FALSE(detector->unplugged());

    testbed->uevent(modem + "/1-4:1.0/ttyUSB0/tty/ttyUSB0", "remove");
    testbed->uevent(modem + "/1-4:1.0", "remove");
    testbed->uevent(modem, "remove");
    ASSERT_TRUE(waitFor([&] { return removals == 1; }));
    const QString again = barrier("1-5", 9);
    EXPECT_EQ(removals, 1);
    EXPECT_TRUE(detector->unplugged());
    EXPECT_EQ(texts->count("removed."), 1);

    testbed->uevent(again, "remove");
    ASSERT_TRUE(waitFor([&] { return removals == 2; }));
    EXPECT_TRUE(detector->unplugged());
}

// Every stick of the device table is watched, and one whose ports were probed; IDs print as lsusb shows
// them. Other devices, and the stick's storage personality, are not watched at all: not even printed.
TEST_F(Detector, WatchesTableAndProbedSticks) {
    world.env.set("XDG_CONFIG_HOME", world.path("config"));
    QDir().mkpath(world.path("config/dialtone"));
    ASSERT_TRUE(PropertyList::write(PortProbe::rememberedPath(),
                                    QVariantMap{{"2c7c:0125", QVariantMap{{"AT", 1}, {"Dial", 2}}}}));
    start();
    const QString table = testbed->addUsbDevice("1-6", "12d1", "1001", 4);
    testbed->addUsbDevice("1-7", "2c7c", "0125", 5);
    const QString other = testbed->addUsbDevice("1-8", "0bda", "0138", 6);
    const QString storage = testbed->addUsbDevice("1-9", "1bbb", "f000", 8);
    barrier("1-2", 7);
    EXPECT_EQ(texts->count("added."), 3);
    EXPECT_TRUE(texts->text().contains("Device 12d1:1001 (0x00010004) added."));
    EXPECT_TRUE(texts->text().contains("Device 2c7c:0125 (0x00010005) added."));

    testbed->uevent(other, "remove");
    testbed->uevent(storage, "remove");
    barrier("1-3", 9);
    EXPECT_EQ(removals, 0);
    EXPECT_FALSE(detector->unplugged());
    // The removal action may destroy the detector.
    detector->setDeviceRemoveSEL([&] { detector.reset(), ++removals; });
    testbed->uevent(table, "remove");
    ASSERT_TRUE(waitFor([&] { return removals == 1; }));
}

// The task runs on another thread; its result comes back on the starting thread's event loop.
TEST(ThreadWorkerFlag, EndActionOnStartingThread) {
    QThread* taskThread = nullptr;
    QThread* endThread = nullptr;
    QVariant result;
    QEventLoop loop;
    auto worker = ThreadWorker::workOn(
        [&](const QVariant& argument, ThreadWorker& self) {
            taskThread = QThread::currentThread();
            self.markAsCancelled();
            return QVariant(argument.toInt() * 2);
        },
        21,
        [&](const QVariant& value) {
            endThread = QThread::currentThread();
            result = value;
            loop.quit();
        });
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(result, 42);
    EXPECT_EQ(endThread, QThread::currentThread());
    EXPECT_NE(taskThread, QThread::currentThread());
    EXPECT_TRUE(worker->waitUntilFinished(std::chrono::seconds(10)));
}

// The modem's side of the ttys: answers "AT" with OK on the ttys that speak, counts every command.
struct AtPeer {
    AtPeer(Testbed& testbed, const QStringList& ttys, const QStringList& speaking) {
        for (const QString& tty : ttys) {
            ports.push_back({testbed.ttyMaster(tty), POLLIN, 0});
            speaks.push_back(speaking.contains(tty));
        }
        thread = std::thread([this] {
            char buffer[64];
            while (!stop) {
                poll(ports.data(), ports.size(), 5);
                for (size_t i = 0; i < ports.size(); ++i) {
                    if ((ports[i].revents & POLLIN) != 0 && read(ports[i].fd, buffer, sizeof buffer) > 0) {
                        ++commands;
                        [[maybe_unused]] const ssize_t written =
                            speaks[i] ? write(ports[i].fd, "AT\r\r\nOK\r\n", 9) : 0;
                    }
                }
            }
        });
    }
    ~AtPeer() {
        stop = true;
        thread.join();
    }

    std::vector<pollfd> ports;
    std::vector<bool> speaks;
    std::atomic<bool> stop{false};
    std::atomic<int> commands{0};
    std::thread thread;
};

class Probe : public UdevTest {
protected:
    void SetUp() override {
        UdevTest::SetUp();
        world.env.set("XDG_CONFIG_HOME", world.path("config"));
        ResetModemDialect();
    }
    void TearDown() override { ResetModemDialect(); }
};

// Sticks of the table with a known layout need no probe: the interface numbers pick the ports, the table the
// dialect. On a stick not in the table the first tty that answers is the AT port, the next one the dial
// port; the layout is remembered, so the next start sends nothing, and the ports reach the code that opens
// them.
TEST_F(Probe, TableLayoutsOrAProbeOnce) {
    const QStringList fromFour = {"/dev/ttyUSB5", "/dev/ttyUSB6", "/dev/ttyUSB7"};
    // clang-format off
    const struct { const char *vendor, *product; QList<int> interfaces; int firstTty; QStringList speaking; QString dialect; const char *at, *dial; ModemDialect found; int commands; } rows[] = {
        {"1bbb", "0017", {0, 1, 2}, 0, {}, "standard", "/dev/ttyUSB2", "/dev/ttyUSB0", ModemDialect::Vel, 0},
        {"12d1", "1001", {0, 1, 2}, 0, {}, "standard", "/dev/ttyUSB2", "/dev/ttyUSB0", ModemDialect::Standard, 0},
        {"12d1", "1003", {0, 1}, 0, {}, "standard", "/dev/ttyUSB1", "/dev/ttyUSB0", ModemDialect::Standard, 0},
        {"2c7c", "0125", {0, 1, 2, 3}, 4, fromFour, "vel", "/dev/ttyUSB5", "/dev/ttyUSB6", ModemDialect::Standard, 3}, // the probe stops once it has both ports
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.product);
        testbed.emplace();
        testbed->addStickRecord("1-3", row.vendor, row.product, row.interfaces, row.firstTty);
        QStringList ttys;
        for (int i = 0; i < row.interfaces.size(); ++i)
            ttys << QStringLiteral("/dev/ttyUSB%1").arg(row.firstTty + i);
        AtPeer peer(*testbed, ttys, row.speaking);
        world.env.set("DIALTONE_DIALECT", row.dialect);
        PortProbe::Ports ports;
        ASSERT_TRUE(PortProbe::findPorts(ports));
        EXPECT_EQ(ports.atPort, row.at);
        EXPECT_EQ(ports.dialPort, row.dial);
        EXPECT_EQ(ports.probed, row.commands > 0);
        EXPECT_EQ(CurrentModemDialect(), row.found);
        EXPECT_EQ(peer.commands, row.commands);
        if (!ports.probed)
            continue;
        EXPECT_EQ(PropertyList::readMap(PortProbe::rememberedPath()),
                  (QVariantMap{{"2c7c:0125", QVariantMap{{"AT", 1}, {"Dial", 2}}}}));
        EXPECT_EQ(QFile::permissions(PortProbe::rememberedPath()) & 0x0077, 0) << "the owner's alone";

        ResetModemDialect();
        QString dial, at;
        ASSERT_TRUE(DeviceUtility::getModemDeviceName(dial, at));
        EXPECT_EQ(at, row.at);
        EXPECT_EQ(dial, row.dial);
        EXPECT_EQ(DeviceUtility::portPath(at), row.at);
        EXPECT_EQ(CurrentModemDialect(), ModemDialect::Standard);
        EXPECT_EQ(peer.commands, row.commands) << "no second probe";
    }
}

} // namespace
