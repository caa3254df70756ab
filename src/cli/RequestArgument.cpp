#include "RequestArgument.h"

#include <climits>
#include <vector>

#include "ModemTextCheck.h"
#include "WorkMessageNames.h"

using nlohmann::json;

namespace {

// A field (or the argument itself, with an empty name) and what it may hold.
struct Rule {
    enum Kind { Range, Code, Text, Flag };
    const char* field;
    Kind kind;
    long long min = 0;
    long long max = 0;
    PinCodeKind code = PinCodeKind::Pin;
};

Rule Between(const char* field, long long min, long long max) {
    return {field, Rule::Range, min, max};
}
Rule SimCode(const char* field, PinCodeKind kind) {
    return {field, Rule::Code, 0, 0, kind};
}
// Text that ends up in a quoted AT parameter or a line of pppd's options, at most max bytes.
Rule LineText(const char* field, long long max) {
    return {field, Rule::Text, 0, max};
}

struct Expected {
    const QString* request;
    const char* record;      // nullptr: a plain value, or nothing when rules is empty too
    std::vector<Rule> rules; // for a plain value, one rule with an empty field name
};

// clang-format off
const std::vector<Expected>& Table() {
    static const std::vector<Expected> table = {
        {&MESSAGE_CONNECT_DIALUP, "BLConnectDialinfo", {LineText("strAPN", kApnMaxLength), LineText("strAccountName", kApnMaxLength), LineText("strDialNumber", kDialStringMaxLength)}},
        {&MESSAGE_SMS_SEND, "BLSmsSendItem", {}},
        {&MESSAGE_NETWORK_SET, "BLNetworkSet", {Between("nMask", 0, 15), Between("nMode", 0, 4), Between("nFormat", 0, 2), LineText("strOperator", 16), Between("nAcT", 0, 2)}},
        {&NETWORK_SET_BAND, nullptr, {Between("", 0, INT_MAX)}},
        {&NETWORK_SET_MODE, nullptr, {Between("", 0, 4)}},
        {&MESSAGE_PB_ADD_ITEM, "BLPBNewItem", {Between("nStoreIn", 0, 1), LineText("strNumber", kPbNumberMaxLength)}},
        {&MESSAGE_PB_DELETE_ITEM, "BLPBDeleteItem", {Between("nStoreIn", 0, 1), Between("nIndex", 1, INT_MAX)}},
        {&MESSAGE_PB_UPDATE_ITEM, "BLPbItem", {Between("nStore", 0, 1), Between("nIndex", 1, INT_MAX), LineText("strNumber", kPbNumberMaxLength)}},
        {&MESSAGE_PIN_CHANGE, "BLPINChangeInfo", {SimCode("strOldPin", PinCodeKind::Pin), SimCode("strNewPin", PinCodeKind::Pin)}},
        {&MESSAGE_PIN_ENABLE, "BLPINEnableInfo", {SimCode("strPinCode", PinCodeKind::Pin)}},
        {&MESSAGE_PIN_GET_INFO, nullptr, {Between("", 0, 17)}},
        {&MESSAGE_PIN_VERIFY, nullptr, {SimCode("", PinCodeKind::Pin)}},
        {&MESSAGE_PIN_VERIFY_PUK, "BLPINVerifyPukInfo", {SimCode("strPUK", PinCodeKind::Puk), SimCode("strNewPin", PinCodeKind::Pin)}},
        {&MESSAGE_SMS_DELETE, nullptr, {Between("", 0, INT_MAX)}},
        {&MESSAGE_SMS_SET_PREFERRED_STORAGE, nullptr, {Between("", 0, 5)}},
        {&MESSAGE_SMS_SET_SC, nullptr, {LineText("", 20)}},
        {&MESSAGE_SMS_SET_VALID_PERIOD, "BLSmsValidPeriod", {}},
        {&MESSAGE_CONFIG_FILTER_SMS, "BLSmsFilterConfig", {}},
        {&MESSAGE_SMS_SET_STATUS_REPORT, nullptr, {{"", Rule::Flag}}},
        {&MESSAGE_SMS_USE_PC_INBOX, nullptr, {LineText("", 15)}},
        {&MESSAGE_USSD_SETSTATE, nullptr, {Between("", 0, 2)}},
        {&MESSAGE_USSD_SENDCMD, "BLUssdSendCmdInfo", {Between("nOpCode", 0, 1), LineText("strCmdString", kUssdTextMaxLength)}},
        {&MESSAGE_CALL_DIAL, nullptr, {LineText("", kDialStringMaxLength)}},
        {&MESSAGE_CALL_SEND_DTMF, nullptr, {LineText("", kDialStringMaxLength)}},
    };
    return table;
}

// The requests that take no argument.
const std::vector<const QString*>& WithoutArgument() {
    static const std::vector<const QString*> names = {
        &MESSAGE_CONNECT_DISCONNECT, &MESSAGE_CONNECT_PPP_STATUS, &MESSAGE_CONNECT_GET_STATISTICS, &MESSAGE_CONNECT_STATUS,
        &MESSAGE_MODEM_INIT, &MESSAGE_SYSTEM_GET_EQUIPMENT_INFO, &MESSAGE_SYSTEM_GET_DIAG_INFO,
        &MESSAGE_NETWORK_INIT, &MESSAGE_NETWORK_GET_LIST, &MESSAGE_NETWORK_GET_INFO, &NETWORK_GET_BAND, &NETWORK_GET_MODE, &NETWORK_GET_REG_STATE,
        &MESSAGE_PB_INIT_LIST, &MESSAGE_PB_GET_STORAGE_INFO, &MESSAGE_PB_GET_CONSTRAINT,
        &MESSAGE_PIN_CHECK_STATE, &MESSAGE_PIN_GET_STATE,
        &MESSAGE_SMS_INIT, &MESSAGE_SMS_GET_LIST, &MESSAGE_SMS_GET_PREFERRED_STORAGE, &MESSAGE_SMS_GET_SC, &MESSAGE_SMS_GET_STORAGE_STATE,
        &MESSAGE_USSD_CHECKSTATE, &MESSAGE_STK_GET_MENU, &MESSAGE_STK_POLL,
        &MESSAGE_CALL_ANSWER, &MESSAGE_CALL_HANGUP, &MESSAGE_CALL_GET_LIST, &MESSAGE_GPS_INIT, &MESSAGE_GPS_UNINIT,
    };
    return names;
}
// clang-format on

std::string Describe(const Rule& rule) {
    switch (rule.kind) {
    case Rule::Range:
        return "a whole number from " + std::to_string(rule.min) +
               (rule.max == INT_MAX ? std::string(" up") : " to " + std::to_string(rule.max));
    case Rule::Code:
        return rule.code == PinCodeKind::Puk || rule.code == PinCodeKind::Puk2 ? "a text of 8 digits"
                                                                               : "a text of 4 to 8 digits";
    case Rule::Text:
        return "a text of at most " + std::to_string(rule.max) + " characters";
    case Rule::Flag:
        return "\"TRUE\" or \"FALSE\"";
    }
    return {};
}

// What is wrong with value under rule; a missing record field (null value) holds the record's default.
std::string Check(const Rule& rule, const json* value, const std::string& where) {
    const std::string what = where + " must be " + Describe(rule);
    switch (rule.kind) {
    case Rule::Range:
        if (value == nullptr)
            return {};
        if (value->is_number_unsigned()) {
            const auto number = value->get<unsigned long long>();
            if (number <= static_cast<unsigned long long>(rule.max) &&
                static_cast<long long>(number) >= rule.min)
                return {};
        } else if (value->is_number_integer()) {
            const auto number = value->get<long long>();
            if (number >= rule.min && number <= rule.max)
                return {};
        }
        return what + ", not " + value->dump();
    case Rule::Code: {
        const bool text = value != nullptr && value->is_string();
        if (value != nullptr && !text && !value->is_null())
            return what + ", not " + value->dump();
        const std::string problem = PinCodeProblem(text ? value->get<std::string>() : "", rule.code);
        return problem.empty() ? problem : where + ": " + problem;
    }
    case Rule::Text: {
        if (value == nullptr || value->is_null())
            return {};
        if (!value->is_string())
            return what + ", not " + value->dump();
        return ModemTextProblem(where, value->get<std::string>(), static_cast<std::size_t>(rule.max));
    }
    case Rule::Flag:
        if (value != nullptr && (*value == "TRUE" || *value == "FALSE"))
            return {};
        return what + ", not " + (value != nullptr ? value->dump() : std::string("nothing"));
    }
    return {};
}

} // namespace

std::string RequestArgumentProblem(const std::string& name, json& document) {
    const QString request = QString::fromStdString(name);
    for (const QString* without : WithoutArgument()) {
        if (*without == request)
            return document.is_null() ? std::string() : name + " takes no argument";
    }
    for (const Expected& expected : Table()) {
        if (*expected.request != request)
            continue;
        if (expected.record == nullptr) {
            const Rule& rule = expected.rules.front();
            return Check(rule, document.is_null() ? nullptr : &document, name + "'s argument");
        }
        const std::string record = expected.record;
        if (!document.is_object())
            return name + " takes a " + record + " object, not " +
                   (document.is_null() ? "nothing" : document.dump());
        const auto given = document.find("class");
        if (given == document.end())
            document["class"] = record;
        else if (*given != record)
            return name + " takes a " + record + ", not " + given->dump();
        for (const Rule& rule : expected.rules) {
            const auto found = document.find(rule.field);
            const json* value = found == document.end() ? nullptr : &*found;
            if (std::string problem = Check(rule, value, record + "." + rule.field); !problem.empty())
                return problem;
        }
        return {};
    }
    return {};
}
