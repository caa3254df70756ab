#include "MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QTabWidget>
#include <QThread>
#include <QVBoxLayout>

#include "Account/AccountPlugin.h"
#include "AppConfig.h"
#include "BusTransport.h"
#include "Connect/ConnectPlugin.h"
#include "Connector/ConnectController.h"
#include "Connector/ProfileSettingsController.h"
#include "Contacts/ContactsPlugin.h"
#include "DesktopNotifier.h"
#include "Messages/MessagesPlugin.h"
#include "ModemDoctor.h"
#include "ModulePlugin.h"
#include "Network/NetworkPlugin.h"
#include "NotificationCenter.h"
#include "PinDialog.h"
#include "Settings/SettingsPlugin.h"
#include "Statistics/StatisticsPlugin.h"
#include "Statistics/TrafficStatics.h"
#include "Statistics/SignalRecorder.h"
#include "StatusBarView.h"
#include "Toolkit/ToolkitPlugin.h"

namespace {

// The installed theme icon; drawn here when the theme has none (running from the build tree).
QIcon AppIcon() {
    QIcon icon = QIcon::fromTheme(QStringLiteral("dialtone"));
    if (!icon.isNull())
        return icon;
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1f, 0x6f, 0xb5));
    painter.drawRoundedRect(QRectF(2, 2, 60, 60), 12, 12);
    painter.setBrush(Qt::white);
    for (int i = 0; i < 4; ++i) {
        const qreal height = 10 + i * 10;
        painter.drawRoundedRect(QRectF(12 + i * 11, 52 - height, 7, height), 2, 2);
    }
    return QIcon(pixmap);
}

} // namespace

MainWindow::MainWindow(bool useService, QWidget* parent) : QMainWindow(parent) {
    setWindowTitle(tr("Dialtone"));
    setWindowIcon(AppIcon());
    // The modem service owns the modem when the session bus has it; otherwise the worker runs here.
    _link = std::make_unique<ModemLink>(this, useService ? BusTransport::forSessionBus() : nullptr, this);
    _notifier = std::make_unique<DesktopNotifier>();
    // The worker's start makes the configuration the modules share.
    _link->start();
    AppConfig* config = _link->config();
    Q_ASSERT(config);
    _traffic = std::make_unique<TrafficStatics>(*config);
    _signalRecorder = std::make_unique<SignalRecorder>(*_link);
    _profiles = std::make_unique<ProfileSettingsController>(*config);
    _context = std::make_unique<ModuleContext>(
        ModuleContext{*_link, *config, *_traffic, *_profiles, *_notifier,
                      [this](const QString& name) { return showModule(name); }});

    _pages = new QStackedWidget(this);
    _tabs = new QTabWidget(_pages);
    _tabs->setObjectName(QStringLiteral("modules"));
    _tabs->setAccessibleName(tr("Modem functions"));
    _tabs->setDocumentMode(true);
    _modemPage = new QWidget(_pages);
    _modemPage->setObjectName(QStringLiteral("modemPage"));
    auto* pageLayout = new QVBoxLayout(_modemPage);
    _modemText = new QLabel(_modemPage);
    _modemText->setAlignment(Qt::AlignCenter);
    _modemText->setWordWrap(true);
    _modemText->setMargin(24);
    _findingsText = new QLabel(_modemPage);
    _findingsText->setObjectName(QStringLiteral("findings"));
    _findingsText->setWordWrap(true);
    _findingsText->setMargin(24);
    _findingsText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A cancelled prompt can be opened again from here.
    _unlockButton = new QPushButton(tr("Unlock the SIM…"), _modemPage);
    _unlockButton->setObjectName(QStringLiteral("unlock"));
    connect(_unlockButton, &QPushButton::clicked, this,
            [this] { askForPin(_link->state() == ModemLink::State::NeedPuk); });
    pageLayout->addStretch(1);
    pageLayout->addWidget(_modemText);
    pageLayout->addWidget(_unlockButton, 0, Qt::AlignHCenter);
    pageLayout->addWidget(_findingsText);
    pageLayout->addStretch(2);
    _pages->addWidget(_tabs);
    _pages->addWidget(_modemPage);
    setCentralWidget(_pages);
    buildModules();

    _statusView = new StatusBarView(*_link, this);
    statusBar()->addPermanentWidget(_statusView, 1);
    buildTray();

    connect(_link.get(), &ModemLink::stateChanged, this, &MainWindow::onStateChanged);
    onStateChanged(_link->state());
}

MainWindow::~MainWindow() {
    NotificationCenter::defaultCenter().removeObserver(this);
    if (_pinDialog)
        delete _pinDialog;
    // The modules go before the link they talk through.
    for (ModulePlugin* module : _modules)
        delete module;
    _modules.clear();
    _signalRecorder.reset();
    _link.reset();
}

void MainWindow::buildModules() {
    ModuleContext& context = *_context;
    _modules = {new ConnectPlugin(context),    new MessagesPlugin(context), new ContactsPlugin(context),
                new StatisticsPlugin(context), new AccountPlugin(context),  new ToolkitPlugin(context),
                new NetworkPlugin(context),    new SettingsPlugin(context)};
    for (ModulePlugin* module : _modules) {
        module->setObjectName(module->moduleName());
        _tabs->addTab(module, module->icon(), module->title());
        connect(module, &ModulePlugin::supportChanged, this,
                [this, module](bool supported) { _tabs->setTabVisible(_tabs->indexOf(module), supported); });
    }
}

void MainWindow::bringToFront() {
    showNormal();
    raise();
    activateWindow();
}

void MainWindow::buildTray() {
    makeTrayIcon();
    // Trays that speak StatusNotifierItem (KDE, GNOME's extension) register this watcher. Qt talks to them
    // over D-Bus when the watcher was there at start; a tray that comes later (through its X11 proxy, or
    // a restarted shell) gets a new icon.
    _trayWatcher = new QDBusServiceWatcher(QStringLiteral("org.kde.StatusNotifierWatcher"),
                                           QDBusConnection::sessionBus(),
                                           QDBusServiceWatcher::WatchForRegistration, this);
    connect(_trayWatcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        delete _tray;
        makeTrayIcon();
        updateTray();
    });
    NotificationCenter::defaultCenter().addObserver(CONNECT_STATE, this,
                                                    [this](const Notification&) { updateTray(); });
    connect(_link.get(), &ModemLink::networkChanged, this, &MainWindow::updateTray);

    // What the user chose on a message's notification.
    connect(_notifier.get(), &DesktopNotifier::readRequested, this, [this] {
        showModule(QStringLiteral("messages"));
        bringToFront();
    });
    connect(_notifier.get(), &DesktopNotifier::replyRequested, this, &MainWindow::bringToFront);
    updateTray();
}

// The icon is made even without a tray, so that its state and tool tip are there when one appears.
void MainWindow::makeTrayIcon() {
    _tray = new QSystemTrayIcon(TrayStatus::icon(_trayState, AppIcon()), this);
    auto* menu = new QMenu(this);
    menu->addAction(tr("Show Dialtone"), this, &MainWindow::bringToFront);
    menu->addSeparator();
    menu->addAction(tr("Quit"), qApp, &QApplication::quit);
    _tray->setContextMenu(menu);
    connect(_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            setVisible(!isVisible());
    });
    connect(_tray, &QObject::destroyed, menu, &QObject::deleteLater);
    _notifier->setTrayIcon(_tray);
    if (QSystemTrayIcon::isSystemTrayAvailable())
        _tray->show();
}

void MainWindow::updateTray() {
    const bool ready = _link->state() == ModemLink::State::Ready;
    const TrayState trayState = TrayStatus::stateOf(_link->state(), _statusView->connecting(),
                                                    _statusView->connected(), _statusView->roaming());
    if (trayState != _trayState || _tray->icon().isNull()) {
        _trayState = trayState;
        _tray->setIcon(TrayStatus::icon(trayState, AppIcon()));
    }
    QString state = ModemLink::stateText(_link->state());
    if (ready)
        state = _statusView->connected()    ? tr("Connected")
                : _statusView->connecting() ? tr("Connecting…")
                                            : tr("Not connected");
    if (ready && _statusView->roaming())
        state = tr("%1, roaming").arg(state);
    const QString operatorName = ready ? _statusView->operatorText() : QString();
    QString tip = operatorName.isEmpty() ? tr("Dialtone: %1").arg(state)
                                         : tr("Dialtone: %1 (%2)").arg(state, operatorName);
    if (ready && _statusView->signalLevel() >= 0)
        tip += QStringLiteral("\n") + _statusView->signalText();
    _tray->setToolTip(tip);
}

PinDialog* MainWindow::pinDialog() const {
    return _pinDialog.data();
}

bool MainWindow::showsModemPage() const {
    return _pages->currentWidget() == _modemPage;
}

QString MainWindow::modemPageText() const {
    return _modemText->text();
}

ModulePlugin* MainWindow::module(const QString& moduleName) const {
    for (ModulePlugin* module : _modules) {
        if (module->moduleName() == moduleName)
            return module;
    }
    return nullptr;
}

bool MainWindow::isModuleShown(ModulePlugin* module) const {
    return _tabs->isTabVisible(_tabs->indexOf(module));
}

ModulePlugin* MainWindow::showModule(const QString& moduleName) {
    ModulePlugin* found = module(moduleName);
    if (found)
        _tabs->setCurrentWidget(found);
    return found;
}

void MainWindow::onStateChanged(ModemLink::State state) {
    using State = ModemLink::State;
    if (state == State::Ready) {
        _pages->setCurrentWidget(_tabs);
        if (_pinDialog)
            _pinDialog->accept();
        _profiles->chooseProfilesForSIM(_link->network().strSpName);
        _modulesReady = true;
        for (ModulePlugin* module : _modules)
            module->modemReady();
        updateTray();
        return;
    }
    if (_modulesReady) {
        _modulesReady = false;
        for (ModulePlugin* module : _modules)
            module->modemGone();
    }
    QString text;
    switch (state) {
    case State::Absent:
        text = tr("<h2>No modem</h2><p>Plug in your USB modem. Dialtone finds it by itself; there is no "
                  "need to restart.</p>");
        break;
    case State::Starting:
        text = tr("<h2>Starting the modem…</h2>");
        break;
    case State::NeedPin:
    case State::NeedPuk:
        text = tr("<h2>The SIM card is locked</h2><p>Enter its code to go on.</p>");
        break;
    case State::NoSim:
        text = tr("<h2>No SIM card</h2><p>Put a SIM card into the modem and plug it in again.</p>");
        break;
    case State::Blocked:
        text = tr("<h2>The SIM card is blocked</h2><p>It accepts no more codes; ask your operator for a "
                  "new card.</p>");
        break;
    case State::Ready:
        break;
    }
    _modemText->setText(text);
    _findingsText->setVisible(state == State::Absent);
    if (state == State::Absent)
        showFindings();
    _unlockButton->setVisible(state == State::NeedPin || state == State::NeedPuk);
    _pages->setCurrentWidget(_modemPage);
    if (state == State::NeedPin || state == State::NeedPuk)
        askForPin(state == State::NeedPuk);
    else if (_pinDialog)
        _pinDialog->reject();
    updateTray();
}

// The checks read udev and may probe a stick's ports: they run off the GUI thread.
void MainWindow::showFindings() {
    if (_examining)
        return;
    _examining = true;
    _findingsText->setText(tr("Looking for the cause…"));
    auto findings = std::make_shared<QList<DoctorFinding>>();
    QThread* thread = QThread::create([findings] { *findings = ModemDoctor::examine(); });
    connect(thread, &QThread::finished, this, [this, findings] {
        _examining = false;
        QString html = tr("<p><b>What Dialtone checked</b></p><ul>");
        for (const DoctorFinding& finding : *findings) {
            html += QStringLiteral("<li>%1 %2")
                        .arg(finding.ok ? QStringLiteral("✓") : QStringLiteral("✗"),
                             finding.text.toHtmlEscaped());
            if (!finding.fix.isEmpty())
                html += QStringLiteral("<br><i>%1</i>").arg(finding.fix.toHtmlEscaped());
            html += QStringLiteral("</li>");
        }
        _findingsText->setText(html + QStringLiteral("</ul>"));
    });
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}

QString MainWindow::findingsText() const {
    return _findingsText->text();
}

void MainWindow::askForPin(bool puk) {
    if (_pinDialog) {
        if (_pinDialog->asksForPuk() == puk)
            return;
        _pinDialog->deleteLater();
        _pinDialog = nullptr;
    }
    _pinDialog = new PinDialog(*_link, puk, this);
    _pinDialog->setAttribute(Qt::WA_DeleteOnClose);
    _pinDialog->open();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Closing the window quits; the tray icon is a view of the state, not a place to hide in.
    event->accept();
    qApp->quit();
}
