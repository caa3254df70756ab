#include "Contacts/ContactsController.h"
#include "SimulatedLink.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

using Result = ContactsController::Result;

// The scenario's phonebooks: SIM 1, 2, 4 of 250, names up to 14, numbers up to 20; modem 1 of 500.
struct ContactsWorld : SimulatorWorld {
    Result result(QSignalSpy& spy) { return latest(spy, Result{{-1, 0}, {}, {}, 0}); }
    QJsonArray simEntries() {
        return sim.control("dump")["phonebooks"].toObject()["SM"].toObject()["entries"].toArray();
    }
    QStringList phonebookCommands() { return sim.commands().filter("AT+CPB"); }

    ContactsController phonebooks{link};
};

} // namespace

// Reading, adding, overwriting and deleting reach the SIM; the limits are read once per modem.
TEST(ContactsController, ReloadAddUpdateRemoveReachTheSim) {
    ContactsWorld w;
    ASSERT_TRUE(w.open());
    QSignalSpy reloaded(&w.phonebooks, &ContactsController::reloaded);
    w.phonebooks.reload();
    ASSERT_TRUE(w.result(reloaded).outcome.ok());
    EXPECT_EQ(w.phonebooks.contacts().size(), 4);
    EXPECT_EQ(std::vector<int>({ContactsController::used(w.phonebooks.storage(), kSimStore),
                                ContactsController::total(w.phonebooks.storage(), kModemStore),
                                ContactsController::maxName(w.phonebooks.limits(), kSimStore)}),
              std::vector<int>({3, 500, 14}));
    const qsizetype limitReadings = w.phonebookCommands().filter("AT+CPBR=?").size();

    QSignalSpy added(&w.phonebooks, &ContactsController::added);
    w.phonebooks.add(kSimStore, "Carla", "+491761112233");
    const Result add = w.result(added);
    ASSERT_TRUE(add.outcome.ok());
    EXPECT_EQ(add.index, 3); // the first free one

    QSignalSpy updated(&w.phonebooks, &ContactsController::updated);
    w.phonebooks.update({kSimStore, "Dora", "+4930445566", add.index});
    ASSERT_TRUE(w.result(updated).outcome.ok());
    const QJsonArray entries = w.simEntries();
    ASSERT_EQ(entries.size(), 4);
    EXPECT_TRUE(entries.contains(
        QJsonObject{{"index", 3}, {"name", "Dora"}, {"number", "+4930445566"}, {"type", 145}}))
        << QJsonDocument(entries).toJson().toStdString();

    QSignalSpy removed(&w.phonebooks, &ContactsController::removed);
    w.phonebooks.remove(kSimStore, add.index);
    ASSERT_TRUE(w.result(removed).outcome.ok());
    EXPECT_EQ(w.simEntries().size(), 3);
    // The limits of the first reading served the writes.
    EXPECT_EQ(w.phonebookCommands().filter("AT+CPBR=?").size(), limitReadings);
}
