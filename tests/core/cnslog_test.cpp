#include "CNSLog.h"
#include "TempHome.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <thread>
#include <vector>

TEST(CNSLog, NothingWithoutTheMarker) {
    TempHome home;
    CNSLOG(2, "parameter is null");
    CNSLOG_TRACE();
    g_CNSLog.MLog("text");
    EXPECT_TRUE(g_ST_LOG_ALL == 0 && g_CNSLog.logFilePath().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(home.path() + "/.local/state"));
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
    const QStringList lines = QString::fromUtf8(TempHome::readFile(path)).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), kThreads * kLines);
    const QRegularExpression whole(R"(-->>: thread \d line \d+ 0123456789012345678901234567890123456789$)");
    for (const QString& line : lines)
        ASSERT_TRUE(whole.match(line).hasMatch()) << line.toStdString();
}
