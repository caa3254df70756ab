#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTest>
#include <QTreeView>

#include "Contacts/ContactDialog.h"
#include "Contacts/ContactsPlugin.h"
#include "GuiTestSupport.h"

namespace {

// The contacts tab on a ready modem with the default SIM phonebook (3 of 250, names up to 14).
struct ContactsTab {
    GuiWorld world;
    ContactsPlugin* tab = nullptr;

    bool open() {
        if (!world.started() || !world.waitForState(ModemLink::State::Ready))
            return false;
        tab = world.show<ContactsPlugin>("contacts");
        return tab && waitForGui([&] { return usage().startsWith("3 of 250 used"); });
    }
    QString usage() const { return tab->findChild<QLabel*>("usage")->text(); }
    // Presses the button ("add", "edit") and returns the edit dialog it opens.
    ContactDialog* openDialog(const char* buttonName) {
        auto* button = tab->findChild<QPushButton*>(buttonName);
        if (!waitForGui([&] { return button->isEnabled(); }))
            return nullptr;
        button->click();
        ContactDialog* dialog = nullptr;
        waitForGui([&] {
            for (auto* candidate : tab->findChildren<ContactDialog*>())
                if (candidate->isVisible())
                    dialog = candidate;
            return dialog != nullptr;
        });
        return dialog;
    }
    void select(const QString& name) {
        auto* view = tab->findChild<QTreeView*>("list");
        const auto found = view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, name);
        if (!found.isEmpty())
            view->setCurrentIndex(found.front());
    }
    bool listShows(const QString& name) const {
        auto* model = tab->findChild<QTreeView*>("list")->model();
        for (int row = 0; row < model->rowCount(); ++row)
            if (model->index(row, 0).data().toString() == name)
                return true;
        return false;
    }
};

QJsonObject SimEntry(SimulatedModem& sim, const QString& name) {
    const QJsonArray entries =
        sim.control("dump").value("phonebooks").toObject().value("SM").toObject().value("entries").toArray();
    for (const QJsonValue& entry : entries)
        if (entry.toObject().value("name").toString() == name)
            return entry.toObject();
    return {};
}

} // namespace

// Add, edit and delete from the app reach the SIM, and the list and its count follow.
TEST(ContactsGui, AddEditDeleteReachTheSim) {
    ContactsTab c;
    ASSERT_TRUE(c.open()) << c.usage().toStdString();
    ContactDialog* dialog = c.openDialog("add");
    ASSERT_NE(dialog, nullptr);
    QTest::keyClicks(dialog->findChild<QLineEdit*>("name"), "Zoe Test");
    QTest::keyClicks(dialog->findChild<QLineEdit*>("number"), "+4915112345#");
    auto* save = dialog->findChild<QPushButton*>("save");
    ASSERT_TRUE(save->isEnabled());
    save->click();

    QJsonObject entry;
    ASSERT_TRUE(waitForGui([&] { return !(entry = SimEntry(c.world.sim(), "Zoe Test")).isEmpty(); }));
    EXPECT_EQ(entry.value("number").toString(), "+4915112345#");
    ASSERT_TRUE(waitForGui([&] { return c.usage().startsWith("4 of 250 used"); })) << c.usage().toStdString();
    EXPECT_TRUE(c.listShows("Zoe Test"));
    EXPECT_TRUE(c.listShows("Anna Schmidt"));

    // Editing overwrites the same index.
    c.select("Zoe Test");
    dialog = c.openDialog("edit");
    ASSERT_NE(dialog, nullptr);
    auto* number = dialog->findChild<QLineEdit*>("number");
    EXPECT_EQ(number->text(), "+4915112345#");
    number->clear();
    QTest::keyClicks(number, "+4915199999");
    dialog->findChild<QPushButton*>("save")->click();
    ASSERT_TRUE(waitForGui(
        [&] { return SimEntry(c.world.sim(), "Zoe Test").value("number").toString() == "+4915199999"; }));
    EXPECT_EQ(SimEntry(c.world.sim(), "Zoe Test").value("index"), entry.value("index"));

    // Deleting asks first.
    ASSERT_TRUE(waitForGui([&] { return c.tab->findChild<QPushButton*>("delete")->isEnabled(); }));
    c.select("Zoe Test");
    c.tab->findChild<QPushButton*>("delete")->click();
    QMessageBox* confirm = nullptr;
    ASSERT_TRUE(waitForGui([&] { return (confirm = c.tab->findChild<QMessageBox*>("confirmDelete")); }));
    confirm->button(QMessageBox::Yes)->click();
    ASSERT_TRUE(waitForGui([&] { return c.usage().startsWith("3 of 250 used"); })) << c.usage().toStdString();
    EXPECT_TRUE(SimEntry(c.world.sim(), "Zoe Test").isEmpty());
    EXPECT_FALSE(c.listShows("Zoe Test"));
}

// Names are cut to the SIM's limit; numbers are read as people type them, and what cannot be stored is
// said under the field while Save waits.
TEST(ContactsGui, EditDialogHoldsTheSimLimits) {
    ContactsTab c;
    ASSERT_TRUE(c.open());
    ContactDialog* dialog = c.openDialog("add");
    ASSERT_NE(dialog, nullptr);
    auto* name = dialog->findChild<QLineEdit*>("name");
    auto* number = dialog->findChild<QLineEdit*>("number");
    auto* save = dialog->findChild<QPushButton*>("save");
    auto* error = dialog->findChild<QLabel*>("numberError");
    ASSERT_TRUE(error);
    struct Row {
        const char* name;
        const char* number;
        const char* storedName;
        const char* stored; // what Save stores; empty when refused
        const char* reason; // shown under the number; empty for none
    };
    // clang-format off
    const Row rows[] = {
        {"A name far longer than the SIM", "+49 170 1234567", "A name far lon", "+491701234567", ""},
        {"Shop",    "(0170) 123-4567",           "Shop",    "+491701234567", ""},
        {"Shop",    "*100#",                     "Shop",    "*100#",         ""},
        {"Shop",    "0301 55-77 ab",             "Shop",    "",              "letters are not allowed"},
        {"Shop",    "49+30",                     "Shop",    "",              "is not a phone number"},
        {"Shop",    "+",                         "Shop",    "",              "empty"},
        {"",        "0170 1234567",              "",        "+491701234567", ""},
        {"Mailbox", "1234567890123456789012345", "Mailbox", "",              "has 25 digits"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.number);
        name->clear();
        number->clear();
        QTest::keyClicks(name, row.name);
        QTest::keyClicks(number, row.number);
        EXPECT_EQ(name->text(), row.storedName);
        EXPECT_EQ(dialog->number(), row.stored);
        EXPECT_EQ(error->isHidden(), *row.reason == '\0');
        EXPECT_TRUE(error->text().contains(row.reason)) << error->text().toStdString();
        EXPECT_EQ(save->isEnabled(), *row.name != '\0' && *row.stored != '\0');
    }
}
