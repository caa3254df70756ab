#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

// How the tool reads its command line beyond what CLI11 does by itself: global options anywhere on the
// line, and a word that names no command answered with the commands it is near.

// --wait: from a tenth of a second to a day (the waits count milliseconds in an int, which ends at 24 days).
constexpr double kMinWaitSeconds = 0.1;
constexpr double kMaxWaitSeconds = 86400;

// Lets every command and sub-command hand the options it does not know to the tool itself, so that
// "dialtone status --json" reads as "dialtone --json status", and gives them the tool's help format. Call
// before the commands are added: each command takes both from its parent when it is made.
void PrepareCommandLine(CLI::App& app);

// The commands of a family within reach of a mistyped word: those it begins, and those a few edits away
// (a swap of two neighbours counts as one), nearest first.
std::vector<std::string> NearWords(const std::string& word, const std::vector<std::string>& candidates);

// A word that stands where a command (or a family's sub-command) belongs and names none; or, with an empty
// word, a line that ends before the command a family needs.
struct UnknownCommand {
    std::string family; // "" for the tool's own commands, else e.g. "sms"
    std::string word;
    std::vector<std::string> near;
};
// Looks for such a word in the arguments (without the program name); an option's value is skipped.
std::optional<UnknownCommand> FindUnknownCommand(const CLI::App& app,
                                                 const std::vector<std::string>& arguments);
// "dialtone: unknown command 'stauts'. Did you mean: status?" and where the list is; returns EXIT_USAGE.
int ReportUnknownCommand(const UnknownCommand& unknown);

// A parse error in words for ReportUsage: "--wait must be ..." rather than "--wait: must be ...".
std::string UsageText(const CLI::ParseError& error);

// Accepts a whole number from min up and says so when refused: "must be a whole number, 1 or more".
CLI::Validator WholeNumber(long min);
// Accepts seconds from min to max, fractions too: "must be a number of seconds from 0.1 to 86400".
CLI::Validator Seconds(double min, double max);

// The visible commands of a family, in the order they were added.
std::vector<std::string> CommandNames(const CLI::App& family);
