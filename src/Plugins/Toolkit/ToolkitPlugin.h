#pragma once

#include "ModulePlugin.h"
#include "SAT/ToolkitController.h"
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
    static constexpr int kDisplayText = ToolkitController::kDisplayText;
    static constexpr int kGetInkey = ToolkitController::kGetInkey;
    static constexpr int kGetInput = ToolkitController::kGetInput;
    static constexpr int kSelectItem = ToolkitController::kSelectItem;
    static constexpr int kMainMenu = ToolkitController::kMainMenu;
    static constexpr int kSessionEnd = ToolkitController::kSessionEnd;
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
    void fail(const QString& what, Outcome outcome);

    ToolkitController* _controller = nullptr;
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
