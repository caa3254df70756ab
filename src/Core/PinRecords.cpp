#include "PinRecords.h"

void BLPINInfo::encodeWithCoder(QDataStream& coder) const {
    coder << nPinCnt << nPukCnt;
}

void BLPINInfo::initWithCoder(QDataStream& coder) {
    coder >> nPinCnt >> nPukCnt;
}

void BLPinCheckState::encodeWithCoder(QDataStream& coder) const {
    coder << nState << nPinCnt << nPukCnt;
}

void BLPinCheckState::initWithCoder(QDataStream& coder) {
    coder >> nState >> nPinCnt >> nPukCnt;
}

void BLPINEnableInfo::encodeWithCoder(QDataStream& coder) const {
    coder << blPinEnable << strPinCode;
}

void BLPINEnableInfo::initWithCoder(QDataStream& coder) {
    coder >> blPinEnable >> strPinCode;
}

void BLPINChangeInfo::encodeWithCoder(QDataStream& coder) const {
    coder << strOldPin << strNewPin;
}

void BLPINChangeInfo::initWithCoder(QDataStream& coder) {
    coder >> strOldPin >> strNewPin;
}

void BLPINVerifyPukInfo::encodeWithCoder(QDataStream& coder) const {
    coder << strPUK << strNewPin;
}

void BLPINVerifyPukInfo::initWithCoder(QDataStream& coder) {
    coder >> strPUK >> strNewPin;
}
