// Faults end to end: the real worker against a simulated stick that is pulled out, falls silent, talks
// nonsense, dribbles or floods, and against full message storages and a computer-side inbox that cannot
// be written.

#include "WorkerWorld.h"

#include "AtSublayerInterface.h"
#include "BLRecords.h"
#include "SMSExt.h"
#include "SmsTypes.h"
#include "UserDataFolder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>

#include <list>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace {

const QString kImsi = QStringLiteral("262021234567890");

class FaultsE2E : public WorkerWorld {
protected:
    int timeOuts() {
        int count = 0;
        onWorker([&count] { count = ComOperation::GetTimeOutCount(); });
        return count;
    }

    // The SMS screen's start, and the SIM's computer-side inbox as the message tool sets it up.
    void prepareMessages(int preferredStorage) {
        ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
        ASSERT_EQ(error(sync(MESSAGE_SMS_USE_PC_INBOX, kImsi)), 0);
        ASSERT_EQ(error(sync(MESSAGE_SMS_SET_PREFERRED_STORAGE, preferredStorage)), 0);
        ASSERT_EQ(error(sync(MESSAGE_SMS_GET_LIST)), 0);
    }
    QVariantList list() {
        const QVariantMap response = sync(MESSAGE_SMS_GET_LIST);
        EXPECT_EQ(error(response), 0);
        return WorkNotification::GetValueObject(response).toList();
    }
    QJsonArray stored(const QString& storage) const {
        const QJsonObject storages =
            _sim->control("dump").value("sms").toObject().value("storages").toObject();
        return storages.value(storage).toObject().value("messages").toArray();
    }
    size_t inboxOnComputer() const {
        std::list<TSMSRecordInPC> records;
        SMSExt::shared().list(kImsi, records);
        return records.size();
    }
};

// The start-up sequence is ATE1, ATE1, ATE0, AT&F, ATE0Q0V1, AT+CMEE=2; the stick goes at each of them.
// The failed start leaves no poll running, so the unplug is told at the next start, as on first start.
TEST_F(FaultsE2E, StickPulledAtEachStepOfStartUp) {
    const char* const steps[] = {"ATE1", "ATE1", "ATE0", "AT&F", "ATE0Q0V1", "AT+CMEE=2"};
    for (int step = 1; step <= 6; ++step) {
        SCOPED_TRACE(testing::Message() << "pulled at command " << step << " " << steps[step - 1]);
        plug();
        set(QStringLiteral("unplug_after %1").arg(step));
        startWorker();
        auto unplugged = listen(MESSAGE_USB_UNPLUGGED);

        QElapsedTimer clock;
        clock.start();
        EXPECT_NE(error(sync(MESSAGE_INIT_WORK_THREAD)), 0);
        EXPECT_LT(clock.elapsed(), 1500);
        EXPECT_EQ(_sim->commands().value(step - 1), steps[step - 1]);
        EXPECT_EQ(_sim->commands().size(), step); // nothing reached the modem after the pull

        EXPECT_EQ(error(sync(MESSAGE_INIT_WORK_THREAD)), 1);
        EXPECT_TRUE(waitFor([&] { return unplugged->size() == 1; }, 2s));

        ASSERT_TRUE(_sim->control("plug").value("ok").toBool());
        EXPECT_EQ(error(sync(MESSAGE_INIT_WORK_THREAD)), 0);
        const QVariantMap info = sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
        EXPECT_EQ(error(info), 0);
        EXPECT_EQ(value<BLEquipmentInfo>(info).strImsi, kImsi);
        stop();
    }
}

// Pulled just as a long command goes out: it ends at once, the poll tells the unplug, a replug recovers.
TEST_F(FaultsE2E, StickPulledInTheMiddleOfLongCommands) {
    // clang-format off
    struct Row { const char* request; QVariant value; const char* pulledAt; };
    const Row rows[] = {
        {"MESSAGE_NETWORK_GET_LIST", {}, "AT+COPS=?"},
        {"MESSAGE_SMS_GET_LIST", {}, "AT+CMGL"},
        {"MESSAGE_SMS_SEND", QVariant::fromValue(BLSmsSendItem{"+491701234567", "Hello"}), "AT+CMGS="},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.request);
        start();
        ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
        set("scan_delay_ms 60000");
        set(QStringLiteral("unplug_on ") + row.pulledAt);
        auto unplugged = listen(MESSAGE_USB_UNPLUGGED);

        QElapsedTimer clock;
        clock.start();
        EXPECT_NE(error(sync(row.request, row.value)), 0);
        EXPECT_LT(clock.elapsed(), 1500);
        EXPECT_TRUE(waitFor([&] { return unplugged->size() == 1; }, 3s));
        EXPECT_EQ(queuedReports(), 0u);

        ASSERT_TRUE(_sim->control("plug").value("ok").toBool());
        set("scan_delay_ms 10");
        ASSERT_EQ(error(sync(MESSAGE_INIT_WORK_THREAD)), 0);
        ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
        EXPECT_EQ(error(sync(row.request, row.value)), 0);
        stop();
    }
}

// Silence and nonsense end every command with a time-out; the stick that comes back is used again.
TEST_F(FaultsE2E, SilentOrGarbledModemTimesOutAndRecovers) {
    for (const char* knob : {"mute", "garbage"}) {
        SCOPED_TRACE(knob);
        start();
        const int before = timeOuts();
        set(QStringLiteral("%1 1").arg(knob));
        QElapsedTimer clock;
        clock.start();
        EXPECT_EQ(error(sync(MESSAGE_PIN_GET_STATE)), 2); // time-out
        EXPECT_LT(clock.elapsed(), 7000);                 // the command's own limit, 5 s
        EXPECT_GT(timeOuts(), before);
        EXPECT_EQ(queuedReports(), 0u);

        set(QStringLiteral("%1 0").arg(knob));
        const QVariantMap info = sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
        EXPECT_EQ(error(info), 0);
        EXPECT_EQ(value<BLEquipmentInfo>(info).strManufacturer, "SIMULATED");
        stop();
    }
}

// Every answer in one-byte pieces, from the first command on: the same results as in one piece.
TEST_F(FaultsE2E, AnswersInOneBytePieces) {
    plug({"--scenario", "full-sim"});
    set("chunk_bytes 1");
    set("chunk_gap_ms 1");
    startWorker();
    ASSERT_EQ(error(sync(MESSAGE_INIT_WORK_THREAD)), 0);
    const QVariantMap info = sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO);
    EXPECT_EQ(error(info), 0);
    EXPECT_EQ(value<BLEquipmentInfo>(info).strImsi, kImsi);
    ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
    const auto texts = [this] {
        QStringList out;
        for (const QVariant& entry : list())
            out << entry.value<BLSmsListItem>().strContent;
        return out;
    };
    const QStringList inPieces = texts();
    EXPECT_GE(inPieces.size(), 10);

    set("chunk_bytes 0");
    EXPECT_EQ(texts(), inPieces);
}

// Unsolicited lines by the thousand, at once and as a stream: identical lines are merged into one, the
// report queue stays bounded and requests still get through.
TEST_F(FaultsE2E, FloodOfUnsolicitedLinesStaysBounded) {
    start();
    set("flood_line RING");
    set("flood 3000");
    set("flood_interval_ms 2");
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 3000) {
        EXPECT_EQ(error(sync(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO)), 0);
        EXPECT_LE(queuedReports(), 1u);
    }
    set("flood_interval_ms 0");
    EXPECT_EQ(error(sync(MESSAGE_PIN_CHECK_STATE)), 0);
}

// A full SIM refuses what the network brings; with the modem memory chosen, messages arrive until that
// is full too, and deleting one makes room again. Nothing stored is lost on the way.
TEST_F(FaultsE2E, FullSimAndFullModemMemoryWhileMessagesArrive) {
    start({"--scenario", "full-sim"});
    ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
    const int before = list().size();
    auto received = listen(MESSAGE_RPT_RECEIVE_SMS);

    EXPECT_EQ(_sim->control("sms +491701234567 Nowhere").value("error").toString(), "storage full");
    ASSERT_EQ(error(sync(MESSAGE_SMS_SET_PREFERRED_STORAGE, SMS_STORAGE_MODEM)), 0);
    int arrived = 0;
    while (_sim->control("sms +491701234567 Arrives").value("ok").toBool()) {
        ++arrived;
        ASSERT_LE(arrived, 2);
        ASSERT_TRUE(waitFor([&] { return static_cast<int>(received->size()) == arrived; }, 6s));
        const auto item = value<BLSmsListItem>(received->back().userInfo);
        EXPECT_EQ(item.nStoreIn, SMS_STORAGE_MODEM);
    }
    EXPECT_GE(arrived, 1);
    EXPECT_EQ(stored("ME").size(), 2);
    EXPECT_EQ(list().size(), before + arrived);

    const auto newest = value<BLSmsListItem>(received->back().userInfo);
    // Message IDs are those of the last listing.
    int newestId = -1;
    for (const QVariant& entry : list()) {
        const auto item = entry.value<BLSmsListItem>();
        if (item.strContent == newest.strContent && item.nStoreIn == SMS_STORAGE_MODEM)
            newestId = item.nRef;
    }
    ASSERT_EQ(error(sync(MESSAGE_SMS_DELETE, newestId)), 0);
    ASSERT_TRUE(_sim->control("sms +491701234567 Room again").value("ok").toBool());
    EXPECT_TRUE(waitFor([&] { return static_cast<int>(received->size()) == arrived + 1; }, 6s));
    EXPECT_EQ(stored("SM").size(), 10);
}

// The network refuses a send with +CMS ERROR: 500; one refusal is tried again, two end the send, also
// after the first part of a long message went out. The next send goes.
TEST_F(FaultsE2E, SendRefusedMidWay) {
    // clang-format off
    // after: parts that go through first
    struct Row { const char* what; int length; int refusals; int after; bool sent; int partsSent; };
    const Row rows[] = {
        {"refused once, tried again", 5, 1, 0, true, 1},
        {"refused twice", 5, 2, 0, false, 0},
        {"long message refused at its second part", 200, 2, 1, false, 1},
        {"long message refused once at its second part", 200, 1, 1, true, 2},
    };
    // clang-format on
    start();
    ASSERT_EQ(error(sync(MESSAGE_SMS_INIT)), 0);
    const auto sentCount = [this] {
        return static_cast<int>(_sim->control("dump").value("sms").toObject().value("sent").toArray().size());
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const int before = sentCount();
        set(QStringLiteral("fail_sends %1").arg(row.refusals));
        set(QStringLiteral("fail_sends_after %1").arg(row.after));
        const QVariant message =
            QVariant::fromValue(BLSmsSendItem{"+491701234567", QString(row.length, 'x')});
        EXPECT_EQ(error(sync(MESSAGE_SMS_SEND, message)) == 0, row.sent);
        EXPECT_EQ(sentCount() - before, row.partsSent);
    }
    EXPECT_EQ(error(sync(MESSAGE_SMS_SEND, QVariant::fromValue(BLSmsSendItem{"+491701234567", "Hello"}))), 0);
}

// A message taken out of the modem memory while the computer-side inbox cannot be written stays in the
// modem (no AT+CMGD) and is moved once the inbox can be written again.
TEST_F(FaultsE2E, MoveToAnUnwritableInboxKeepsTheMessageInTheModem) {
    // clang-format off
    // needsPermissions: root writes through a read-only folder
    const struct { const char* how; bool needsPermissions; } rows[] = {{"read-only folder", true}, {"no room for the file (a file size limit)", false}};
    // clang-format on
    rlimit fileSize{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &fileSize), 0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.how);
        if (row.needsPermissions && geteuid() == 0)
            continue;
        start();
        const QString folder = UserDataFolder::dataPath();
        const QString inbox = SMSExt::shared().filePath();
        prepareMessages(SMS_STORAGE_PC); // moves the scenario's message out of the modem memory
        const size_t pcBefore = inboxOnComputer();
        auto received = listen(MESSAGE_RPT_RECEIVE_SMS);
        if (row.needsPermissions) {
            ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        } else {
            // No file may grow: every write of the store fails, as on a full disk.
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit small{0, fileSize.rlim_max};
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        }

        const qsizetype sentBefore = _sim->commands().size();
        ASSERT_TRUE(_sim->control("sms +491701234567 Keep me").value("ok").toBool());
        ASSERT_TRUE(waitFor([&] { return received->size() == 1; }, 6s));
        const auto item = value<BLSmsListItem>(received->front().userInfo);
        EXPECT_EQ(item.strContent, "Keep me");
        EXPECT_EQ(item.nStoreIn, SMS_STORAGE_MODEM);
        EXPECT_EQ(stored("ME").size(), 1);
        EXPECT_FALSE(_sim->commands().mid(sentBefore).join(' ').contains("AT+CMGD"));

        // Writable again: the next listing moves it.
        if (row.needsPermissions) {
            ASSERT_TRUE(
                QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        } else {
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &fileSize), 0);
        }
        const QVariantList items = list();
        EXPECT_EQ(stored("ME").size(), 0);
        EXPECT_EQ(inboxOnComputer(), pcBefore + 1);
        int kept = 0;
        for (const QVariant& entry : items)
            kept += entry.value<BLSmsListItem>().strContent == "Keep me" ? 1 : 0;
        EXPECT_EQ(kept, 1);
        stop();
        QFile::remove(inbox);
    }
}

} // namespace
