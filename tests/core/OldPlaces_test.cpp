#include "OldPlaces.h"
#include "TempHome.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using Files = std::vector<std::pair<QString, const char*>>; // path under HOME, content (nullptr: absent)

const QString kOld = QStringLiteral("Documents/HSPA Modem User Data/");
const QString kData = QStringLiteral(".local/share/dialtone/");
const QString kConfig = QStringLiteral(".config/dialtone/");

// Each case runs with rename and again with copy, as across file systems. An interrupted move left its
// copy in place without removing the old file, or a partial copy in ".migrating".
TEST(OldPlaces, MovedOnceAndNothingLost) {
    // clang-format off
    const struct { const char* name; Files before; Files after; const char* line; } rows[] = {
        {"fresh start", {}, {{kData, nullptr}, {kConfig + ".moved-from-old-places", nullptr}}, nullptr},
        {"old data only", {{kOld + "LocalSMS.plist", "sms"}, {kOld + "SystemConfig.plist", "cfg"}, {kOld + "dialtone-cli.ini", "ini"}, {"Library/logs/HSPA_USB_MODEM/LOG_01_02_2024.log", "log"}}, {{kData + "LocalSMS.plist", "sms"}, {kConfig + "SystemConfig.plist", "cfg"}, {kConfig + "dialtoned.ini", "ini"}, {".local/state/dialtone/LOG_01_02_2024.log", "log"}, {kOld, nullptr}, {"Library", nullptr}}, "moved 3 files from"},
        {"both old folders", {{kOld + "UserAPNList.plist", "apn"}, {"Documents/USB Modem User Data/VELMODEM1.options", "opt"}}, {{kData + "UserAPNList.plist", "apn"}, {kData + "VELMODEM1.options", "opt"}, {"Documents/USB Modem User Data", nullptr}}, "moved 1 file from"},
        {"already in the new place", {{kOld + "LocalSMS.plist", "old"}, {kData + "LocalSMS.plist", "new"}, {kOld + "dialtone-cli.ini", "cli"}, {kOld + "dialtoned.ini", "d"}}, {{kData + "LocalSMS.plist", "new"}, {kData + "LocalSMS.plist.old", "old"}, {kConfig + "dialtoned.ini", "d"}, {kConfig + "dialtoned.ini.old", "cli"}}, "was in both places"},
        {"interrupted", {{kOld + "LocalSMS.plist", "sms"}, {kOld + "UserAPNList.plist", "apn"}, {kData + "UserAPNList.plist", "apn"}, {kData + ".migrating/LocalSMS.plist", "s"}}, {{kData + "LocalSMS.plist", "sms"}, {kData + "UserAPNList.plist", "apn"}, {kData + "UserAPNList.plist.old", nullptr}, {kData + ".migrating", nullptr}, {kOld, nullptr}}, "moved 2 files from"},
        {"a folder of the user's", {{kOld + "notes/todo", "x"}}, {{kOld + "notes/todo", "x"}, {kConfig + ".moved-from-old-places", ""}}, "is a folder of yours"},
    };
    // clang-format on
    for (const bool copy : {false, true}) {
        OldPlaces::setAlwaysCopy(copy);
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.name) + (copy ? ", copied" : ", renamed"));
            TempHome home;
            const QString h = home.path() + '/';
            for (const auto& [path, content] : row.before) {
                QDir().mkpath(QFileInfo(h + path).path());
                TempHome::writeFile(h + path, content);
            }
            const OldPlaces::Targets to{h + kData, h + kConfig, h + ".local/state/dialtone"};
            const QString lines = OldPlaces::moveAll(home.path(), to).join('\n');
            EXPECT_EQ(lines.contains(row.line ? row.line : "?"), row.line != nullptr) << lines.toStdString();
            for (const auto& [path, content] : row.after) {
                const bool written = std::none_of(row.before.begin(), row.before.end(),
                                                  [&](const auto& file) { return file.first == path; });
                struct stat info {};
                EXPECT_EQ(lstat(QFile::encodeName(h + path), &info) == 0, content != nullptr)
                    << path.toStdString();
                if (content && S_ISREG(info.st_mode)) {
                    EXPECT_EQ(TempHome::readFile(h + path), content) << path.toStdString();
                    EXPECT_TRUE(!written || (info.st_mode & 0777) == 0600) << path.toStdString();
                }
            }
            EXPECT_TRUE(OldPlaces::moveAll(home.path(), to).isEmpty()) << "once";
        }
    }
    OldPlaces::setAlwaysCopy(false);
}

} // namespace
