#include "BLRecords.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

#include <gtest/gtest.h>

namespace {

template <typename Record> QByteArray encoded(const Record& record) {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    record.encodeWithCoder(out);
    return bytes;
}

template <typename Record> void expectRoundTrips(const Record& record) {
    // Straight through the coder.
    const QByteArray bytes = encoded(record);
    QDataStream in(bytes);
    Record back;
    back.initWithCoder(in);
    EXPECT_EQ(in.status(), QDataStream::Ok);
    EXPECT_TRUE(in.atEnd()) << "decoding left " << bytes.size() - in.device()->pos() << " bytes";
    EXPECT_TRUE(back == record);
    EXPECT_EQ(encoded(back), bytes); // also tells a null string from an empty one

    // Carried by a QVariant, and the QVariant streamed.
    const QVariant value = QVariant::fromValue(record);
    EXPECT_TRUE(qvariant_cast<Record>(value) == record);
    QByteArray variantBytes;
    QDataStream variantOut(&variantBytes, QIODevice::WriteOnly);
    variantOut << value;
    QDataStream variantIn(variantBytes);
    QVariant loaded;
    variantIn >> loaded;
    EXPECT_EQ(variantIn.status(), QDataStream::Ok);
    EXPECT_EQ(loaded.metaType(), QMetaType::fromType<Record>());
    EXPECT_TRUE(qvariant_cast<Record>(loaded) == record);
    EXPECT_TRUE(loaded == value);
}

// Every cut of the stream fails cleanly; a length that points far beyond the data, wherever it lands, is
// read without harm.
template <typename Record> void expectDamagedStreamsFail(const Record& record) {
    const QByteArray bytes = encoded(record);
    for (qsizetype cut = 0; cut < bytes.size(); ++cut) {
        QDataStream in(bytes.left(cut));
        Record back;
        back.initWithCoder(in);
        EXPECT_NE(in.status(), QDataStream::Ok) << "cut at " << cut;
    }
    for (qsizetype at = 0; at + 4 <= bytes.size(); ++at) {
        QByteArray damaged = bytes;
        damaged.replace(at, 4, QByteArray::fromHex("7ffffff0"));
        QDataStream in(damaged);
        Record back;
        back.initWithCoder(in);
    }
}

// filled sets every field to a value that differs from the fresh record's.
template <typename Record> void check(const char* name, const Record& filled) {
    SCOPED_TRACE(name);
    const Record fresh;
    EXPECT_FALSE(filled == fresh);
    expectRoundTrips(fresh);
    expectRoundTrips(filled);
    expectDamagedStreamsFail(filled);
}

const QString kLong = QString(2048, QChar(u'\u00e9'));

BLSmsListItem sampleMessage() {
    const QDateTime sent(QDate(2024, 5, 1), QTime(14, 0, 5), Qt::OffsetFromUTC, 8 * 3600);
    return {3, 7, 1, 2, 4, 1, 1, 32, "+8613912345678", sent, QString::fromUtf8("Grüße ✓ 你好")};
}

} // namespace

TEST(Records, EveryRecordCodesAndDecodesToAnEqualOne) {
    registerRecordMetaTypes();
    QObject client;
    check("BLEquipmentInfo", BLEquipmentInfo{"Maker", "Model E1", kLong, "SN-001", "460001234567890",
                                             "+8613900000000", "HW 1.0"});
    check("BLDiagInfo", BLDiagInfo{"Maker", "Model", "11.608", "SN", "460001234567890", "+8613900000000",
                                   "HW", 1, 2, "China Mobile", 7, "CMCC", 20, 1, 4, 17, 5, 1, 1});
    check("BLPINInfo", BLPINInfo{3, 10});
    check("BLPinCheckState", BLPinCheckState{1, 3, 10});
    check("BLPINEnableInfo", BLPINEnableInfo{true, "1234"});
    check("BLPINChangeInfo", BLPINChangeInfo{"1234", "4321"});
    check("BLPINVerifyPukInfo", BLPINVerifyPukInfo{"12345678", "0000"});
    check("BLNetworkInfo", BLNetworkInfo{1, 2, "46000", 2, 3, "CMCC", 31, 1, 4, 1});
    check("BLNetworkListItem", BLNetworkListItem{1, 2, "China Mobile", "CMCC", "46000", 7});
    check("BLNetworkSet", BLNetworkSet{BLNetworkSet::kOperatorGiven, 1, 2, "46001", 2});
    check("BLNetRegState", BLNetRegState{1, 5});
    check("BLPbItem", BLPbItem{2, QString::fromUtf8("Zoë"), "+4930123456", 17});
    check("BLPBNewItem", BLPBNewItem{1, "Anna", "0123456789"});
    check("BLPBDeleteItem", BLPBDeleteItem{1, 250});
    check("BLPBStorageInfo", BLPBStorageInfo{250, 12, 500, 3});
    check("BLPbConstraint", BLPbConstraint{40, 30, 20, 14});
    check("BLSmsListItem", sampleMessage());
    check("BLSmsReceive", BLSmsReceive{1, sampleMessage()});
    check("BLSmsSendItem", BLSmsSendItem{"10086", QString(160, QChar('x'))});
    check("BLSmsValidPeriod", BLSmsValidPeriod{1, 6, 255});
    check("BLSmsStorageState", BLSmsStorageState{3, 100, 5, 50});
    check("BLSmsFilterConfig", BLSmsFilterConfig{true, &client, {"10086", "+8613800138000"}});
    check("BLUssdSendCmdInfo", BLUssdSendCmdInfo{BLUssdSendCmdInfo::kCancel, "*100#"});
    check("BLUssdReceive", BLUssdReceive{2, QString::fromUtf8("Остаток 12,50")});
    check("BLConnectStatistics",
          BLConnectStatistics{3600, 0xffffffff80000000ull, 1ull << 40, 1200, 34000, 5600, 384000});
    check("BLSatMenuItem", BLSatMenuItem{3, QString::fromUtf8("Spiele ✓")});
    check("BLSatCommand", BLSatCommand{11, 36, 2, 1, 1, 12, "Games", "Quiz", {{1, "Quiz"}, {2, "About"}}});
    check("BLSatResponse", BLSatResponse{3, 16, -1, "Paris"});
    check("BLCallItem", BLCallItem{1, 1, 3, 1, 1, 145, "+491701234567"});
    check("BLConnectDialinfo", BLConnectDialinfo{"*99#", "web", "pass", "internet", "", "10.0.0.1", 2});

    // A filter's target is a token only for a live object: once the object is gone it decodes as null.
    auto* gone = new QObject;
    const QByteArray bytes = encoded(BLSmsFilterConfig{true, gone, {"10086"}});
    delete gone;
    QDataStream in(bytes);
    BLSmsFilterConfig back;
    back.initWithCoder(in);
    EXPECT_EQ(in.status(), QDataStream::Ok);
    EXPECT_TRUE(back.target.isNull());
    EXPECT_EQ(back.filterList, QStringList{"10086"});
}
