// Feeds the read-only operator tables, "PredefinedProfile" and "PLMN", to the configuration's line
// readers, then looks profiles and names up in what they read. The tables are read from memory, so an
// input costs no file (HOME is a scratch folder for the configuration's own files, read once).
//
// Input: the "PredefinedProfile" text, a NUL octet, then the "PLMN" text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <QByteArray>
#include <QString>

#include "AppConfig.h"
#include "DebugSink.h"
#include "FuzzScratch.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    const std::string folder = MakeFuzzScratchFolder("operator_tables_fuzz");
    setenv("HOME", folder.c_str(), 1);
    // An empty resource folder: the tables come from the input.
    setenv("DIALTONE_RESOURCE_DIR", folder.c_str(), 1);
    SetDebugSink(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t nul = input.find('\0');
    const std::string_view profiles = input.substr(0, nul);
    const std::string_view plmn = nul == std::string_view::npos ? std::string_view() : input.substr(nul + 1);

    static AppConfig config;
    config.readFixApnList(QByteArray(profiles.data(), static_cast<qsizetype>(profiles.size())));
    config.readPLMNList(QByteArray(plmn.data(), static_cast<qsizetype>(plmn.size())));

    QList<APNInfo> found;
    config.findApnItemByIMSI(QStringLiteral("310260123456789"), &found);
    config.getOperatorNameByNumeric(QStringLiteral("310260"));
    // What choosing a SIM's profiles compares, without writing the per-SIM list; a few rows are enough.
    const QList<APNInfo>& fixed = config.fixedApnList();
    for (qsizetype i = 0; i < fixed.size() && i < 4; ++i) {
        found.clear();
        config.findApnItemByIMSI(fixed[i].strMCCMNC + QStringLiteral("0123456789"), &found);
        config.getOperatorNameByNumeric(fixed[i].strMCCMNC);
    }
    return 0;
}
