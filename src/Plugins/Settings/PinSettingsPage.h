#pragma once

#include <QWidget>

class ModemLink;
class PinController;
class QLabel;
class QLineEdit;
class QPushButton;

// The SIM's PIN: whether the modem asks for it at start (switched with the current PIN) and changing it.
// Shows the attempts left and what went wrong in words. The codes typed in are sent to the modem and
// cleared from the fields; they are never shown or logged.
class PinSettingsPage : public QWidget {
    Q_OBJECT
public:
    explicit PinSettingsPage(ModemLink& link, QWidget* parent = nullptr);

    void modemReady();
    void modemGone();

    // Empty when the text can be a PIN (4 to 8 digits), else what to correct.
    static QString pinProblem(const QString& pin);

private:
    void readState();
    void toggleCheck();
    void changePin();
    void finish(const QString& what, const QString& done, int code);
    void showPinRequest(int enabled);
    void updateButtons();
    void setStatus(const QString& text, bool error);

    PinController* _controller = nullptr;
    QLabel* _checkState = nullptr;
    QLabel* _attempts = nullptr;
    QLineEdit* _currentPin = nullptr;
    QPushButton* _toggle = nullptr;
    QLineEdit* _oldPin = nullptr;
    QLineEdit* _newPin = nullptr;
    QLineEdit* _confirmPin = nullptr;
    QPushButton* _change = nullptr;
    QLabel* _status = nullptr;
    bool _ready = false;
    bool _busy = false;
    int _enabled = -1; // PIN check: -1 unknown, 0 off, 1 on
};
