#include "FailureText.h"

#include <QCoreApplication>

#include "ModemErrorCause.h"
#include "StatusText.h"
#include "WorkNotification.h"

namespace {

struct CauseText {
    int cause;
    const char* text;
    const char* toolStep; // what to do next, when it differs between the front ends
    const char* appStep;
};

constexpr int Cme(int n) {
    return kCmeCause + n;
}
constexpr int Cms(int n) {
    return kCmsCause + n;
}

constexpr const char kNoSim[] =
    QT_TRANSLATE_NOOP("FailureText", "there is no SIM in the modem: insert one and plug the modem in again");
constexpr const char kSimLocked[] = QT_TRANSLATE_NOOP("FailureText", "the SIM is locked");
constexpr const char kPukLocked[] =
    QT_TRANSLATE_NOOP("FailureText", "the SIM is locked until its PUK is entered");
constexpr const char kVerifyPin[] = "dialtone pin verify PIN";
constexpr const char kEnterPin[] = QT_TRANSLATE_NOOP("FailureText", "enter its PIN with \"Unlock the SIM\"");
constexpr const char kEnterPuk[] = "dialtone pin puk PUK NEWPIN";
constexpr const char kEnterPukApp[] =
    QT_TRANSLATE_NOOP("FailureText", "enter the PUK and a new PIN with \"Unlock the SIM\"");
constexpr const char kNoNetwork[] =
    QT_TRANSLATE_NOOP("FailureText", "there is no network: check the signal and try again");
constexpr const char kSimBusy[] = QT_TRANSLATE_NOOP("FailureText", "the SIM is busy: try again in a moment");
constexpr const char kSimFailed[] =
    QT_TRANSLATE_NOOP("FailureText", "the SIM failed: take it out, check its contacts and try again");

// The causes a user can act on (3GPP TS 27.007 clause 9.2, TS 27.005 clause 3.2.5, TS 24.011 annex E).
constexpr CauseText kCauseTexts[] = {
    {Cme(3), QT_TRANSLATE_NOOP("FailureText", "the modem does not allow this now"), nullptr, nullptr},
    {Cme(4), QT_TRANSLATE_NOOP("FailureText", "the modem does not support this"), nullptr, nullptr},
    {Cme(10), kNoSim, nullptr, nullptr},
    {Cme(11), kSimLocked, kVerifyPin, kEnterPin},
    {Cme(12), kPukLocked, kEnterPuk, kEnterPukApp},
    {Cme(13), kSimFailed, nullptr, nullptr},
    {Cme(14), kSimBusy, nullptr, nullptr},
    {Cme(15), QT_TRANSLATE_NOOP("FailureText", "the modem does not accept this SIM"), nullptr, nullptr},
    {Cme(16), QT_TRANSLATE_NOOP("FailureText", "the PIN or password is wrong"),
     QT_TRANSLATE_NOOP("FailureText", "dialtone pin status shows the attempts left"),
     QT_TRANSLATE_NOOP("FailureText", "the PIN settings show the attempts left")},
    {Cme(17), QT_TRANSLATE_NOOP("FailureText", "this needs the SIM's PIN2"), nullptr, nullptr},
    {Cme(18), QT_TRANSLATE_NOOP("FailureText", "this needs the SIM's PUK2"), nullptr, nullptr},
    {Cme(20), QT_TRANSLATE_NOOP("FailureText", "the store is full: delete an entry first"), nullptr, nullptr},
    {Cme(21), QT_TRANSLATE_NOOP("FailureText", "there is no entry at that index"), nullptr, nullptr},
    {Cme(22), QT_TRANSLATE_NOOP("FailureText", "not found"), nullptr, nullptr},
    {Cme(23), QT_TRANSLATE_NOOP("FailureText", "the SIM's memory failed"), nullptr, nullptr},
    {Cme(24), QT_TRANSLATE_NOOP("FailureText", "the name is longer than the SIM allows"),
     QT_TRANSLATE_NOOP("FailureText", "dialtone contacts info shows the limits"), nullptr},
    {Cme(25), QT_TRANSLATE_NOOP("FailureText", "the name holds characters the SIM cannot store"), nullptr,
     nullptr},
    {Cme(26), QT_TRANSLATE_NOOP("FailureText", "the number is longer than the SIM allows"),
     QT_TRANSLATE_NOOP("FailureText", "dialtone contacts info shows the limits"), nullptr},
    {Cme(27), QT_TRANSLATE_NOOP("FailureText", "the number holds characters that cannot be dialled"), nullptr,
     nullptr},
    {Cme(30), kNoNetwork, nullptr, nullptr},
    {Cme(31), QT_TRANSLATE_NOOP("FailureText", "the network did not answer in time: try again"), nullptr,
     nullptr},
    {Cme(32), QT_TRANSLATE_NOOP("FailureText", "the network refuses the SIM, emergency calls only"),
     QT_TRANSLATE_NOOP("FailureText",
                       "choose another operator (dialtone network scan) or dialtone network auto"),
     QT_TRANSLATE_NOOP("FailureText", "choose another operator, or automatic selection")},
    {Cme(107), QT_TRANSLATE_NOOP("FailureText", "the SIM's subscription does not include data"), nullptr,
     nullptr},
    {Cme(111), QT_TRANSLATE_NOOP("FailureText", "this operator's network does not admit the SIM"),
     QT_TRANSLATE_NOOP("FailureText",
                       "choose another operator (dialtone network scan) or dialtone network auto"),
     QT_TRANSLATE_NOOP("FailureText", "choose another operator, or automatic selection")},
    {Cme(112), QT_TRANSLATE_NOOP("FailureText", "the network does not admit the SIM in this area"), nullptr,
     nullptr},
    {Cme(113), QT_TRANSLATE_NOOP("FailureText", "roaming is not allowed in this area"),
     QT_TRANSLATE_NOOP("FailureText", "choose another operator (dialtone network scan)"),
     QT_TRANSLATE_NOOP("FailureText", "choose another operator")},
    {Cms(1), QT_TRANSLATE_NOOP("FailureText", "the number is not in use: check the number"), nullptr,
     nullptr},
    {Cms(8), QT_TRANSLATE_NOOP("FailureText", "the operator barred sending this message"), nullptr, nullptr},
    {Cms(10), QT_TRANSLATE_NOOP("FailureText", "messages to this number are barred"), nullptr, nullptr},
    {Cms(21), QT_TRANSLATE_NOOP("FailureText", "the network refused the message"), nullptr, nullptr},
    {Cms(27), QT_TRANSLATE_NOOP("FailureText", "the recipient cannot be reached now: try again later"),
     nullptr, nullptr},
    {Cms(38), QT_TRANSLATE_NOOP("FailureText", "the network is out of order: try again later"), nullptr,
     nullptr},
    {Cms(41), QT_TRANSLATE_NOOP("FailureText", "the network failed for a moment: try again"), nullptr,
     nullptr},
    {Cms(42), QT_TRANSLATE_NOOP("FailureText", "the network is congested: try again later"), nullptr,
     nullptr},
    {Cms(50), QT_TRANSLATE_NOOP("FailureText", "the SIM's subscription does not include this service"),
     nullptr, nullptr},
    {Cms(302), QT_TRANSLATE_NOOP("FailureText", "the modem does not allow this now"), nullptr, nullptr},
    {Cms(303), QT_TRANSLATE_NOOP("FailureText", "the modem does not support this"), nullptr, nullptr},
    {Cms(310), kNoSim, nullptr, nullptr},
    {Cms(311), kSimLocked, kVerifyPin, kEnterPin},
    {Cms(313), kSimFailed, nullptr, nullptr},
    {Cms(314), kSimBusy, nullptr, nullptr},
    {Cms(316), kPukLocked, kEnterPuk, kEnterPukApp},
    {Cms(321), QT_TRANSLATE_NOOP("FailureText", "there is no message at that index"), nullptr, nullptr},
    {Cms(322), QT_TRANSLATE_NOOP("FailureText", "the message store is full"),
     QT_TRANSLATE_NOOP("FailureText",
                       "delete messages first (dialtone sms list, then dialtone sms delete ID)"),
     QT_TRANSLATE_NOOP("FailureText", "delete messages first")},
    {Cms(330), QT_TRANSLATE_NOOP("FailureText", "the service centre's number is not known"),
     QT_TRANSLATE_NOOP("FailureText", "set it with dialtone sms sc NUMBER"),
     QT_TRANSLATE_NOOP("FailureText", "set it in the message settings")},
    {Cms(331), kNoNetwork, nullptr, nullptr},
    {Cms(332), QT_TRANSLATE_NOOP("FailureText", "the network did not answer in time: try again"), nullptr,
     nullptr},
};

// In the user's language once the program has installed a translator (never for machine-readable output).
std::string Translated(const char* text) {
    return QCoreApplication::translate("FailureText", text).toStdString();
}

std::string Sentence(const CauseText& entry, FrontEnd frontEnd) {
    const char* step = frontEnd == FrontEnd::Tool ? entry.toolStep : entry.appStep;
    return step == nullptr ? Translated(entry.text) : Translated(entry.text) + ": " + Translated(step);
}

} // namespace

std::string ModemCauseText(int cause, FrontEnd frontEnd) {
    for (const CauseText& entry : kCauseTexts) {
        if (entry.cause == cause)
            return Sentence(entry, frontEnd);
    }
    return {};
}

std::string FailureText(int resultCode, int cause, FrontEnd frontEnd) {
    std::string text = ModemCauseText(cause, frontEnd);
    return text.empty() ? ResultCodeText(resultCode) : text;
}

QString ResponseFailureText(const QVariantMap& response) {
    return QString::fromStdString(FailureText(WorkNotification::GetErrorCode(response),
                                              WorkNotification::GetSubErrorCode(response),
                                              FrontEnd::DesktopApp));
}

std::string ModemCauseName(int cause) {
    if (cause >= kCmsCause && cause < kCmsCause + kCmeCause)
        return "+CMS ERROR: " + std::to_string(cause - kCmsCause);
    if (cause >= kCmeCause && cause < kCmsCause)
        return "+CME ERROR: " + std::to_string(cause - kCmeCause);
    return {};
}

bool SimUnusable(int pinState, std::string& text, int& resultCode, FrontEnd frontEnd) {
    switch (pinState) {
    case 1: // ready
    case 7: // PIN2 and PUK2 only guard their own services
    case 8:
        return false;
    case 0:
        resultCode = 8;
        text = ModemCauseText(Cme(10), frontEnd);
        return true;
    case 2:
        resultCode = 9;
        text = ModemCauseText(Cme(11), frontEnd);
        return true;
    case 3:
        resultCode = 10;
        text = ModemCauseText(Cme(12), frontEnd);
        return true;
    case 17:
        resultCode = 10;
        text = Translated(QT_TRANSLATE_NOOP(
            "FailureText",
            "the SIM is blocked: its PUK attempts are used up, only the operator can replace it"));
        return true;
    default:
        resultCode = 5;
        text = QCoreApplication::translate(
                   "FailureText", "the modem is locked (%1): it needs its unlock code from the seller")
                   .arg(QString::fromStdString(PinStateText(pinState)))
                   .toStdString();
        return true;
    }
}
