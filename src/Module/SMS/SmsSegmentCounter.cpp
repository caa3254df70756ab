#include "SmsSegmentCounter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <list>
#include <string>

#include "Gsm7BitAlphabet.h"
#include "SmsUtility.h"

namespace {

// The segment sizes of SMS-SUBMIT: a concatenation header takes 7 septets or 3 UCS2 units.
constexpr int kSingle7BitSeptets = 160;
constexpr int kSegment7BitSeptets = 153;
constexpr int kSingleUcs2Units = 70;
constexpr int kSegmentUcs2Units = 67;
constexpr int kSeptetBufferSize = 162; // the user data buffer sending converts into

constexpr wchar_t kLatinFirst = 0x80;
constexpr int kLatinCount = 0x80;

// The letter sending puts in place of each character U+0080-U+00FF when Latin support is on (0: none).
// Asked once of the sending code itself, one character at a time: a one-character text is one segment,
// so no concatenation reference is used up.
const std::array<wchar_t, kLatinCount>& LatinPartners() {
    static const std::array<wchar_t, kLatinCount> partners = [] {
        std::array<wchar_t, kLatinCount> table{};
        CSmsUtility sms;
        sms.SetLatinSupport(1);
        for (int i = 0; i < kLatinCount; ++i) {
            const wchar_t c = kLatinFirst + i;
            if (CSmsUtility::GetEncodeType(std::wstring(1, c)) == 0)
                continue;
            TSmsSendItem item;
            item.wstrContent.assign(1, c);
            std::list<TTpduSubmit> segments;
            int encodeType = 1;
            sms.PacketMsg(item, segments, encodeType);
            if (encodeType == 0 && segments.size() == 1 && segments.front().userData.nLength == 1)
                table[i] = Gsm7DefaultToUnicode(segments.front().userData.data[0]);
        }
        return table;
    }();
    return partners;
}

// The text as sending codes it: Latin letters replaced only when the whole text then fits 7-bit.
std::wstring TextToSend(const QString& text, bool latinSupport) {
    std::wstring wide = text.toStdWString(); // a lone surrogate arrives as U+FFFD
    if (!latinSupport || CSmsUtility::GetEncodeType(wide) == 0)
        return wide;
    std::wstring replaced = wide;
    const auto& partners = LatinPartners();
    for (wchar_t& c : replaced) {
        if (c >= kLatinFirst && c < kLatinFirst + kLatinCount && partners[c - kLatinFirst] != 0)
            c = partners[c - kLatinFirst];
    }
    return CSmsUtility::GetEncodeType(replaced) == 0 ? replaced : wide;
}

int Septets(const wchar_t* text, int count) {
    uint8_t septets[kSeptetBufferSize];
    return CSmsUtility::WStringToDefault7Bit(text, count, septets, kSeptetBufferSize);
}

void Count7Bit(const std::wstring& text, TSmsSegmentInfo& info) {
    std::list<int> lengths;
    const int count = static_cast<int>(std::min<size_t>(text.size(), INT32_MAX));
    info.nPackets = CSmsUtility::GetDefault7BitPacketNum(text.data(), count, lengths);
    info.nMaxLen = info.nPackets > 1 ? kSegment7BitSeptets : kSingle7BitSeptets;
    const int last = lengths.empty() ? 0 : lengths.back();
    info.nRemain = std::max(0, info.nMaxLen - Septets(text.data() + count - last, last));
}

void CountUcs2(const std::wstring& text, TSmsSegmentInfo& info) {
    int64_t units = 0;
    for (const wchar_t c : text)
        units += static_cast<uint32_t>(c) > 0xFFFF && static_cast<uint32_t>(c) <= 0x10FFFF ? 2 : 1;
    if (units <= kSingleUcs2Units) {
        info.nPackets = 1;
        info.nMaxLen = kSingleUcs2Units;
        info.nRemain = kSingleUcs2Units - static_cast<int>(units);
        return;
    }
    const int64_t packets = (units + kSegmentUcs2Units - 1) / kSegmentUcs2Units;
    info.nPackets = static_cast<int>(std::min<int64_t>(packets, INT32_MAX));
    info.nMaxLen = kSegmentUcs2Units;
    info.nRemain = static_cast<int>(packets * kSegmentUcs2Units - units);
}

} // namespace

int SmsSegmentCounter::GetMessageInfo(const QString& text, TSmsSegmentInfo& info, bool latinSupport) {
    info = TSmsSegmentInfo{};
    if (text.isEmpty())
        return 0;
    const std::wstring wide = TextToSend(text, latinSupport);
    info.nEncodeType = CSmsUtility::GetEncodeType(wide);
    if (info.nEncodeType == 0)
        Count7Bit(wide, info);
    else
        CountUcs2(wide, info);
    return 0;
}

int SmsSegmentCounter::getPacketsMaxLen(const QString& text, bool latinSupport) {
    TSmsSegmentInfo info;
    GetMessageInfo(text, info, latinSupport);
    return info.nMaxLen;
}

int SmsSegmentCounter::getMsgPacketAndRemain(const QString& text, int& remain, bool latinSupport) {
    TSmsSegmentInfo info;
    GetMessageInfo(text, info, latinSupport);
    remain = info.nRemain;
    return info.nPackets;
}
