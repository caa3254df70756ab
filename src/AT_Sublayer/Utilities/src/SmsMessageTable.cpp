// The message list table of CSmsUtility (stored segments gathered into logical messages) and the splitting
// of a text into SMS-SUBMIT segments.

#include <algorithm>
#include <atomic>
#include <cstring>

#include "Gsm7BitAlphabet.h"
#include "SmsUtility.h"

namespace {

constexpr int kSegmentsPerGroup = 10;
constexpr int kSingle7BitSeptets = 160;
constexpr int kSegment7BitSeptets = 153;
constexpr int kSingleUcs2Units = 70;
constexpr int kSegmentUcs2Units = 67;
constexpr int kSeptetBufferSize = 162;
constexpr int kUcs2BufferUnits = 80;

// Concatenation reference of split texts, shared by every instance.
std::atomic<uint8_t> g_nextSplitReference{0};

// Latin letters that the GSM alphabet lacks, and the letter sent in their place.
constexpr std::pair<wchar_t, wchar_t> kLatinReplacements[] = {
    {L'À', L'A'}, {L'Á', L'A'}, {L'Â', L'A'}, {L'Ã', L'A'}, {L'È', L'E'}, {L'Ê', L'E'}, {L'Ë', L'E'},
    {L'Ì', L'I'}, {L'Í', L'I'}, {L'Î', L'I'}, {L'Ï', L'I'}, {L'Ò', L'O'}, {L'Ó', L'O'}, {L'Ô', L'O'},
    {L'Õ', L'O'}, {L'Ù', L'U'}, {L'Ú', L'U'}, {L'Û', L'U'}, {L'Ý', L'Y'}, {L'á', L'a'}, {L'â', L'a'},
    {L'ã', L'a'}, {L'ç', L'Ç'}, {L'ê', L'e'}, {L'ë', L'e'}, {L'í', L'i'}, {L'î', L'i'}, {L'ï', L'i'},
    {L'ó', L'o'}, {L'ô', L'o'}, {L'õ', L'o'}, {L'ú', L'u'}, {L'û', L'u'}, {L'ý', L'y'}, {L'ÿ', L'y'},
};

std::wstring ReplaceLatin(std::wstring text) {
    for (wchar_t& c : text) {
        if (c < 0x80 || c > 0xFF)
            continue;
        for (const auto& [from, to] : kLatinReplacements) {
            if (c == from) {
                c = to;
                break;
            }
        }
    }
    return text;
}

// Characters beyond U+FFFF become surrogate pairs, so that UCS2 segments carry them as phones do.
std::wstring ToUtf16Units(const std::wstring& text) {
    std::wstring units;
    units.reserve(text.size());
    for (const wchar_t c : text) {
        const auto code = static_cast<uint32_t>(c);
        if (code > 0xFFFF && code <= 0x10FFFF) {
            units.push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
            units.push_back(static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            units.push_back(c);
        }
    }
    return units;
}

uint8_t GroupOf(uint8_t sequence) {
    return static_cast<uint8_t>((static_cast<int>(sequence) - 1) / kSegmentsPerGroup);
}

// Any one field smaller makes the stored stamp older, whatever the fields before it say; replace
// messages have always been matched this way.
bool IsOlder(const TSmsDateTime& stored, const TSmsDateTime& incoming) {
    return stored.nYear < incoming.nYear || stored.nMonth < incoming.nMonth || stored.nDay < incoming.nDay ||
           stored.nHour < incoming.nHour || stored.nMinute < incoming.nMinute ||
           stored.nSecond < incoming.nSecond;
}

bool SameNumber(const char* a, const char* b) {
    return std::strncmp(a, b, kSmsNumberSize) == 0;
}

void SetUserData7Bit(const wchar_t* text, int count, TUserData& data) {
    uint8_t septets[kSeptetBufferSize];
    const int written = CSmsUtility::WStringToDefault7Bit(text, count, septets, kSeptetBufferSize);
    std::memcpy(data.data, septets, written);
    data.nLength = static_cast<uint32_t>(written);
}

void SetUserDataUcs2(const wchar_t* units, int count, TUserData& data) {
    uint16_t big[kUcs2BufferUnits];
    const int written = CSmsUtility::WStringToBigEndianUcs2(units, count, big, kUcs2BufferUnits);
    std::memcpy(data.data, big, written * 2);
    data.nLength = static_cast<uint32_t>(written * 2);
}

} // namespace

uint32_t CSmsUtility::GetMessageRef() {
    return m_nNextTableId++;
}

void CSmsUtility::TMessageListItemToTMsgPacket(const TMessageListItem& item, TMsgPacket& packet) {
    packet = TMsgPacket{};
    packet.nIndex = item.nIndex;
    packet.nStorage = static_cast<uint8_t>(item.nStorage);
    packet.nStatus = static_cast<uint8_t>(item.nStatus);
    const TTpduData& tpdu = item.pduData.tpdu;
    packet.nTpduType = static_cast<uint8_t>(tpdu.nTpduType);

    const auto fill = [&packet](uint8_t dcs, uint8_t pid, const TMsgAddress& address, const TUserData& data) {
        packet.nClass = static_cast<uint8_t>(DecodeDcsClass(dcs));
        packet.bHasHeader = data.header.bPresent ? 1 : 0;
        packet.nPid = pid;
        packet.nReference = data.header.nReference;
        packet.nTotal = data.header.nTotal;
        packet.nSequence = data.header.nSequence;
        TSmsAddress number;
        TMsgAddressToTSmsAddress(address, number);
        std::memcpy(packet.szNumber, number.szNumber, kSmsNumberSize);
        GetUserDataContent(DecodeDcsAlphabet(dcs), data, packet.wstrContent);
    };
    switch (tpdu.nTpduType) {
    case SMS_TPDU_DELIVER:
        fill(tpdu.deliver.nDcs, tpdu.deliver.nPid, tpdu.deliver.originating, tpdu.deliver.userData);
        TMsgTimeStampToTSmsDateTime(tpdu.deliver.timeStamp, packet.dateTime);
        break;
    case SMS_TPDU_STATUS_REPORT:
        fill(tpdu.statusReport.nDcs, tpdu.statusReport.nPid, tpdu.statusReport.recipient,
             tpdu.statusReport.userData);
        packet.nStatusReportStatus = tpdu.statusReport.nStatus;
        TMsgTimeStampToTSmsDateTime(tpdu.statusReport.timeStamp, packet.dateTime);
        break;
    case SMS_TPDU_SUBMIT:
        fill(tpdu.submit.nDcs, tpdu.submit.nPid, tpdu.submit.destination, tpdu.submit.userData);
        break;
    default:
        break;
    }
}

int CSmsUtility::AddMsgItemToListTable(const TMessageListItem& item, bool& added, uint32_t& tableId,
                                       bool& deleted, bool& replaced, bool deleteOnRead) {
    TMsgPacket packet;
    TMessageListItemToTMsgPacket(item, packet);
    deleted = false;
    replaced = false;
    added = true;
    const bool isDeliver = packet.nTpduType == SMS_TPDU_DELIVER;

    // Data messages (8-bit deliveries: ring tones, settings, ...) are never listed; they only take space.
    if (isDeliver && DecodeDcsAlphabet(item.pduData.tpdu.deliver.nDcs) == SMS_ALPHABET_8BIT) {
        DeleteStored(packet.nStorage, packet.nIndex);
        added = false;
        return 0;
    }

    // Flash messages (class 0) are shown once and not kept.
    if (deleteOnRead && packet.nStatus == SMS_STATUS_UNREAD && packet.nClass == 0 &&
        DeleteStored(packet.nStorage, packet.nIndex) == 0)
        deleted = true;

    if (deleteOnRead && !deleted && isDeliver && IsReplaceShortMessage(packet.nPid)) {
        for (CMsgListTableItem& stored : m_messageTable) {
            if (stored.nTpduType != SMS_TPDU_DELIVER || stored.nPid != packet.nPid ||
                !SameNumber(stored.szNumber, packet.szNumber) || !IsOlder(stored.dateTime, packet.dateTime))
                continue;
            if (DeleteMsg(stored) != 0)
                break;
            replaced = true;
            tableId = stored.nId;
            stored.nStorage = packet.nStorage;
            stored.nStatus = packet.nStatus;
            stored.nTpduType = packet.nTpduType;
            stored.nClass = packet.nClass;
            std::memcpy(stored.szNumber, packet.szNumber, kSmsNumberSize);
            stored.dateTime = packet.dateTime;
            stored.nGroup = GroupOf(packet.nSequence);
            stored.nPid = packet.nPid;
            stored.nStatusReportStatus = packet.nStatusReportStatus;
            stored.nTotal = 1;
            stored.nReceived = 1;
            stored.nReference = 0;
            // The old segments are gone from the storage, so they leave the item too.
            stored.packets.clear();
            stored.packets.push_back({packet.nIndex, packet.nSequence, packet.wstrContent});
            return 0;
        }
        tableId = NewListTableItem(packet, deleted);
        return 0;
    }

    std::list<CMsgListTableItem>& table = deleted ? m_deletedTable : m_messageTable;
    if (packet.bHasHeader) {
        const uint8_t group = GroupOf(packet.nSequence);
        for (CMsgListTableItem& stored : table) {
            if (stored.nTotal == 0 || stored.nTotal != packet.nTotal || stored.nClass != packet.nClass ||
                stored.nTpduType != packet.nTpduType || !SameNumber(stored.szNumber, packet.szNumber) ||
                stored.nReference != packet.nReference || stored.nStorage != packet.nStorage ||
                stored.nGroup != group)
                continue;
            auto at = stored.packets.begin();
            bool otherIndex = false;
            for (; at != stored.packets.end(); ++at) {
                if (at->nSequence == packet.nSequence) {
                    if (at->nIndex == packet.nIndex) {
                        added = false;
                        return 1;
                    }
                    otherIndex = true;
                    break;
                }
                if (at->nSequence > packet.nSequence)
                    break;
            }
            if (otherIndex)
                continue;
            stored.packets.insert(at, {packet.nIndex, packet.nSequence, packet.wstrContent});
            if (packet.nStatus == SMS_STATUS_UNREAD || packet.nStatus == SMS_STATUS_UNSENT)
                stored.nStatus = packet.nStatus;
            ++stored.nReceived;
            tableId = stored.nId;
            return 0;
        }
    } else {
        for (const CMsgListTableItem& stored : table) {
            if (stored.nStorage != packet.nStorage)
                continue;
            for (const CMsgListPacket& segment : stored.packets) {
                if (segment.nIndex == packet.nIndex) {
                    added = false;
                    return 1;
                }
            }
        }
    }
    tableId = NewListTableItem(packet, deleted);
    return 0;
}

uint32_t CSmsUtility::NewListTableItem(const TMsgPacket& packet, bool deleted) {
    CMsgListTableItem item;
    item.nId = GetMessageRef();
    item.nStorage = packet.nStorage;
    item.nStatus = packet.nStatus;
    item.nTpduType = packet.nTpduType;
    item.nClass = packet.nClass;
    item.dateTime = packet.dateTime;
    item.nPid = packet.nPid;
    item.nStatusReportStatus = packet.nStatusReportStatus;
    std::memcpy(item.szNumber, packet.szNumber, kSmsNumberSize);
    item.nGroup = GroupOf(packet.nSequence);
    item.nTotal = packet.bHasHeader ? packet.nTotal : 1;
    item.nReference = packet.bHasHeader ? packet.nReference : 0;
    item.nReceived = 1;
    item.packets.push_back({packet.nIndex, packet.nSequence, packet.wstrContent});
    (deleted ? m_deletedTable : m_messageTable).push_back(std::move(item));
    return (deleted ? m_deletedTable : m_messageTable).back().nId;
}

// A message of more than ten segments is shown as one message per group of ten; each group is complete
// when all its segments are there.
void CSmsUtility::MergePackets(const CMsgListTableItem& item, TSmsListItem& out) {
    out = TSmsListItem{};
    out.nRef = static_cast<int32_t>(item.nId);
    out.nStoreIn = static_cast<int32_t>(item.nStorage);
    out.nTag = static_cast<int32_t>(item.nStatus);
    out.nType = static_cast<int32_t>(item.nTpduType);
    out.nClass = item.nClass;
    out.nStatusReportStatus = static_cast<int32_t>(item.nStatusReportStatus);
    std::memcpy(out.szNumber, item.szNumber, kSmsNumberSize);
    out.szNumber[kSmsNumberSize - 1] = '\0';
    out.dateTime = item.dateTime;
    out.nTotal = item.nTotal;
    out.nReference = item.nReference;
    for (const CMsgListPacket& packet : item.packets)
        out.wstrContent += packet.wstrContent;
    if (item.nTotal < 2) {
        out.nExpected = 1;
        out.nReceived = 1;
        out.nCompleted = 1;
        return;
    }
    const int lastGroup = (item.nTotal - 1) / kSegmentsPerGroup;
    out.nExpected =
        item.nGroup == lastGroup ? item.nTotal - kSegmentsPerGroup * item.nGroup : kSegmentsPerGroup;
    out.nReceived = item.nReceived;
    out.nCompleted = out.nReceived >= out.nExpected ? 1 : 0;
}

int CSmsUtility::GetDefault7BitPacketNum(const wchar_t* text, int length, std::list<int>& lengths) {
    lengths.clear();
    const auto cost = [](wchar_t c, int unknown) {
        if (Gsm7DefaultCode(c) >= 0)
            return 1;
        return Gsm7ExtensionCode(c) >= 0 ? 2 : unknown;
    };
    int total = 0;
    for (int i = 0; i < length; ++i)
        total += cost(text[i], 0);
    if (total <= kSingle7BitSeptets) {
        lengths.push_back(length);
        return 1;
    }
    int septets = 0;
    int characters = 0;
    for (int i = 0; i < length; ++i) {
        const int c = cost(text[i], 1);
        if (septets + c > kSegment7BitSeptets) {
            lengths.push_back(characters);
            septets = 0;
            characters = 0;
        }
        septets += c;
        ++characters;
    }
    if (characters > 0)
        lengths.push_back(characters);
    return static_cast<int>(lengths.size());
}

int CSmsUtility::PacketMsg(const TSmsSendItem& item, std::list<TTpduSubmit>& segments, int& encodeType) {
    TTpduSubmit templ;
    templ.nMti = 1;
    templ.bRejectDuplicates = 1;
    templ.nVpf = m_validPeriod.bEnable ? 2 : 0;
    TSmsAddress destination;
    std::memcpy(destination.szNumber, item.szNumber, kSmsNumberSize);
    destination.szNumber[kSmsNumberSize - 1] = '\0';
    TSmsAddressToTMsgAddress(destination, templ.destination);
    TSmsValidPeriodToTMsgTimeStamp(m_validPeriod, templ.validPeriod);
    templ.nPid = 0;
    templ.nDcs = 0;
    encodeType = 0;

    if (item.wstrContent.empty()) {
        TTpduSubmit segment = templ;
        segment.bStatusReportRequest = m_bStatusReport ? 1 : 0;
        segments.push_back(segment);
        return 0;
    }

    std::wstring text = item.wstrContent;
    if (m_bLatinSupport) {
        // Only worth it when it spares the whole text from UCS2.
        std::wstring replaced = ReplaceLatin(text);
        if (GetEncodeType(replaced) == 0)
            text = std::move(replaced);
    }
    encodeType = GetEncodeType(text);

    std::list<int> lengths;
    if (encodeType == 0) {
        GetDefault7BitPacketNum(text.data(), static_cast<int>(text.size()), lengths);
    } else {
        text = ToUtf16Units(text);
        templ.nDcs = 8;
        const int units = static_cast<int>(text.size());
        if (units <= kSingleUcs2Units) {
            lengths.push_back(units);
        } else {
            for (int left = units; left > 0; left -= kSegmentUcs2Units)
                lengths.push_back(std::min(left, kSegmentUcs2Units));
        }
    }

    const int total = static_cast<int>(lengths.size());
    const uint8_t reference = total > 1 ? g_nextSplitReference.fetch_add(1) : 0;
    int sequence = 1;
    int start = 0;
    for (const int length : lengths) {
        TTpduSubmit segment = templ;
        if (encodeType == 0)
            SetUserData7Bit(text.data() + start, length, segment.userData);
        else
            SetUserDataUcs2(text.data() + start, length, segment.userData);
        if (total == 1) {
            segment.bStatusReportRequest = m_bStatusReport ? 1 : 0;
        } else {
            segment.bUdhi = 1;
            segment.userData.header = {1, reference, static_cast<uint8_t>(total),
                                       static_cast<uint8_t>(sequence)};
            // The report is asked for on the next-to-last segment only; kept as this system has always
            // sent it.
            segment.bStatusReportRequest = sequence == total - 1 && m_bStatusReport ? 1 : 0;
        }
        segments.push_back(segment);
        start += length;
        ++sequence;
    }
    return 0;
}
