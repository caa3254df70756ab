#pragma once

// The tool and the app hold PINs, PUKs and profile passwords in memory: a core file or a debugger attached
// by another process of the same user must not carry them away. Call first thing in main().
void DisableCoreDumps();
