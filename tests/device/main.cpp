#include "DeviceTestSupport.h"

#include <QCoreApplication>

#include <cstring>
#include <unistd.h>
#include <vector>

// The udev tests need umockdev's fake /sys: the program runs itself again under umockdev-wrapper when it
// can, so that ctest and a plain run behave alike. Without umockdev those tests skip.
int main(int argc, char** argv) {
    if (!underUmockdev() && std::getenv("DIALTONE_NO_UMOCKDEV") == nullptr) {
        std::vector<char*> args{const_cast<char*>("umockdev-wrapper")};
        args.insert(args.end(), argv, argv + argc);
        args.push_back(nullptr);
        // The preload library comes before a sanitizer's runtime; that is fine here.
        std::string asan = std::getenv("ASAN_OPTIONS") ? std::getenv("ASAN_OPTIONS") : "";
        setenv("ASAN_OPTIONS", (asan + (asan.empty() ? "" : ":") + "verify_asan_link_order=0").c_str(), 1);
        setenv("DIALTONE_NO_UMOCKDEV", "1", 1); // no second try if the wrapper does not preload
        execvp(args[0], args.data());
    }
    QCoreApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
