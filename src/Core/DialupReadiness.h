#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// Whether this user can make a dial-up connection, and what to do where not: pppd present, setuid root
// and runnable by the user (group dip), and the dial-up service creatable (peers folder writable, or the
// polkit action and pkexec present). The command-line tool, the desktop app and the doctor command show
// the same findings.
namespace DialupReadiness {

struct Finding {
    std::string check; // "pppd", "dip", "peers"
    bool ok = false;
    std::string text; // what was found
    std::string fix;  // the command or step that fixes it; empty when ok
};

// What the checks look at; fromSystem() reads this process's own.
struct Facts {
    uid_t uid = 0;
    std::vector<gid_t> groups;
    std::string pppd;          // DIALTONE_PPPD, else /usr/sbin/pppd
    bool pppdReplaced = false; // DIALTONE_PPPD set: taken as it is
    std::string peersDir;
    std::vector<std::string> polkitActions; // where the action's file may be installed
    std::string pkexec;                     // empty when not found
    std::string serviceTool;

    static Facts fromSystem();
};

inline constexpr char kPolkitActionFile[] = "org.dialtone.modemservice.policy";

std::vector<Finding> check(const Facts& facts);
// The first finding that stops dialling (pppd or dip); nullptr when dialling can work.
const Finding* dialBlocker(const std::vector<Finding>& findings);

} // namespace DialupReadiness
