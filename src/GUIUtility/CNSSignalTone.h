#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

// The signal finder's tone: a sine whose pitch follows the signal, from 300 Hz at -113 dBm to 1500 Hz
// at -51 dBm, silent while the signal is unknown. Builds without the sound library, and machines without a
// sound device, get short beeps of the desktop's bell instead, more of them a second for a stronger
// signal. A failure to start is never an error: note() says why there is no tone, in one line.
class CNSSignalTone : public QObject {
    Q_OBJECT
public:
    explicit CNSSignalTone(QObject* parent = nullptr);
    ~CNSSignalTone() override;

    // Starts or stops the sound: the sine, or the beeps when it cannot play.
    void setEnabled(bool on);
    bool isEnabled() const { return _enabled; }
    void setDbm(int dbm);
    QString note() const { return _note; }

    // The pitch of a figure in Hz; 0 for unknown.
    static int pitchOf(int dbm);

private:
    class Sine;
    bool startSine();

    bool _enabled = false;
    int _dbm = 0;
    QString _note;
    std::unique_ptr<Sine> _sine;
    QTimer _beeps;
    int _beepsLeft = 0;
};
