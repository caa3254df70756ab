#pragma once

#include <QWidget>

#include "APNInfo.h"

struct ModuleContext;
class QLabel;
class QPushButton;
class QTreeWidget;

// The connection profiles offered for the SIM: the SIM's own (from the operator database, read-only) and
// the user's, which can be added, edited, deleted and made the default. Every change is saved at once by
// the profile settings controller.
class ProfilesPage : public QWidget {
    Q_OBJECT
public:
    explicit ProfilesPage(ModuleContext& context, QWidget* parent = nullptr);

    // Reads the offered list again (after the SIM changed or a profile was edited).
    void refresh();

private:
    // The selected row's index as the controller addresses it (user list from 0, the SIM's list from
    // AppConfig::kIMSIListIndexBase on); -1 when nothing is selected.
    int selectedIndex() const;
    bool selectedFromSim() const;
    void addProfile();
    void editProfile();
    void deleteProfile();
    void makeDefault();
    void updateButtons();
    void showError(const QString& text);

    ModuleContext& _context;
    QTreeWidget* _list = nullptr;
    QPushButton* _add = nullptr;
    QPushButton* _edit = nullptr;
    QPushButton* _delete = nullptr;
    QPushButton* _default = nullptr;
    QLabel* _empty = nullptr;
    QLabel* _status = nullptr;
    qsizetype _simCount = 0;
};
