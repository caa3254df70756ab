#pragma once

#include <string>

// The radio signal as the modem reports it, and its conversion into figures people read. Modem answers
// are untrusted: every reader checks the range of what it takes and leaves "unknown" otherwise.

constexpr int kUnknownCsq = 99;       // +CSQ <rssi> not known or not detectable
constexpr int kUnknownCesq = 255;     // +CESQ <rscp>, <ecno> not known or not detectable
constexpr int kUnknownSignalDbm = 0;  // no figure: every real one is negative
constexpr int kUnknownEcIoTenths = 1; // no figure: every real Ec/Io is 0 dB or below

// One reading: the raw indices the modem gave and the registered cell. lac and ci are -1 when unknown,
// accessTechnology is 27.007's <AcT> or -1, registration its <stat> or -1; bearer as the network family
// gives it (0 no service, 1 GPRS ... 7 GSM), 8 when unknown.
struct TSignalReading {
    int csq = kUnknownCsq;
    int rscp = kUnknownCesq;
    int ecno = kUnknownCesq;
    int registration = -1;
    long long lac = -1;
    long long ci = -1;
    int accessTechnology = -1;
    int bearer = 8;
};

// +CSQ <rssi> in dBm: 0 is -113 dBm or less, 31 is -51 dBm or more, 2 dB a step (3GPP TS 27.007 8.5);
// kUnknownSignalDbm for 99 and anything outside 0..31.
int CsqToDbm(int csq);
// +CESQ <rscp> in dBm: 0 is below -120 dBm (given as -121), 96 is -25 dBm or more (TS 27.007 8.69);
// kUnknownSignalDbm for 255 and anything outside 0..96.
int RscpToDbm(int rscp);
// +CESQ <ecno> as Ec/Io in tenths of a dB: 0 is below -24 dB (given as -245), 49 is -0.5 dB or more, half
// a dB a step; kUnknownEcIoTenths for 255 and anything outside 0..49.
int EcnoToEcIoTenths(int ecno);

// AT+CSQ answer: +CSQ: 20,99   rssi, bit error rate. The first line with a number counts; the blank
// after the colon is optional. False when there is none.
bool ParseCsqRssi(const std::string& answer, int& csq);
// AT+CESQ answer: +CESQ: 99,99,45,30,255,255   rxlev, ber, rscp, ecno, rsrq, rsrp. rscp and ecno as
// given (range-checked by their converters); false without a line of at least four numbers.
bool ParseCesqAnswer(const std::string& answer, int& rscp, int& ecno);
// AT+CREG? answer after AT+CREG=2: +CREG: 2,1,"1A2B","00C3D4E5",2. Fills registration, lac, ci and the
// access technology of the first line with mode and stat that it has; the area is up to 4 hexadecimal
// digits, the cell up to 8 (28 bits of a UMTS cell id). False without such a line.
bool ParseCregCell(const std::string& answer, TSignalReading& reading);
