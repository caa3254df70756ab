#pragma once

#include "APNInfo.h"
#include "ConnectRecords.h"
#include "NotificationCenter.h"
#include "Outcome.h"
#include "Statistics/TrafficStatics.h"
#include "StatisticsRecords.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <optional>

class AppConfig;
class ModemLink;

// Names and keys the connection controllers and their views share.
inline const QString CONNECTION_UPDATE_PROFILE = QStringLiteral("CONNECTION_UPDATE_PROFILE");
inline const QString KEY_FOR_UPDATE_PROFILE = QStringLiteral("KEY_FOR_UPDATE_PROFILE");
inline const QString CONNECTOR_READY = QStringLiteral("CONNECTOR_READY");
inline const QString SELECTED_PROFILE_INDEX = QStringLiteral("SELECTED PROFILE INDEX");
inline const QString KEY_FOR_PROFILE_INDEX = QStringLiteral("KEY_FOR_PROFILE_INDEX");
inline const QString CONNECT_STATE = QStringLiteral("CONNECT_STATE");
inline const QString KEY_VALUE_OBJECT = QStringLiteral("KEY_VALUE_OBJECT");
inline const QString NOTIFY_TRAFFIC_STATISTICS = QStringLiteral("NOTIFY_TRAFFIC_STATISTICS");
inline const QString KEY_FOR_NOTIFY_TRAFFIC_STATISTICS = QStringLiteral("KEY_FOR_NOTIFY_TRAFFIC_STATISTICS");
inline const QString KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_UPDATA_RATE =
    QStringLiteral("KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_UPDATA_RATE");
inline const QString KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_DOWNDATA_RATE =
    QStringLiteral("KEY_FOR_NOTIFY_TRAFFIC_STATISTICS_DOWNDATA_RATE");
// Posted by whoever watches the network (status bar, command line) with "ROAMSTATE", "GPRSSTATE" and
// "OPERATOR" from the network information.
inline const QString NETWORK_UPDATE = QStringLiteral("NETWORK_UPDATE");
inline const QString KEY_ROAMSTATE = QStringLiteral("ROAMSTATE");
inline const QString KEY_GPRSSTATE = QStringLiteral("GPRSSTATE");
inline const QString KEY_OPERATOR = QStringLiteral("OPERATOR");

// The logic behind the connect view, on the GUI thread. It makes the modem's dial-up service ready
// (creating it with the "VELModemService" tool when it is missing), dials the chosen profile, ends the
// link, polls the link's state and counters once a second from the first dial on, and feeds the traffic
// history. It talks to the modem only through the link's asynchronous requests; the link's unplug report
// ("MESSAGE_CONNECT_STATUS" without a value) ends the link's state. Views bind to its state: the connect
// button's title key ("IDS_CONNECT" or "IDS_DISCONNECT") and whether it is enabled, whether the profile
// choice is enabled, the busy indicator, the offered profiles and the selected index; viewStateChanged()
// tells them to look again.
//
// Connection states: -1 invalid, 0 disconnected, 1 connecting, 2 connected, 3 disconnecting.
// Announced state numbers ("CONNECT_STATE"): 0 connecting, 1 disconnecting, 2 connected, 3 disconnected.
class ConnectController : public QObject {
    Q_OBJECT
public:
    enum { kInvalid = -1, kDisconnected = 0, kConnecting = 1, kConnected = 2, kDisconnecting = 3 };
    enum {
        kAnnounceConnecting = 0,
        kAnnounceDisconnecting = 1,
        kAnnounceConnected = 2,
        kAnnounceDisconnected = 3
    };
    // Service-not-found retries after a creation; the next one is not sent.
    static constexpr int kMaxServiceRetries = 19;
    static constexpr int kStatusIntervalMs = 1000;

    // The configuration tells the default profile; traffic may be null (nothing is recorded then).
    ConnectController(ModemLink& link, AppConfig* config, TrafficStatics* traffic, QObject* parent = nullptr);
    ~ConnectController() override;

    // Start-up: sends "MESSAGE_MODEM_INIT"; the answers drive the loop until the connector is ready.
    void modemInit();
    void handleNotifyModemInit(const QVariantMap& response);
    // The link's state as the worker sees it now, once: the dial-up service is looked up first, so that a
    // link started by an earlier run shows too. Nothing else of the controller changes.
    void readStatus(std::function<void(Outcome outcome, int status)> done);
    // Runs the service tool for the modem device (see ServiceTool); its exit status, 0 on success.
    int createModemService(const QString& modemDeviceName);

    void handleUpdateConnectionProfile(const Notification& notification);
    // With true (the desktop app), a dial-up service that needs an administrator's password to be made is
    // not made at start-up: the profiles are offered, and the connect button asks for the privileged step
    // (privilegedStepNeeded) before dialling.
    void setAskBeforePrivilegedStep(bool ask) { _askBeforePrivilege = ask; }
    bool waitingForPrivilegedStep() const { return !_pendingServiceDevice.isEmpty(); }
    // Creates the dial-up service through pkexec, then dials the selected profile once it is found.
    void startPrivilegedStep();
    // The connect button.
    void actionForButtonConnect();
    void dialByAPNInfo(const APNInfo& profile);
    // Asked before every dial; a gate that answers false stops the dial (it tells the user why).
    void setDialGate(std::function<bool()> gate) { _dialGate = std::move(gate); }
    void processDisconnect();
    // The answer of a disconnect confirmation: only 1 (confirm) disconnects.
    void disconnectSheetDidEnd(int returnCode);

    void setupTimerToQueryConnectStatus();
    void actionTimerStatusChecker();
    void handleConnectStatus(const QVariantMap& response);
    void handleConnectStatistics(const QVariantMap& response);
    void sendModuleNotificationConnectStateChange(int state);
    void handleNetworkUpdateNotification(const Notification& notification);
    // Adds the session's latest counts to the totals and the pending day to its day; clears the pending
    // day's bytes.
    void saveTrafficStaticsData();
    // On application quit: saves the pending traffic data.
    void applicationWillTerminate();

    // What the views show.
    int connectState() const { return _connectState; }
    bool connectorReady() const { return _connectorReady; }
    bool serviceCreated() const { return _serviceCreated; }
    // The service tool's last exit status (0 none or success; pkexec's 126 and 127 when the user
    // dismissed the password dialog or may not authenticate).
    int serviceToolStatus() const { return _serviceFailure; }
    QString buttonTitleKey() const { return _buttonTitleKey; }
    bool buttonEnabled() const { return _buttonEnabled; }
    bool choiceEnabled() const { return _choiceEnabled; }
    bool busy() const { return _busy; }
    bool roaming() const { return _roaming; }
    const QList<APNInfo>& offeredProfiles() const { return _offeredProfiles; }
    int defaultIndex() const { return _defaultIndex; }
    int selectedIndex() const { return _selectedIndex; }
    void selectProfileIndex(int index);
    std::optional<APNInfo> lastDialedProfile() const { return _lastDialed; }
    const BLConnectStatistics& latestStatistics() const { return _latestSample; }
    // The traffic and connected time of today not yet in the day history.
    const _TrafficStaticsItem& pendingDayItem() const { return _pendingDay; }
    const _TrafficStaticsItem& runningTotals() const { return _runningTotals; }

    // Where the service tool's command line is echoed (standard output unless replaced).
    void setEchoSink(std::function<void(const QString&)> sink) { _echo = std::move(sink); }

    // Process-wide state, for a fresh start (tests).
    static int serviceRetryCount();
    static int lastAnnouncedState();
    static void resetProcessState();
    // The day the pending traffic belongs to (tests: a link that ran past midnight).
    static void setCurrentDay(const QDateTime& day);

signals:
    void viewStateChanged();
    // The texts of a warning the view shows (keys of the localized strings).
    void warningRequested(const QString& titleKey, const QString& messageKey, const QString& buttonKey);
    // Creating the dial-up service failed; the application ends.
    void serviceCreationFailed();
    // The connect button was pressed while the dial-up service waits for an administrator's password:
    // the view says why and calls startPrivilegedStep().
    void privilegedStepNeeded();
    // The privileged step did not create the service (the tool's or pkexec's exit status); the
    // application goes on, the button can try again.
    void privilegedStepFailed(int status);

private:
    void refreshConnectButton();
    void logConnectStatus(int status) const;
    void setBusy(bool busy);

    ModemLink& _link;
    AppConfig* _config;
    TrafficStatics* _traffic;
    QTimer _statusTimer;
    std::function<void(const QString&)> _echo;
    std::function<bool()> _dialGate;

    int _connectState = kInvalid;
    bool _connectorReady = false;
    bool _serviceCreated = false;
    int _serviceFailure = 0;
    bool _askBeforePrivilege = false;
    QString _pendingServiceDevice;
    int _dialIndexWhenReady = -1; // the profile chosen before the privileged step
    QList<APNInfo> _offeredProfiles;
    int _defaultIndex = 0;
    int _selectedIndex = 0;
    std::optional<APNInfo> _lastDialed;
    int _lastGprsState = -1;
    bool _roaming = false;
    QString _lastOperator;
    QString _buttonTitleKey = QStringLiteral("IDS_CONNECT");
    bool _buttonEnabled = false;
    bool _choiceEnabled = false;
    bool _busy = false;

    BLConnectStatistics _latestSample;
    _TrafficStaticsItem _runningTotals;
    _TrafficStaticsItem _pendingDay;
};
