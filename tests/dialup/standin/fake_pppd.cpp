// A stand-in for pppd, for machines without kernel PPP. It takes pppd's arguments ("call NAME",
// "file PATH", "nodetach"), reads the peer file (from DIALTONE_PEERS_DIR) and the options file as pppd
// does, opens the peer's tty in raw mode, runs the connect script on it, and then plays an established
// link: the linkname pid file (in DIALTONE_PPP_RUN_DIR) gets the pid and the interface name, and the
// interface "ppp<unit>" comes up, either as a real TUN interface (DIALTONE_FAKE_PPPD_TUN=1, root, a
// network namespace of its own) that echoes what it is sent, or as a folder in DIALTONE_NET_DIR with
// "flags" and "statistics/{rx,tx}_bytes" that the test writes. SIGTERM, SIGINT or SIGHUP end the link
// (exit 5, as pppd); a failed connect script exits 8, a tty hang-up 16.
#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <linux/if_tun.h>
#include <map>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace {

std::string env(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

// pppd's option words as the peer and options files have them: blanks separate, '#' starts a comment, double
// quotes group, a backslash in them escapes.
std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string word; in >> std::ws && in.peek() != EOF;) {
        if (in.peek() == '#') {
            std::getline(in, word);
        } else if (in >> std::quoted(word)) {
            out.push_back(word);
        }
    }
    return out;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::trunc) << text;
}

struct Options {
    std::string device;
    std::map<std::string, std::string> values; // options with one argument; the others are ignored
};

void parse(const std::vector<std::string>& list, Options& options) {
    static const char* const withArgument[] = {
        "connect",          "user", "password", "linkname",   "ipparam", "unit", "lcp-echo-interval",
        "lcp-echo-failure", "idle", "maxfail",  "remotename", "file",    "call", "disconnect"};
    for (size_t i = 0; i < list.size(); ++i) {
        const bool takesArgument =
            std::find(std::begin(withArgument), std::end(withArgument), list[i]) != std::end(withArgument);
        if (takesArgument && i + 1 < list.size()) {
            options.values[list[i]] = list[i + 1];
            ++i;
        } else if (!list[i].empty() && list[i][0] == '/') {
            options.device = list[i];
        }
    }
}

int runConnectScript(const std::string& script, int tty) {
    const pid_t child = fork();
    if (child == 0) {
        dup2(tty, STDIN_FILENO);
        dup2(tty, STDOUT_FILENO);
        execl("/bin/sh", "sh", "-c", script.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

// A TUN interface named like pppd's, with pppd's default addresses, up.
int createTun(const std::string& name) {
    const int fd = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
    if (fd < 0)
        return -1;
    ifreq request{};
    request.ifr_flags = IFF_TUN | IFF_NO_PI;
    std::strncpy(request.ifr_name, name.c_str(), IFNAMSIZ - 1);
    const int sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    auto setAddress = [&](unsigned long command, const char* address) {
        auto* in = reinterpret_cast<sockaddr_in*>(&request.ifr_addr);
        in->sin_family = AF_INET;
        inet_pton(AF_INET, address, &in->sin_addr);
        return ioctl(sock, command, &request) == 0;
    };
    bool ok = ioctl(fd, TUNSETIFF, &request) == 0 && setAddress(SIOCSIFADDR, "10.64.64.64") &&
              setAddress(SIOCSIFDSTADDR, "10.112.112.112");
    request.ifr_flags = IFF_UP | IFF_POINTOPOINT | IFF_RUNNING | IFF_NOARP;
    ok = ok && ioctl(sock, SIOCSIFFLAGS, &request) == 0;
    close(sock);
    if (!ok) {
        close(fd);
        return -1;
    }
    return fd;
}

} // namespace

int main(int argc, char** argv) {
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    for (const int stop : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&stopSignals, stop);
    sigprocmask(SIG_BLOCK, &stopSignals, nullptr);
    const int signals = signalfd(-1, &stopSignals, SFD_CLOEXEC);

    Options options;
    parse(std::vector<std::string>(argv + 1, argv + argc), options);
    if (options.values.count("call")) {
        parse(words(readFile(env("DIALTONE_PEERS_DIR", "/etc/ppp/peers") + "/" + options.values["call"])),
              options);
    }
    if (options.values.count("file"))
        parse(words(readFile(options.values["file"])), options);
    if (options.device.empty()) {
        std::fprintf(stderr, "fake pppd: no device\n");
        return 2;
    }
    const int tty = open(options.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (tty < 0) {
        std::fprintf(stderr, "fake pppd: cannot open %s: %s\n", options.device.c_str(), std::strerror(errno));
        return 3;
    }
    termios mode{};
    tcgetattr(tty, &mode);
    cfmakeraw(&mode);
    tcsetattr(tty, TCSANOW, &mode);

    if (options.values.count("connect") && runConnectScript(options.values["connect"], tty) != 0) {
        std::fprintf(stderr, "fake pppd: connect script failed\n");
        return 8;
    }

    const std::string interface =
        "ppp" + (options.values.count("unit") ? options.values["unit"] : std::string("0"));
    const bool tun = env("DIALTONE_FAKE_PPPD_TUN", "") == "1";
    const std::string netDir = env("DIALTONE_NET_DIR", "/sys/class/net") + "/" + interface;
    int tunFd = -1;
    if (tun) {
        tunFd = createTun(interface);
        if (tunFd < 0) {
            std::fprintf(stderr, "fake pppd: no TUN interface: %s\n", std::strerror(errno));
            return 4;
        }
        // An IPv4 UDP packet from the peer to us, as if the network sent something. The interface counts
        // it whatever IP then makes of it, so its header goes without a checksum.
        unsigned char packet[64] = {0x45, 0, 0, 64, 0, 0, 0, 0, 64, 17}; // length 64, time to live 64, UDP
        inet_pton(AF_INET, "10.112.112.112", &packet[12]);
        inet_pton(AF_INET, "10.64.64.64", &packet[16]);
        [[maybe_unused]] const ssize_t written = write(tunFd, packet, sizeof packet);
    } else {
        mkdir(netDir.c_str(), 0755);
        mkdir((netDir + "/statistics").c_str(), 0755);
        writeFile(netDir + "/statistics/rx_bytes", "0\n");
        writeFile(netDir + "/statistics/tx_bytes", "0\n");
        writeFile(netDir + "/flags", "0x1091\n");
    }
    std::string pidFile;
    if (options.values.count("linkname")) {
        pidFile = env("DIALTONE_PPP_RUN_DIR", "/run") + "/ppp-" + options.values["linkname"] + ".pid";
        writeFile(pidFile, std::to_string(getpid()) + "\n" + interface + "\n");
    }

    int exitCode = 5;
    for (;;) {
        pollfd fds[3] = {{signals, POLLIN, 0}, {tty, 0, 0}, {tunFd, POLLIN, 0}};
        if (poll(fds, tunFd >= 0 ? 3 : 2, -1) < 0 && errno != EINTR)
            break;
        if (fds[0].revents & POLLIN)
            break;
        if (fds[1].revents & (POLLHUP | POLLERR)) {
            exitCode = 16;
            break;
        }
        if (tunFd >= 0 && (fds[2].revents & POLLIN)) {
            unsigned char packet[2048];
            const ssize_t size = read(tunFd, packet, sizeof packet);
            if (size >= 20) {
                [[maybe_unused]] const ssize_t written = write(tunFd, packet, static_cast<size_t>(size));
            }
        }
    }
    if (!pidFile.empty())
        unlink(pidFile.c_str());
    if (tunFd >= 0) {
        close(tunFd);
    } else {
        writeFile(netDir + "/flags", "0x1090\n");
    }
    return exitCode;
}
