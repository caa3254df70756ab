#include "ResourceLocator.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString executableDir() {
    return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absolutePath();
}

bool isInside(const QString& path, const QString& folder) {
    return path == folder || path.startsWith(folder + QLatin1Char('/'));
}

} // namespace

QString ResourceLocator::resourceDir() {
    const QString fromEnvironment = qEnvironmentVariable("DIALTONE_RESOURCE_DIR");
    if (!fromEnvironment.isEmpty()) {
        return QDir::cleanPath(fromEnvironment);
    }
    const QString exeDir = executableDir();
    const QString buildDir = QDir::cleanPath(QStringLiteral(DIALTONE_BUILD_DIR));
    if (isInside(exeDir, buildDir) && QFileInfo(QStringLiteral(DIALTONE_BUILD_RESOURCE_DIR)).isDir()) {
        return QStringLiteral(DIALTONE_BUILD_RESOURCE_DIR);
    }
    const QString besideProgram = QDir::cleanPath(exeDir + QStringLiteral("/../share/dialtone/Resources"));
    if (QFileInfo(besideProgram).isDir()) {
        return besideProgram;
    }
    return QStringLiteral(DIALTONE_INSTALL_RESOURCE_DIR);
}

QString ResourceLocator::resourcePath(const QString& name) {
    return resourceDir() + QLatin1Char('/') + name;
}

QString ResourceLocator::accountDataDir() {
    return QDir::cleanPath(resourceDir() + QStringLiteral("/../AccountData"));
}

QString ResourceLocator::translationsDir() {
    return QDir::cleanPath(resourceDir() + QStringLiteral("/../translations"));
}
