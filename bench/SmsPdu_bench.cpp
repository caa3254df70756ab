// SMS codec and message table: decoding typical PDUs, and building the table of 1,000 stored segments
// (what reading a full modem and SIM does) with every message merged.

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "SmsUtility.h"

namespace {

struct Pdu {
    const char* hex;
    int tpduLength;
};

// What a storage typically holds: short 7-bit texts, an alphanumeric sender with UCS2, full-length and
// concatenated 7-bit parts, a status report and a stored submit.
const Pdu kMix[] = {
    {"07912143658709F1040B918100551512F20000111010214365000AE8329BFD4697D9EC37", 28},
    {"07919730071111F10414D04937BD2C7797E9D3E614000811309291024061080442043504410442", 31},
    {"07913306091093F0040485810000F111604231805180A049B7F90D9A1AA5A01668F8769BD3E4B29B9E2EB359A03FC85D06A9C3E"
     "D707A"
     "0EA2CBC3EE79BB4CA7CBCBA05643617DA7C76990FD4D979741EE77DD5E0ED741ED371D442E83E0E1F9BC0CD281E677D9B84C06C"
     "1DF75"
     "39E85C9097E520FB9B2E2F83C6EF369C5E064D8D52D0BC2E07DDEF77D7DC2C7799E5A0771D040FCB41F402BB0047BFDD6550B80"
     "ECAD9"
     "66",
     155},
    {"07912160130320F6440B916171056429F5000021405291651569320500034C0202E9E8301D44479741F0B09C3E0785E56590BCC"
     "C0ED3"
     "CB6410FD0D7ABBCBA0B0FB4D4797E52E10",
     63},
    {"07914356060013F1065A098136397339F7219011700463802190117004638030", 24},
    {"002100098136397339F70008224F60597D4F60597D4F60597D4F60597D4F60597D4F60597D4F60597D4F60597D4F60", 46},
    {"0791947101670000040D91945111325476F80008323041906235400A004800690020D83DDE00", 30},
};

void BM_DecodePduMix(benchmark::State& state) {
    TPduData pdu;
    std::size_t next = 0;
    for (auto _ : state) {
        const Pdu& p = kMix[next];
        next = (next + 1) % std::size(kMix);
        benchmark::DoNotOptimize(CSmsUtility::DecodePduData(p.hex, p.tpduLength, pdu));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecodePduMix);

// Decoding and flattening to a packet, text included: the whole per-PDU cost of reading a storage.
void BM_DecodeToPacketMix(benchmark::State& state) {
    TMessageListItem item;
    TMsgPacket packet;
    std::size_t next = 0;
    for (auto _ : state) {
        const Pdu& p = kMix[next];
        next = (next + 1) % std::size(kMix);
        CSmsUtility::DecodePduData(p.hex, p.tpduLength, item.pduData);
        CSmsUtility::TMessageListItemToTMsgPacket(item, packet);
        benchmark::DoNotOptimize(packet);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecodeToPacketMix);

// 1,000 segments in shuffled order: 50 messages of 10 parts, 150 of 2 parts, 200 single messages, from 40
// senders, with 150-character texts.
std::vector<TMessageListItem> StoredSegments() {
    std::vector<TMessageListItem> items;
    const std::wstring text(150, L'x');
    uint32_t index = 0;
    const auto add = [&](int message, int total, int sequence) {
        TMessageListItem& item = items.emplace_back();
        item.nStorage = SMS_STORAGE_SIM;
        item.nIndex = ++index;
        item.nStatus = SMS_STATUS_READ;
        item.pduData.tpdu.nTpduType = SMS_TPDU_DELIVER;
        TTpduDeliver& deliver = item.pduData.tpdu.deliver;
        deliver.originating.nType = 0x11;
        std::snprintf(deliver.originating.szAddress, kMsgAddressSize, "49170%08d", message % 40);
        deliver.timeStamp = {0x24, 0x01, 0x15, 0x12, 0x30, 0x00, 4};
        if (total > 1)
            deliver.userData.header = {1, static_cast<uint8_t>(message), static_cast<uint8_t>(total),
                                       static_cast<uint8_t>(sequence)};
        deliver.userData.nLength = static_cast<uint32_t>(CSmsUtility::WStringToDefault7Bit(
            text.data(), static_cast<int>(text.size()), deliver.userData.data, kUserDataSize));
    };
    int message = 0;
    for (int i = 0; i < 50; ++i, ++message)
        for (int sequence = 1; sequence <= 10; ++sequence)
            add(message, 10, sequence);
    for (int i = 0; i < 150; ++i, ++message)
        for (int sequence = 1; sequence <= 2; ++sequence)
            add(message, 2, sequence);
    for (int i = 0; i < 200; ++i, ++message)
        add(message, 1, 0);
    std::shuffle(items.begin(), items.end(), std::mt19937(42));
    return items;
}

void BM_TableAddAndMerge1000(benchmark::State& state) {
    const std::vector<TMessageListItem> items = StoredSegments();
    for (auto _ : state) {
        CSmsUtility sms;
        for (const TMessageListItem& item : items) {
            bool added = false, deleted = false, replaced = false;
            uint32_t id = 0;
            sms.AddMsgItemToListTable(item, added, id, deleted, replaced, false);
        }
        std::list<TSmsListItem> list;
        for (const CMsgListTableItem& stored : sms.MessageTable())
            CSmsUtility::MergePackets(stored, list.emplace_back());
        if (list.size() != 400)
            state.SkipWithError("the table did not merge into 400 messages");
        benchmark::DoNotOptimize(list);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(items.size()));
}
BENCHMARK(BM_TableAddAndMerge1000)->Unit(benchmark::kMillisecond);

} // namespace
