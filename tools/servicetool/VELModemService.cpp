// VELModemService [--option WORD]... DEVICE SERVICE
//
// Creates or updates the dial-up service SERVICE ("VELMODEM<n>") for the modem's dial port DEVICE: the
// pppd peer file naming the port, with "linkname SERVICE" so that the connection manager finds the link's
// pid file, and the modem's chat script beside the system's others. The options of each dial (number,
// account, password) are not kept here: the connection manager hands them to pppd in a private file.
//
//   VELModemService VELMobileConnector1 VELMODEM1        (the port <device folder>/cu.VELMobileConnector1)
//   VELModemService /dev/ttyUSB0 VELMODEM2
//
// It is the one step that needs root's rights, run through pkexec by users who cannot write the peers
// folder. So it trusts nothing it is given: the service must be VELMODEM<n>, the port a plain path in the
// device folder, extra pppd words come from a fixed list; it writes only the peer file and the chat
// script, never runs another program, and refuses to overwrite a peer that was made for another user.
// DIALTONE_DEV_DIR, DIALTONE_PEERS_DIR and DIALTONE_CHATSCRIPTS_DIR move the folders (tests, simulated
// modems): pkexec hands the tool a clean environment, and a setuid start ignores them.
//
// Exit status: 0 written, 1 the folder cannot be written, 2 wrong arguments, 3 the peer belongs to
// another user.
#include "DialupPeer.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char kMe[] = "VELModemService";
constexpr char kChatScript[] = "VEL_HSPA_Modem";
enum { kWritten = 0, kCannotWrite = 1, kBadArguments = 2, kNotYours = 3 };

struct Folders {
    std::string dev = "/dev";
    std::string peers = "/etc/ppp/peers";
    std::string chatscripts = "/etc/chatscripts";
};

int fail(int status, const std::string& message) {
    std::fprintf(stderr, "%s: %s\n", kMe, message.c_str());
    return status;
}

bool plainPath(const std::string& path) {
    if (path.empty() || path.size() > 200 || path[0] != '/' || path.find("/.") != std::string::npos ||
        path.find("//") != std::string::npos || path.back() == '/') {
        return false;
    }
    return path.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-/") ==
           std::string::npos;
}

// pppd opens the port with root's rights: only serial ports, never a disk or a console. A port that is
// not plugged in yet is taken by its name.
bool serialPort(const std::string& tty) {
    const std::string name = tty.substr(tty.rfind('/') + 1);
    bool named = false;
    for (const char* prefix : {"cu.", "ttyUSB", "ttyACM", "ttyHS"}) {
        named = named || (name.rfind(prefix, 0) == 0 && name.size() > std::strlen(prefix));
    }
    named = named || tty.find("/serial/by-id/") != std::string::npos;
    struct stat node {};
    return named && (stat(tty.c_str(), &node) != 0 ? errno == ENOENT : S_ISCHR(node.st_mode));
}

// With root's rights through pkexec, the user who asked; else whoever runs the tool.
bool callerUid(uid_t& uid) {
    const char* asked = std::getenv("PKEXEC_UID");
    if (getuid() != 0 || asked == nullptr) {
        uid = getuid();
        return true;
    }
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(asked, &end, 10);
    if (errno != 0 || end == asked || *end != '\0' || value > 0xfffffffeUL) {
        return false;
    }
    uid = static_cast<uid_t>(value);
    return true;
}

Folders folders(bool privileged) {
    Folders chosen;
    if (privileged) {
        return chosen;
    }
    for (auto [variable, folder] :
         {std::pair{"DIALTONE_DEV_DIR", &chosen.dev}, std::pair{"DIALTONE_PEERS_DIR", &chosen.peers},
          std::pair{"DIALTONE_CHATSCRIPTS_DIR", &chosen.chatscripts}}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && plainPath(value)) {
            *folder = value;
        }
    }
    // Moved peers come with their own chat scripts folder, or none: never the system's beside them.
    if (std::getenv("DIALTONE_PEERS_DIR") != nullptr && std::getenv("DIALTONE_CHATSCRIPTS_DIR") == nullptr) {
        chosen.chatscripts.clear();
    }
    return chosen;
}

// Writes the file through a temporary one in the same folder and a rename, so that a link planted in
// its place is replaced, never followed.
bool writeAtomically(const std::string& folder, const std::string& name, const std::string& text) {
    std::string temporary = folder + "/." + name + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    bool written = fchmod(fd, 0644) == 0 &&
                   write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size()) && fsync(fd) == 0;
    written = close(fd) == 0 && written;
    if (!written || rename(temporary.c_str(), (folder + "/" + name).c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    return true;
}

// The modem script comes from beside this program, never from an argument.
std::string chatScript() {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) {
        return {};
    }
    std::string path(self, static_cast<std::size_t>(n));
    path = path.substr(0, path.rfind('/') + 1) + kChatScript;
    const std::string text = DialupPeer::readHead(path);
    return text.size() < 4096 ? text : std::string();
}

} // namespace

int main(int argc, char** argv) {
    static const std::set<std::string> kAllowedOptions{
        "defaultroute", "nodefaultroute", "replacedefaultroute", "usepeerdns", "persist", "debug"};
    const std::string usage = std::string("usage: ") + kMe +
                              " [--option WORD]... DEVICE SERVICE   (for example: " + kMe +
                              " VELMobileConnector1 VELMODEM1)";
    std::set<std::string> options;
    int at = 1;
    for (; at + 1 < argc && std::strcmp(argv[at], "--option") == 0; at += 2) {
        if (kAllowedOptions.count(argv[at + 1]) == 0) {
            return fail(kBadArguments, std::string("option not allowed: '") + argv[at + 1] + "'");
        }
        options.insert(argv[at + 1]);
    }
    if (argc - at != 2) {
        return fail(kBadArguments, usage);
    }
    const std::string device = argv[at];
    const std::string service = argv[at + 1];

    uid_t owner = 0;
    const bool privileged = getuid() != geteuid() || getgid() != getegid();
    if (!callerUid(owner)) {
        return fail(kBadArguments, "PKEXEC_UID is not a user id");
    }
    const Folders where = folders(privileged);

    if (DialupPeer::numberOf(service) == 0) {
        return fail(kBadArguments, "invalid service name '" + service + "' (VELMODEM1, VELMODEM2, ...)");
    }
    std::string tty = device;
    if (device.empty() || device[0] != '/') {
        tty = where.dev + "/cu." + device;
    }
    if (device.empty() || !plainPath(tty) || tty.compare(0, where.dev.size() + 1, where.dev + "/") != 0 ||
        (device[0] != '/' && (device[0] == '.' || device.find('/') != std::string::npos)) ||
        !serialPort(tty)) {
        return fail(kBadArguments, "invalid device '" + device + "': a serial port in " + where.dev);
    }

    struct stat folder {};
    if (stat(where.peers.c_str(), &folder) != 0 || !S_ISDIR(folder.st_mode) ||
        access(where.peers.c_str(), W_OK) != 0) {
        return fail(kCannotWrite, "cannot write to " + where.peers +
                                      ": the service needs the rights to create files "
                                      "there (run it through pkexec, or as root)");
    }
    umask(022);
    const DialupPeer::FolderLock lock(where.peers);
    const std::string peer = where.peers + "/" + service;
    struct stat existing {};
    if (lstat(peer.c_str(), &existing) == 0) {
        const long madeFor = S_ISREG(existing.st_mode) ? DialupPeer::ownerOf(DialupPeer::readHead(peer)) : -1;
        if (madeFor != static_cast<long>(owner)) {
            return fail(kNotYours, peer + " belongs to another user; choose another service number");
        }
    }
    if (!writeAtomically(where.peers, service, DialupPeer::peerText(service, tty, owner, options))) {
        return fail(kCannotWrite, "cannot write " + peer + ": " + std::strerror(errno));
    }
    const std::string script = chatScript();
    if (!script.empty() && !where.chatscripts.empty() && access(where.chatscripts.c_str(), W_OK) == 0 &&
        !writeAtomically(where.chatscripts, kChatScript, script)) {
        return fail(kCannotWrite, "cannot write the modem script in " + where.chatscripts);
    }
    std::printf("%s: created %s for %s\n", kMe, peer.c_str(), tty.c_str());
    return kWritten;
}
