#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

// One parameter of an extended command: "AT+CPBW=3,\"+4917\",145" has three. An empty parameter
// ("AT+SYSSEL=,2,0") has empty text and is not quoted.
struct AtArg {
    std::string text;
    bool quoted = false;
    bool Empty() const { return text.empty() && !quoted; }
};

// One command of a command line. "ATE0Q0V1" holds three basic commands (E, Q, V with values "0", "0",
// "1"); "AT+CMGF=0;+CNMI=2,1,0,2,0" two extended ones. Names are upper case.
struct AtCommand {
    enum class Form { Action, Query, Test, Set };
    std::string name; // "+CPIN", "$GPSC", "E", "&F", "D", "S0"
    Form form = Form::Action;
    std::string value; // basic: the digits ("1" of E1), the dial string of D; extended Set: text after '='
    std::vector<AtArg> args;

    bool Has(size_t i) const { return i < args.size() && !args[i].Empty(); }
    const std::string& Str(size_t i) const;
    // Reads parameter i as a decimal number; false when it is missing or not a number.
    bool Int(size_t i, int& out) const;
    int IntOr(size_t i, int fallback) const;
};

// Splits the text after "AT" into commands. False on a malformed line (unterminated quote, junk).
bool ParseCommandLine(std::string_view body, std::vector<AtCommand>& out);

// Splits "a,\"b,c\",,7" into parameters; quotes are removed and remembered.
std::vector<AtArg> SplitArgs(std::string_view text);

// Reads a whole decimal number (optional sign); false on anything else.
bool ParseInt(std::string_view text, int& out);

std::string ToUpper(std::string text);

// What a command answers: information lines, then a final result.
struct AtReply {
    enum class Final { Ok, Error, Cme, Cms, Text, Prompt, None };
    std::vector<std::string> lines;
    Final final = Final::Ok;
    int code = 0;     // Cme, Cms
    std::string text; // Text: "CONNECT", "BUSY", "NO CARRIER", ...
    int delayMs = 0;  // the answer is held back this long (a network scan)

    static AtReply Ok() { return {}; }
    static AtReply Line(std::string line);
    static AtReply Error();
    static AtReply Cme(int code);
    static AtReply Cms(int code);
    static AtReply Result(std::string text);
    static AtReply Prompt();
    static AtReply Silent();
    bool Failed() const { return final == Final::Error || final == Final::Cme || final == Final::Cms; }
};

// 3GPP TS 27.007 error codes used by the simulator.
namespace cme {
constexpr int kNotAllowed = 3;
constexpr int kNotSupported = 4;
constexpr int kSimNotInserted = 10;
constexpr int kSimPinRequired = 11;
constexpr int kSimPukRequired = 12;
constexpr int kSimFailure = 13;
constexpr int kIncorrectPassword = 16;
constexpr int kSimPin2Required = 17;
constexpr int kMemoryFull = 20;
constexpr int kInvalidIndex = 21;
constexpr int kNotFound = 22;
constexpr int kTextTooLong = 24;
constexpr int kInvalidText = 25;
constexpr int kDialTooLong = 26;
constexpr int kInvalidDial = 27;
constexpr int kNoService = 30;
constexpr int kNotAllowedEmergency = 32;
constexpr int kIncorrectParameters = 50;
constexpr int kUnknown = 100;
} // namespace cme

// 3GPP TS 27.005 error codes.
namespace cms {
constexpr int kNotAllowed = 302;
constexpr int kNotSupported = 303;
constexpr int kInvalidPduParameter = 304;
constexpr int kInvalidIndex = 321;
constexpr int kMemoryFull = 322;
constexpr int kNoService = 331;
constexpr int kUnknown = 500;
} // namespace cms

// The verbose text of a +CME ERROR code ("SIM PIN required").
const char* CmeText(int code);

// Answer framing settings (ATV, ATQ, AT+CMEE).
struct Framing {
    bool verbose = true; // V1
    bool quiet = false;  // Q1
    int cmee = 1;        // 0: plain ERROR, 1: numeric, 2: verbose
};

// Renders information lines in one block ("\r\n+CMGL: ...\r\nPDU\r\n"); multi-line answers stay one block.
std::string RenderLines(const std::vector<std::string>& lines, const Framing& framing);
// Renders the final result ("\r\nOK\r\n", "\r\n+CME ERROR: SIM PIN required\r\n", "\r\n> ").
std::string RenderFinal(const AtReply& reply, const Framing& framing);

} // namespace modemsim
