#include "RecordJson.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QPointer>
#include <QStringList>

#include <algorithm>
#include <limits>
#include <set>

#include "BLRecords.h"

using nlohmann::json;

namespace {

// The fields of every record, by name, in declaration order. One visitor serves both directions.
template <typename V> void Fields(BLEquipmentInfo& r, V&& v) {
    v("strManufacturer", r.strManufacturer), v("strModel", r.strModel), v("strRevision", r.strRevision);
    v("strSerialNumber", r.strSerialNumber), v("strImsi", r.strImsi), v("strMsisdn", r.strMsisdn);
    v("strHardwareVersion", r.strHardwareVersion);
}
template <typename V> void Fields(BLDiagInfo& r, V&& v) {
    v("strManufacturer", r.strManufacturer), v("strModel", r.strModel), v("strRevision", r.strRevision);
    v("strSerialNumber", r.strSerialNumber), v("strImsi", r.strImsi), v("strMsisdn", r.strMsisdn);
    v("strHardwareVersion", r.strHardwareVersion), v("nMode", r.nMode), v("nFormat", r.nFormat);
    v("strOperator", r.strOperator), v("nAcT", r.nAcT), v("strSpName", r.strSpName), v("nRssi", r.nRssi);
    v("nRoamState", r.nRoamState), v("nBearer", r.nBearer), v("nPinState", r.nPinState);
    v("nGprsRegState", r.nGprsRegState), v("nNormalRegState", r.nNormalRegState);
    v("nPsAttachState", r.nPsAttachState);
}
template <typename V> void Fields(BLPINInfo& r, V&& v) {
    v("nPinCnt", r.nPinCnt), v("nPukCnt", r.nPukCnt);
}
template <typename V> void Fields(BLPinCheckState& r, V&& v) {
    v("nState", r.nState), v("nPinCnt", r.nPinCnt), v("nPukCnt", r.nPukCnt);
}
template <typename V> void Fields(BLPINEnableInfo& r, V&& v) {
    v("blPinEnable", r.blPinEnable), v("strPinCode", r.strPinCode);
}
template <typename V> void Fields(BLPINChangeInfo& r, V&& v) {
    v("strOldPin", r.strOldPin), v("strNewPin", r.strNewPin);
}
template <typename V> void Fields(BLPINVerifyPukInfo& r, V&& v) {
    v("strPUK", r.strPUK), v("strNewPin", r.strNewPin);
}
template <typename V> void Fields(BLNetworkInfo& r, V&& v) {
    v("nMode", r.nMode), v("nFormat", r.nFormat), v("strOperator", r.strOperator), v("nAcT", r.nAcT);
    v("nDisplayMask", r.nDisplayMask), v("strSpName", r.strSpName), v("nRssi", r.nRssi);
    v("nRoamState", r.nRoamState), v("nBearer", r.nBearer), v("nGprsState", r.nGprsState);
}
template <typename V> void Fields(BLNetworkListItem& r, V&& v) {
    v("mode", r.mode), v("nState", r.nState), v("strLongAlpha", r.strLongAlpha);
    v("strShortAlpha", r.strShortAlpha), v("strNumericAlpha", r.strNumericAlpha), v("nAcT", r.nAcT);
}
template <typename V> void Fields(BLNetworkSet& r, V&& v) {
    v("nMask", r.nMask), v("nMode", r.nMode), v("nFormat", r.nFormat), v("strOperator", r.strOperator);
    v("nAcT", r.nAcT);
}
template <typename V> void Fields(BLNetRegState& r, V&& v) {
    v("nType", r.nType), v("nState", r.nState);
}
template <typename V> void Fields(BLPbItem& r, V&& v) {
    v("nStore", r.nStore), v("strName", r.strName), v("strNumber", r.strNumber), v("nIndex", r.nIndex);
}
template <typename V> void Fields(BLPBNewItem& r, V&& v) {
    v("nStoreIn", r.nStoreIn), v("strName", r.strName), v("strNumber", r.strNumber);
}
template <typename V> void Fields(BLPBDeleteItem& r, V&& v) {
    v("nStoreIn", r.nStoreIn), v("nIndex", r.nIndex);
}
template <typename V> void Fields(BLPBStorageInfo& r, V&& v) {
    v("nSimTotal", r.nSimTotal), v("nSimUsed", r.nSimUsed), v("nMeTotal", r.nMeTotal),
        v("nMeUsed", r.nMeUsed);
}
template <typename V> void Fields(BLPbConstraint& r, V&& v) {
    v("nMeMaxNumberLen", r.nMeMaxNumberLen), v("nMeMaxNameLen", r.nMeMaxNameLen);
    v("nSimMaxNumberLen", r.nSimMaxNumberLen), v("nSimMaxNameLen", r.nSimMaxNameLen);
}
template <typename V> void Fields(BLSmsListItem& r, V&& v) {
    v("nPacketType", r.nPacketType), v("nRef", r.nRef), v("nStoreIn", r.nStoreIn), v("nTag", r.nTag);
    v("nType", r.nType), v("nClass", r.nClass), v("nCompleted", r.nCompleted);
    v("nStatusReportStatus", r.nStatusReportStatus), v("strAddress", r.strAddress);
    v("dateTime", r.dateTime), v("strContent", r.strContent);
}
template <typename V> void Fields(BLSmsReceive& r, V&& v) {
    v("nPacketType", r.nPacketType), v("SmsItem", r.SmsItem);
}
template <typename V> void Fields(BLSmsSendItem& r, V&& v) {
    v("strNumber", r.strNumber), v("strContent", r.strContent);
}
template <typename V> void Fields(BLSmsValidPeriod& r, V&& v) {
    v("bWeek", r.bWeek), v("bDay", r.bDay), v("bHour", r.bHour);
}
template <typename V> void Fields(BLSmsStorageState& r, V&& v) {
    v("nMeUsed", r.nMeUsed), v("nMeTotal", r.nMeTotal), v("nSimUsed", r.nSimUsed),
        v("nSimTotal", r.nSimTotal);
}
template <typename V> void Fields(BLSmsFilterConfig& r, V&& v) {
    v("onORoff", r.onORoff), v("target", r.target), v("filterList", r.filterList);
}
template <typename V> void Fields(BLUssdSendCmdInfo& r, V&& v) {
    v("nOpCode", r.nOpCode), v("strCmdString", r.strCmdString);
}
template <typename V> void Fields(BLUssdReceive& r, V&& v) {
    v("nReportType", r.nReportType), v("strContent", r.strContent);
}
template <typename V> void Fields(BLConnectDialinfo& r, V&& v) {
    v("strDialNumber", r.strDialNumber), v("strAccountName", r.strAccountName),
        v("strPassword", r.strPassword);
    v("strAPN", r.strAPN), v("strDNS1", r.strDNS1), v("strDNS2", r.strDNS2), v("authType", r.authType);
}
template <typename V> void Fields(BLConnectStatistics& r, V&& v) {
    v("nDurationSeconds", r.nDurationSeconds), v("nSentBytes", r.nSentBytes);
    v("nReceivedBytes", r.nReceivedBytes), v("nSentBPS", r.nSentBPS), v("nReceivedBPS", r.nReceivedBPS);
    v("nMaxSentBPS", r.nMaxSentBPS), v("nMaxReceivedPBS", r.nMaxReceivedPBS);
}
template <typename V> void Fields(BLSatMenuItem& r, V&& v) {
    v("nItemId", r.nItemId), v("strText", r.strText);
}
template <typename V> void Fields(BLSatCommand& r, V&& v) {
    v("nCommand", r.nCommand), v("nType", r.nType), v("nDefaultItem", r.nDefaultItem),
        v("nFormat", r.nFormat);
    v("nMinLength", r.nMinLength), v("nMaxLength", r.nMaxLength), v("strText", r.strText);
    v("strDefaultText", r.strDefaultText), v("lstItems", r.lstItems);
}
template <typename V> void Fields(BLSatResponse& r, V&& v) {
    v("nCommand", r.nCommand), v("nResult", r.nResult), v("nItemId", r.nItemId), v("strText", r.strText);
}
template <typename V> void Fields(BLCallItem& r, V&& v) {
    v("nIndex", r.nIndex), v("nDir", r.nDir), v("nState", r.nState), v("nMode", r.nMode), v("nMpty", r.nMpty);
    v("nType", r.nType), v("strNumber", r.strNumber);
}

template <typename R> const char* ClassName();
#define DIALTONE_RECORD_NAME(R)                                                                              \
    template <> const char* ClassName<R>() {                                                                 \
        return #R;                                                                                           \
    }
DIALTONE_RECORD_NAME(BLEquipmentInfo)
DIALTONE_RECORD_NAME(BLDiagInfo)
DIALTONE_RECORD_NAME(BLPINInfo)
DIALTONE_RECORD_NAME(BLPinCheckState)
DIALTONE_RECORD_NAME(BLPINEnableInfo)
DIALTONE_RECORD_NAME(BLPINChangeInfo)
DIALTONE_RECORD_NAME(BLPINVerifyPukInfo)
DIALTONE_RECORD_NAME(BLNetworkInfo)
DIALTONE_RECORD_NAME(BLNetworkListItem)
DIALTONE_RECORD_NAME(BLNetworkSet)
DIALTONE_RECORD_NAME(BLNetRegState)
DIALTONE_RECORD_NAME(BLPbItem)
DIALTONE_RECORD_NAME(BLPBNewItem)
DIALTONE_RECORD_NAME(BLPBDeleteItem)
DIALTONE_RECORD_NAME(BLPBStorageInfo)
DIALTONE_RECORD_NAME(BLPbConstraint)
DIALTONE_RECORD_NAME(BLSmsListItem)
DIALTONE_RECORD_NAME(BLSmsReceive)
DIALTONE_RECORD_NAME(BLSmsSendItem)
DIALTONE_RECORD_NAME(BLSmsValidPeriod)
DIALTONE_RECORD_NAME(BLSmsStorageState)
DIALTONE_RECORD_NAME(BLSmsFilterConfig)
DIALTONE_RECORD_NAME(BLUssdSendCmdInfo)
DIALTONE_RECORD_NAME(BLUssdReceive)
DIALTONE_RECORD_NAME(BLConnectDialinfo)
DIALTONE_RECORD_NAME(BLConnectStatistics)
DIALTONE_RECORD_NAME(BLSatMenuItem)
DIALTONE_RECORD_NAME(BLSatCommand)
DIALTONE_RECORD_NAME(BLSatResponse)
DIALTONE_RECORD_NAME(BLCallItem)
#undef DIALTONE_RECORD_NAME

json TextToJson(const QString& text) {
    return text.isNull() ? json(nullptr) : json(text.toStdString());
}

json DateToJson(const QDateTime& date) {
    return date.isValid() ? json(date.toString(Qt::ISODate).toStdString()) : json(nullptr);
}

template <typename R> json RecordToJson(R record);

json FieldToJson(qint32 value) {
    return value;
}
json FieldToJson(quint32 value) {
    return value;
}
json FieldToJson(quint64 value) {
    return value;
}
json FieldToJson(quint8 value) {
    return value;
}
json FieldToJson(bool value) {
    return value;
}
json FieldToJson(const QString& value) {
    return TextToJson(value);
}
json FieldToJson(const QDateTime& value) {
    return DateToJson(value);
}
json FieldToJson(const QPointer<QObject>& value) {
    return value ? json(value->metaObject()->className()) : json(nullptr);
}
json FieldToJson(const QStringList& value) {
    json list = json::array();
    for (const QString& text : value)
        list.push_back(TextToJson(text));
    return list;
}
json FieldToJson(const BLSmsListItem& value) {
    return RecordToJson(value);
}
json FieldToJson(const QList<BLSatMenuItem>& value) {
    json list = json::array();
    for (const BLSatMenuItem& item : value)
        list.push_back(RecordToJson(item));
    return list;
}

template <typename R> json RecordToJson(R record) {
    json object = json::object();
    object["class"] = ClassName<R>();
    Fields(record, [&object](const char* name, const auto& field) { object[name] = FieldToJson(field); });
    return object;
}

template <typename Integer> bool IntegerFromJson(const json& value, Integer& field) {
    if (!value.is_number_integer())
        return false;
    if (value.is_number_unsigned()) {
        const auto n = value.get<std::uint64_t>();
        if (n > static_cast<std::uint64_t>(std::numeric_limits<Integer>::max()))
            return false;
        field = static_cast<Integer>(n);
        return true;
    }
    const auto n = value.get<std::int64_t>();
    if (n < static_cast<std::int64_t>(std::numeric_limits<Integer>::min()) ||
        (n > 0 &&
         static_cast<std::uint64_t>(n) > static_cast<std::uint64_t>(std::numeric_limits<Integer>::max())))
        return false;
    field = static_cast<Integer>(n);
    return true;
}

template <typename R> bool RecordFromJson(const json& document, R& record, std::string& error);

bool FieldFromJson(const json& value, qint32& field, std::string&) {
    return IntegerFromJson(value, field);
}
bool FieldFromJson(const json& value, quint32& field, std::string&) {
    return IntegerFromJson(value, field);
}
bool FieldFromJson(const json& value, quint64& field, std::string&) {
    return IntegerFromJson(value, field);
}
bool FieldFromJson(const json& value, quint8& field, std::string&) {
    return IntegerFromJson(value, field);
}
bool FieldFromJson(const json& value, bool& field, std::string&) {
    if (!value.is_boolean())
        return false;
    field = value.get<bool>();
    return true;
}
bool FieldFromJson(const json& value, QString& field, std::string&) {
    if (value.is_null()) {
        field = QString();
        return true;
    }
    if (!value.is_string())
        return false;
    field = QString::fromStdString(value.get<std::string>());
    return true;
}
bool FieldFromJson(const json& value, QDateTime& field, std::string&) {
    if (value.is_null()) {
        field = QDateTime();
        return true;
    }
    if (!value.is_string())
        return false;
    field = QDateTime::fromString(QString::fromStdString(value.get<std::string>()), Qt::ISODate);
    return field.isValid();
}
bool FieldFromJson(const json& value, QPointer<QObject>& field, std::string&) {
    // A client object cannot be named from outside the process.
    field = nullptr;
    return value.is_null();
}
bool FieldFromJson(const json& value, QStringList& field, std::string&) {
    if (!value.is_array())
        return false;
    field.clear();
    for (const json& item : value) {
        if (!item.is_string())
            return false;
        field.append(QString::fromStdString(item.get<std::string>()));
    }
    return true;
}
bool FieldFromJson(const json& value, BLSmsListItem& field, std::string& error) {
    return RecordFromJson(value, field, error);
}
bool FieldFromJson(const json& value, QList<BLSatMenuItem>& field, std::string& error) {
    if (!value.is_array())
        return false;
    field.clear();
    for (const json& item : value) {
        BLSatMenuItem menuItem;
        if (!RecordFromJson(item, menuItem, error))
            return false;
        field.append(menuItem);
    }
    return true;
}

template <typename R> bool RecordFromJson(const json& document, R& record, std::string& error) {
    const std::string className = ClassName<R>();
    if (!document.is_object()) {
        error = className + " must be a JSON object";
        return false;
    }
    if (document.contains("class") && document["class"] != className) {
        error = "expected a " + className + " here";
        return false;
    }
    std::set<std::string> known{"class"};
    bool ok = true;
    Fields(record, [&](const char* name, auto& field) {
        known.insert(name);
        const auto found = document.find(name);
        if (!ok || found == document.end())
            return;
        if (!FieldFromJson(*found, field, error)) {
            if (error.empty())
                error = className + "." + name + ": " + found->dump() + " does not fit the field";
            ok = false;
        }
    });
    if (!ok)
        return false;
    for (const auto& item : document.items()) {
        if (!known.contains(item.key())) {
            error = className + " has no field \"" + item.key() + "\"";
            return false;
        }
    }
    return true;
}

struct RecordType {
    const char* name;
    QMetaType type;
    QMetaType listType;
    json (*toJson)(const QVariant&);
    json (*listToJson)(const QVariant&);
    bool (*fromJson)(const json&, QVariant&, std::string&);
    QVariant (*listFromVariants)(const QVariantList&);
};

template <typename R> RecordType Describe() {
    return RecordType{
        ClassName<R>(),
        QMetaType::fromType<R>(),
        QMetaType::fromType<QList<R>>(),
        [](const QVariant& value) { return RecordToJson(value.value<R>()); },
        [](const QVariant& value) {
            json list = json::array();
            for (const R& record : value.value<QList<R>>())
                list.push_back(RecordToJson(record));
            return list;
        },
        [](const json& document, QVariant& value, std::string& error) {
            R record;
            if (!RecordFromJson(document, record, error))
                return false;
            value = QVariant::fromValue(record);
            return true;
        },
        [](const QVariantList& items) {
            QList<R> list;
            for (const QVariant& item : items)
                list.append(item.value<R>());
            return QVariant::fromValue(list);
        },
    };
}

const std::vector<RecordType>& RecordTypes() {
    static const std::vector<RecordType> types = [] {
        registerRecordMetaTypes();
        return std::vector<RecordType>{
            Describe<BLEquipmentInfo>(),    Describe<BLDiagInfo>(),          Describe<BLPINInfo>(),
            Describe<BLPinCheckState>(),    Describe<BLPINEnableInfo>(),     Describe<BLPINChangeInfo>(),
            Describe<BLPINVerifyPukInfo>(), Describe<BLNetworkInfo>(),       Describe<BLNetworkListItem>(),
            Describe<BLNetworkSet>(),       Describe<BLNetRegState>(),       Describe<BLPbItem>(),
            Describe<BLPBNewItem>(),        Describe<BLPBDeleteItem>(),      Describe<BLPBStorageInfo>(),
            Describe<BLPbConstraint>(),     Describe<BLSmsListItem>(),       Describe<BLSmsReceive>(),
            Describe<BLSmsSendItem>(),      Describe<BLSmsValidPeriod>(),    Describe<BLSmsStorageState>(),
            Describe<BLSmsFilterConfig>(),  Describe<BLUssdSendCmdInfo>(),   Describe<BLUssdReceive>(),
            Describe<BLConnectDialinfo>(),  Describe<BLConnectStatistics>(), Describe<BLSatMenuItem>(),
            Describe<BLSatCommand>(),       Describe<BLSatResponse>(),       Describe<BLCallItem>(),
        };
    }();
    return types;
}

} // namespace

json MapToJson(const QVariantMap& map) {
    json object = json::object();
    for (auto it = map.constBegin(); it != map.constEnd(); ++it)
        object[it.key().toStdString()] = VariantToJson(it.value());
    return object;
}

json VariantToJson(const QVariant& value) {
    if (!value.isValid())
        return nullptr;
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::SChar:
        return value.toLongLong();
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
        return value.toULongLong();
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    case QMetaType::QString:
        return TextToJson(value.toString());
    case QMetaType::QDateTime:
        return DateToJson(value.toDateTime());
    case QMetaType::QByteArray:
        return value.toByteArray().toHex().toStdString();
    case QMetaType::QStringList:
        return FieldToJson(value.toStringList());
    case QMetaType::QVariantList: {
        json list = json::array();
        for (const QVariant& item : value.toList())
            list.push_back(VariantToJson(item));
        return list;
    }
    case QMetaType::QVariantMap:
        return MapToJson(value.toMap());
    default:
        break;
    }
    for (const RecordType& type : RecordTypes()) {
        if (value.metaType() == type.type)
            return type.toJson(value);
        if (value.metaType() == type.listType)
            return type.listToJson(value);
    }
    if (value.canConvert<QString>())
        return value.toString().toStdString();
    return std::string("<") + value.typeName() + ">";
}

bool JsonToVariant(const json& document, QVariant& value, std::string& error) {
    switch (document.type()) {
    case json::value_t::null:
        value = QVariant();
        return true;
    case json::value_t::boolean:
        value = document.get<bool>();
        return true;
    case json::value_t::number_integer:
    case json::value_t::number_unsigned: {
        qint32 small = 0;
        if (IntegerFromJson(document, small)) {
            value = small;
        } else if (document.is_number_unsigned()) {
            value = static_cast<qulonglong>(document.get<std::uint64_t>());
        } else {
            value = static_cast<qlonglong>(document.get<std::int64_t>());
        }
        return true;
    }
    case json::value_t::number_float:
        value = document.get<double>();
        return true;
    case json::value_t::string:
        value = QString::fromStdString(document.get<std::string>());
        return true;
    case json::value_t::array: {
        QVariantList list;
        for (const json& item : document) {
            QVariant element;
            if (!JsonToVariant(item, element, error))
                return false;
            list.append(element);
        }
        // A list of one kind of record is that record's list, as the worker hands them out.
        for (const RecordType& type : RecordTypes()) {
            if (!list.isEmpty() && std::all_of(list.cbegin(), list.cend(), [&type](const QVariant& item) {
                    return item.metaType() == type.type;
                })) {
                value = type.listFromVariants(list);
                return true;
            }
        }
        value = list;
        return true;
    }
    case json::value_t::object: {
        const auto className = document.find("class");
        if (className == document.end()) {
            QVariantMap map;
            for (const auto& item : document.items()) {
                QVariant element;
                if (!JsonToVariant(item.value(), element, error))
                    return false;
                map.insert(QString::fromStdString(item.key()), element);
            }
            value = map;
            return true;
        }
        if (!className->is_string()) {
            error = "\"class\" must name a record";
            return false;
        }
        for (const RecordType& type : RecordTypes()) {
            if (*className == type.name)
                return type.fromJson(document, value, error);
        }
        error = "unknown record class \"" + className->get<std::string>() + "\"";
        return false;
    }
    default:
        error = "unsupported JSON value";
        return false;
    }
}

std::vector<std::string> RecordClassNames() {
    std::vector<std::string> names;
    for (const RecordType& type : RecordTypes())
        names.emplace_back(type.name);
    return names;
}
