#include "ProfileSettingsController.h"

#include "AppConfig.h"
#include "Connector/ConnectController.h"

#include <QVariant>

ProfileSettingsController::ProfileSettingsController(AppConfig& config, QObject* parent)
    : QObject(parent), _config(config) {
    NotificationCenter::defaultCenter().addObserver(CONNECTOR_READY, this, [this](const Notification& n) {
        handleConnectionReady(n);
        sendUpdatApnInfoMessage();
    });
}

ProfileSettingsController::~ProfileSettingsController() {
    NotificationCenter::defaultCenter().removeObserver(this);
}

void ProfileSettingsController::chooseProfilesForSIM(const QString& spn) {
    if (_perSimProfiles.has_value()) {
        return;
    }
    const AppConfig::DeviceInfo& device = _config.deviceInfo();
    if (!device.blOK) {
        return;
    }
    const QList<APNInfo> chosen = _config.getFixApnByIMSI(device.strImsi, spn);
    if (chosen.isEmpty()) {
        return;
    }
    _perSimProfiles = chosen;
    _simOperatorProfile = chosen.first();
}

void ProfileSettingsController::handleConnectionReady(const Notification&) {
    if (!_config.isSetDefaultUserApn() && _perSimProfiles.has_value() && !_perSimProfiles->isEmpty()) {
        _config.setDefaultUserApnItemsByIndex(AppConfig::kIMSIListIndexBase);
    }
    emit profilesChanged();
}

QList<APNInfo> ProfileSettingsController::offeredProfiles() const {
    QList<APNInfo> offered = _perSimProfiles.value_or(QList<APNInfo>());
    offered.append(_config.getUserApnList());
    return offered;
}

void ProfileSettingsController::sendUpdatApnInfoMessage() {
    NotificationCenter::defaultCenter().post(
        CONNECTION_UPDATE_PROFILE, this, {{KEY_FOR_UPDATE_PROFILE, QVariant::fromValue(offeredProfiles())}});
}

QString ProfileSettingsController::defaultProfileName() const {
    const std::optional<APNInfo> profile = _config.getDefaultUserAPNItem();
    return profile ? profile->strAccount : QString();
}

bool ProfileSettingsController::validIndex(int index) const {
    if (index >= AppConfig::kIMSIListIndexBase) {
        return index - AppConfig::kIMSIListIndexBase < _config.getUserIMSIApnList().size();
    }
    return index >= 0 && index < _config.getUserApnList().size();
}

void ProfileSettingsController::addProfile(const APNInfo& profile) {
    _config.addUserAPNItem(profile);
    sendUpdatApnInfoMessage();
    emit profilesChanged();
}

bool ProfileSettingsController::saveProfile(int index, const APNInfo& profile) {
    if (index >= AppConfig::kIMSIListIndexBase || !validIndex(index)) {
        return false;
    }
    _config.saveUserAPNItem(index, profile);
    sendUpdatApnInfoMessage();
    emit profilesChanged();
    return true;
}

bool ProfileSettingsController::deleteProfile(int index) {
    if (index >= AppConfig::kIMSIListIndexBase || !validIndex(index)) {
        return false;
    }
    // The user's default is always first in the list: deleting it leaves no default.
    if (index == 0 && _config.isSetDefaultUserApn() && !_config.isFromIMSI()) {
        _config.removeDefaultApnItems();
    }
    _config.deleteSingleUserApnItem(index);
    sendUpdatApnInfoMessage();
    emit profilesChanged();
    return true;
}

bool ProfileSettingsController::setDefaultProfile(int index) {
    if (!validIndex(index)) {
        return false;
    }
    _config.setDefaultUserApnItemsByIndex(index);
    sendUpdatApnInfoMessage();
    emit profilesChanged();
    return true;
}
