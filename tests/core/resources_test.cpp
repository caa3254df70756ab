#include "AppConfig.h"
#include "ResourceLocator.h"
#include "TempHome.h"

#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

// The operator tables generated from the operator database, as a program in the build tree finds them.
TEST(Resources, GeneratedTablesHoldRealOperators) {
    TempHome home;
    ASSERT_TRUE(QFileInfo::exists(ResourceLocator::resourcePath("PredefinedProfile")))
        << ResourceLocator::resourceDir().toStdString();
    AppConfig config;
    ASSERT_GT(config.fixedApnList().size(), 500);
    ASSERT_GT(config.plmnList().size(), 500);

    // apn: one of the network's internet APNs
    // clang-format off
    const struct { const char* numeric; const char* apn; } rows[] = {
        {"26201", "internet.telekom"}, {"23415", "internet"}, {"310260", "fast.t-mobile.com"}, {"20801", "orange.fr"},
    };
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_FALSE(config.getOperatorNameByNumeric(row.numeric).isEmpty()) << row.numeric;
        const QString imsi = QString(row.numeric) + "0123456789";
        const QList<APNInfo> chosen = config.getFixApnByIMSI(imsi, QString());
        ASSERT_FALSE(chosen.isEmpty()) << row.numeric;
        bool found = false;
        for (const APNInfo& item : chosen) {
            EXPECT_EQ(item.strMCCMNC + " " + item.strDialNum, QString(row.numeric) + " *99#");
            EXPECT_FALSE(item.strAccount.isEmpty());
            EXPECT_TRUE(item.strSPN.isEmpty()) << "the network's own profiles carry no SPN";
            EXPECT_TRUE(item.nAuthType >= 0 && item.nAuthType <= 2) << item.nAuthType;
            found = found || item.strApn == row.apn;
        }
        EXPECT_TRUE(found) << row.numeric << " has no profile for " << row.apn;
    }

    // A reseller on a shared network is found by its SPN, and kept out of the network's own choice.
    const QList<APNInfo> reseller = config.getFixApnByIMSI("262011234567890", "Congstar");
    ASSERT_EQ(reseller.size(), 1);
    EXPECT_EQ(reseller[0].strSPN, "Congstar");
    for (const APNInfo& item : config.getFixApnByIMSI("262011234567890", ""))
        EXPECT_NE(item.strAccount, "Congstar");
    // Every line was complete: nothing was logged as incorrect, no empty PLMN entries.
    for (const QVariant& row : config.plmnList())
        EXPECT_EQ(row.toMap().size(), 2);
    for (const APNInfo& item : config.fixedApnList())
        EXPECT_FALSE(item.strDNS2.isNull()) << item.strAccount.toStdString();
}

} // namespace
