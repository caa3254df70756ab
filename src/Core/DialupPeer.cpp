#include "DialupPeer.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace DialupPeer {

namespace {

constexpr char kOwnerTag[] = "# owner uid ";

bool exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0 || errno != ENOENT;
}

} // namespace

int numberOf(const std::string& name) {
    const std::string prefix = kPrefix;
    if (name.size() <= prefix.size() || name.size() > prefix.size() + 5 ||
        name.compare(0, prefix.size(), prefix) != 0 || name[prefix.size()] == '0') {
        return 0;
    }
    int number = 0;
    for (std::size_t i = prefix.size(); i < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9') {
            return 0;
        }
        number = number * 10 + (name[i] - '0');
    }
    return number;
}

std::string nameOf(int number) {
    return kPrefix + std::to_string(number);
}

long ownerOf(const std::string& text) {
    // Only the header counts: comment lines before the first option.
    std::size_t line = 0;
    while (line < text.size() && text[line] == '#') {
        const std::size_t end = text.find('\n', line);
        const std::string current =
            text.substr(line, end == std::string::npos ? std::string::npos : end - line);
        if (current.rfind(kOwnerTag, 0) == 0) {
            const std::string digits = current.substr(sizeof kOwnerTag - 1);
            if (digits.empty() || digits.size() > 10 ||
                digits.find_first_not_of("0123456789") != std::string::npos) {
                return -1;
            }
            const long uid = std::stol(digits);
            return uid <= 0xfffffffeL ? uid : -1;
        }
        if (end == std::string::npos) {
            break;
        }
        line = end + 1;
    }
    return -1;
}

std::string readHead(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return {};
    }
    char buffer[4096];
    const ssize_t n = read(fd, buffer, sizeof buffer);
    close(fd);
    return n > 0 ? std::string(buffer, static_cast<std::size_t>(n)) : std::string();
}

std::string peerText(const std::string& service, const std::string& tty, uid_t uid,
                     const std::set<std::string>& options) {
    std::string text =
        "# Dial-up service " + service + " on the HSPA stick's dial port, made by VELModemService.\n";
    text += kOwnerTag + std::to_string(uid) + "\n";
    text += "# The connection manager adds the modem script, the account and the options of each dial.\n";
    text += tty + "\n460800\ncrtscts\nmodem\nlock\nnoauth\nnoipdefault\ndefaultroute\nnoccp\nnovj\n";
    text += "linkname " + service + "\nmaxfail 1\n";
    for (const std::string& option : options) {
        text += option + "\n";
    }
    return text;
}

FolderLock::FolderLock(const std::string& folder) {
    _fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (_fd >= 0 && flock(_fd, LOCK_EX) != 0) {
        close(_fd);
        _fd = -1;
    }
}

FolderLock::~FolderLock() {
    if (_fd >= 0) {
        close(_fd); // releases the lock
    }
}

std::string choose(const std::string& folder, uid_t uid, int preferred, const std::set<int>& skip) {
    const auto usable = [&](int number, bool ownAllowed) {
        if (skip.count(number) != 0) {
            return false;
        }
        const std::string path = folder + "/" + nameOf(number);
        if (!exists(path)) {
            return true;
        }
        return ownAllowed && ownerOf(readHead(path)) == static_cast<long>(uid);
    };
    if (preferred >= 1 && preferred <= kMaxNumber && usable(preferred, true)) {
        return nameOf(preferred);
    }
    for (int number = 1; number <= kMaxNumber; ++number) {
        if (usable(number, false)) {
            return nameOf(number);
        }
    }
    return {};
}

} // namespace DialupPeer
