// The computer's address book in the tool: without a modem (import, list, search, export), and copied to
// and from the simulated modem's SIM.

#include <gtest/gtest.h>

#include "CliTestSupport.h"

namespace {

using clitest::SimulatedModem;
using clitest::TempDir;
using clitest::WriteFile;

const char* const kCards =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Anna Schmidt\r\nTEL;TYPE=CELL:+49 170 7654321\r\n"
    "TEL;TYPE=HOME:030 1234567\r\nEMAIL:anna@example.org\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:2.1\r\nN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller;J=\r\n"
    "=FCrgen\r\nTEL;CELL:0171999888\r\nEND:VCARD\r\n";

TEST(DialtoneAddressBook, ImportListSearchExportWithoutAModem) {
    TempDir home;
    const std::string cards = home.path + "/cards.vcf";
    const std::string broken = home.path + "/broken.vcf";
    const std::string out = home.path + "/out.vcf";
    WriteFile(cards, kCards);
    WriteFile(broken, "BEGIN:VCARD\nFN:Carl\nTEL:1\nEND:VCARD\nBEGIN:VCARD\nFN:Dora\n");
    // clang-format off
    const std::vector<clitest::Step> rows = {
        {{"contacts", "import", cards}, 0, {"2 added, 0 merged, 0 already there"}},
        {{"contacts", "import", cards}, 0, {"0 added, 0 merged, 2 already there"}},
        {{"contacts", "import", broken}, 1, {}, "line 5: the card has no END:VCARD; nothing was imported"},
        {{"contacts", "list", "--store", "pc"}, 0, {"pc         2  J\xC3\xBCrgen M\xC3\xBCller                  0171999888 (mobile)\n"}},
        {{"--json", "contacts", "search", "7654"}, 0, {"\"emails\": [\n        \"anna@example.org\"\n      ],\n      \"index\": 1,"}},
        {{"contacts", "search", "carl"}, 0, {"No contacts"}},
        {{"contacts", "export", out}, 0, {"Exported 2 contacts from the computer's address book"}},
        {{"contacts", "export", out}, 1, {}, "exists; give another name, or overwrite it with --force"},
        {{"contacts", "export", out, "--force", "--vcard4"}, 0, {"Exported 2"}},
        {{"contacts", "import", out}, 0, {"0 added, 0 merged, 2 already there"}},
    };
    // clang-format on
    clitest::RunSteps(home.path, rows);
}

TEST(DialtoneAddressBook, CopiedToTheSimAndBack) {
    SimulatedModem modem;
    ASSERT_TRUE(modem.ready());
    const std::string cards = modem.files.path + "/cards.vcf";
    WriteFile(cards, kCards);
    // The SIM keeps names of up to 14 characters and has Anna's mobile number already.
    // clang-format off
    clitest::RunSteps(modem, {
        {{"contacts", "import", cards}, 0},
        {{"contacts", "copy", "--from", "pc", "--to", "sim", "anna"}, 0, {"Anna (mobile) +491707654321  copied, name cut", "Anna Sc (home) 0301234567  copied, name cut", "Copied 2 of 2 numbers to the SIM"}},
        {{"contacts", "list", "--store", "sim"}, 0, {"Anna Sc (home)", "030 1234567"}},
        {{"contacts", "copy", "--from", "sim", "--to", "pc"}, 0, {"Copied to the computer's address book: 2 added, 1 merged, 2 already there"}},
        {{"contacts", "search", "1234567"}, 0, {"pc         1  Anna Schmidt                   +49 170 7654321 (mobile), 030 1234567 (home), +491701234567  <anna@example.org>\n", "sim        5  Anna Sc (home)"}},
    });
    // clang-format on
}

} // namespace
