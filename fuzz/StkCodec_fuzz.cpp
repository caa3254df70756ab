// Feeds every "+STGI:" decoder of the toolkit codec with listings a modem could print, in each terminal
// character set, and writes the texts they read back out as the answers would quote them.
//
// Input: one octet that picks the decoder (low five bits) and the character set (high three bits), then
// the listing.

#include <cstddef>
#include <cstdint>
#include <string>

#include "SAT/STKCodec.h"

namespace {

template <typename Record>
void Decode(int (*decoder)(const std::string&, Record&, int), const std::string& text, int teSet) {
    Record record;
    decoder(text, record, teSet);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    const int which = data[0] & 0x1F;
    const int teSet = data[0] >> 5;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);

    int type = 0;
    CSTKCodec::GetProactiveCommandType(text, type);
    switch (which) {
    case 0:
        Decode(&CSTKCodec::DecodeRefreshReq, text, teSet);
        break;
    case 1:
        Decode(&CSTKCodec::DecodeIdleScreenNotification, text, teSet);
        break;
    case 2:
        Decode(&CSTKCodec::DecodeUserActivityNotification, text, teSet);
        break;
    case 3:
        Decode(&CSTKCodec::DecodeSetupCallReq, text, teSet);
        break;
    case 4:
        Decode(&CSTKCodec::DecodeSetupEventListReq, text, teSet);
        break;
    case 5:
        Decode(&CSTKCodec::DecodeSendDTMFReq, text, teSet);
        break;
    case 6:
        Decode(&CSTKCodec::DecodeSetupIdleModeTextReq, text, teSet);
        break;
    case 7:
        Decode(&CSTKCodec::DecodeSendUSSDReq, text, teSet);
        break;
    case 8:
        Decode(&CSTKCodec::DecodeSendSSReq, text, teSet);
        break;
    case 9:
        Decode(&CSTKCodec::DecodeSendSMSReq, text, teSet);
        break;
    case 10:
        Decode(&CSTKCodec::DecodePlayToneReq, text, teSet);
        break;
    case 11:
        Decode(&CSTKCodec::DecodeGetInputReq, text, teSet);
        break;
    case 12:
        Decode(&CSTKCodec::DecodeGetInkeyReq, text, teSet);
        break;
    case 13:
        Decode(&CSTKCodec::DecodeDisplayTextReq, text, teSet);
        break;
    case 14:
        Decode(&CSTKCodec::DecodeSelectItemReq, text, teSet);
        break;
    case 15:
        Decode(&CSTKCodec::DecodeSetupMenuReq, text, teSet);
        break;
    case 16:
        Decode(&CSTKCodec::DecodeLanguageNotificationReq, text, teSet);
        break;
    default: {
        // One line's fields, each quoted one read as text and written back as an answer quotes it.
        const CSTKCodec::TListingLine line = CSTKCodec::SplitListingLine(text);
        if (line.fields.size() > CSTKCodec::kMaxFields || line.fields.size() != line.quoted.size())
            __builtin_trap();
        for (const std::string& field : line.fields) {
            const std::wstring wide = CSTKCodec::DecodeTeText(field, teSet);
            std::string command;
            CSTKCodec::EncodeGetInputResponse(0, wide, command, teSet);
            CSTKCodec::EncodeGetInkeyResponse(0, -1, wide, command, teSet);
        }
        break;
    }
    }
    return 0;
}
