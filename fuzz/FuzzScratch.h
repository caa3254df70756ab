#pragma once

// A scratch folder for fuzz targets whose readers take files: made once, removed when the fuzzer exits
// normally (a crash leaves it for inspection).

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/stat.h>

// $TMPDIR, else memory-backed /dev/shm where there is one: every input is written and synced to disk.
inline std::string FuzzScratchBase() {
    const char* tmp = std::getenv("TMPDIR");
    if (tmp != nullptr && *tmp != '\0')
        return tmp;
    struct stat info {};
    return stat("/dev/shm", &info) == 0 && S_ISDIR(info.st_mode) ? "/dev/shm" : "/tmp";
}

// "<base>/<name>.XXXXXX", created; aborts when it cannot be.
inline std::string MakeFuzzScratchFolder(const char* name) {
    static std::string folder;
    folder = FuzzScratchBase() + "/" + name + ".XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        std::abort();
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    });
    return folder;
}
