#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

// SMS PDUs without a modem: decoded field by field as AT+CMGR and AT+CMGL print them, and texts split into
// SMS-SUBMIT PDUs as the send path splits them. Texts and numbers are UTF-8.
namespace SmsPduText {

// A validity period: weeks, days and hours; weeks 255 asks for the longest period the network keeps.
struct Validity {
    uint8_t weeks = 0;
    uint8_t days = 0;
    uint8_t hours = 0;
};
// As the user writes it: "max", or weeks, days and hours such as "2d", "1w3d" or "12h"; nothing otherwise.
std::optional<Validity> ParseValidity(const std::string& code);

// Label and value, in the order people read them; the values come from the PDU as it was given.
using Lines = std::vector<std::pair<std::string, std::string>>;

struct Decoded {
    int result = 0; // 0, or the decoder's failure code (nothing else is filled then)
    Lines lines;
    nlohmann::json fields; // the decoded records, with the text and the number as the message list shows them
};
// hex: the PDU, service-centre part first; tpduLength: the modem's length field, computed when left out.
Decoded Decode(const std::string& hex, std::optional<int> tpduLength);

struct Encoded {
    int result = 0; // 0, or the encoder's failure code
    int encodeType = 0;
    std::vector<std::pair<int, std::string>> segments; // TPDU octets, and the PDU in hex
};
Encoded Encode(const std::string& number, const std::string& text, bool report,
               const std::optional<Validity>& validity);

} // namespace SmsPduText
