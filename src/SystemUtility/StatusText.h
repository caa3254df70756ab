#pragma once

#include <QString>

#include <string>

// The modem's state codes in words, for the human-readable output.

std::string PinStateText(int state);       // SIM/PIN state: 0 no SIM, 1 ready, 2 PIN required, ...
std::string ServiceStateText(int state);   // 0 home, 1 roaming, 2 searching, 3 not registered
std::string RegistrationText(int state);   // registration code: 3 home, 4 roaming, ...
std::string BearerText(int bearer);        // 0 no service, 1 GPRS ... 7 GSM
std::string AccessTechnologyText(int act); // 0 GSM, 2 UTRAN, 7 E-UTRAN, ...
std::string AttemptsText(int count);       // PIN or PUK attempts left: the number, or "unknown" below 0
std::string ConnectStatusText(int status); // -1 none, 0 disconnected, 1 connecting, 2 connected, ...
std::string SignalText(int level);         // level 0-5 as bars, 6 unknown
std::string ResultCodeText(int code);      // an application result code in words

// "Name (code)" for an operator code the operator table knows, else the text as it is; "-" for none. The
// service provider name, when the SIM has one, goes first.
std::string OperatorText(const QString& operatorCode, const QString& providerName);
