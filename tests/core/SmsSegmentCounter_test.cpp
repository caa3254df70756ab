#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <string>
#include <vector>

#include "SMS/SmsSegmentCounter.h"
#include "SmsUtility.h"

namespace {

const QString kEmoji = QString::fromUcs4(U"\U0001F600");
const QString kCyrillic = QString::fromUtf8("ж");

// clang-format off
struct Row { const char* name; QString text; bool latin; int packets; int remain; int maxLen; int encodeType; };
// clang-format on

std::vector<Row> Rows() {
    const QString loneSurrogate = QString(QChar(0xD800)) + 'a';
    // clang-format off
    return {
        {"empty", QString(), false, 1, 160, 160, 0},
        {"160 plain", QString("a").repeated(160), false, 1, 0, 160, 0},
        {"161 plain", QString("a").repeated(161), false, 2, 145, 153, 0},
        {"euro at 161", QString("a").repeated(159) + QString::fromUtf8("€"), false, 2, 145, 153, 0},
        {"bracket at 161", QString("a").repeated(159) + "[", false, 2, 145, 153, 0},
        {"escape pair not split", QString("a").repeated(152) + "{" + QString("a").repeated(10), false, 2, 141, 153, 0},
        {"GSM accents are 7-bit", QString::fromUtf8("é").repeated(160), false, 1, 0, 160, 0},
        {"70 UCS2", kCyrillic.repeated(70), false, 1, 0, 70, 1},
        {"71 UCS2", kCyrillic.repeated(71), false, 2, 63, 67, 1},
        {"one plain letter turns UCS2", QString("a").repeated(100) + kCyrillic, false, 2, 33, 67, 1},
        {"emoji takes two units", kEmoji, false, 1, 68, 70, 1},
        {"emoji past 70 units", kCyrillic.repeated(69) + kEmoji, false, 2, 63, 67, 1},
        {"lone surrogate", loneSurrogate, false, 1, 68, 70, 1},
        {"Latin off", QString::fromUtf8("À bientôt"), false, 1, 61, 70, 1},
        {"Latin on", QString::fromUtf8("À bientôt"), true, 1, 151, 160, 0},
        {"Latin on, 160 replaced", QString::fromUtf8("À").repeated(160), true, 1, 0, 160, 0},
        {"Latin off, 160 accented", QString::fromUtf8("À").repeated(160), false, 3, 41, 67, 1},
        {"Latin on, still UCS2", QString::fromUtf8("Àж"), true, 1, 68, 70, 1},
    };
    // clang-format on
}

TEST(SmsSegmentCounter, CountsSegmentsAndRoom) {
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.name);
        TSmsSegmentInfo info;
        EXPECT_EQ(SmsSegmentCounter::GetMessageInfo(row.text, info, row.latin), 0);
        EXPECT_EQ(std::vector<int>({info.nPackets, info.nRemain, info.nMaxLen, info.nEncodeType}),
                  std::vector<int>({row.packets, row.remain, row.maxLen, row.encodeType}));

        int remain = -1;
        EXPECT_EQ(SmsSegmentCounter::getMsgPacketAndRemain(row.text, remain, row.latin), row.packets);
        EXPECT_EQ(remain, row.remain);
        EXPECT_EQ(SmsSegmentCounter::getPacketsMaxLen(row.text, row.latin), row.maxLen);
    }
}

// Texts of every kind and length around the limits, each also split by the sending code.
TEST(SmsSegmentCounter, AgreesWithSending) {
    std::vector<std::pair<QString, bool>> texts;
    for (const Row& row : Rows())
        texts.emplace_back(row.text, row.latin);
    // clang-format off
    const QString pieces[] = {"a", QString::fromUtf8("€"), "ab[", QString::fromUtf8("a€b"), kCyrillic, kEmoji + "a", QString::fromUtf8("ôa"), QString(QChar(0))};
    // clang-format on
    const int lengths[] = {1, 69, 70, 71, 77, 80, 134, 135, 152, 153, 154, 159, 160, 161, 305, 306, 307, 500};
    for (const QString& piece : pieces) {
        for (const int length : lengths) {
            const QString text = piece.repeated(length / piece.size() + 1).left(length);
            texts.emplace_back(text, false);
            texts.emplace_back(text, true);
        }
    }
    for (const auto& [text, latin] : texts) {
        SCOPED_TRACE(text.left(20).toStdString() + " length " + std::to_string(text.size()) +
                     (latin ? " Latin on" : ""));
        CSmsUtility sms;
        sms.SetLatinSupport(latin ? 1 : 0);
        TSmsSendItem item;
        item.wstrContent = text.toStdWString();
        std::list<TTpduSubmit> segments;
        int encodeType = -1;
        ASSERT_EQ(sms.PacketMsg(item, segments, encodeType), 0);
        ASSERT_FALSE(segments.empty());

        TSmsSegmentInfo info;
        SmsSegmentCounter::GetMessageInfo(text, info, latin);
        EXPECT_EQ(info.nPackets, static_cast<int>(segments.size()));
        EXPECT_EQ(info.nEncodeType, encodeType);
        const int lastUnits = static_cast<int>(segments.back().userData.nLength) / (encodeType == 1 ? 2 : 1);
        EXPECT_EQ(info.nRemain, std::max(0, info.nMaxLen - lastUnits));
    }
}

} // namespace
