#include "SimProfiles.h"

#include "AppConfig.h"
#include "BLRecords.h"
#include "Connector/ProfileSettingsController.h"
#include "GUIThreadAgent.h"
#include "ModemSession.h"
#include "WorkNotification.h"

AppConfig* SessionConfig(CliContext& context) {
    AppConfig* config = ApplicationShell::sharedShell().appConfig();
    if (!config)
        context.exitCode =
            ReportFailure(context, WORKER_ERR_GENERAL, "the configuration could not be loaded");
    return config;
}

bool LearnSim(CliContext& context, ModemSession& session, AppConfig& config,
              ProfileSettingsController& settings, BLNetworkInfo* network) {
    const QVariantMap equipment = session.request(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    if (const int failed = session.check(equipment, "reading the SIM's identity")) {
        context.exitCode = failed;
        return false;
    }
    const auto info = WorkNotification::GetValueObject(equipment).value<BLEquipmentInfo>();
    AppConfig::DeviceInfo& device = config.deviceInfo();
    device.blOK = true;
    device.strManufacturer = info.strManufacturer;
    device.strModel = info.strModel;
    device.strRevision = info.strRevision;
    device.strSerialNumber = info.strSerialNumber;
    device.strImsi = info.strImsi;
    const QVariantMap response = session.request(MESSAGE_NETWORK_GET_INFO);
    const auto networkInfo = WorkNotification::GetValueObject(response).value<BLNetworkInfo>();
    settings.chooseProfilesForSIM(networkInfo.strSpName);
    if (network)
        *network = networkInfo;
    return true;
}
