// The desktop app in German against the simulated modem: no widget on any tab keeps an English text that
// has a German translation (a text set without tr(), or before the translator, would).

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QHash>
#include <QTabBar>
#include <QXmlStreamReader>

#include "GuiTestSupport.h"
#include "ModulePlugin.h"
#include "Translations.h"

namespace {

// English source text -> German, for the entries whose German differs.
QHash<QString, QString> GermanTexts() {
    QHash<QString, QString> texts;
    QFile file(QStringLiteral(DIALTONE_TS_DE));
    file.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&file);
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("source")) {
            source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            const QString german = xml.readElementText(QXmlStreamReader::SkipChildElements);
            if (german != source && !source.contains(QLatin1String("%n"))) // plural forms: child elements
                texts.insert(source, german);
        }
    }
    return texts;
}

// Every text a user can read on the widget: labels, buttons, titles, tabs, headers, items, actions.
QStringList TextsOf(QWidget* widget) {
    QStringList texts{widget->toolTip(), widget->windowTitle()};
    for (const char* property : {"text", "title", "placeholderText"}) // labels, buttons, group boxes, fields
        texts << widget->property(property).toString();
    if (auto* tabs = qobject_cast<QTabBar*>(widget))
        for (int i = 0; i < tabs->count(); ++i)
            texts << tabs->tabText(i);
    if (auto* combo = qobject_cast<QComboBox*>(widget))
        for (int i = 0; i < combo->count(); ++i)
            texts << combo->itemText(i);
    if (auto* view = qobject_cast<QAbstractItemView*>(widget); view && view->model())
        for (int column = 0; column < view->model()->columnCount(); ++column)
            texts << view->model()->headerData(column, Qt::Horizontal).toString();
    for (QAction* action : widget->actions())
        texts << action->text() << action->toolTip();
    return texts;
}

QStringList EnglishLeft(QWidget& window, const QHash<QString, QString>& german) {
    QStringList left;
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets.prepend(&window);
    for (QWidget* widget : widgets)
        for (const QString& text : TextsOf(widget))
            if (german.contains(text))
                left << QStringLiteral("%1 %2: \"%3\"")
                            .arg(QLatin1String(widget->metaObject()->className()), widget->objectName(),
                                 text);
    left.removeDuplicates();
    return left;
}

} // namespace

TEST(GermanRunGui, EveryTabShowsGermanTexts) {
    ensureGuiApplication();
    ASSERT_TRUE(Translations::install(QLocale(QLocale::German, QLocale::Germany)))
        << "dialtone_de.qm not found: build the dialtone_translations target";
    struct English {
        ~English() { Translations::install(QLocale(QLocale::English)); }
    } backToEnglishAfterwards;
    const QHash<QString, QString> german = GermanTexts();
    ASSERT_GT(german.size(), 100) << DIALTONE_TS_DE;

    GuiWorld world;
    ASSERT_TRUE(world.ready());
    QStringList left;
    for (ModulePlugin* module : world.window().modules()) {
        if (!world.window().isModuleShown(module))
            continue;
        world.window().showModule(module->moduleName());
        // The modem's first answers fill the tab in; what stays English past them is a fault.
        QStringList here;
        waitForGui([&] { return (here = EnglishLeft(world.window(), german)).isEmpty(); },
                   std::chrono::seconds(3));
        left << here;
    }
    left.removeDuplicates();
    EXPECT_TRUE(left.isEmpty()) << "English left:\n  " << left.join(QStringLiteral("\n  ")).toStdString();
}
