#pragma once

#include <list>
#include <string>

// The execute-AT lower callback through which every command family runs its commands.
// command: the whole command text with its "\r" (or a PDU with its Ctrl-Z); expected: the answer prefix the
// command owns ("+CSQ: ") or null; timeoutMs: the time limit, which the host rounds down to whole seconds
// (at least one); finalResults: the final-result texts the family listens for (the host may ignore them);
// response: receives the collected answer when the result is 0 and is left alone otherwise.
// Result: 0 answer received, 2 time-out, 30 cancelled, 1 any other failure.
using ExecATCallback = int (*)(const char* command, const char* expected, int timeoutMs,
                               const std::list<std::string>& finalResults, std::string& response);
