#pragma once

#include <QObject>

class QSocketNotifier;

// SIGTERM and SIGINT end the app the way its Quit menu does: the handler only writes the signal's number
// to a pipe, and the event loop reads it and quits, so the windows close, the link the app dialled is hung
// up and its dial options file removed. Replaces any handler set before for these signals.
class QuitOnSignals : public QObject {
    Q_OBJECT
public:
    explicit QuitOnSignals(QObject* parent = nullptr);
    ~QuitOnSignals() override;

private:
    void readSignal();

    QSocketNotifier* _notifier = nullptr;
};
