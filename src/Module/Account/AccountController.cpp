#include "AccountController.h"

#include "CNSLog.h"
#include "LocalizedStrings.h"
#include "ResourceLocator.h"
#include "UssdRecords.h"
#include "WorkMessageNames.h"

#include <QDir>
#include <QFileInfo>

AccountController::AccountController(DeviceWorkRequestInterface* target, QObject* parent)
    : QObject(parent), _workNotification(this, target), _timer(new QTimer(this)) {
    _timer->setSingleShot(true);
    connect(_timer, &QTimer::timeout, this, &AccountController::actionTimeout);
    _workNotification.regeditNotifySelector(
        MESSAGE_RPT_RECEIVE_USSD, [this](const Notification& note) { handleUSSDReceiveUSSD(note); });
}

AccountController::~AccountController() {
    _workNotification.unregeditNotifySelector(MESSAGE_RPT_RECEIVE_USSD);
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

void AccountController::sendUSSDCmd(const QString& command) {
    BLUssdSendCmdInfo info;
    info.nOpCode = BLUssdSendCmdInfo::kSend;
    info.strCmdString = _strUSSDDebugString.isEmpty() ? command : _strUSSDDebugString;
    CNSLOG(0, "USSD Send: %s", qPrintable(info.strCmdString));
    _workNotification.sendASyncWorkMessage(MESSAGE_USSD_SENDCMD, {{VALUE_OBJECT, QVariant::fromValue(info)}});
    setUIBlock(true);
}

void AccountController::sendUSSDCancelCmd() {
    if (!_deviceFound || !_deviceFound()) {
        return;
    }
    BLUssdSendCmdInfo info;
    info.nOpCode = BLUssdSendCmdInfo::kCancel;
    info.strCmdString = QStringLiteral("");
    _workNotification.sendASyncWorkMessage(MESSAGE_USSD_SENDCMD, {{VALUE_OBJECT, QVariant::fromValue(info)}});
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

void AccountController::handleUSSDReceiveUSSD(const Notification& notification) {
    setUIBlock(false);
    const QVariant value = WorkNotification::GetValueObject(notification.userInfo);
    if (value.typeId() != qMetaTypeId<BLUssdReceive>()) {
        return;
    }
    const BLUssdReceive receive = qvariant_cast<BLUssdReceive>(value);
    if (receive.strContent.isNull()) {
        return;
    }
    CNSLOG(0, "ussdReceive text:%s", qPrintable(receive.strContent));
    if (receive.nReportType == 1) {
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
    const QString key = QStringLiteral("IDS_USSD_TIMEOUT");
    const QString text = LocalizedStrings::text(key);
    return text == key ? QStringLiteral("The network did not answer in time. Please try again later.") : text;
}
