#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "SimModem.h"

namespace modemsim {

// Voice and GPS: ATD<number>; (OK, BUSY, NO ANSWER or NO CARRIER as the scenario says), ATA, ATH,
// AT+CHUP, AT+VTS, AT+CLCC, AT+COLP, AT+CLIP, AT+CRC, AT$GPSC=1,1 / AT$GPSC=1,0.
void RegisterVoiceCommands(CommandTable& table);

// Control socket "ring NUMBER": an incoming call, "RING" (or "+CRING: VOICE") and "+CLIP:" every few
// seconds until it is answered or ended.
nlohmann::json IncomingCall(SimModem& m, const std::string& number);
// Control socket "hangup": the far end hangs up; "NO CARRIER" follows.
nlohmann::json RemoteHangup(SimModem& m);

} // namespace modemsim
