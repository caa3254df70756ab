#include "TempHome.h"

#include "AppConfig.h"
#include "PropertyList.h"
#include "SMS/SMSExt.h"
#include "SMS/SMSStorage.h"
#include "StoreFile.h"

#include <QDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString kImsi = QStringLiteral("262021234567890");
const QString kInbox = QStringLiteral("SmsInBoxPC.plist");
const QString kBoxes = QStringLiteral("SMSInBox_") + kImsi;

// A received PDU whose text ends in the two hex digits of n, so that every n is another message.
QString pdu(int n) {
    return QStringLiteral("07912143658709F1040B918100551512F2000011101021436500") +
           QStringLiteral("02C8%1").arg(n & 0xff, 2, 16, QLatin1Char('0')).toUpper();
}

MessageItem draft(const QString& text) {
    return MessageItem::createMessageItem({"+491701"}, text, QString(), QString(),
                                          QDateTime(QDate(2024, 5, 1), QTime(14, 0), Qt::UTC), 0,
                                          SMS_BOX_DRAFT);
}

// Runs body in a child process and waits for it; the child's exit status.
int inChild(const std::function<void()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        body();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// In a child: the process dies (no clean-up of any kind) when it reaches the step.
void dieAt(const QString& step) {
    StoreFile::setFaultHook([step](const QString& reached) {
        if (reached == step)
            _exit(9);
        return true;
    });
}

// What a write killed between its temporary file and the rename leaves beside the store.
void leaveLeftover(const TempHome& home, const QString& store, const QVariant& content) {
    TempHome::writeFile(home.userFile(store + ".Xq3Zk9"), PropertyList::toXml(content));
}

int countPdu(const QString& wanted) {
    std::list<TSMSRecordInPC> records;
    SMSExt::shared().list(kImsi, records);
    return static_cast<int>(std::count_if(records.begin(), records.end(), [&wanted](const TSMSRecordInPC& r) {
        return QString::fromStdString(r.strPdu) == wanted;
    }));
}

} // namespace

TEST(StoreSafety, TwoProcessesWritingTheSameStoresLoseNothing) {
    TempHome home;
    QDir().mkpath(home.userData());
    constexpr int kRounds = 40;
    pid_t children[2];
    for (int writer = 0; writer < 2; ++writer) {
        children[writer] = fork();
        if (children[writer] == 0) {
            for (int round = 0; round < kRounds; ++round) {
                const int n = writer * kRounds + round;
                int index = 0;
                SMSExt::shared().save(kImsi, pdu(n), 12, index);
                SMSStorage(kImsi).saveMessageItem(draft(QString::number(n)));
                AppConfig config;
                config.saveConfigObject(n, QStringLiteral("writer%1").arg(writer));
            }
            _exit(0);
        }
    }
    for (const pid_t child : children)
        waitpid(child, nullptr, 0);

    std::list<TSMSRecordInPC> received;
    SMSExt::shared().list(kImsi, received);
    QStringList drafts;
    for (const MessageItem& item : SMSStorage(kImsi).getDarftList())
        drafts << item.getContent();
    drafts.removeDuplicates();
    EXPECT_EQ(received.size(), 2u * kRounds);
    EXPECT_EQ(PropertyList::readMap(SMSExt::shared().filePath()).value(kImsi).toList().size(), 2 * kRounds);
    EXPECT_EQ(SMSStorage(kImsi).getDarftList().size(), 2 * kRounds);
    EXPECT_EQ(drafts.size(), 2 * kRounds);
    const QVariantMap config = PropertyList::readMap(home.userFile("SystemConfig.plist"));
    EXPECT_EQ(config.value("writer0").toInt(), kRounds - 1);
    EXPECT_EQ(config.value("writer1").toInt(), 2 * kRounds - 1);
}

// A message on its way from the modem: the modem's copy is deleted only after the store returned 0, so a
// death anywhere leaves it on the modem, and the next start stores it again. It must end up stored once.
TEST(StoreSafety, ModemMessageStoredOnceWhateverStepTheProcessDiesAt) {
    // clang-format off
    const struct { QString step; bool dies; } rows[] = {
        {"write " + kInbox, true}, {"written " + kInbox, true}, {"", true}, {"write " + kInbox, false},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step.toStdString() + (row.dies ? " dies" : " fails"));
        TempHome home;
        QDir().mkpath(home.userData());
        int index = 0;
        ASSERT_EQ(SMSExt::shared().save(kImsi, pdu(1), 12, index), 0);
        if (row.step.isEmpty()) {
            const QVariantList stored =
                PropertyList::readMap(SMSExt::shared().filePath()).value(kImsi).toList();
            leaveLeftover(home, kInbox,
                          QVariantMap{{kImsi, stored + QVariantList{QVariantMap{{"SMS_REF", 2},
                                                                                {"SMS_PDU_LEN", 12},
                                                                                {"SMS_PDU", pdu(2)}}}}});
        } else if (row.dies) {
            inChild([&row] {
                dieAt(row.step);
                int ignored = 0;
                SMSExt::shared().save(kImsi, pdu(2), 12, ignored);
            });
        } else {
            // A full disk: the store says so, and the message stays on the modem for the next try.
            StoreFile::setFaultHook([&row](const QString& step) { return step != row.step; });
            EXPECT_NE(SMSExt::shared().save(kImsi, pdu(2), 12, index), 0);
            StoreFile::setFaultHook({});
            EXPECT_EQ(countPdu(pdu(2)), 0);
        }
        // The next start reads the modem again: the message is still there and is stored again.
        ASSERT_EQ(SMSExt::shared().save(kImsi, pdu(2), 12, index), 0);
        EXPECT_EQ(countPdu(pdu(1)), 1);
        EXPECT_EQ(countPdu(pdu(2)), 1);
        EXPECT_EQ(QDir(home.userData()).entryList({kInbox + ".??????"}, QDir::Files), QStringList());
    }
}

// A move killed at any step, or failing its write, leaves the message in exactly one box.
TEST(StoreSafety, MoveLeavesTheMessageInExactlyOneBox) {
    // clang-format off
    const struct { QString step; bool dies; QString box; } rows[] = {
        {"write " + kBoxes, true, SMS_BOX_DRAFT}, {"written " + kBoxes, true, SMS_BOX_ACHIVE},
        {"write " + kBoxes, false, SMS_BOX_DRAFT}, {"", true, SMS_BOX_DRAFT},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step.toStdString() + (row.dies ? " dies" : " fails"));
        TempHome home;
        QDir().mkpath(home.userData());
        {
            SMSStorage store(kImsi);
            ASSERT_EQ(store.saveMessageItem(draft("keep me")), 0);
            ASSERT_EQ(store.saveMessageItem(draft("other")), 0);
        }
        const auto move = [] {
            SMSStorage store(kImsi);
            return store.moveMessageItem(store.getDarftList().first(), SMS_BOX_ACHIVE);
        };
        if (row.step.isEmpty()) {
            // Killed at the rename: the moved state is only in the leftover, beside the old file.
            QVariantMap moved = PropertyList::readMap(home.userFile(kBoxes));
            moved.insert("ACHIEVEBOX", QVariantList{moved.value("DRAFT").toList().takeFirst()});
            leaveLeftover(home, kBoxes, moved);
        } else if (row.dies) {
            inChild([&row, &move] {
                dieAt(row.step);
                move();
            });
        } else {
            StoreFile::setFaultHook([&row](const QString& step) { return step != row.step; });
            EXPECT_EQ(move(), SMSStorage::kSaveFailed);
            StoreFile::setFaultHook({});
        }

        SMSStorage restarted(kImsi);
        QStringList everywhere;
        for (const QString& box : {SMS_BOX_OUTBOX, SMS_BOX_SENDBOX, SMS_BOX_DRAFT, SMS_BOX_ACHIVE})
            for (const MessageItem& item :
                 restarted.getMessageListByBoxType(box).value_or(QList<MessageItem>()))
                everywhere << box + ":" + item.getContent();
        QStringList expected{row.box + ":keep me", SMS_BOX_DRAFT + ":other"};
        everywhere.sort();
        expected.sort();
        EXPECT_EQ(everywhere, expected);
        EXPECT_EQ(QDir(home.userData()).entryList({kBoxes + ".??????"}, QDir::Files), QStringList());
    }
}
