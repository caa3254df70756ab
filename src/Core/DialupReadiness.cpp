#include "DialupReadiness.h"

#include <algorithm>
#include <cstdlib>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace DialupReadiness {

namespace {

constexpr char kJoinDip[] = "sudo adduser $USER dip, then log out and log in again";

std::string fromEnvironment(const char* variable, const char* fallback) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? value : fallback;
}

bool inGroup(const Facts& facts, gid_t gid) {
    return std::find(facts.groups.begin(), facts.groups.end(), gid) != facts.groups.end();
}

// The rights the mode bits give this user (root passes, as the kernel lets it).
bool allowed(const Facts& facts, const struct stat& info, mode_t ownerBit, mode_t groupBit, mode_t otherBit) {
    if (facts.uid == 0) {
        return true;
    }
    if (info.st_uid == facts.uid) {
        return (info.st_mode & ownerBit) != 0;
    }
    return (info.st_mode & (inGroup(facts, info.st_gid) ? groupBit : otherBit)) != 0;
}

constexpr char kSystemPeersDir[] = "/etc/ppp/peers";

Finding pppdFinding(const Facts& facts) {
    struct stat info {};
    if (stat(facts.pppd.c_str(), &info) != 0) {
        return {"pppd", false, facts.pppd + " is not installed", "sudo apt install ppp"};
    }
    if (!facts.pppdReplaced && facts.peersDir != kSystemPeersDir) {
        // "call" reads /etc/ppp/peers only: the system's peer of that name could be another modem's.
        return {"pppd", false,
                facts.pppd + " reads its dial-up services from " + kSystemPeersDir + " only, not from " +
                    facts.peersDir + " (a simulated modem's)",
                "point DIALTONE_PPPD at a pppd that reads DIALTONE_PEERS_DIR, as the tests' stand-in does"};
    }
    if (facts.pppdReplaced || facts.uid == 0) {
        return {"pppd", true, facts.pppd + " can be run", ""};
    }
    if (info.st_uid != 0 || (info.st_mode & S_ISUID) == 0) {
        return {"pppd", false, facts.pppd + " is not setuid root, so it cannot dial for a normal user",
                "sudo chown root:dip " + facts.pppd + " && sudo chmod 4754 " + facts.pppd};
    }
    if (!allowed(facts, info, S_IXUSR, S_IXGRP, S_IXOTH)) {
        return {"pppd", false, "you may not run " + facts.pppd + ": it is for the members of its group",
                kJoinDip};
    }
    return {"pppd", true, facts.pppd + " is setuid root and runnable by you", ""};
}

Finding dipFinding(const Facts& facts) {
    const struct group* dip = getgrnam("dip");
    if (facts.uid == 0 || (dip != nullptr && inGroup(facts, dip->gr_gid))) {
        return {"dip", true, "you may dial (root, or a member of the group dip)", ""};
    }
    return {"dip", false, "you are not a member of the group dip, which may run pppd and use its peers",
            kJoinDip};
}

Finding peersFinding(const Facts& facts) {
    struct stat info {};
    if (stat(facts.peersDir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        return {"peers", false, facts.peersDir + " does not exist", "sudo apt install ppp"};
    }
    if (allowed(facts, info, S_IWUSR, S_IWGRP, S_IWOTH)) {
        return {"peers", true, "you can create the modem's dial-up service in " + facts.peersDir, ""};
    }
    const bool actionInstalled =
        std::any_of(facts.polkitActions.begin(), facts.polkitActions.end(),
                    [](const std::string& path) { return access(path.c_str(), R_OK) == 0; });
    if (facts.pkexec.empty()) {
        return {"peers", false, "you cannot write " + facts.peersDir + " and pkexec is not installed",
                "sudo apt install pkexec"};
    }
    if (!actionInstalled) {
        return {"peers", false,
                "you cannot write " + facts.peersDir +
                    " and the dial-up service's polkit action is not installed",
                "sudo make install (it installs the action), or once: sudo " + facts.serviceTool +
                    " VELMobileConnector1 VELMODEM1"};
    }
    return {"peers", true,
            "the dial-up service is created once through pkexec (it asks for an administrator's password)",
            ""};
}

} // namespace

Facts Facts::fromSystem() {
    Facts facts;
    facts.uid = getuid();
    const int count = getgroups(0, nullptr);
    facts.groups.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    if (count > 0 && getgroups(count, facts.groups.data()) != count) {
        facts.groups.clear();
    }
    facts.groups.push_back(getgid());
    facts.pppdReplaced = std::getenv("DIALTONE_PPPD") != nullptr && *std::getenv("DIALTONE_PPPD") != '\0';
    facts.pppd = fromEnvironment("DIALTONE_PPPD", "/usr/sbin/pppd");
    facts.peersDir = fromEnvironment("DIALTONE_PEERS_DIR", kSystemPeersDir);
    for (const char* prefix : {DIALTONE_INSTALL_DATADIR, "/usr/share", "/usr/local/share"}) {
        facts.polkitActions.push_back(std::string(prefix) + "/polkit-1/actions/" + kPolkitActionFile);
    }
    const std::string pkexec = fromEnvironment("DIALTONE_PKEXEC", "/usr/bin/pkexec");
    facts.pkexec = access(pkexec.c_str(), X_OK) == 0 ? pkexec : std::string();
    facts.serviceTool = std::string(DIALTONE_INSTALL_DATADIR) + "/dialtone/Resources/VELModemService";
    return facts;
}

std::vector<Finding> check(const Facts& facts) {
    return {pppdFinding(facts), dipFinding(facts), peersFinding(facts)};
}

const Finding* dialBlocker(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        if (!finding.ok && finding.check != "peers") {
            return &finding;
        }
    }
    return nullptr;
}

} // namespace DialupReadiness
