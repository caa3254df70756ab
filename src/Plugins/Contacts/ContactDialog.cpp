#include "ContactDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "AtParameter.h"
#include "CNSLabels.h"
#include "ModemTextCheck.h"

namespace {

const QRegularExpression& DialablePattern() {
    static const QRegularExpression pattern(QStringLiteral("^\\+?[0-9*#]*$"));
    return pattern;
}

} // namespace

ContactDialog::ContactDialog(const QString& storeName, int maxName, int maxNumber, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("contactDialog"));
    setWindowTitle(tr("Contact in the %1 phonebook").arg(storeName));
    setMinimumWidth(360);

    _name = new QLineEdit(this);
    _name->setObjectName(QStringLiteral("name"));
    _number = new QLineEdit(this);
    _number->setObjectName(QStringLiteral("number"));
    _number->setValidator(new QRegularExpressionValidator(DialablePattern(), _number));
    _number->setPlaceholderText(tr("+491701234567"));
    if (maxName > 0)
        _name->setMaxLength(maxName);
    if (maxNumber > 0)
        _number->setMaxLength(maxNumber);

    _hint = new QLabel(this);
    _hint->setTextFormat(Qt::PlainText);
    _hint->setWordWrap(true);
    QStringList limits;
    if (maxName > 0)
        limits << tr("names up to %n character(s)", nullptr, maxName);
    if (maxNumber > 0)
        limits << tr("numbers up to %n character(s)", nullptr, maxNumber);
    _hint->setText(limits.isEmpty() ? tr("A number may hold +, digits, * and #.")
                                    : tr("This phonebook keeps %1. A number may hold +, digits, * and #.")
                                          .arg(limits.join(tr(" and "))));

    _buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    _buttons->button(QDialogButtonBox::Save)->setObjectName(QStringLiteral("save"));
    _buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    connect(_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), _name);
    form->addRow(tr("N&umber:"), _number);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    _nameError = CNSErrorLabel(QStringLiteral("nameError"), this);
    layout->addWidget(_nameError);
    layout->addWidget(_hint);
    layout->addWidget(_buttons);

    connect(_name, &QLineEdit::textChanged, this, &ContactDialog::updateSave);
    connect(_number, &QLineEdit::textChanged, this, &ContactDialog::updateSave);
    updateSave();
}

void ContactDialog::setContact(const QString& name, const QString& number) {
    // An entry written by another device may not fit: the name is cut to the field, and a number with
    // other characters is shown as it is and keeps Save disabled until it is corrected.
    _name->setText(name);
    _number->setText(number);
    updateSave();
}

QString ContactDialog::name() const {
    return _name->text().trimmed();
}

QString ContactDialog::number() const {
    return _number->text().trimmed();
}

bool ContactDialog::isDialable(const QString& number) {
    return DialablePattern().match(number).hasMatch();
}

void ContactDialog::updateSave() {
    const QString nameProblem = ModemTextProblem(tr("the name"), name(), kContactNameMaxLength);
    _nameError->setText(nameProblem);
    _nameError->setVisible(!nameProblem.isEmpty());
    const bool ok = nameProblem.isEmpty() && !name().isEmpty() && !number().isEmpty() &&
                    isDialable(number()) && number() != QStringLiteral("+");
    _buttons->button(QDialogButtonBox::Save)->setEnabled(ok);
}
