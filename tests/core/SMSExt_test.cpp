#include <QFile>
#include <QVariantList>
#include <QVariantMap>

#include <list>
#include <vector>

#include "PropertyList.h"
#include "SMSExt.h"
#include "TempHome.h"

namespace {

const char* const kImsi = "001010123456789";
const char* const kPdu = "07912143658709F1040B918100551512F20000111010214365000AE8329BFD4697D9EC37";
// The same sender and text, another time stamp.
const char* const kLaterPdu = "07912143658709F1040B918100551512F20000111010214375000AE8329BFD4697D9EC37";

QVariantList Refs(std::initializer_list<int> refs) {
    QVariantList records;
    for (const int ref : refs)
        records.append(QVariantMap{{"SMS_REF", ref}, {"SMS_PDU_LEN", 28}, {"SMS_PDU", kPdu}});
    return records;
}

TEST(SMSExt, NewIndexRule) {
    // clang-format off
    const struct { QVariantList records; int index; } rows[] = {
        {{}, 1}, {Refs({1}), 2}, {Refs({3, 1, 2}), 4} /* sorted first */, {Refs({1, 29999}), 30000} /* below the limit: one past the highest */,
        {Refs({1, 2, 30000}), 3} /* at the limit: the first gap */, {Refs({29998, 30000, 5}), 6}, {Refs({29999, 30000}), -1} /* no gap */,
        {Refs({30000}), -1},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(SMSExt::newIndex(row.records), row.index) << row.records.size();
}

TEST(SMSExt, SaveListDeleteThroughTheCallbacks) {
    TempHome home;
    SMSExt& store = SMSExt::shared();
    void* context = &store;
    int first = 0;
    int second = 0;
    ASSERT_EQ(SMSExt::SaveCallback(context, kImsi, kPdu, 28, first), 0);
    ASSERT_EQ(SMSExt::SaveCallback(context, kImsi, "0011", 1, second), 0);
    int other = 0;
    ASSERT_EQ(SMSExt::SaveCallback(context, "999990000000001", kPdu, 28, other), 0);
    EXPECT_EQ(std::vector<int>({first, second, other}), std::vector<int>({1, 2, 1}));

    // The file as other versions of the program read it.
    const QString path = home.userFile("SmsInBoxPC.plist");
    EXPECT_EQ(store.filePath(), path);
    const QVariantMap root = PropertyList::readMap(path);
    ASSERT_EQ(root.size(), 2);
    const QVariantList records = root.value(kImsi).toList();
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(records.first().toMap(), (QVariantMap{{"SMS_REF", 1}, {"SMS_PDU_LEN", 28}, {"SMS_PDU", kPdu}}));

    std::list<TSMSRecordInPC> listed;
    ASSERT_EQ(SMSExt::ListCallback(context, kImsi, listed), 0);
    ASSERT_EQ(listed.size(), 2u);
    EXPECT_EQ(std::tuple(listed.front().nIndex, listed.front().nPduLen, listed.front().strPdu),
              std::tuple(1, 28, std::string(kPdu)));

    EXPECT_EQ(SMSExt::DeleteCallback(context, kImsi, 1), 0);
    EXPECT_NE(SMSExt::DeleteCallback(context, kImsi, 1), 0);
    ASSERT_EQ(SMSExt::ListCallback(context, kImsi, listed), 0);
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed.front().nIndex, 2);
    ASSERT_EQ(SMSExt::ListCallback(context, "999990000000001", listed), 0);
    EXPECT_EQ(listed.size(), 1u);
    ASSERT_EQ(SMSExt::ListCallback(context, "unknown", listed), 0);
    EXPECT_TRUE(listed.empty());
}

TEST(SMSExt, RefusesAnEmptyImsiAndAFullInboxAndSkipsDamagedRecords) {
    TempHome home;
    const QString log = home.openLog();
    SMSExt& store = SMSExt::shared();
    std::list<TSMSRecordInPC> listed;
    int index = 0;
    EXPECT_NE(SMSExt::ListCallback(&store, "", listed), 0);
    EXPECT_NE(SMSExt::SaveCallback(&store, "", kPdu, 28, index), 0);
    EXPECT_NE(SMSExt::DeleteCallback(&store, nullptr, 1), 0);
    EXPECT_FALSE(QFile::exists(store.filePath()));
    EXPECT_TRUE(TempHome::readFile(log).contains("IMSI is empty!!!"));

    ASSERT_TRUE(PropertyList::write(store.filePath(), QVariantMap{{kImsi, Refs({29999, 30000})}}));
    index = 0;
    EXPECT_NE(store.save(kImsi, kLaterPdu, 28, index), 0);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(PropertyList::readMap(store.filePath()).value(kImsi).toList().size(), 2);

    // Damaged records are skipped, not lost.
    QVariantList records = Refs({4});
    records.append(QVariantMap{{"SMS_REF", "x"}, {"SMS_PDU", kPdu}});
    records.append(QString("junk"));
    ASSERT_TRUE(PropertyList::write(store.filePath(), QVariantMap{{kImsi, records}}));
    ASSERT_EQ(store.list(kImsi, listed), 0);
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed.front().nIndex, 4);
    index = 0;
    ASSERT_EQ(store.save(kImsi, kLaterPdu, 28, index), 0);
    EXPECT_EQ(index, 5);
    EXPECT_EQ(PropertyList::readMap(store.filePath()).value(kImsi).toList().size(), 4);
}

} // namespace
