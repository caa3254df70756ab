#include "ModemDialect.h"

#include <atomic>
#include <cstdlib>

namespace {

// -1 while nothing was set.
std::atomic<int> g_dialect{-1};

} // namespace

ModemDialect CurrentModemDialect() {
    const int set = g_dialect.load();
    if (set >= 0)
        return static_cast<ModemDialect>(set);
    ModemDialect named = ModemDialect::Vel;
    const char* env = std::getenv("DIALTONE_DIALECT");
    if (env != nullptr && ModemDialectFromName(env, named))
        return named;
    return ModemDialect::Vel;
}

void SetModemDialect(ModemDialect dialect) {
    g_dialect.store(static_cast<int>(dialect));
}

void ResetModemDialect() {
    g_dialect.store(-1);
}

bool ModemDialectFromName(std::string_view name, ModemDialect& dialect) {
    if (name == "vel") {
        dialect = ModemDialect::Vel;
        return true;
    }
    if (name == "standard") {
        dialect = ModemDialect::Standard;
        return true;
    }
    return false;
}

const char* ModemDialectName(ModemDialect dialect) {
    return dialect == ModemDialect::Standard ? "standard" : "vel";
}
