#include "SimProfiles.h"

#include "AppConfig.h"
#include "ApplicationShell.h"
#include "BLRecords.h"
#include "Connector/ProfileSettingsController.h"
#include "Equipment/EquipmentController.h"
#include "ModemSession.h"
#include "Network/NetworkController.h"
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
    EquipmentController equipment(session.link());
    BLEquipmentInfo info;
    if (const int failed =
            session.check(session.read([&](auto done) { equipment.readEquipment(done); }, info,
                                       QT_TRANSLATE_NOOP("dialtone", "reading the SIM's identity")),
                          QT_TRANSLATE_NOOP("dialtone", "reading the SIM's identity"))) {
        context.exitCode = failed;
        return false;
    }
    AppConfig::DeviceInfo& device = config.deviceInfo();
    device.blOK = true;
    device.strManufacturer = info.strManufacturer;
    device.strModel = info.strModel;
    device.strRevision = info.strRevision;
    device.strSerialNumber = info.strSerialNumber;
    device.strImsi = info.strImsi;
    NetworkController networkReader(session.link());
    // A failed read leaves the provider's name empty: the profiles are then chosen by the IMSI alone.
    const auto [networkRead, networkInfo] = session.await(
        networkReader, &NetworkController::infoRead, [&] { networkReader.readInfo(); },
        QT_TRANSLATE_NOOP("dialtone", "reading the network"));
    (void)networkRead;
    settings.chooseProfilesForSIM(networkInfo.strSpName);
    if (network)
        *network = networkInfo;
    return true;
}
