#include "ScriptDocuments.h"

#include <initializer_list>
#include <utility>

#include "ScriptJson.h"
#include "ScriptVocabulary.h"

using nlohmann::json;

namespace {

constexpr int kUnknownSignalLevel = 6;
constexpr int kNoMessageClass = 4;

json CountOrNull(int count) {
    return count < 0 ? json(nullptr) : json(count);
}

// The word for a code of the worker's own numbering.
const char* Word(std::initializer_list<std::pair<int, const char*>> words, int code) {
    for (const auto& [known, word] : words) {
        if (known == code)
            return word;
    }
    return "unknown";
}

const char* StoreName(int store) {
    return Word({{SmsStorage::kSim, "sim"}, {SmsStorage::kModem, "modem"}, {SmsStorage::kPc, "computer"}},
                store);
}

const char* MessageStatusName(int tag) {
    return Word({{SmsTag::kUnread, "unread"},
                 {SmsTag::kRead, "read"},
                 {SmsTag::kUnsent, "unsent"},
                 {SmsTag::kSent, "sent"}},
                tag);
}

const char* MessageTypeName(int type) {
    return Word({{SmsType::kDeliver, "received"},
                 {SmsType::kStatusReport, "status-report"},
                 {SmsType::kSubmit, "sent"}},
                type);
}

} // namespace

json EquipmentDocument(const BLEquipmentInfo& info) {
    return {{"manufacturer", TextOrNull(info.strManufacturer)},
            {"model", TextOrNull(info.strModel)},
            {"revision", TextOrNull(info.strRevision)},
            {"hardware_version", TextOrNull(info.strHardwareVersion)},
            {"serial_number", TextOrNull(info.strSerialNumber)},
            {"imsi", TextOrNull(info.strImsi)},
            {"msisdn", TextOrNull(info.strMsisdn)}};
}

json SimDocument(const BLPinCheckState& state) {
    return {{"state", SimName(state.nState)},
            {"pin_attempts", CountOrNull(state.nPinCnt)},
            {"puk_attempts", CountOrNull(state.nPukCnt)}};
}

json NetworkDocument(const BLNetworkInfo& info) {
    return {{"operator_code", TextOrNull(info.strOperator)},
            {"provider_name", TextOrNull(info.strSpName)},
            {"selection", info.nMode == BLNetworkSet::kModeAutomatic ? "automatic"
                          : info.nMode == BLNetworkSet::kModeManual  ? "manual"
                                                                     : "unknown"},
            {"service", ServiceName(info.nRoamState)},
            {"roaming", info.nRoamState == 1},
            {"technology", TechnologyName(info.nAcT)},
            {"technology_code", info.nAcT},
            {"bearer", BearerName(info.nBearer)},
            {"signal_level", info.nRssi >= 0 && info.nRssi < kUnknownSignalLevel ? json(info.nRssi) : json()},
            {"packet_registration", RegistrationName(info.nGprsState)},
            {"packet_registration_code", RegistrationCode(info.nGprsState)}};
}

json RegistrationDocument(int state) {
    return {{"registration", RegistrationName(state)}, {"registration_code", RegistrationCode(state)}};
}

json OperatorDocument(const BLNetworkListItem& item) {
    return {{"code", TextOrNull(item.strNumericAlpha)},
            {"name", TextOrNull(item.strLongAlpha)},
            {"short_name", TextOrNull(item.strShortAlpha)},
            {"status", OperatorStatusName(item.nState)},
            {"status_code", item.nState},
            {"technology", TechnologyName(item.nAcT)},
            {"technology_code", item.nAcT}};
}

json NetworkSetDocument(const BLNetworkSet& set) {
    json document{{"selection", set.nMode == BLNetworkSet::kModeManual ? "manual" : "automatic"},
                  {"operator_code", nullptr},
                  {"technology", nullptr},
                  {"technology_code", nullptr}};
    if (set.nMask & BLNetworkSet::kOperatorGiven)
        document["operator_code"] = TextOrNull(set.strOperator);
    if (set.nMask & BLNetworkSet::kAcTGiven) {
        document["technology"] = TechnologyName(set.nAcT);
        document["technology_code"] = set.nAcT;
    }
    return document;
}

json MessageDocument(const BLSmsListItem& item, const QString& name) {
    json document{
        {"index", item.nRef},
        {"type", MessageTypeName(item.nType)},
        {"status", MessageStatusName(item.nTag)},
        {"storage", StoreName(item.nStoreIn)},
        {"number", TextOrNull(item.strAddress)},
        {"name", TextOrNull(name)},
        {"time", IsoTime(item.dateTime)},
        {"text", item.strContent.toStdString()},
        {"message_class", item.nClass >= 0 && item.nClass < kNoMessageClass ? json(item.nClass) : json()},
        {"complete", item.nCompleted != 0},
        {"report_status", nullptr}};
    if (item.nType == SmsType::kStatusReport)
        document["report_status"] = item.nStatusReportStatus;
    return document;
}

json ContactDocument(const BLPbItem& item) {
    return {{"storage", item.nStore == kSimStore ? "sim" : "modem"},
            {"index", item.nIndex},
            {"name", item.strName.toStdString()},
            {"number", TextOrNull(item.strNumber)}};
}

json TrafficDocument(const BLConnectStatistics& statistics) {
    return {{"duration", statistics.nDurationSeconds},        {"sent_bytes", statistics.nSentBytes},
            {"received_bytes", statistics.nReceivedBytes},    {"sent_rate", statistics.nSentBPS},
            {"received_rate", statistics.nReceivedBPS},       {"max_sent_rate", statistics.nMaxSentBPS},
            {"max_received_rate", statistics.nMaxReceivedPBS}};
}
