// Feeds the account menu reader with data files an operator package could hold. The reader takes a file,
// so each input is written to one scratch file first.
//
// Input: one octet that picks the language (-1, the first with an identifier, or index 0 to 2), then
// the file.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <QString>

#include "Account/AccountData.h"
#include "DebugSink.h"
#include "FuzzScratch.h"

namespace {

std::string g_path;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    const std::string folder = MakeFuzzScratchFolder("account_data_fuzz");
    g_path = folder + "/AccountData.xml";
    SetDebugSink(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    const int languageIndex = static_cast<int>(data[0] % 4) - 1;
    std::FILE* file = std::fopen(g_path.c_str(), "wb");
    if (file == nullptr)
        std::abort();
    std::fwrite(data + 1, 1, size - 1, file);
    std::fclose(file);

    _TAccountData account;
    GetUSSDDataFromFile(QString::fromStdString(g_path), account, languageIndex);
    for (const _TAccountGroupItem& group : account.groups)
        WStringToQString(group.strName);

    // The hex texts themselves, as the elements carry them.
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    UnicodeHex2WString(text.c_str());
    ASCII2WString(text.c_str());
    return 0;
}
