#include "ProfileDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "ModemTextCheck.h"

namespace {

QLineEdit* Field(const QString& text, const char* objectName) {
    auto* edit = new QLineEdit(text);
    edit->setObjectName(QLatin1String(objectName));
    edit->setMaxLength(128);
    return edit;
}

} // namespace

ProfileDialog::ProfileDialog(const APNInfo& profile, QWidget* parent) : QDialog(parent), _original(profile) {
    setObjectName(QStringLiteral("profileDialog"));
    setWindowTitle(profile.strAccount.isEmpty() ? tr("New profile") : tr("Edit profile"));
    setMinimumWidth(360);
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    form->addRow(tr("Name:"), _name = Field(profile.strAccount, "profileName"));
    form->addRow(tr("APN:"), _apn = Field(profile.strApn, "profileApn"));
    const QString number = profile.strDialNum.isEmpty() ? QStringLiteral("*99#") : profile.strDialNum;
    form->addRow(tr("Number:"), _number = Field(number, "profileNumber"));
    form->addRow(tr("User name:"), _user = Field(profile.strUserName, "profileUser"));
    form->addRow(tr("Password:"), _password = Field(profile.strPassword, "profilePassword"));
    _password->setEchoMode(QLineEdit::Password);
    _auth = new QComboBox;
    _auth->setObjectName(QStringLiteral("profileAuth"));
    _auth->addItem(tr("Any (PAP or CHAP)"), 0);
    _auth->addItem(tr("PAP"), 1);
    _auth->addItem(tr("CHAP"), 2);
    _auth->setCurrentIndex(qMax(0, _auth->findData(profile.nAuthType)));
    form->addRow(tr("Authentication:"), _auth);
    layout->addLayout(form);
    auto* hint = new QLabel(tr("Your operator tells you the APN; leave user name and password empty if it "
                               "does not ask for them."));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    _error = CNSErrorLabel(QStringLiteral("profileError"));
    layout->addWidget(_error);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    buttons->setObjectName(QStringLiteral("profileButtons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ProfileDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ProfileDialog::reject);
    layout->addWidget(buttons);
}

APNInfo ProfileDialog::profile() const {
    APNInfo result = _original;
    result.strAccount = _name->text().trimmed();
    result.strApn = _apn->text().trimmed();
    result.strDialNum = _number->text().trimmed();
    result.strUserName = _user->text();
    result.strPassword = _password->text();
    result.nAuthType = _auth->currentData().toInt();
    return result;
}

QString ProfileDialog::problem(const APNInfo& profile) {
    if (profile.strAccount.isEmpty())
        return tr("Give the profile a name.");
    if (profile.strDialNum.isEmpty())
        return tr("Enter the number to dial (usually *99#).");
    // The APN goes into AT+CGDCONT, the number into the dial command, the user name into pppd's options.
    const struct {
        QString what;
        const QString& value;
        std::size_t maxLength;
    } sent[] = {{tr("the APN"), profile.strApn, kApnMaxLength},
                {tr("the number"), profile.strDialNum, kDialStringMaxLength},
                {tr("the user name"), profile.strUserName, kApnMaxLength}};
    for (const auto& field : sent) {
        if (const QString text = ModemTextProblem(field.what, field.value, field.maxLength); !text.isEmpty())
            return text;
    }
    for (const QString* field : {&profile.strAccount, &profile.strPassword}) {
        for (const QChar c : *field) {
            if (c == QLatin1Char('\n') || c == QLatin1Char('\r') || c.unicode() == 0)
                return tr("The fields cannot hold line breaks.");
        }
    }
    return {};
}

void ProfileDialog::accept() {
    const QString text = problem(profile());
    if (!text.isEmpty()) {
        _error->setText(text);
        _error->show();
        return;
    }
    QDialog::accept();
}
