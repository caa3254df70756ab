#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "QtEventLoop.h"

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

// Helpers shared by the device and dial-up suites: a temporary world of folders and environment.

// Sets environment variables for one test and puts the old values back afterwards.
class ScopedEnvironment {
public:
    ScopedEnvironment() = default;
    ~ScopedEnvironment() {
        for (const auto& [name, old] : _saved)
            old ? setenv(name.c_str(), old->c_str(), 1) : unsetenv(name.c_str());
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

    void set(const std::string& name, const QString& value) {
        if (!_saved.count(name)) {
            const char* old = std::getenv(name.c_str());
            _saved[name] = old ? std::optional<std::string>(old) : std::nullopt;
        }
        setenv(name.c_str(), value.toLocal8Bit().constData(), 1);
    }

private:
    std::map<std::string, std::optional<std::string>> _saved;
};

// A temporary HOME and device folder, and helpers for files and stand-in programs in them.
class TempWorld {
public:
    TempWorld() {
        EXPECT_TRUE(_root.isValid());
        QDir().mkpath(home());
        QDir().mkpath(dev());
        env.set("HOME", home());
        env.set("DIALTONE_DEV_DIR", dev());
        env.set("DIALTONE_CHATSCRIPTS_DIR", path("chatscripts")); // never the system's
    }
    QString path(const QString& name) const { return _root.path() + "/" + name; }
    QString home() const { return path("home"); }
    QString dev() const { return path("dev"); }

    static void writeFile(const QString& file, const QByteArray& bytes) {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate)) << file.toStdString();
        out.write(bytes);
    }
    static QByteArray readFile(const QString& file) {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
    // A shell script that appends "<tag> <arguments>" to the log and exits with the status.
    QString standIn(const QString& tag, int exitStatus = 0) {
        const QString script = path(tag + ".sh");
        writeFile(script, QStringLiteral("#!/bin/sh\nprintf '%s %s\\n' '%1' \"$*\" >> '%2'\nexit %3\n")
                              .arg(tag, log())
                              .arg(exitStatus)
                              .toLocal8Bit());
        QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return script;
    }
    QString log() const { return path("programs.log"); }

    ScopedEnvironment env;

private:
    QTemporaryDir _root;
};
