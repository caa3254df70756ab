#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <string>

// The serial AT channel: the one object that talks to the modem's AT command port.
// It writes one command at a time, collects the answer until a final result ("+CME ERROR:", "+CMS ERROR:",
// "ERROR", "OK", searched as plain substrings; the lines "COMMAND NOT SUPPORT" and "TOO MANY PARAMETERS";
// for a dial or answer command also the lines "NO CARRIER", "BUSY", "NO ANSWER", "NO DIALTONE", which stay
// in its answer) or the "> " text prompt arrives, and cuts the unsolicited lines it recognises out of the
// answer into a queue that the worker drains.
//
// The queue keeps what a burst must not cost. A line identical to one still queued carries nothing new and
// is merged into it: a RING train becomes one RING, and a repeated "+CMTI: \"SM\",3" names the same
// stored message, which is read when its line is taken. "+CUSD:" answers are never merged; they go ahead of
// every other kind, since a request is waiting for them. New-message, status-report and USSD lines are
// kept; the others count against kMaxQueuedReports, and when the queue is full the oldest of them goes.
// Result codes: 0 success, 1 port not open, 4 open failed, 5 close failed, 6 empty command or write failed,
// 8 time-out, 9 cancelled. The response string is only written on success.

// Report kinds, by position in the channel's report table.
enum unsolicited_report_e_type : int32_t {
    UNSOLICITED_REPORT_CMTI = 0,         // "+CMTI:" new message stored
    UNSOLICITED_REPORT_CDSI = 1,         // "+CDSI:" status report stored
    UNSOLICITED_REPORT_CUSD = 2,         // "+CUSD:" USSD answer
    UNSOLICITED_REPORT_RING = 3,         // "RING"
    UNSOLICITED_REPORT_NO_CARRIER = 4,   // "NO CARRIER"
    UNSOLICITED_REPORT_STIN = 5,         // "+STIN:" toolkit indication
    UNSOLICITED_REPORT_RETRY = 6,        // "+CME ERROR: retry operation"
    UNSOLICITED_REPORT_DIAL_REQUEST = 7, // "DIAL CONNECT REQUEST"
};

// One queued report: its kind and the whole line with the "\r\n" before and after it.
// Owned by the queue until a consumer pops it; the consumer deletes it.
struct UnsolicitedReportDataType {
    UnsolicitedReportDataType(unsolicited_report_e_type type, const std::string& text)
        : nType(type), strText(text) {}

    unsolicited_report_e_type nType;
    std::string strText;
};

using UnsolicitedReportList = std::list<UnsolicitedReportDataType*>;

class ComOperation {
public:
    static constexpr int kDevicePathSize = 513;
    // The worker takes one report a second. Past this many queued lines, an incoming line pushes out the
    // oldest RING, NO CARRIER, toolkit or other mergeable line; with none left to push out, a mergeable
    // line is dropped and a kept one still joins.
    static constexpr size_t kMaxQueuedReports = 256;
    // The hard bound for kept lines, which a stick flooding the port must not pass. Distinct "+CMTI:" lines
    // name distinct storage slots (a few hundred at most) and "+CUSD:" answers come one per request, so
    // only a faulty stick reaches it; a new-message line dropped there counts as missed.
    static constexpr size_t kMaxKeptReports = 4096;

    // The process-wide channel, created on first use and never destroyed.
    static ComOperation* GetInstance();

    // Empties the report queue, closes a held port, clears the cancel flag, then opens the tty
    // (exclusively locked, raw 8 bits, hardware flow control) and remembers the path for reopening.
    int32_t openCom(const char* szDevicePath);
    // 1 when no port is open, 5 when close fails (the descriptor is kept), else 0.
    int32_t closeCom();
    // Writes szCmd (with its own terminator) and waits at most nTimeOut seconds, in 1/60 s ticks, for
    // the answer. szExpected is the prefix of the command's own answer (e.g. "+CUSD: "), or nullptr:
    // the first line with a report prefix it contains stays in the response (for a standard stick's
    // "+CUSD: " the last one before OK). Every 41st time-out in the life of the process closes and
    // reopens the port at the stored path.
    int32_t writeCom(const char* szCmd, const char* szExpected, int32_t nTimeOut, std::string& strResponse);
    // Asks the command in progress to stop with 9; without one, the next command stops at its first poll.
    // The only call that may come from another thread.
    void cancel();
    // Closes the port and deletes the first half (rounded up) of the queued reports; the rest stay.
    void reset();
    // Hands out the queue itself; the caller reads the front record, pops it and deletes it.
    void getUnsoliciteReportList(UnsolicitedReportList*& pReportList);
    // Moves every recognised report line out of strData into the queue (queueReport), the report table's
    // order first, then the order within the data. blCallSetup: a dial or answer command runs, whose
    // "NO CARRIER" is its final result and stays.
    void checkUnsolicitedReport(std::string& strData, const char* szExpected, bool blCallSetup = false);
    // Queues one report line under the merging and bounding rules above.
    void queueReport(unsolicited_report_e_type nType, const std::string& strLine);
    // New-message and status-report lines queued since the channel was made (merged ones not counted);
    // with the count still queued, the worker tells how far it lags behind the modem.
    uint64_t newMessageReportsQueued() const { return _nNewMessageReports; }
    // Whether a new-message or status-report line was merged or dropped since the last call; clears it.
    // Their messages stay stored; the front ends list the storage again to show them.
    bool takeMissedNewMessages();

    // The process-wide time-out count behind the reopen; tests start from a clean count.
    static int32_t GetTimeOutCount();
    static void ResetTimeOutCount();

private:
    ComOperation();

    int32_t _nFd;
    char _szDevicePath[kDevicePathSize];
    UnsolicitedReportList _lstReport;
    uint64_t _nNewMessageReports = 0;
    bool _blMissedNewMessages = false;
    std::atomic<unsigned char> _cCancel;
};

// 1 when both are non-empty, the suffix is strictly shorter than the text and the text ends with it.
int stringHasSuffix(const char* szText, const char* szSuffix);

// Moves every line holding szPrefix, with the "\r\n" before and after it, from strData to lstLines
// (emptied first) and returns how many. The first such line stays when szExpected contains szPrefix:
// it is the command's own answer. A line without a "\r\n" on either side ends the search with 0; lines
// already taken out in that call are lost. nCut: EveryOther moves only every other one of adjacent lines;
// Every moves each in turn; EveryOwnAnswerLast too, and the line that stays is the last one before "OK".
enum class ReportLineCut { EveryOther, Every, EveryOwnAnswerLast };
int stringMatchStringLine(std::string& strData, const char* szExpected, const char* szPrefix,
                          std::list<std::string>& lstLines, ReportLineCut nCut = ReportLineCut::EveryOther);
