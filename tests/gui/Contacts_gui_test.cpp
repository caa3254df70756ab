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

// What the user types is cut to the SIM's limits; Save waits for a storable entry.
TEST(ContactsGui, EditDialogHoldsTheSimLimits) {
    ContactsTab c;
    ASSERT_TRUE(c.open());
    ContactDialog* dialog = c.openDialog("add");
    ASSERT_NE(dialog, nullptr);
    auto* name = dialog->findChild<QLineEdit*>("name");
    auto* number = dialog->findChild<QLineEdit*>("number");
    auto* save = dialog->findChild<QPushButton*>("save");
    struct Row {
        const char* name;
        const char* number;
        const char* storedName;
        const char* storedNumber;
        bool saveEnabled;
    } rows[] = {
        {"A name far longer than the SIM", "+49301", "A name far lon", "+49301", true},
        {"Shop", "0301 55-77 ab", "Shop", "03015577", true}, // separators and letters are refused
        {"Shop", "*100#", "Shop", "*100#", true},
        {"Shop", "49+30", "Shop", "4930", true}, // a plus only leads
        {"Shop", "+", "Shop", "+", false},
        {"", "5500", "", "5500", false},
        {"Mailbox", "123456789012345678901234", "Mailbox", "12345678901234567890", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.number);
        name->clear();
        number->clear();
        QTest::keyClicks(name, row.name);
        QTest::keyClicks(number, row.number);
        EXPECT_EQ(name->text(), row.storedName);
        EXPECT_EQ(number->text(), row.storedNumber);
        EXPECT_EQ(save->isEnabled(), row.saveEnabled);
    }
}
