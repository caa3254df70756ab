#include "AppConfig.h"
#include "PropertyList.h"
#include "StoreFile.h"
#include "TempHome.h"

#include <QDir>
#include <QFileInfo>

#include <string>
#include <vector>

namespace {

// Columns: account, MCC+MNC, dial number, user, password, APN, auth, SPN, unused, DNS1, DNS2.
const QByteArray kProfiles = "Net A\t20801\t*99#\t\t\torange.fr\t0\t\t\t\t\r\n"
                             "Reseller Y\t20801\t*99#\t\t\tres.y\t1\tY\t\t\t\r\n"
                             "X one\t26201\t*99#\t\t\tx1\t0\tX\t\t\t\r\n"
                             "X two\t26202\t*99#\t\t\tx2\t0\tX\t\t\t\r\n"
                             "Solo\t23415\t*99#\tweb\tsecret\tsolo.apn\t2\tSOLO\t\t8.8.8.8\t8.8.4.4\r\n"
                             "Plain\t310260\t*99#\t\t\tfast\t0\t\t\t1.1.1.1\t\r\n"
                             "Three 1\t46000\t*99#\t\t\tcmnet\t0\r\n"
                             "Three 2\t46000\t*99#\t\t\tcmwap\t0\t\r\n"
                             "Three 3\t46000\t*99#\t\t\tcmiot\t0\t\t\r\n"
                             "broken\t46000\t*99#\r\n"
                             "Plain 2\t310260\t*99#\t\t\tslow\t0\t\t\t\t";
const QByteArray kPlmn = "20801\tOrange\r\n26201\tTelekom\r\nno name here\r\n23415\tVodafone UK";

using Names = std::vector<std::string>;

Names accounts(const QList<APNInfo>& list) {
    Names out;
    for (const APNInfo& item : list)
        out.push_back(item.strAccount.toStdString());
    return out;
}

Names storedAccounts(const TempHome& home, const QString& imsi) {
    Names out;
    for (const QVariant& item :
         PropertyList::readMap(home.userFile("UserIMSIAPNList.plist")).value(imsi).toList())
        out.push_back(item.toMap().value("ACCOUNT").toString().toStdString());
    return out;
}

// A profile's fields joined by '|', a null text as "~".
std::string fields(const APNInfo& p) {
    QStringList out;
    for (const QString* text : {&p.strAccount, &p.strMCCMNC, &p.strDialNum, &p.strUserName, &p.strPassword,
                                &p.strApn, &p.strSPN, &p.strDNS1, &p.strDNS2})
        out << (text->isNull() ? QStringLiteral("~") : *text);
    return (out.join('|') + "|" + QString::number(p.nAuthType)).toStdString();
}

QVariant defaultInfo(const TempHome& home) {
    return PropertyList::readMap(home.configFile("SystemConfig.plist")).value("default APN info");
}

APNInfo profile(const QString& account, const QString& apn) {
    APNInfo info;
    info.strAccount = account;
    info.strApn = apn;
    info.strDialNum = "*99#";
    return info;
}

// Missing resources give empty tables.
TEST(AppConfig, FirstRunWritesTheFlagDefaults) {
    TempHome home;
    setenv("DIALTONE_RESOURCE_DIR", (home.path() + "/nowhere").toLocal8Bit().constData(), 1);
    AppConfig config;
    EXPECT_TRUE(config.fixedApnList().isEmpty() && config.plmnList().isEmpty() &&
                config.getUserApnList().isEmpty() && config.getUserIMSIApnList().isEmpty() &&
                !config.getDefaultUserAPNItem());
    EXPECT_EQ(config.getSMSValidityPeriod(), 0);
    EXPECT_FALSE(QFileInfo::exists(home.configFile("SystemConfig.plist")));

    EXPECT_TRUE(config.getConnectSoundEnable() && config.getDisconnectSoundEnable() &&
                config.getSMSIncomingSoundEnable());
    EXPECT_FALSE(config.getSMSDeliveryReportEnable());
    // clang-format off
    EXPECT_EQ(PropertyList::readMap(home.configFile("SystemConfig.plist")),
              (QVariantMap{{"SOUND_CONNECT", "TRUE"}, {"SOUND_DISCONNECT", "TRUE"}, {"SOUND_SMS_INCOMING", "TRUE"}, {"SOUND_SMS_DELIVERY_REPORT", "FALSE"}}));
    // clang-format on
    config.setConnectSoundEnable(false);
    config.setSMSDeliveryReportEnable(true);
    config.setSMSValidityPeriod(167);
    AppConfig again;
    EXPECT_FALSE(again.getConnectSoundEnable());
    EXPECT_TRUE(again.getSMSDeliveryReportEnable());
    EXPECT_EQ(again.getSMSValidityPeriod(), 167);
    // Only the exact text "FALSE" turns a flag off.
    EXPECT_TRUE(again.saveConfigObject("false", "SOUND_DISCONNECT"));
    EXPECT_TRUE(again.getDisconnectSoundEnable());
    EXPECT_TRUE(again.getFixApnByIMSI("208011234567890", "Y").isEmpty());
}

TEST(AppConfig, ReadsThePredefinedProfilesAndThePlmnTable) {
    TempHome home;
    home.useResources(kProfiles + "\r\n", kPlmn + "\r\n");
    AppConfig config;

    // Short lines are skipped (the trailing "\r\n" makes an empty last line); lines of 7 to 10 columns
    // keep their later fields absent.
    const QList<APNInfo> fixed = config.fixedApnList();
    ASSERT_EQ(accounts(fixed), (Names{"Net A", "Reseller Y", "X one", "X two", "Solo", "Plain", "Three 1",
                                      "Three 2", "Three 3", "Plain 2"}));
    EXPECT_EQ(fields(fixed[4]), "Solo|23415|*99#|web|secret|solo.apn|SOLO|8.8.8.8|8.8.4.4|2");
    EXPECT_EQ(fields(fixed[6]), "Three 1|46000|*99#|||cmnet|~|~|~|0");
    EXPECT_EQ(fields(fixed[7]), "Three 2|46000|*99#|||cmwap||~|~|0");

    // The PLMN table keeps an empty entry for each bad line, the empty last line included.
    ASSERT_EQ(config.plmnList().size(), 5);
    EXPECT_TRUE(config.plmnList()[2].toMap().isEmpty() && config.plmnList()[4].toMap().isEmpty());
    EXPECT_EQ(config.getOperatorNameByNumeric("23415"), "Vodafone UK");
    EXPECT_EQ(config.getOperatorNameByNumeric("20801"), "Orange");
    EXPECT_EQ(config.getOperatorNameByNumeric("2080"), "");
    EXPECT_EQ(config.getOperatorNameByNumeric(""), "");

    // The per-SIM lists keep every SIM, and their profiles without SPN and DNS.
    config.getFixApnByIMSI("234151234567890", "");
    config.getFixApnByIMSI("208011234567890", "");
    const QVariantMap perSim = PropertyList::readMap(home.userFile("UserIMSIAPNList.plist"));
    EXPECT_EQ(perSim.keys(), (QStringList{"208011234567890", "234151234567890"}));
    // clang-format off
    EXPECT_EQ(perSim.value("234151234567890").toList().value(0).toMap(),
              (QVariantMap{{"ACCOUNT", "Solo"}, {"MCCMNC", "23415"}, {"DIALNUM", "*99#"}, {"USER_NAME", "web"}, {"KEY_PASSWORD", "secret"},
                           {"APN", "solo.apn"}, {"AUTHTYPE", 2}, {"PROXY", ""}}));
    // clang-format on
}

TEST(AppConfig, ChoosesTheProfilesForASim) {
    // clang-format off
    const struct { const char* imsi; const char* spn /* nullptr: the SIM has none */; Names chosen; } rows[] = {
        {"208011234567890", "Y", {"Reseller Y"}},          // one SPN match, taken as it is
        {"234151234567890", "Y", {"Reseller Y"}},          // ... even on another network
        {"262021234567890", "X", {"X two"}},               // two SPN matches: the one of this network
        {"234151234567890", "X", {}},                      // two SPN matches, none of this network: nothing
        {"208011234567890", "", {"Net A"}},                // prefix: the SPN profile is dropped
        {"208011234567890", nullptr, {"Net A"}},
        {"208011234567890", "Unknown", {"Net A"}},         // an SPN not in the table: prefix matching
        {"262011234567890", "", {"X one"}},                // a single prefix match keeps its SPN
        {"310260123456789", "", {"Plain", "Plain 2"}},
        {"460001234567890", "", {"Three 1", "Three 2", "Three 3"}},
        {"404451234567890", "", {}},                       // no profile for this network
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.imsi) + " " + (row.spn ? row.spn : "(none)"));
        TempHome home;
        home.useResources(kProfiles, kPlmn);
        AppConfig config;
        EXPECT_EQ(accounts(config.getFixApnByIMSI(row.imsi, row.spn ? QString(row.spn) : QString())),
                  row.chosen);
        EXPECT_EQ(accounts(config.getUserIMSIApnList()), row.chosen);
        EXPECT_EQ(storedAccounts(home, row.imsi), row.chosen);
        EXPECT_EQ(config.currentIMSI(), row.imsi);
    }
}

TEST(AppConfig, DefaultProfileFollowsItsSim) {
    TempHome home;
    home.useResources(kProfiles, kPlmn);
    const QString simA = "460001234567890";
    const QString simB = "208011234567890";
    const auto defaultName = [](const AppConfig& config) {
        return config.getDefaultUserAPNItem() ? config.getDefaultUserAPNItem()->strAccount.toStdString()
                                              : "(none)";
    };
    {
        AppConfig config;
        config.getFixApnByIMSI(simA, "");
        EXPECT_EQ(config.setDefaultUserApnItemsByIndex(90002), 0);
        EXPECT_EQ(accounts(config.getUserIMSIApnList()), (Names{"Three 3", "Three 2", "Three 1"}));
        EXPECT_TRUE(config.isSetDefaultUserApn() && config.isFromIMSI());
        EXPECT_EQ(defaultName(config), "Three 3");
        EXPECT_EQ(defaultInfo(home), (QVariantMap{{"if setDefault", "TRUE"}, {"default IMSI", simA}}));

        // Another SIM: the default does not count.
        config.getFixApnByIMSI(simB, "");
        EXPECT_FALSE(config.isSetDefaultUserApn() || config.isFromIMSI());
        EXPECT_EQ(defaultName(config), "(none)");
    }
    {
        // After a restart with SIM A: its stored list, default first.
        AppConfig config;
        EXPECT_EQ(accounts(config.getFixApnByIMSI(simA, "")), (Names{"Three 3", "Three 2", "Three 1"}));
        EXPECT_EQ(defaultName(config), "Three 3");
    }
    {
        // The per-SIM lists are gone: the default is forgotten in memory, the settings file keeps it.
        QFile::remove(home.userFile("UserIMSIAPNList.plist"));
        AppConfig config;
        EXPECT_EQ(accounts(config.getFixApnByIMSI(simA, "")), (Names{"Three 1", "Three 2", "Three 3"}));
        EXPECT_FALSE(config.isSetDefaultUserApn());
        EXPECT_EQ(defaultName(config), "(none)");
        EXPECT_EQ(defaultInfo(home).toMap().value("default IMSI"), simA);
    }
    {
        // A default in the user list holds for every SIM, until it is removed.
        AppConfig config;
        config.addUserAPNItem(profile("Home", "home.apn"));
        config.addUserAPNItem(profile("Work", "work.apn"));
        config.getFixApnByIMSI(simB, "");
        EXPECT_EQ(config.setDefaultUserApnItems(config.getUserApnList()[1]), 0);
        EXPECT_EQ(accounts(config.getUserApnList()), (Names{"Work", "Home"}));
        config.getFixApnByIMSI(simA, "");
        EXPECT_TRUE(config.isSetDefaultUserApn());
        EXPECT_FALSE(config.isFromIMSI());
        EXPECT_EQ(defaultName(config), "Work");
        EXPECT_EQ(
            PropertyList::readList(home.userFile("UserAPNList.plist")).value(0).toMap().value("ACCOUNT"),
            "Work");

        // A profile that is not in the list changes nothing.
        config.setDefaultUserApnItems(profile("Elsewhere", "x"));
        EXPECT_EQ(defaultName(config), "Work");

        config.removeDefaultApnItems();
        EXPECT_EQ(defaultName(config), "(none)");
        EXPECT_EQ(defaultInfo(home), (QVariantMap{{"if setDefault", "FALSE"}, {"default IMSI", ""}}));
    }
}

TEST(AppConfig, OneIndexAddressesBothLists) {
    TempHome home;
    home.useResources(kProfiles, kPlmn);
    AppConfig config;
    config.addUserAPNItem(profile("Home", "home.apn"));
    config.addUserAPNItem(profile("Work", "work.apn"));
    config.getFixApnByIMSI("460001234567890", "");

    const Names edited{"Three 1", "Three 2", "Edited"};
    config.saveUserAPNItem(90002, profile("Edited", "edited.apn"));
    EXPECT_EQ(accounts(config.getUserIMSIApnList()), edited);
    EXPECT_EQ(storedAccounts(home, "460001234567890"), edited);
    config.saveUserAPNItem(1, profile("Office", "office.apn"));
    EXPECT_EQ(accounts(config.getUserApnList()), (Names{"Home", "Office"}));

    // An index equal to the count (or beyond, or negative) addresses nothing.
    for (int index : {2, 3, -1, 90003, 90004}) {
        config.saveUserAPNItem(index, profile("Bad", "bad.apn"));
        EXPECT_EQ(config.setDefaultUserApnItemsByIndex(index), 0);
    }
    EXPECT_EQ(accounts(config.getUserApnList()), (Names{"Home", "Office"}));
    EXPECT_EQ(accounts(config.getUserIMSIApnList()), edited);
    EXPECT_FALSE(config.isSetDefaultUserApn());
    EXPECT_EQ(PropertyList::readList(home.userFile("UserAPNList.plist")).size(), 2);
    EXPECT_EQ(storedAccounts(home, "460001234567890"), edited);

    config.deleteSingleUserApnItem(2);
    config.deleteSingleUserApnItem(0);
    EXPECT_EQ(accounts(config.getUserApnList()), (Names{"Office"}));
    EXPECT_EQ(config.deleteUserApnItems(config.getUserApnList()), 0);
    EXPECT_EQ(AppConfig().getUserApnList().size(), 1);
}

// Two copies of the configuration stand for the desktop app and a tool command: each change is made to
// the list as the file holds it, so neither loses the other's profiles, and indexes from a copy's own
// view still address the profile that copy showed.
TEST(AppConfig, TwoWritersKeepEachOthersProfiles) {
    TempHome home;
    AppConfig app;
    AppConfig tool;
    app.addUserAPNItem(profile("Home", "home.apn"));
    tool.addUserAPNItem(profile("Work", "work.apn"));
    app.addUserAPNItem(profile("Mobile", "mobile.apn"));
    EXPECT_EQ(accounts(AppConfig().getUserApnList()), (Names{"Home", "Work", "Mobile"}));

    tool.deleteSingleUserApnItem(1);                      // Work, in the tool's view [Home, Work]
    app.saveUserAPNItem(1, profile("Work2", "work.apn")); // Work was removed meanwhile: kept as new
    EXPECT_EQ(accounts(AppConfig().getUserApnList()), (Names{"Home", "Mobile", "Work2"}));
    tool.setDefaultUserApnItems(tool.getUserApnList()[1]); // Mobile, in the tool's view [Home, Mobile]
    EXPECT_EQ(accounts(AppConfig().getUserApnList()), (Names{"Mobile", "Home", "Work2"}));
}

TEST(AppConfig, FailedWritesAreLoggedAndMemoryKept) {
    TempHome home;
    const QString log = home.openLog();
    AppConfig config;
    // A full disk fails the writes of the settings and the shared profile list. A folder found in place of
    // the per-SIM list when it is read again is moved aside, and that write goes through.
    StoreFile::setFaultHook([](const QString& step) {
        return !(step == "write SystemConfig.plist" || step == "write UserAPNList.plist");
    });
    QDir().mkpath(home.userFile("UserIMSIAPNList.plist"));
    config.setConnectSoundEnable(false);
    EXPECT_FALSE(config.getConnectSoundEnable());
    EXPECT_FALSE(config.saveConfigObject(5, "SMS_VP"));
    EXPECT_EQ(config.getSMSValidityPeriod(), 5);
    config.addUserAPNItem(profile("Home", "home.apn"));
    EXPECT_EQ(config.getUserApnList().size(), 1);
    config.getFixApnByIMSI("460001234567890", "");
    EXPECT_EQ(config.writeUserIMSIApnListToFile(), 0);
    EXPECT_TRUE(QFileInfo(home.userFile("UserIMSIAPNList.plist")).isFile());
    StoreFile::setFaultHook({});
    EXPECT_TRUE(TempHome::readFile(log).contains("UserIMSIAPNList.plist is not a regular file, kept as"));
}

} // namespace
