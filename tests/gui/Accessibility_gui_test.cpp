// What a screen reader finds in the desktop app: every control of every tab and dialog has a name it can
// say, and the painted widgets also say what they show.

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <gtest/gtest.h>

#include <functional>

#include "CNSSignalBars.h"
#include "GuiTestSupport.h"
#include "PinDialog.h"
#include "Settings/SettingsPlugin.h"
#include "Statistics/CNSTrafficChart.h"

namespace {

bool IsPainted(const QWidget* widget) {
    return qobject_cast<const CNSSignalBars*>(widget) || qobject_cast<const CNSTrafficChart*>(widget);
}

// Controls a user tabs to or reads. Parts Qt builds inside a control (a combo box's line edit, a list's
// header, a scroll area's bars) are announced through their owner.
bool NeedsName(const QWidget* widget) {
    if (!widget->isVisible() || widget->objectName().startsWith(QLatin1String("qt_")))
        return false;
    for (const QWidget* up = widget->parentWidget(); up; up = up->parentWidget()) {
        if (qobject_cast<const QComboBox*>(up) || qobject_cast<const QAbstractSpinBox*>(up) ||
            qobject_cast<const QAbstractItemView*>(up))
            return false;
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        return button->text().isEmpty();
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget) ||
           qobject_cast<const QAbstractItemView*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
           qobject_cast<const QAbstractSlider*>(widget) || qobject_cast<const QPlainTextEdit*>(widget) ||
           IsPainted(widget);
}

// "QLineEdit 'recipients' in ComposeDialog" for each visible control without a name (or, painted, without
// a description of what it shows).
QStringList Unnamed() {
    QStringList found;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        QList<QWidget*> widgets = top->findChildren<QWidget*>();
        widgets.prepend(top);
        for (QWidget* widget : widgets) {
            if (!NeedsName(widget))
                continue;
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
            if (!accessible || accessible->text(QAccessible::Name).trimmed().isEmpty() ||
                (IsPainted(widget) && accessible->text(QAccessible::Description).isEmpty()))
                found << QStringLiteral("%1 '%2' in %3")
                             .arg(QLatin1String(widget->metaObject()->className()), widget->objectName(),
                                  QLatin1String(widget->window()->metaObject()->className()));
        }
    }
    return found;
}

// The dialog a click on the owner's button opened, once it shows.
QDialog* Opened(QWidget* owner, const char* button) {
    auto* trigger = owner->findChild<QPushButton*>(QLatin1String(button));
    if (!trigger || !waitForGui([&] { return trigger->isEnabled(); }))
        return nullptr;
    trigger->click();
    QDialog* dialog = nullptr;
    waitForGui([&] {
        for (QDialog* candidate : owner->findChildren<QDialog*>())
            dialog = candidate->isVisible() ? candidate : dialog;
        return dialog != nullptr;
    });
    return dialog;
}

} // namespace

TEST(AccessibilityGui, EveryControlOfEveryTabAndDialogHasAName) {
    GuiWorld world;
    ASSERT_TRUE(world.started());
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    MainWindow& window = world.window();
    const auto tab = [&](const char* name) {
        return [&window, name]() -> QWidget* { return window.showModule(QLatin1String(name)); };
    };
    const auto section = [&](const char* name) {
        return [&window, name]() -> QWidget* {
            auto* settings = qobject_cast<SettingsPlugin*>(window.showModule(QStringLiteral("settings")));
            if (settings)
                settings->showSection(QLatin1String(name));
            return settings;
        };
    };
    const auto messages = [&] { return window.showModule(QStringLiteral("messages")); };
    const auto contacts = [&] { return window.showModule(QStringLiteral("contacts")); };
    // clang-format off
    const std::vector<std::pair<const char*, std::function<QWidget*()>>> views = {
        {"connect", tab("connect")}, {"messages", messages}, {"contacts", contacts},
        {"statistics", tab("statistics")}, {"account", tab("account")}, {"toolkit", tab("toolkit")},
        {"network", tab("network")}, {"profiles", section("profiles")}, {"pin", section("pin")},
        {"sms", section("sms")}, {"sounds", section("sounds")},
        {"compose", [&] { return Opened(messages(), "new"); }},
        {"contact", [&] { return Opened(contacts(), "add"); }},
        {"profile", [&] { return Opened(section("profiles")(), "addProfile"); }},
        {"pin prompt", [&] { auto* d = new PinDialog(world.link(), false, &window); d->show(); return d; }},
        {"puk prompt", [&] { auto* d = new PinDialog(world.link(), true, &window); d->show(); return d; }},
    };
    // clang-format on
    for (const auto& [view, open] : views) {
        QWidget* shown = open();
        ASSERT_NE(shown, nullptr) << view;
        QApplication::processEvents();
        const QStringList unnamed = Unnamed();
        EXPECT_TRUE(unnamed.isEmpty()) << view << ": " << unnamed.join(QStringLiteral(", ")).toStdString();
        if (auto* dialog = qobject_cast<QDialog*>(shown)) {
            dialog->setAttribute(Qt::WA_DeleteOnClose);
            dialog->close();
        }
    }
}
