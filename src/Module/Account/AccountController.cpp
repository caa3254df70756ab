#include "AccountController.h"

#include "CNSLog.h"
#include "LocalizedStrings.h"
#include "ModemLink.h"
#include "ResourceLocator.h"
#include "WorkMessageNames.h"

#include <QDir>
#include <QFileInfo>

AccountController::AccountController(ModemLink& link, QObject* parent)
    : QObject(parent), _link(link), _timer(new QTimer(this)) {
    _timer->setSingleShot(true);
    connect(_timer, &QTimer::timeout, this, &AccountController::actionTimeout);
    _link.listenForReport(MESSAGE_RPT_RECEIVE_USSD);
    connect(&_link, &ModemLink::reportReceived, this, [this](const QString& name, const QVariantMap& data) {
        if (name == MESSAGE_RPT_RECEIVE_USSD)
            handleUSSDReceiveUSSD(data);
    });
}

QString AccountController::getUSSDDataFileNameByIMSI(const QString& imsi) {
    return getUSSDDataFileNameByIMSI(imsi, ResourceLocator::accountDataDir());
}

QString AccountController::getUSSDDataFileNameByIMSI(const QString& imsi, const QString& dataDir) {
    const QDir dir(dataDir);
    if (!imsi.isEmpty()) {
        const QStringList files =
            dir.entryList({QStringLiteral("*.dat")}, QDir::Files | QDir::Readable, QDir::Name);
        for (const QString& name : files) {
            const QString prefix = name.section(QLatin1Char('.'), 0, 0);
            // A nameless file (".dat") would match every SIM.
            if (!prefix.isEmpty() && imsi.startsWith(prefix)) {
                return dir.filePath(name);
            }
        }
    }
    const QString fallback = dir.filePath(QStringLiteral("Default.dat"));
    return QFileInfo(fallback).isFile() ? fallback : QString();
}

int AccountController::loadAccountData(const QString& imsi) {
    const QString path = getUSSDDataFileNameByIMSI(imsi);
    if (path.isNull()) {
        _accountData = _TAccountData();
        return 0;
    }
    return GetUSSDDataFromFile(path, _accountData, _languageIndex);
}

void AccountController::sendUSSDCmd(const QString& command, Done sent) {
    BLUssdSendCmdInfo info;
    info.nOpCode = BLUssdSendCmdInfo::kSend;
    info.strCmdString = _strUSSDDebugString.isEmpty() ? command : _strUSSDDebugString;
    CNSLOG(0, "USSD Send: %s", qPrintable(info.strCmdString));
    // Blocked first: a link without a modem answers at once.
    setUIBlock(true);
    _link.request(
        MESSAGE_USSD_SENDCMD, QVariant::fromValue(info),
        [this, command, sent](const QVariantMap& response) {
            const Outcome outcome = Outcome::of(response);
            // A success is only the modem taking the string: the answer comes as a report.
            if (!outcome.ok() && _blocked) {
                setUIBlock(false);
                emit sendFailed(command, outcome);
            }
            if (sent)
                sent(outcome);
        },
        this);
}

void AccountController::sendUSSDCancelCmd(Done done) {
    if (!_deviceFound || !_deviceFound()) {
        return;
    }
    BLUssdSendCmdInfo info;
    info.nOpCode = BLUssdSendCmdInfo::kCancel;
    info.strCmdString = QStringLiteral("");
    _link.request(
        MESSAGE_USSD_SENDCMD, QVariant::fromValue(info),
        [done](const QVariantMap& response) {
            if (done)
                done(Outcome::of(response));
        },
        this);
}

void AccountController::setUIBlock(bool block) {
    if (block) {
        _blocked = true;
        emit uiBlockChanged(true);
        _timer->start(_timeoutMs);
        return;
    }
    _timer->stop();
    const bool wasBlocked = _blocked;
    _blocked = false;
    if (wasBlocked) {
        emit uiBlockChanged(false);
    }
}

void AccountController::actionTimeout() {
    setUIBlock(false);
    emit messageShown(timeoutMessage());
}

void AccountController::handleUSSDReceiveUSSD(const QVariantMap& report) {
    setUIBlock(false);
    const QVariant value = WorkNotification::GetValueObject(report);
    if (value.typeId() != qMetaTypeId<BLUssdReceive>()) {
        return;
    }
    const BLUssdReceive receive = qvariant_cast<BLUssdReceive>(value);
    emit answerReceived(receive);
    if (receive.strContent.isNull()) {
        return;
    }
    CNSLOG(0, "ussdReceive text:%s", qPrintable(receive.strContent));
    if (receive.nReportType == BLUssdReceive::kReplyWanted) {
        emit replyRequested(receive.strContent);
    } else {
        emit messageShown(receive.strContent);
    }
}

QString AccountController::composeUSSDCommand(const QString& code, const QStringList& inputs) {
    return inputs.isEmpty() ? code : code + inputs.join(QLatin1Char('*')) + QLatin1Char('#');
}

int AccountController::paidTypeFromInternalType(int internalType) {
    switch (internalType) {
    case 0:
        return 2;
    case 1:
        return 1;
    default:
        return 0;
    }
}

QString AccountController::timeoutMessage() {
    return LocalizedStrings::text(QStringLiteral("IDS_USSD_TIMEOUT"));
}
