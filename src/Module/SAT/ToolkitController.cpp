#include "ToolkitController.h"

#include <QTimer>

#include "CNSLog.h"
#include "ConvertUtilty.h"
#include "ModemLink.h"
#include "STKCodec.h"
#include "WorkMessageNames.h"

namespace {

// Item identifiers are one octet on the card.
constexpr int kMaxItemId = 255;

QList<BLSatMenuItem> MenuItems(const std::list<TSTKMenuItem>& items) {
    QList<BLSatMenuItem> result;
    for (const TSTKMenuItem& item : items)
        result.append(BLSatMenuItem{item.nItemId, ConvertUtilty::fromWString(item.wstrText)});
    return result;
}

// The text of a command that brings only a text to show.
template <class Request>
QString ShownText(int (*decode)(const std::string&, Request&, int), std::wstring Request::*field,
                  const std::string& listing, int teSet) {
    Request request;
    decode(listing, request, teSet);
    return ConvertUtilty::fromWString(request.*field);
}

} // namespace

ToolkitController::ToolkitController(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {}

bool ToolkitController::isMenu(const BLSatCommand& command) {
    return command.nCommand == kMainMenu || command.nCommand == kSelectItem;
}

void ToolkitController::cancel() {
    ++_generation;
}

void ToolkitController::finish(const Result& done, Outcome outcome, const BLSatCommand& command) {
    if (outcome.ok())
        emit commandReceived(command);
    else
        emit failed(outcome);
    if (done)
        done(outcome, command);
}

void ToolkitController::readMenu(Result done) {
    const int generation = _generation;
    _link.request(
        MESSAGE_STK_GET_MENU, {},
        [this, generation, done](const QVariantMap& response) {
            if (generation != _generation)
                return;
            const Outcome outcome = Outcome::of(response);
            emit supportChanged(outcome.code != WORKER_ERR_NOT_SUPPORTED);
            if (!outcome.ok())
                return finish(done, outcome);
            const QVariantMap value = WorkNotification::GetValueObject(response).toMap();
            _charSet = value.value(SatKey::kCharSet, USSD_TE_IRA).toInt();
            const std::string listing = value.value(SatKey::kListing).toString().toStdString();
            const BLSatCommand menu = decodeListing(listing, _charSet);
            if (menu.nType != STK_TYPE_SETUP_MENU) {
                CNSLOG(2, "no main menu in %s", listing.c_str());
                return finish(done, {WORKER_ERR_GENERAL, 0});
            }
            finish(done, {}, menu);
        },
        this);
}

void ToolkitController::answer(const BLSatResponse& answer, Result done) {
    std::string command;
    if (!encodeAnswer(answer, USSD_TE_IRA, command)) {
        CNSLOG(2, "no answer to toolkit command %d", answer.nCommand);
        return finish(done, {WORKER_ERR_GENERAL, 0});
    }
    _deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kIndicationWaitMs);
    send(answer, true, done);
}

void ToolkitController::send(const BLSatResponse& answer, bool mayRetry, const Result& done) {
    // Texts of the answer go in the modem's character set; the worker sends it only in that set.
    const int teSet = _charSet < 0 ? USSD_TE_IRA : _charSet;
    std::string command;
    encodeAnswer(answer, teSet, command);
    const int generation = _generation;
    _link.request(
        MESSAGE_STK_SELECT_ITEM,
        QVariantMap{{SatKey::kCommand, QString::fromStdString(command)}, {SatKey::kCharSet, _charSet}},
        [this, generation, answer, mayRetry, done](const QVariantMap& response) {
            if (generation != _generation)
                return;
            const Outcome outcome = Outcome::of(response);
            const QVariantMap value = WorkNotification::GetValueObject(response).toMap();
            if (outcome.ok() && !value.value(SatKey::kSent).toBool()) {
                _charSet = value.value(SatKey::kCharSet, USSD_TE_IRA).toInt();
                if (mayRetry)
                    return send(answer, false, done);
                return finish(done, {WORKER_ERR_GENERAL, 0});
            }
            takeAnnounced(response, generation, done);
        },
        this);
}

void ToolkitController::takeAnnounced(const QVariantMap& response, int generation, const Result& done) {
    if (generation != _generation)
        return;
    const Outcome outcome = Outcome::of(response);
    if (!outcome.ok())
        return finish(done, outcome);
    const QVariantMap value = WorkNotification::GetValueObject(response).toMap();
    const QString listing = value.value(SatKey::kListing).toString();
    if (!listing.isEmpty()) {
        _charSet = value.value(SatKey::kCharSet, USSD_TE_IRA).toInt();
        return finish(done, {}, decodeListing(listing.toStdString(), _charSet));
    }
    if (std::chrono::steady_clock::now() >= _deadline) {
        CNSLOG(2, "no toolkit command after the answer");
        return finish(done, {WORKER_ERR_TIME_OUT, 0});
    }
    QTimer::singleShot(kPollIntervalMs, this, [this, generation, done] {
        if (generation != _generation)
            return;
        _link.request(
            MESSAGE_STK_POLL, {},
            [this, generation, done](const QVariantMap& response) {
                takeAnnounced(response, generation, done);
            },
            this);
    });
}

BLSatCommand ToolkitController::decodeListing(const std::string& text, int teSet) {
    BLSatCommand command;
    command.nCommand = CSTKCodec::SplitListingLine(text).nCommand;
    int type = STK_TYPE_UNKNOWN;
    CSTKCodec::GetProactiveCommandType(text, type);
    command.nType = type;
    switch (type) {
    case STK_TYPE_SETUP_MENU: {
        TSTKSetupMenuReq req;
        CSTKCodec::DecodeSetupMenuReq(text, req, teSet);
        command.strText = ConvertUtilty::fromWString(req.wstrTitle);
        command.lstItems = MenuItems(req.lstItems);
        break;
    }
    case STK_TYPE_SELECT_ITEM: {
        TSTKSelectItemReq req;
        CSTKCodec::DecodeSelectItemReq(text, req, teSet);
        command.strText = ConvertUtilty::fromWString(req.wstrTitle);
        command.nDefaultItem = req.nDefaultItem;
        command.lstItems = MenuItems(req.lstItems);
        break;
    }
    case STK_TYPE_DISPLAY_TEXT:
        command.strText =
            ShownText(&CSTKCodec::DecodeDisplayTextReq, &TSTKDisplayTextReq::wstrText, text, teSet);
        break;
    case STK_TYPE_GET_INKEY: {
        TSTKGetInkeyReq req;
        CSTKCodec::DecodeGetInkeyReq(text, req, teSet);
        command.strText = ConvertUtilty::fromWString(req.wstrText);
        command.nFormat = req.nFormat;
        break;
    }
    case STK_TYPE_GET_INPUT: {
        TSTKGetInputReq req;
        CSTKCodec::DecodeGetInputReq(text, req, teSet);
        command.strText = ConvertUtilty::fromWString(req.wstrText);
        command.nFormat = req.nFormat;
        command.nMinLength = req.nMinLength;
        command.nMaxLength = req.nMaxLength;
        command.strDefaultText = ConvertUtilty::fromWString(req.wstrDefaultText);
        break;
    }
    case STK_TYPE_PLAY_TONE:
        command.strText = ShownText(&CSTKCodec::DecodePlayToneReq, &TSTKPlayToneReq::wstrText, text, teSet);
        break;
    case STK_TYPE_SETUP_CALL:
        command.strText =
            ShownText(&CSTKCodec::DecodeSetupCallReq, &TSTKSetupCallReq::wstrConfirmText, text, teSet);
        break;
    case STK_TYPE_SETUP_IDLE_MODE_TEXT:
        command.strText = ShownText(&CSTKCodec::DecodeSetupIdleModeTextReq,
                                    &TSTKSetupIdleModeTextReq::wstrText, text, teSet);
        break;
    case STK_TYPE_SEND_SMS:
        command.strText = ShownText(&CSTKCodec::DecodeSendSMSReq, &TSTKSendSMSReq::wstrText, text, teSet);
        break;
    case STK_TYPE_SEND_USSD:
        command.strText = ShownText(&CSTKCodec::DecodeSendUSSDReq, &TSTKSendUSSDReq::wstrText, text, teSet);
        break;
    default:
        break;
    }
    return command;
}

bool ToolkitController::encodeAnswer(const BLSatResponse& answer, int teSet, std::string& command) {
    if (answer.nItemId > kMaxItemId)
        return false;
    const std::wstring text = ConvertUtilty::toWString(answer.strText);
    int result = 1;
    switch (answer.nCommand) {
    case STK_MODEM_SETUP_MENU:
        result = CSTKCodec::EncodeMenuSelectionEnvelope(answer.nResult, answer.nItemId, command);
        break;
    case STK_MODEM_SELECT_ITEM:
        result = CSTKCodec::EncodeSelectItemResponse(answer.nResult, answer.nItemId, command);
        break;
    case STK_MODEM_DISPLAY_TEXT:
        result = CSTKCodec::EncodeDisplayTextResponse(answer.nResult, nullptr, command);
        break;
    case STK_MODEM_GET_INKEY:
        result = CSTKCodec::EncodeGetInkeyResponse(answer.nResult, text.empty() ? answer.nItemId : -1, text,
                                                   command, teSet);
        break;
    case STK_MODEM_GET_INPUT:
        result = CSTKCodec::EncodeGetInputResponse(answer.nResult, text, command, teSet);
        break;
    case STK_MODEM_PLAY_TONE:
        result = CSTKCodec::EncodePlayToneResponse(answer.nResult, command);
        break;
    case STK_MODEM_SETUP_CALL:
        result = CSTKCodec::EncodeSetupCallResponse(answer.nResult, nullptr, command);
        break;
    case STK_MODEM_SETUP_IDLE_MODE_TEXT:
        result = CSTKCodec::EncodeSetupIdleModeTextResponse(answer.nResult, command);
        break;
    case STK_MODEM_SEND_DTMF:
        result = CSTKCodec::EncodeSendDTMFResponse(answer.nResult, nullptr, command);
        break;
    case STK_MODEM_LANGUAGE_NOTIFICATION:
        result = CSTKCodec::EncodeLanguageNotificationResponse(answer.nResult, nullptr, command);
        break;
    default:
        break;
    }
    if (result != 0)
        return false;
    if (!command.empty() && command.back() == '\r')
        command.pop_back();
    return true;
}
