// Hostile names reach outside programs as single arguments; SIM secrets stay out of the log and the debug
// texts; private folders and files are the owner's alone.
#include "AppConfig.h"
#include "ChildProcess.h"
#include "ComOperation.h"
#include "DeviceUtility.h"
#include "PinUtility.h"
#include "PtyPeer.h"
#include "QtEventLoop.h"
#include "ScriptedAtFake.h"
#include "TempHome.h"
#include "UserDataFolder.h"
#include "WorkThread.h"

#include <QDir>
#include <QFileInfo>

#include <functional>
#include <string>

#include <sys/stat.h>

namespace {

// Arguments a shell would act on; the marker file exists only if one of them ran as a command.
QStringList hostileArguments(const QString& marker) {
    // clang-format off
    return {"it's", "say \"hi\"", QString("$(touch %1)").arg(marker), QString("`touch %1`").arg(marker), QString("x; touch %1").arg(marker),
            QString("x && touch %1 || touch %1").arg(marker), QString("x | touch %1").arg(marker), QString("line one\ntouch %1").arg(marker),
            "*", QString()};
    // clang-format on
}

// A program that writes each argument it gets, NUL-terminated, to its output file.
struct ArgumentRecorder {
    ArgumentRecorder() {
        TempHome::writeFile(program(),
                            QStringLiteral("#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\"; done "
                                           "> '%1.tmp' && mv '%1.tmp' '%1'\n")
                                .arg(output())
                                .toUtf8());
        QFile::setPermissions(program(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QString program() const { return _dir.path() + "/record.sh"; }
    QString output() const { return _dir.path() + "/arguments"; }
    QString marker() const { return _dir.path() + "/ran"; }
    QStringList received() const {
        QStringList arguments;
        const QByteArray bytes = TempHome::readFile(output());
        for (qsizetype at = 0, end; (end = bytes.indexOf('\0', at)) >= 0; at = end + 1)
            arguments << QString::fromUtf8(bytes.mid(at, end - at));
        return arguments;
    }
    QTemporaryDir _dir;
};

TEST(Security, ChildProcessPassesHostileArgumentsWhole) {
    ensureApplication();
    const auto spawn = [](const QString& p, const QStringList& a) {
        const pid_t pid = ChildProcess::spawn(p, a);
        int status = -1;
        return pid > 0 && waitFor([&] { return ChildProcess::reap(pid, status); }) && status == 0;
    };
    // clang-format off
    const struct { const char* name; std::function<bool(const QString&, const QStringList&)> start; } ways[] = {
        {"run", [](const QString& p, const QStringList& a) { return ChildProcess::run(p, a, 10000) == 0; }},
        {"spawn", spawn},
        {"startDetached", [](const QString& p, const QStringList& a) { return ChildProcess::startDetached(p, a); }},
    };
    // clang-format on
    for (const auto& way : ways) {
        SCOPED_TRACE(way.name);
        ArgumentRecorder recorder;
        const QStringList arguments = hostileArguments(recorder.marker());
        ASSERT_TRUE(way.start(recorder.program(), arguments));
        ASSERT_TRUE(waitFor([&] { return QFileInfo::exists(recorder.output()); }));
        EXPECT_EQ(recorder.received(), arguments);
        EXPECT_FALSE(QFileInfo::exists(recorder.marker()));
    }
}

TEST(Security, EjectGetsTheVolumeNameAsOneArgument) {
    ArgumentRecorder recorder;
    qputenv("DIALTONE_EJECT", QFile::encodeName(recorder.program()));
    for (const QString& name : hostileArguments(recorder.marker())) {
        SCOPED_TRACE(name.toStdString());
        QFile::remove(recorder.output());
        const QString volume = QStringLiteral("/media/") + name;
        EXPECT_TRUE(DeviceUtility::ejectDisk(volume));
        EXPECT_EQ(recorder.received(), QStringList{volume});
        EXPECT_FALSE(QFileInfo::exists(recorder.marker()));
    }
    qunsetenv("DIALTONE_EJECT");
}

mode_t modeOf(const QString& path) {
    struct stat info {};
    return stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777 : 0;
}

TEST(Security, PrivateFoldersAndFiles) {
    TempHome home;
    QDir().mkpath(home.userData());
    chmod(QFile::encodeName(home.userData()).constData(), 0755); // opened by hand
    EXPECT_EQ(modeOf(UserDataFolder::configPath()), 0700u);
    EXPECT_EQ(modeOf(UserDataFolder::dataPath()), 0700u) << "an open folder is closed";

    AppConfig config;
    APNInfo profile;
    profile.strPassword = QStringLiteral("s3cret");
    config.addUserAPNItem(profile);
    EXPECT_EQ(modeOf(home.userFile("UserAPNList.plist")), 0600u);
    config.getFixApnByIMSI(QStringLiteral("262011234567890"), QString());
    EXPECT_EQ(modeOf(home.userFile("UserIMSIAPNList.plist")), 0600u);
}

TEST(Security, SecretsMasked) {
    // clang-format off
    const struct { std::string text; std::string masked; } rows[] = {
        {"AT+CPIN=\"1234\"\r", "AT+CPIN=\"****\"\r"},
        {"AT+CPIN=\"12345678\",\"4321\"\r", "AT+CPIN=\"****\",\"****\"\r"},
        {"at+cpin=1234\r", "at+cpin=****\r"},
        {"AT+CLCK=\"SC\",1,\"1234\"\r", "AT+CLCK=\"SC\",1,\"****\"\r"},
        {"AT+CLCK=\"SC\",0,\"1234\",7\r", "AT+CLCK=\"SC\",0,\"****\",7\r"},
        {"AT+CLCK=\"SC\",2\r", "AT+CLCK=\"SC\",2\r"},
        {"AT+CPWD=\"SC\",\"1234\",\"4321\"\r", "AT+CPWD=\"SC\",\"****\",\"****\"\r"},
        {"AT+CPWD=\"P2\",\"12,34\",\"43;21\"", "AT+CPWD=\"P2\",\"****\",\"****\""},
        {"AT+CPIN=\"12", "AT+CPIN=\"****"},
        // Codes holding quotes or commas split into odd arguments; none of their characters shows.
        {"AT+CLCK=\"SC\",1,\"1\",2\"\r", "AT+CLCK=\"SC\",1,\"****\",****\r"},
        {"AT+CLCK=\"SC\",1,\"1\",7,\"\"\r", "AT+CLCK=\"SC\",1,\"****\",****,\"****\"\r"},
        {"AT+CPWD=\"SC\",12,34,56\r", "AT+CPWD=\"SC\",****,****,****\r"},
        {"AT+CPIN=", "AT+CPIN="},
        {"AT+CPIN=?\r", "AT+CPIN=?\r"},
        {"AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n", "AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"},
        {"SEND: >>\nAT+CPIN=\"1234\"\r then AT+CLCK=\"SC\",1,\"9876\";+CPIN=5555\r\nOK", "SEND: >>\nAT+CPIN=\"****\"\r then AT+CLCK=\"SC\",1,\"****\";+CPIN=****\r\nOK"},
        {"AT+CSQ\r\r\n+CSQ: 20,99\r\n", "AT+CSQ\r\r\n+CSQ: 20,99\r\n"},
        {"", ""},
        {"+", "+"},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(MaskSecrets(row.text), row.masked) << ScriptedAtFake::Printable(row.text);
}

// The PIN family on the worker's channel, with a modem that echoes every command and adds a report (the
// channel prints what is left of the answer around it): neither the log nor the debug texts show a PIN
// or a PUK.
TEST(Security, PinCommandsLeaveNoSecretInLogOrDebugTexts) {
    TempHome home;
    const QString log = home.openLog();
    ASSERT_FALSE(log.isEmpty());
    DebugCapture debug;

    PtyPeer modem;
    modem.setHandler([](const std::string& command) {
        return PtyPeer::Answer{{{}, command + "\r\n+CMTI: \"SM\",3\r\n\r\nOK\r\n"}};
    });
    ComOperation* const channel = ComOperation::GetInstance();
    ASSERT_EQ(channel->openCom(modem.slavePath().c_str()), 0);
    CPinUtility pin;
    pin.RegisterExecAT(&g_ExecAT);
    EXPECT_EQ(pin.Verify("7391"), 0);
    EXPECT_EQ(pin.VerifyPuk("86420135", "5820"), 0);
    EXPECT_EQ(pin.Change("7391", "5820"), 0);
    EXPECT_EQ(pin.Enable(1, "5820"), 0);
    EXPECT_EQ(pin.Enable(0, "5820"), 0);
    channel->closeCom();
    UnsolicitedReportList* reports = nullptr;
    channel->getUnsoliciteReportList(reports);
    for (UnsolicitedReportDataType* report : *reports)
        delete report;
    reports->clear();

    const QByteArray debugText = debug.text();
    const QByteArray logText = TempHome::readFile(log);
    EXPECT_EQ(modem.received().size(), 5u);
    EXPECT_TRUE(logText.contains("AT+CPIN=\"****\",\"****\"")) << "the traffic is logged, masked";
    EXPECT_TRUE(debugText.contains("AT+CPWD=\"SC\",\"****\",\"****\"")) << debugText.toStdString();
    for (const char* secret : {"7391", "86420135", "5820"}) {
        EXPECT_FALSE(logText.contains(secret)) << secret << " in\n" << logText.toStdString();
        EXPECT_FALSE(debugText.contains(secret)) << secret << " in\n" << debugText.toStdString();
    }
}

} // namespace
