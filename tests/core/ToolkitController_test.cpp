#include "SimulatedLink.h"

#include "SAT/ToolkitController.h"

#include <QJsonArray>

#include <optional>
#include <string>

namespace {

QStringList ItemsOf(const BLSatCommand& command) {
    QStringList items;
    for (const BLSatMenuItem& item : command.lstItems)
        items << QString::number(item.nItemId) + ":" + item.strText;
    return items;
}

QStringList CardHeard(const SimulatedModem& sim) {
    QStringList heard;
    for (const QJsonValue& response : sim.control("dump")["stk"].toObject()["responses"].toArray())
        heard << response.toString();
    return heard;
}

struct Result {
    std::optional<Outcome> outcome;
    BLSatCommand command;
    ToolkitController::Result sink() {
        return [this](Outcome answer, const BLSatCommand& received) {
            outcome = answer;
            command = received;
        };
    }
    bool arrived() {
        return waitFor([this] { return outcome.has_value(); }, std::chrono::seconds(15));
    }
};

} // namespace

// The card's dialogues through the worker: each answer brings the card's next command, announced at once
// or after a while (then the worker is asked again); answers that cannot be built never reach the card.
TEST(ToolkitController, MenuAndDialoguesWithTheSimulatedCard) {
    SimulatedLink modem;
    ASSERT_TRUE(modem.reaches(ModemLink::State::Ready));
    ToolkitController toolkit(modem.link);
    QSignalSpy received(&toolkit, &ToolkitController::commandReceived);
    QSignalSpy failed(&toolkit, &ToolkitController::failed);
    QSignalSpy support(&toolkit, &ToolkitController::supportChanged);

    Result menu;
    toolkit.readMenu(menu.sink());
    ASSERT_TRUE(menu.arrived());
    ASSERT_TRUE(menu.outcome->ok()) << menu.outcome->code;
    EXPECT_EQ(menu.command.strText, "SIM Services");
    EXPECT_EQ(ItemsOf(menu.command), (QStringList{"1:News", "2:Games", "3:Offers"}));
    ASSERT_EQ(support.size(), 1);
    EXPECT_TRUE(support.at(0).at(0).toBool());

    // clang-format off
    // delayMs: the card's delay before it announces its next command; command and text: what the card sent
    // next; heard: the card's record of the answer, nullptr when it got none, "?" unchecked
    const struct { const char* delayMs; BLSatResponse answer; int result; int command; QString text; const char* heard; } rows[] = {
        {"200", {17, 0, 2, {}}, WORKER_OK, 11, "Games", "0,0,2"},
        {"1500", {11, 0, 1, {}}, WORKER_OK, 3, "Capital of France?", "11,0,,1"},
        {"0", {3, 0, 0, "Paris"}, WORKER_OK, 1, "Thank you!", "3,0,,\"Paris\""},
        {"200", {1, 0, 0, {}}, WORKER_OK, 20, "", "1,0,"},
        {"200", {99, 0, 1, {}}, WORKER_ERR_GENERAL, 0, "", nullptr},
        {"200", {17, 0, 256, {}}, WORKER_ERR_GENERAL, 0, "", nullptr},
        {"200", {17, 0, 9, {}}, WORKER_ERR_GENERAL, 0, "", "?"}, // the card refuses an item it lacks
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.heard ? row.heard : "nothing sent");
        ASSERT_TRUE(modem.sim.control(QStringLiteral("set stk_delay_ms %1").arg(row.delayMs))["ok"].toBool());
        const qsizetype heardBefore = CardHeard(modem.sim).size();
        received.clear();
        failed.clear();
        Result next;
        toolkit.answer(row.answer, next.sink());
        ASSERT_TRUE(next.arrived());
        EXPECT_EQ(next.outcome->code, row.result);
        EXPECT_EQ(received.size(), row.result == WORKER_OK ? 1 : 0);
        EXPECT_EQ(failed.size(), 1 - received.size());
        EXPECT_EQ(next.command.nCommand, row.command);
        EXPECT_EQ(next.command.strText, row.text);
        const QStringList heard = CardHeard(modem.sim);
        if (row.heard && std::string(row.heard) == "?")
            continue;
        ASSERT_EQ(heard.size(), heardBefore + (row.heard ? 1 : 0));
        EXPECT_TRUE(!row.heard || heard.back() == row.heard) << heard.join(' ').toStdString();
    }
}
