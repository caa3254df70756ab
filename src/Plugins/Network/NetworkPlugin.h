#pragma once

#include "ModulePlugin.h"

#include "NetworkRecords.h"

class QButtonGroup;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTreeWidget;

// The radio network: the current registration (operator, state, technology, signal, roaming), a search for
// the operators in reach with automatic or manual selection, and the band and mode the modem may use.
// Every modem request is asynchronous; the search can take minutes on a real modem and the tab stays usable
// meanwhile.
class NetworkPlugin : public ModulePlugin {
    Q_OBJECT
public:
    explicit NetworkPlugin(ModuleContext& context, QWidget* parent = nullptr);

    QString title() const override { return tr("Network"); }
    QString moduleName() const override { return QStringLiteral("network"); }

    void modemReady() override;
    void modemGone() override;

    // Values of the band and mode choices: the modem's band mask and its selection-mode number (0 to 4).
    struct Choice {
        const char* text;
        int value;
    };
    static const Choice kBands[];
    static const Choice kModes[];

private:
    void showNetwork(const BLNetworkInfo& info);
    void readRegistration();
    void search();
    void registerSelected();
    void markCurrent(const QString& code);
    void readRadio();
    void applyRadio();
    void updateButtons();
    void setStatus(QLabel* label, const QString& text, bool error);
    static void selectValue(QComboBox* box, int value, const QString& unknownText);

    // Current registration.
    QLabel* _operator = nullptr;
    QLabel* _registration = nullptr;
    QLabel* _technology = nullptr;
    QLabel* _bearer = nullptr;
    QLabel* _signal = nullptr;
    QLabel* _roaming = nullptr;
    QLabel* _selection = nullptr;
    // Search and selection.
    QPushButton* _search = nullptr;
    QProgressBar* _searchProgress = nullptr;
    QLabel* _searchStatus = nullptr;
    QTreeWidget* _networks = nullptr;
    QRadioButton* _automatic = nullptr;
    QRadioButton* _manual = nullptr;
    QPushButton* _register = nullptr;
    // Band and mode.
    QComboBox* _band = nullptr;
    QComboBox* _mode = nullptr;
    QPushButton* _applyRadio = nullptr;
    QLabel* _radioStatus = nullptr;

    bool _ready = false;
    bool _searching = false;
    bool _registering = false;
    bool _radioBusy = false;
    bool _radioUnsupported = false; // the stick has no band or mode selection
    bool _regInFlight = false;
};
