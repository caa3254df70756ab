#include "NumberArguments.h"

#include "BLRecords.h"
#include "CliSupport.h"
#include "DialString.h"
#include "Equipment/EquipmentController.h"
#include "HomeRegion.h"
#include "ModemSession.h"
#include "PhoneNumbers.h"
#include "WorkNotification.h"

namespace {

std::string Reason(const PhoneNumbers::DialString& parsed, const std::string& typed) {
    if (parsed.refusal == PhoneNumbers::Refusal::ServiceCode)
        return parsed.reason + ": use dialtone ussd '" + typed + "'";
    return parsed.reason;
}

bool IsServiceCode(const std::string& typed) {
    return typed.find_first_of("*#") != std::string::npos &&
           DialString::isDialNumber(QString::fromStdString(typed));
}

} // namespace

std::string NumberOrCodeRefusal(const std::string& typed) {
    return IsServiceCode(typed) ? std::string() : NumberRefusal(typed);
}

std::optional<std::string> DialNumberOrCode(const std::string& typed, const std::string& region) {
    if (IsServiceCode(typed))
        return typed;
    return DialNumber(typed, region);
}

std::string NumberRefusal(const std::string& typed) {
    const PhoneNumbers::DialString parsed = PhoneNumbers::Parse(typed, {});
    return parsed.ok() ? std::string() : Reason(parsed, typed);
}

std::string SessionRegion(ModemSession& session) {
    // The diagnosis always succeeds; what the modem could not tell stays empty.
    EquipmentController equipment(session.link());
    BLDiagInfo diag;
    session.read([&](auto done) { equipment.readDiagnostics(done); }, diag,
                 QT_TRANSLATE_NOOP("dialtone", "reading the modem's state"));
    return HomeRegion::fromImsiOrNetwork(diag.strImsi, diag.strOperator).toStdString();
}

std::string RegionOfImsi(const QString& imsi) {
    return HomeRegion::regionForMcc(imsi).toStdString();
}

std::optional<std::string> DialNumber(const std::string& typed, const std::string& region) {
    const PhoneNumbers::DialString parsed = PhoneNumbers::Parse(typed, region);
    if (parsed.ok())
        return parsed.number;
    ReportUsage(Reason(parsed, typed));
    return std::nullopt;
}

std::string NumberForReading(const QString& number, const std::string& region) {
    return PhoneNumbers::ForReading(number.toStdString(), region);
}
