#pragma once

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QLineEdit;

// Edits one phonebook entry. The phonebook's own limits bound the fields: a name and a number no longer
// than the storage keeps, and a number of "+", digits, "*" and "#" only. Save stays disabled until the
// entry can be stored; a name the modem cannot take as it stands says why below the fields.
class ContactDialog : public QDialog {
    Q_OBJECT
public:
    // maxName / maxNumber: the storage's limits in characters; 0 or less when unknown.
    ContactDialog(const QString& storeName, int maxName, int maxNumber, QWidget* parent = nullptr);

    void setContact(const QString& name, const QString& number);
    QString name() const;
    QString number() const;

    // True when the number has only the characters a phonebook stores ("+" first, digits, "*", "#").
    static bool isDialable(const QString& number);

private:
    void updateSave();

    QLineEdit* _name = nullptr;
    QLineEdit* _number = nullptr;
    QLabel* _hint = nullptr;
    QLabel* _nameError = nullptr;
    QDialogButtonBox* _buttons = nullptr;
};
