#include "ValidityCode.h"

#include <regex>

std::optional<TSmsValidPeriod> ParseValidityCode(const std::string& code) {
    TSmsValidPeriod period;
    period.bEnable = 1;
    if (code == "max") {
        period.bWeek = 255;
        return period;
    }
    static const std::regex pattern("^(?:(\\d{1,3})w)?(?:(\\d{1,3})d)?(?:(\\d{1,3})h)?$");
    std::smatch match;
    if (code.empty() || !std::regex_match(code, match, pattern))
        return std::nullopt;
    const int limits[] = {254, 255, 255};
    uint8_t* fields[] = {&period.bWeek, &period.bDay, &period.bHour};
    for (int i = 0; i < 3; ++i) {
        const int value = match[i + 1].matched ? std::stoi(match[i + 1].str()) : 0;
        if (value > limits[i])
            return std::nullopt;
        *fields[i] = static_cast<uint8_t>(value);
    }
    return period;
}
