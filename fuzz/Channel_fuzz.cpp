// Feeds the AT channel's answer handling with what a modem could send: the data is cut into reads as
// the serial port would deliver them, and after every read that ends a line the unsolicited reports are
// cut out of the accumulation, as writeCom does. Then the line matcher runs once more on the whole text
// with each report prefix. The reports queued go to their readers ("+CUSD:", "+STIN:").
//
// Input: one octet that picks the command's own answer prefix and the read size, then the modem's text.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <list>
#include <string>

#include "ComOperation.h"
#include "DebugSink.h"
#include "ModemDialect.h"
#include "STKUtility.h"
#include "UssdUtility.h"

namespace {

const char* const kExpected[] = {nullptr,      "+CUSD: ",
                                 "+CMTI: ",    "+CSQ: ",
                                 "+STIN: ",    "RING",
                                 "+CDSI:",     "+CMGL: ",
                                 "NO CARRIER", "+CME ERROR: retry operation",
                                 "+STGI:",     "\r\n",
                                 "",           "DIAL CONNECT REQUEST"};
constexpr size_t kExpectedCount = sizeof(kExpected) / sizeof(kExpected[0]);

// Hands the queued reports to their readers, as the worker does, and empties the queue.
void Drain(ComOperation* channel, int teSet) {
    UnsolicitedReportList* reports = nullptr;
    channel->getUnsoliciteReportList(reports);
    while (!reports->empty()) {
        UnsolicitedReportDataType* report = reports->front();
        reports->pop_front();
        const size_t start = report->strText.find_first_not_of("\r\n");
        const std::string line = start == std::string::npos ? std::string() : report->strText.substr(start);
        if (report->nType == UNSOLICITED_REPORT_CUSD) {
            TUssdItem item;
            CUssdUility::ParseCusdReport(line.c_str(), teSet, item);
        } else if (report->nType == UNSOLICITED_REPORT_STIN) {
            int number = 0;
            CSTKUtility::ParseIndication(line.c_str(), number);
        }
        delete report;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    SetDebugSink(nullptr);
    const uint8_t mode = data[0];
    const char* expected = kExpected[(mode & 0x0F) % kExpectedCount];
    const size_t readSize = 1 + (mode >> 4) * 7; // 1 .. 106 octets per read
    SetModemDialect((mode & 0x10) != 0 ? ModemDialect::Standard : ModemDialect::Vel);
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    ComOperation* channel = ComOperation::GetInstance();
    std::string accumulated;
    for (size_t pos = 0; pos < text.size(); pos += readSize) {
        // The channel keeps the text of a read up to its first NUL.
        const std::string chunk = text.substr(pos, readSize);
        accumulated.append(chunk.c_str(), strnlen(chunk.c_str(), chunk.size()));
        if (!stringHasSuffix(accumulated.c_str(), "\r\n"))
            continue;
        channel->checkUnsolicitedReport(accumulated, expected);
    }
    Drain(channel, (mode & 0x10) ? USSD_TE_UCS2 : USSD_TE_GSM);

    static const char* const kPrefixes[] = {
        "+CMTI:", "+CDSI:", "+CUSD:", "RING", "NO CARRIER", "+STIN:", "\r\n", "\n", "\r", "+", nullptr, ""};
    std::list<std::string> lines;
    for (const char* prefix : kPrefixes) {
        std::string copy = text;
        const int count = stringMatchStringLine(copy, expected, prefix, lines);
        // A broken line gives 0 even after lines were taken out.
        if ((count != 0 && count != static_cast<int>(lines.size())) || copy.size() > text.size())
            __builtin_trap();
    }
    return 0;
}
