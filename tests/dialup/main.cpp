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
// thread starts.
void enterPrivateNetwork() {
    if (geteuid() != 0) {
        g_tunUnavailable = "needs root for a network namespace";
        return;
    }
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) {
        g_tunUnavailable = std::string("unshare: ") + std::strerror(errno);
        return;
    }
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("sysfs", "/sys", "sysfs", 0, nullptr) != 0) {
        g_tunUnavailable = std::string("remounting /sys: ") + std::strerror(errno);
        return;
    }
    const int tun = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
    if (tun < 0) {
        g_tunUnavailable = std::string("/dev/net/tun: ") + std::strerror(errno);
        return;
    }
    close(tun);
    g_tunUnavailable.clear();
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    enterPrivateNetwork();
    QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
