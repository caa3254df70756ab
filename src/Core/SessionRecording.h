#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Recorded sessions: the AT exchange of one run kept in a file, for a bug report or to play back with
// dialtone-modemsim --replay. Plain C++; the simulator links it too, to read recordings and to mask what
// it matches against them the way the recorder masked it. doc/recording.md describes the file.
//
//   #dialtone-recording 1 version=1.4.0 date=2026-11-24T18:02:11Z dialect=vel masked=yes
//   12 > AT+CPIN?
//   15 < +CPIN: READY

// Hides what identifies people in one AT line, keeping its length and form so that what reads the line
// still reads it: phone numbers (digits become '0'; ATD, +CMGS/+CMGW in text mode, +CPBW/+CPBR/+CPBF,
// +CLIP/+CLCC/+CCWA/+COLP, +CNUM, +CMGR/+CMGL/+CMT in text mode, +CSCA), USSD strings, and SMS: in a PDU the
// address digits and the user data (each character 'x' in the message's own coding, so the PDU keeps its
// length and still decodes), in text mode the body. It follows the session (the message format, the
// body after AT+CMGS and the PDU after +CMGR, +CMGL, +CMT or +CDS), so feed it every line in order.
// PINs, PUKs and passwords are left to MaskSecrets.
class PrivateDataMask {
public:
    // direction '>' for a line sent to the modem, '<' for one read from it; the line without its end.
    std::string mask(char direction, std::string_view line);

private:
    enum class Next { Nothing, Pdu, Text };
    bool _textMode = false;
    Next _sentBody = Next::Nothing; // after AT+CMGS/AT+CMGW: the "> " prompt, then the body up to Ctrl-Z
    Next _readBody = Next::Nothing; // after +CMGR/+CMGL/+CMT/+CDS: the message on the next lines
};

// One AT line of a recording: milliseconds since the start, direction, the line as it went (no line end).
struct RecordedLine {
    int64_t milliseconds = 0;
    char direction = '>';
    std::string text;
};

struct Recording {
    std::string version; // the program that recorded it
    std::string date;    // ISO 8601, UTC
    std::string dialect; // "vel" or "standard"
    bool masked = true;
    std::vector<RecordedLine> lines;
};

// Bounds of what a recording may hold; anything beyond is a damaged file.
inline constexpr std::size_t kMaxRecordingBytes = 16u << 20;
inline constexpr std::size_t kMaxRecordedLineBytes = 4096; // one AT line, before escaping

// The header line, and one line of the file (with its "\n"): control characters, bytes above 0x7E and
// the backslash written as \xHH and \\, so the file is plain ASCII and a line is one line. A longer AT
// line is cut at kMaxRecordedLineBytes.
std::string RecordingHeader(std::string_view version, std::string_view date, std::string_view dialect,
                            bool masked);
std::string RecordingLine(int64_t milliseconds, char direction, std::string_view line);

// Reads a recording; false with the reason ("line 7: no direction") for anything that is not one.
bool ParseRecording(std::string_view text, Recording& recording, std::string& error);
bool LoadRecording(const std::string& path, Recording& recording, std::string& error);

// Recording this process's modem traffic (TrafficTap feeds it). The file is created for the user only
// and never replaces one that exists. The header is written with the first line, once the dialect
// (asked of dialect()) is known, or at exit when the run never spoke to the modem. False with the reason
// in error.
bool StartRecording(const std::string& path, bool keepPrivate, const std::string& version,
                    std::function<std::string()> dialect, std::string& error);
bool RecordingOn();
// direction and text as TrafficTap takes them: several lines or a part of one.
void RecordTraffic(char direction, std::string_view text);
