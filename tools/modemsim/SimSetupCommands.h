#pragma once

#include "SimModem.h"

namespace modemsim {

// Identity and setup: ATE/ATQ/ATV/ATZ/AT&F/ATI/ATS, AT+CMEE, AT+CGMI/+CGMM/+CGMR/+CGSN (and +GMI...),
// AT+HWV, AT+CIMI, AT+CNUM, AT+CGDCONT, AT+CFUN, AT+FUNC=5, AT+CSCS, AT+CCLK, AT+GCAP.
void RegisterSetupCommands(CommandTable& table);

} // namespace modemsim
