#include "ToolkitPlugin.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "FailureText.h"
#include "ModemTextCheck.h"

namespace {

constexpr int kFormatDigits = ToolkitController::kFormatDigits;
constexpr int kFormatYesNo = ToolkitController::kFormatYesNo;
constexpr int kResultDone = ToolkitController::kResultDone;

constexpr int kItemRole = Qt::UserRole + 1;

QPushButton* Button(const QString& text, const QString& objectName, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    return button;
}

} // namespace

ToolkitPlugin::ToolkitPlugin(ModuleContext& context, QWidget* parent)
    : ModulePlugin(context, parent), _controller(new ToolkitController(link(), this)) {
    connect(_controller, &ToolkitController::supportChanged, this, &ModulePlugin::supportChanged);
    _title = CNSPlainLabel(QStringLiteral("title"), this);
    QFont bold = _title->font();
    bold.setBold(true);
    _title->setFont(bold);
    _text = CNSPlainLabel(QStringLiteral("text"), this);
    _text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    _items = new QListWidget(this);
    _items->setObjectName(QStringLiteral("items"));
    _items->setAccessibleName(tr("Toolkit menu"));
    _items->setMinimumHeight(140);
    _input = new QLineEdit(this);
    _input->setObjectName(QStringLiteral("input"));
    _input->setAccessibleName(tr("Your answer"));
    _inputHint = CNSPlainLabel(QStringLiteral("inputHint"), this);
    _status = CNSPlainLabel(QStringLiteral("status"), this);
    _error = CNSPlainLabel(QStringLiteral("error"), this);
    CNSSetErrorStyle(_error);
    _busy = new QProgressBar(this);
    _busy->setObjectName(QStringLiteral("busy"));
    _busy->setRange(0, 0);
    _busy->setTextVisible(false);
    _busy->setMaximumWidth(120);

    _select = Button(tr("&Open"), QStringLiteral("select"), this);
    _back = Button(tr("&Back"), QStringLiteral("back"), this);
    _ok = Button(tr("&OK"), QStringLiteral("ok"), this);
    _yes = Button(tr("&Yes"), QStringLiteral("yes"), this);
    _no = Button(tr("&No"), QStringLiteral("no"), this);
    _end = Button(tr("&End session"), QStringLiteral("endSession"), this);
    _reload = Button(tr("&Read again"), QStringLiteral("reload"), this);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {_select, _back, _ok, _yes, _no})
        buttons->addWidget(button);
    buttons->addStretch(1);
    buttons->addWidget(_busy);
    buttons->addWidget(_reload);
    buttons->addWidget(_end);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_title);
    layout->addWidget(_text);
    layout->addWidget(_items, 1);
    layout->addWidget(_input);
    layout->addWidget(_inputHint);
    layout->addStretch(0);
    layout->addWidget(_status);
    layout->addWidget(_error);
    layout->addLayout(buttons);

    connect(_select, &QPushButton::clicked, this, &ToolkitPlugin::choose);
    connect(_items, &QListWidget::itemActivated, this, &ToolkitPlugin::choose);
    connect(_items, &QListWidget::currentRowChanged, this, &ToolkitPlugin::updateButtons);
    connect(_back, &QPushButton::clicked, this, [this] {
        answer(BLSatResponse{_current.nCommand, ToolkitController::kResultBack, 0, {}});
    });
    connect(_ok, &QPushButton::clicked, this, [this] {
        if (_current.nCommand == kGetInput || _current.nCommand == kGetInkey)
            sendInput();
        else
            answer(BLSatResponse{_current.nCommand, kResultDone, 0, {}});
    });
    connect(_input, &QLineEdit::returnPressed, _ok, &QPushButton::click);
    connect(_input, &QLineEdit::textChanged, this, &ToolkitPlugin::updateButtons);
    connect(_yes, &QPushButton::clicked, this, [this] {
        answer(BLSatResponse{_current.nCommand, kResultDone, 1, {}});
    });
    connect(_no, &QPushButton::clicked, this, [this] {
        answer(BLSatResponse{_current.nCommand, kResultDone, 0, {}});
    });
    connect(_end, &QPushButton::clicked, this, &ToolkitPlugin::endSession);
    connect(_reload, &QPushButton::clicked, this, [this] { loadMenu(); });

    modemGone();
}

void ToolkitPlugin::modemReady() {
    _ready = true;
    loadMenu();
}

void ToolkitPlugin::modemGone() {
    _ready = false;
    emit supportChanged(true); // the next modem may have a toolkit
    ++_generation;
    _controller->cancel();
    _busyState = false;
    _haveCommand = false;
    _current = {};
    _title->setText(tr("SIM Toolkit"));
    _text->setText(tr("The card's menu is read when the modem is ready."));
    _text->show();
    _items->clear();
    _status->clear();
    _error->clear();
    updateButtons();
}

void ToolkitPlugin::setBusy(bool busy) {
    _busyState = busy;
    updateButtons();
}

void ToolkitPlugin::fail(const QString& what, Outcome outcome) {
    _error->setText(tr("%1 failed: %2. Try again, or end the session to go back to the main menu.")
                        .arg(what, QString::fromStdString(
                                       FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp))));
}

void ToolkitPlugin::loadMenu(const QString& note) {
    if (!_ready)
        return;
    const int generation = _generation;
    _error->clear();
    _status->setText(note);
    setBusy(true);
    _controller->readMenu([this, generation](Outcome outcome, const BLSatCommand& menu) {
        if (generation != _generation)
            return;
        setBusy(false);
        if (!outcome.ok()) {
            showNoMenu(tr("The card's menu could not be read (%1). This SIM card may have no toolkit "
                          "menu; press Read again to retry.")
                           .arg(QString::fromStdString(
                               FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp))));
            return;
        }
        if (menu.lstItems.isEmpty()) {
            showNoMenu(tr("This SIM card has no toolkit menu."));
            return;
        }
        showCommand(menu);
    });
}

void ToolkitPlugin::showNoMenu(const QString& why) {
    _haveCommand = false;
    _current = {};
    _title->setText(tr("SIM Toolkit"));
    _text->setText(why);
    _text->show();
    _items->clear();
    updateButtons();
}

void ToolkitPlugin::answer(const BLSatResponse& response) {
    if (!_ready || _busyState)
        return;
    const int generation = _generation;
    _error->clear();
    _status->clear();
    setBusy(true);
    _controller->answer(response, [this, generation](Outcome outcome, const BLSatCommand& next) {
        if (generation != _generation)
            return;
        setBusy(false);
        if (!outcome.ok()) {
            fail(tr("Sending your answer to the card"), outcome);
            return;
        }
        if (next.nCommand == kSessionEnd || (ToolkitController::isMenu(next) && next.lstItems.isEmpty()))
            loadMenu(tr("The card ended the dialogue."));
        else
            showCommand(next);
    });
}

void ToolkitPlugin::showCommand(const BLSatCommand& command) {
    _current = command;
    _haveCommand = true;
    _items->clear();
    _input->clear();
    _input->setValidator(nullptr);
    _inputHint->clear();

    const bool menu = ToolkitController::isMenu(command);
    _title->setText(command.nCommand == kMainMenu
                        ? (command.strText.isEmpty() ? tr("SIM Toolkit") : command.strText)
                    : menu ? command.strText
                           : tr("Message from the SIM card"));
    _text->setText(menu ? QString() : command.strText);
    _text->setVisible(!_text->text().isEmpty());
    if (menu) {
        for (const BLSatMenuItem& entry : command.lstItems) {
            auto* item = new QListWidgetItem(entry.strText, _items);
            item->setData(kItemRole, entry.nItemId);
            if (entry.nItemId == command.nDefaultItem && command.nDefaultItem != 0)
                _items->setCurrentItem(item);
        }
        if (!_items->currentItem() && _items->count() > 0)
            _items->setCurrentRow(0);
    } else if (command.nCommand == kGetInput ||
               (command.nCommand == kGetInkey && command.nFormat != kFormatYesNo)) {
        const bool inkey = command.nCommand == kGetInkey;
        const int most = inkey                    ? 1
                         : command.nMaxLength > 0 ? std::min<int>(command.nMaxLength, kMaxInput)
                                                  : kMaxInput;
        const int least = inkey ? 1 : std::clamp<int>(command.nMinLength, 0, most);
        _input->setMaxLength(most);
        if (command.nFormat == kFormatDigits) {
            _input->setValidator(
                new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9*#+]*")), _input));
        }
        if (!inkey)
            _input->setText(command.strDefaultText.left(most));
        QString hint =
            inkey ? tr("Type one key.")
            : least == most
                ? tr("Type %n character(s).", nullptr, most)
                : tr("Type %1 to %2 characters.").arg(QLocale().toString(least), QLocale().toString(most));
        if (command.nFormat == kFormatDigits)
            hint += QLatin1Char(' ') + tr("Digits, *, # and + only.");
        _inputHint->setText(hint);
    } else if (command.nCommand != kDisplayText && command.nCommand != kGetInkey) {
        _status->setText(tr("The card sent a request this program does not show (%1). Press OK to accept it "
                            "or End session to leave.")
                             .arg(command.nCommand));
    }
    updateButtons();
    if (_input->isVisible())
        _input->setFocus();
}

void ToolkitPlugin::choose() {
    if (!ToolkitController::isMenu(_current) || !_items->currentItem())
        return;
    answer(BLSatResponse{_current.nCommand, kResultDone, _items->currentItem()->data(kItemRole).toInt(), {}});
}

void ToolkitPlugin::sendInput() {
    if (!_ok->isEnabled())
        return;
    if (const QString problem = ModemTextProblem(
            tr("the answer"), _input->text(), static_cast<std::size_t>(ToolkitController::kMaxAnswerChars));
        !problem.isEmpty()) {
        _error->setText(problem);
        return;
    }
    answer(BLSatResponse{_current.nCommand, kResultDone, 0, _input->text()});
}

void ToolkitPlugin::endSession() {
    if (!_ready || !_haveCommand || _current.nCommand == kMainMenu)
        return;
    const int generation = _generation;
    setBusy(true);
    _controller->answer(BLSatResponse{_current.nCommand, ToolkitController::kResultEndedByUser, 0, {}},
                        [this, generation](Outcome, const BLSatCommand&) {
                            if (generation != _generation)
                                return;
                            // Whatever the card answers, the main menu is shown again.
                            setBusy(false);
                            loadMenu();
                        });
}

void ToolkitPlugin::updateButtons() {
    const int command = _haveCommand ? _current.nCommand : -1;
    const bool menu = _haveCommand && ToolkitController::isMenu(_current);
    const bool yesNo = command == kGetInkey && _current.nFormat == kFormatYesNo;
    const bool typed = command == kGetInput || (command == kGetInkey && !yesNo);
    const bool idle = _ready && !_busyState;

    _items->setVisible(menu);
    _input->setVisible(typed);
    _inputHint->setVisible(typed);
    _select->setVisible(menu);
    _back->setVisible(command == kSelectItem);
    _ok->setVisible(_haveCommand && !menu && !yesNo);
    _yes->setVisible(yesNo);
    _no->setVisible(yesNo);
    _end->setVisible(_haveCommand && command != kMainMenu);
    _reload->setVisible(_ready && !_haveCommand);
    _busy->setVisible(_busyState);

    bool inputOk = true;
    if (typed) {
        const int least =
            command == kGetInkey ? 1 : std::clamp<int>(_current.nMinLength, 0, _input->maxLength());
        inputOk = _input->text().size() >= least;
    }
    _select->setEnabled(idle && _items->currentItem());
    _select->setText(_busyState && menu ? tr("Opening…") : tr("&Open"));
    _back->setEnabled(idle);
    _ok->setEnabled(idle && inputOk);
    _yes->setEnabled(idle);
    _no->setEnabled(idle);
    _end->setEnabled(idle);
    _reload->setEnabled(idle);
}
