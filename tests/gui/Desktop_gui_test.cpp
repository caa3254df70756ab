// Desktop notifications through a notification server of our own, the tray icon and the signal bars.
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>

#include "CNSSignalBars.h"
#include "DesktopNotifier.h"
#include "GuiTestSupport.h"
#include "ModulePlugin.h"
#include "StatusBarView.h"

using namespace std::chrono_literals;

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");

// A bus of our own (dbus-daemon in a scratch folder) and, given its capabilities, the mock notification
// server of python3-dbusmock on it.
class NotificationBus {
public:
    explicit NotificationBus(const char* capabilities) {
        const QString config = _dir.filePath("bus.conf");
        QFile file(config);
        file.open(QIODevice::WriteOnly);
        file.write(R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>)");
        file.close();
        _daemon.start("dbus-daemon", {"--config-file=" + config, "--print-address", "--nofork"});
        if (!_daemon.waitForReadyRead(10000))
            return;
        const QString address = QString::fromLatin1(_daemon.readLine()).trimmed();
        bus = QDBusConnection::connectToBus(address, _dir.path());
        if (!capabilities)
            return;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DBUS_SESSION_BUS_ADDRESS", address);
        _server.setProcessEnvironment(environment);
        _server.start("/usr/bin/python3", {"-m", "dbusmock", "--template", "notification_daemon", "-p",
                                           QStringLiteral(R"({"capabilities": "%1"})").arg(capabilities)});
        waitForGui([this] { return bus.interface()->isServiceRegistered(kService).value(); }, 20s);
    }
    ~NotificationBus() {
        QDBusConnection::disconnectFromBus(_dir.path());
        for (QProcess* process : {&_server, &_daemon}) {
            process->terminate();
            process->waitForFinished(5000);
        }
    }

    // The arguments of every Notify the server got.
    QList<QVariantList> notifies() const {
        QList<QVariantList> calls;
        const auto log = mock("GetMethodCalls", {"Notify"}).arguments().value(0).value<QDBusArgument>();
        log.beginArray();
        while (!log.atEnd()) {
            quint64 time = 0;
            QVariantList arguments;
            log.beginStructure();
            log >> time >> arguments;
            log.endStructure();
            calls << arguments;
        }
        log.endArray();
        return calls;
    }
    void emitSignal(const QString& name, const QString& signature, const QVariantList& arguments) const {
        mock("EmitSignal", {QString(), name, signature, arguments});
    }
    QDBusMessage mock(const QString& method, const QVariantList& arguments) const {
        // A plain call: a QDBusInterface would introspect, and the connection keeps what it learns.
        QDBusMessage call =
            QDBusMessage::createMethodCall(kService, kPath, "org.freedesktop.DBus.Mock", method);
        call.setArguments(arguments);
        return bus.call(call);
    }

    QDBusConnection bus{QString()};

private:
    QTemporaryDir _dir;
    QProcess _daemon;
    QProcess _server;
};

} // namespace

TEST(DesktopGui, MessageNotificationsFollowTheServer) {
    ensureGuiApplication();
    QTemporaryDir home;
    setenv("HOME", home.path().toLocal8Bit().constData(), 1);
    // clang-format off
    // Capabilities null: no server on the bus.
    const struct { const char *capabilities, *body, *actions, *sentBody; } rows[] = {
        {"body actions", "Ann: <b>1 & 2</b>", "default,Read,read,Read,reply,Reply", "Ann: <b>1 & 2</b>"},
        {"body body-markup", "Ann: <b>1 & 2</b>", "", "Ann: &lt;b&gt;1 &amp; 2&lt;/b&gt;"},
        {nullptr, "Ann: hi", "", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.capabilities ? row.capabilities : "no server");
        NotificationBus world(row.capabilities);
        ASSERT_TRUE(world.bus.isConnected());
        DesktopNotifier notifier;
        notifier.setBus(world.bus);
        notifier.notifyMessage("New message", row.body, {"+4930123456", "42"});
        EXPECT_EQ(notifier.count(), 1);
        if (!row.capabilities) {
            EXPECT_EQ(notifier.lastRoute(), DesktopNotifier::Route::SoundOnly);
            continue;
        }
        QList<QVariantList> calls;
        ASSERT_TRUE(waitForGui([&] { return !(calls = world.notifies()).isEmpty(); }));
        ASSERT_EQ(calls.size(), 1);
        EXPECT_EQ(calls[0].value(4).toString(), row.sentBody);
        EXPECT_EQ(qdbus_cast<QStringList>(calls[0].value(5)).join(','), row.actions);
        if (!*row.actions)
            continue;
        QString read;
        QObject::connect(&notifier, &DesktopNotifier::readRequested, [&](const QString& key) { read = key; });
        // Sent again until it arrives: a client that just started may not yet follow the server's signals.
        EXPECT_TRUE(waitForGui([&] {
            return read == "42" || (world.emitSignal("ActionInvoked", "us", {1u, "read"}), false);
        }));
    }
}

TEST(DesktopGui, SignalBarsAndNotificationActionsOnTheModem) {
    NotificationBus server("body actions inline-reply");
    GuiWorld world;
    ASSERT_TRUE(world.ready());
    world.window().notifier().setBus(server.bus);
    auto* messages = world.window().showModule("messages");
    ASSERT_TRUE(waitForGui([&] { return messages->findChild<QWidget*>("busy")->isHidden(); }));
    world.window().showModule("network");
    // The simulator's +CSQ: 18, in the Network tab and the status bar.
    auto* bars = world.window().module("network")->findChild<CNSSignalBars*>("signal");
    EXPECT_TRUE(waitForGui([&] { return bars->toolTip().contains("-78 dBm"); }, 20s));
    EXPECT_EQ(world.window().statusView()->signalText(), bars->toolTip());
    ASSERT_TRUE(world.sim().control("sms 030123456 Dinner at eight?")["ok"].toBool());
    ASSERT_TRUE(waitForGui([&] { return !server.notifies().isEmpty(); }, 20s));
    // A national sender is named after the contact stored with its country code.
    EXPECT_EQ(server.notifies().first().value(4).toString(),
              QString::fromUtf8("J\xC3\xBCrgen: Dinner at eight?"));

    // "Read" brings the Messages tab forward with the message open.
    server.emitSignal("ActionInvoked", "us", {1u, "read"});
    EXPECT_TRUE(waitForGui([&] {
        return messages->isVisible() &&
               messages->findChild<QPlainTextEdit*>()->toPlainText() == "Dinner at eight?";
    }));

    // A reply typed into the notification goes out to the sender.
    server.emitSignal("NotificationReplied", "us", {1u, "Yes, at eight"});
    const auto replied = [&] {
        const QJsonArray sent = world.dump("sms/sent").toArray();
        return !sent.isEmpty() && sent.last()["text"].toString() == "Yes, at eight";
    };
    EXPECT_TRUE(waitForGui(replied, 20s));
}
