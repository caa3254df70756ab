#include "ScreenshotRun.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QPixmap>
#include <QPushButton>
#include <QThread>
#include <QTimer>

#include <cstdio>

#include "MainWindow.h"
#include "ModulePlugin.h"

namespace {

void Settle(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
}

} // namespace

ScreenshotRun::ScreenshotRun(MainWindow& window, QString folder)
    : _window(window), _folder(std::move(folder)) {}

void ScreenshotRun::start() {
    if (!QDir().mkpath(_folder)) {
        std::fprintf(stderr, "dialtone-gui: cannot create %s\n", qPrintable(_folder));
        QTimer::singleShot(0, qApp, &QApplication::quit);
        return;
    }
    auto shootOnce = [this] {
        if (_started)
            return;
        _started = true;
        // Queued: the modules hear "ready" first and send their first requests.
        QTimer::singleShot(0, this, &ScreenshotRun::shootAll);
    };
    connect(&_window.link(), &ModemLink::stateChanged, this, [shootOnce](ModemLink::State state) {
        if (state == ModemLink::State::Ready)
            shootOnce();
    });
    QTimer::singleShot(kReadyTimeoutMs, this, shootOnce);
    if (_window.link().state() == ModemLink::State::Ready)
        shootOnce();
}

void ScreenshotRun::shootAll() {
    bool ok = true;
    if (_window.link().state() != ModemLink::State::Ready) {
        std::fprintf(stderr,
                     "dialtone-gui: the modem did not come up; only the \"no modem\" page is shown\n");
        save(QStringLiteral("no-modem"));
        ok = false; // the tabs were not shown
    } else {
        Settle(kSettleMs);
        for (ModulePlugin* module : _window.modules()) {
            if (!_window.isModuleShown(module))
                continue;
            _window.showModule(module->moduleName());
            Settle(kSettleMs);
            ok = save(module->moduleName()) && ok;
        }
        // The messages tab once more, on a conversation.
        for (ModulePlugin* module : _window.modules()) {
            if (_window.isModuleShown(module) &&
                module->metaObject()->indexOfMethod("showConversations()") >= 0 &&
                QMetaObject::invokeMethod(module, "showConversations")) {
                _window.showModule(module->moduleName());
                Settle(kSettleMs);
                ok = save(QStringLiteral("conversation")) && ok;
            }
        }
        // The Contacts tab once more, with the computer's address book.
        if (ModulePlugin* contacts = _window.module(QStringLiteral("contacts"))) {
            _window.showModule(contacts->moduleName());
            if (auto* store = contacts->findChild<QComboBox*>(QStringLiteral("store")))
                store->setCurrentIndex(store->count() - 1);
            Settle(kSettleMs);
            ok = save(QStringLiteral("contacts-computer")) && ok;
        }
        ok = shootSignalFinder() && ok;
    }
    _succeeded = ok;
    QApplication::quit();
}

bool ScreenshotRun::shootSignalFinder() {
    auto* open = _window.findChild<QPushButton*>(QStringLiteral("findSignal"));
    if (open == nullptr || !_window.showModule(QStringLiteral("network")))
        return true; // no Network tab on this stick
    open->click();
    auto* finder = _window.findChild<QWidget*>(QStringLiteral("signalFinder"));
    if (finder == nullptr)
        return false;
    Settle(3 * kSettleMs);
    const bool saved = save(QStringLiteral("signal-finder"), finder);
    finder->hide();
    return saved;
}

bool ScreenshotRun::save(const QString& name, QWidget* widget) {
    const QString path = QDir(_folder).filePath(name + QStringLiteral(".png"));
    const bool saved = (widget ? widget->grab() : _window.grab()).save(path, "PNG");
    std::fprintf(saved ? stdout : stderr, "%s %s\n", saved ? "wrote" : "could not write", qPrintable(path));
    return saved;
}
