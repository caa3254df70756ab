#include "SimPorts.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace modemsim {

bool PtyPort::Open(std::string& error) {
    Close();
    int master = -1;
    int slave = -1;
    char name[256] = {};
    if (openpty(&master, &slave, name, nullptr, nullptr) != 0) {
        error = std::string("openpty: ") + std::strerror(errno);
        return false;
    }
    // Raw from the start: with the default line discipline the slave would echo our own answers back.
    termios tio{};
    if (tcgetattr(slave, &tio) == 0) {
        cfmakeraw(&tio);
        tcsetattr(slave, TCSANOW, &tio);
    }
    close(slave);
    fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
    fcntl(master, F_SETFD, FD_CLOEXEC);
    master_ = master;
    path_ = name;
    connected_ = false;
    pending_.clear();
    return true;
}

void PtyPort::Close() {
    if (master_ >= 0) {
        close(master_);
    }
    master_ = -1;
    connected_ = false;
    pending_.clear();
}

bool PtyPort::Probe() {
    if (master_ < 0) {
        return false;
    }
    pollfd p{master_, POLLIN, 0};
    bool present = poll(&p, 1, 0) >= 0 && !(p.revents & POLLHUP);
    if (present == connected_) {
        return false;
    }
    connected_ = present;
    if (!present) {
        pending_.clear();
    }
    return true;
}

void PtyPort::MarkClosed() {
    connected_ = false;
    pending_.clear();
}

std::string PtyPort::Read() {
    std::string out;
    if (master_ < 0 || !connected_) {
        return out;
    }
    char buf[4096];
    for (;;) {
        ssize_t n = read(master_, buf, sizeof buf);
        if (n > 0) {
            out.append(buf, static_cast<size_t>(n));
            if (out.size() > 1 << 16) {
                break;
            }
            continue;
        }
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0 && errno == EIO) {
            MarkClosed(); // the last slave descriptor was closed
        }
        break;
    }
    return out;
}

void PtyPort::Queue(std::string_view bytes) {
    if (connected_) {
        pending_.append(bytes);
        if (pending_.size() > 1 << 20) {
            pending_.erase(0, pending_.size() - (1 << 20));
        }
    }
}

void PtyPort::Flush(Clock::time_point now, int chunkBytes, int chunkGapMs) {
    while (!pending_.empty() && master_ >= 0 && connected_) {
        if (chunkBytes > 0 && chunkGapMs > 0 && now < nextWrite_) {
            return;
        }
        size_t size =
            chunkBytes > 0 ? std::min(pending_.size(), static_cast<size_t>(chunkBytes)) : pending_.size();
        ssize_t n = write(master_, pending_.data(), size);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == EIO) {
                MarkClosed();
            }
            return; // EAGAIN: the host is not reading; try again later
        }
        pending_.erase(0, static_cast<size_t>(n));
        if (chunkBytes > 0 && chunkGapMs > 0) {
            nextWrite_ = now + std::chrono::milliseconds(chunkGapMs);
        }
    }
}

std::optional<PtyPort::Clock::time_point> PtyPort::NextWrite(Clock::time_point now) const {
    if (pending_.empty() || !connected_ || nextWrite_ <= now) {
        return std::nullopt;
    }
    return nextWrite_;
}

std::string DeviceLinks::AtName(const std::string& suffix) {
    std::string stem = suffix.empty() ? suffix : suffix.substr(0, suffix.size() - 1);
    return "cu.VELDeviceInterface" + stem + "3";
}

std::string DeviceLinks::DialName(const std::string& suffix) {
    return "cu.VELMobileConnector" + suffix;
}

bool DeviceLinks::Create(const std::string& devDir, const std::string& suffix, const std::string& atPath,
                         const std::string& dialPath, std::string& error) {
    Remove();
    std::string at = devDir + "/" + AtName(suffix);
    std::string dial = devDir + "/" + DialName(suffix);
    unlink(at.c_str());
    unlink(dial.c_str());
    // The AT port's link first: discovery starts from the dial port's name and then needs the other.
    if (symlink(atPath.c_str(), at.c_str()) != 0) {
        error = "symlink " + at + ": " + std::strerror(errno);
        return false;
    }
    atLink = at;
    if (symlink(dialPath.c_str(), dial.c_str()) != 0) {
        error = "symlink " + dial + ": " + std::strerror(errno);
        Remove();
        return false;
    }
    dialLink = dial;
    return true;
}

void DeviceLinks::Remove() {
    if (!dialLink.empty()) {
        unlink(dialLink.c_str());
    }
    if (!atLink.empty()) {
        unlink(atLink.c_str());
    }
    atLink.clear();
    dialLink.clear();
}

} // namespace modemsim
