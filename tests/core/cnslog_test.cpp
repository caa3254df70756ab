#include "CNSLog.h"
#include "TempHome.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

QStringList logLines(const QString& path) {
    return QString::fromUtf8(TempHome::readFile(path)).split('\n', Qt::SkipEmptyParts);
}

struct Sample {
    void log(int level) { CNSLOG(level, "level %d, %s", level, "text"); }
};

TEST(CNSLog, NothingWithoutTheMarker) {
    TempHome home;
    CNSLOG(2, "parameter is null");
    CNSLOG_TRACE();
    g_CNSLog.MLog("text");
    EXPECT_TRUE(g_ST_LOG_ALL == 0 && g_CNSLog.logFilePath().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(home.path() + "/.local/state"));
}

TEST(CNSLog, MarkerSwitchesTheDayFileOn) {
    TempHome home;
    const QString path = home.openLog();
    const QDate today = QDate::currentDate();
    EXPECT_EQ(path, home.path() + QString::asprintf("/.local/state/dialtone/LOG_%02d_%02d_%04d.log",
                                                    today.day(), today.month(), today.year()));
    EXPECT_EQ(g_ST_LOG_ALL, 1);
    ASSERT_TRUE(QFileInfo::exists(path));

    Sample().log(2);
    ASSERT_EQ(logLines(path).size(), 1);
    EXPECT_TRUE(logLines(path)[0].contains("[-CNSLOG_ERROR-]: cnslog_test.cpp:"))
        << logLines(path)[0].toStdString();

    // A later start on the same day appends to the same file.
    g_CNSLog.initialize();
    Sample().log(0);
    EXPECT_EQ(logLines(path).size(), 2);

    // Removing the marker switches it off at the next start.
    QFile::remove(home.configFile("OPENLOG"));
    g_CNSLog.initialize();
    Sample().log(2);
    EXPECT_EQ(logLines(path).size(), 2);
}

TEST(CNSLog, ThreadsAppendWholeLines) {
    TempHome home;
    const QString path = home.openLog();
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i)
                CNSLOG(0, "thread %d line %d %s", t, i, "0123456789012345678901234567890123456789");
        });
    for (auto& thread : threads)
        thread.join();
    const QStringList lines = logLines(path);
    ASSERT_EQ(lines.size(), kThreads * kLines);
    const QRegularExpression whole(R"(-->>: thread \d line \d+ 0123456789012345678901234567890123456789$)");
    for (const QString& line : lines)
        ASSERT_TRUE(whole.match(line).hasMatch()) << line.toStdString();
}

} // namespace
