#pragma once

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QLineEdit;

// Edits one phonebook entry. The phonebook's own limits bound the fields: a name no longer than the
// storage keeps, and a phone number as people type it (read in the home region and kept in the form the
// modem dials) or a service code of "+", digits, "*" and "#". What cannot be stored is said under the
// field, and Save stays disabled until the entry can be stored.
class ContactDialog : public QDialog {
    Q_OBJECT
public:
    // maxName / maxNumber: the storage's limits in characters; 0 or less when unknown. region: the
    // country numbers are read in (empty: only international numbers are rewritten).
    ContactDialog(const QString& storeName, int maxName, int maxNumber, const QString& region,
                  QWidget* parent = nullptr);

    void setContact(const QString& name, const QString& number);
    QString name() const;
    // The number to store; empty while the typed one cannot be stored.
    QString number() const;

private:
    void updateSave();
    // The typed number in its stored form, or the reason it cannot be stored in error.
    QString readNumber(QString& error) const;

    int _maxNumber = 0;
    QString _region;
    QLineEdit* _name = nullptr;
    QLineEdit* _number = nullptr;
    QLabel* _hint = nullptr;
    QLabel* _numberError = nullptr;
    QLabel* _nameError = nullptr;
    QDialogButtonBox* _buttons = nullptr;
};
