#include "CNSLog.h"

#include "ConvertUtilty.h"
#include "DebugSink.h"
#include "PrivateFile.h"
#include "UserDataFolder.h"

#include <QDate>
#include <QDateTime>
#include <QFileInfo>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

std::atomic<unsigned char> g_ST_LOG_ALL{1};
std::atomic<unsigned char> g_ST_LOG_NORMAL{1};
std::atomic<unsigned char> g_ST_LOG_WARNNING{1};
std::atomic<unsigned char> g_ST_LOG_ERROR{1};
std::atomic<unsigned char> g_ST_LOG_FATAL_ERROR{1};
std::atomic<unsigned char> g_ST_LOG_FOR_TEST{1};
std::atomic<unsigned char> g_ST_LOG_TRACE_ENTER{1};
std::atomic<unsigned char> g_SHOW_LINE_NUMBER{1};
std::atomic<unsigned char> g_SHOW_FILE_NAME{1};
std::atomic<unsigned char> g_SHOW_FUNCTION{1};

constinit CNSLog g_CNSLog;

namespace {

bool levelEnabled(int level) {
    switch (level) {
    case 0:
        return g_ST_LOG_NORMAL != 0;
    case 1:
        return g_ST_LOG_WARNNING != 0;
    case 2:
    case 3:
        return g_ST_LOG_ERROR != 0;
    case 4:
        return g_ST_LOG_FOR_TEST != 0;
    default:
        return level > 5 && g_ST_LOG_NORMAL != 0;
    }
}

QString lastPathComponent(const char* path) {
    if (!path) {
        return QStringLiteral("");
    }
    const char* slash = std::strrchr(path, '/');
    return QString::fromUtf8(slash ? slash + 1 : path);
}

// "bool AppConfig::saveUserAPNItem(int, const APNInfo&)" -> "AppConfig::saveUserAPNItem".
QString functionLabel(const char* function) {
    if (!function) {
        return QStringLiteral("");
    }
    std::string_view name(function);
    if (const auto paren = name.find('('); paren != std::string_view::npos && paren > 0) {
        name = name.substr(0, paren);
    }
    if (const auto space = name.rfind(' '); space != std::string_view::npos) {
        name = name.substr(space + 1);
    }
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

QString formatMessage(const char* format, va_list args) {
    if (!format) {
        return QStringLiteral("");
    }
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length <= 0) {
        return QStringLiteral("");
    }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, args);
    text.resize(static_cast<std::size_t>(length));
    return QString::fromStdString(text);
}

QString now() {
    return ConvertUtilty::standardDateText(QDateTime::currentDateTime());
}

} // namespace

CNSLog::~CNSLog() {
    std::lock_guard guard(_lock);
    if (_fd >= 0) {
        ::close(_fd);
        _fd = -1;
    }
}

QString CNSLog::logFolderPath() {
    return UserDataFolder::statePath();
}

QString CNSLog::markerPath() {
    return QStringLiteral("%1/%2").arg(UserDataFolder::configPath(), QStringLiteral("OPENLOG"));
}

const char* CNSLog::levelTag(int level) {
    static const char* const tags[] = {"[-CNSLOG-]:", "[-CNSLOG_WARNNING-]:", "[-CNSLOG_ERROR-]:",
                                       "[-CNSLOG_FATAL_ERROR-]:", "[-CNSLOG_FOR_TEST-]:"};
    return level >= 0 && level <= 4 ? tags[level] : tags[0];
}

void CNSLog::initialize() {
    std::lock_guard startGuard(_startLock);
    start();
}

void CNSLog::ensureStarted() {
    if (_started) {
        return;
    }
    std::lock_guard startGuard(_startLock);
    if (!_started) {
        start();
    }
}

void CNSLog::start() {
    const bool on = QFileInfo::exists(markerPath());
    int fd = -1;
    QString path;
    if (on) {
        const QString folder = logFolderPath();
        if (!PrivateFile::makeFolder(folder)) {
            syslog(LOG_ERR, "Create log file failed!!!");
        }
        const QDate today = QDate::currentDate();
        path = QStringLiteral("%1/%2_%3.log")
                   .arg(folder, QStringLiteral("LOG"),
                        QString::asprintf("%02d_%02d_%04d", today.day(), today.month(), today.year()));
        fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        PrivateFile::restrictDescriptor(fd);
    }
    {
        std::lock_guard guard(_lock);
        if (_fd >= 0) {
            ::close(_fd);
        }
        _fd = fd;
        _filePath = fd >= 0 ? path : QString();
    }
    g_ST_LOG_ALL = on ? 1 : 0;
    _started = true;
}

void CNSLog::CNSLogType(int level, const char* fileName, const char* function, int lineNumber,
                        const char* format, ...) {
    ensureStarted();
    if (!g_ST_LOG_ALL || !levelEnabled(level)) {
        return;
    }
    va_list args;
    va_start(args, format);
    const QString message = formatMessage(format, args);
    va_end(args);

    const QString file = g_SHOW_FILE_NAME ? lastPathComponent(fileName) : QString();
    const QString line = g_SHOW_LINE_NUMBER ? QString::number(lineNumber) : QString();
    const QString func = g_SHOW_FUNCTION ? functionLabel(function) : QString();
    MLog(QStringLiteral("%1 %2 %3:%4 %5 VER:%6-->>: %7\n")
             .arg(now(), QString::fromLatin1(levelTag(level)), file, line, func,
                  QStringLiteral(DIALTONE_VERSION), message));
}

void CNSLog::PrintCurrentFunction(const char* function) {
    ensureStarted();
    if (!g_ST_LOG_ALL || !g_ST_LOG_TRACE_ENTER) {
        return;
    }
    MLog(QStringLiteral("%1 Enter Function:%2\n").arg(now(), functionLabel(function)));
}

void CNSLog::MLog(const QString& text) {
    ensureStarted();
    // PINs and PUKs in an AT command never reach the file.
    const std::string masked = MaskSecrets(text.toStdString());
    const QByteArray bytes = QByteArray::fromStdString(masked);
    std::lock_guard guard(_lock);
    if (_fd < 0) {
        return;
    }
    ::lseek(_fd, 0, SEEK_END);
    const char* data = bytes.constData();
    std::size_t left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(_fd, data, left);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            break;
        }
        data += written;
        left -= static_cast<std::size_t>(written);
    }
}

QString CNSLog::logFilePath() {
    ensureStarted();
    std::lock_guard guard(_lock);
    return _filePath;
}
