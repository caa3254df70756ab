#include "ConnectCommand.h"

#include <QThread>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>

#include "AppConfig.h"
#include "BLRecords.h"
#include "GUIThreadAgent.h"
#include "ModemSession.h"
#include "RecordJson.h"
#include "StatusText.h"
#include "WorkNotification.h"

namespace {

constexpr int kConnected = 2;
constexpr int kDisconnected = 0;

volatile std::sig_atomic_t g_interrupted = 0;

void OnInterrupt(int) {
    g_interrupted = 1;
}

// The profiles offered for the SIM: its own (chosen by IMSI and provider name) first, then the user's.
// The default is the first user profile when the user set one, else the SIM's first.
QList<APNInfo> OfferedProfiles(AppConfig& config, const QString& imsi, const QString& spn,
                               int& defaultIndex) {
    QList<APNInfo> offered = config.getFixApnByIMSI(imsi, spn);
    defaultIndex =
        config.isSetDefaultUserApn() && !config.isFromIMSI() ? static_cast<int>(offered.size()) : 0;
    offered.append(config.getUserApnList());
    return offered;
}

BLConnectDialinfo DialInfoFrom(const APNInfo& profile) {
    BLConnectDialinfo info;
    info.strDialNumber = profile.strDialNum;
    info.strAccountName = profile.strUserName;
    info.strPassword = profile.strPassword;
    info.strAPN = profile.strApn;
    info.strDNS1 = profile.strDNS1;
    info.strDNS2 = profile.strDNS2;
    info.authType = profile.nAuthType;
    return info;
}

int ConnectStatus(ModemSession& session) {
    const QVariantMap response = session.request(MESSAGE_CONNECT_STATUS);
    return WorkNotification::GetErrorCode(response) == WORKER_OK
               ? WorkNotification::GetValueObject(response).toInt()
               : -1;
}

int Connect(CliContext& context, ModemSession& session, const std::string& wanted) {
    AppConfig* config = ApplicationShell::sharedShell().appConfig();
    if (!config)
        return ReportFailure(context, WORKER_ERR_GENERAL, "the configuration could not be loaded");
    const QVariantMap equipment = session.request(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    if (const int failed = session.check(equipment, "reading the SIM's IMSI"))
        return failed;
    const QString imsi = WorkNotification::GetValueObject(equipment).value<BLEquipmentInfo>().strImsi;
    const QVariantMap network = session.request(MESSAGE_NETWORK_GET_INFO);
    const QString spn = WorkNotification::GetValueObject(network).value<BLNetworkInfo>().strSpName;

    int index = 0;
    const QList<APNInfo> offered = OfferedProfiles(*config, imsi, spn, index);
    if (!wanted.empty()) {
        index = -1;
        for (qsizetype i = 0; i < offered.size() && index < 0; ++i) {
            if (offered[i].strAccount.compare(QString::fromStdString(wanted), Qt::CaseInsensitive) == 0)
                index = static_cast<int>(i);
        }
        bool number = false;
        const int position = QString::fromStdString(wanted).toInt(&number);
        if (index < 0 && number && position >= 1 && position <= offered.size())
            index = position - 1;
        if (index < 0)
            return ReportFailure(context, WORKER_ERR_GENERAL, "no profile \"" + wanted + "\" for this SIM");
    }
    if (index >= offered.size())
        return ReportFailure(context, WORKER_ERR_GENERAL, "no connection profile for this SIM");
    const APNInfo& profile = offered[index];
    ReportProgress("Connecting with \"" + profile.strAccount.toStdString() + "\" (APN " +
                   profile.strApn.toStdString() + ")...");

    const QVariantMap dialed =
        session.request(MESSAGE_CONNECT_DIALUP, QVariant::fromValue(DialInfoFrom(profile)));
    if (const int failed = session.check(dialed, "dialling"))
        return failed;

    // The link belongs to this process: hold it until interrupted, or until it ends by itself.
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::milliseconds(static_cast<long long>(context.waitSeconds * 1000));
    int status = ConnectStatus(session);
    while (status != kConnected && !g_interrupted && std::chrono::steady_clock::now() < deadline) {
        QThread::msleep(250);
        status = ConnectStatus(session);
    }
    if (status != kConnected) {
        session.request(MESSAGE_CONNECT_DISCONNECT);
        return ReportFailure(context, WORKER_ERR_GENERAL,
                             g_interrupted ? "interrupted while connecting"
                                           : "the connection did not come up");
    }
    if (context.json)
        PrintJson({{"strAccount", profile.strAccount.toStdString()}, {"connectStatus", status}});
    else
        std::printf("Connected with \"%s\"; press Ctrl-C to hang up\n",
                    profile.strAccount.toUtf8().constData());
    std::fflush(stdout);
    while (!g_interrupted && status == kConnected) {
        QThread::msleep(500);
        status = ConnectStatus(session);
    }
    session.request(MESSAGE_CONNECT_DISCONNECT);
    if (!g_interrupted && status != kDisconnected)
        return ReportFailure(context, WORKER_ERR_GENERAL,
                             "the connection ended: " + ConnectStatusText(status));
    return EXIT_OK;
}

} // namespace

void AddConnectCommand(CLI::App& app, CliContext& context) {
    auto profile = std::make_shared<std::string>();
    CLI::App* connect =
        app.add_subcommand("connect", "Connect with the SIM's profile and hold the connection");
    connect->add_option("PROFILE", *profile, "The profile's name, or its number in the offered list");
    connect->callback([&context, profile] {
        context.exitCode =
            RunInSession(context, [&](ModemSession& s) { return Connect(context, s, *profile); });
    });
    app.add_subcommand("disconnect", "Hang up")->callback([&context] {
        context.exitCode = RunInSession(context, [&](ModemSession& s) -> int {
            const QVariantMap response = s.request(MESSAGE_CONNECT_DISCONNECT);
            if (const int failed = s.check(response, "hanging up"))
                return failed;
            if (context.json)
                PrintJson(MapToJson(response));
            else
                std::printf("Disconnected\n");
            return EXIT_OK;
        });
    });
}
