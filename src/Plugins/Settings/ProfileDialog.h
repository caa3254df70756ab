#pragma once

#include <QDialog>

#include "APNInfo.h"

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;

// Adds or edits one profile of the user's: name, APN, number, user name, password and authentication.
// The fields end up in a dial-up options file, so line breaks are refused and a name is required.
class ProfileDialog : public QDialog {
    Q_OBJECT
public:
    explicit ProfileDialog(const APNInfo& profile, QWidget* parent = nullptr);

    // The profile as edited; fields the dialog does not show are kept from the one it was given.
    APNInfo profile() const;

    // Empty when the fields can be saved, else what to correct.
    static QString problem(const APNInfo& profile);

    void accept() override;

private:
    APNInfo _original;
    QLineEdit* _name = nullptr;
    QLineEdit* _apn = nullptr;
    QLineEdit* _number = nullptr;
    QLineEdit* _user = nullptr;
    QLineEdit* _password = nullptr;
    QComboBox* _auth = nullptr;
    QLabel* _error = nullptr;
};
