#include "ComOperation.h"

#include "DebugSink.h"
#include "ModemDialect.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <strings.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr const char* kLineDelimiter = "\r\n";

// Lines of these kinds may arrive in the middle of any answer; the position is the report type.
constexpr std::array<const char*, 8> kReportPrefixes = {
    "+CMTI:",
    "+CDSI:",
    "+CUSD:",
    "RING",
    "NO CARRIER",
    "+STIN:",
    "+CME ERROR: retry operation",
    "DIAL CONNECT REQUEST",
};

// Searched in this order as plain substrings: "OK" inside a data line ends the command too.
constexpr std::array<const char*, 4> kFinalResults = {"+CME ERROR:", "+CMS ERROR:", "ERROR", "OK"};

// Errors some modems give for a command they do not know or cannot parse; matched as whole lines, since
// the texts could stand inside a data line.
constexpr std::array<const char*, 2> kErrorLines = {"COMMAND NOT SUPPORT", "TOO MANY PARAMETERS"};

// The final results of a dial (D) or answer (A) command besides OK and the errors (V.250 6.3.1, 6.3.5).
// Only these commands end with them: after a voice call's OK, or while no command runs, "NO CARRIER"
// reports that a call ended and stays a report.
constexpr std::array<const char*, 4> kCallResultLines = {"NO CARRIER", "BUSY", "NO ANSWER", "NO DIALTONE"};

constexpr size_t kReadBufferSize = 5120;
constexpr int kTimeOutsBeforeReopen = 40;

int32_t g_nTimeOutCount = 0;

// "ATD12345;\r", "ATDT...", "ATA\r" in any letter case; "ATD" never starts another command.
bool IsCallSetup(const char* szCmd) {
    if (strncasecmp(szCmd, "AT", 2) != 0)
        return false;
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(szCmd[2])));
    if (letter == 'D')
        return true;
    return letter == 'A' && (szCmd[3] == '\r' || szCmd[3] == '\0');
}

// True when text holds a whole line equal to line: at the start or behind a line feed, with "\r\n" after it.
bool HasLine(const std::string& text, const char* line) {
    const size_t nLength = std::strlen(line);
    for (size_t nPos = text.find(line); nPos != std::string::npos; nPos = text.find(line, nPos + 1)) {
        const bool blStarts = nPos == 0 || text[nPos - 1] == '\n';
        if (blStarts && text.compare(nPos + nLength, 2, kLineDelimiter) == 0)
            return true;
    }
    return false;
}

template <size_t N> bool HasAnyLine(const std::string& text, const std::array<const char*, N>& lines) {
    return std::any_of(lines.begin(), lines.end(), [&text](const char* line) { return HasLine(text, line); });
}

bool IsNewMessageReport(unsolicited_report_e_type nType) {
    return nType == UNSOLICITED_REPORT_CMTI || nType == UNSOLICITED_REPORT_CDSI;
}

// Lines that announce something stored or answer a request; the rest may be merged away or pushed out.
bool IsKeptReport(unsolicited_report_e_type nType) {
    return IsNewMessageReport(nType) || nType == UNSOLICITED_REPORT_CUSD;
}

using Ticks = std::chrono::duration<int64_t, std::ratio<1, 60>>;

int64_t NowTicks() {
    return std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// No line speed is chosen: a USB modem's virtual serial line ignores it. Keep the port's own speed,
// since B0 would drop DTR and hang the modem up.
speed_t PortSpeed(int fd) {
    termios current{};
    if (tcgetattr(fd, &current) == 0 && cfgetospeed(&current) != B0)
        return cfgetospeed(&current);
    return B115200;
}

} // namespace

ComOperation* ComOperation::GetInstance() {
    static ComOperation* instance = new ComOperation();
    return instance;
}

ComOperation::ComOperation() : _nFd(0), _szDevicePath{}, _cCancel(0) {}

int32_t ComOperation::GetTimeOutCount() {
    return g_nTimeOutCount;
}

void ComOperation::ResetTimeOutCount() {
    g_nTimeOutCount = 0;
}

int32_t ComOperation::openCom(const char* szDevicePath) {
    // Only the worker thread touches the queue, and nobody holds a record it has not popped.
    for (UnsolicitedReportDataType* report : _lstReport)
        delete report;
    _lstReport.clear();

    if (_nFd != 0 && close(_nFd) == 0)
        _nFd = 0;
    _cCancel.store(0);

    if (szDevicePath == nullptr)
        return 4;
    int fd = open(szDevicePath, O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return 4;
    if (fd == 0) {
        // Descriptor 0 means "closed" here; move the port off it.
        const int moved = fcntl(fd, F_DUPFD_CLOEXEC, 1);
        close(fd);
        if (moved < 0)
            return 4;
        fd = moved;
    }
    // The exclusive lock keeps a second program (or a second copy of this one) off the AT port.
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        close(fd);
        return 4;
    }
    _nFd = fd;

    // Raw 8 bits with hardware flow control. Two stop bits and parity are part of the fixed setting;
    // the modem's virtual serial line ignores them.
    termios attributes{};
    attributes.c_iflag = IGNPAR;
    attributes.c_oflag = 0;
    attributes.c_cflag = CS8 | CSTOPB | CREAD | PARENB | CLOCAL | CRTSCTS;
    attributes.c_lflag = 0;
    attributes.c_cc[VMIN] = 1;
    attributes.c_cc[VTIME] = 0;
    const speed_t speed = PortSpeed(_nFd);
    cfsetispeed(&attributes, speed);
    cfsetospeed(&attributes, speed);
    tcflush(_nFd, TCIFLUSH);
    tcsetattr(_nFd, TCSANOW, &attributes);

    std::memset(_szDevicePath, 0, sizeof(_szDevicePath));
    std::memcpy(_szDevicePath, szDevicePath, strnlen(szDevicePath, sizeof(_szDevicePath)));
    return 0;
}

int32_t ComOperation::closeCom() {
    if (_nFd == 0)
        return 1;
    if (close(_nFd) != 0)
        return 5;
    _nFd = 0;
    return 0;
}

int32_t ComOperation::writeCom(const char* szCmd, const char* szExpected, int32_t nTimeOut,
                               std::string& strResponse) {
    std::string strData;
    const int64_t nLimit = static_cast<int64_t>(nTimeOut) * 60;

    if (_nFd == 0)
        return 1;
    if (szCmd == nullptr || szCmd[0] == '\0') {
        DebugPrint("szCmd is NULL !!!!!!!");
        return 6;
    }
    if (write(_nFd, szCmd, std::strlen(szCmd)) == -1) {
        DebugPrint("Write Failed in write com");
        return 6;
    }
    // With the traffic shown, what is read goes out a whole line at a time.
    const bool blTap = TrafficTapOn();
    std::string strTapped;
    if (blTap)
        TrafficTap('>', szCmd);
    const auto tapRead = [&](const char* data, size_t size, bool blLast) {
        if (!blTap)
            return;
        strTapped.append(data, size);
        const size_t nEnd = blLast ? strTapped.size() : strTapped.find_last_of('\n') + 1;
        TrafficTap('<', std::string_view(strTapped).substr(0, nEnd));
        strTapped.erase(0, nEnd);
    };

    const bool blCallSetup = IsCallSetup(szCmd);
    std::array<char, kReadBufferSize> buffer;
    const int64_t nStart = NowTicks();
    for (;;) {
        if (_cCancel.load() == 1) {
            DebugPrint("---canceled---!!");
            _cCancel.store(0);
            return 9;
        }
        if (NowTicks() - nStart > nLimit)
            break;
        usleep(500);

        buffer.fill('\0');
        const ssize_t nRead = read(_nFd, buffer.data(), buffer.size());
        if (nRead < 1)
            continue;
        // Text up to the first NUL; a full buffer has none, so bound it by the count read.
        const size_t nText = strnlen(buffer.data(), static_cast<size_t>(nRead));
        strData.append(buffer.data(), nText);
        tapRead(buffer.data(), nText, false);

        if (!stringHasSuffix(strData.c_str(), kLineDelimiter)) {
            // The text prompt of AT+CMGS is "\r\n> " with no line end after it.
            if (strData.find('>') != std::string::npos) {
                tapRead(nullptr, 0, true);
                DebugPrint("need input text!!");
                strResponse = strData;
                return 0;
            }
            continue;
        }

        checkUnsolicitedReport(strData, szExpected, blCallSetup);
        const bool blFinal = std::any_of(kFinalResults.begin(), kFinalResults.end(),
                                         [&strData](const char* szFinal) {
                                             return strData.find(szFinal) != std::string::npos;
                                         }) ||
                             HasAnyLine(strData, kErrorLines) ||
                             (blCallSetup && HasAnyLine(strData, kCallResultLines));
        if (blFinal) {
            strResponse = strData;
            return 0;
        }
    }

    tapRead(nullptr, 0, true);
    DebugPrint("---Time out---!!");
    if (++g_nTimeOutCount <= kTimeOutsBeforeReopen)
        return 8;
    // A modem that stopped answering often comes back once its port is opened anew.
    if (_nFd != 0 && close(_nFd) == 0)
        _nFd = 0;
    const std::string strPath(_szDevicePath, strnlen(_szDevicePath, sizeof(_szDevicePath)));
    openCom(strPath.c_str());
    g_nTimeOutCount = 0;
    return 8;
}

void ComOperation::cancel() {
    _cCancel.store(1);
}

void ComOperation::reset() {
    if (_nFd != 0 && close(_nFd) == 0)
        _nFd = 0;

    // Deletes only every other count: the first half, rounded up, goes and the rest stay queued.
    const int nCount = static_cast<int>(_lstReport.size());
    DebugPrint("unsolicitedReport count\n: %d", nCount);
    for (int i = 0; i < nCount; i += 2) {
        DebugPrint("get %d \n", i);
        delete _lstReport.front();
        _lstReport.pop_front();
    }
}

void ComOperation::getUnsoliciteReportList(UnsolicitedReportList*& pReportList) {
    pReportList = &_lstReport;
}

void ComOperation::checkUnsolicitedReport(std::string& strData, const char* szExpected, bool blCallSetup) {
    std::list<std::string> lstLines;
    const bool blStandard = CurrentModemDialect() == ModemDialect::Standard;
    for (size_t nType = 0; nType < kReportPrefixes.size(); ++nType) {
        // A dial or answer command ends with its own "NO CARRIER".
        if (blCallSetup && nType == UNSOLICITED_REPORT_NO_CARRIER)
            continue;
        // A standard stick's adjacent reports are each cut out. On the stick this was written for only every
        // other one is; a new-message line left behind is flagged below and its message listed again.
        // USSD answers are each awaited by a request and never merged, so they are all cut out, in their
        // order, on every stick. A standard stick's own answer to AT+CUSD? is the last such line; the
        // first one is, on the stick this was written for.
        ReportLineCut nCut = blStandard ? ReportLineCut::Every : ReportLineCut::EveryOther;
        if (nType == UNSOLICITED_REPORT_CUSD)
            nCut = blStandard ? ReportLineCut::EveryOwnAnswerLast : ReportLineCut::Every;
        if (stringMatchStringLine(strData, szExpected, kReportPrefixes[nType], lstLines, nCut) == 0)
            continue;
        for (const std::string& strLine : lstLines)
            queueReport(static_cast<unsolicited_report_e_type>(nType), strLine);
    }
    // A new-message line left in the answer is missed here, though its message stays stored.
    for (const unsolicited_report_e_type nType : {UNSOLICITED_REPORT_CMTI, UNSOLICITED_REPORT_CDSI}) {
        const char* szPrefix = kReportPrefixes[nType];
        const bool blOwnAnswer = szExpected != nullptr && std::strstr(szExpected, szPrefix) != nullptr;
        if (!blOwnAnswer && strData.find(szPrefix) != std::string::npos)
            _blMissedNewMessages = true;
    }
}

void ComOperation::queueReport(unsolicited_report_e_type nType, const std::string& strLine) {
    const bool blNewMessage = IsNewMessageReport(nType);
    if (nType != UNSOLICITED_REPORT_CUSD) {
        for (const UnsolicitedReportDataType* queued : _lstReport) {
            if (queued->nType == nType && queued->strText == strLine) {
                _blMissedNewMessages = _blMissedNewMessages || blNewMessage;
                return;
            }
        }
    }
    if (_lstReport.size() >= kMaxQueuedReports) {
        const auto oldestMergeable =
            std::find_if(_lstReport.begin(), _lstReport.end(),
                         [](const auto* queued) { return !IsKeptReport(queued->nType); });
        if (oldestMergeable != _lstReport.end()) {
            DebugPrint("report queue full, dropped: %s", (*oldestMergeable)->strText.c_str());
            delete *oldestMergeable;
            _lstReport.erase(oldestMergeable);
        } else if (!IsKeptReport(nType) || _lstReport.size() >= kMaxKeptReports) {
            DebugPrint("report queue full, dropped: %s", strLine.c_str());
            _blMissedNewMessages = _blMissedNewMessages || blNewMessage;
            return;
        }
    }
    auto position = _lstReport.end();
    if (nType == UNSOLICITED_REPORT_CUSD)
        position = std::find_if(_lstReport.begin(), _lstReport.end(),
                                [](const auto* queued) { return queued->nType != UNSOLICITED_REPORT_CUSD; });
    _lstReport.insert(position, new UnsolicitedReportDataType(nType, strLine));
    if (blNewMessage)
        ++_nNewMessageReports;
}

bool ComOperation::takeMissedNewMessages() {
    return std::exchange(_blMissedNewMessages, false);
}

int stringHasSuffix(const char* szText, const char* szSuffix) {
    if (szText == nullptr || szSuffix == nullptr)
        return 0;
    const size_t nText = std::strlen(szText);
    const size_t nSuffix = std::strlen(szSuffix);
    if (nText == 0 || nSuffix == 0 || nSuffix >= nText)
        return 0;
    return std::memcmp(szText + nText - nSuffix, szSuffix, nSuffix) == 0 ? 1 : 0;
}

int stringMatchStringLine(std::string& strData, const char* szExpected, const char* szPrefix,
                          std::list<std::string>& lstLines, ReportLineCut nCut) {
    lstLines.clear();
    if (szPrefix == nullptr || szPrefix[0] == '\0')
        return 0;
    if (std::strcmp(szPrefix, "+STIN:") == 0)
        DebugPrint("track here!!!");

    const size_t nPrefix = std::strlen(szPrefix);
    const bool blOwnAnswerPrefix = szExpected != nullptr && std::strstr(szExpected, szPrefix) != nullptr;
    bool blOwnAnswerSeen = false;
    size_t nOwnAnswer = strData.find(szPrefix);
    if (nCut == ReportLineCut::EveryOwnAnswerLast) {
        // "+CUSD: 0,\"Bye\",15" then "+CUSD: 1" and OK for AT+CUSD?: the line that came first is a report.
        const size_t nOk = strData.find("\r\nOK\r\n");
        nOwnAnswer = strData.rfind(szPrefix, nOk == std::string::npos ? std::string::npos : nOk);
    }

    size_t nPos = strData.find(szPrefix);
    while (nPos != std::string::npos) {
        const size_t nStart = strData.rfind(kLineDelimiter, nPos);
        const size_t nEnd = strData.find(kLineDelimiter, nPos);
        if (nStart == std::string::npos || nEnd == std::string::npos) {
            DebugPrint("line prase error!!");
            return 0;
        }
        const size_t nLineFeed = nEnd + 1;

        if (blOwnAnswerPrefix && !blOwnAnswerSeen && nPos == nOwnAnswer) {
            blOwnAnswerSeen = true;
        } else {
            lstLines.push_back(strData.substr(nStart, nLineFeed - nStart + 1));
            // One line feed stays behind; the next search resumes at the old position, so a line that
            // the erasure moved in front of it waits for the next answer.
            strData.erase(nStart, nLineFeed - nStart);
            DebugPrint("now strData=%s", strData.c_str());
            if (nCut != ReportLineCut::EveryOther) {
                if (nOwnAnswer != std::string::npos && nOwnAnswer > nStart)
                    nOwnAnswer -= nLineFeed - nStart;
                nPos = strData.find(szPrefix, nStart);
                continue;
            }
        }
        nPos = strData.find(szPrefix, nPos + nPrefix);
    }
    return static_cast<int>(lstLines.size());
}
