#pragma once

#include <QString>

#include <atomic>
#include <mutex>

// The application's diagnostic log, one instance g_CNSLog shared by every thread.
//
// Logging is on only while the marker file "OPENLOG" exists in the configuration folder
// (~/.config/dialtone) when the log starts: on first use, or at initialize(). The lines go to
// LOG_<dd>_<MM>_<yyyy>.log in the state folder (~/.local/state/dialtone), named after the start day, appended:
//   2024-05-01 14:00:00 +0200 [-CNSLOG_ERROR-]: AppConfig.cpp:42 AppConfig::f VER:0.1.0-->>: text
//
// Levels: 0 normal, 1 warning, 2 and 3 error (both follow g_ST_LOG_ERROR), 4 test; 5 and negative levels
// are never written; above 5 follows g_ST_LOG_NORMAL with the level-0 tag. Lines are formatted outside
// the lock and appended whole.

// Switches, all on at start; g_ST_LOG_ALL is set from the marker file when the log starts.
extern std::atomic<unsigned char> g_ST_LOG_ALL;
extern std::atomic<unsigned char> g_ST_LOG_NORMAL;
extern std::atomic<unsigned char> g_ST_LOG_WARNNING;
extern std::atomic<unsigned char> g_ST_LOG_ERROR;
extern std::atomic<unsigned char> g_ST_LOG_FATAL_ERROR; // not consulted: level 3 follows g_ST_LOG_ERROR
extern std::atomic<unsigned char> g_ST_LOG_FOR_TEST;
extern std::atomic<unsigned char> g_ST_LOG_TRACE_ENTER;
extern std::atomic<unsigned char> g_SHOW_LINE_NUMBER;
extern std::atomic<unsigned char> g_SHOW_FILE_NAME;
extern std::atomic<unsigned char> g_SHOW_FUNCTION;

class CNSLog {
public:
    constexpr CNSLog() = default;
    ~CNSLog();
    CNSLog(const CNSLog&) = delete;
    CNSLog& operator=(const CNSLog&) = delete;

    // Looks for the marker, then creates the log folder and opens the day's file. Runs by itself on
    // first use; calling it again starts over (a new $HOME, a marker created or removed).
    void initialize();

    // printf-style (a QString goes in as %s with qPrintable). fileName may be a full path (its last
    // component is shown); function may be __PRETTY_FUNCTION__ (shown as Class::method).
    void CNSLogType(int level, const char* fileName, const char* function, int lineNumber, const char* format,
                    ...) __attribute__((format(printf, 6, 7)));

    // "Enter Function:<name>" while g_ST_LOG_TRACE_ENTER is on.
    void PrintCurrentFunction(const char* function);

    // Appends text as UTF-8 when the file is open, SIM secrets masked (MaskSecrets).
    void MLog(const QString& text);

    // The day's file of the current start, "" while logging is off.
    QString logFilePath();

    static QString logFolderPath();
    static QString markerPath();
    static const char* levelTag(int level);

private:
    void ensureStarted();
    void start(); // with _startLock held

    std::atomic<bool> _started{false};
    std::mutex _startLock;
    std::mutex _lock; // serialises the appends and the switch to another file
    int _fd = -1;
    QString _filePath;
};

extern CNSLog g_CNSLog;

#define CNSLOG(level, ...) g_CNSLog.CNSLogType((level), __FILE__, __PRETTY_FUNCTION__, __LINE__, __VA_ARGS__)
#define CNSLOG_TRACE() g_CNSLog.PrintCurrentFunction(__PRETTY_FUNCTION__)
