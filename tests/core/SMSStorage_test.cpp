#include "TempHome.h"

#include "PropertyList.h"
#include "SMS/SMSStorage.h"
#include "StoreFile.h"

#include <QDateTime>
#include <QDir>

namespace {

const QString kIMSI = QStringLiteral("262021234567890");

QDateTime fixedTime() {
    return QDateTime(QDate(2024, 5, 1), QTime(14, 0, 0), Qt::UTC);
}

MessageItem message(const QString& number, const QString& text, const QString& box) {
    return MessageItem::createMessageItem({number}, text, QString(), QString(), fixedTime(), 0, box);
}

QVariantMap storedFile(const TempHome& home) {
    return PropertyList::readMap(home.userFile("SMSInBox_" + kIMSI));
}

QStringList contents(const QVariantList& dictionaries) {
    QStringList texts;
    for (const QVariant& dictionary : dictionaries)
        texts.append(dictionary.toMap().value("CONTENT").toString());
    return texts;
}

} // namespace

TEST(MessageItem, DefaultsOfMissingArguments) {
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    const MessageItem item =
        MessageItem::createMessageItem({}, QString(), QString(), QString(), QDateTime(), 0, QString());
    QVariantMap dictionary = item.getMessageDictionary();
    EXPECT_GE(dictionary.take("CREATE_TIME").toDateTime(), before);
    // clang-format off
    EXPECT_EQ(dictionary, (QVariantMap{{"NUMBERS", QVariantList()}, {"CONTENT", ""}, {"TAG", "READ"}, {"STORAGE", "LOCAL"}, {"MSG_REF", 0}, {"BOX", "OUTBOX"}}));
    // clang-format on
    EXPECT_EQ(item.getFristNumber(), "");

    MessageItem byNumbers = MessageItem::createMessageItemByNumbers({"+4917"}, "text");
    EXPECT_EQ(QStringList({byNumbers.getStorage(), byNumbers.getBoxType(), byNumbers.getTag()}).join(' '),
              "LOCAL OUTBOX READ");
    byNumbers.setNumbers(nullptr);
    EXPECT_EQ(byNumbers.getMessageDictionary().value("NUMBERS").toList(), QVariantList{""});

    // Copies are the same message and share its dictionary.
    MessageItem copy = byNumbers;
    copy.setContent("changed");
    EXPECT_EQ(byNumbers.getContent(), "changed");
    EXPECT_TRUE(copy.isSameItem(byNumbers));
    EXPECT_FALSE(MessageItem::initWithDictionary(copy.getMessageDictionary()).isSameItem(copy));
}

TEST(SMSStorage, BoxTypeNamesAgainstFileKeys) {
    // clang-format off
    const struct { const char* box; const char* fileKey; /* nullptr: refused */ } rows[] = {
        {"OUTBOX", "OUTBOX"}, {"SENDBOX", "SENDBOX"}, {"DRAFTDBOX", "DRAFT"}, {"ACHIVEBOX", "ACHIEVEBOX"},
        {"DRAFT", nullptr}, {"ACHIEVEBOX", nullptr}, {"outbox", nullptr}, {"", nullptr},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.box);
        TempHome home;
        SMSStorage store(kIMSI); // a new SIM: empty boxes, no file until the first save
        EXPECT_EQ(store.filePath(), home.userFile("SMSInBox_" + kIMSI));
        EXPECT_TRUE(!QFile::exists(store.filePath()) && store.getOutBoxList().isEmpty() &&
                    store.getSendBoxList().isEmpty() && store.getDarftList().isEmpty() &&
                    store.getAchieveBoxList().isEmpty());
        const MessageItem item = message("+491701", row.box, row.box);
        if (!row.fileKey) {
            EXPECT_EQ(store.saveMessageItem(item), 3);
            EXPECT_EQ(store.deletMessageItem(item), 3);
            EXPECT_FALSE(store.getMessageListByBoxType(row.box) ||
                         store.getMessageDictListByBoxType(row.box));
            EXPECT_FALSE(QFile::exists(store.filePath()));
            continue;
        }
        EXPECT_EQ(store.saveMessageItem(item), 0);
        EXPECT_EQ(storedFile(home).keys(), (QStringList{"ACHIEVEBOX", "DRAFT", "OUTBOX", "SENDBOX"}));
        EXPECT_EQ(contents(storedFile(home).value(row.fileKey).toList()), QStringList{row.box});
        ASSERT_EQ(store.getMessageListByBoxType(row.box)->size(), 1);
        EXPECT_TRUE(store.getMessageListByBoxType(row.box)->first().isSameItem(item));

        // Read back by a new store into the same box.
        SMSStorage reloaded(kIMSI);
        ASSERT_EQ(reloaded.getMessageDictListByBoxType(row.box)->size(), 1);
        EXPECT_EQ(reloaded.getMessageDictListByBoxType(row.box)->first().toMap(),
                  item.getMessageDictionary());
    }
    // Without an IMSI the shared file is used.
    TempHome home;
    SMSStorage shared;
    EXPECT_EQ(shared.filePath(), home.userFile("LocalSMS.plist"));
    EXPECT_TRUE(shared.getOutBoxList().isEmpty());
}

TEST(SMSStorage, DeletesEveryEqualDictionaryMovesAndEditsThroughTheItem) {
    TempHome home;
    const QVariantMap twin = message("+491701", "twin", "DRAFTDBOX").getMessageDictionary();
    const QVariantMap other = message("+491702", "other", "DRAFTDBOX").getMessageDictionary();
    QDir().mkpath(home.userData());
    ASSERT_TRUE(PropertyList::write(home.userFile("SMSInBox_" + kIMSI),
                                    QVariantMap{{"DRAFT", QVariantList{twin, other, twin}}, {"VERSION", 7}}));

    SMSStorage store(kIMSI);
    const QList<MessageItem> drafts = store.getDarftList();
    ASSERT_EQ(drafts.size(), 3);
    EXPECT_EQ(store.deletMessageItem(drafts[0]), 0);

    EXPECT_EQ(contents(*store.getMessageDictListByBoxType("DRAFTDBOX")), QStringList{"other"});
    ASSERT_EQ(store.getDarftList().size(), 1);
    EXPECT_EQ(store.getDarftList()[0].getContent(), "other");

    const QVariantMap file = storedFile(home);
    EXPECT_EQ(contents(file.value("DRAFT").toList()), QStringList{"other"});
    EXPECT_EQ(file.value("VERSION").toLongLong(), 7); // keys the store does not know are kept

    MessageItem item = message("+491701", "move me", "OUTBOX");
    ASSERT_EQ(store.saveMessageItem(item), 0);

    ASSERT_EQ(store.moveMessageItem(item, "SENDBOX"), 0);
    EXPECT_EQ(store.moveMessageItem(item, "SENDBOX"), SMSStorage::kNoSuchMessage); // no longer in the outbox
    MessageItem sent = store.getSendBoxList().first();
    sent.setTag("SENT");
    ASSERT_EQ(store.saveMessageData(), 0); // the store holds the item's own dictionary

    SMSStorage reloaded(kIMSI);
    EXPECT_TRUE(reloaded.getOutBoxList().isEmpty());
    ASSERT_EQ(reloaded.getSendBoxList().size(), 1);
    EXPECT_EQ(reloaded.getSendBoxList().first().getTag(), "SENT");
    EXPECT_EQ(reloaded.getSendBoxList().first().getCreateTime(), fixedTime());
}

TEST(SMSStorage, FailedWriteReportsOneAndKeepsTheListsChanged) {
    TempHome home;
    const QString logPath = home.openLog();
    SMSStorage store(kIMSI);
    StoreFile::setFaultHook([](const QString& step) { return !step.startsWith("write "); }); // a full disk
    EXPECT_EQ(store.saveMessageItem(message("+491701", "unsaved", "OUTBOX")), 1);
    StoreFile::setFaultHook({});
    EXPECT_EQ(store.getOutBoxList().size(), 1);
    EXPECT_TRUE(TempHome::readFile(logPath).contains("message save Error!!"));
    EXPECT_FALSE(QFileInfo::exists(store.filePath()));
}
