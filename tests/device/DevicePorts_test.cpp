#include "DeviceTestSupport.h"
#include "DeviceUtility.h"
#include "ModemTable.h"

#include <QRegularExpression>

namespace {

// Port discovery over a device folder: the dial port by prefix, the AT port by the "3" rule.
TEST(DevicePorts, NamingRule) {
    // clang-format off
    const struct { const char* name; QStringList entries; bool found; const char* modem; const char* data; } rows[] = {
        {"pair", {"cu.VELMobileConnector1", "cu.VELDeviceInterface3"}, true, "cu.VELMobileConnector1", "cu.VELDeviceInterface3"},
        {"suffix not a number", {"cu.VELMobileConnectorAB", "cu.VELDeviceInterfaceA3"}, true, "cu.VELMobileConnectorAB", "cu.VELDeviceInterfaceA3"},
        {"first in name order wins", {"cu.VELMobileConnector2", "cu.VELMobileConnector1", "cu.VELDeviceInterface3"}, true, "cu.VELMobileConnector1", "cu.VELDeviceInterface3"},
        {"the walk stops at the first dial port", {"cu.VELMobileConnector11", "cu.VELMobileConnector21", "cu.VELDeviceInterface23"}, false, nullptr, nullptr},
        {"AT port missing", {"cu.VELMobileConnector1", "cu.VELDeviceInterface4", "ttyUSB0"}, false, nullptr, nullptr},
        {"AT port only", {"cu.VELDeviceInterface3"}, false, nullptr, nullptr},
        {"empty suffix", {"cu.VELMobileConnector", "cu.VELDeviceInterface3"}, false, nullptr, nullptr},
        {"a dangling link for the AT port (the tty went away)", {"cu.VELMobileConnector1", "cu.VELDeviceInterface3->gone"}, false, nullptr, nullptr},
        {"no device folder", {}, false, nullptr, nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TempWorld world;
        if (row.entries.isEmpty())
            world.env.set("DIALTONE_DEV_DIR", world.path("no-such-dir"));
        for (const QString& entry : row.entries) {
            if (entry.contains("->"))
                QFile::link(world.path(entry.section("->", 1)),
                            world.dev() + "/" + entry.section("->", 0, 0));
            else
                TempWorld::writeFile(world.dev() + "/" + entry, {});
        }
        QString modem = "untouched", data = "untouched";
        EXPECT_EQ(DeviceUtility::getModemDeviceName(modem, data), row.found);
        EXPECT_EQ(modem, row.found ? row.modem : "untouched");
        EXPECT_EQ(data, row.found ? row.data : "untouched");
    }
}

// The rule made from the device table keeps every stick from ModemManager and names each known layout's
// ports so that the discovery finds them; the first stick keeps its links cu.VELMobileConnector1 and
// cu.VELDeviceInterface3. Sticks of unknown layout get access to all their ttys, for the probe.
TEST(DevicePorts, UdevRuleFollowsTheTable) {
    const QString rule = QString::fromUtf8(TempWorld::readFile(DIALTONE_UDEV_RULE));
    QStringList problems;
    const ModemTable table = ModemTable::parse(
        TempWorld::readFile(DIALTONE_SOURCE_DIR "/resources/devices/modems.table"), &problems);
    EXPECT_EQ(problems, QStringList());
    ASSERT_GE(table.models().size(), 20);
    EXPECT_EQ(table.models()[0].modemId, (UsbId{DeviceUtility::kVendorID, DeviceUtility::kProductID}));
    EXPECT_EQ(rule.count("ENV{ID_MM_DEVICE_IGNORE}=\"1\""), 2 * table.models().size());

    for (const ModemModel& model : table.models()) {
        SCOPED_TRACE(model.modemId.text().toStdString());
        const QString match = QStringLiteral("ENV{ID_VENDOR_ID}==\"%1\", ENV{ID_MODEL_ID}==\"%2\"")
                                  .arg(model.modemId.text().left(4), model.modemId.text().mid(5));
        if (!model.layoutKnown()) {
            EXPECT_TRUE(rule.contains(match + ", TAG+=\"uaccess\"\n"));
            continue;
        }
        QMap<int, QString> links;
        const QRegularExpression symlink(
            QRegularExpression::escape(match) +
            R"re(, ENV\{ID_USB_INTERFACE_NUM\}=="(..)", SYMLINK\+="([^"]+)", TAG\+="uaccess")re");
        for (auto found = symlink.globalMatch(rule); found.hasNext();) {
            const auto next = found.next();
            links[next.captured(1).toInt(nullptr, 16)] = next.captured(2);
        }
        ASSERT_EQ(links.size(), 2);
        TempWorld world;
        for (const QString& link : links)
            TempWorld::writeFile(world.dev() + "/" + link, {});
        QString modem, data;
        ASSERT_TRUE(DeviceUtility::getModemDeviceName(modem, data));
        EXPECT_EQ(modem, links[model.dialInterface]);
        EXPECT_EQ(data, links[model.atInterface]);
    }
    EXPECT_TRUE(rule.contains(
        "ENV{ID_VENDOR_ID}==\"1bbb\", ENV{ID_MODEL_ID}==\"0017\", ENV{ID_USB_INTERFACE_NUM}==\"00\", "
        "SYMLINK+=\"cu.VELMobileConnector1\", TAG+=\"uaccess\""));
}

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
