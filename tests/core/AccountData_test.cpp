#include "TempHome.h"

#include "Account/AccountData.h"
#include "ResourceLocator.h"

#include <QByteArray>

#include <climits>
#include <cstdio>
#include <string>

namespace {

// UCS-2 hex of an ASCII text.
std::string hex(const std::string& text) {
    std::string out;
    char unit[5];
    for (unsigned char c : text) {
        std::snprintf(unit, sizeof unit, "%04X", c);
        out += unit;
    }
    return out;
}

const std::string kButton =
    "<BUTTON><BUTTON_NAME>" + hex("Check") + "</BUTTON_NAME><BUTTON_CODE>*100#</BUTTON_CODE></BUTTON>";
const std::string kInput = "<INPUT><INPUT_TITLE_STRING>" + hex("Voucher") +
                           "</INPUT_TITLE_STRING><INPUT_STRING>" + hex("0000") +
                           "</INPUT_STRING><INPUT_LIMITATION>0123456789</INPUT_LIMITATION>"
                           "<INPUT_MAXLEN>16</INPUT_MAXLEN><INPUT_MINLEN>12</INPUT_MINLEN></INPUT>";

// The record as text: the language and tip, then a line per group with its items' fields.
std::string Summary(const _TAccountData& data) {
    const auto n = [](const std::wstring& text) { return QString::fromStdWString(text).toStdString(); };
    const auto i = [](int number) { return std::to_string(number); };
    std::string out = i(data.nLanguageID) + " " + n(data.strTip) + "\n";
    for (const auto& group : data.groups) {
        out += n(group.strName) + "/" + i(group.nType) + ":";
        for (const auto& e : group.items) {
            out += " " + n(e.strText) + "/" + i(e.nType) + " " + n(e.strTitle) + " " + n(e.strPrompt) + " ";
            for (const auto& in : e.inputs)
                out += "[" + n(in.strTitle) + " " + n(in.strText) + " " + n(in.strLimitation) + " " +
                       i(in.nMaxLen) + " " + i(in.nMinLen) + "]";
            for (const auto& b : e.buttons)
                out += " [" + n(b.strName) + " " + n(b.strCode) + "]";
        }
        out += "\n";
    }
    return out;
}

// "<NAME>inside</NAME>"; the name may carry attributes.
std::string tag(const std::string& name, const std::string& inside) {
    return "<" + name + ">" + inside + "</" + name.substr(0, name.find(' ')) + ">";
}
std::string tip(const std::string& text = hex("Tip")) {
    return tag("TIP", text);
}
std::string fullItem() {
    return tag("ITEM", "<ITEM_STRING>" + hex("Top up") +
                           "</ITEM_STRING><ITEM_TYPE_FOR>3</ITEM_TYPE_FOR><TITLE_STRING>" + hex("Top-up") +
                           "</TITLE_STRING><PROMPT_STRING>" + hex("Enter") +
                           "</PROMPT_STRING><INPUT_SETTING>" + kInput + "</INPUT_SETTING><BUTTON_SETTING>" +
                           kButton + "</BUTTON_SETTING>");
}
std::string goodGroup(const std::string& name = "Balance") {
    return tag("GROUP", "<GROUP_STRING>" + hex(name) + "</GROUP_STRING><GROUP_TYPE_FOR>1</GROUP_TYPE_FOR>" +
                            fullItem());
}
std::string root(const std::string& inside) {
    return "<?xml version=\"1.0\"?>" + tag("ROOT", inside);
}
std::string firstLanguage(const std::string& inside) {
    return root(tag("LANGUAGE LANGUAGE_ID=\"0\"", inside));
}
// An item without text, title or prompt, followed by `rest`, alone in the first language.
std::string oneItem(const std::string& rest) {
    return firstLanguage(
        tip() + tag("GROUP", "<GROUP_STRING>0041</GROUP_STRING>" +
                                 tag("ITEM", "<ITEM_STRING/><TITLE_STRING/><PROMPT_STRING/>" + rest)));
}

QString writeData(const TempHome& home, const QByteArray& bytes) {
    const QString path = home.path() + "/test.dat";
    TempHome::writeFile(path, bytes);
    return path;
}

} // namespace

TEST(AccountData, TextEncodings) {
    // clang-format off
    const struct { const char* hex; std::wstring text; } rows[] = {
        {"0041", L"A"}, {"00410062", L"Ab"}, {"00e900E9", L"\u00e9\u00e9"} /* either case */, {"4E2D6587", L"\u4e2d\u6587"}, {"", L""},
        {"004", L""} /* not whole units */, {"004100", L""} /* six digits */, {"00G1", L""}, {"+041", L""},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(UnicodeHex2WString(row.hex), row.text) << row.hex;
    EXPECT_EQ(UnicodeHex2WString(nullptr), L"");
    EXPECT_EQ(ASCII2WString("*100#"), L"*100#");
    EXPECT_EQ(ASCII2WString("\xe9"), L"\u00e9");
    EXPECT_EQ(ASCII2WString(nullptr), L"");
    EXPECT_EQ(WStringToQString(UnicodeHex2WString("D83DDE00")), QString::fromUtf8("\xF0\x9F\x98\x80"));
}

TEST(AccountData, NoDataBrokenFilesAndTheirMessages) {
    // clang-format off
    // printed: nullptr: nothing; summary: the record read, empty: unchecked. Optional parts left out read as
    // types 0, no inputs, no buttons; one record serves every row, so a read replaces what it held.
    struct Row { const char* name; std::string xml; int language; int result; size_t groups; const char* printed; std::string summary = {}; };
    const std::string ok = tip() + goodGroup();
    const std::string number = tag("GROUP", "<GROUP_STRING>" + hex("Number") + "</GROUP_STRING>" + tag("ITEM", "<ITEM_STRING>" + hex("Show") + "</ITEM_STRING><TITLE_STRING>" + hex("T") + "</TITLE_STRING><PROMPT_STRING></PROMPT_STRING>"));
    const std::string two = root(tag("LANGUAGE LANGUAGE_ID=\"0\"", ok) + tag("LANGUAGE LANGUAGE_ID=\"1\"", tip(hex("Hinweis")) + goodGroup("Guthaben") + number));
    const std::string full = "/1: Top up/3 Top-up Enter [Voucher 0000 0123456789 16 12] [Check *100#]\n";
    const char* const error = "data prase error:";
    const auto first = firstLanguage;
    const Row rows[] = {
        {"the chosen language", two, 1, 0, 2, nullptr, "1 Hinweis\nGuthaben" + full + "Number/0: Show/0 T  \n"},
        {"-1: the first language", two, -1, 0, 1, nullptr, "0 Tip\nBalance" + full},
        {"not XML", "garbage <<< >", 0, 0, 0, nullptr},
        {"no ROOT", tag("OTHER", tag("LANGUAGE LANGUAGE_ID=\"0\"", ok)), 0, 0, 0, nullptr},
        {"empty ROOT", root(""), -1, 0, 0, nullptr},
        {"unknown language", first(ok), 5, 0, 0, nullptr},
        {"language without id skipped", root(tag("LANGUAGE", ok) + tag("LANGUAGE LANGUAGE_ID=\"2\"", ok)), -1, 0, 1, "data prase error resume:\nFunction:GetUSSDDataFromFile \nLine:"},
        {"six-digit tip", first(tip("004100") + goodGroup()), 0, 0, 1, nullptr, "0 \nBalance" + full},
        {"no TIP", first(goodGroup()), 0, -1, 0, "data prase error:\nFunction:GetUSSDDataFromFile \nLine:"},
        {"no GROUP", first(tip()), 0, -1, 0, error},
        {"group without GROUP_STRING", first(tip() + goodGroup() + tag("GROUP", fullItem())), 0, -1, 0, error},
        {"item without TITLE_STRING", first(tip() + tag("GROUP", "<GROUP_STRING>0041</GROUP_STRING>" + tag("ITEM", "<ITEM_STRING>0041</ITEM_STRING><PROMPT_STRING/>"))), 0, -1, 0, error},
        {"input without INPUT_MAXLEN", oneItem("<INPUT_SETTING><INPUT><INPUT_TITLE_STRING/><INPUT_STRING/><INPUT_LIMITATION/><INPUT_MINLEN>1</INPUT_MINLEN></INPUT></INPUT_SETTING>"), 0, -1, 0, error},
        {"button without BUTTON_CODE", oneItem("<BUTTON_SETTING><BUTTON><BUTTON_NAME>0041</BUTTON_NAME></BUTTON></BUTTON_SETTING>"), 0, -1, 0, error},
    };
    // clang-format on
    _TAccountData data;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TempHome home;
        const QString path = writeData(home, QByteArray::fromStdString(row.xml));
        DebugCapture capture;
        EXPECT_EQ(GetUSSDDataFromFile(path, data, row.language), row.result);
        EXPECT_EQ(data.groups.size(), row.groups);
        EXPECT_TRUE(row.printed ? capture.text().contains(row.printed) : capture.text().isEmpty())
            << capture.text().toStdString();
        EXPECT_EQ(Summary(data), row.summary.empty() ? Summary(data) : row.summary);
    }
    EXPECT_EQ(GetUSSDDataFromFile("/nonexistent/account.dat", data, -1), 0);
    EXPECT_TRUE(data.groups.empty());
}

TEST(AccountData, OddNumbersAreBounded) {
    // clang-format off
    const struct { const char* text; int32_t value; } rows[] = {
        {"16", 16}, {" -3", -3}, {"abc", 0}, {"", 0}, {"12abc", 12}, {"99999999999999999999", INT32_MAX}, {"-99999999999999999999", INT32_MIN},
    };
    // clang-format on
    TempHome home;
    for (const auto& row : rows) {
        const std::string input = "<INPUT_TITLE_STRING/><INPUT_STRING/><INPUT_LIMITATION/>" +
                                  tag("INPUT_MAXLEN", row.text) + "<INPUT_MINLEN/>";
        const QString path =
            writeData(home, QByteArray::fromStdString(oneItem(tag("INPUT_SETTING", tag("INPUT", input)))));
        _TAccountData data;
        ASSERT_EQ(GetUSSDDataFromFile(path, data, 0), 0) << row.text;
        EXPECT_EQ(data.groups.front().items.front().inputs.front().nMaxLen, row.value) << row.text;
        EXPECT_EQ(data.groups.front().items.front().inputs.front().nMinLen, 0);
    }
}

// Every cut of a real file reads without a fault of the reader's own.
TEST(AccountData, TruncatedFilesNeverCrash) {
    TempHome home;
    const QByteArray full = TempHome::readFile(ResourceLocator::accountDataDir() + "/Default.dat");
    ASSERT_FALSE(full.isEmpty());
    DebugCapture capture;
    for (qsizetype size = 0; size < full.size(); size += 97) {
        const QString path = writeData(home, full.left(size));
        _TAccountData data;
        const int result = GetUSSDDataFromFile(path, data, 1);
        EXPECT_TRUE(result == 0 || result == -1) << size;
    }
}
