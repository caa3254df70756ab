#pragma once

#include <optional>
#include <string>

#include "SmsTypes.h"

// A validity period as the user writes it: "max", or weeks, days and hours such as "2d", "1w3d" or "12h".
// Used by "pdu encode --validity" and "sms validity"; nothing when the code is not one of these.
std::optional<TSmsValidPeriod> ParseValidityCode(const std::string& code);
