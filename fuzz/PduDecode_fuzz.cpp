// Feeds DecodePduData with PDUs as a modem could print them, then everything that consumes a decoded
// PDU: the packet conversion, the message table with its merge, and the encoder for decoded submits.
//
// Input: one mode octet, one length octet, then the PDU. Mode bit 0: the PDU octets are used as they are
// (exercises the hex reader); otherwise they are written out as hex first (exercises the TPDU decoders).
// Mode bit 1: the length octet is added (signed) to the length the text implies; otherwise it is the
// TPDU length itself.

#include <cstddef>
#include <cstdint>
#include <string>

#include "SmsUtility.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const uint8_t mode = data[0];
    const uint8_t lengthOctet = data[1];
    data += 2;
    size -= 2;

    std::string text;
    if (mode & 1) {
        text.assign(reinterpret_cast<const char*>(data), size);
    } else {
        static const char* const digits = "0123456789ABCDEF";
        for (size_t i = 0; i < size; ++i) {
            text += digits[data[i] >> 4];
            text += digits[data[i] & 0x0F];
        }
    }
    int tpduLength = lengthOctet;
    if (mode & 2) {
        const int serviceCentre = size > 0 ? (CSmsUtility::HexCharToInt(text[1]) & 0x0F) + 1 : 0;
        tpduLength = static_cast<int>(text.size() / 2) - serviceCentre + static_cast<int8_t>(lengthOctet);
    }

    TMessageListItem item;
    if (CSmsUtility::DecodePduData(text.c_str(), tpduLength, item.pduData) != 0)
        return 0;

    static CSmsUtility sms; // the table grows across inputs, as it does across a session
    if (sms.MessageTable().size() > 2000)
        sms = CSmsUtility();
    item.nStorage = SMS_STORAGE_SIM;
    item.nIndex = mode >> 2;
    item.nStatus = 1;
    bool added = false, deleted = false, replaced = false;
    uint32_t id = 0;
    sms.AddMsgItemToListTable(item, added, id, deleted, replaced, false);
    for (const CMsgListTableItem& stored : sms.MessageTable()) {
        if (stored.nId == id) {
            TSmsListItem merged;
            CSmsUtility::MergePackets(stored, merged);
        }
    }
    if (item.pduData.tpdu.nTpduType == SMS_TPDU_SUBMIT) {
        TProtocalTpduData encoded;
        CSmsUtility::EncodeTpduSubmit(item.pduData.tpdu.submit, encoded);
    }
    return 0;
}
