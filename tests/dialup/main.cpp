#include "DialupTestSupport.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

std::string g_tunUnavailable = "not tried";

namespace {

// Byte counters on a real interface need a TUN device in a network namespace of this program's own, with
// /sys mounted again so that /sys/class/net shows that namespace. That takes root; otherwise the TUN
// test skips and the counters are tested through a statistics folder only. It must happen before any
// thread starts. Returns why not, or nothing.
std::string enterPrivateNetwork() {
    if (geteuid() != 0)
        return "needs root for a network namespace";
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0)
        return std::string("unshare: ") + std::strerror(errno);
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("sysfs", "/sys", "sysfs", 0, nullptr) != 0)
        return std::string("remounting /sys: ") + std::strerror(errno);
    const int tun = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
    if (tun < 0)
        return std::string("/dev/net/tun: ") + std::strerror(errno);
    close(tun);
    return {};
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    g_tunUnavailable = enterPrivateNetwork();
    QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
