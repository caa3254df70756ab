#include "UserDataFolder.h"

#include "OldPlaces.h"
#include "PrivateFile.h"
#include "XdgPlaces.h"

#include <QDir>

#include <cstdio>
#include <mutex>

namespace {

// No log line here: the log asks for these folders while it starts.
QString prepared(const QString& path) {
    static std::mutex lock;
    static QString movedFor;
    const OldPlaces::Targets places{XdgPlaces::data(), XdgPlaces::config(), XdgPlaces::state()};
    const QString home = QDir::homePath();
    const QString key = QStringList{home, places.data, places.config, places.state}.join('\n');
    {
        std::lock_guard guard(lock);
        if (key != movedFor) {
            movedFor = key;
            for (const QString& line : OldPlaces::moveAll(home, places)) {
                std::fprintf(stderr, "dialtone: %s\n", qPrintable(line));
            }
        }
    }
    // The folders hold profile passwords and the dial options: the owner alone may enter them, also when
    // an older version left them open to others.
    PrivateFile::makeFolder(path);
    return path;
}

} // namespace

QString UserDataFolder::dataPath() {
    return prepared(XdgPlaces::data());
}

QString UserDataFolder::configPath() {
    return prepared(XdgPlaces::config());
}

QString UserDataFolder::statePath() {
    return prepared(XdgPlaces::state());
}
