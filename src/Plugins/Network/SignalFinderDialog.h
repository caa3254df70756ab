#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>

#include "Network/SignalPeakWindow.h"
#include "Network/SignalSample.h"

class CNSSignalGauge;
class CNSSignalTone;
class ModemLink;
class NetworkController;
struct Outcome;
class QCheckBox;
class QLabel;

// The signal finder: reads the signal once a second while it is open and shows it on a large gauge with
// the best value of the last minute, so that the stick can be moved about on its cable to the best place.
// RSCP, Ec/Io, bearer and cell when the modem tells them; a tone whose pitch follows the signal on request.
class SignalFinderDialog : public QDialog {
    Q_OBJECT
public:
    static constexpr int kReadingIntervalMs = 1000;

    explicit SignalFinderDialog(ModemLink& link, QWidget* parent = nullptr);
    ~SignalFinderDialog() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void showReading(const Outcome& outcome, const SignalSample& sample);

    NetworkController* _network = nullptr;
    CNSSignalGauge* _gauge = nullptr;
    CNSSignalTone* _tone = nullptr;
    QLabel* _rscp = nullptr;
    QLabel* _ecio = nullptr;
    QLabel* _bearer = nullptr;
    QLabel* _cell = nullptr;
    QLabel* _status = nullptr;
    QCheckBox* _toneSwitch = nullptr;
    QTimer _timer;
    QElapsedTimer _clock;
    SignalPeakWindow _peak;
};
