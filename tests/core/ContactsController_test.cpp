#include "BLRecords.h"
#include "Contacts/ContactsController.h"
#include "E2ESupport.h"
#include "QtEventLoop.h"
#include "TempHome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;
using Result = ContactsController::Result;
using Reason = ContactsController::Refusal::Reason;

// The simulated modem with the scenario's phonebooks (SIM 1, 2, 4 of 250, names up to 14, numbers up to 20;
// modem 1 of 500), opened the way the tool opens it.
struct ContactsWorld {
    explicit ContactsWorld(const QByteArray& scenario = {}) : sim(arguments(scenario)) {
        ensureApplication();
        registerRecordMetaTypes();
        opened = sim.started() && link.open(30000) == WORKER_OK;
    }
    QStringList arguments(const QByteArray& scenario) {
        if (scenario.isEmpty())
            return {};
        TempHome::writeFile(home.path() + "/scenario.json", scenario);
        return {"--scenario", home.path() + "/scenario.json"};
    }
    // The result of the spy's latest signal, once it came.
    Result result(QSignalSpy& spy) {
        EXPECT_TRUE(waitFor([&] { return !spy.isEmpty(); }, 20s)) << spy.signal().toStdString();
        Result none;
        none.outcome.code = -1;
        return spy.isEmpty() ? none : spy.last().first().value<Result>();
    }
    QJsonArray simEntries() {
        return sim.control("dump")["phonebooks"].toObject()["SM"].toObject()["entries"].toArray();
    }
    // The sim's phonebook commands, in order.
    QStringList phonebookCommands() { return sim.commands().filter("AT+CPB"); }

    TempHome home;
    SimulatedModem sim;
    ModemLink link;
    ContactsController phonebooks{link};
    bool opened = false;
};

} // namespace

// Reading, adding, overwriting and deleting reach the SIM; the limits are read once per modem.
TEST(ContactsController, ReloadAddUpdateRemoveReachTheSim) {
    ContactsWorld w;
    ASSERT_TRUE(w.opened);
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

// What does not fit is refused with its figures and never written; a write the modem refuses comes back
// with its result.
TEST(ContactsController, WritesThatCannotFitAreRefusedBeforeSending) {
    // clang-format off
    struct Row { const char* scenario; const char* name; const char* number; Reason reason; int have; int limit; int code; };
    const char* const full =
        R"({"phonebooks":{"SM":{"capacity":2,"entries":[{"index":1,"name":"A","number":"1"},{"index":2,"name":"B","number":"2"}]}}})";
    const Row rows[] = {
        {"",   "Alexandra Schmidt-Meyer", "+4917012345",              Reason::NameTooLong,   23, 14, WORKER_ERR_INVALID_ARGUMENT},
        {"",   "Carla",                   "+491701234567890123456",   Reason::NumberTooLong, 21, 20, WORKER_ERR_INVALID_ARGUMENT},
        {full, "Carla",                   "+4917012345",              Reason::Full,          2,  2,  WORKER_ERR_GENERAL},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ContactsWorld w(row.scenario);
        ASSERT_TRUE(w.opened);
        const int before = w.simEntries().size();
        QSignalSpy added(&w.phonebooks, &ContactsController::added);
        w.phonebooks.add(kSimStore, row.name, row.number);
        const Result result = w.result(added);
        EXPECT_EQ(result.outcome.code, row.code);
        EXPECT_EQ(result.refusal.reason, row.reason);
        EXPECT_EQ(std::pair(result.refusal.have, result.refusal.limit), std::pair(row.have, row.limit));
        EXPECT_EQ(w.simEntries().size(), before);
        EXPECT_TRUE(w.phonebookCommands().filter("AT+CPBW").isEmpty());
    }
}
