#pragma once

#include <string>

// The cause a modem gives with a failed command, as one integer for a response's "SUB_ERROR_CODE":
// "+CME ERROR: <n>" (3GPP TS 27.007 clause 9.2) becomes kCmeCause + n, "+CMS ERROR: <n>" (TS 27.005
// clause 3.2.5) kCmsCause + n. 0 means no cause is known. Plain C++: it runs on the worker's AT path.

inline constexpr int kCmeCause = 100000;
inline constexpr int kCmsCause = 200000;

// The last "+CME ERROR:" or "+CMS ERROR:" line of a modem's answer, numeric or verbose (AT+CMEE=2); 0 when
// there is none or its verbose text is not a standard one.
int ModemErrorCause(const std::string& answer);
