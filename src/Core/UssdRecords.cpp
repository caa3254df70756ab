#include "UssdRecords.h"

void BLUssdSendCmdInfo::encodeWithCoder(QDataStream& coder) const {
    coder << nOpCode << strCmdString;
}

void BLUssdSendCmdInfo::initWithCoder(QDataStream& coder) {
    coder >> nOpCode >> strCmdString;
}

void BLUssdReceive::encodeWithCoder(QDataStream& coder) const {
    coder << nReportType << strContent;
}

void BLUssdReceive::initWithCoder(QDataStream& coder) {
    coder >> nReportType >> strContent;
}
