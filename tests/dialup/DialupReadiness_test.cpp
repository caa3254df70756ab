#include "DialupReadiness.h"
#include "DialupTestSupport.h"

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using DialupReadiness::Facts;
using DialupReadiness::Finding;

// What a user is told about pppd, the group dip and the peers folder, for the rights a Debian system
// gives them (pppd root:dip 4754, /etc/ppp/peers root:dip 2750).
TEST(DialupReadiness, FindingsAndTheirFixes) {
    if (getuid() != 0)
        GTEST_SKIP() << "needs root to give the files root's ownership";
    ASSERT_NE(getgrnam("dip"), nullptr);
    const gid_t dip = getgrnam("dip")->gr_gid;
    TempWorld world;
    const QString pppd = world.path("pppd");
    const QString peers = world.path("peers");
    const QString action = world.path("action.policy");
    QDir().mkpath(peers);
    chown(QFile::encodeName(peers).constData(), 0, dip);
    chmod(QFile::encodeName(peers).constData(), 02750);

    // clang-format off
    const struct { uid_t uid; bool inDip; mode_t pppdMode; bool replaced; bool pkexec; bool action; const char* failures; const char* fix; } rows[] = {
        {1000, true, 04754, false, true, true, "", ""},
        {1000, false, 04754, false, true, true, "pppd dip", "sudo adduser $USER dip"},
        {1000, true, 0755, false, true, true, "pppd", "chmod 4754"},
        {1000, true, 0, false, true, true, "pppd", "apt install ppp"},
        {1000, true, 0700, true, true, true, "", ""}, // a replaced pppd is taken as it is
        {1000, true, 04754, false, false, true, "peers", "apt install pkexec"},
        {1000, true, 04754, false, true, false, "peers", "make install"},
        {0, false, 0755, false, false, false, "", ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.uid << " " << row.inDip << " " << std::oct << row.pppdMode);
        QFile::remove(pppd);
        QFile::remove(action);
        if (row.pppdMode != 0) {
            TempWorld::writeFile(pppd, "");
            chown(QFile::encodeName(pppd).constData(), 0, dip);
            chmod(QFile::encodeName(pppd).constData(), row.pppdMode);
        }
        if (row.action)
            TempWorld::writeFile(action, "");
        const Facts facts{row.uid,
                          row.inDip ? std::vector<gid_t>{100, dip} : std::vector<gid_t>{100},
                          pppd.toStdString(),
                          row.replaced,
                          peers.toStdString(),
                          {action.toStdString()},
                          row.pkexec ? "/usr/bin/pkexec" : "",
                          "VELModemService"};
        const std::vector<Finding> findings = DialupReadiness::check(facts);
        std::string failures;
        std::string fixes;
        for (const Finding& finding : findings) {
            if (!finding.ok) {
                failures += (failures.empty() ? "" : " ") + finding.check;
                fixes += finding.fix + "\n";
            }
        }
        EXPECT_EQ(failures, row.failures);
        EXPECT_NE(fixes.find(row.fix), std::string::npos) << fixes;
        EXPECT_EQ(DialupReadiness::dialBlocker(findings) != nullptr,
                  failures.find("pppd") != std::string::npos || failures.find("dip") != std::string::npos);
    }
}

} // namespace
