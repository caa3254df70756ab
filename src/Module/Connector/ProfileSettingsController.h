#pragma once

#include "APNInfo.h"
#include "NotificationCenter.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

class AppConfig;

// The logic behind the profile settings, on the GUI thread: which profiles the SIM in use gets from the
// operator database, the default profile, and the user's own list. When the connector is ready
// ("CONNECTOR_READY") it makes the SIM's first profile the default if the user has none, and publishes
// the offered list ("CONNECTION_UPDATE_PROFILE": the SIM's profiles, then the user's).
//
// User profiles are addressed by their position in the user list (0-based); the SIM's profiles from
// AppConfig::kIMSIListIndexBase on, as AppConfig does.
class ProfileSettingsController : public QObject {
    Q_OBJECT
public:
    explicit ProfileSettingsController(AppConfig& config, QObject* parent = nullptr);
    ~ProfileSettingsController() override;

    // Once the device information is known: the SIM's profiles by its IMSI (from the configuration's
    // device information) and its service provider name. Does nothing when they are chosen already or the
    // device information is not valid.
    void chooseProfilesForSIM(const QString& spn);
    void handleConnectionReady(const Notification& notification);
    void sendUpdatApnInfoMessage();

    // The SIM's profiles followed by the user's, as the connect view offers them.
    QList<APNInfo> offeredProfiles() const;
    const std::optional<QList<APNInfo>>& perSimProfiles() const { return _perSimProfiles; }
    std::optional<APNInfo> simOperatorProfile() const { return _simOperatorProfile; }
    // The name shown for the default profile; empty when there is none.
    QString defaultProfileName() const;

    // Editing the user list; each change is saved and published. False for an index that addresses
    // nothing (nothing changes then).
    void addProfile(const APNInfo& profile);
    bool saveProfile(int index, const APNInfo& profile);
    bool deleteProfile(int index);
    bool setDefaultProfile(int index);

signals:
    void profilesChanged();

private:
    bool validIndex(int index) const;

    AppConfig& _config;
    std::optional<QList<APNInfo>> _perSimProfiles;
    std::optional<APNInfo> _simOperatorProfile;
};
