#include "GuiTestSupport.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <QTimer>

#include <cstdlib>

#include "DebugSink.h"

void ensureGuiApplication() {
    static int argc = 1;
    static char name[] = "dialtone_gui_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        SetDebugSink(nullptr); // the modem link's chatter
        // No notification or tray reaches the user's own desktop; tests that want a bus bring their own.
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/dialtone-tests", 1);
        new QApplication(argc, argv); // kept for the rest of the run
    }
}

bool waitForGui(const std::function<bool()>& cond, std::chrono::milliseconds limit) {
    QElapsedTimer clock;
    clock.start();
    while (!cond()) {
        if (clock.elapsed() > limit.count())
            return false;
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}

GuiWorld::GuiWorld(const QStringList& simulatorArguments) {
    ensureGuiApplication();
    // A quit left over from an earlier world would end every dialog's event loop at once: the application's
    // own loop, run once, takes it.
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
    const QByteArray home = _home.path().toLocal8Bit();
    setenv("HOME", home.constData(), 1);
    for (const char* xdg : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
        unsetenv(xdg);
    for (const char* folder : {"peers", "run", "net"})
        QDir(_ppp.path()).mkpath(QString::fromLatin1(folder));
    setenv("DIALTONE_PPPD", DIALTONE_FAKE_PPPD, 1);
    setenv("DIALTONE_PEERS_DIR", (_ppp.path() + "/peers").toLocal8Bit().constData(), 1);
    setenv("DIALTONE_PPP_RUN_DIR", (_ppp.path() + "/run").toLocal8Bit().constData(), 1);
    setenv("DIALTONE_NET_DIR", (_ppp.path() + "/net").toLocal8Bit().constData(), 1);
    _sim = std::make_unique<SimulatedModem>(simulatorArguments);
    if (!_sim->started())
        return;
    _window = std::make_unique<MainWindow>();
    _window->resize(960, 640);
    _window->show();
}

GuiWorld::~GuiWorld() {
    _window.reset();
    _sim.reset();
}

bool GuiWorld::waitForState(ModemLink::State state, std::chrono::milliseconds limit) {
    return _window && waitForGui([&] { return _window->link().state() == state; }, limit);
}

QJsonValue GuiWorld::dump(const QString& path) {
    QJsonValue value = _sim->control("dump");
    for (const QString& key : path.split('/'))
        value = value.toObject().value(key);
    return value;
}
