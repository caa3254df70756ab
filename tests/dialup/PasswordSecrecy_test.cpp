// The dial's password: only in the private options file, never in a command line nor in the log.
#include "CNSLog.h"
#include "DialupTestSupport.h"

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace {

mode_t modeOf(const QString& path) {
    struct stat info {};
    return stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777 : 0;
}

// The log switched on in the world's home for the test's length.
class LogOn {
public:
    explicit LogOn(const QString& home) : _marker(home + "/.config/dialtone/OPENLOG") {
        QDir().mkpath(QFileInfo(_marker).path());
        TempWorld::writeFile(_marker, {});
        g_CNSLog.initialize();
    }
    ~LogOn() {
        QFile::remove(_marker);
        g_CNSLog.initialize();
    }
    LogOn(const LogOn&) = delete;
    LogOn& operator=(const LogOn&) = delete;

private:
    QString _marker;
};

TEST(PasswordSecrecy, NotInCommandLinesNorInTheLog) {
    const QByteArray password = "Zq8-never-shown";
    for (const int authType : {0, 1, 2}) {
        SCOPED_TRACE(authType);
        DialWorld world;
        ASSERT_TRUE(world.modem.isOpen());
        LogOn logOn(world.home());
        const QString log = g_CNSLog.logFilePath();
        ASSERT_FALSE(log.isEmpty());
        ASSERT_EQ(DialWorld::createService(), 0);
        ClockedNetworkOperator network{DialWorld::kDevice};
        ASSERT_EQ(network.initModem(), 0);
        world.scriptModem();

        BLConnectDialinfo info = dialInfo(authType);
        info.strPassword = QString::fromLatin1(password);
        ASSERT_EQ(network.dialByDialInfo(info), 0);
        ASSERT_TRUE(world.waitForDial());
        const QString options = network.modemOperator().connection()->optionsFilePath();
        EXPECT_TRUE(TempWorld::readFile(options).contains(password)) << "handed to pppd in its file";
        EXPECT_EQ(modeOf(options), 0600u);
        EXPECT_EQ(modeOf(QFileInfo(options).path()), 0700u);
        EXPECT_EQ(modeOf(world.home() + "/.local/share/dialtone"), 0700u);
        EXPECT_FALSE(allCommandLines().contains(password)) << "while dialling";

        world.connect();
        ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 2; }));
        EXPECT_FALSE(allCommandLines().contains(password)) << "while connected";
        EXPECT_EQ(network.disconnectNetwork(), 0);
        ASSERT_TRUE(waitFor([&] { return network.connectStatus() == 0; }));

        const QByteArray logText = TempWorld::readFile(log);
        EXPECT_TRUE(logText.contains("START DIAL")) << "the dial was logged";
        EXPECT_FALSE(logText.contains(password)) << logText.toStdString();
    }
}

} // namespace
