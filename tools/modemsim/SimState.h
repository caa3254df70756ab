#pragma once

#include <array>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace modemsim {

// Everything the simulated stick and its SIM hold. A scenario fills it (SimScenario.h); the command
// families read and change it; "dump" on the control socket shows it.

enum class PinState { Ready, SimPin, SimPuk, Blocked, Absent };
const char* PinStateName(PinState state);

struct Identity {
    std::string manufacturer;
    std::string model;
    std::string revision;
    std::string imei;
    std::string hardware;
};

struct SimCard {
    std::string imsi;
    std::string msisdn;
    std::string msisdnName;
    std::string pin = "1234";
    std::string puk = "12345678";
    std::string pin2 = "5678";
    std::string puk2 = "87654321";
    bool pinEnabled = false;
    int pinLeft = 3;
    int pukLeft = 10;
    int pin2Left = 3;
    int puk2Left = 10;
    PinState state = PinState::Ready;
    std::string spn;
    bool spnUcs2 = false; // EF-SPN coded with the 0x80 UCS2 form instead of the GSM alphabet
    int spnDisplay = 1;   // the display-condition byte
    std::vector<std::string> spdi;
    std::string smsc;
    // The vendor's personalisation counters, "+SMPN: PN(a,b),PU(..),PP(..),PC(..),PF(..)".
    std::array<std::pair<int, int>, 5> perso{{{3, 10}, {3, 10}, {3, 10}, {3, 10}, {3, 10}}};
};

struct Operator {
    std::string longName;
    std::string shortName;
    std::string numeric;
    int act = 2; // 0 GSM, 2 UTRAN
    bool forbidden = false;
};

struct Network {
    std::vector<Operator> operators;
    int current = -1;          // index into operators, -1 when not registered
    int selectionMode = 0;     // AT+COPS mode: 0 automatic, 1 manual, 2 deregistered
    std::string manualNumeric; // the operator chosen in manual mode
    int regOverride = -1;      // control "reg STAT": forced registration status
    int csq = 18;
    int ber = 99;
    bool signalDrift = false;   // each AT+CSQ moves the signal a little, as when the stick is carried about
    unsigned driftState = 1;    // the drift's pseudo-random sequence
    int lac = 0x1A2B;           // the cell of AT+CREG=2 answers
    long long cell = 0xC3D4E5;
    bool attached = true;
    std::string bearer = "HSDPA";
    int scanDelayMs = 2000;
    int registerDelayMs = 0;
    int band = 0x3FFFFFFF;
    int modeA = 0;
    int modeB = 0;
    int domain = 2;
    int cfun = 1;
};

struct PdpContext {
    std::string type;
    std::string apn;
    std::string address;
};

struct PbEntry {
    std::string number;
    int type = 129;
    std::string name; // UTF-8
};

struct Phonebook {
    int capacity = 100;
    int numberLength = 40;
    int nameLength = 14;
    std::map<int, PbEntry> entries;
};

struct StoredSms {
    int status = 0;  // 0 received unread, 1 received read, 2 stored unsent, 3 stored sent
    std::string pdu; // hex, with the service-centre part
    int tpduLength = 0;
};

struct SmsStorage {
    int capacity = 30;
    std::map<int, StoredSms> slots; // index from 1
    int FreeIndex() const;          // 0 when full
    int Used() const { return static_cast<int>(slots.size()); }
};

struct SentSms {
    int mr = 0;
    std::string pdu;
    int tpduLength = 0;
    std::string destination;
    std::string text;
    int dcs = 0;
    bool statusReport = false;
    int concatRef = -1;
    int concatTotal = 0;
    int concatSeq = 0;
};

struct Messaging {
    std::map<std::string, SmsStorage> storages; // "SM", "ME"
    std::array<std::string, 3> cpms{"SM", "SM", "SM"};
    std::string smsc;
    int smscType = 145;
    std::vector<SentSms> sent;
    int nextMr = 1;
    int nextConcatRef = 1;
    bool failNextSend = false;
    int failSends = 0;      // this many sends are refused with +CMS ERROR: 500 ...
    int failSendsAfter = 0; // ... once this many more have gone through
    int statusReportDelayMs = 1000;
    int statusReportStatus = 0; // TP-ST of the network's report: 0 delivered
    int loopbackDelayMs = 1000; // a message to the own number comes back after this long
};

// One node of the USSD menu tree; the roots are reached by service codes ("*100#"), the others by the
// user's reply while the session waits.
struct UssdNode {
    std::string text;
    bool end = true; // m = 0 (done) or 1 (the network waits for a reply)
    std::vector<std::pair<std::string, int>> choices;
};

struct Ussd {
    std::vector<UssdNode> nodes;
    std::vector<std::pair<std::string, int>> roots;
    int session = -1; // node the network waits on; -2: a network-initiated dialogue; -1: none
    int presentation = 0;
    int delayMs = 300;
    bool packedGsm = false; // dcs 15 answers as packed septets instead of one code per octet
    // How the stick hands the network's answer over; sticks differ here.
    enum class Form { Hex, Text, NoDcs, Ucs2Lang } form = Form::Hex;
    bool withRelease = false; // "+CUSD: 2" right behind a final answer, in the same write
    std::vector<std::string> requests;
};

struct StkItem {
    int id = 0;
    std::string text;
    std::string next; // name of the proactive command that selecting this item starts
};

struct StkCommand {
    int type = 0;                       // the modem's command number: 1 display text, 11 select item, ...
    std::vector<nlohmann::json> fields; // after the number in the "+STGI:" header line
    std::vector<StkItem> items;
    std::string next;
};

struct Toolkit {
    std::string title = "SIM Services";
    std::vector<StkItem> menu;
    std::map<std::string, StkCommand> commands;
    std::string pending; // command waiting for its fetch and its terminal response
    int lastIndication = 0;
    int delayMs = 200;
    std::vector<std::string> responses;
};

struct Call {
    int id = 1;
    int dir = 0;   // 0 mobile originated, 1 mobile terminated
    int state = 0; // 0 active, 2 dialling, 3 alerting, 4 incoming
    int mode = 0;  // 0 voice
    std::string number;
    int type = 129;
};

struct Voice {
    std::vector<Call> calls;
    std::string defaultResult = "OK";
    std::map<std::string, std::string> results; // dialled number -> OK, BUSY, NO ANSWER, NO CARRIER
    std::vector<std::string> dtmf;
    int ringIntervalMs = 3000;
    bool gps = false;
};

struct DataSession {
    bool connected = false;
    std::string number;
    long long bytesIn = 0;
    int sessions = 0;
};

// Switches for testing the host's robustness.
enum class UrcMode { Poll, Immediate, Mixed, Ahead };

struct Knobs {
    int latencyMs = 0;  // every answer is held back this long
    int chunkBytes = 0; // answers are written in pieces of this many bytes ...
    int chunkGapMs = 0; // ... this far apart
    UrcMode urcMode = UrcMode::Poll;
    int urcPerPoll = 1;      // unsolicited lines written per "at" poll; 0: all
    std::string inject;      // one line mixed into the next answer before its final result
    std::string injectAhead; // one line written in front of the next answer, in the same write
    std::string injectOn;    // the inject lines wait for a command starting with this (case-insensitive)
    // Answer variants of other sticks.
    std::string unsupportedAnswer = "ERROR"; // the answer to a command the stick does not know
    std::set<std::string> refuse;            // commands answered as unknown ("+CSCB")
    enum class Scan { Full, NoShortName, Ucs2 } scan = Scan::Full;
    enum class PbEntryForm { Normal, EmptyType, UnquotedName } pbEntry = PbEntryForm::Normal;
    bool cmglBadPdu = false;        // the first entry of a +CMGL listing has a PDU cut short
    bool noBlankAfterColon = false; // "+CREG:0,1" instead of "+CREG: 0,1"
    // Faults.
    bool mute = false;       // commands are logged, but nothing is carried out or written
    bool garbage = false;    // answers are replaced by random bytes without a final result or '>'
    int floodIntervalMs = 0; // a flood line every this many ms while the host holds the port
    std::string floodLine = "RING";
    int unplugAfter = 0;  // the stick is pulled when the host sends its Nth command from now, ...
    std::string unplugOn; // ... or a command starting with this text (case-insensitive); once
};

// Vel: the stick's own commands besides the 3GPP ones; Standard: 27.007/27.005 only, the maker's
// commands answer as unknown ones.
enum class Dialect { Vel, Standard };

struct SimState {
    Dialect dialect = Dialect::Vel;
    Identity identity;
    SimCard sim;
    Network network;
    std::map<int, PdpContext> pdp;
    int func5 = 0;                               // AT+FUNC=5 start state
    std::map<std::string, Phonebook> phonebooks; // "SM", "ME"
    std::string phonebook = "SM";                // selected with AT+CPBS
    Messaging sms;
    Ussd ussd;
    Toolkit stk;
    Voice voice;
    DataSession data;
    Knobs knobs;
};

} // namespace modemsim
