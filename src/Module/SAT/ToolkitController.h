#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <string>

#include "Outcome.h"
#include "STKTypes.h"
#include "SatRecords.h"

class ModemLink;

// The SIM card's toolkit: its main menu, and after a choice whatever the card sends next (a sub-menu, a
// text to confirm, a question for a key or a text, the end of the dialogue). The worker hands over the
// modem's "+STGI:" listings as they are, with the character set their texts are in; they are read here,
// and the answers ("AT+STGR=...") built here for the set last seen. Other requests may change the set
// meanwhile: an answer built for another set is not sent, and is built once more for the new one.
//
// After an answer the card announces its next command ("+STIN: 11"), at once or a little later: the
// worker is asked again every kPollIntervalMs until it came, for up to kIndicationWaitMs (then result 2).
// A stick without the toolkit commands answers 46 (not supported); a card whose listing is no menu 1.
class ToolkitController : public QObject {
    Q_OBJECT
public:
    // The modem's numbers of the card's commands.
    static constexpr int kDisplayText = 1;
    static constexpr int kGetInkey = 2;
    static constexpr int kGetInput = 3;
    static constexpr int kSelectItem = 11;
    static constexpr int kMainMenu = 17;
    static constexpr int kSessionEnd = 20;
    // General results of an answer.
    static constexpr int kResultDone = 0;
    static constexpr int kResultEndedByUser = 16;
    static constexpr int kResultBack = 17;
    // Get inkey and get input formats.
    static constexpr int kFormatDigits = 0;
    static constexpr int kFormatYesNo = 3;

    // The longest text an answer carries.
    static constexpr int kMaxAnswerChars = kSTKMaxTextChars;

    static constexpr int kPollIntervalMs = 200;
    static constexpr int kIndicationWaitMs = 10000;

    using Result = std::function<void(Outcome outcome, const BLSatCommand& command)>;

    explicit ToolkitController(ModemLink& link, QObject* parent = nullptr);

    // Reads the main menu.
    void readMenu(Result done = {});
    // Answers the command the card sent last and waits for the card's next command.
    void answer(const BLSatResponse& answer, Result done = {});
    // Forgets what is under way (the modem went away): no result comes for it.
    void cancel();

    static bool isMenu(const BLSatCommand& command);
    // A "+STGI:" listing (or the sublayer's text for the end of the dialogue) as the screens show it; the
    // codec bounds every text and list.
    static BLSatCommand decodeListing(const std::string& listing, int teSet);
    // The answer as the modem takes it, without its "\r" ("AT+STGR=0,0,2"); false for a command that takes
    // no answer and for an item beyond one octet.
    static bool encodeAnswer(const BLSatResponse& answer, int teSet, std::string& command);

signals:
    // A command of the card: the main menu read, or what the card sent after an answer.
    void commandReceived(const BLSatCommand& command);
    void failed(Outcome outcome);
    // Whether the stick has the toolkit commands, after each menu read.
    void supportChanged(bool supported);

private:
    void send(const BLSatResponse& answer, bool mayRetry, const Result& done);
    void takeAnnounced(const QVariantMap& response, int generation, const Result& done);
    void finish(const Result& done, Outcome outcome, const BLSatCommand& command = {});

    ModemLink& _link;
    std::chrono::steady_clock::time_point _deadline;
    int _generation = 0;
    int _charSet = -1; // the modem's character set as last seen; -1 unknown
};
