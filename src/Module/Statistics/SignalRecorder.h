#pragma once

#include <QObject>

#include "SignalHistory.h"

class ModemLink;

// Keeps the signal history while this process owns the modem (the desktop app without the modem service,
// or the service): with each network poll of the link it reads the signal, bearer and cell and adds them
// to the history. A link whose modem another process owns records nothing; that process does.
class SignalRecorder : public QObject {
    Q_OBJECT
public:
    explicit SignalRecorder(ModemLink& link, QObject* parent = nullptr);
    ~SignalRecorder() override; // writes the minute being gathered

    SignalHistory& history() { return _history; }

private:
    ModemLink& _link;
    SignalHistory _history;
    bool _reading = false;
};
