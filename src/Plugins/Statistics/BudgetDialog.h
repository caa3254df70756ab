#pragma once

#include <QDialog>

#include "Budget/DataBudget.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;

// Asks for a SIM's data budget: the size per period ("2 GB"), the billing day, a time budget in hours, the
// warning share, whether to hang up at 100 %, and the roaming guard. Accepting with a size that does not
// read (and no time budget) is refused with a word beside the field.
class BudgetDialog : public QDialog {
    Q_OBJECT
public:
    BudgetDialog(const BudgetSettings& settings, QWidget* parent = nullptr);

    // The settings as entered, over the ones given.
    BudgetSettings settings() const { return _settings; }

    void accept() override;

private:
    BudgetSettings _settings;
    QLineEdit* _size = nullptr;
    QSpinBox* _day = nullptr;
    QSpinBox* _hours = nullptr;
    QSpinBox* _warn = nullptr;
    QCheckBox* _hangUp = nullptr;
    QComboBox* _roaming = nullptr;
    QLabel* _problem = nullptr;
};
