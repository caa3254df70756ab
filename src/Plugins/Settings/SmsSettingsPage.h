#pragma once

#include <QString>
#include <QWidget>

#include <optional>

#include "SMS/MessagesController.h"
#include "SmsRecords.h"

class ModemLink;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

// Message settings: the SIM's service centre number (read from and written to the SIM), and the validity
// period, delivery reports and storage for new messages. The modem forgets the last three when it is
// unplugged, so they are kept in the user defaults and applied again every time the modem is ready.
class SmsSettingsPage : public QWidget {
    Q_OBJECT
public:
    // User defaults keys.
    static inline const QString kValidityKey = QStringLiteral("SMSValidityPeriod"); // "1h", "1d", "1w", "max"
    static inline const QString kReportKey = QStringLiteral("SMSStatusReport");     // "TRUE" / "FALSE"
    static inline const QString kStorageKey = QStringLiteral("SMSPreferredStorage"); // 1 SIM, 2 modem

    explicit SmsSettingsPage(ModemLink& link, QWidget* parent = nullptr);

    void modemReady();
    void modemGone();

    // A validity choice ("12h", "2d", "1w", "max") as the modem's record; nothing for an unknown code.
    static std::optional<BLSmsValidPeriod> validityPeriod(const QString& code);

private:
    void readServiceCentre();
    void setServiceCentre();
    void applyStored(bool fromUser);
    void setStatus(const QString& text, bool error);
    void updateButtons();

    MessagesController _messages;
    QLineEdit* _centre = nullptr;
    QPushButton* _setCentre = nullptr;
    QComboBox* _validity = nullptr;
    QCheckBox* _reports = nullptr;
    QComboBox* _storage = nullptr;
    QPushButton* _apply = nullptr;
    QLabel* _status = nullptr;
    bool _ready = false;
    int _pending = 0;
    QString _failures;
};
