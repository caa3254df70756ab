#pragma once

#include <QString>
#include <QVariantMap>

#include <string>

// Why a request failed, in words with what to do next, for the tool and the desktop app alike. The modem's
// own cause (a response's "SUB_ERROR_CODE", see ModemErrorCause.h) says more than the result code, so it
// wins when it is known; otherwise the result code's meaning (ResultCodeText). Where the next step differs
// between the front ends ("dialtone pin verify PIN" or the app's "Unlock the SIM"), each gets its own.

enum class FrontEnd { Tool, DesktopApp };

// The sentence for a modem's "+CME ERROR"/"+CMS ERROR" cause; empty when the cause is none or not one
// with a sentence of its own.
std::string ModemCauseText(int cause, FrontEnd frontEnd = FrontEnd::Tool);

// ModemCauseText of the cause when it has one, else ResultCodeText of the result code.
std::string FailureText(int resultCode, int cause, FrontEnd frontEnd = FrontEnd::Tool);

// The desktop app's FailureText for a response dictionary ("ERROR_CODE" and "SUB_ERROR_CODE").
QString ResponseFailureText(const QVariantMap& response);

// The cause as the modem named it, for debug output and logs: "+CME ERROR: 20", "" for none.
std::string ModemCauseName(int cause);

// Why a command that needs the SIM cannot run in this SIM state (the PIN state of MESSAGE_PIN_CHECK_STATE:
// 0 no SIM, 1 ready, 2 PIN, 3 PUK, ...): the sentence and the result code that goes with it. False when the
// SIM can be used.
bool SimUnusable(int pinState, std::string& text, int& resultCode, FrontEnd frontEnd = FrontEnd::Tool);
