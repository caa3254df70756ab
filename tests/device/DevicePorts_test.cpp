#include "DeviceTestSupport.h"
#include "DeviceUtility.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

// Port discovery over a device folder: the dial port by prefix, the AT port by the "3" rule.
TEST(DevicePorts, NamingRule) {
    const struct {
        const char* name;
        QStringList entries;
        bool found;
        const char* modem;
        const char* data;
    } rows[] = {
        {"pair",
         {"cu.VELMobileConnector1", "cu.VELDeviceInterface3"},
         true,
         "cu.VELMobileConnector1",
         "cu.VELDeviceInterface3"},
        {"last character replaced",
         {"cu.VELMobileConnector12", "cu.VELDeviceInterface13"},
         true,
         "cu.VELMobileConnector12",
         "cu.VELDeviceInterface13"},
        {"suffix not a number",
         {"cu.VELMobileConnectorAB", "cu.VELDeviceInterfaceA3"},
         true,
         "cu.VELMobileConnectorAB",
         "cu.VELDeviceInterfaceA3"},
        {"first in name order wins",
         {"cu.VELMobileConnector2", "cu.VELMobileConnector1", "cu.VELDeviceInterface3"},
         true,
         "cu.VELMobileConnector1",
         "cu.VELDeviceInterface3"},
        {"the walk stops at the first dial port",
         {"cu.VELMobileConnector11", "cu.VELMobileConnector21", "cu.VELDeviceInterface23"},
         false,
         nullptr,
         nullptr},
        {"AT port missing",
         {"cu.VELMobileConnector1", "cu.VELDeviceInterface4", "ttyUSB0"},
         false,
         nullptr,
         nullptr},
        {"AT port only", {"cu.VELDeviceInterface3"}, false, nullptr, nullptr},
        {"empty suffix", {"cu.VELMobileConnector", "cu.VELDeviceInterface3"}, false, nullptr, nullptr},
        {"nothing", {"ttyUSB0", "null"}, false, nullptr, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TempWorld world;
        for (const QString& entry : row.entries) {
            if (!entry.isEmpty()) {
                TempWorld::writeFile(world.dev() + "/" + entry, {});
            }
        }
        QString modem = "untouched";
        QString data = "untouched";
        EXPECT_EQ(DeviceUtility::getModemDeviceName(modem, data), row.found);
        EXPECT_EQ(modem, row.found ? row.modem : "untouched");
        EXPECT_EQ(data, row.found ? row.data : "untouched");
    }
}

TEST(DevicePorts, MissingDeviceFolder) {
    TempWorld world;
    world.env.set("DIALTONE_DEV_DIR", world.path("no-such-dir"));
    QString modem, data;
    EXPECT_FALSE(DeviceUtility::getModemDeviceName(modem, data));
    EXPECT_TRUE(modem.isNull());
}

// A dangling link for the AT port (the tty went away) is not a port.
TEST(DevicePorts, DanglingAtPortLink) {
    TempWorld world;
    TempWorld::writeFile(world.dev() + "/cu.VELMobileConnector1", {});
    QFile::link(world.path("gone"), world.dev() + "/cu.VELDeviceInterface3");
    QString modem, data;
    EXPECT_FALSE(DeviceUtility::getModemDeviceName(modem, data));
}

TEST(DevicePorts, UserDataFolderIsCreated) {
    TempWorld world;
    const QString path = DeviceUtility::getUserDataPath();
    EXPECT_EQ(path, world.home() + "/Documents/USB Modem User Data");
    EXPECT_TRUE(QFileInfo(path).isDir());
}

// The shipped udev rule names the ports so that the discovery finds them, for this modem's ids.
TEST(DevicePorts, UdevRuleMatchesDiscovery) {
    const QByteArray rule =
        TempWorld::readFile(DIALTONE_SOURCE_DIR "/resources/udev/70-dialtone-modem.rules");
    ASSERT_FALSE(rule.isEmpty());
    const QString text = QString::fromUtf8(rule);
    QStringList links;
    QRegularExpression symlink(R"re(SYMLINK\+="([^"]+)")re");
    for (auto match = symlink.globalMatch(text); match.hasNext();) {
        links << match.next().captured(1);
    }
    ASSERT_EQ(links.size(), 2);
    const QString vendor = QString::asprintf("\"%04x\"", DeviceUtility::kVendorID);
    const QString product = QString::asprintf("\"%04x\"", DeviceUtility::kProductID);
    EXPECT_GE(text.count("ATTR{idVendor}==" + vendor) + text.count("ENV{ID_VENDOR_ID}!=" + vendor), 2);
    EXPECT_GE(text.count("ATTR{idProduct}==" + product) + text.count("ENV{ID_MODEL_ID}!=" + product), 2);
    EXPECT_EQ(text.count("ENV{ID_MM_DEVICE_IGNORE}=\"1\""), 2);

    TempWorld world;
    for (const QString& link : links) {
        TempWorld::writeFile(world.dev() + "/" + link, {});
    }
    QString modem, data;
    ASSERT_TRUE(DeviceUtility::getModemDeviceName(modem, data));
    EXPECT_TRUE(links.contains(modem));
    EXPECT_TRUE(links.contains(data));
    EXPECT_NE(modem, data);
}

} // namespace
