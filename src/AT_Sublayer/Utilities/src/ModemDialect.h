#pragma once

#include <string_view>

// Which commands a stick understands beyond the 3GPP TS 27.007 and 27.005 sets.
//
//   Vel       the HSPA stick this program was first written for: its own commands for the attempt
//             counters (+PNNM, +SMPN), system selection (+SYSSEL), bearer (+SSND), provider name (+SPNM,
//             +SPDI), toolkit (+STGI/+STGR) and GPS ($GPSC).
//   Standard  any other 3GPP stick: only 27.007/27.005 commands; the maker's features are refused as not
//             supported, never tried.
//
// The dialect is chosen when the modem's ports are found (the device table names it per USB vendor and
// product; a stick found by probing speaks Standard). Where no USB device stands behind the port (the
// simulator's pseudo-terminals), DIALTONE_DIALECT ("vel" or "standard") chooses; the default is Vel.
enum class ModemDialect { Vel, Standard };

// Returned by a family operation that the stick's dialect has no command for; nothing was sent. The same
// number as the worker's "not supported by this modem" result, so that it passes through unchanged.
inline constexpr int kNotSupportedByModem = 46;

// The dialect set last, else the one DIALTONE_DIALECT names, else Vel. Safe from any thread.
ModemDialect CurrentModemDialect();
void SetModemDialect(ModemDialect dialect);
// Forgets the dialect set, so that DIALTONE_DIALECT chooses again (tests).
void ResetModemDialect();

// "vel" and "standard"; false for any other name.
bool ModemDialectFromName(std::string_view name, ModemDialect& dialect);
const char* ModemDialectName(ModemDialect dialect);

inline bool StandardDialect() {
    return CurrentModemDialect() == ModemDialect::Standard;
}
