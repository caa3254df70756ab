#pragma once

#include <cstdio>
#include <string>
#include <string_view>

// The process-wide sink for the modem link's debug texts ("---Time out---!!", "line prase error!!", ...).
// Standard output by default; the command-line tool points it at standard error and only with --debug.
// Safe to call from any thread: each text is written whole.

// Redirects the debug texts; nullptr silences them.
void SetDebugSink(std::FILE* stream);
std::FILE* GetDebugSink();

// printf-style; a line feed is added when the text does not end with one. Secrets are masked first.
void DebugPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The text with the SIM's secrets hidden, wherever a SIM lock command appears in it (sent or echoed, any
// letter case): each PIN, PUK or password argument becomes "****", quoted or not.
//   AT+CPIN="1234"            -> AT+CPIN="****"         (and the PUK form AT+CPIN="<puk>","<new pin>")
//   AT+CLCK="SC",1,"1234"     -> AT+CLCK="SC",1,"****"  (facility, mode and class stay)
//   AT+CPWD="SC","1234","4321" -> AT+CPWD="SC","****","****"
// Every log line and debug text passes through it.
std::string MaskSecrets(std::string_view text);

// True when text holds word from position at, in any letter case (word in capitals: "+CPIN=").
bool SameLettersAt(std::string_view text, size_t at, std::string_view word);

// The modem traffic: what the channel writes to the port and reads from it, one line per AT line, with the
// local time of day, secrets masked. Off (nullptr) by default; the command-line tool's --debug points it at
// standard error. When off, a tap costs one atomic load. The tap also feeds a recording (SessionRecording.h)
// when one is under way.
void SetTrafficSink(std::FILE* stream);
bool TrafficTapOn();
// direction '>' for text written to the modem, '<' for text read from it. The text may hold several lines
// or a line's end only; each non-empty line is shown once, its line ends dropped.
void TrafficTap(char direction, std::string_view text);
// The shown lines for the text at the given time of day ("12:03:04.123 > AT+CPIN=\"****\"\n" per line).
std::string TrafficLines(std::string_view timeOfDay, char direction, std::string_view text);
