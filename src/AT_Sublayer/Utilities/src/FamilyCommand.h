#pragma once

#include <initializer_list>
#include <string>

#include "ExecATCallback.h"

// The WriteComm that the system, PIN and network families share: runs one command through the execute-AT
// callback and, when it succeeds and the modem echoed the command ("AT+CSQ\r\r\n+CSQ: 20,99\r\n..."), cuts
// the answer so that it starts at the first "\r\n" after the echo. Returns 1 without a callback, else the
// callback's code (0, 2 time-out, 30 cancelled, 1 failure). Most commands listen for the final results
// "OK", "+CME ERROR" and "ERROR".
int FamilyWriteComm(ExecATCallback execAT, std::string& response, const char* command, const char* expected,
                    int timeoutMs, std::initializer_list<const char*> finals = {"OK", "+CME ERROR", "ERROR"});

// The stick this program was first written for answers in one fixed form, and its answers are read exactly
// as they always were. Any other stick's answers are read leniently: the blank after an answer's prefix
// and optional fields may be missing, and a list skips an entry it cannot read (with a debug line)
// instead of failing whole.
bool ReadsAnswersLeniently();

// When answers are read leniently, puts one blank behind an answer's prefix where the modem wrote none
// ("+CMGL:1,0,,23" becomes "+CMGL: 1,0,,23"). Only a "+" at a line start, then up to 15 capitals, digits,
// "$" or "^", then a colon, is a prefix.
void SpaceAfterAnswerPrefixes(std::string& answer);

// Reads an integer as "%d" would (blanks skipped, an optional sign, digits), but refuses a number that
// does not fit an int instead of overflowing: modem answers are untrusted.
bool ReadAnswerInt(const char* text, int& value);

// True when the answer holds "OK" anywhere, the test the set commands make.
inline bool AnswerHasOk(const std::string& answer) {
    return answer.find("OK") != std::string::npos;
}
