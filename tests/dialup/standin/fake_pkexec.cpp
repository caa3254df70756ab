// pkexec once the user has authenticated, setuid root in a test: notes its arguments in
// DIALTONE_FAKE_PKEXEC_LOG and runs the program as root with PKEXEC_UID, keeping the test's environment.
#include <cstdio>
#include <cstdlib>
#include <grp.h>
#include <string>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 2)
        return 127;
    const uid_t caller = getuid();
    if (const char* log = std::getenv("DIALTONE_FAKE_PKEXEC_LOG")) {
        if (FILE* file = std::fopen(log, "a")) {
            for (int i = 1; i < argc; ++i)
                std::fprintf(file, "%s%s", argv[i], i + 1 < argc ? " " : "\n");
            std::fclose(file);
        }
    }
    setenv("PKEXEC_UID", std::to_string(caller).c_str(), 1);
    if (setgroups(0, nullptr) != 0 || setgid(0) != 0 || setuid(0) != 0)
        return 127;
    execv(argv[1], argv + 1);
    return 127;
}
