#pragma once

#include "AccountData.h"
#include "Outcome.h"
#include "UssdRecords.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>

class ModemLink;

// The account menus and USSD dialogues for the desktop app and the tool: picks the SIM's menu file, sends
// the USSD strings of its entries through the link ("MESSAGE_USSD_SENDCMD") and turns the network's
// answers ("MESSAGE_RPT_RECEIVE_USSD") into what the views show. The views connect to the signals.
//
// One request is outstanding at a time: a send blocks the view until the answer, the time-out (40 s by
// default) or a cancel.
class AccountController : public QObject {
    Q_OBJECT
public:
    static constexpr int kDefaultTimeoutMs = 40000;

    using Done = std::function<void(Outcome outcome)>;

    explicit AccountController(ModemLink& link, QObject* parent = nullptr);

    // The data file for the SIM: the first ".dat" file of the account data folder whose name (up to its
    // first ".") begins the IMSI, else "Default.dat" when present, else a null string.
    static QString getUSSDDataFileNameByIMSI(const QString& imsi);
    static QString getUSSDDataFileNameByIMSI(const QString& imsi, const QString& dataDir);

    // Reads the SIM's menus in the current language; GetUSSDDataFromFile's result (0 also when there is
    // no file: then accountData() has no groups).
    int loadAccountData(const QString& imsi);
    const _TAccountData& accountData() const { return _accountData; }

    // Sends the string (or the override string, when one is set) as a USSD request and blocks the view.
    // sent gets the request's own answer; a refusal also unblocks and reaches sendFailed().
    void sendUSSDCmd(const QString& command, Done sent = {});
    // Ends the running dialogue, only while a device is present.
    void sendUSSDCancelCmd(Done done = {});
    // 1: busy, waiting sheet shown, time-out timer started. 0: timer stopped, sheet closed.
    void setUIBlock(bool block);
    // The time-out fired: unblocks and reports the time-out text.
    void actionTimeout();
    // The answer report: unblocks; report type 1 asks the user for a reply, any other shows the text.
    void handleUSSDReceiveUSSD(const QVariantMap& report);

    // The string a button sends: its code, then the entry's inputs separated by "*" and closed by "#"
    // ("*102*" with "1234" gives "*102*1234#"); without inputs the code alone.
    static QString composeUSSDCommand(const QString& code, const QStringList& inputs);

    // 0 gives 2, 1 gives 1, anything else 0.
    static int paidTypeFromInternalType(int internalType);

    // The language the menus are read in; -1 (default) takes the file's first language.
    void setLanguageIndex(int languageIndex) { _languageIndex = languageIndex; }
    int languageIndex() const { return _languageIndex; }
    // What stands in for the shell's getIfDeviceFoundOK; without it no device is assumed.
    void setDeviceFoundProbe(std::function<bool()> probe) { _deviceFound = std::move(probe); }
    // Sent instead of every string given to sendUSSDCmd while not empty (for trying a code by hand).
    void setUSSDDebugString(const QString& command) { _strUSSDDebugString = command; }
    void setTimeoutInterval(int milliseconds) { _timeoutMs = milliseconds; }
    bool isUIBlocked() const { return _blocked; }

    static QString timeoutMessage();

signals:
    // The busy indicator and the waiting sheet.
    void uiBlockChanged(bool blocked);
    // A message box with this text: an answer that ends the dialogue, or the time-out.
    void messageShown(const QString& text);
    // The network waits for a reply: the text goes to the entry window's label, the reply window shows.
    void replyRequested(const QString& text);
    // Every answer of the network, also those without a text (the dialogue ended, a code not offered).
    void answerReceived(const BLUssdReceive& answer);
    // The modem refused the string while the view waited for its answer.
    void sendFailed(const QString& command, Outcome outcome);

private:
    ModemLink& _link;
    QTimer* _timer = nullptr;
    std::function<bool()> _deviceFound;
    _TAccountData _accountData;
    QString _strUSSDDebugString;
    int _languageIndex = -1;
    int _timeoutMs = kDefaultTimeoutMs;
    bool _blocked = false;
};
