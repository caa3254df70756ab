#include "NetworkUtility.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "AtParameter.h"
#include "FamilyCommand.h"
#include "ModemDialect.h"
#include "NetworkAnswerParsers.h"
#include "SystemUtility.h"

namespace {

constexpr int kQuickTimeoutMs = 1000;
constexpr int kStateTimeoutMs = 3000;
constexpr int kSimTimeoutMs = 5000;
constexpr int kSelectTimeoutMs = 180000;

constexpr int kUnknownLevel = 6;
constexpr int kUnknownRegistration = 5;
constexpr int kUnknownMode = 5;
constexpr int kUnknownServiceState = 4;
constexpr int kUnknownBearer = 8;

struct SignalRow {
    int low;
    int high;
    int level;
};

constexpr SignalRow kSignalLevels[] = {{0, 1, 0},   {2, 7, 1},   {8, 11, 2},
                                       {12, 15, 3}, {16, 19, 4}, {20, 31, 5}};

struct BearerText {
    const char* text;
    int bearer;
};

// Compared as prefixes in this order: "HSPA+" is HSPA.
constexpr BearerText kBearers[] = {{"NO SERVICE", 0}, {"GPRS", 1}, {"EDGE", 2},  {"UMTS", 3},
                                   {"HSDPA", 4},      {"HSPA", 5}, {"HSUPA", 6}, {"GSM", 7}};

// The second and third "+SYSSEL" values of each mode.
constexpr int kModePairs[][2] = {{0, 0}, {2, 0}, {0, 1}, {1, 0}, {0, 2}};

// 3GPP TS 27.007 <AcT> 0 GSM, 1 GSM compact, 2 UTRAN, 3 EDGE, 4 HSDPA, 5 HSUPA, 6 HSPA as bearers; LTE
// (7) and anything newer has no bearer of its own and stays unknown.
constexpr int kAccessTechnologyBearers[] = {7, 7, 3, 2, 4, 6, 5};

// 3GPP TS 27.007 <stat> 0 not registered, 1 home, 2 searching, 3 denied, 4 unknown, 5 roaming.
constexpr int kRegistrationStates[] = {0, 3, 1, 2, 5, 4};

// The number right after the first prefix in the answer.
bool ReadValueAfter(const std::string& answer, const char* prefix, int& value) {
    const std::size_t at = answer.find(prefix);
    return at != std::string::npos &&
           std::sscanf(answer.c_str() + at + std::strlen(prefix), "%d", &value) == 1;
}

} // namespace

int CNetworkUtility::RegisterExecAT(ExecATCallback callback) {
    m_pfnExecAT = callback;
    return 0;
}

int CNetworkUtility::WriteComm(std::string& response, const char* command, const char* expected,
                               int timeoutMs, std::initializer_list<const char*> finals) {
    return FamilyWriteComm(m_pfnExecAT, response, command, expected, timeoutMs, finals);
}

int CNetworkUtility::RunSetCommand(const std::string& command, int timeoutMs) {
    std::string response;
    const int result = WriteComm(response, command.c_str(), nullptr, timeoutMs);
    if (result != 0)
        return result;
    return AnswerHasOk(response) ? 0 : 1;
}

int CNetworkUtility::Init() {
    return SetNumericFormat();
}

int CNetworkUtility::SetNumericFormat() {
    return RunSetCommand("AT+COPS=3,2\r", kQuickTimeoutMs);
}

int CNetworkUtility::ReadCsq(int& value) {
    // +CSQ: 20,99   rssi, bit error rate
    std::string response;
    const int result = WriteComm(response, "AT+CSQ\r", "+CSQ: ", kQuickTimeoutMs);
    if (result != 0)
        return result;
    return ReadValueAfter(response, "+CSQ: ", value) ? 0 : 1;
}

int CNetworkUtility::GetRssiLevel(int& level) {
    level = kUnknownLevel;
    int csq = 0;
    if (const int result = ReadCsq(csq); result != 0)
        return result;
    if (csq == 99) {
        level = 0;
        return 0;
    }
    for (const SignalRow& row : kSignalLevels) {
        if (csq >= row.low && csq <= row.high) {
            level = row.level;
            break;
        }
    }
    return 0;
}

int CNetworkUtility::GetSignalDBValue(int& value) {
    value = 0;
    int csq = 0;
    if (const int result = ReadCsq(csq); result != 0)
        return result;
    // 114, not the standard's 113: the figure users know from the old screens. A modem's out-of-range
    // rssi ("+CSQ: 1807229228,99") must not overflow: the figure saturates.
    const long long dbm = csq == 99 ? 0 : 114 - 2LL * csq;
    value = static_cast<int>(std::clamp<long long>(dbm, INT_MIN, INT_MAX));
    return 0;
}

int CNetworkUtility::GetSignalReading(TSignalReading& reading) {
    reading = TSignalReading{};
    std::string response;
    int result = WriteComm(response, "AT+CSQ\r", "+CSQ", kQuickTimeoutMs);
    if (result != 0)
        return result;
    if (!ParseCsqRssi(response, reading.csq))
        return 1;
    if (!m_bNoCesq) {
        // +CESQ: 99,99,45,30,255,255
        result = WriteComm(response, "AT+CESQ\r", "+CESQ", kQuickTimeoutMs);
        if (result == 0 && AnswerHasOk(response))
            ParseCesqAnswer(response, reading.rscp, reading.ecno);
        else if (result == 0)
            m_bNoCesq = true;
    }
    if (!m_bRegistrationDetails) {
        RunSetCommand("AT+CREG=2\r", kQuickTimeoutMs);
        m_bRegistrationDetails = true;
    }
    if (WriteComm(response, "AT+CREG?\r", "+CREG", kStateTimeoutMs) == 0)
        ParseCregCell(response, reading);
    const int technology = reading.accessTechnology;
    constexpr int kTechnologies = static_cast<int>(std::size(kAccessTechnologyBearers));
    if (StandardDialect() && technology >= 0 && technology < kTechnologies)
        reading.bearer = kAccessTechnologyBearers[technology];
    else
        GetBearer(reading.bearer);
    return 0;
}

int CNetworkUtility::GetRegState(int which, int& state) {
    // +CREG: 0,1   or with location: +CGREG: 2,5,"1A2B","00C3D4",2
    state = kUnknownRegistration;
    const bool packet = which == 1;
    const char* prefix = packet ? "+CGREG: " : "+CREG: ";
    std::string response;
    const int result = WriteComm(response, packet ? "AT+CGREG?\r" : "AT+CREG?\r", prefix, kStateTimeoutMs);
    if (result != 0)
        return result;
    // An unsolicited "+CREG: 1" may come before the answer: the first line with both numbers counts.
    for (std::size_t at = response.find(prefix); at != std::string::npos;
         at = response.find(prefix, at + 1)) {
        int mode = 0;
        int stat = 0;
        if (std::sscanf(response.c_str() + at + std::strlen(prefix), "%d,%d", &mode, &stat) != 2)
            continue;
        if (stat >= 0 && stat < static_cast<int>(std::size(kRegistrationStates)))
            state = kRegistrationStates[stat];
        return 0;
    }
    return 1;
}

int CNetworkUtility::GetPSAttachState(int& state) {
    // +CGATT: 1
    state = 0;
    std::string response;
    const int result = WriteComm(response, "AT+CGATT?\r", "+CGATT: ", kStateTimeoutMs);
    if (result != 0)
        return result;
    int attached = 0;
    if (!ReadValueAfter(response, "+CGATT: ", attached))
        return 1;
    if (attached == 0)
        state = 2;
    else if (attached == 1)
        state = 1;
    return 0;
}

int CNetworkUtility::SetBand(int band) {
    if (StandardDialect())
        return kNotSupportedByModem;
    return RunSetCommand("AT+SYSSEL=" + std::to_string(band) + "\r", kQuickTimeoutMs);
}

int CNetworkUtility::SetMode(int mode) {
    if (StandardDialect())
        return kNotSupportedByModem;
    if (mode < 0 || mode >= static_cast<int>(std::size(kModePairs)))
        return 1;
    return RunSetCommand("AT+SYSSEL=," + std::to_string(kModePairs[mode][0]) + "," +
                             std::to_string(kModePairs[mode][1]) + "\r",
                         kQuickTimeoutMs);
}

int CNetworkUtility::SetDomain(int domain) {
    if (StandardDialect())
        return kNotSupportedByModem;
    return RunSetCommand("AT+SYSSEL=,,," + std::to_string(domain) + "\r", kQuickTimeoutMs);
}

int CNetworkUtility::ReadSystemSelection(int (&values)[4]) {
    if (StandardDialect())
        return kNotSupportedByModem;
    std::string response;
    const int result = WriteComm(response, "AT+SYSSEL?\r", "+SYSSEL:", kQuickTimeoutMs);
    if (result != 0)
        return result;
    const std::size_t at = response.find("+SYSSEL:");
    if (at == std::string::npos || std::sscanf(response.c_str() + at, "+SYSSEL: %d,%d,%d,%d", &values[0],
                                               &values[1], &values[2], &values[3]) != 4)
        return 1;
    return 0;
}

int CNetworkUtility::GetBand(int& band) {
    int values[4] = {};
    const int result = ReadSystemSelection(values);
    if (result == 0)
        band = values[0];
    return result;
}

int CNetworkUtility::GetMode(int& mode) {
    mode = kUnknownMode;
    int values[4] = {};
    const int result = ReadSystemSelection(values);
    if (result != 0)
        return result;
    for (int row = 0; row < static_cast<int>(std::size(kModePairs)); ++row) {
        if (kModePairs[row][0] == values[1] && kModePairs[row][1] == values[2]) {
            mode = row;
            break;
        }
    }
    return 0;
}

int CNetworkUtility::GetDomain(int& domain) {
    int values[4] = {};
    const int result = ReadSystemSelection(values);
    if (result == 0)
        domain = values[3];
    return result;
}

int CNetworkUtility::GetBearerFromAccessTechnology(int& bearer) {
    // +CREG: 2,1,"1A2B","00C3D4",2   after AT+CREG=2; else +COPS: 0,2,"46000",2
    if (!m_bRegistrationDetails) {
        RunSetCommand("AT+CREG=2\r", kQuickTimeoutMs);
        m_bRegistrationDetails = true;
    }
    std::string response;
    int result = WriteComm(response, "AT+CREG?\r", "+CREG", kStateTimeoutMs);
    if (result != 0)
        return result;
    int stat = -1;
    int technology = ParseCregAccessTechnology(response, stat);
    if (stat != -1 && stat != 1 && stat != 5) {
        bearer = 0; // no service
        return 0;
    }
    if (technology < 0) {
        TNetworkBaseInfo base;
        base.nAcT = -1;
        std::string operatorAnswer;
        if ((result = WriteComm(operatorAnswer, "AT+COPS?\r", "+COPS", kQuickTimeoutMs)) != 0)
            return result;
        ParseCopsAnswer(operatorAnswer, base);
        technology = base.nAcT;
    }
    if (technology < 0 || technology >= static_cast<int>(std::size(kAccessTechnologyBearers)))
        return 1;
    bearer = kAccessTechnologyBearers[technology];
    return 0;
}

int CNetworkUtility::GetBearer(int& bearer) {
    if (StandardDialect())
        return GetBearerFromAccessTechnology(bearer);
    // +SSND: HSDPA
    std::string response;
    const int result = WriteComm(response, "AT+SSND?\r", "+SSND: ", kQuickTimeoutMs);
    if (result != 0)
        return result;
    const std::size_t at = response.find("+SSND: ");
    if (at == std::string::npos)
        return 1;
    const char* text = response.c_str() + at + std::strlen("+SSND: ");
    for (const BearerText& entry : kBearers) {
        if (std::strncmp(text, entry.text, std::strlen(entry.text)) == 0) {
            bearer = entry.bearer;
            return 0;
        }
    }
    return 1;
}

int CNetworkUtility::GetBaseInfo(TNetworkBaseInfo& info) {
    info = TNetworkBaseInfo{};
    info.nMode = 5;
    info.nFormat = 3;
    info.nAcT = 3;
    std::string response;
    if (WriteComm(response, "AT+COPS?\r", "+COPS: ", 60000) != 0)
        return 2;
    return ParseCopsAnswer(response, info);
}

int CNetworkUtility::GetList(std::list<TNetworkListItem>& items) {
    std::string response;
    const int result = WriteComm(response, "AT+COPS=?\r", "+COPS: ", kSelectTimeoutMs);
    if (result != 0)
        return result;
    return ParseCopsListAnswer(response, items);
}

int CNetworkUtility::Set(int mask, int mode, int format, const char* oper, int accessTechnology) {
    if (mask == 0 || mode >= 5)
        return 0;
    // AT+COPS=<mode>[,<format>[,<oper>[,<AcT>]]]
    std::string command = "AT+COPS=";
    if ((mask & 1) != 0)
        command += std::to_string(mode);
    if ((mask & 2) != 0) {
        if (format > 2)
            return 1;
        command += "," + std::to_string(format);
    } else if ((mask & 4) == 0 && (mask & 8) != 0) {
        // One comma only, so the technology lands in the format's place: kept as the modems were served.
        command += ",";
    }
    if ((mask & 4) != 0 && oper != nullptr) {
        if (CheckName(format, oper) == 0)
            return 1;
        if (!AppendQuotedAtParameter((command += ","), oper, 16))
            return kAtParameterRefused;
    }
    if ((mask & 8) != 0) {
        if (accessTechnology > 2)
            return 1;
        command += "," + std::to_string(accessTechnology);
    }
    command += "\r";
    return RunSetCommand(command, kSelectTimeoutMs);
}

int CNetworkUtility::GetSpInfo(TServiceProviderInfo& info) {
    info = TServiceProviderInfo{};
    std::string response;
    if (StandardDialect()) {
        // READ BINARY of EF-SPN (6F46): +CRSM: 144,0,"014142FFFF..."
        const int result = WriteComm(response, "AT+CRSM=176,28486,0,0,17\r", "+CRSM", kSimTimeoutMs);
        return result != 0 ? result : ParseCrsmSpnAnswer(response, info);
    }
    const int result = WriteComm(response, "AT+SPNM\r", "+SPNM: ", kQuickTimeoutMs);
    if (result != 0)
        return result;
    return ParseSpnmAnswer(response, info);
}

int CNetworkUtility::GetImsi(char (&imsi)[kImsiSize]) {
    std::string response;
    const int result = WriteComm(response, "AT+CIMI\r", nullptr, kSimTimeoutMs);
    if (result != 0)
        return result;
    return CSystemUtility::ParseImsiAnswer(response, imsi);
}

int CNetworkUtility::GetSPDI(int& count, std::vector<TSpdiEntry>& entries) {
    if (StandardDialect()) {
        count = 0;
        entries.clear();
        return kNotSupportedByModem;
    }
    std::string response;
    const int result = WriteComm(response, "AT+SPDI\r", nullptr, kSimTimeoutMs);
    if (result != 0)
        return result;
    ParseSpdiAnswer(response, count, entries);
    return 1; // whatever was read; GetInfo does not look at it
}

int CNetworkUtility::GetInfo(TNetworkInfo& info) {
    TNetworkBaseInfo base;
    if (const int result = SetNumericFormat(); result != 0)
        return result;
    if (const int result = GetBaseInfo(base); result != 0)
        return result;
    info.nMode = base.nMode;
    info.nFormat = base.nFormat;
    std::memcpy(info.szOperator, base.szOperator, sizeof info.szOperator);
    info.nAcT = base.nAcT;

    int level = kUnknownLevel;
    info.nRssiLevel = GetRssiLevel(level) == 0 ? level : kUnknownLevel;

    int registration = kUnknownRegistration;
    info.nServiceState = kUnknownServiceState;
    if (GetRegState(0, registration) == 0) {
        switch (registration) {
        case 3:
            info.nServiceState = 0; // home
            break;
        case 4:
            info.nServiceState = 1; // roaming
            break;
        case 1:
            info.nServiceState = 2; // searching
            break;
        case 0:
        case 2:
            info.nServiceState = 3; // no service
            break;
        default:
            break;
        }
    }

    int bearer = kUnknownBearer;
    info.nBearer = GetBearer(bearer) == 0 ? bearer : kUnknownBearer;
    int packet = kUnknownRegistration;
    GetRegState(1, packet);
    info.nPsRegState = packet;

    if (info.szOperator[0] == '\0' || GetSpInfo(info.spInfo) != 0) {
        info.spInfo = TServiceProviderInfo{};
        return 0;
    }

    // Home network: the numeric operator starts the IMSI or is one of the SIM's display networks.
    char imsi[kImsiSize] = {};
    GetImsi(imsi);
    int spdiCount = 0;
    std::vector<TSpdiEntry> spdi;
    GetSPDI(spdiCount, spdi);
    const std::size_t operatorLength = std::strlen(info.szOperator);
    bool home = std::strncmp(info.szOperator, imsi, operatorLength) == 0;
    for (int i = 0; !home && i < spdiCount && i < static_cast<int>(spdi.size()); ++i)
        home = std::strcmp(info.szOperator, spdi[static_cast<std::size_t>(i)].data()) == 0;

    if (info.spInfo.nPresent == 0)
        return 0;
    const int simByte = info.spInfo.nDisplay;
    if (home)
        info.spInfo.nDisplay = (simByte & 1) != 0 ? 1 : 2;
    else if (std::strncmp(info.szOperator, imsi, 3) != 0)
        info.spInfo.nDisplay = 3; // abroad
    else
        info.spInfo.nDisplay = simByte != 0 ? 1 : 2;
    return 0;
}

void CNetworkUtility::ParseItemString(std::string_view text, TNetworkListItem& item) {
    ParseCopsListItem(text, item);
}

int CNetworkUtility::CheckName(int format, const char* name) {
    if (name == nullptr)
        return 0;
    std::size_t limit = 0;
    switch (format) {
    case 0:
        limit = 16;
        break;
    case 1:
        limit = 8;
        break;
    case 2:
        limit = 6;
        break;
    default:
        return 0;
    }
    return std::strlen(name) <= limit ? 1 : 0;
}

int CNetworkUtility::TrimString(std::string_view text, char* buffer, int size) {
    return CopyWithoutBlanks(text, buffer, size);
}

int CNetworkUtility::Default7BitToWstring(const unsigned char* bytes, int length, wchar_t* text, int size) {
    return DecodeDefault7Bit(bytes, length, text, size);
}
