#include "AppConfig.h"
#include "ResourceLocator.h"
#include "TempHome.h"

#include <QFileInfo>

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
        bool found = false;
        for (const APNInfo& item : config.getFixApnByIMSI(QString(row.numeric) + "0123456789", QString()))
            found = found || (item.strApn == row.apn && item.strSPN.isEmpty());
        EXPECT_TRUE(found) << row.numeric << " has no profile for " << row.apn;
    }
    // A reseller on a shared network is found by its SPN.
    ASSERT_EQ(config.getFixApnByIMSI("262011234567890", "Congstar").size(), 1);
    // Every line was complete: nothing was logged as incorrect, no empty PLMN entries.
    for (const QVariant& row : config.plmnList())
        EXPECT_EQ(row.toMap().size(), 2);
    for (const APNInfo& item : config.fixedApnList())
        EXPECT_FALSE(item.strDNS2.isNull()) << item.strAccount.toStdString();
}
