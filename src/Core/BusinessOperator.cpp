#include "BusinessOperator.h"

#include "AtParameter.h"
#include "AtSublayerInterface.h"
#include "BLRecords.h"
#include "CNSLog.h"
#include "ComOperation.h"
#include "ConvertUtilty.h"
#include "ModemDialect.h"
#include "NetworkOperator.h"
#include "PinCodeFormat.h"
#include "SMSExt.h"
#include "WorkNotification.h"

#include <QMetaObject>
#include <QRegularExpression>
#include <QTimeZone>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace {

// A text of a fixed-size sublayer field: up to its terminator, never past the field, at most cap bytes.
template <std::size_t N> QString fieldText(const char (&field)[N], std::size_t cap) {
    return QString::fromUtf8(field, static_cast<qsizetype>(strnlen(field, std::min(N, cap))));
}

// Copies at most cap bytes of text's UTF-8 form into a field and terminates it.
template <std::size_t N> void copyCapped(char (&field)[N], const QString& text, std::size_t cap) {
    static_assert(N > 0);
    const QByteArray bytes = text.toUtf8();
    const std::size_t length = std::min({static_cast<std::size_t>(bytes.size()), cap, N - 1});
    std::memcpy(field, bytes.constData(), length);
    field[length] = '\0';
}

bool isMissing(const QVariant& value) {
    return !value.isValid() || value.isNull();
}

// The raw report line of a report request: the bytes as the channel queued them.
QByteArray reportLine(const QVariant& value) {
    if (value.typeId() == QMetaType::QByteArray) {
        return value.toByteArray();
    }
    return value.toString().toUtf8();
}

// A sublayer message as the modules see it; nPacketType is left to the caller.
BLSmsListItem toListItem(const TSmsListItem& item) {
    BLSmsListItem result;
    result.nRef = item.nRef;
    result.nStoreIn = item.nStoreIn;
    result.nTag = item.nTag;
    result.nType = item.nType;
    result.nClass = item.nClass;
    result.nCompleted = item.nCompleted;
    result.nStatusReportStatus = item.nStatusReportStatus;
    result.strAddress = fieldText(item.szNumber, 21);
    result.dateTime = BusinessOperator::convertDateTimeType2NSDate(item.dateTime);
    result.strContent = ConvertUtilty::fromWString(item.wstrContent);
    return result;
}

// Counters of the dial-up layer are 32-bit; the record's are widened with sign extension.
quint64 widened(uint32_t counter) {
    return static_cast<quint64>(static_cast<qint64>(static_cast<qint32>(counter)));
}

constexpr int kParameterNull = WORKER_ERR_PARAMETER_NULL;

// Codes of another form never reach the SIM, whatever record or value the request came with: a wrong
// record reads as empty codes, and each try would cost an attempt.
bool codesWellFormed(std::initializer_list<std::pair<const QString&, PinCodeKind>> codes) {
    return std::all_of(codes.begin(), codes.end(), [](const auto& code) {
        return IsPinCodeWellFormed(code.first.toStdString(), code.second);
    });
}

} // namespace

#define PARAMETER_NULL()                                                                                     \
    do {                                                                                                     \
        CNSLOG(2, "parameter is null");                                                                      \
        return kParameterNull;                                                                               \
    } while (0)

BusinessOperator::BusinessOperator(ComOperation* com, TInterfaceAtSublayer* atSubLayer,
                                   NetworkOperator* networkOperator)
    : _networkOperator(networkOperator), _pAtSubLayer(atSubLayer), _com(com) {}

// ---- System and equipment ----

int BusinessOperator::InitComm() {
    return _pAtSubLayer->SystemInitComm();
}

int BusinessOperator::ModemInit(QVariantMap& response) {
    const int result = _networkOperator->initModem();
    WorkNotification::SetValueObject(response, _networkOperator->getModemDeviceName());
    switch (result) {
    case 2:
        return WORKER_ERR_SERVICE_NOT_FOUND;
    case 8:
        return WORKER_ERR_NO_DEV_NAME;
    case 1:
        return WORKER_ERR_NO_MODE_DEV;
    default:
        return WORKER_OK;
    }
}

int BusinessOperator::checkEquipmentInfo(BLEquipmentInfo& info) {
    TEquipmentInfo equipment;
    const int result = _pAtSubLayer->SystemGetEquipmentInfo(equipment);
    if (result != 0) {
        return result;
    }
    const uint32_t mask = equipment.nMask;
    if (mask & EQUIPMENT_MANUFACTURER) {
        info.strManufacturer = fieldText(equipment.szManufacturer, 2048);
    }
    if (mask & EQUIPMENT_MODEL) {
        info.strModel = fieldText(equipment.szModel, 2048);
    }
    if (mask & EQUIPMENT_REVISION) {
        info.strRevision = fieldText(equipment.szRevision, 2048);
    }
    if (mask & EQUIPMENT_SERIAL_NUMBER) {
        info.strSerialNumber = fieldText(equipment.szSerialNumber, 2048);
    }
    if (mask & EQUIPMENT_IMSI) {
        info.strImsi = fieldText(equipment.szImsi, 15);
    }
    if (mask & EQUIPMENT_MSISDN) {
        info.strMsisdn = fieldText(equipment.msisdn.szNumber, 21);
    }
    if (mask & EQUIPMENT_HARDWARE_VERSION) {
        info.strHardwareVersion = fieldText(equipment.szHardwareVersion, 21);
    }
    return 0;
}

int BusinessOperator::GetEquipmentInfo(QVariantMap& response) {
    BLEquipmentInfo info;
    const int result = checkEquipmentInfo(info);
    if (result == 0) {
        WorkNotification::SetValueObject(response, QVariant::fromValue(info));
    }
    return result;
}

int BusinessOperator::checkNetworkInfo(BLNetworkInfo& info) {
    TNetworkInfo network;
    const int result = _pAtSubLayer->NetworkGetInfo(network);
    if (result != 0) {
        return result;
    }
    info.nMode = network.nMode;
    info.nFormat = network.nFormat;
    info.strOperator = fieldText(network.szOperator, sizeof(network.szOperator));
    info.nAcT = network.nAcT;
    info.nDisplayMask = network.spInfo.nDisplay;
    if (network.spInfo.nPresent) {
        info.strSpName = ConvertUtilty::UnistrtoNstring(network.spInfo.wszSpName, kSpNameSize);
    }
    info.nRssi = network.nRssiLevel;
    info.nRoamState = network.nServiceState;
    info.nBearer = network.nBearer;
    info.nGprsState = network.nPsRegState;
    return 0;
}

int BusinessOperator::GetDiagInfo(QVariantMap& response) {
    BLDiagInfo diag;
    BLEquipmentInfo equipment;
    if (checkEquipmentInfo(equipment) == 0) {
        diag.strManufacturer = equipment.strManufacturer;
        diag.strModel = equipment.strModel;
        diag.strRevision = equipment.strRevision;
        diag.strSerialNumber = equipment.strSerialNumber;
        diag.strImsi = equipment.strImsi;
        diag.strMsisdn = equipment.strMsisdn;
        diag.strHardwareVersion = equipment.strHardwareVersion;
    }
    BLNetworkInfo network;
    if (checkNetworkInfo(network) == 0) {
        diag.nMode = network.nMode;
        diag.nFormat = network.nFormat;
        diag.strOperator = network.strOperator;
        diag.nAcT = network.nAcT;
        diag.strSpName = network.strSpName;
        diag.nRssi = network.nRssi;
        diag.nRoamState = network.nRoamState;
        diag.nBearer = network.nBearer;
    }
    int state = 0;
    diag.nPinState = _pAtSubLayer->PINCheckState(state) == 0 ? state : 19;
    state = 0;
    diag.nGprsRegState = _pAtSubLayer->NetworkGetRegState(1, state) == 0 ? state : 5;
    state = 0;
    diag.nNormalRegState = _pAtSubLayer->NetworkGetRegState(0, state) == 0 ? state : 5;
    state = 0;
    if (_pAtSubLayer->NetworkGetPSAttachState(state) == 0) {
        diag.nPsAttachState = state;
    } else {
        // The failed attach query clears the circuit-switched state; older front ends rely on it.
        diag.nNormalRegState = 0;
    }
    WorkNotification::SetValueObject(response, QVariant::fromValue(diag));
    return 0;
}

// ---- PIN ----

int BusinessOperator::PINCheckState(QVariantMap& response) {
    int state = 0;
    int result = _pAtSubLayer->PINCheckState(state);
    if (result != 0) {
        return result;
    }
    TPinInfo counters;
    if (state == 1) {
        // "READY": a SIM whose PUK attempts are used up is blocked for good (17).
        result = _pAtSubLayer->PINGetInfo(2, counters);
        if (result != 0) {
            return result;
        }
        if (counters.nPukCnt == 0) {
            state = 17;
        }
    } else if (state != 0 && state != 17) {
        result = _pAtSubLayer->PINGetInfo(state, counters);
        if (result != 0) {
            return result;
        }
    }
    WorkNotification::SetValueObject(
        response, QVariant::fromValue(BLPinCheckState{state, counters.nPinCnt, counters.nPukCnt}));
    return 0;
}

int BusinessOperator::PINEnable(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto info = value.value<BLPINEnableInfo>();
    if (!codesWellFormed({{info.strPinCode, PinCodeKind::Pin}})) {
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    return _pAtSubLayer->PINEnable(info.blPinEnable ? 1 : 0, info.strPinCode.toUtf8().constData());
}

int BusinessOperator::PINGetInfo(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    TPinInfo counters;
    const int result = _pAtSubLayer->PINGetInfo(value.toInt(), counters);
    if (result == 0) {
        WorkNotification::SetValueObject(response,
                                         QVariant::fromValue(BLPINInfo{counters.nPinCnt, counters.nPukCnt}));
    }
    return result;
}

int BusinessOperator::PINChange(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto info = value.value<BLPINChangeInfo>();
    if (!codesWellFormed({{info.strOldPin, PinCodeKind::Pin}, {info.strNewPin, PinCodeKind::Pin}})) {
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    const int result =
        _pAtSubLayer->PINChange(info.strOldPin.toUtf8().constData(), info.strNewPin.toUtf8().constData());
    int state = 1;
    _pAtSubLayer->PINCheckState(state);
    WorkNotification::SetValueObject(response, state);
    return result;
}

int BusinessOperator::PINVerify(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const QString pin = value.toString();
    if (!codesWellFormed({{pin, PinCodeKind::Pin}})) {
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    return _pAtSubLayer->PINVerify(pin.toUtf8().constData());
}

int BusinessOperator::PINVerifyPuk(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto info = value.value<BLPINVerifyPukInfo>();
    if (!codesWellFormed({{info.strPUK, PinCodeKind::Puk}, {info.strNewPin, PinCodeKind::Pin}})) {
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    return _pAtSubLayer->PINVerifyPuk(info.strPUK.toUtf8().constData(), info.strNewPin.toUtf8().constData());
}

int BusinessOperator::PINGetState(QVariantMap& response) {
    int enabled = 0;
    const int result = _pAtSubLayer->PINGetState(enabled);
    if (result == 0) {
        WorkNotification::SetValueObject(response,
                                         enabled != 0 ? QStringLiteral("TRUE") : QStringLiteral("FALSE"));
    }
    return result;
}

// ---- Network ----

int BusinessOperator::NetworkGetInfo(QVariantMap& response) {
    BLNetworkInfo info;
    const int result = checkNetworkInfo(info);
    if (result == 0) {
        WorkNotification::SetValueObject(response, QVariant::fromValue(info));
    }
    return result;
}

int BusinessOperator::NetworkGetSignalDbm(QVariantMap& response) {
    int value = 0;
    const int result = _pAtSubLayer->NetworkGetSignalDBValue(value);
    if (result == 0) {
        // The sublayer gives the figure without its sign; a modem's nonsense stays within the plausible.
        WorkNotification::SetValueObject(response, static_cast<int>(std::clamp(-static_cast<long long>(value), -200LL, 0LL)));
    }
    return result;
}

int BusinessOperator::NetworkGetSignal(QVariantMap& response) {
    TSignalReading reading;
    const int result = _pAtSubLayer->NetworkGetSignalReading(reading);
    if (result == 0) {
        const bool registered = reading.registration == 1 || reading.registration == 5;
        WorkNotification::SetValueObject(
            response, QVariantMap{{QStringLiteral("RSSI_DBM"), CsqToDbm(reading.csq)},
                                  {QStringLiteral("RSCP_DBM"), RscpToDbm(reading.rscp)},
                                  {QStringLiteral("ECIO_TENTHS"), EcnoToEcIoTenths(reading.ecno)},
                                  {QStringLiteral("BEARER"), reading.bearer},
                                  {QStringLiteral("LAC"), registered ? reading.lac : -1},
                                  {QStringLiteral("CI"), registered ? reading.ci : -1}});
    }
    return result;
}

int BusinessOperator::NetworkGetList(QVariantMap& response) {
    std::list<TNetworkListItem> items;
    const int result = _pAtSubLayer->NetworkGetList(items);
    if (result != 0) {
        return result;
    }
    // In the modem's order, repeats included: the network screen removes them itself.
    QVariantList list;
    for (const TNetworkListItem& item : items) {
        BLNetworkListItem entry;
        entry.nState = item.nState;
        entry.nAcT = item.nAcT;
        entry.strLongAlpha = fieldText(item.szLongName, 16);
        entry.strShortAlpha = fieldText(item.szShortName, 8);
        entry.strNumericAlpha = fieldText(item.szNumericName, 6);
        list.append(QVariant::fromValue(entry));
    }
    WorkNotification::SetValueObject(response, list);
    return 0;
}

int BusinessOperator::NetworkSet(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto set = value.value<BLNetworkSet>();
    const QByteArray oper = set.strOperator.toUtf8();
    const char* text = (set.nMask & BLNetworkSet::kOperatorGiven) ? oper.constData() : nullptr;
    return _pAtSubLayer->NetworkSet(set.nMask, set.nMode, set.nFormat, text, set.nAcT);
}

int BusinessOperator::NetworkInit() {
    return _pAtSubLayer->NetworkInit();
}

int BusinessOperator::NetworkGetRegState(QVariantMap& response) {
    int state = 0;
    const int result = _pAtSubLayer->NetworkGetRegState(0, state);
    if (result == 0) {
        BLNetRegState reg;
        reg.nState = state;
        WorkNotification::SetValueObject(response, QVariant::fromValue(reg));
    }
    return result;
}

int BusinessOperator::NetworkSetBand(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    return _pAtSubLayer->NetworkSetBand(value.toInt());
}

int BusinessOperator::NetworkGetBand(QVariantMap& response) {
    int band = 0;
    const int result = _pAtSubLayer->NetworkGetBand(band);
    if (result == 0) {
        WorkNotification::SetValueObject(response, band);
    }
    return result;
}

int BusinessOperator::NetworkSetMode(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const int result = _pAtSubLayer->NetworkSetMode(value.toInt());
    if (result == WORKER_ERR_NOT_SUPPORTED) {
        return result;
    }
    if (result != 0) {
        CNSLOG(2, "AT Layer Error Err = %d", result);
        return WORKER_ERR_SET_NETWORK_MODE;
    }
    return 0;
}

int BusinessOperator::NetworkGetMode(QVariantMap& response) {
    int mode = 0;
    const int result = _pAtSubLayer->NetworkGetMode(mode);
    if (result == 0) {
        WorkNotification::SetValueObject(response, mode);
    }
    return result;
}

// ---- Phonebook ----

int BusinessOperator::PBGetConstraint(QVariantMap& response) {
    TPbConstraint constraint;
    const int result = _pAtSubLayer->PBGetConstraint(constraint);
    if (result == 0) {
        WorkNotification::SetValueObject(
            response,
            QVariant::fromValue(BLPbConstraint{constraint.nMeMaxNumberLen, constraint.nMeMaxNameLen,
                                               constraint.nSimMaxNumberLen, constraint.nSimMaxNameLen}));
    }
    return result;
}

int BusinessOperator::PBInitList(QVariantMap& response) {
    std::list<TPbItem> items;
    const int result = _pAtSubLayer->PBInitList(items);
    if (result != 0) {
        return result;
    }
    QVariantList list;
    for (const TPbItem& item : items) {
        BLPbItem entry;
        entry.nStore = item.nStore;
        entry.nIndex = item.nIndex;
        entry.strNumber = QString::fromUtf8(item.strNumber.data(),
                                            static_cast<qsizetype>(strnlen(item.strNumber.c_str(), 21)));
        entry.strName = ConvertUtilty::fromWString(item.wstrName);
        list.append(QVariant::fromValue(entry));
    }
    if (!list.isEmpty()) {
        WorkNotification::SetValueObject(response, list);
    }
    return 0;
}

int BusinessOperator::PBDeleteItem(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto item = value.value<BLPBDeleteItem>();
    return _pAtSubLayer->PBDeleteItem(item.nStoreIn, item.nIndex);
}

int BusinessOperator::PBUpdateItem(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto item = value.value<BLPbItem>();
    TPbItem entry;
    entry.nStore = item.nStore;
    entry.nIndex = item.nIndex;
    entry.strNumber = item.strNumber.toUtf8().toStdString();
    entry.wstrName = ConvertUtilty::toWString(item.strName);
    return _pAtSubLayer->PBUpdateItem(entry);
}

int BusinessOperator::PBAddItem(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        CNSLOG(0, "ERROR: parameter is null");
        return kParameterNull;
    }
    const auto item = value.value<BLPBNewItem>();
    TPbNewItem entry;
    entry.nStore = item.nStoreIn;
    entry.strNumber = item.strNumber.toUtf8().toStdString();
    entry.wstrName = ConvertUtilty::toWString(item.strName);
    int index = 0;
    const int result = _pAtSubLayer->PBAddItem(entry, index);
    if (result == 0) {
        WorkNotification::SetValueObject(response, index);
    }
    return result;
}

int BusinessOperator::PBGetStorageInfo(QVariantMap& response) {
    TPbStorageInfo info;
    const int result = _pAtSubLayer->PBGetStorageInfo(info);
    if (result == 0) {
        WorkNotification::SetValueObject(
            response,
            QVariant::fromValue(BLPBStorageInfo{info.nSimTotal, info.nSimUsed, info.nMeTotal, info.nMeUsed}));
    }
    return result;
}

// ---- SMS ----

int BusinessOperator::SMSInit() {
    const int result = _pAtSubLayer->SMSInit();
    if (result != 0) {
        return result;
    }
    return _pAtSubLayer->SMSSetLatinSupport(1);
}

int BusinessOperator::SMSGetServiceCentre(QVariantMap& response) {
    TSmsAddress address;
    const int result = _pAtSubLayer->SMSGetServiceCentre(address);
    if (result == 0) {
        WorkNotification::SetValueObject(response, fieldText(address.szNumber, 21));
    }
    return result;
}

int BusinessOperator::SMSSetServiceCentre(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        CNSLOG(0, "ERROR: parameter is null");
        return kParameterNull;
    }
    TSmsAddress address;
    copyCapped(address.szNumber, value.toString(), 21);
    return _pAtSubLayer->SMSSetServiceCentre(address);
}

int BusinessOperator::SMSGetList(QVariantMap& response) {
    std::list<TSmsListItem> items;
    const int result = _pAtSubLayer->SMSGetList(items);
    if (result != 0) {
        return result;
    }
    QVariantList list;
    for (const TSmsListItem& item : items) {
        list.append(QVariant::fromValue(toListItem(item)));
    }
    if (!list.isEmpty()) {
        WorkNotification::SetValueObject(response, list);
    }
    return 0;
}

int BusinessOperator::SMSDelete(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    return _pAtSubLayer->SMSDelete(value.toInt());
}

int BusinessOperator::SMSSend(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto item = value.value<BLSmsSendItem>();
    TSmsSendItem send;
    copyCapped(send.szNumber, item.strNumber, 21);
    send.wstrContent = ConvertUtilty::toWString(item.strContent);
    return _pAtSubLayer->SMSSend(send);
}

int BusinessOperator::SMSSetPreferredStorage(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    return _pAtSubLayer->SMSSetPreferredStorage(value.toInt());
}

int BusinessOperator::SMSGetPreferredStorage(QVariantMap& response) {
    // The settings screen expects this request to reset the storage to the default and read back 0.
    const int result = _pAtSubLayer->SMSSetPreferredStorage(0);
    if (result == 0) {
        WorkNotification::SetValueObject(response, 0);
    }
    return result;
}

int BusinessOperator::SMSSetValidPeriod(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto period = value.value<BLSmsValidPeriod>();
    TSmsValidPeriod record;
    record.bEnable = 1;
    record.bWeek = period.bWeek;
    record.bDay = period.bDay;
    record.bHour = period.bHour;
    return _pAtSubLayer->SMSSetValidPeriod(record);
}

int BusinessOperator::SMSGetStorageState(QVariantMap& response) {
    TSmsStorageState state;
    const int result = _pAtSubLayer->SMSGetStorageState(state);
    if (result == 0) {
        WorkNotification::SetValueObject(
            response, QVariant::fromValue(
                          BLSmsStorageState{state.nMeUsed, state.nMeTotal, state.nSimUsed, state.nSimTotal}));
    }
    return result;
}

int BusinessOperator::SMSSetStatusReportFlag(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    const bool on = !isMissing(value) && value.toString() == QLatin1String("TRUE");
    return _pAtSubLayer->SMSEnableStatusReport(on ? 1 : 0);
}

int BusinessOperator::SMSUsePCInbox(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    QString imsi = isMissing(value) ? QString() : value.toString();
    if (imsi.isEmpty()) {
        BLEquipmentInfo info;
        if (const int result = checkEquipmentInfo(info); result != 0) {
            return result;
        }
        imsi = info.strImsi;
    }
    // The IMSI names the SIM's records in the inbox file: 15 digits at most (3GPP TS 23.003).
    static const QRegularExpression digits(QStringLiteral("^\\d{1,15}$"));
    if (!digits.match(imsi).hasMatch()) {
        CNSLOG(0, "ERROR: no usable IMSI for the computer-side inbox");
        return kParameterNull;
    }
    const QByteArray text = imsi.toLatin1();
    _pAtSubLayer->SMSSetIMSI(text.constData());
    return SMSExt::registerWith(*_pAtSubLayer);
}

int BusinessOperator::SMSConfigFilterSMS(const QVariantMap& request) {
    if (!_filterSMSClients) {
        _filterSMSClients.emplace();
    }
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        return 0;
    }
    const auto config = value.value<BLSmsFilterConfig>();
    if (config.target.isNull()) {
        return 0;
    }
    const QString className = QString::fromLatin1(config.target->metaObject()->className());
    if (config.onORoff) {
        CNSLOG(2, "className = %s", qPrintable(className));
        _filterSMSClients->insert(className, config.filterList);
    } else {
        _filterSMSClients->remove(className);
    }
    return 0;
}

QString BusinessOperator::isFilterListNumber(const QString& number) const {
    if (!_filterSMSClients || _filterSMSClients->isEmpty()) {
        return QString();
    }
    for (auto client = _filterSMSClients->cbegin(); client != _filterSMSClients->cend(); ++client) {
        CNSLOG(2, "_numberList = %s", qPrintable(client.value().join(QStringLiteral(", "))));
        for (const QString& listed : client.value()) {
            // Short numbers (service numbers) must match exactly; longer ones may carry a country code
            // in front of the listed number.
            const bool match =
                number.size() < 8 ? number == listed : !listed.isEmpty() && number.endsWith(listed);
            if (match) {
                return client.key();
            }
        }
    }
    return QString();
}

QDateTime BusinessOperator::convertDateTimeType2NSDate(const TSmsDateTime& dateTime) {
    // Read as local time with today's offset, whatever zone the service centre stamped.
    const int offset = QDateTime::currentDateTime().offsetFromUtc();
    return QDateTime(QDate(dateTime.nYear, dateTime.nMonth, dateTime.nDay),
                     QTime(dateTime.nHour, dateTime.nMinute, dateTime.nSecond), QTimeZone(offset));
}

// ---- USSD ----

int BusinessOperator::USSDCheckState(QVariantMap& response) {
    int state = 0;
    const int result = _pAtSubLayer->CheckUssdState(state);
    if (result == 0) {
        WorkNotification::SetValueObject(response, state);
    }
    return result;
}

int BusinessOperator::USSDSetState(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        return 0;
    }
    int state = value.toInt();
    return _pAtSubLayer->SetUssdState(state);
}

int BusinessOperator::USSDSendCmd(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto command = value.value<BLUssdSendCmdInfo>();
    switch (command.nOpCode) {
    case BLUssdSendCmdInfo::kSend: {
        const std::wstring text = ConvertUtilty::toWString(command.strCmdString);
        return _pAtSubLayer->SendUssdCmd(text.c_str());
    }
    case BLUssdSendCmdInfo::kCancel:
        return _pAtSubLayer->SendUssdCancelCmd();
    default:
        return 0;
    }
}

// ---- SIM toolkit ----

int BusinessOperator::SatInit(QVariantMap& response) {
    std::string text;
    const int result = _pAtSubLayer->STKInit(text);
    if (result == 0) {
        WorkNotification::SetValueObject(response, QString::fromStdString(text));
    }
    return result;
}

int BusinessOperator::SatGetCurrentProactiveCommand() {
    int type = 0;
    std::string text;
    return _pAtSubLayer->STKGetCurrentProactiveCommand(type, text);
}

// ---- Unsolicited reports ----

int BusinessOperator::OnReceiveSATCMD(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const QByteArray line = reportLine(value);
    std::string text;
    const int result = _pAtSubLayer->STKHandleReport(line.constData(), text);
    if (result == 0) {
        WorkNotification::SetValueObject(response, QString::fromStdString(text));
    }
    return result;
}

int BusinessOperator::OnReceiveUSSD(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const QByteArray line = reportLine(value);
    TUssdItem item;
    const int result = _pAtSubLayer->UssdOnReceive(line.constData(), item);
    if (result == 0) {
        WorkNotification::SetValueObject(
            response,
            QVariant::fromValue(BLUssdReceive{item.nType, ConvertUtilty::fromWString(item.wstrContent)}));
    }
    return result;
}

int BusinessOperator::OnReceiveSMS(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const QByteArray line = reportLine(value);
    TSmsListItem item;
    int packetType = 0;
    const int result = _pAtSubLayer->SMSOnReceive(line.constData(), item, packetType);
    if (result != 0) {
        return result;
    }
    BLSmsListItem message = toListItem(item);
    message.nPacketType = packetType;
    WorkNotification::SetValueObject(response, QVariant::fromValue(message));

    const QString client = isFilterListNumber(message.strAddress);
    if (client.isNull()) {
        return 0;
    }
    WorkNotification::SetRequester(response, client);
    _pAtSubLayer->SMSDelete(item.nRef);
    return WORKER_ERR_SMS_FILTERED;
}

// ---- Data connection ----

int BusinessOperator::Dialup(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const auto dialInfo = value.value<BLConnectDialinfo>();
    // The user name and the number go into pppd's options and chat script, one per line.
    for (const QString& text : {dialInfo.strAccountName, dialInfo.strDialNumber}) {
        if (CheckAtParameter(text.toStdString(), kApnMaxLength) != AtParameterFault::None) {
            return WORKER_ERR_INVALID_ARGUMENT;
        }
    }
    const int result = _pAtSubLayer->SystemSetPdpContext(dialInfo.strAPN.toUtf8().constData(), nullptr);
    if (result == kAtParameterRefused) {
        // A profile stored before its APN was checked: dialling would use whatever context the modem has.
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    if (_networkOperator->dialByDialInfo(dialInfo) != 0) {
        return WORKER_ERR_GENERAL;
    }
    return result;
}

int BusinessOperator::Disconnect() {
    _networkOperator->disconnectNetwork();
    return 0;
}

int BusinessOperator::GetStatistics(QVariantMap& response) {
    ConnectStatisticsInfo info;
    if (_networkOperator->getConnectStaticstics(&info) != 0) {
        return WORKER_ERR_GENERAL;
    }
    BLConnectStatistics statistics;
    statistics.nDurationSeconds = info.nDurationSeconds;
    statistics.nSentBytes = widened(info.nSentBytes);
    statistics.nReceivedBytes = widened(info.nReceivedBytes);
    statistics.nSentBPS = info.nSentBPS;
    statistics.nReceivedBPS = info.nReceivedBPS;
    statistics.nMaxSentBPS = info.nMaxSentBPS;
    statistics.nMaxReceivedPBS = info.nMaxReceivedBPS;
    WorkNotification::SetValueObject(response, QVariant::fromValue(statistics));
    return 0;
}

int BusinessOperator::GetPPPStatus(QVariantMap& response) {
    const int status = _networkOperator->pppStatus();
    if (status == -1) {
        return WORKER_ERR_GENERAL;
    }
    WorkNotification::SetValueObject(response, status);
    return 0;
}

int BusinessOperator::GetConnectStatus(QVariantMap& response) {
    WorkNotification::SetValueObject(response, _networkOperator->connectStatus());
    return 0;
}

// ---- SIM toolkit menus ----

namespace {

// An answer to the card: "AT+STGR=" and its fields, printable characters only, a semicolon only inside a
// quoted text, so that the line holds this one command.
bool isSatAnswerCommand(const QString& command) {
    static const QString head = QStringLiteral("AT+STGR=");
    if (!command.startsWith(head) || command.size() > BusinessOperator::kSatAnswerMaxLength) {
        return false;
    }
    bool quoted = false;
    for (const QChar c : command) {
        const char16_t code = c.unicode();
        if (code < 0x20 || code > 0x7E || (code == u';' && !quoted)) {
            return false;
        }
        if (code == u'"') {
            quoted = !quoted;
        }
    }
    return !quoted;
}

// Takes every toolkit indication ("+STIN: 11") out of the channel's queue; the last one's line, or an
// empty text. The worker's report handling leaves them there for the toolkit.
std::string takeSatIndications(ComOperation& com) {
    UnsolicitedReportList* reports = nullptr;
    com.getUnsoliciteReportList(reports);
    std::string line;
    for (auto it = reports->begin(); it != reports->end();) {
        if ((*it)->nType == UNSOLICITED_REPORT_STIN) {
            line = (*it)->strText;
            delete *it;
            it = reports->erase(it);
        } else {
            ++it;
        }
    }
    return line;
}

} // namespace

int BusinessOperator::satCharSet(int& teSet) {
    // AT+CSCS? -> +CSCS: "UCS2". The quoted toolkit texts are in this set; IRA when the answer names none.
    std::string text;
    const int result = _pAtSubLayer->STKSendCommand("AT+CSCS?\r", text);
    if (result != 0) {
        return result;
    }
    teSet = USSD_TE_IRA;
    for (const auto& [name, set] : {std::pair{"UCS2", USSD_TE_UCS2}, std::pair{"IRA", USSD_TE_IRA},
                                    std::pair{"GSM", USSD_TE_GSM}, std::pair{"HEX", USSD_TE_HEX}}) {
        if (text.find(name) != std::string::npos) {
            teSet = set;
            break;
        }
    }
    return 0;
}

int BusinessOperator::SatGetMenu(QVariantMap& response) {
    std::string text;
    int result = _pAtSubLayer->STKInit(text);
    int teSet = USSD_TE_IRA;
    if (result != 0 || (result = satCharSet(teSet)) != 0) {
        return result;
    }
    WorkNotification::SetValueObject(
        response, QVariantMap{{SatKey::kListing, QString::fromStdString(text)}, {SatKey::kCharSet, teSet}});
    return 0;
}

int BusinessOperator::satFetchAnnounced(int teSet, QVariantMap& response) {
    const std::string indication = takeSatIndications(*_com);
    std::string fetched;
    if (!indication.empty()) {
        if (const int result = _pAtSubLayer->STKHandleReport(indication.c_str(), fetched); result != 0) {
            return result;
        }
    }
    WorkNotification::SetValueObject(response,
                                     QVariantMap{{SatKey::kSent, true},
                                                 {SatKey::kListing, QString::fromStdString(fetched)},
                                                 {SatKey::kCharSet, teSet}});
    return 0;
}

int BusinessOperator::SatSelectItem(const QVariantMap& request, QVariantMap& response) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    if (StandardDialect()) {
        return WORKER_ERR_NOT_SUPPORTED; // no toolkit commands on such a stick
    }
    if (_com == nullptr) {
        return WORKER_ERR_GENERAL;
    }
    const QVariantMap answer = value.toMap();
    const QString command = answer.value(SatKey::kCommand).toString();
    if (!isSatAnswerCommand(command)) {
        CNSLOG(2, "not a toolkit answer");
        return WORKER_ERR_INVALID_ARGUMENT;
    }
    int teSet = USSD_TE_IRA;
    int result = satCharSet(teSet);
    if (result != 0) {
        return result;
    }
    if (answer.value(SatKey::kCharSet, teSet).toInt() != teSet) {
        // Built for another set: the texts in it would reach the card garbled.
        WorkNotification::SetValueObject(response,
                                         QVariantMap{{SatKey::kSent, false}, {SatKey::kCharSet, teSet}});
        return 0;
    }
    // Indications still queued belong to a dialogue this answer replaces.
    takeSatIndications(*_com);
    std::string text;
    const QByteArray line = command.toLatin1() + '\r';
    if ((result = _pAtSubLayer->STKSendCommand(line.constData(), text)) != 0) {
        return result;
    }
    if (text.empty()) {
        return WORKER_ERR_GENERAL; // "ERROR" or "+CME ERROR": the card did not take it
    }
    return satFetchAnnounced(teSet, response);
}

int BusinessOperator::SatPoll(QVariantMap& response) {
    if (StandardDialect()) {
        return WORKER_ERR_NOT_SUPPORTED;
    }
    if (_com == nullptr) {
        return WORKER_ERR_GENERAL;
    }
    // The modem gives out held lines on a bare AT.
    std::string poll;
    int result = _pAtSubLayer->STKSendCommand("AT\r", poll);
    if (result != 0) {
        return result;
    }
    QVariantMap fetched;
    if ((result = satFetchAnnounced(USSD_TE_IRA, fetched)) != 0) {
        return result;
    }
    // Other requests ran since the answer: the set is read again for a listing that came.
    QVariantMap value = WorkNotification::GetValueObject(fetched).toMap();
    if (!value.value(SatKey::kListing).toString().isEmpty()) {
        int teSet = USSD_TE_IRA;
        if ((result = satCharSet(teSet)) != 0) {
            return result;
        }
        value[SatKey::kCharSet] = teSet;
    }
    WorkNotification::SetValueObject(response, value);
    return 0;
}

// ---- Voice calls ----

int BusinessOperator::CallDial(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    // Only dial characters reach "ATD%s;": anything else could end the command and start another.
    const QString number = value.toString();
    if (!DialString::isDialNumber(number)) {
        CNSLOG(2, "not a number to dial");
        return WORKER_ERR_GENERAL;
    }
    char dial[kDialNumberCap + 1];
    copyCapped(dial, number, kDialNumberCap);
    return _pAtSubLayer->CallDial(dial);
}

int BusinessOperator::CallAnswer() {
    return _pAtSubLayer->CallAnswer();
}

int BusinessOperator::CallHangUp() {
    return _pAtSubLayer->CallHangUp();
}

int BusinessOperator::CallSendDTMF(const QVariantMap& request) {
    const QVariant value = WorkNotification::GetValueObject(request);
    if (isMissing(value)) {
        PARAMETER_NULL();
    }
    const QString keys = value.toString();
    if (keys.isEmpty()) {
        PARAMETER_NULL();
    }
    if (keys.size() > kDTMFKeysCap || !std::all_of(keys.begin(), keys.end(), DialString::isDtmfKey)) {
        CNSLOG(2, "not a DTMF key string");
        return WORKER_ERR_GENERAL;
    }
    for (const QChar key : keys) {
        // AT+VTS=5, one key per command.
        if (const int result = _pAtSubLayer->CallSendDTMF(static_cast<char>(key.unicode())); result != 0) {
            return result;
        }
    }
    return 0;
}

int BusinessOperator::CallGetList(QVariantMap& response) {
    std::list<TCallItemState> calls;
    const int result = _pAtSubLayer->CallCheckState(calls);
    if (result != 0) {
        return result;
    }
    QList<BLCallItem> items;
    for (const TCallItemState& call : calls) {
        BLCallItem item;
        item.nIndex = call.nIndex;
        item.nDir = call.nDir;
        item.nState = call.nState;
        item.nMode = call.nMode;
        item.nMpty = call.nMpty;
        item.nType = call.nType;
        item.strNumber = QString::fromUtf8(
            call.strNumber.data(), static_cast<qsizetype>(std::min<std::size_t>(call.strNumber.size(), 21)));
        items.append(item);
    }
    WorkNotification::SetValueObject(response, QVariant::fromValue(items));
    return 0;
}

// ---- GPS ----

int BusinessOperator::GPSInit() {
    return _pAtSubLayer->GPSInit();
}

int BusinessOperator::GPSUninit() {
    return _pAtSubLayer->GPSUninit();
}
