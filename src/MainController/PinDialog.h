#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class ModemLink;

// Asks for the PIN, or for the PUK and a new PIN, with the attempts left. Stays open on a wrong code
// (showing the attempts now left) and closes once the SIM accepts it.
class PinDialog : public QDialog {
    Q_OBJECT
public:
    PinDialog(ModemLink& link, bool puk, QWidget* parent = nullptr);

    bool asksForPuk() const { return _puk; }
    QString attemptsText() const;
    QString errorText() const;
    // Fills in the codes and presses OK, as the user would.
    void enter(const QString& code, const QString& newPin = {});

private:
    void refresh();
    void submit();
    bool inputValid() const;

    ModemLink& _link;
    bool _puk;
    QLabel* _attempts = nullptr;
    QLabel* _error = nullptr;
    QLineEdit* _code = nullptr;
    QLineEdit* _newPin = nullptr;
    QLineEdit* _confirmPin = nullptr;
    QPushButton* _ok = nullptr;
    bool _busy = false;
};
