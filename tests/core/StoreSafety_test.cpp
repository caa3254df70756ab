#include "TempHome.h"

#include "AppConfig.h"
#include "PropertyList.h"
#include "SMS/SMSStorage.h"
#include "SMSExt.h"
#include "StoreFile.h"

#include <QDir>

#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString kImsi = QStringLiteral("262021234567890");

// A received PDU whose text ends in the hex digits of n: every n is another message.
QString pdu(int n) {
    return QStringLiteral("07912143658709F1040B918100551512F200001110102143650002C8%1")
        .arg(n & 0xff, 2, 16, QLatin1Char('0'))
        .toUpper();
}

MessageItem draft(const QString& text) {
    return MessageItem::createMessageItem({"+491701"}, text, {}, {},
                                          QDateTime(QDate(2024, 5, 1), QTime(14, 0)), 0, SMS_BOX_DRAFT);
}

pid_t inChild(const std::function<void()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        body();
        _exit(0);
    }
    return child;
}

// Every record stored: "inbox:<last PDU digits>" and "<box>:<text>", sorted.
QStringList stored() {
    QStringList all;
    for (const QVariant& record : PropertyList::readMap(SMSExt::shared().filePath()).value(kImsi).toList())
        all << "inbox:" + record.toMap().value("SMS_PDU").toString().right(2);
    SMSStorage boxes(kImsi);
    for (const QString& box : {SMS_BOX_OUTBOX, SMS_BOX_SENDBOX, SMS_BOX_DRAFT, SMS_BOX_ACHIVE})
        for (const MessageItem& item : boxes.getMessageListByBoxType(box).value_or(QList<MessageItem>()))
            all << box + ":" + item.getContent();
    all.sort();
    return all;
}

} // namespace

TEST(StoreSafety, TwoProcessesWritingTheSameStoresLoseNothing) {
    TempHome home;
    constexpr int kRounds = 40;
    QStringList expected;
    std::vector<pid_t> writers;
    for (int writer = 0; writer < 2; ++writer) {
        for (int n = writer * kRounds; n < (writer + 1) * kRounds; ++n)
            expected << "inbox:" + pdu(n).right(2) << SMS_BOX_DRAFT + ":" + QString::number(n);
        writers.push_back(inChild([writer] {
            for (int n = writer * kRounds; n < (writer + 1) * kRounds; ++n) {
                int index = 0;
                SMSExt::shared().save(kImsi, pdu(n), 12, index);
                SMSStorage(kImsi).saveMessageItem(draft(QString::number(n)));
                AppConfig().saveConfigObject(n, QStringLiteral("writer%1").arg(writer));
            }
        }));
    }
    for (const pid_t writer : writers)
        waitpid(writer, nullptr, 0);
    expected.sort();
    EXPECT_EQ(stored(), expected);
    const QVariantMap config = PropertyList::readMap(home.configFile("SystemConfig.plist"));
    EXPECT_EQ(config.value("writer0").toInt(), kRounds - 1);
    EXPECT_EQ(config.value("writer1").toInt(), 2 * kRounds - 1);
}

// A modem message's store and a move between boxes, with the process killed at a step, the write failing
// (a full disk) or killed at the rename (the new content only in QSaveFile's leftover). Whatever happens,
// after the next start every message is there exactly once, and no leftover remains. The modem's copy is
// deleted only after the store succeeded, so the next start always reads it from the modem again.
TEST(StoreSafety, EveryMessageOnceAfterADeathOrAFailedWriteAtEachStep) {
    enum Fault { Dies, Fails, DiesAtRename };
    const QString inbox = "SmsInBoxPC.plist", boxes = "SMSInBox_" + kImsi;
    const QStringList received{"inbox:01", "inbox:02"};
    const QStringList moved{SMS_BOX_ACHIVE + ":keep me", SMS_BOX_DRAFT + ":other"};
    const QStringList notMoved{SMS_BOX_DRAFT + ":keep me", SMS_BOX_DRAFT + ":other"};
    // clang-format off
    const struct { QString step; Fault fault; QStringList expected; } rows[] = {
        {"write " + inbox, Dies, received}, {"written " + inbox, Dies, received},
        {"write " + inbox, Fails, received}, {inbox, DiesAtRename, received},
        {"write " + boxes, Dies, notMoved}, {"written " + boxes, Dies, moved},
        {"write " + boxes, Fails, notMoved}, {boxes, DiesAtRename, notMoved},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step.toStdString() + " fault " + std::to_string(row.fault));
        TempHome home;
        const bool toInbox = row.step.contains(inbox);
        int index = 0;
        if (toInbox)
            ASSERT_EQ(SMSExt::shared().save(kImsi, pdu(1), 12, index), 0);
        else
            ASSERT_TRUE(SMSStorage(kImsi).saveMessageItem(draft("keep me")) == 0 &&
                        SMSStorage(kImsi).saveMessageItem(draft("other")) == 0);
        const auto step = [toInbox, &index] {
            SMSStorage store(kImsi);
            return toInbox ? SMSExt::shared().save(kImsi, pdu(2), 12, index)
                           : store.moveMessageItem(store.getDarftList().first(), SMS_BOX_ACHIVE);
        };
        if (row.fault == DiesAtRename) {
            const QString path = home.userFile(row.step);
            QVariantMap next = PropertyList::readMap(path);
            if (toInbox)
                next.insert(kImsi, next.value(kImsi).toList() << QVariantMap{
                                       {"SMS_REF", 9}, {"SMS_PDU_LEN", 12}, {"SMS_PDU", pdu(2)}});
            else if (QVariantList drafts = next.value("DRAFT").toList(); !drafts.isEmpty())
                next.insert("ACHIEVEBOX", QVariantList{drafts.takeFirst()}), next.insert("DRAFT", drafts);
            TempHome::writeFile(path + ".Xq3Zk9", PropertyList::toXml(next));
        } else {
            StoreFile::setFaultHook([&row](const QString& reached) {
                if (reached == row.step && row.fault == Dies)
                    _exit(9);
                return reached != row.step;
            });
            if (row.fault == Dies)
                waitpid(inChild([&step] { step(); }), nullptr, 0);
            else
                EXPECT_NE(step(), 0);
            StoreFile::setFaultHook({});
        }
        if (toInbox) { // the next start finds the message still on the modem
            ASSERT_EQ(SMSExt::shared().save(kImsi, pdu(2), 12, index), 0);
        }
        EXPECT_EQ(stored(), row.expected);
        EXPECT_EQ(QDir(home.userData()).entryList({"*.??????"}, QDir::Files), QStringList());
    }
}
