#include "Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>
#include <vector>

#include "ResourceLocator.h"

namespace {

// Owned here rather than by the application object: the tool may make and end more than one.
std::vector<std::unique_ptr<QTranslator>>& installed() {
    static std::vector<std::unique_ptr<QTranslator>> translators;
    return translators;
}

bool add(const QLocale& locale, const QString& name, const QString& folder) {
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(locale, name, QStringLiteral("_"), folder) ||
        !QCoreApplication::installTranslator(translator.get()))
        return false;
    installed().push_back(std::move(translator));
    return true;
}

void installSystemLocale() {
    Translations::install();
}

} // namespace

bool Translations::install(const QLocale& locale, const QString& folder) {
    if (!QCoreApplication::instance())
        return false;
    installed().clear(); // a translator leaves the application when it is destroyed
    add(locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return add(locale, QStringLiteral("dialtone"),
               folder.isEmpty() ? ResourceLocator::translationsDir() : folder);
}

void Translations::installWithApplication() {
    qAddPreRoutine(installSystemLocale);
}
