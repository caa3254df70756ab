#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "SmsPduTypes.h"
#include "SmsUtility.h"

// PDUs as modems print them after "+CMGR:"/"+CMGL:", from phones and networks in the field, with what
// they hold. Shared by the decoder tests and the cross-check against an independent decoder.
namespace sms_test {

struct PduRow {
    const char* name;
    const char* hex;
    int tpduLength;
    uint32_t type;
    const char* serviceCentre; // as stored: type 1, no "+"
    uint32_t serviceCentreType;
    const char* number; // as listed: "+" for international numbers
    std::wstring text;
    int messageClass;
    int reference;
    int total; // 0: no concatenation element
    int sequence;
    const char* time; // service-centre time stamp, zone dropped
};

// KPN's welcome message: 16-bit concatenation reference, 7-bit text right after the 7-octet header.
// clang-format off
inline const char* const kKpnWelcome =
    "07911356131313F64004850120390011609232239180A006080400100201D7327BFD6EB340E2321BF46E83EA7790F59D1E97DBE1341B442F83C465763D3DA797"
    "E56537C81D0ECB41AB59CC1693C16031D96C064241E5656838AF03A96230982A269BCD462917C8FA4E8FCBED709A0D7ABBE9F6B0FB5C7683D27350984D4FABC9"
    "A0B33C4C4FCF5D20EBFB2D079DCB62793DBD06D9C36E50FB2D4E97D9A0B49B5E96BBCB";
// clang-format on

// clang-format off
inline const PduRow kDecodeRows[] = {
    {"extension characters, zone -05:00", "07912104442961F4040B916171957291F800001120821105050A6AC8B2BC7C9A83C220F6DB7D2ECB41EDF27C1E3E97411BDE06754FD3D1A0F9BB5D0695F1F4B2" "9B5C2683C6E8B03C3CA697E5F34D6AE303D1D1F2F7DD0D4ABB59A0797D8C0685E7A00028EC26832A960B28EC2683BE6050780EBA97D96C17", 112, SMS_TPDU_DELIVER, "12404492164", 1, "+16175927198", L"Here's a longer message [{with some extended characters}] thrown in, such as £ and ΩΠΨ and §¿ as well.", 4, 0, 0, 0, "2011-02-28 11:50:50"},
    {"alphanumeric sender, UCS2", "07919730071111F10414D04937BD2C7797E9D3E614000811309291024061080442043504410442", 31, SMS_TPDU_DELIVER, "79037011111", 1, "InternetSMS", L"тест", 4, 0, 0, 0, "2011-03-29 19:20:04"},
    {"hellohello", "07912143658709F1040B918100551512F20000111010214365000AE8329BFD4697D9EC37", 28, SMS_TPDU_DELIVER, "12345678901", 1, "+18005551212", L"hellohello", 4, 0, 0, 0, "2011-01-01 12:34:56"},
    {"class 1, DCS group F, 160 septets", "07913306091093F0040485810000F111604231805180A049B7F90D9A1AA5A01668F8769BD3E4B29B9E2EB359A03FC85D06A9C3ED707A0EA2CBC3EE79BB4CA7CB" "CBA05643617DA7C76990FD4D979741EE77DD5E0ED741ED371D442E83E0E1F9BC0CD281E677D9B84C06C1DF7539E85C9097E520FB9B2E2F83C6EF369C5E064D8D" "52D0BC2E07DDEF77D7DC2C7799E5A0771D040FCB41F402BB0047BFDD6550B80ECAD966", 155, SMS_TPDU_DELIVER, "33609001390", 1, "1800", L"Info SFR - Confidentiel, à ne jamais transmettre -\r\nVoici votre nouveau mot de passe : sw2ced pour gérer votre compte SFR sur www.sfr.fr ou par téléphone au 963", 1, 0, 0, 0, "2011-06-24 13:08:15"},
    {"16-bit concatenation", kKpnWelcome, 155, SMS_TPDU_DELIVER, "31653131316", 1, "1002", L"Welkom, bel om uw Voicemail te beluisteren naar +31612001233 (PrePay: *100*1233#). Voicemail ontvangen is altijd gratis. Voor gebruik van mobiel interne", 4, 0x10, 2, 1, "2011-06-29 23:32:19"},
    {"8-bit concatenation, part 1", "07912160130320F5440B916171056429F5000021405291650569A00500034C0201A9E8F41C949E83C2207B599E07B1DFEE33885E9ED341E4F23C7D7697C920FA" "1B54C697E5E3F4BC0C6AD7D9F434081E96D341E3303C2C4EB3D3F4BC0B94A483E6E8779D4D06CDD1EF3BA80E0785E7A0B7BB0C6A97E7F3F0B9CC02B9DF745078" "0EA2DFDF2C50780EA2A3CBA0BA9B5C96B3F369F71954768FDFE4B4FB0C9297E1F2F2BCECA6CF41", 159, SMS_TPDU_DELIVER, "12063130025", 1, "+16175046925", L"This is a very long test designed to exercise multi part capability. It should show up as one message, not as two, as the underlying encoding represents ", 4, 0x4C, 2, 1, "2012-04-25 19:56:50"},
    {"8-bit concatenation, part 2", "07912160130320F6440B916171056429F5000021405291651569320500034C0202E9E8301D44479741F0B09C3E0785E56590BCCC0ED3CB6410FD0D7ABBCBA0B0" "FB4D4797E52E10", 63, SMS_TPDU_DELIVER, "12063130026", 1, "+16175046925", L"that the parts are related to one another. ", 4, 0x4C, 2, 2, "2012-04-25 19:56:51"},
    {"UCS2 with an emoji as a surrogate pair", "0791947101670000040D91945111325476F80008323041906235400A004800690020D83DDE00", 30, SMS_TPDU_DELIVER, "491710760000", 1, "+4915112345678", std::wstring{L'H', L'i', L' ', wchar_t(0xD83D), wchar_t(0xDE00)}, 4, 0, 0, 0, "2023-03-14 09:26:53"},
    {"submit stored by a phone, no service centre", "002100098136397339F70008224F60597D4F60597D4F60597D4F60597D4F60597D4F60597D4F60597D4F60597D4F60", 46, SMS_TPDU_SUBMIT, "", 0, "639337937", L"你好你好你好你好你好你好你好你好你", 4, 0, 0, 0, ""},
    {"status report without optional fields", "07914356060013F1065A098136397339F7219011700463802190117004638030", 24, SMS_TPDU_STATUS_REPORT, "34656000311", 1, "639337937", L"", 4, 0, 0, 0, "2012-09-11 07:40:36"},
    {"status report with TP-PI, TP-UDL and text", "07914356060013F1065A098136397339F72190117004638021901170046380300405E8329BFD06", 31, SMS_TPDU_STATUS_REPORT, "34656000311", 1, "639337937", L"hello", 4, 0, 0, 0, "2012-09-11 07:40:36"},
};
// clang-format on

// A text to send to a number, as the business layer hands it over.
inline TSmsSendItem SendItem(const std::wstring& text, const char* number = "+4917012345678") {
    TSmsSendItem item;
    std::snprintf(item.szNumber, sizeof item.szNumber, "%s", number);
    item.wstrContent = text;
    return item;
}

// A decoded PDU as the message list shows it.
inline TMsgPacket Packet(const TPduData& pdu) {
    TMessageListItem item;
    item.pduData = pdu;
    TMsgPacket packet;
    CSmsUtility::TMessageListItemToTMsgPacket(item, packet);
    return packet;
}

// "2011-01-01 12:34:56"
inline std::string Stamp(const TSmsDateTime& t) {
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "%04d-%02d-%02d %02d:%02d:%02d", t.nYear, t.nMonth, t.nDay, t.nHour,
                  t.nMinute, t.nSecond);
    return stamp;
}

// The text as UCS2 carries it: characters beyond U+FFFF as surrogate pairs.
inline std::wstring Utf16(const std::wstring& text) {
    std::wstring units;
    for (const wchar_t c : text) {
        if (c > 0xFFFF) {
            units += wchar_t(0xD800 + ((c - 0x10000) >> 10));
            units += wchar_t(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            units += c;
        }
    }
    return units;
}

} // namespace sms_test
