#pragma once

#include "CNSLog.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

// A fresh $HOME for one test (the XDG variables unset, so the folders follow it), and optionally a resource
// folder of the test's own. The log starts over in the new home (off unless the test creates the marker),
// and every switch is back on.
class TempHome {
public:
    TempHome() {
        EXPECT_TRUE(_home.isValid());
        saveAndSet("HOME", _home.path().toLocal8Bit(), _oldHome);
        saveAndSet("DIALTONE_RESOURCE_DIR", {}, _oldResources);
        for (int i = 0; i < 3; ++i) {
            saveAndSet(kXdg[i], {}, _oldXdg[i]);
        }
        resetLogSwitches();
        g_CNSLog.initialize();
    }
    ~TempHome() {
        // Switch the log off while $HOME is still this folder, so nothing reaches the real home.
        QFile::remove(configFile("OPENLOG"));
        resetLogSwitches();
        g_CNSLog.initialize();
        restore("HOME", _oldHome);
        restore("DIALTONE_RESOURCE_DIR", _oldResources);
        for (int i = 0; i < 3; ++i) {
            restore(kXdg[i], _oldXdg[i]);
        }
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
    static void saveAndSet(const char* name, const QByteArray& value, std::optional<QByteArray>& old) {
        if (const char* current = std::getenv(name)) {
            old = QByteArray(current);
        }
        if (value.isEmpty()) {
            unsetenv(name);
        } else {
            setenv(name, value.constData(), 1);
        }
    }
    static void restore(const char* name, const std::optional<QByteArray>& old) {
        if (old) {
            setenv(name, old->constData(), 1);
        } else {
            unsetenv(name);
        }
    }
    static void resetLogSwitches() {
        for (auto* flag : {&g_ST_LOG_NORMAL, &g_ST_LOG_WARNNING, &g_ST_LOG_ERROR, &g_ST_LOG_FATAL_ERROR,
                           &g_ST_LOG_FOR_TEST, &g_ST_LOG_TRACE_ENTER, &g_SHOW_LINE_NUMBER, &g_SHOW_FILE_NAME,
                           &g_SHOW_FUNCTION}) {
            *flag = 1;
        }
    }

    QTemporaryDir _home;
    std::optional<QByteArray> _oldHome;
    std::optional<QByteArray> _oldResources;
    static constexpr const char* kXdg[3] = {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"};
    std::optional<QByteArray> _oldXdg[3];
};
