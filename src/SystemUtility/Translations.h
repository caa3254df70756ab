#pragma once

#include <QLocale>
#include <QString>

// The user interface's language. install() loads the application's translation for the locale
// ("dialtone_de.qm" for German, from ResourceLocator::translationsDir()) and Qt's own for its dialogs
// ("qtbase_de.qm" from Qt's translations folder), and installs them in the running application in place of
// any installed before; a language without a file stays English. Machine-readable output (the tool's
// --json) must never go through here.
class Translations {
public:
    // True when the application's own translation was found; needs the application object.
    static bool install(const QLocale& locale = QLocale::system(),
                        const QString& folder = QString()); // empty: ResourceLocator::translationsDir()

    // For a program that creates its application object later or not at all (the tool, which makes one only
    // for commands that talk to the modem): the system locale's translations are installed the moment the
    // object is made, or now when it already exists.
    static void installWithApplication();
};
