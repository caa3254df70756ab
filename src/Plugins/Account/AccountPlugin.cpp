#include "AccountPlugin.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "Account/AccountController.h"
#include "CNSLabels.h"
#include "FailureText.h"
#include "ModemTextCheck.h"
#include "UssdRecords.h"

namespace {

constexpr int kEntryRole = Qt::UserRole + 1;

QString Q(const std::wstring& text) {
    return WStringToQString(text);
}

// The menus' languages in the data files: 0 English, 1 German.
int PreferredLanguage() {
    return QLocale().language() == QLocale::German ? 1 : 0;
}

} // namespace

AccountPlugin::AccountPlugin(ModuleContext& context, QWidget* parent) : ModulePlugin(context, parent) {
    _controller = new AccountController(link(), this);
    _controller->setDeviceFoundProbe([this] { return _ready; });

    _tip = new QLabel(this);
    _tip->setObjectName(QStringLiteral("tip"));
    _tip->setTextFormat(Qt::PlainText);
    _tip->setWordWrap(true);
    _noData = new QLabel(this);
    _noData->setObjectName(QStringLiteral("noData"));
    _noData->setTextFormat(Qt::PlainText);
    _noData->setWordWrap(true);
    _noData->hide();

    _menu = new QTreeWidget(this);
    _menu->setObjectName(QStringLiteral("menu"));
    _menu->setHeaderHidden(true);
    _menu->setAccessibleName(tr("Account menu"));
    _menu->setMinimumWidth(200);

    _entryBox = new QGroupBox(this);
    _entryBox->setObjectName(QStringLiteral("entry"));
    _prompt = new QLabel(_entryBox);
    _prompt->setObjectName(QStringLiteral("prompt"));
    _prompt->setTextFormat(Qt::PlainText);
    _prompt->setWordWrap(true);
    _inputsForm = new QFormLayout;
    _buttonsRow = new QWidget(_entryBox);
    auto* buttonsLayout = new QHBoxLayout(_buttonsRow);
    buttonsLayout->setContentsMargins(0, 0, 0, 0);
    buttonsLayout->addStretch(1);
    _inputError = CNSErrorLabel(QStringLiteral("inputError"), _entryBox);
    auto* entryLayout = new QVBoxLayout(_entryBox);
    entryLayout->addWidget(_prompt);
    entryLayout->addLayout(_inputsForm);
    entryLayout->addWidget(_inputError);
    entryLayout->addWidget(_buttonsRow);
    entryLayout->addStretch(1);

    auto* splitter = new QSplitter(this);
    splitter->addWidget(_menu);
    splitter->addWidget(_entryBox);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);

    _code = new QLineEdit(this);
    _code->setObjectName(QStringLiteral("code"));
    _code->setPlaceholderText(tr("*100#"));
    _code->setMaxLength(160);
    _sendCode = new QPushButton(tr("&Send"), this);
    _sendCode->setObjectName(QStringLiteral("sendCode"));
    _busy = new QProgressBar(this);
    _busy->setObjectName(QStringLiteral("busy"));
    _busy->setRange(0, 0);
    _busy->setTextVisible(false);
    _busy->setMaximumWidth(120);
    _busy->hide();
    auto* codeRow = new QHBoxLayout;
    codeRow->addWidget(CNSBuddyLabel(tr("Service code:"), _code, this));
    codeRow->addWidget(_code, 1);
    codeRow->addWidget(_sendCode);
    codeRow->addWidget(_busy);

    _answer = new QPlainTextEdit(this);
    _answer->setObjectName(QStringLiteral("answer"));
    _answer->setReadOnly(true);
    _answer->setAccessibleName(tr("The network's answer"));
    _answer->setPlaceholderText(tr("The network's answer appears here."));
    _answer->setMinimumHeight(80);

    _replyRow = new QWidget(this);
    _reply = new QLineEdit(_replyRow);
    _reply->setObjectName(QStringLiteral("reply"));
    _reply->setMaxLength(160);
    _sendReply = new QPushButton(tr("&Reply"), _replyRow);
    _sendReply->setObjectName(QStringLiteral("sendReply"));
    _cancel = new QPushButton(tr("&End dialogue"), _replyRow);
    _cancel->setObjectName(QStringLiteral("cancelSession"));
    auto* replyLayout = new QHBoxLayout(_replyRow);
    replyLayout->setContentsMargins(0, 0, 0, 0);
    replyLayout->addWidget(CNSBuddyLabel(tr("Your reply:"), _reply, _replyRow));
    replyLayout->addWidget(_reply, 1);
    replyLayout->addWidget(_sendReply);
    replyLayout->addWidget(_cancel);
    _replyRow->hide();

    _error = CNSErrorLabel(QStringLiteral("error"), this);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_tip);
    layout->addWidget(_noData);
    layout->addWidget(splitter, 2);
    layout->addLayout(codeRow);
    layout->addWidget(_answer, 1);
    layout->addWidget(_replyRow);
    layout->addWidget(_error);

    connect(_menu, &QTreeWidget::currentItemChanged, this, &AccountPlugin::showEntry);
    connect(_sendCode, &QPushButton::clicked, this, [this] { send(_code->text().trimmed()); });
    connect(_code, &QLineEdit::returnPressed, _sendCode, &QPushButton::click);
    connect(_code, &QLineEdit::textChanged, this, &AccountPlugin::updateButtons);
    connect(_sendReply, &QPushButton::clicked, this, [this] {
        const QString reply = _reply->text().trimmed();
        _answer->appendPlainText(QStringLiteral("> ") + reply);
        _reply->clear();
        send(reply);
    });
    connect(_reply, &QLineEdit::returnPressed, _sendReply, &QPushButton::click);
    connect(_reply, &QLineEdit::textChanged, this, &AccountPlugin::updateButtons);
    connect(_cancel, &QPushButton::clicked, this, &AccountPlugin::cancelSession);

    connect(_controller, &AccountController::uiBlockChanged, this, &AccountPlugin::setBusy);
    connect(_controller, &AccountController::messageShown, this,
            [this](const QString& text) { showAnswer(text, false); });
    connect(_controller, &AccountController::replyRequested, this,
            [this](const QString& text) { showAnswer(text, true); });
    // Answers without a text only come as answerReceived; say what they mean.
    connect(_controller, &AccountController::answerReceived, this, [this](const BLUssdReceive& receive) {
        if (!receive.strContent.isEmpty())
            return;
        if (receive.nReportType == BLUssdReceive::kNotSupported)
            showAnswer(tr("The network does not offer this service. Check the code."), false);
        else if (receive.nReportType == BLUssdReceive::kEnded)
            showAnswer(tr("The network ended the dialogue."), false);
    });
    connect(_controller, &AccountController::sendFailed, this, [this](const QString& text, Outcome outcome) {
        _sessionOpen = false;
        _replyRow->hide();
        _error->setText(tr("Sending %1 failed: %2. Check the code and that the modem is registered, then try "
                           "again.")
                            .arg(text, QString::fromStdString(
                                           FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp))));
        _error->show();
        updateButtons();
    });

    showEntry();
    updateButtons();
}

AccountPlugin::~AccountPlugin() = default;

void AccountPlugin::modemReady() {
    _ready = true;
    _error->hide();
    loadMenus();
    updateButtons();
}

void AccountPlugin::modemGone() {
    _ready = false;
    _controller->setUIBlock(false);
    _sessionOpen = false;
    _replyRow->hide();
    _answer->clear();
    _error->hide();
    _menu->clear();
    _data = {};
    _tip->clear();
    _noData->hide();
    showEntry();
    updateButtons();
}

void AccountPlugin::loadMenus() {
    _menu->clear();
    _data = {};
    const QString imsi = link().equipment().strImsi;
    _controller->setLanguageIndex(PreferredLanguage());
    int loaded = _controller->loadAccountData(imsi);
    if (loaded == 0 && _controller->accountData().groups.empty()) {
        // A file without that language: its first one.
        _controller->setLanguageIndex(-1);
        loaded = _controller->loadAccountData(imsi);
    }
    if (loaded == 0)
        _data = _controller->accountData();
    for (const _TAccountGroupItem& group : _data.groups) {
        auto* groupItem = new QTreeWidgetItem(_menu, {Q(group.strName)});
        groupItem->setFlags(Qt::ItemIsEnabled);
        for (const _TAccountUSSDItem& entry : group.items) {
            auto* item = new QTreeWidgetItem(groupItem, {Q(entry.strText)});
            item->setData(0, kEntryRole, QVariant::fromValue(reinterpret_cast<quintptr>(&entry)));
        }
    }
    _menu->expandAll();
    _tip->setText(Q(_data.strTip));
    _tip->setVisible(!_data.strTip.empty());
    const bool none = _data.groups.empty();
    _noData->setText(loaded != 0
                         ? tr("The account menu file for this SIM card is damaged. You can still send a "
                              "service code below.")
                         : tr("There are no account menus for this SIM card. You can still send a "
                              "service code such as *100# below."));
    _noData->setVisible(none);
    _menu->setVisible(!none);
    _entryBox->setVisible(!none);
    showEntry();
}

void AccountPlugin::showEntry() {
    _entry = nullptr;
    if (QTreeWidgetItem* item = _menu->currentItem()) {
        const quintptr pointer = item->data(0, kEntryRole).value<quintptr>();
        _entry = reinterpret_cast<const _TAccountUSSDItem*>(pointer);
    }
    while (_inputsForm->rowCount() > 0)
        _inputsForm->removeRow(0);
    _inputs.clear();
    qDeleteAll(_entryButtons);
    _entryButtons.clear();
    _inputError->hide();
    if (!_entry) {
        _entryBox->setTitle(tr("Service"));
        _prompt->setText(_data.groups.empty() ? QString() : tr("Choose a service on the left."));
        return;
    }
    _entryBox->setTitle(Q(_entry->strTitle.empty() ? _entry->strText : _entry->strTitle));
    _prompt->setText(Q(_entry->strPrompt));
    int number = 0;
    for (const _TAccountInputItem& field : _entry->inputs) {
        auto* edit = new QLineEdit(_entryBox);
        edit->setObjectName(QStringLiteral("input%1").arg(number++));
        if (field.nMaxLen > 0)
            edit->setMaxLength(field.nMaxLen);
        if (!field.strLimitation.empty()) {
            const QRegularExpression allowed(
                QStringLiteral("[%1]*").arg(QRegularExpression::escape(Q(field.strLimitation))));
            edit->setValidator(new QRegularExpressionValidator(allowed, edit));
        }
        // The field's own hint, else its limits ("12 to 16 characters: 0123456789").
        const QString least = QLocale().toString(field.nMinLen), most = QLocale().toString(field.nMaxLen);
        QString limits = field.nMaxLen <= 0               ? tr("at least %1 characters").arg(least)
                         : field.nMinLen == field.nMaxLen ? tr("%1 characters").arg(most)
                                                          : tr("%1 to %2 characters").arg(least, most);
        if (!field.strLimitation.empty())
            limits += QStringLiteral(": ") + Q(field.strLimitation);
        edit->setPlaceholderText(field.strText.empty() ? limits : Q(field.strText));
        edit->setToolTip(limits);
        _inputsForm->addRow(Q(field.strTitle) + QLatin1Char(':'), edit);
        _inputs.append(edit);
    }
    auto* row = static_cast<QHBoxLayout*>(_buttonsRow->layout());
    number = 0;
    for (const _TAccountButtonItem& button : _entry->buttons) {
        auto* push =
            new QPushButton(Q(button.strName.empty() ? button.strCode : button.strName), _buttonsRow);
        push->setObjectName(QStringLiteral("button%1").arg(number++));
        const QString code = Q(button.strCode);
        connect(push, &QPushButton::clicked, this, [this, code] { runButton(code); });
        row->insertWidget(row->count() - 1, push);
        _entryButtons.append(push);
    }
    updateButtons();
}

QString AccountPlugin::checkInput(const _TAccountInputItem& field, const QString& text) {
    const QString title = Q(field.strTitle);
    const auto length = text.size();
    if (length < field.nMinLen || (field.nMaxLen > 0 && length > field.nMaxLen)) {
        // One pass, so that a "%2" in the provider's title stays as it is.
        const QString least = QLocale().toString(field.nMinLen), most = QLocale().toString(field.nMaxLen);
        if (field.nMaxLen <= 0)
            return tr("%1 needs at least %2 characters.").arg(title, least);
        if (field.nMinLen == field.nMaxLen)
            return tr("%1 needs %2 characters.").arg(title, least);
        return tr("%1 needs %2 to %3 characters.").arg(title, least, most);
    }
    const QString allowed = Q(field.strLimitation);
    if (!allowed.isEmpty()) {
        for (const QChar c : text) {
            if (!allowed.contains(c))
                return tr("%1 takes only the characters %2.").arg(title, allowed);
        }
    }
    return {};
}

void AccountPlugin::runButton(const QString& code) {
    if (!_entry)
        return;
    QStringList values;
    auto field = _entry->inputs.begin();
    for (QLineEdit* edit : std::as_const(_inputs)) {
        if (field == _entry->inputs.end())
            break;
        const QString value = edit->text();
        if (const QString wrong = checkInput(*field++, value); !wrong.isEmpty()) {
            _inputError->setText(wrong);
            _inputError->show();
            edit->setFocus();
            return;
        }
        values << value;
    }
    _inputError->hide();
    send(AccountController::composeUSSDCommand(code, values));
}

void AccountPlugin::send(const QString& text) {
    if (!_ready || _busyState || text.isEmpty())
        return;
    if (const QString problem = ModemTextProblem(tr("the code"), text, kUssdTextMaxLength);
        !problem.isEmpty()) {
        _error->setText(problem);
        _error->show();
        return;
    }
    _error->hide();
    if (!_sessionOpen)
        _answer->clear();
    _controller->sendUSSDCmd(text);
}

void AccountPlugin::cancelSession() {
    _controller->sendUSSDCancelCmd();
    _controller->setUIBlock(false);
    _sessionOpen = false;
    _replyRow->hide();
    _answer->appendPlainText(tr("(dialogue ended)"));
    updateButtons();
}

void AccountPlugin::showAnswer(const QString& text, bool question) {
    if (text.isEmpty())
        return;
    _answer->appendPlainText(text);
    _sessionOpen = question && _ready;
    _replyRow->setVisible(_sessionOpen);
    if (_sessionOpen)
        _reply->setFocus();
    updateButtons();
}

void AccountPlugin::setBusy(bool busy) {
    _busyState = busy;
    _busy->setVisible(busy);
    updateButtons();
}

void AccountPlugin::updateButtons() {
    const bool idle = _ready && !_busyState;
    _sendCode->setEnabled(idle && !_sessionOpen && !_code->text().trimmed().isEmpty());
    _sendCode->setText(_busyState && !_sessionOpen ? tr("Sending…") : tr("&Send"));
    _code->setEnabled(_ready && !_sessionOpen);
    for (QPushButton* button : std::as_const(_entryButtons))
        button->setEnabled(idle && !_sessionOpen);
    _sendReply->setEnabled(idle && _sessionOpen && !_reply->text().trimmed().isEmpty());
    _cancel->setEnabled(_ready && _sessionOpen);
}
