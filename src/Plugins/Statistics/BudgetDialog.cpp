#include "BudgetDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include "LocaleFormat.h"

BudgetDialog::BudgetDialog(const BudgetSettings& settings, QWidget* parent)
    : QDialog(parent), _settings(settings) {
    setWindowTitle(tr("Data budget of this SIM"));
    auto* form = new QFormLayout(this);
    _size = new QLineEdit(
        settings.bytes > 0 ? LocaleFormat::dataSize(settings.bytes, QLocale::c()) : QString(), this);
    _size->setObjectName(QStringLiteral("budgetSize"));
    _size->setPlaceholderText(tr("for example 2 GB or 500 MB"));
    _day = new QSpinBox(this);
    _day->setObjectName(QStringLiteral("budgetDay"));
    _day->setRange(1, DataBudget::kMaxBillingDay);
    _day->setValue(settings.billingDay);
    _day->setToolTip(tr("The day of the month the period starts on; in shorter months a later day means "
                        "the month's last day"));
    _hours = new QSpinBox(this);
    _hours->setObjectName(QStringLiteral("budgetHours"));
    _hours->setRange(0, 744);
    _hours->setValue(static_cast<int>(settings.seconds / 3600));
    _hours->setSpecialValueText(tr("none"));
    _hours->setSuffix(tr(" h"));
    _warn = new QSpinBox(this);
    _warn->setObjectName(QStringLiteral("budgetWarn"));
    _warn->setRange(1, 99);
    _warn->setValue(std::min(settings.warnPercent, 99));
    _warn->setSuffix(tr(" %"));
    _hangUp = new QCheckBox(tr("Hang up at 100 % and do not dial until the next period"), this);
    _hangUp->setObjectName(QStringLiteral("budgetHangUp"));
    _hangUp->setChecked(settings.atLimit == BudgetLimitAction::HangUp);
    _roaming = new QComboBox(this);
    _roaming->setObjectName(QStringLiteral("roamingGuard"));
    _roaming->addItems({tr("Off"), tr("Warn"), tr("Hang up and do not dial while roaming")});
    _roaming->setCurrentIndex(static_cast<int>(settings.roaming));
    _problem = new QLabel(this);
    _problem->setObjectName(QStringLiteral("budgetProblem"));

    form->addRow(tr("Data per period:"), _size);
    form->addRow(tr("Billing day:"), _day);
    form->addRow(tr("Connected time per period:"), _hours);
    form->addRow(tr("Warn at:"), _warn);
    form->addRow(_hangUp);
    form->addRow(tr("When roaming starts:"), _roaming);
    form->addRow(_problem);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &BudgetDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &BudgetDialog::reject);
    form->addRow(buttons);
}

void BudgetDialog::accept() {
    const QString sizeText = _size->text().trimmed();
    const quint64 bytes = sizeText.isEmpty() ? 0 : DataBudget::parseSize(sizeText);
    if (!sizeText.isEmpty() && bytes == 0) {
        _problem->setText(tr("\"%1\" is not a size: write for example 2 GB or 500 MB.").arg(sizeText));
        return;
    }
    if (bytes == 0 && _hours->value() == 0 && _roaming->currentIndex() == 0) {
        _problem->setText(tr("Give a size, a connected time or a roaming guard."));
        return;
    }
    _settings.bytes = bytes;
    _settings.seconds = static_cast<quint64>(_hours->value()) * 3600;
    _settings.billingDay = _day->value();
    _settings.warnPercent = _warn->value();
    _settings.atLimit = _hangUp->isChecked() ? BudgetLimitAction::HangUp : BudgetLimitAction::Warn;
    _settings.roaming = static_cast<RoamingGuard>(_roaming->currentIndex());
    QDialog::accept();
}
