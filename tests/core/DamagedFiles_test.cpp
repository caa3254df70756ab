// The program starts with defaults after a damaged file and keeps the file aside, never deleting it.
#include "AppConfig.h"
#include "DamagedFile.h"
#include "PropertyList.h"
#include "SMS/SMSStorage.h"
#include "SMSExt.h"
#include "Statistics/TrafficStatics.h"
#include "TempHome.h"
#include "UserDefaults.h"

#include <QDir>
#include <QFileInfo>

#include <functional>
#include <optional>
#include <string>

namespace {

const QByteArray kDictFile = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                             "<key>SMS_VP</key><integer>167</integer>"
                             "<key>SOUND_CONNECT</key><string>FALSE</string></dict></plist>\n";
const QByteArray kListFile = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><array>"
                             "<dict><key>account</key><string>Office</string></dict></array></plist>\n";
const QByteArray kIniFile = "[General]\nCreatedModemNumber=4\n";
const QByteArray kGarbage = QByteArray::fromHex("00ff13bfd8e7a1004c62706c6973743030ffff7f0a0d00");

enum class Root { Dict, List, Ini };

// One kept file: where it lives, what its sound content looks like, and the code that reads it (start
// builds the program object that reads the file).
// clang-format off
struct KeptFile { const char* name; Root root; std::function<QString(const TempHome&)> path; std::function<void(const TempHome&)> start; };
// clang-format on

const QString kImsi = QStringLiteral("262011234567890");

// clang-format off
const KeptFile kFiles[] = {
    {"SystemConfig.plist", Root::Dict, [](const TempHome& h) { return h.configFile("SystemConfig.plist"); }, [](const TempHome&) { AppConfig config; EXPECT_EQ(config.getSMSValidityPeriod(), 0); EXPECT_TRUE(config.getConnectSoundEnable()); }},
    {"UserAPNList.plist", Root::List, [](const TempHome& h) { return h.userFile("UserAPNList.plist"); }, [](const TempHome&) { EXPECT_TRUE(AppConfig().getUserApnList().isEmpty()); }},
    {"UserIMSIAPNList.plist", Root::Dict, [](const TempHome& h) { return h.userFile("UserIMSIAPNList.plist"); }, [](const TempHome& h) {
         AppConfig().getFixApnByIMSI(kImsi, QString());
         EXPECT_TRUE(PropertyList::readMap(h.userFile("UserIMSIAPNList.plist")).contains(kImsi)) << "a new per-SIM file"; }},
    {"LocalSMS.plist", Root::Dict, [](const TempHome& h) { return h.userFile("LocalSMS.plist"); }, [](const TempHome&) { EXPECT_TRUE(SMSStorage().getDarftList().isEmpty()); }},
    {"SMSInBox_<IMSI>", Root::Dict, [](const TempHome& h) { return h.userFile("SMSInBox_" + kImsi); }, [](const TempHome&) { EXPECT_TRUE(SMSStorage(kImsi).getOutBoxList().isEmpty()); }},
    {"SmsInBoxPC.plist", Root::Dict, [](const TempHome& h) { return h.userFile("SmsInBoxPC.plist"); }, [](const TempHome&) {
         std::list<TSMSRecordInPC> records; SMSExt::shared().list(kImsi, records); EXPECT_TRUE(records.empty()); }},
    {"DateTraffics.plist", Root::Dict, [](const TempHome& h) { return h.userFile("DateTraffics.plist"); }, [](const TempHome&) {
         AppConfig config; EXPECT_EQ(TrafficStatics(config).getDateTrafficsDictionary().keys(), QStringList{"CREATION_TIME"}) << "a new day file"; }},
    {"defaults.ini", Root::Ini, [](const TempHome&) { return UserDefaults::filePath(); }, [](const TempHome&) {
         EXPECT_EQ(UserDefaults::value(QStringLiteral("CreatedModemNumber"), 0).toInt(), 0); EXPECT_TRUE(UserDefaults::setValue(QStringLiteral("CreatedModemNumber"), 1)); }},
};
// clang-format on

QByteArray soundBytes(Root root) {
    return root == Root::Dict ? kDictFile : root == Root::List ? kListFile : kIniFile;
}

// clang-format off
// bytes: nullopt: no file at all, which is created as before: nothing kept, nothing said.
const struct Damage { const char* name; std::function<std::optional<QByteArray>(Root)> bytes; bool damagesIni; /* an empty settings file is a valid one */ } kDamages[] = {
    {"absent", [](Root) { return std::nullopt; }, false},
    {"empty", [](Root) { return QByteArray(); }, false},
    {"truncated", [](Root root) { return soundBytes(root).left(soundBytes(root).size() * 2 / 3 - 3); }, true},
    {"garbage", [](Root) { return kGarbage; }, true},
    {"wrong root", [](Root root) { return root == Root::List ? kDictFile : kListFile; }, true},
};
// clang-format on

QStringList keptCopies(const QString& path) {
    const QFileInfo info(path);
    return info.dir().entryList({info.fileName() + ".damaged-*"}, QDir::Files | QDir::Hidden, QDir::Name);
}

class DamagedFiles : public testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + "/.config"));
        DamagedFile::setNoticeStream(notices.file);
    }
    void TearDown() override {
        DamagedFile::setNoticeStream(stderr);
        qunsetenv("XDG_CONFIG_HOME");
    }

    TempHome home;
    ScratchStream notices;
};

TEST_F(DamagedFiles, KeptAsideAndStartedWithDefaults) {
    for (const KeptFile& file : kFiles) {
        for (const Damage& damage : kDamages) {
            SCOPED_TRACE(std::string(file.name) + ", " + damage.name);
            ScratchStream said;
            DamagedFile::setNoticeStream(said.file);
            TempHome fresh;
            qputenv("XDG_CONFIG_HOME", QFile::encodeName(fresh.path() + "/.config"));
            const QString log = fresh.openLog();
            const QString path = file.path(fresh);
            QDir().mkpath(QFileInfo(path).path());
            const std::optional<QByteArray> read = damage.bytes(file.root);
            const QByteArray bytes = read.value_or(QByteArray());
            if (read)
                TempHome::writeFile(path, bytes);
            file.start(fresh);
            QStringList kept = keptCopies(path);
            if (!read || (file.root == Root::Ini && !damage.damagesIni)) {
                EXPECT_TRUE(kept.isEmpty()) << kept.join(' ').toStdString();
                EXPECT_TRUE(read || said.text().isEmpty()) << said.text().toStdString();
                continue;
            }
            ASSERT_EQ(kept.size(), 1);
            const QString first = QFileInfo(path).dir().filePath(kept[0]);
            EXPECT_EQ(TempHome::readFile(first), bytes) << "the copy holds the original bytes";
            EXPECT_TRUE(TempHome::readFile(log).contains("[-CNSLOG_ERROR-]"));
            EXPECT_TRUE(TempHome::readFile(log).contains(("kept as " + first).toUtf8()));
            EXPECT_TRUE(said.text().contains(first.toUtf8())) << "the notice names the copy";

            // Damaged again within the same second: the earlier copy stays.
            TempHome::writeFile(path, bytes + "x");
            file.start(fresh);
            kept = keptCopies(path);
            ASSERT_EQ(kept.size(), 2);
            EXPECT_EQ(TempHome::readFile(first), bytes);
            const QString second =
                QFileInfo(path).dir().filePath(kept[0] == QFileInfo(first).fileName() ? kept[1] : kept[0]);
            EXPECT_EQ(TempHome::readFile(second), bytes + "x");
        }
    }
}

// Entries of the wrong shape in a sound file are skipped, counted in a notice, and the file is kept as it
// was.
TEST_F(DamagedFiles, WrongEntriesAreCounted) {
    const auto plist = [](const char* body) {
        return QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>") + body + "</dict></plist>";
    };
    // clang-format off
    const struct { const char* file; QByteArray bytes; const char* notice; std::function<void()> read; } rows[] = {
        {"SMSInBox_262011234567890", plist("<key>OUTBOX</key><array><string>x</string><dict/></array><key>DRAFT</key><integer>1</integer>"), " holds 2 wrong entries", [] { SMSStorage store(kImsi); }},
        {"SmsInBoxPC.plist", plist("<key>262011234567890</key><array><dict><key>SMS_REF</key><string>1</string></dict></array>"), " holds 1 wrong entry", [] { std::list<TSMSRecordInPC> records; SMSExt::shared().list(kImsi, records); }},
        {"DateTraffics.plist", plist("<key>2024/01/31</key><string>x</string><key>2024/02/01</key><dict/><key>2024/02/02</key><array/>"), " holds 2 wrong entries", [] { AppConfig config; TrafficStatics(config).getDateTrafficsDictionary(); }},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        const QString path = home.userFile(row.file);
        QDir().mkpath(QFileInfo(path).path());
        TempHome::writeFile(path, row.bytes);
        row.read();
        row.read(); // the same bytes again: kept once
        EXPECT_TRUE(notices.text().contains(path.toUtf8() + row.notice)) << notices.text().toStdString();
        const QStringList kept = keptCopies(path);
        ASSERT_EQ(kept.size(), 1);
        EXPECT_EQ(TempHome::readFile(QFileInfo(path).dir().filePath(kept[0])), row.bytes);
    }
}

// root: 0 for a settings file, else the property list's root type.
TEST_F(DamagedFiles, ReaderTellsAbsentGoodAndDamagedApart) {
    const QString path = home.path() + "/probe";
    // clang-format off
    const struct { const char* name; std::optional<QByteArray> bytes; int root; DamagedFile::State state; } rows[] = {
        {"absent", std::nullopt, QMetaType::QVariantMap, DamagedFile::State::Absent},
        {"dictionary", kDictFile, QMetaType::QVariantMap, DamagedFile::State::Good},
        {"array", kListFile, QMetaType::QVariantList, DamagedFile::State::Good},
        {"array for a dictionary", kListFile, QMetaType::QVariantMap, DamagedFile::State::Damaged},
        {"garbage", kGarbage, QMetaType::QVariantList, DamagedFile::State::Damaged},
        {"settings as written", "[General]\nCreatedModemNumber=4\n\n[Sms]\nstorage=pc\n", 0, DamagedFile::State::Good},
        {"settings with comments", "; note\n# note\nkey=value", 0, DamagedFile::State::Good},
        {"empty settings", "", 0, DamagedFile::State::Good},
        {"settings cut in a key", "[General]\nCreatedMod", 0, DamagedFile::State::Damaged},
        {"settings cut in a section", "[Gene", 0, DamagedFile::State::Damaged},
        {"NUL byte in settings", QByteArray("key=va\0lue\n", 11), 0, DamagedFile::State::Damaged},
        {"invalid UTF-8 in settings", "key=\xc3\x28\n", 0, DamagedFile::State::Damaged},
        {"property list for settings", kDictFile, 0, DamagedFile::State::Damaged},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QFile::remove(path);
        if (row.bytes)
            TempHome::writeFile(path, *row.bytes);
        if (row.root == 0) {
            EXPECT_EQ(DamagedFile::checkSettingsFile(path), row.state);
            continue;
        }
        QVariant content;
        EXPECT_EQ(DamagedFile::readPropertyList(path, row.root, content), row.state);
        EXPECT_EQ(content.isValid(), row.state == DamagedFile::State::Good);
        EXPECT_EQ(QFileInfo::exists(path), row.state == DamagedFile::State::Good) << "only good files stay";
    }
}

} // namespace
