// Feeds the read-only operator tables, "PredefinedProfile" and "PLMN", to the configuration's line
// readers, then looks profiles and names up in what they read. The readers take the resource folder's
// files, so each input is written to a scratch resource folder first (HOME is a scratch folder too).
//
// Input: the "PredefinedProfile" text, a NUL octet, then the "PLMN" text.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <sys/stat.h>

#include <QString>

#include "AppConfig.h"
#include "DebugSink.h"
#include "FuzzScratch.h"

namespace {

std::string g_resources;

void WriteFile(const std::string& name, std::string_view text) {
    std::FILE* file = std::fopen((g_resources + "/" + name).c_str(), "wb");
    if (file == nullptr)
        std::abort();
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    const std::string folder = MakeFuzzScratchFolder("operator_tables_fuzz");
    setenv("HOME", folder.c_str(), 1);
    g_resources = folder + "/Resources";
    if (mkdir(g_resources.c_str(), 0700) != 0)
        std::abort();
    setenv("DIALTONE_RESOURCE_DIR", g_resources.c_str(), 1);
    SetDebugSink(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t nul = input.find('\0');
    WriteFile("PredefinedProfile", input.substr(0, nul));
    WriteFile("PLMN", nul == std::string_view::npos ? std::string_view() : input.substr(nul + 1));

    static AppConfig config;
    config.initFixApnList();
    config.initPLMNList();

    const QString imsi = QStringLiteral("310260123456789");
    QList<APNInfo> found;
    config.findApnItemByIMSI(imsi, &found);
    config.getOperatorNameByNumeric(QStringLiteral("310260"));
    if (!config.fixedApnList().isEmpty()) {
        const APNInfo& first = config.fixedApnList().first();
        config.getFixApnByIMSI(first.strMCCMNC + QStringLiteral("0123456789"), first.strSPN);
    }
    return 0;
}
