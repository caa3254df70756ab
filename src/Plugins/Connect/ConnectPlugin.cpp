#include "ConnectPlugin.h"

#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "Budget/BudgetGuard.h"
#include "CNSLabels.h"
#include "Connector/ConnectController.h"
#include "DebugSink.h"
#include "DesktopNotifier.h"
#include "DialupReadiness.h"
#include "LocaleFormat.h"
#include "LocalizedStrings.h"
#include "NotificationCenter.h"

namespace {

// The controller names its texts by key.
QString KeyText(const QString& key) {
    return LocalizedStrings::text(key);
}

// What stands in the way of dialling, each with its fix, one per line.
void AppendFindings(QString& text) {
    for (const DialupReadiness::Finding& finding :
         DialupReadiness::check(DialupReadiness::Facts::fromSystem())) {
        if (!finding.ok)
            text += QStringLiteral("\n") + QString::fromStdString(finding.text) + QStringLiteral(". Fix: ") +
                    QString::fromStdString(finding.fix);
    }
}

} // namespace

ConnectPlugin::ConnectPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {
    auto* layout = new QVBoxLayout(this);

    auto* profileBox = new QGroupBox(tr("Connection"), this);
    auto* profileLayout = new QFormLayout(profileBox);
    _profiles = new QComboBox(profileBox);
    _profiles->setObjectName(QStringLiteral("profiles"));
    _profiles->setMinimumContentsLength(24);
    _profiles->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    profileLayout->addRow(tr("Profile:"), _profiles);

    _state = new QLabel(profileBox);
    _state->setObjectName(QStringLiteral("connectState"));
    _state->setTextFormat(Qt::PlainText);
    profileLayout->addRow(tr("State:"), _state);

    auto* buttonRow = new QHBoxLayout;
    _button = new QPushButton(KeyText(QStringLiteral("IDS_CONNECT")), profileBox);
    _button->setObjectName(QStringLiteral("connectButton"));
    _button->setDefault(true);
    _button->setMinimumWidth(120);
    _busy = new QProgressBar(profileBox);
    _busy->setObjectName(QStringLiteral("busy"));
    _busy->setRange(0, 0);
    _busy->setTextVisible(false);
    _busy->setMaximumWidth(160);
    buttonRow->addWidget(_button);
    buttonRow->addWidget(_busy);
    buttonRow->addStretch(1);
    profileLayout->addRow(buttonRow);
    layout->addWidget(profileBox);

    _message = new QLabel(this);
    _message->setObjectName(QStringLiteral("connectMessage"));
    _message->setTextFormat(Qt::PlainText);
    _message->setWordWrap(true);
    layout->addWidget(_message);

    auto* counterBox = new QGroupBox(tr("This connection"), this);
    auto* counters = new QFormLayout(counterBox);
    _duration = CNSValueLabel(QStringLiteral("duration"), counterBox, QStringLiteral("–"));
    _sent = CNSValueLabel(QStringLiteral("sent"), counterBox, QStringLiteral("–"));
    _received = CNSValueLabel(QStringLiteral("received"), counterBox, QStringLiteral("–"));
    _upRate = CNSValueLabel(QStringLiteral("upRate"), counterBox, QStringLiteral("–"));
    _downRate = CNSValueLabel(QStringLiteral("downRate"), counterBox, QStringLiteral("–"));
    counters->addRow(tr("Duration:"), _duration);
    counters->addRow(tr("Sent:"), _sent);
    counters->addRow(tr("Received:"), _received);
    counters->addRow(tr("Upload rate:"), _upRate);
    counters->addRow(tr("Download rate:"), _downRate);
    layout->addWidget(counterBox);
    layout->addStretch(1);

    connect(_button, &QPushButton::clicked, this, [this] {
        if (!_controller)
            return;
        _message->clear();
        const int state = _controller->connectState();
        if (state == ConnectController::kInvalid || state == ConnectController::kDisconnected) {
            // pppd would only fail later, with nothing a user can act on.
            const auto findings = DialupReadiness::check(DialupReadiness::Facts::fromSystem());
            if (const DialupReadiness::Finding* blocker = DialupReadiness::dialBlocker(findings)) {
                _message->setText(
                    tr("Cannot dial: %1.\nFix: %2")
                        .arg(QString::fromStdString(blocker->text), QString::fromStdString(blocker->fix)));
                return;
            }
        }
        _controller->actionForButtonConnect();
    });
    connect(_profiles, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (_controller && index >= 0)
            _controller->selectProfileIndex(index);
    });
    // The history must hold the last seconds of a link that is still up when the app quits.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &ConnectPlugin::saveTraffic);
    refreshView();
}

ConnectPlugin::~ConnectPlugin() {
    _guard.reset();
    NotificationCenter::defaultCenter().removeObserver(this);
    saveTraffic();
}

QString ConnectPlugin::buttonTitle(const QString& key) {
    return KeyText(key);
}

void ConnectPlugin::saveTraffic() {
    // A second save adds nothing: the controller clears what it saved.
    if (_controller)
        _controller->applicationWillTerminate();
}

void ConnectPlugin::createController() {
    saveTraffic();
    _guard.reset();
    _controller.reset();
    NotificationCenter::defaultCenter().removeObserver(this);
    _controller = std::make_unique<ConnectController>(link(), &context().config, &context().traffic);
    _controller->setEchoSink([](const QString& line) { DebugPrint("%s", qPrintable(line)); });
    connect(_controller.get(), &ConnectController::viewStateChanged, this, &ConnectPlugin::refreshView);
    connect(_controller.get(), &ConnectController::warningRequested, this, &ConnectPlugin::showWarning);
    connect(_controller.get(), &ConnectController::serviceCreationFailed, this,
            &ConnectPlugin::showServiceFailure);
    _controller->setAskBeforePrivilegedStep(true);
    connect(_controller.get(), &ConnectController::privilegedStepNeeded, this,
            &ConnectPlugin::explainPrivilegedStep);
    connect(_controller.get(), &ConnectController::privilegedStepFailed, this,
            &ConnectPlugin::showPrivilegedStepFailure);
    NotificationCenter::defaultCenter().addObserver(NOTIFY_TRAFFIC_STATISTICS, this,
                                                    [this](const Notification& n) { showStatistics(n); });
    _guard = std::make_unique<BudgetGuard>(link(), *_controller, context().config);
    connect(_guard.get(), &BudgetGuard::notice, this, [this](BudgetStep step, const QString& text) {
        _message->setText(text);
        const bool roaming = step == BudgetStep::WarnRoaming || step == BudgetStep::HangUpRoaming;
        context().notifier.notify(roaming ? tr("Roaming") : tr("Data budget"), text);
    });
    connect(_guard.get(), &BudgetGuard::dialRefused, this,
            [this](BudgetStep step, const QString& text) { askOverride(static_cast<int>(step), text); });
}

void ConnectPlugin::askOverride(int step, const QString& text) {
    const bool roaming = step == static_cast<int>(BudgetStep::HangUpRoaming);
    _message->setText(text);
    auto* box = new QMessageBox(QMessageBox::Warning, roaming ? tr("Roaming") : tr("Data budget used up"),
                                text, QMessageBox::Cancel, this);
    box->setObjectName(QStringLiteral("budgetRefusal"));
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(roaming ? tr("Connect anyway for as long as the app runs?")
                                    : tr("Connect anyway until the budget's period ends?"));
    QPushButton* anyway = box->addButton(tr("Connect anyway"), QMessageBox::AcceptRole);
    anyway->setObjectName(QStringLiteral("connectAnyway"));
    box->setDefaultButton(QMessageBox::Cancel);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::buttonClicked, this, [this, anyway, roaming](QAbstractButton* clicked) {
        if (clicked != anyway || !_guard)
            return;
        if (roaming)
            _guard->allowRoamingThisSession();
        else if (!_guard->allowOverBudget())
            _message->setText(tr("The choice could not be stored: check that your data folder is writable."));
        _controller->actionForButtonConnect();
    });
    box->open();
}

void ConnectPlugin::modemReady() {
    _modemPresent = true;
    _message->clear();
    if (!_controller)
        createController();
    // Also after a replug: the dial-up service is looked up again and the profiles published anew.
    _controller->modemInit();
    refreshView();
}

void ConnectPlugin::modemGone() {
    _modemPresent = false;
    refreshView();
}

void ConnectPlugin::refreshView() {
    const ConnectController* c = _controller.get();
    const int state = c && _modemPresent ? c->connectState() : ConnectController::kDisconnected;

    QStringList names;
    QStringList apns;
    if (c && _modemPresent) {
        for (const APNInfo& profile : c->offeredProfiles()) {
            names << profile.strAccount;
            apns << profile.strApn;
        }
    }
    {
        const QSignalBlocker quiet(_profiles);
        QStringList shown;
        QStringList shownApns;
        for (int i = 0; i < _profiles->count(); ++i) {
            shown << _profiles->itemText(i);
            shownApns << _profiles->itemData(i).toString();
        }
        if (shown != names || shownApns != apns) {
            _profiles->clear();
            for (qsizetype i = 0; i < names.size(); ++i) {
                _profiles->addItem(names[i], apns[i]);
                _profiles->setItemData(static_cast<int>(i), tr("APN: %1").arg(apns[i]), Qt::ToolTipRole);
            }
        }
        if (c && c->selectedIndex() >= 0 && c->selectedIndex() < _profiles->count())
            _profiles->setCurrentIndex(c->selectedIndex());
    }
    _profiles->setEnabled(c && _modemPresent && c->choiceEnabled() && !names.isEmpty());
    if (names.isEmpty())
        _profiles->setPlaceholderText(_modemPresent ? tr("No profiles yet") : tr("No modem"));

    _button->setText(KeyText(c && _modemPresent ? c->buttonTitleKey() : QStringLiteral("IDS_CONNECT")));
    _button->setEnabled(c && _modemPresent && c->buttonEnabled());
    _busy->setVisible(c && _modemPresent && c->busy());

    QString text;
    if (!_modemPresent)
        text = tr("No modem: plug it in to connect");
    else if (c && c->waitingForPrivilegedStep())
        text = tr("Not connected: the first connection sets up the modem's dial-up service");
    else if (!c || !c->connectorReady())
        text = tr("Preparing the modem's dial-up service…");
    else if (state == ConnectController::kConnecting)
        text = tr("Connecting…");
    else if (state == ConnectController::kConnected)
        text = tr("Connected");
    else if (state == ConnectController::kDisconnecting)
        text = tr("Disconnecting…");
    else
        text = tr("Not connected");
    _state->setText(text);

    if (!_modemPresent || state == ConnectController::kDisconnected || state == ConnectController::kInvalid) {
        _upRate->setText(QStringLiteral("–"));
        _downRate->setText(QStringLiteral("–"));
    }
}

void ConnectPlugin::showStatistics(const Notification& notification) {
    if (!_controller || notification.object != _controller.get())
        return;
    const int state = _controller->connectState();
    // Outside a link the worker counts nothing: keep the last connection's figures in view.
    if (state != ConnectController::kConnecting && state != ConnectController::kConnected)
        return;
    const auto sample =
        notification.userInfo.value(KEY_FOR_NOTIFY_TRAFFIC_STATISTICS).value<BLConnectStatistics>();
    _duration->setText(LocaleFormat::duration(sample.nDurationSeconds));
    _sent->setText(LocaleFormat::dataSize(sample.nSentBytes));
    _received->setText(LocaleFormat::dataSize(sample.nReceivedBytes));
    _upRate->setText(LocaleFormat::rate(sample.nSentBPS));
    _downRate->setText(LocaleFormat::rate(sample.nReceivedBPS));
}

void ConnectPlugin::clearCounters() {
    for (QLabel* label : {_duration, _sent, _received, _upRate, _downRate})
        label->setText(QStringLiteral("–"));
}

void ConnectPlugin::showWarning(const QString& titleKey, const QString& messageKey,
                                const QString& buttonKey) {
    _message->setText(KeyText(messageKey));
    auto* box = new QMessageBox(QMessageBox::Warning, KeyText(titleKey), KeyText(messageKey),
                                QMessageBox::NoButton, this);
    box->setObjectName(QStringLiteral("connectWarning"));
    box->setTextFormat(Qt::PlainText);
    box->addButton(KeyText(buttonKey), QMessageBox::AcceptRole);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void ConnectPlugin::showServiceFailure() {
    QString reason = tr("The modem's dial-up service could not be created.");
    AppendFindings(reason);
    _message->setText(reason);
    clearCounters();
    _button->setEnabled(false);
    // The controller ends the application once this returns; the dialog waits for the user first.
    QMessageBox box(QMessageBox::Critical, tr("Cannot connect"),
                    reason + QStringLiteral("\n\n") + tr("Dialtone will close now."), QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("serviceFailure"));
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void ConnectPlugin::explainPrivilegedStep() {
    if (!_privilegeExplained) {
        QMessageBox box(
            QMessageBox::Information, tr("Set up dial-up"),
            tr("Before its first connection, the modem needs a dial-up service: a small entry in "
               "the system's pppd configuration (/etc/ppp/peers), which only an administrator may "
               "change. The system now asks for an administrator's password once; later "
               "connections need no password."),
            QMessageBox::Cancel, this);
        box.setObjectName(QStringLiteral("privilegeExplanation"));
        box.setTextFormat(Qt::PlainText);
        box.addButton(tr("Continue"), QMessageBox::AcceptRole);
        if (box.exec() == QMessageBox::Cancel)
            return;
        _privilegeExplained = true;
    }
    _state->setText(tr("Waiting for the administrator's password…"));
    _controller->startPrivilegedStep();
}

void ConnectPlugin::showPrivilegedStepFailure(int status) {
    // pkexec: 126 the dialog was dismissed, 127 not authorised or no way to ask.
    QString reason = status == 126 ? tr("The password dialog was closed: the dial-up service was not set up.")
                                   : tr("The modem's dial-up service could not be set up.");
    AppendFindings(reason);
    _message->setText(reason);
    refreshView();
}
