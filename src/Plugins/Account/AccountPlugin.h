#pragma once

#include <QList>

#include "Account/AccountData.h"
#include "ModulePlugin.h"

class AccountController;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTreeWidget;
class QWidget;

// The operator's account services for the SIM in the modem: the menus of its account data file (chosen
// by the IMSI) as a tree, the chosen entry's inputs and buttons, a free field for any USSD code, and the
// network's answers as plain text. When the network asks a question the reply field stays open until the
// user answers or ends the dialogue.
class AccountPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit AccountPlugin(ModuleContext& context, QWidget* parent = nullptr);
    ~AccountPlugin() override;

    QString title() const override { return tr("Account"); }
    QString moduleName() const override { return QStringLiteral("account"); }

    void modemReady() override;
    void modemGone() override;

    // True while the network waits for the user's reply.
    bool sessionOpen() const { return _sessionOpen; }
    // Empty when the text fits the field, else what is wrong with it.
    static QString checkInput(const _TAccountInputItem& field, const QString& text);

private:
    void loadMenus();
    void showEntry();
    void runButton(const QString& code);
    void send(const QString& text);
    void cancelSession();
    void showAnswer(const QString& text, bool question);
    void setBusy(bool busy);
    void updateButtons();

    AccountController* _controller = nullptr;
    _TAccountData _data;
    const _TAccountUSSDItem* _entry = nullptr;

    QLabel* _tip = nullptr;
    QLabel* _noData = nullptr;
    QTreeWidget* _menu = nullptr;
    QGroupBox* _entryBox = nullptr;
    QLabel* _prompt = nullptr;
    QFormLayout* _inputsForm = nullptr;
    QWidget* _buttonsRow = nullptr;
    QList<QLineEdit*> _inputs;
    QList<QPushButton*> _entryButtons;
    QLabel* _inputError = nullptr;

    QLineEdit* _code = nullptr;
    QPushButton* _sendCode = nullptr;
    QProgressBar* _busy = nullptr;
    QPlainTextEdit* _answer = nullptr;
    QWidget* _replyRow = nullptr;
    QLineEdit* _reply = nullptr;
    QPushButton* _sendReply = nullptr;
    QPushButton* _cancel = nullptr;
    QLabel* _error = nullptr;

    bool _ready = false;
    bool _busyState = false;
    bool _sessionOpen = false;
};
