#include "StatusCommand.h"

#include <cstdio>

#include "BLRecords.h"
#include "Connector/ConnectController.h"
#include "Equipment/EquipmentController.h"
#include "ModemSession.h"
#include "ScriptDocuments.h"
#include "ScriptVocabulary.h"
#include "StatusText.h"
#include "TerminalText.h"
#include "ToolText.h"
#include "Units.h"
#include "WorkNotification.h"

namespace {

std::string Text(const QString& text) {
    return text.isEmpty() ? "-" : TerminalText(text);
}

void AddEquipment(FieldList& fields, const BLEquipmentInfo& info) {
    fields.add(Tool::T("Manufacturer:"), Text(info.strManufacturer));
    fields.add(Tool::T("Model:"), Text(info.strModel));
    fields.add(Tool::T("Revision:"), Text(info.strRevision));
    fields.add(Tool::T("IMEI:"), Text(info.strSerialNumber));
    fields.add(Tool::T("Hardware:"), Text(info.strHardwareVersion));
    fields.add(Tool::T("IMSI:"), Text(info.strImsi));
    fields.add(Tool::T("Number:"), Text(info.strMsisdn));
}

// The PIN counters come only with the separate SIM reading; without it the SIM's state is the
// diagnosis's and the counters are unknown.
nlohmann::json StatusDocument(const BLDiagInfo& diag, const BLPinCheckState* pin, int connectStatus) {
    const BLEquipmentInfo equipment{diag.strManufacturer,   diag.strModel, diag.strRevision,
                                    diag.strSerialNumber,   diag.strImsi,  diag.strMsisdn,
                                    diag.strHardwareVersion};
    const BLNetworkInfo network{
        diag.nMode,     diag.nFormat, diag.strOperator, diag.nAcT,    0,
        diag.strSpName, diag.nRssi,   diag.nRoamState,  diag.nBearer, diag.nGprsRegState};
    nlohmann::json networkDocument = NetworkDocument(network);
    networkDocument.update(RegistrationDocument(diag.nNormalRegState));
    // +CGATT: 1 attached, 0 detached; the worker's 0 is "not read".
    networkDocument["packet_attached"] =
        diag.nPsAttachState == 0 ? nlohmann::json() : nlohmann::json(diag.nPsAttachState == 1);
    BLPinCheckState sim{diag.nPinState, -1, -1};
    return {{"modem", EquipmentDocument(equipment)},
            {"sim", SimDocument(pin != nullptr ? *pin : sim)},
            {"network", networkDocument},
            {"connection", ConnectionName(connectStatus)}};
}

int Status(CliContext& context, ModemSession& session) {
    // The diagnosis request reads equipment, network and the four states in one go and always succeeds;
    // what the modem could not tell stays empty. The PIN counters and the connection come separately.
    EquipmentController equipmentReader(session.link());
    BLDiagInfo diag;
    if (const int failed =
            session.check(session.read([&](auto done) { equipmentReader.readDiagnostics(done); }, diag,
                                       QT_TRANSLATE_NOOP("dialtone", "reading the modem's state")),
                          QT_TRANSLATE_NOOP("dialtone", "reading the modem's state")))
        return failed;
    BLPinCheckState pin;
    const Outcome pinRead = session.readSim(pin);
    ConnectController connection(session.link(), nullptr, nullptr);
    int connectStatus = 0;
    session.read([&](auto done) { connection.readStatus(done); }, connectStatus,
                 QT_TRANSLATE_NOOP("dialtone", "reading the link's state"));
    // What the modem could not tell stays empty, also when it was pulled meanwhile: that is no status.
    if (const int gone = session.checkPresent(QT_TRANSLATE_NOOP("dialtone", "reading the modem's state")))
        return gone;

    if (context.json) {
        PrintJson(StatusDocument(diag, pinRead.ok() ? &pin : nullptr, connectStatus));
        return EXIT_OK;
    }

    BLEquipmentInfo equipment{diag.strManufacturer,   diag.strModel, diag.strRevision,
                              diag.strSerialNumber,   diag.strImsi,  diag.strMsisdn,
                              diag.strHardwareVersion};
    FieldList fields;
    AddEquipment(fields, equipment);
    std::string sim = PinStateText(diag.nPinState);
    if (pinRead.ok()) {
        sim = PinStateText(pin.nState);
        if (pin.nState == SimState::kPin && pin.nPinCnt >= 0)
            sim += " " + Tool::F("(%s attempts left)", {std::to_string(pin.nPinCnt)});
        else if (pin.nState == SimState::kPuk && pin.nPukCnt >= 0)
            sim += " " + Tool::F("(%s PUK attempts left)", {std::to_string(pin.nPukCnt)});
    }
    fields.add(Tool::T("SIM:"), sim);
    fields.add(Tool::T("Operator:"), TerminalText(OperatorText(diag.strOperator, diag.strSpName)));
    fields.add(Tool::T("Registration:"), Tool::F("%s, packet %s", {RegistrationText(diag.nNormalRegState),
                                                                   RegistrationText(diag.nGprsRegState)}));
    fields.add(Tool::T("Roaming:"), ServiceStateText(diag.nRoamState));
    fields.add(Tool::T("Signal:"), SignalLevelText(diag.nRssi, ReadSignalDbm(session.link())));
    fields.add(Tool::T("Bearer:"), BearerText(diag.nBearer));
    fields.add(Tool::T("Connection:"), ConnectStatusText(connectStatus));
    fields.print();
    return EXIT_OK;
}

int Info(CliContext& context, ModemSession& session) {
    EquipmentController equipment(session.link());
    BLEquipmentInfo info;
    if (const int failed =
            session.check(session.read([&](auto done) { equipment.readEquipment(done); }, info,
                                       QT_TRANSLATE_NOOP("dialtone", "reading the modem's identity")),
                          QT_TRANSLATE_NOOP("dialtone", "reading the equipment information")))
        return failed;
    if (const int gone =
            session.checkPresent(QT_TRANSLATE_NOOP("dialtone", "reading the equipment information")))
        return gone;
    if (context.json)
        PrintJson(EquipmentDocument(info));
    else {
        FieldList fields;
        AddEquipment(fields, info);
        fields.print();
    }
    return EXIT_OK;
}

} // namespace

void AddStatusCommand(CLI::App& app, CliContext& context) {
    app.add_subcommand("status", "Equipment, SIM and PIN state, network, signal, bearer, roaming, connection")
        ->callback([&context] {
            context.exitCode =
                RunInSession(context, [&context](ModemSession& s) { return Status(context, s); });
        });
    app.add_subcommand("info", "Equipment information")->callback([&context] {
        context.exitCode = RunInSession(context, [&context](ModemSession& s) { return Info(context, s); });
    });
}
