#pragma once

#include <string>

// Reads one secret (a PIN, a PUK, a password) as a line of standard input, so that it never shows in a
// process list. When standard input is a terminal the prompt goes to standard error and the typing is not
// echoed; the terminal's echo comes back on every way out, also when the user presses Ctrl-C.
// A trailing "\r" is dropped. Returns false when standard input ends before a line.
bool ReadSecretLine(const std::string& prompt, std::string& secret);
