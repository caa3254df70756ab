#include "DialupTestSupport.h"
#include "ModemOperator.h"

#include <gtest/gtest.h>

namespace {

// What pppd gets for each authentication type and name-server case.
TEST(DialOptions, PppdOptionsText) {
    TempWorld world;
    world.env.set("DIALTONE_RESOURCE_DIR", "/opt/dial tone/Resources");
    const QByteArray common =
        "connect \"/usr/sbin/chat -f '/opt/dial tone/Resources/VEL_HSPA_Modem' -T '*99#'\"\n"
        "user \"web\"\npassword \"s3cret-Pa55\"\n"
        "# no idle disconnect; its timer (5400 s) stays unused\n"
        "lcp-echo-interval 20\nlcp-echo-failure 15\n";
    // clang-format off
    const struct { int authType; QString dns1, dns2; QByteArray tail; } rows[] = {
        {0, {}, {}, "usepeerdns\n"},
        {3, {}, {}, "usepeerdns\n"},
        {0, "", "10.0.0.1", "ipparam \"DNS=10.0.0.1\"\n"},
        {0, "8.8.8.8", "", "ipparam \"DNS=8.8.8.8\"\n"},
        {1, "8.8.8.8", "8.8.4.4", "refuse-chap\nrefuse-mschap\nrefuse-mschap-v2\nrefuse-eap\nipparam \"DNS=8.8.8.8,8.8.4.4\"\n"},
        {2, "8.8.8.8", "2001:4860::8888", "refuse-pap\nrefuse-eap\nipparam \"DNS=8.8.8.8,2001:4860::8888\"\n"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "auth " << row.authType << " dns " << row.dns1.toStdString() << ","
                                        << row.dns2.toStdString());
        QByteArray text;
        ASSERT_TRUE(PPPConnection::optionsText(
            ModemOperator::dialOptions(dialInfo(row.authType, row.dns1, row.dns2)), text));
        EXPECT_EQ(text.mid(text.indexOf('\n') + 1), common + row.tail);
    }
}

// Profile fields reach pppd as single words and never as shell text; what cannot is refused.
TEST(DialOptions, UntrustedFields) {
    BLConnectDialinfo info = dialInfo(1);
    info.strAccountName = "a \"quoted\" \\ name";
    info.strPassword = "pa'ss word";
    QByteArray text;
    ASSERT_TRUE(PPPConnection::optionsText(ModemOperator::dialOptions(info), text));
    const QStringList words = PPPConnection::tokenizeOptions(text);
    EXPECT_EQ(words.at(words.indexOf("user") + 1), info.strAccountName);
    EXPECT_EQ(words.at(words.indexOf("password") + 1), info.strPassword);

    using D = BLConnectDialinfo;
    // clang-format off
    const struct { QString D::*field; QString value; } refused[] = {
        {&D::strDialNumber, "*99#'; reboot; '"}, {&D::strDialNumber, "*99# $(id)"}, {&D::strDialNumber, ""},
        {&D::strAccountName, "web\nplugin evil.so"}, {&D::strPassword, "x\ry"}, {&D::strDNS1, "8.8.8.8\"; x"},
    };
    // clang-format on
    for (const auto& row : refused) {
        SCOPED_TRACE(row.value.toStdString());
        BLConnectDialinfo bad = dialInfo();
        bad.*row.field = row.value;
        QByteArray unused;
        EXPECT_FALSE(PPPConnection::optionsText(ModemOperator::dialOptions(bad), unused));
    }
}

// initModem's codes: the device node is the interface, a peer file naming it the service.
TEST(InitModem, ResultCodes) {
    DialWorld world;
    EXPECT_EQ(ModemOperator().initModem(), 8);
    EXPECT_EQ(ModemOperator("VELMobileConnector7").initModem(), 1);
    ModemOperator modem(DialWorld::kDevice);
    EXPECT_EQ(modem.initModem(), 2) << "no peer file yet";
    EXPECT_FALSE(modem.isConnected());
    EXPECT_EQ(modem.dialByDialInfo(dialInfo()), 3);
    EXPECT_EQ(modem.disconnectNetwork(), 3);
    EXPECT_EQ(modem.onApplicationClosed(), 3);

    TempWorld::writeFile(world.peers() + "/OTHER", "/dev/ttyUSB0\n460800\nlinkname OTHER\n");
    TempWorld::writeFile(world.peers() + "/COMMENTED",
                         "# " + world.dev().toLocal8Bit() + "/cu.VELMobileConnector1\n");
    EXPECT_EQ(modem.initModem(), 2) << "peers for other ports do not count";

    ASSERT_EQ(DialWorld::createService(), 0);
    ASSERT_EQ(DialWorld::createService(DialWorld::kDevice, "VELMODEM2"), 0);
    EXPECT_EQ(modem.initModem(), 0);
    ASSERT_TRUE(modem.isConnected());
    EXPECT_EQ(modem.connection()->serviceID(), "VELMODEM1") << "the first in name order";
    EXPECT_EQ(modem.connection()->linkName(), "VELMODEM1");
    EXPECT_EQ(modem.connection()->status(), PPPConnection::kDisconnected);
    EXPECT_EQ(modem.onApplicationClosed(), 0);
    EXPECT_FALSE(modem.isConnected());

    // A dial port found by probing goes by its path, through the service tool to the peer.
    const QString probed = world.dev() + "/ttyUSB5";
    ASSERT_TRUE(QFile::link(QString::fromStdString(world.modem.slavePath()), probed));
    ModemOperator probedModem(probed);
    EXPECT_EQ(probedModem.initModem(), 2);
    ASSERT_EQ(DialWorld::createService(probed, "VELMODEM3"), 0);
    EXPECT_EQ(probedModem.initModem(), 0);
    EXPECT_EQ(probedModem.connection()->serviceID(), "VELMODEM3");
}

} // namespace
