#include "ModemTable.h"

#include <gtest/gtest.h>

namespace {

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
