#pragma once

#include "CNSLog.h"
#include "DebugSink.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

// A fresh $HOME for one test (the XDG variables unset, so the folders follow it), and optionally a resource
// folder of the test's own. The log starts over in the new home (off unless the test creates the marker),
// and every switch is back on.
class TempHome {
public:
    TempHome() {
        EXPECT_TRUE(_home.isValid());
        for (int i = 0; i < kVariables; ++i) {
            if (const char* current = std::getenv(kNames[i]))
                _old[i] = QByteArray(current);
            i == 0 ? setenv("HOME", _home.path().toLocal8Bit().constData(), 1) : unsetenv(kNames[i]);
        }
        restartLog();
    }
    ~TempHome() {
        // Switch the log off while $HOME is still this folder, so nothing reaches the real home.
        QFile::remove(configFile("OPENLOG"));
        restartLog();
        for (int i = 0; i < kVariables; ++i)
            _old[i] ? setenv(kNames[i], _old[i]->constData(), 1) : unsetenv(kNames[i]);
    }
    TempHome(const TempHome&) = delete;
    TempHome& operator=(const TempHome&) = delete;

    QString path() const { return _home.path(); }
    QString userData() const { return _home.path() + "/.local/share/dialtone"; }
    QString userFile(const QString& name) const { return userData() + "/" + name; }
    QString configFile(const QString& name) const { return _home.path() + "/.config/dialtone/" + name; }

    // Points the resources at a folder of this home holding the given files.
    void useResources(const QByteArray& predefinedProfile, const QByteArray& plmn) {
        const QString dir = _home.path() + "/Resources";
        QDir().mkpath(dir);
        writeFile(dir + "/PredefinedProfile", predefinedProfile);
        writeFile(dir + "/PLMN", plmn);
        setenv("DIALTONE_RESOURCE_DIR", dir.toLocal8Bit().constData(), 1);
    }

    // Creates the "OPENLOG" marker and restarts the log; returns the log file's path.
    QString openLog() {
        QDir().mkpath(_home.path() + "/.config/dialtone");
        writeFile(configFile("OPENLOG"), {});
        g_CNSLog.initialize();
        return g_CNSLog.logFilePath();
    }

    static void writeFile(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
        file.write(bytes);
    }
    static QByteArray readFile(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    static void restartLog() {
        for (auto* flag : {&g_ST_LOG_NORMAL, &g_ST_LOG_WARNNING, &g_ST_LOG_ERROR, &g_ST_LOG_FATAL_ERROR,
                           &g_ST_LOG_FOR_TEST, &g_ST_LOG_TRACE_ENTER, &g_SHOW_LINE_NUMBER, &g_SHOW_FILE_NAME,
                           &g_SHOW_FUNCTION})
            *flag = 1;
        g_CNSLog.initialize();
    }

    static constexpr int kVariables = 5;
    static constexpr const char* kNames[kVariables] = {"HOME", "DIALTONE_RESOURCE_DIR", "XDG_DATA_HOME",
                                                       "XDG_CONFIG_HOME", "XDG_STATE_HOME"};
    QTemporaryDir _home;
    std::optional<QByteArray> _old[kVariables];
};

// The day traffic file with the given entries after its creation time.
inline QByteArray dayTrafficFile(const QByteArray& days) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
           "<key>CREATION_TIME</key><date>2024-01-01T00:00:00Z</date>" +
           days + "</dict></plist>\n";
}

// A scratch stream for the debug sink or the notices, whose text can be read back.
struct ScratchStream {
    std::FILE* file = std::tmpfile();
    ScratchStream() { EXPECT_NE(file, nullptr); }
    ~ScratchStream() { std::fclose(file); }
    ScratchStream(const ScratchStream&) = delete;
    QByteArray text() const {
        std::rewind(file);
        QFile in;
        return in.open(file, QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
};

// Collects what is printed on the debug sink while it lives.
struct DebugCapture : ScratchStream {
    DebugCapture() : old(GetDebugSink()) { SetDebugSink(file); }
    ~DebugCapture() { SetDebugSink(old); }
    std::FILE* old;
};
