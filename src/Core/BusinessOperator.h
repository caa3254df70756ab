#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

#include "DialString.h"

class ComOperation;
class NetworkOperator;
class TInterfaceAtSublayer;
struct BLEquipmentInfo;
struct BLNetworkInfo;
struct TSmsDateTime;

// The worker's request executor. Each request method reads its argument from the request dictionary's
// value object, calls the AT sublayer or the dial-up object, converts the answer into a BL record and
// stores it as the response's value object. It returns 0 on success, the sublayer's code unchanged on a
// sublayer failure (storing nothing), 3 when the argument is missing, or one of the codes named below.
// Runs on the worker thread only; the three references are not owned.
class BusinessOperator {
public:
    BusinessOperator(ComOperation* com, TInterfaceAtSublayer* atSubLayer, NetworkOperator* networkOperator);
    BusinessOperator(const BusinessOperator&) = delete;
    BusinessOperator& operator=(const BusinessOperator&) = delete;

    // System and equipment.
    int InitComm();
    // Initialises the modem's dial-up side: its code 2 gives 37, 8 gives 38, 1 gives 39, others 0. The
    // modem device name is stored in every case.
    int ModemInit(QVariantMap& response);
    int GetEquipmentInfo(QVariantMap& response);
    // Gathers what it can; always 0.
    int GetDiagInfo(QVariantMap& response);

    // PIN.
    int PINCheckState(QVariantMap& response);
    int PINEnable(const QVariantMap& request);
    int PINGetInfo(const QVariantMap& request, QVariantMap& response);
    // Stores the PIN state after the change even when the change failed; returns the change's code.
    int PINChange(const QVariantMap& request, QVariantMap& response);
    int PINVerify(const QVariantMap& request);
    int PINVerifyPuk(const QVariantMap& request);
    int PINGetState(QVariantMap& response);

    // Network.
    int NetworkGetInfo(QVariantMap& response);
    // The reading of the signal finder: "RSSI_DBM", "RSCP_DBM", "ECIO_TENTHS" (0 or 1 when unknown),
    // "BEARER", "LAC" and "CI" (-1 when unknown).
    int NetworkGetSignal(QVariantMap& response);
    int NetworkGetSignalDbm(QVariantMap& response);
    int NetworkGetList(QVariantMap& response);
    int NetworkSet(const QVariantMap& request);
    int NetworkInit();
    // Only nState of the result is meaningful.
    int NetworkGetRegState(QVariantMap& response);
    int NetworkSetBand(const QVariantMap& request);
    int NetworkGetBand(QVariantMap& response);
    // Any refusal by the modem is 33.
    int NetworkSetMode(const QVariantMap& request);
    int NetworkGetMode(QVariantMap& response);

    // Phonebook.
    int PBGetConstraint(QVariantMap& response);
    int PBInitList(QVariantMap& response);
    int PBDeleteItem(const QVariantMap& request);
    int PBUpdateItem(const QVariantMap& request);
    int PBAddItem(const QVariantMap& request, QVariantMap& response);
    int PBGetStorageInfo(QVariantMap& response);

    // SMS.
    int SMSInit();
    int SMSGetServiceCentre(QVariantMap& response);
    int SMSSetServiceCentre(const QVariantMap& request);
    int SMSGetList(QVariantMap& response);
    int SMSDelete(const QVariantMap& request);
    int SMSSend(const QVariantMap& request);
    int SMSSetPreferredStorage(const QVariantMap& request);
    // Sets the preferred storage to 0 and reports 0.
    int SMSGetPreferredStorage(QVariantMap& response);
    int SMSSetValidPeriod(const QVariantMap& request);
    int SMSGetStorageState(QVariantMap& response);
    int SMSSetStatusReportFlag(const QVariantMap& request);
    // Registers the computer-side inbox (SMSExt) for the IMSI of the request, or the modem's when none.
    int SMSUsePCInbox(const QVariantMap& request);
    // Claims (or gives back) incoming messages from given numbers for a client; always 0.
    int SMSConfigFilterSMS(const QVariantMap& request);

    // USSD.
    int USSDCheckState(QVariantMap& response);
    int USSDSetState(const QVariantMap& request);
    int USSDSendCmd(const QVariantMap& request);

    // SIM toolkit.
    int SatInit(QVariantMap& response);
    int SatGetCurrentProactiveCommand();

    // Unsolicited reports: the request's value object is the raw report line.
    int OnReceiveSATCMD(const QVariantMap& request, QVariantMap& response);
    int OnReceiveUSSD(const QVariantMap& request, QVariantMap& response);
    // Returns 44, with the claiming client's class name as the response's requester, when a filtering
    // client took the message (it is then deleted from the device).
    int OnReceiveSMS(const QVariantMap& request, QVariantMap& response);

    // Data connection. Dialup returns 1 when dialling fails; GetStatistics and GetPPPStatus 1 when the
    // connection layer has no answer.
    int Dialup(const QVariantMap& request);
    int Disconnect();
    int GetStatistics(QVariantMap& response);
    int GetPPPStatus(QVariantMap& response);
    int GetConnectStatus(QVariantMap& response);

    // Helpers.
    int checkEquipmentInfo(BLEquipmentInfo& info);
    int checkNetworkInfo(BLNetworkInfo& info);
    // The class name of the client that filters number, or a null string.
    QString isFilterListNumber(const QString& number) const;
    // The time stamp read as local time with the machine's current offset.
    static QDateTime convertDateTimeType2NSDate(const TSmsDateTime& dateTime);

    // SIM toolkit menus, as the modem lists them: the toolkit controller reads the "+STGI:" listings and
    // builds the answers (dictionary keys at SatKey). SatGetMenu stores the main menu's listing
    // (AT+STGI=17) with the character set (AT+CSCS?). SatSelectItem sends an answer to the card (an
    // "AT+STGR=..." line without its "\r": 45 for any other command line) when the modem's set is still
    // the one it was built for, and SatPoll a bare AT that lets the modem give out held lines; both store
    // the listing of the command the card has announced by then ("+STIN: 11" then AT+STGI=11; the
    // sublayer's text for the end of the dialogue), or an empty text when none came yet. 46 on a stick
    // without the toolkit commands.
    static constexpr int kSatAnswerMaxLength = 4096;
    int SatGetMenu(QVariantMap& response);
    int SatSelectItem(const QVariantMap& request, QVariantMap& response);
    int SatPoll(QVariantMap& response);

    // Voice calls. The call family's codes pass through (25 "NO CARRIER", 26 "NO ANSWER", 27 "BUSY",
    // 28 "NO DIALTONE"). CallDial takes the number as a string: an optional "+" then digits, "*" and "#",
    // at most kDialNumberCap characters, else 1 without dialling. CallSendDTMF takes a string of keys and
    // sends them one by one; a key that is not a DTMF key gives 1 before anything is sent. CallGetList
    // stores a list of BLCallItem, empty when there is no call.
    static constexpr int kDialNumberCap = DialString::kNumberCap;
    static constexpr int kDTMFKeysCap = DialString::kDtmfKeysCap;
    int CallDial(const QVariantMap& request);
    int CallAnswer();
    int CallHangUp();
    int CallSendDTMF(const QVariantMap& request);
    int CallGetList(QVariantMap& response);

    // The modem's GPS receiver on and off.
    int GPSInit();
    int GPSUninit();

private:
    // The modem's character set, a USSD_TE_* number.
    int satCharSet(int& teSet);
    // The command the card announced since the last answer, fetched; an empty listing when none.
    int satFetchAnnounced(int teSet, QVariantMap& response);
    NetworkOperator* _networkOperator = nullptr;
    TInterfaceAtSublayer* _pAtSubLayer = nullptr;
    ComOperation* _com = nullptr;
    // Client class name to its numbers; created by the first SMSConfigFilterSMS.
    std::optional<QMap<QString, QStringList>> _filterSMSClients;
};
