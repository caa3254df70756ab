#pragma once

// The desktop app's main window on a simulated modem, offscreen, with a HOME, a device folder and pppd
// folders of its own (the stand-in pppd dials).

#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>

#include "E2ESupport.h"
#include "MainWindow.h"
#include "ModemLink.h"
#include "QtEventLoop.h"

class ComposeDialog;
class MessagesPlugin;
class ModulePlugin;

// One QApplication on the offscreen platform for the whole run.
void ensureGuiApplication();

class GuiWorld {
public:
    // simulatorArguments: e.g. {"--scenario", "pin-locked"}.
    explicit GuiWorld(const QStringList& simulatorArguments = {});
    ~GuiWorld();
    GuiWorld(const GuiWorld&) = delete;
    GuiWorld& operator=(const GuiWorld&) = delete;

    bool started() const { return _sim && _sim->started(); }
    // Started, and the modem ready.
    bool ready() { return started() && waitForState(ModemLink::State::Ready); }
    // What the simulated modem holds at the path ("sms/sent", "pin/enabled"), from its control socket.
    QJsonValue dump(const QString& path);
    SimulatedModem& sim() { return *_sim; }
    MainWindow& window() { return *_window; }
    ModemLink& link() { return _window->link(); }
    // Closes the window the way the app's main() does after its event loop ends.
    void closeWindow() { _window.reset(); }

    // Runs events until the modem reaches the state.
    bool waitForState(ModemLink::State state, std::chrono::milliseconds limit = std::chrono::seconds(20));
    // The module by name, its tab shown; cast to the plugin's class.
    template <class Plugin> Plugin* show(const QString& moduleName) {
        return qobject_cast<Plugin*>(_window->showModule(moduleName));
    }
    // The same once the modem is ready; nullptr when it does not get there.
    template <class Plugin> Plugin* showReady(const QString& moduleName) {
        return ready() ? show<Plugin>(moduleName) : nullptr;
    }

    QString home() const { return _home.path(); }
    // pppd's folders: peers, pid files (run) and interface counters (net).
    QString pppDir() const { return _ppp.path(); }

private:
    QTemporaryDir _home;
    QTemporaryDir _ppp;
    std::unique_ptr<SimulatedModem> _sim;
    std::unique_ptr<MainWindow> _window;
};

// The named child widget; a test failure when there is none.
template <class Widget> Widget* Child(QObject* parent, const char* name) {
    auto* widget = parent->findChild<Widget*>(QLatin1String(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

// Runs events until cond holds or the limit passes.
inline bool waitForGui(const std::function<bool()>& cond,
                       std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    return waitFor(cond, limit);
}

// What the widget shows: a label's, a button's or a field's text, a text box's plain text.
QString TextOf(const QObject* widget);
QString TextOf(const QObject* parent, const char* childName);
// Runs events until the widget's text contains part (or matches pattern); a failure names the text shown.
testing::AssertionResult Shows(const QObject* widget, const QString& part,
                               std::chrono::milliseconds limit = std::chrono::seconds(10));
testing::AssertionResult Shows(const QObject* widget, const QRegularExpression& pattern,
                               std::chrono::milliseconds limit = std::chrono::seconds(10));
inline QRegularExpression Exactly(const QString& text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(text)));
}

QStringList Texts(const QListWidget* list);
QStringList Column(const QAbstractItemView* view, int column);
// Clicks, as a user would, the row whose column reads text; false when there is none.
bool ClickRow(QAbstractItemView* view, int column, const QString& text);
// Waits until the button can be pressed, then presses it; false when it stays disabled.
bool ClickWhenEnabled(QAbstractButton* button, std::chrono::milliseconds limit = std::chrono::seconds(10));
// Presses the button and answers the message box it brings up; the box's question, empty when none came.
QString ClickAndAnswer(QAbstractButton* button, QMessageBox::StandardButton answer);

// The first visible child of the class, waited for; nullptr when none shows.
template <class Widget> Widget* VisibleChild(QObject* parent) {
    Widget* found = nullptr;
    waitForGui([&] {
        for (auto* candidate : parent->findChildren<Widget*>())
            if (candidate->isVisible())
                found = candidate;
        return found != nullptr;
    });
    return found;
}

// The tab's "New" message window with the recipients typed in and the text set; nullptr when it did not open.
ComposeDialog* NewMessage(MessagesPlugin* messages, const QString& to, const QString& text);
