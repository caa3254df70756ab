#pragma once

#include "ModulePlugin.h"

#include "Network/NetworkController.h"

class CNSSignalBars;
class QButtonGroup;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class SignalFinderDialog;

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

    // The band and mode choices offered, with the values the modem takes.
    template <typename Value> struct Choice {
        const char* text;
        Value value;
    };
    static const Choice<NetworkBand> kBands[];
    static const Choice<NetworkMode> kModes[];

private:
    void showNetwork(const BLNetworkInfo& info);
    void search();
    void showOperators(const Outcome& outcome, const QList<BLNetworkListItem>& operators);
    void registerSelected();
    void registered(const Outcome& outcome, const QString& plmn);
    void markCurrent(const QString& code);
    void readRadio();
    void applyRadio();
    void radioApplied(const Outcome& outcome, NetworkController::RadioStep step);
    void updateButtons();
    void setStatus(QLabel* label, const QString& text, bool error);
    static void selectValue(QComboBox* box, int value, const QString& unknownText);

    NetworkController* _network = nullptr;
    QString _registeringWith; // the name shown while registering
    // Current registration.
    QLabel* _operator = nullptr;
    QLabel* _registration = nullptr;
    QLabel* _technology = nullptr;
    QLabel* _bearer = nullptr;
    CNSSignalBars* _signal = nullptr;
    QPushButton* _findSignal = nullptr;
    SignalFinderDialog* _finder = nullptr; // made when first opened
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
    bool _registering = false;
    bool _radioBusy = false;
    bool _radioUnsupported = false; // the stick has no band or mode selection
};
