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

} // namespace
