#include "ContactDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ModemTextCheck.h"
#include "PhoneNumbers.h"

namespace {

// Service codes a phonebook keeps as they are ("*100#" for the balance).
bool isServiceCode(const QString& number) {
    static const QRegularExpression pattern(QStringLiteral("^\\+?[0-9*#]*[*#][0-9*#]*$"));
    return pattern.match(number).hasMatch();
}

} // namespace

ContactDialog::ContactDialog(const QString& storeName, int maxName, int maxNumber, const QString& region,
                             QWidget* parent)
    : QDialog(parent), _maxNumber(maxNumber), _region(region) {
    setObjectName(QStringLiteral("contactDialog"));
    setWindowTitle(tr("Contact in the %1 phonebook").arg(storeName));
    setMinimumWidth(360);

    _name = new QLineEdit(this);
    _name->setObjectName(QStringLiteral("name"));
    _number = new QLineEdit(this);
    _number->setObjectName(QStringLiteral("number"));
    _number->setPlaceholderText(tr("+491701234567"));
    if (maxName > 0)
        _name->setMaxLength(maxName);

    _hint = new QLabel(this);
    _hint->setTextFormat(Qt::PlainText);
    _hint->setWordWrap(true);
    QStringList limits;
    if (maxName > 0)
        limits << tr("names up to %n character(s)", nullptr, maxName);
    if (maxNumber > 0)
        limits << tr("numbers up to %n character(s)", nullptr, maxNumber);
    _hint->setText(limits.isEmpty() ? QString()
                                    : tr("This phonebook keeps %1.").arg(limits.join(tr(" and "))));
    _hint->setVisible(!limits.isEmpty());
    _numberError = CNSErrorLabel(QStringLiteral("numberError"), this);

    _buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    _buttons->button(QDialogButtonBox::Save)->setObjectName(QStringLiteral("save"));
    _buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    connect(_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout;
    _nameError = CNSErrorLabel(QStringLiteral("nameError"), this);
    form->addRow(tr("&Name:"), _name);
    form->addRow(QString(), _nameError);
    form->addRow(tr("N&umber:"), _number);
    form->addRow(QString(), _numberError);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(_hint);
    layout->addWidget(_buttons);

    connect(_name, &QLineEdit::textChanged, this, &ContactDialog::updateSave);
    connect(_number, &QLineEdit::textChanged, this, &ContactDialog::updateSave);
    updateSave();
}

void ContactDialog::setContact(const QString& name, const QString& number) {
    // An entry written by another device may not fit: the name is cut to the field, and a number that
    // cannot be stored is shown as it is and keeps Save disabled until it is corrected.
    _name->setText(name);
    _number->setText(number);
    updateSave();
}

QString ContactDialog::name() const {
    return _name->text().trimmed();
}

QString ContactDialog::number() const {
    QString error;
    return readNumber(error);
}

QString ContactDialog::readNumber(QString& error) const {
    const QString typed = _number->text().trimmed();
    QString stored = typed;
    if (!isServiceCode(typed)) {
        const PhoneNumbers::DialString parsed =
            PhoneNumbers::Parse(typed.toStdString(), _region.toStdString());
        if (!parsed.ok()) {
            error = QString::fromStdString(parsed.reason);
            return {};
        }
        stored = QString::fromStdString(parsed.number);
    }
    if (_maxNumber > 0 && stored.size() > _maxNumber) {
        error = tr("%1 has %2 characters; this phonebook keeps numbers up to %3.")
                    .arg(stored, QLocale().toString(stored.size()), QLocale().toString(_maxNumber));
        return {};
    }
    return stored;
}

void ContactDialog::updateSave() {
    const QString nameProblem = ModemTextProblem(tr("the name"), name(), kContactNameMaxLength);
    _nameError->setText(nameProblem);
    _nameError->setVisible(!nameProblem.isEmpty());
    QString error;
    const QString stored = readNumber(error);
    // Nothing typed yet is not an error.
    _numberError->setText(error);
    _numberError->setVisible(!error.isEmpty() && !_number->text().trimmed().isEmpty());
    const bool ok = nameProblem.isEmpty() && !name().isEmpty() && !stored.isEmpty();
    _buttons->button(QDialogButtonBox::Save)->setEnabled(ok);
    // The wrapped error lines need more height than the layout's minimum says.
    if (isVisible())
        adjustSize();
}
