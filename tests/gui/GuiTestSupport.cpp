#include "GuiTestSupport.h"

#include <QApplication>
#include <QDir>
#include <QTimer>

#include <cstdlib>

#include "DebugSink.h"
#include "Messages/ComposeDialog.h"
#include "Messages/MessagesPlugin.h"

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

QString TextOf(const QObject* widget) {
    if (!widget)
        return QStringLiteral("<no widget>");
    const QVariant plain = widget->property("plainText");
    return plain.isValid() ? plain.toString() : widget->property("text").toString();
}

QString TextOf(const QObject* parent, const char* childName) {
    return TextOf(parent->findChild<QWidget*>(QLatin1String(childName)));
}

namespace {

testing::AssertionResult ShowsWhen(const QObject* widget, std::chrono::milliseconds limit,
                                   const std::function<bool(const QString&)>& wanted) {
    if (waitForGui([&] { return widget && wanted(TextOf(widget)); }, limit))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "shows \"" << TextOf(widget).toStdString() << '"';
}

} // namespace

testing::AssertionResult Shows(const QObject* widget, const QString& part, std::chrono::milliseconds limit) {
    return ShowsWhen(widget, limit, [&](const QString& text) { return text.contains(part); });
}

testing::AssertionResult Shows(const QObject* widget, const QRegularExpression& pattern,
                               std::chrono::milliseconds limit) {
    return ShowsWhen(widget, limit, [&](const QString& text) { return pattern.match(text).hasMatch(); });
}

QStringList Texts(const QListWidget* list) {
    QStringList texts;
    for (int row = 0; row < list->count(); ++row)
        texts << list->item(row)->text();
    return texts;
}

QStringList Column(const QAbstractItemView* view, int column) {
    QStringList texts;
    for (int row = 0; row < view->model()->rowCount(); ++row)
        texts << view->model()->index(row, column).data().toString();
    return texts;
}

bool ClickRow(QAbstractItemView* view, int column, const QString& text) {
    const int row = Column(view, column).indexOf(text);
    if (row < 0)
        return false;
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                      view->visualRect(view->model()->index(row, 0)).center());
    return view->currentIndex().row() == row;
}

bool ClickWhenEnabled(QAbstractButton* button, std::chrono::milliseconds limit) {
    if (!waitForGui([&] { return button->isEnabled(); }, limit))
        return false;
    button->click();
    return true;
}

QString ClickAndAnswer(QAbstractButton* button, QMessageBox::StandardButton answer) {
    QString asked;
    bool answered = false;
    QTimer poll; // a modal box runs its own event loop inside click()
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || answered)
            return;
        answered = true;
        asked = box->text();
        if (QAbstractButton* choice = box->button(answer))
            choice->click();
        else
            box->reject();
    });
    poll.start(20);
    button->click();
    waitForGui([&] { return answered; }, std::chrono::seconds(5));
    return asked;
}

ComposeDialog* NewMessage(MessagesPlugin* messages, const QString& to, const QString& text) {
    messages->findChild<QPushButton*>(QStringLiteral("new"))->click();
    ComposeDialog* compose = messages->composeWindow();
    if (!compose)
        return nullptr;
    QTest::keyClicks(Child<QLineEdit>(compose, "recipients"), to);
    // Typing 200 characters one by one is slow and adds nothing: the counter follows textChanged.
    Child<QPlainTextEdit>(compose, "text")->setPlainText(text);
    return compose;
}
