#include "DebugSink.h"
#include "DeviceTestSupport.h"
#include "PortProbe.h"
#include "PropertyList.h"
#include "ThreadWorker.h"
#include "USBDetector.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

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
    testbed->uevent(table, "remove");
    ASSERT_TRUE(waitFor([&] { return removals == 1; }));
}

TEST_F(Detector, RemovalActionMayDestroyTheDetector) {
    const QString modem = testbed->addUsbDevice("1-2", "1bbb", "0017", 6);
    start();
    std::atomic<bool> done{false};
    detector->setDeviceRemoveSEL([&] {
        detector.reset();
        done = true;
    });
    testbed->uevent(modem, "remove");
    ASSERT_TRUE(waitFor([&] { return done.load(); }));
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

} // namespace
