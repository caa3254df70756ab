#include "SmsSettingsPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ConvertUtilty.h"
#include "FailureText.h"
#include "UserDefaults.h"
#include "WorkNotification.h"

namespace {

struct Validity {
    const char* code;
    const char* text;
    quint8 weeks;
    quint8 days;
    quint8 hours;
};

// Weeks 255 asks the network for the longest period it keeps messages.
constexpr Validity kValidities[] = {
    {"1h", QT_TRANSLATE_NOOP("SmsSettingsPage", "1 hour"), 0, 0, 1},
    {"12h", QT_TRANSLATE_NOOP("SmsSettingsPage", "12 hours"), 0, 0, 12},
    {"1d", QT_TRANSLATE_NOOP("SmsSettingsPage", "1 day"), 0, 1, 0},
    {"2d", QT_TRANSLATE_NOOP("SmsSettingsPage", "2 days"), 0, 2, 0},
    {"1w", QT_TRANSLATE_NOOP("SmsSettingsPage", "1 week"), 1, 0, 0},
    {"max", QT_TRANSLATE_NOOP("SmsSettingsPage", "As long as possible"), 255, 0, 0},
};

QString FailedText(const QString& what, const MessagesController::Outcome& outcome) {
    if (outcome.code == WORKER_ERR_NO_DATA_DEVICE)
        return SmsSettingsPage::tr("%1: the modem was unplugged.").arg(what);
    const QString reason =
        QString::fromStdString(FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp));
    return SmsSettingsPage::tr("%1 failed: %2 (code %3).").arg(what, reason).arg(outcome.code);
}

} // namespace

std::optional<BLSmsValidPeriod> SmsSettingsPage::validityPeriod(const QString& code) {
    for (const Validity& validity : kValidities) {
        if (code == QLatin1String(validity.code)) {
            BLSmsValidPeriod period;
            period.bWeek = validity.weeks;
            period.bDay = validity.days;
            period.bHour = validity.hours;
            return period;
        }
    }
    return std::nullopt;
}

SmsSettingsPage::SmsSettingsPage(ModemLink& link, QWidget* parent) : QWidget(parent), _messages(link) {
    auto* layout = new QVBoxLayout(this);

    auto* centreBox = new QGroupBox(tr("Service centre"));
    auto* centreLayout = new QHBoxLayout(centreBox);
    _centre = new QLineEdit;
    _centre->setObjectName(QStringLiteral("serviceCentre"));
    _centre->setMaxLength(21);
    _centre->setPlaceholderText(tr("e.g. +491722270333"));
    _centre->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\+?\\d{0,20}")), _centre));
    _setCentre = new QPushButton(tr("Save on SIM"));
    _setCentre->setObjectName(QStringLiteral("setServiceCentre"));
    centreLayout->addWidget(new QLabel(tr("Number:")));
    centreLayout->addWidget(_centre, 1);
    centreLayout->addWidget(_setCentre);
    layout->addWidget(centreBox);

    auto* sendingBox = new QGroupBox(tr("Sending and receiving"));
    auto* form = new QFormLayout(sendingBox);
    _validity = new QComboBox;
    _validity->setObjectName(QStringLiteral("validity"));
    for (const Validity& validity : kValidities)
        _validity->addItem(tr(validity.text), QLatin1String(validity.code));
    form->addRow(tr("Messages are valid for:"), _validity);
    _reports = new QCheckBox(tr("Ask for delivery reports"));
    _reports->setObjectName(QStringLiteral("deliveryReports"));
    form->addRow(QString(), _reports);
    _storage = new QComboBox;
    _storage->setObjectName(QStringLiteral("storage"));
    _storage->addItem(tr("SIM card"), SmsStorage::kSim);
    _storage->addItem(tr("Modem memory"), SmsStorage::kModem);
    form->addRow(tr("Keep new messages on:"), _storage);
    _apply = new QPushButton(tr("Apply"));
    _apply->setObjectName(QStringLiteral("applySms"));
    auto* applyRow = new QHBoxLayout;
    applyRow->addWidget(_apply);
    applyRow->addStretch(1);
    form->addRow(QString(), applyRow);
    layout->addWidget(sendingBox);

    _status = new QLabel;
    _status->setObjectName(QStringLiteral("smsStatus"));
    _status->setWordWrap(true);
    layout->addWidget(_status);
    layout->addStretch(1);

    const int validity = _validity->findData(UserDefaults::value(kValidityKey).toString());
    _validity->setCurrentIndex(validity >= 0 ? validity : _validity->findData(QStringLiteral("max")));
    _reports->setChecked(ConvertUtilty::NSStringBOOLToBOOL(
        UserDefaults::value(kReportKey, QStringLiteral("FALSE")).toString()));
    const int storage = _storage->findData(UserDefaults::value(kStorageKey, SmsStorage::kModem).toInt());
    _storage->setCurrentIndex(qMax(0, storage));

    connect(_setCentre, &QPushButton::clicked, this, &SmsSettingsPage::setServiceCentre);
    connect(_apply, &QPushButton::clicked, this, [this] { applyStored(true); });
    updateButtons();
}

void SmsSettingsPage::modemReady() {
    _ready = true;
    _pending = 0;
    setStatus({}, false);
    readServiceCentre();
    // Nothing to bring back before the user chose anything; the modem's own settings stay then.
    if (UserDefaults::value(kValidityKey).isValid())
        applyStored(false);
    else
        updateButtons();
}

void SmsSettingsPage::modemGone() {
    _ready = false;
    _pending = 0;
    _centre->clear();
    updateButtons();
}

void SmsSettingsPage::readServiceCentre() {
    _messages.serviceCentre([this](const MessagesController::Outcome& outcome, const QString& number) {
        if (!_ready)
            return;
        if (outcome.ok())
            _centre->setText(number.left(21));
        else
            setStatus(FailedText(tr("Reading the service centre"), outcome), true);
    });
}

void SmsSettingsPage::setServiceCentre() {
    const QString number = _centre->text().trimmed();
    if (!QRegularExpression(QStringLiteral("^\\+?\\d{3,20}$")).match(number).hasMatch()) {
        setStatus(tr("Enter the service centre number, digits with an optional leading +."), true);
        return;
    }
    ++_pending;
    _setCentre->setText(tr("Saving…"));
    updateButtons();
    _messages.setServiceCentre(number, [this](const MessagesController::Outcome& outcome) {
        _pending = qMax(0, _pending - 1);
        _setCentre->setText(tr("Save on SIM"));
        if (outcome.ok())
            setStatus(tr("The service centre number was saved on the SIM."), false);
        else
            setStatus(FailedText(tr("Saving the service centre"), outcome), true);
        readServiceCentre();
        updateButtons();
    });
}

// Sends validity, delivery reports and storage to the modem; with fromUser the choices are stored first.
void SmsSettingsPage::applyStored(bool fromUser) {
    if (!_ready)
        return;
    const QString validity = _validity->currentData().toString();
    const bool reports = _reports->isChecked();
    const int storage = _storage->currentData().toInt();
    if (fromUser) {
        const bool saved = UserDefaults::setValue(kValidityKey, validity) &&
                           UserDefaults::setValue(kReportKey, ConvertUtilty::BOOLToNSStringBOOL(reports)) &&
                           UserDefaults::setValue(kStorageKey, storage);
        if (!saved) {
            setStatus(
                tr("The settings could not be saved. Check that your configuration folder is writable."),
                true);
            return;
        }
    }
    const auto answered = [this, fromUser](const QString& what) {
        return [this, fromUser, what](const MessagesController::Outcome& outcome) {
            _pending = qMax(0, _pending - 1);
            if (!outcome.ok())
                _failures +=
                    (_failures.isEmpty() ? QString() : QStringLiteral(" ")) + FailedText(what, outcome);
            if (_pending == 0) {
                _apply->setText(tr("Apply"));
                if (!_failures.isEmpty())
                    setStatus(_failures, true);
                else if (fromUser)
                    setStatus(tr("Message settings applied."), false);
                updateButtons();
            }
        };
    };
    _failures.clear();
    _pending += 3;
    _apply->setText(tr("Applying…"));
    updateButtons();
    _messages.setValidity(*validityPeriod(validity), answered(tr("Setting the validity")));
    _messages.setStatusReport(reports, answered(tr("Switching delivery reports")));
    _messages.setPreferredStorage(storage, answered(tr("Choosing the storage")));
}

void SmsSettingsPage::setStatus(const QString& text, bool error) {
    _status->setText(text);
    CNSSetErrorStyle(_status, error);
}

void SmsSettingsPage::updateButtons() {
    const bool usable = _ready && _pending == 0;
    for (QWidget* widget :
         std::initializer_list<QWidget*>{_centre, _setCentre, _validity, _reports, _storage, _apply})
        widget->setEnabled(usable);
}
