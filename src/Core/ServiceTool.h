#pragma once

#include <QString>

#include <functional>

// Runs the dial-up service tool ("VELModemService" in the resources) for the modem's dial port: chooses
// the service name under the peers folder's lock (the user's next number, or the lowest one no peer uses),
// then runs the tool directly when the peers folder can be written, else through pkexec, which asks for
// the password once (the desktop's dialog, or on the terminal). A name that turns out to belong to another
// user is skipped and the next one tried.
//
// The pkexec program is DIALTONE_PKEXEC when set (tests use a stand-in), else "pkexec" from PATH.
namespace ServiceTool {

inline constexpr char kToolName[] = "VELModemService";
inline constexpr char kCreatedModemNumberKey[] = "CreatedModemNumber";
// The tool's exit status for a peer made for another user.
inline constexpr int kNotYours = 3;

struct Outcome {
    int status = 1; // the tool's exit status; 1 also when it could not run
    QString service;
    bool throughPkexec = false;
};

QString pkexecPath();
// True when the peers folder exists and this user cannot write it: creating a service asks for rights.
bool needsPrivilege();
// echo gets the command line of each run, for the log or the terminal.
Outcome create(const QString& modemDeviceName, const std::function<void(const QString&)>& echo);

} // namespace ServiceTool
