#pragma once

// Helpers shared by the tests of the dialtone tool: running the tool with a HOME of its own, and a
// simulated modem in a device folder of its own with its control socket.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "SimulatorProcess.h"

namespace clitest {

// What one run of the tool printed and how it ended (-1 when it did not exit normally).
struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

// The argument in single quotes for the shell.
std::string Quote(const std::string& argument);

// A temporary folder, removed with everything in it.
struct TempDir {
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path;
};

// Runs the tool at DIALTONE_CLI with the arguments, standard input from inputPath. HOME is set to home
// unless it is empty, and then the XDG variables are removed so that the tool's folders follow it. extraEnv
// sets further variables; a pair with an empty value removes that variable.
Outcome RunDialtone(const std::vector<std::string>& args, const std::string& home,
                    const std::vector<std::pair<std::string, std::string>>& extraEnv = {},
                    const std::string& inputPath = "/dev/null",
                    const std::vector<std::string>& commandPrefix = {});

// A shell command line: its standard output and exit status.
Outcome Shell(const std::string& command);

// JSON without exceptions: a discarded value when the text is not JSON.
nlohmann::json Parse(const std::string& text);

// The text's lines, without their line feeds.
std::vector<std::string> Lines(const std::string& text);

// A file's bytes (empty when it cannot be read); a file written with the folders it needs.
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

// The simulator next to the tool in the build tree (src/cli/dialtone, tools/modemsim/dialtone-modemsim).
std::string SimulatorPath();

// A scenario given as a patch of the built-in modem, written to a file for the simulator.
struct ScenarioPatch {
    nlohmann::json patch;
};

// One simulated modem for several runs of the tool, so that state carries over between them. The scenario
// is a name or a file (none: the built-in modem). Ready once the simulator has printed its JSON line.
class SimulatedModem {
public:
    explicit SimulatedModem(const std::string& scenario = {},
                            const std::vector<std::string>& extraArguments = {});
    explicit SimulatedModem(const ScenarioPatch& scenario,
                            const std::vector<std::string>& extraArguments = {});

    bool ready() const { return !atLink.empty() && _process->started(); }

    // One line to the control socket, its JSON answer (discarded when there is none).
    nlohmann::json command(const std::string& line) const;
    // The simulator's state ("dump").
    nlohmann::json dump() const { return command("dump"); }
    // How many of the AT commands the modem was sent hold the text.
    int saw(const std::string& text) const;

    // The tool against this modem ("--dev-dir" first), with home as its HOME and the text on its standard
    // input.
    Outcome run(const std::vector<std::string>& arguments, const std::string& input = {}) const;

    TempDir files;
    TempDir devDir;
    TempDir home;
    std::string atLink;

private:
    void start(const std::string& scenario, const std::vector<std::string>& extraArguments);

    std::unique_ptr<SimulatorProcess> _process;
};

// One run of the tool in a table: its arguments, exit status, the texts its standard output holds (all of it
// when exact; nothing at all on a failure that names none) and a text its standard error holds.
struct Step {
    std::vector<std::string> args;
    int status = 0;
    std::vector<std::string> out = {};
    std::string err = {};
    bool exact = false;
    std::string input = {};
};

// Checks one run against its row; failures name the row by its arguments.
void ExpectStep(const Step& step, const Outcome& run);
// Runs the steps in order against the modem (later rows see what earlier ones changed).
void RunSteps(const SimulatedModem& modem, const std::vector<Step>& steps);
// Runs the steps in order with home as HOME and no device folder of a test's.
void RunSteps(const std::string& home, const std::vector<Step>& steps);

} // namespace clitest
