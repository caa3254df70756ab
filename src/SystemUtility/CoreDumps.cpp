#include "CoreDumps.h"

#include <sys/prctl.h>
#include <sys/resource.h>

void DisableCoreDumps() {
    const struct rlimit none { 0, 0 };
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}
