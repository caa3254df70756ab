#pragma once

#include "ModulePlugin.h"
#include "SatRecords.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

// The SIM card's toolkit: its main menu, and after a choice whatever the card sends next (a sub-menu, a
// text to confirm, a question for a key, a yes or no, or a text) until the dialogue ends and the main
// menu is back. "End session" leaves a dialogue at any step.
class ToolkitPlugin : public ModulePlugin {
    Q_OBJECT
public:
    // The modem's numbers of the card's commands.
    static constexpr int kDisplayText = 1;
    static constexpr int kGetInkey = 2;
    static constexpr int kGetInput = 3;
    static constexpr int kSelectItem = 11;
    static constexpr int kMainMenu = 17;
    static constexpr int kSessionEnd = 20;
    // General results of an answer.
    static constexpr int kResultDone = 0;
    static constexpr int kResultEndedByUser = 16;
    static constexpr int kResultBack = 17;
    // The longest answer the field takes when the card gives no limit.
    static constexpr int kMaxInput = 255;

    explicit ToolkitPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("SIM Toolkit"); }
    QString moduleName() const override { return QStringLiteral("toolkit"); }

    void modemReady() override;
    void modemGone() override;

    // The command on screen.
    const BLSatCommand& current() const { return _current; }

private:
    void loadMenu(const QString& note = {});
    void answer(const BLSatResponse& response);
    void showCommand(const BLSatCommand& command);
    void showNoMenu(const QString& why);
    void choose();
    void sendInput();
    void endSession();
    void setBusy(bool busy);
    void updateButtons();
    void fail(const QString& what, const QVariantMap& response);

    BLSatCommand _current;
    bool _haveCommand = false;
    bool _ready = false;
    bool _busyState = false;
    int _generation = 0;

    QLabel* _title = nullptr;
    QLabel* _text = nullptr;
    QListWidget* _items = nullptr;
    QLineEdit* _input = nullptr;
    QLabel* _inputHint = nullptr;
    QLabel* _status = nullptr;
    QLabel* _error = nullptr;
    QProgressBar* _busy = nullptr;
    QPushButton* _select = nullptr;
    QPushButton* _back = nullptr;
    QPushButton* _ok = nullptr;
    QPushButton* _yes = nullptr;
    QPushButton* _no = nullptr;
    QPushButton* _end = nullptr;
    QPushButton* _reload = nullptr;
};
