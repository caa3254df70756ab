#include "Budget/BudgetStore.h"
#include "Budget/DataBudget.h"
#include "TempHome.h"

namespace {

QDate D(const char* iso) {
    return QDate::fromString(QString::fromLatin1(iso), Qt::ISODate);
}

// A period starts on the billing day or on the month's last day when it has no such day.
TEST(DataBudget, PeriodsAndTheirUse) {
    // clang-format off
    const struct { const char* day; int billingDay; const char* first; const char* last; int daysLeft; } rows[] = {
        {"2026-02-15", 31, "2026-01-31", "2026-02-27", 13},  // February has no 31st: its period starts on the 28th
        {"2026-02-28", 31, "2026-02-28", "2026-03-30", 31},
        {"2024-02-29", 30, "2024-02-29", "2024-03-29", 30},  // leap year
        {"2026-05-30", 31, "2026-04-30", "2026-05-30", 1},   // a 30-day month, then a 31-day one
        {"2026-05-31", 30, "2026-05-30", "2026-06-29", 30},  // day 30 in a 31-day month
        {"2026-01-01", 1, "2026-01-01", "2026-01-31", 31},
        {"2025-12-31", 1, "2025-12-01", "2025-12-31", 1},
        {"2026-01-10", 15, "2025-12-15", "2026-01-14", 5},   // across the year
        {"2026-03-01", 0, "2026-03-01", "2026-03-31", 31},   // out of range reads as day 1
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.day) + " day " + std::to_string(row.billingDay));
        const BudgetPeriod period = DataBudget::periodOf(D(row.day), row.billingDay);
        EXPECT_EQ(period.first, D(row.first));
        EXPECT_EQ(period.last, D(row.last));
        EXPECT_EQ(DataBudget::daysLeft(period, D(row.day)), row.daysLeft);
    }

    // A link from 31 Oct evening to 1 Nov morning was split at midnight: each period gets its own part.
    const auto day = [](const char* key, quint64 sent, quint64 roamingReceived, quint32 seconds) {
        return StatisticsDayRow{key, {sent, 0, 0, roamingReceived, seconds}};
    };
    const QList<StatisticsDayRow> days{day("2026/10/30", 500, 0, 60), day("2026/10/31", 100, 20, 3600),
                                       day("2026/11/01", 300, 0, 1800), day("2026/11/30", 7, 0, 1),
                                       day("garbage", 1000, 0, 0)};
    EXPECT_EQ(DataBudget::useIn(DataBudget::periodOf(D("2026-10-31"), 1), days), (BudgetUse{620, 3660}));
    EXPECT_EQ(DataBudget::useIn(DataBudget::periodOf(D("2026-11-15"), 1), days), (BudgetUse{307, 1801}));
}

TEST(DataBudget, WarningsHangUpsAndDialRefusals) {
    // Each row: the use (bytes of a 1000-byte budget, or seconds of a 100-second one), what is chosen, and
    // what the guard does with a link up, then whether a dial after it is refused.
    enum Limit { W = 0, H = 1 };
    // clang-format off
    const struct { const char* name; quint64 bytes; quint64 seconds; Limit atLimit; int warnedBefore; bool overridden; BudgetStep step; int warnedAfter; bool refused; } rows[] = {
        {"below the share",               799, 0,   H, 0, false, BudgetStep::None,         0, false},
        {"at the share",                  800, 0,   H, 0, false, BudgetStep::WarnShare,    1, false},
        {"share warned once per period",  900, 0,   H, 1, false, BudgetStep::None,         1, false},
        {"full, warn only",              1000, 0,   W, 1, false, BudgetStep::WarnFull,     2, false},
        {"full, warned already",         5000, 0,   W, 2, false, BudgetStep::None,         2, false},
        {"full, hang up",                1000, 0,   H, 1, false, BudgetStep::HangUpBudget, 2, true},
        {"full, hang up again",          1200, 0,   H, 2, false, BudgetStep::HangUpBudget, 2, true},
        {"full, overridden",             1200, 0,   H, 1, true,  BudgetStep::WarnFull,     2, false},
        {"time budget used up",             0, 100, H, 0, false, BudgetStep::HangUpBudget, 2, true},
        {"time share",                      0, 85,  W, 0, false, BudgetStep::WarnShare,    1, false},
    };
    // clang-format on
    const QDate today = D("2026-11-24");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        BudgetSettings settings{.bytes = 1000,
                                .seconds = 100,
                                .atLimit =
                                    row.atLimit == H ? BudgetLimitAction::HangUp : BudgetLimitAction::Warn,
                                .overrideUntil = row.overridden ? D("2026-11-30") : QDate(),
                                .warnedPeriod = DataBudget::periodOf(today, 1).first,
                                .warnedLevel = row.warnedBefore};
        const BudgetUse use{row.bytes, row.seconds};
        EXPECT_EQ(DataBudget::budgetStep(settings, use, today, true), row.step);
        EXPECT_EQ(settings.warnedLevel, row.warnedAfter);
        EXPECT_EQ(DataBudget::budgetRefusesDial(settings, use, today), row.refused);
    }

    // A new period forgets the warnings and the override of the last one.
    BudgetSettings settings{.bytes = 1000,
                            .atLimit = BudgetLimitAction::HangUp,
                            .overrideUntil = D("2026-10-31"),
                            .warnedPeriod = D("2026-10-01"),
                            .warnedLevel = 2};
    EXPECT_EQ(DataBudget::budgetStep(settings, {850, 0}, today, true), BudgetStep::WarnShare);
    EXPECT_TRUE(DataBudget::budgetRefusesDial(settings, {1000, 0}, today));
    EXPECT_EQ(DataBudget::budgetStep(settings, {1000, 0}, today, false), BudgetStep::WarnFull) << "no link";
}

TEST(DataBudget, RoamingGuard) {
    using G = RoamingGuard;
    // clang-format off
    const struct { const char* name; G guard; bool was; bool now; bool linkUp; BudgetStep step; } rows[] = {
        {"turns to roaming, hang up",   G::HangUp, false, true,  true,  BudgetStep::HangUpRoaming},
        {"turns to roaming, warn",      G::Warn,   false, true,  true,  BudgetStep::WarnRoaming},
        {"turns to roaming, off",       G::Off,    false, true,  true,  BudgetStep::None},
        {"roaming all along",           G::HangUp, true,  true,  true,  BudgetStep::None},
        {"back home",                   G::HangUp, true,  false, true,  BudgetStep::None},
        {"no link",                     G::HangUp, false, true,  false, BudgetStep::None},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(DataBudget::roamingStep(row.guard, row.was, row.now, row.linkUp), row.step) << row.name;
    EXPECT_TRUE(DataBudget::roamingRefusesDial(G::Warn, true, false));
    EXPECT_FALSE(DataBudget::roamingRefusesDial(G::HangUp, true, true)) << "allowed for this session";
    EXPECT_FALSE(DataBudget::roamingRefusesDial(G::Off, true, false));
    EXPECT_FALSE(DataBudget::roamingRefusesDial(G::HangUp, false, false));
}

TEST(DataBudget, SizesAndDurationsAsPeopleWriteThem) {
    // clang-format off
    const struct { const char* text; quint64 bytes; quint64 seconds; } rows[] = {
        {"2GB", 2ULL << 30, 0}, {"500MB", 500ULL << 20, 0}, {"1.5 GiB", 3ULL << 29, 0}, {"700k", 700ULL << 10, 0},
        {"123456", 123456, 0}, {"10h", 0, 36000}, {"1h30m", 0, 5400}, {"2d", 0, 172800}, {"90 m", 90ULL << 20, 5400},
        {"", 0, 0}, {"-1GB", 0, 0}, {"2XB", 0, 0}, {"1e9", 0, 0}, {"99999999999999TB", 0, 0}, {"h", 0, 0},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(DataBudget::parseSize(QString::fromLatin1(row.text)), row.bytes);
        EXPECT_EQ(DataBudget::parseDuration(QString::fromLatin1(row.text)), row.seconds);
    }
}

TEST(BudgetStore, KeepsEachSimsBudgetAndSetsADamagedFileAside) {
    TempHome home;
    BudgetStore store;
    BudgetSettings settings;
    settings.bytes = 2ULL << 30;
    settings.billingDay = 31;
    settings.atLimit = BudgetLimitAction::HangUp;
    settings.roaming = RoamingGuard::Warn;
    settings.overrideUntil = D("2026-11-29");
    ASSERT_TRUE(store.save("262021234567890", settings));
    EXPECT_EQ(store.load("262021234567890"), settings);
    EXPECT_EQ(store.load("262029999999999"), BudgetSettings()) << "another SIM";
    EXPECT_EQ(store.lastImsi(), "262021234567890");
    EXPECT_FALSE(store.save("26202'; rm", settings)) << "not an IMSI";
    ASSERT_TRUE(store.clearBudget("262021234567890"));
    EXPECT_FALSE(store.load("262021234567890").hasBudget());
    EXPECT_EQ(store.load("262021234567890").roaming, RoamingGuard::Warn) << "the roaming guard stays";

    // Out-of-range values read as their defaults.
    const BudgetSettings odd = BudgetStore::fromDictionary(
        {{"BYTES", -5}, {"BILLING_DAY", 40}, {"WARN_PERCENT", "x"}, {"AT_LIMIT", 7}, {"WARNED_LEVEL", 9}});
    EXPECT_EQ(odd, BudgetSettings());

    TempHome::writeFile(store.path(), "<plist><dict><key>SIMS");
    EXPECT_EQ(store.load("262021234567890"), BudgetSettings());
    EXPECT_FALSE(QDir(home.userData()).entryList({"DataBudget.plist.damaged-*"}).isEmpty());
}

} // namespace
