#include "SessionRecording.h"

#include <atomic>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "DebugSink.h"

namespace {

constexpr char kCtrlZ = 0x1A;
constexpr char kEsc = 0x1B;
constexpr char kMaskDigit = '0';
constexpr uint8_t kMaskChar = 'x'; // the same code in the GSM default alphabet, IRA and UCS2

bool IsHex(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

int HexValue(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (std::toupper(c) - 'A' + 10);
}

// The arguments after a command's "=" or an answer's ":", as [begin, end) in the line; commas inside
// quotes do not split.
std::vector<std::pair<std::size_t, std::size_t>> Arguments(std::string_view line, std::size_t at) {
    std::vector<std::pair<std::size_t, std::size_t>> arguments;
    bool quoted = false;
    std::size_t begin = at;
    for (std::size_t i = at; i <= line.size(); ++i) {
        if (i < line.size() && line[i] == '"')
            quoted = !quoted;
        if (i == line.size() || (!quoted && line[i] == ',')) {
            while (begin < i && line[begin] == ' ')
                ++begin;
            arguments.emplace_back(begin, i);
            begin = i + 1;
        }
    }
    return arguments;
}

// A number's digits become '0'; a number written as UCS2 hex ("002B0034...") keeps its form.
void MaskNumber(std::string& line, std::size_t begin, std::size_t end) {
    const std::string_view inner = std::string_view(line).substr(begin, end - begin);
    if (inner.size() >= 8 && inner.size() % 4 == 0 && IsHex(inner)) {
        for (std::size_t unit = begin; unit + 4 <= end; unit += 4) {
            if (line.compare(unit, 3, "003") == 0 && std::isdigit(static_cast<unsigned char>(line[unit + 3])))
                line[unit + 3] = kMaskDigit;
        }
        return;
    }
    for (std::size_t i = begin; i < end; ++i) {
        if (std::isdigit(static_cast<unsigned char>(line[i])))
            line[i] = kMaskDigit;
    }
}

// Text as the modem carries it: UCS2 hex units become "0078", other hex octets "78", plain characters
// 'x'. A Ctrl-Z or ESC ending a message body stays.
void MaskText(std::string& line, std::size_t begin, std::size_t end) {
    std::size_t last = end;
    while (last > begin && (line[last - 1] == kCtrlZ || line[last - 1] == kEsc))
        --last;
    const std::string_view inner = std::string_view(line).substr(begin, last - begin);
    if (IsHex(inner) && inner.size() % 2 == 0) {
        const char* unit = inner.size() % 4 == 0 ? "0078" : "78";
        const std::size_t width = std::strlen(unit);
        for (std::size_t i = begin; i + width <= last; i += width)
            line.replace(i, width, unit);
        return;
    }
    for (std::size_t i = begin; i < last; ++i)
        line[i] = static_cast<char>(kMaskChar);
}

// The argument's inside without its quotes; false when it is not a quoted string.
bool QuotedInside(const std::string& line, std::pair<std::size_t, std::size_t> argument, std::size_t& begin,
                  std::size_t& end) {
    if (argument.second - argument.first < 2 || line[argument.first] != '"' ||
        line[argument.second - 1] != '"')
        return false;
    begin = argument.first + 1;
    end = argument.second - 1;
    return true;
}

enum class Coding { Gsm7, Octets, Ucs2 };

// The alphabet of a data coding scheme (3GPP TS 23.038 4); compressed text counts as octets.
Coding CodingOf(uint8_t dcs) {
    if ((dcs & 0xC0) == 0) {
        const unsigned alphabet = dcs >> 2 & 3;
        return (dcs & 0x20) || alphabet == 1 ? Coding::Octets : alphabet == 2 ? Coding::Ucs2 : Coding::Gsm7;
    }
    if ((dcs & 0xF0) == 0xF0)
        return (dcs & 0x04) ? Coding::Octets : Coding::Gsm7;
    return (dcs & 0xF0) == 0xE0 ? Coding::Ucs2 : Coding::Gsm7;
}

// The SMS PDU in hex (service centre address first, as AT+CMGS takes it and AT+CMGR prints it) with the
// address digits and the message text masked (3GPP TS 23.040 9.2). It keeps its length and its fields,
// so it still decodes; one that does not parse has every hex digit masked.
class PduMask {
public:
    explicit PduMask(std::string& hex) : _hex(hex) {}

    void run(std::size_t begin, std::size_t end) {
        _begin = begin;
        _octets = (end - begin) / 2;
        if (!IsHex(std::string_view(_hex).substr(begin, end - begin)) || (end - begin) % 2 != 0 || !parse())
            maskAllDigits(begin, end);
    }

private:
    void maskAllDigits(std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            if (std::isxdigit(static_cast<unsigned char>(_hex[i])))
                _hex[i] = kMaskDigit;
        }
    }
    bool has(std::size_t octet) const { return octet < _octets; }
    uint8_t octet(std::size_t index) const {
        return static_cast<uint8_t>(HexValue(_hex[_begin + 2 * index]) << 4 |
                                    HexValue(_hex[_begin + 2 * index + 1]));
    }
    void setOctet(std::size_t index, uint8_t value) {
        static constexpr char kDigits[] = "0123456789ABCDEF";
        _hex[_begin + 2 * index] = kDigits[value >> 4];
        _hex[_begin + 2 * index + 1] = kDigits[value & 15];
    }
    // Semi-octet digits 0-9 become 0; the filler F and the signs *, #, a, b, c stay.
    void maskDigits(std::size_t first, std::size_t count) {
        for (std::size_t i = first; i < first + count; ++i) {
            const uint8_t value = octet(i);
            setOctet(i, static_cast<uint8_t>(((value >> 4) <= 9 ? 0 : value & 0xF0) |
                                             ((value & 15) <= 9 ? 0 : value & 15)));
        }
    }
    // An address field: digit count, type, semi-octets; an alphanumeric sender ("Vodafone") stays.
    bool address(std::size_t& at) {
        if (!has(at + 1))
            return false;
        const std::size_t length = (octet(at) + 1u) / 2u;
        const bool alphanumeric = (octet(at + 1) & 0x70) == 0x50;
        if (length > 0 && !has(at + 1 + length))
            return false;
        if (!alphanumeric)
            maskDigits(at + 2, length);
        at += 2 + length;
        return true;
    }
    bool parse() {
        if (!has(0) || (octet(0) > 0 && !has(octet(0))))
            return false;
        if (octet(0) > 1)
            maskDigits(2, octet(0) - 1u);
        std::size_t at = 1u + octet(0);
        if (!has(at))
            return false;
        const uint8_t first = octet(at++);
        switch (first & 3) {
        case 0: // SMS-DELIVER: OA, PID, DCS, SCTS
            if (!address(at))
                return false;
            return userData(first, at + 2, at + 9);
        case 1: { // SMS-SUBMIT: MR, DA, PID, DCS, VP
            ++at;
            if (!address(at))
                return false;
            const unsigned format = first >> 3 & 3;
            return userData(first, at + 2, at + 2 + (format == 0 ? 0 : format == 2 ? 1 : 7));
        }
        case 2: // SMS-STATUS-REPORT: MR, RA, then times and status
            ++at;
            return address(at);
        default:
            return false;
        }
    }
    // The user data after its length octet at udl, in the coding of the DCS octet just before dcsEnd.
    bool userData(uint8_t first, std::size_t dcsEnd, std::size_t udl) {
        if (!has(udl) || !has(dcsEnd - 1))
            return false;
        const Coding coding = CodingOf(octet(dcsEnd - 1));
        const std::size_t length = octet(udl);
        const std::size_t data = udl + 1;
        const std::size_t header = (first & 0x40) && has(data) ? octet(data) + 1u : 0;
        if (coding == Coding::Gsm7) {
            if ((length * 7 + 7) / 8 > _octets - data)
                return false;
            for (std::size_t septet = (header * 8 + 6) / 7; septet < length; ++septet) {
                for (unsigned bit = 0; bit < 7; ++bit) {
                    const std::size_t position = septet * 7 + bit;
                    uint8_t value = octet(data + position / 8);
                    const uint8_t mask = static_cast<uint8_t>(1u << (position % 8));
                    value = (kMaskChar >> bit & 1) ? (value | mask) : (value & ~mask);
                    setOctet(data + position / 8, value);
                }
            }
            return true;
        }
        if (length > _octets - data)
            return false;
        for (std::size_t i = header; i < length; ++i)
            setOctet(data + i, coding == Coding::Ucs2 && (i - header) % 2 == 0 ? 0 : kMaskChar);
        return true;
    }

    std::string& _hex;
    std::size_t _begin = 0;
    std::size_t _octets = 0;
};

struct NumberField {
    const char* prefix; // a command after "AT" (with "="), or an answer (with ":")
    int number;         // the argument holding a number, -1 for none
    int text;           // the argument holding a text (USSD), -1 for none
};
// clang-format off
constexpr NumberField kNumberFields[] = {
    {"+CMGS=", 0, -1}, {"+CMGW=", 0, -1}, {"+CPBW=", 1, -1}, {"+CSCA=", 0, -1}, {"+CUSD=", -1, 1},
    {"+CPBR:", 1, -1}, {"+CPBF:", 1, -1}, {"+CLIP:", 0, -1}, {"+CLCC:", 5, -1}, {"+CCWA:", 0, -1},
    {"+COLP:", 0, -1}, {"+CNUM:", 1, -1}, {"+CSCA:", 0, -1}, {"+CMGR:", 1, -1}, {"+CMGL:", 2, -1},
    {"+CMT:", 0, -1},  {"+CDS:", 2, -1},  {"+CUSD:", -1, 1},
};
// clang-format on

bool FinalOrReport(std::string_view line) {
    return line == "OK" || line == "ERROR" || (!line.empty() && line.front() == '+');
}

} // namespace

std::string PrivateDataMask::mask(char direction, std::string_view text) {
    std::string line(text);
    // A message body typed after the "> " prompt (its echo too), up to Ctrl-Z or ESC; the modem's answer
    // or the next command ends it.
    if (_sentBody != Next::Nothing &&
        (SameLettersAt(line, 0, "AT") || (direction == '<' && FinalOrReport(line))))
        _sentBody = Next::Nothing;
    if (_sentBody != Next::Nothing) {
        std::size_t begin = line.compare(0, 2, "> ") == 0 ? 2 : 0;
        std::size_t end = line.find_first_of("\x1A\x1B", begin);
        const bool ends = end != std::string::npos;
        if (!ends)
            end = line.size();
        if (end > begin) {
            if (_sentBody == Next::Pdu)
                PduMask(line).run(begin, end);
            else
                MaskText(line, begin, end);
        }
        if (ends && direction == '>')
            _sentBody = Next::Nothing;
        return line;
    }
    if (direction == '<' && _readBody != Next::Nothing) {
        if (!FinalOrReport(line)) {
            if (_readBody == Next::Pdu) {
                PduMask(line).run(0, line.size());
                _readBody = Next::Nothing;
            } else {
                MaskText(line, 0, line.size());
            }
            return line;
        }
        _readBody = Next::Nothing;
    }

    const bool command = SameLettersAt(line, 0, "AT");
    const std::size_t at = command ? 2 : 0;
    if (command && SameLettersAt(line, at, "+CMGF=")) {
        _textMode = line.size() > at + 6 && line[at + 6] == '1';
        return line;
    }
    if (command && SameLettersAt(line, at, "D")) {
        // ATD+491701234567; a service code (ATD*99#, ATD*100#) is no one's number.
        if (line.size() > 3 && line[3] != '*' && line[3] != '#')
            MaskNumber(line, 3, line.size());
        return line;
    }
    for (const NumberField& field : kNumberFields) {
        if (!SameLettersAt(line, at, field.prefix))
            continue;
        const std::string_view prefix = field.prefix;
        if ((prefix.back() == '=') != command)
            continue;
        const auto arguments = Arguments(line, at + prefix.size());
        std::size_t begin = 0;
        std::size_t end = 0;
        bool quotedNumber = false;
        if (field.number >= 0 && static_cast<std::size_t>(field.number) < arguments.size() &&
            QuotedInside(line, arguments[field.number], begin, end)) {
            MaskNumber(line, begin, end);
            quotedNumber = true;
        }
        if (field.text >= 0 && static_cast<std::size_t>(field.text) < arguments.size() &&
            QuotedInside(line, arguments[field.text], begin, end))
            MaskText(line, begin, end);
        if (prefix == "+CMGS=" || prefix == "+CMGW=")
            _sentBody = quotedNumber ? Next::Text : Next::Pdu;
        else if (prefix == "+CMGR:" || prefix == "+CMGL:" || prefix == "+CMT:")
            _readBody = quotedNumber ? Next::Text : Next::Pdu;
        else if (prefix == "+CDS:" && arguments.size() == 1)
            _readBody = Next::Pdu;
        break;
    }
    if (command && (SameLettersAt(line, 0, "AT+CMGW") && line.size() == 7))
        _sentBody = _textMode ? Next::Text : Next::Pdu;
    return line;
}

// ---- the file ----------------------------------------------------------------------------------------

std::string RecordingHeader(std::string_view version, std::string_view date, std::string_view dialect,
                            bool masked) {
    return "#dialtone-recording 1 version=" + std::string(version) + " date=" + std::string(date) +
           " dialect=" + std::string(dialect) + " masked=" + (masked ? "yes" : "no") + "\n";
}

std::string RecordingLine(int64_t milliseconds, char direction, std::string_view line) {
    std::string out = std::to_string(milliseconds) + ' ' + direction + ' ';
    for (const char c : line.substr(0, kMaxRecordedLineBytes)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\') {
            out += "\\\\";
        } else if (byte < 0x20 || byte > 0x7E) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    out += '\n';
    return out;
}

namespace {

bool Fail(std::string& error, std::size_t number, const std::string& what) {
    error = "line " + std::to_string(number) + ": " + what;
    return false;
}

bool ParseHeader(std::string_view line, Recording& recording, std::string& error) {
    static constexpr std::string_view kMagic = "#dialtone-recording 1";
    if (line.substr(0, kMagic.size()) != kMagic ||
        (line.size() > kMagic.size() && line[kMagic.size()] != ' ')) {
        error = "not a dialtone recording (its first line must begin with \"#dialtone-recording 1\")";
        return false;
    }
    std::size_t at = kMagic.size();
    while (at < line.size()) {
        const std::size_t end = std::min(line.find(' ', at + 1), line.size());
        const std::string_view field = line.substr(at + 1, end - at - 1);
        const std::size_t equals = field.find('=');
        const std::string value(equals == std::string_view::npos ? std::string_view()
                                                                 : field.substr(equals + 1));
        const std::string_view key = field.substr(0, equals);
        if (key == "version")
            recording.version = value;
        else if (key == "date")
            recording.date = value;
        else if (key == "dialect")
            recording.dialect = value;
        else if (key == "masked")
            recording.masked = value != "no";
        at = end;
    }
    if (recording.dialect != "vel" && recording.dialect != "standard")
        return Fail(error, 1, "the dialect must be vel or standard");
    return true;
}

} // namespace

bool ParseRecording(std::string_view text, Recording& recording, std::string& error) {
    recording = Recording{};
    if (text.size() > kMaxRecordingBytes) {
        error = "larger than " + std::to_string(kMaxRecordingBytes >> 20) + " MiB";
        return false;
    }
    std::size_t number = 0;
    std::size_t at = 0;
    bool commands = false;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (number == 1) {
            if (!ParseHeader(line, recording, error))
                return false;
            continue;
        }
        if (line.empty() || line.front() == '#')
            continue;
        if (line.size() > 4 * kMaxRecordedLineBytes + 32)
            return Fail(error, number, "longer than a recorded line can be");
        const std::size_t digits = line.find_first_not_of("0123456789");
        if (digits == 0 || digits > 12 || digits == std::string_view::npos)
            return Fail(error, number, "no time (milliseconds since the start) at the beginning");
        if (line.size() < digits + 3 || line[digits] != ' ' ||
            (line[digits + 1] != '>' && line[digits + 1] != '<') ||
            (line.size() > digits + 2 && line[digits + 2] != ' '))
            return Fail(error, number, "no direction ('>' or '<') after the time");
        RecordedLine recorded;
        recorded.milliseconds = std::stoll(std::string(line.substr(0, digits)));
        recorded.direction = line[digits + 1];
        for (std::size_t i = digits + 3; i < line.size(); ++i) {
            const auto byte = static_cast<unsigned char>(line[i]);
            if (byte < 0x20 || byte > 0x7E)
                return Fail(error, number, "a byte that is not text (a binary file?)");
            if (byte != '\\') {
                recorded.text += line[i];
            } else if (i + 1 < line.size() && line[i + 1] == '\\') {
                recorded.text += '\\';
                ++i;
            } else if (i + 3 < line.size() && line[i + 1] == 'x' && IsHex(line.substr(i + 2, 2))) {
                recorded.text += static_cast<char>(HexValue(line[i + 2]) << 4 | HexValue(line[i + 3]));
                i += 3;
            } else {
                return Fail(error, number, "a backslash that is neither \\\\ nor \\xHH");
            }
        }
        if (recorded.text.size() > kMaxRecordedLineBytes)
            return Fail(error, number, "longer than " + std::to_string(kMaxRecordedLineBytes) + " bytes");
        commands = commands || recorded.direction == '>';
        recording.lines.push_back(std::move(recorded));
    }
    if (number == 0)
        return ParseHeader({}, recording, error);
    if (!commands) {
        error = "it holds no command sent to the modem";
        return false;
    }
    return true;
}

bool LoadRecording(const std::string& path, Recording& recording, std::string& error) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat st {};
    if (fd < 0 || fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        error = path + ": " + (fd < 0 ? std::strerror(errno) : "not a file");
        if (fd >= 0)
            close(fd);
        return false;
    }
    std::string text;
    char buffer[65536];
    ssize_t got = 0;
    while ((got = read(fd, buffer, sizeof buffer)) > 0 && text.size() <= kMaxRecordingBytes)
        text.append(buffer, static_cast<std::size_t>(got));
    close(fd);
    if (!ParseRecording(text, recording, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

// ---- the recorder ------------------------------------------------------------------------------------

namespace {

struct Recorder {
    std::mutex mutex;
    std::FILE* file = nullptr;
    bool keepPrivate = false;
    bool headerWritten = false;
    std::string version;
    std::string date;
    std::function<std::string()> dialect;
    std::chrono::steady_clock::time_point start;
    PrivateDataMask mask;
};

Recorder& TheRecorder() {
    static Recorder recorder;
    return recorder;
}

std::atomic<bool> g_recording{false};

void WriteHeaderOnce(Recorder& recorder) {
    if (recorder.headerWritten)
        return;
    const std::string dialect = recorder.dialect ? recorder.dialect() : "vel";
    std::fputs(RecordingHeader(recorder.version, recorder.date, dialect, !recorder.keepPrivate).c_str(),
               recorder.file);
    recorder.headerWritten = true;
}

// A run that never spoke to the modem still leaves a recording that says what it is.
void FinishRecording() {
    Recorder& recorder = TheRecorder();
    std::lock_guard lock(recorder.mutex);
    WriteHeaderOnce(recorder);
    std::fflush(recorder.file);
}

} // namespace

bool StartRecording(const std::string& path, bool keepPrivate, const std::string& version,
                    std::function<std::string()> dialect, std::string& error) {
    Recorder& recorder = TheRecorder();
    std::lock_guard lock(recorder.mutex);
    if (recorder.file != nullptr) {
        error = "a recording is already under way";
        return false;
    }
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) {
        error = errno == EEXIST ? path + " exists already; name a new file, or remove that one first"
                                : "cannot create " + path + ": " + std::strerror(errno);
        return false;
    }
    recorder.file = fdopen(fd, "w");
    if (recorder.file == nullptr) {
        close(fd);
        error = "cannot write " + path;
        return false;
    }
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%SZ", &utc);
    recorder.date = date;
    recorder.keepPrivate = keepPrivate;
    recorder.version = version;
    recorder.dialect = std::move(dialect);
    recorder.start = std::chrono::steady_clock::now();
    g_recording.store(true);
    std::atexit(FinishRecording);
    return true;
}

bool RecordingOn() {
    return g_recording.load(std::memory_order_relaxed);
}

void RecordTraffic(char direction, std::string_view text) {
    if (!RecordingOn())
        return;
    Recorder& recorder = TheRecorder();
    std::lock_guard lock(recorder.mutex);
    WriteHeaderOnce(recorder);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(
                                  std::chrono::steady_clock::now() - recorder.start)
                                  .count();
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find_first_of("\r\n", at);
        if (end == std::string_view::npos)
            end = text.size();
        if (end > at) {
            const std::string_view line = text.substr(at, end - at);
            const std::string kept =
                recorder.keepPrivate ? std::string(line) : MaskSecrets(recorder.mask.mask(direction, line));
            std::fputs(RecordingLine(milliseconds, direction, kept).c_str(), recorder.file);
        }
        at = end + 1;
    }
    std::fflush(recorder.file);
}
