#include "ModemTable.h"

#include <gtest/gtest.h>

namespace {

// One line of the device table in, the row or the reason it is skipped out.
TEST(ModemTable, Rows) {
    // problem: empty when the row is read
    // clang-format off
    const struct { const char* line; const char* problem; const char* storage; int at, dial; ModemDialect dialect; const char* name; } rows[] = {
        {"1bbb:0017  1bbb:f000,1bbb:f017  02  00  vel  VEL HSPA USB Modem", "", "1bbb:f000 1bbb:f017", 2, 0, ModemDialect::Vel, "VEL HSPA USB Modem"},
        {"12d1:1506\t12d1:14fe -  -  standard  Huawei   E3131", "", "12d1:14fe", -1, -1, ModemDialect::Standard, "Huawei E3131"},
        {"0bdb:1900 - 0a 0b standard Ericsson F3507g", "", "", 10, 11, ModemDialect::Standard, "Ericsson F3507g"},
        {"12d1:1001 - 02 00 standard", "line 1: expected modem id, storage ids, AT and dial interface, dialect and name", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:10011 - 02 00 standard Too long id", "line 1: bad modem id \"12d1:10011\" (want vvvv:pppp in hex)", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:1001 12d1:14fe,,12d1:1446 02 00 standard Empty storage id", "line 1: bad storage id \"\"", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:1001 - 2 00 standard One digit", "line 1: bad interface number (want two hex digits or -)", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:1001 - 02 - standard Half known", "line 1: AT and dial interface must both be known and differ, or both be -", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:1001 - 02 02 standard Same port", "line 1: AT and dial interface must both be known and differ, or both be -", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:1001 - 02 00 huawei Maker dialect", "line 1: unknown dialect \"huawei\" (vel or standard)", "", 0, 0, ModemDialect::Vel, ""},
        {"12d1:1001 1:2,3:4,5:6,7:8,9:a,b:c,d:e,f:0,1:1 02 00 standard Many", "line 1: more than 8 storage ids", "", 0, 0, ModemDialect::Vel, ""},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        QStringList problems;
        const ModemTable table = ModemTable::parse(row.line, &problems);
        if (*row.problem != '\0') {
            EXPECT_EQ(problems, QStringList{row.problem});
            EXPECT_TRUE(table.models().isEmpty());
            continue;
        }
        ASSERT_EQ(problems, QStringList());
        ASSERT_EQ(table.models().size(), 1);
        const ModemModel& model = table.models()[0];
        QStringList storage;
        for (const UsbId& id : model.storageIds)
            storage << id.text();
        EXPECT_EQ(storage.join(' '), row.storage);
        EXPECT_EQ(std::tuple(model.atInterface, model.dialInterface, model.dialect),
                  std::tuple(row.at, row.dial, row.dialect));
        EXPECT_EQ(model.name, row.name);
    }
}

// Bad rows are skipped and reported by line; the good ones around them stay, numbered for their links.
TEST(ModemTable, SkipsBadRowsAndLooksUp) {
    const QByteArray text = "# comment\n\n"
                            "1bbb:0017 1bbb:f000 02 00 vel First\n"
                            "1bbb:0017 - - - standard Twice\n" +
                            QByteArray(300, 'x') +
                            "\n"
                            "12d1:1506 12d1:14fe - - standard Second\n"
                            "19d2:0031 19d2:2000 - - standard Third\n";
    QStringList problems;
    const ModemTable table = ModemTable::parse(text, &problems);
    EXPECT_EQ(problems,
              (QStringList{"line 4: 1bbb:0017 is listed twice", "line 5: longer than 256 characters"}));
    ASSERT_EQ(table.models().size(), 3);
    EXPECT_EQ(table.findModem({0x12d1, 0x1506})->name, "Second");
    EXPECT_EQ(table.findStorage({0x19d2, 0x2000})->name, "Third");
    EXPECT_EQ(table.findStorage({0x12d1, 0x1506}), nullptr);
    EXPECT_EQ(table.findModem({0x12d1, 0x14fe}), nullptr);
    EXPECT_EQ(table.findLinkSuffix("1")->name, "First");
    EXPECT_EQ(table.findLinkSuffix("11")->name, "Second");
    EXPECT_EQ(table.findLinkSuffix("21")->name, "Third");
}

} // namespace
