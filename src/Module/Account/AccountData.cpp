#include "AccountData.h"

#include "DebugSink.h"

#include <QFileInfo>

#include <tinyxml2.h>

#include <climits>

namespace {

using tinyxml2::XMLElement;

// Operator files are a few kilobytes; anything far larger is not one.
constexpr qint64 kMaxFileSize = 4 * 1024 * 1024;

const char* const kFunction = "GetUSSDDataFromFile";

int fault(int line) {
    DebugPrint("data prase error:\nFunction:%s \nLine:%d\n", kFunction, line);
    return -1;
}

// Leading blanks, an optional sign, decimal digits; stops at the first other character; clamps to 32 bits.
int32_t parseInteger(const char* text) {
    if (!text) {
        return 0;
    }
    while (*text == ' ' || *text == '\t' || *text == '\n' || *text == '\r') {
        ++text;
    }
    bool negative = false;
    if (*text == '-' || *text == '+') {
        negative = *text == '-';
        ++text;
    }
    long long value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        value = value * 10 + (*text - '0');
        if (value > static_cast<long long>(INT32_MAX) + 1) {
            value = static_cast<long long>(INT32_MAX) + 1;
        }
    }
    if (negative) {
        value = -value;
    }
    if (value > INT32_MAX) {
        value = INT32_MAX;
    }
    return static_cast<int32_t>(value);
}

std::wstring hexText(const XMLElement* element) {
    return UnicodeHex2WString(element->GetText());
}

int readInput(const XMLElement* input, _TAccountInputItem& item) {
    const XMLElement* title = input->FirstChildElement("INPUT_TITLE_STRING");
    const XMLElement* text = input->FirstChildElement("INPUT_STRING");
    const XMLElement* limitation = input->FirstChildElement("INPUT_LIMITATION");
    const XMLElement* maxLen = input->FirstChildElement("INPUT_MAXLEN");
    const XMLElement* minLen = input->FirstChildElement("INPUT_MINLEN");
    if (!title || !text || !limitation || !maxLen || !minLen) {
        return fault(__LINE__);
    }
    item.strTitle = hexText(title);
    item.strText = hexText(text);
    item.strLimitation = ASCII2WString(limitation->GetText());
    item.nMaxLen = parseInteger(maxLen->GetText());
    item.nMinLen = parseInteger(minLen->GetText());
    return 0;
}

int readButton(const XMLElement* button, _TAccountButtonItem& item) {
    const XMLElement* name = button->FirstChildElement("BUTTON_NAME");
    const XMLElement* code = button->FirstChildElement("BUTTON_CODE");
    if (!name || !code) {
        return fault(__LINE__);
    }
    item.strName = hexText(name);
    item.strCode = ASCII2WString(code->GetText());
    return 0;
}

int readItem(const XMLElement* element, _TAccountUSSDItem& item) {
    const XMLElement* text = element->FirstChildElement("ITEM_STRING");
    const XMLElement* title = element->FirstChildElement("TITLE_STRING");
    const XMLElement* prompt = element->FirstChildElement("PROMPT_STRING");
    if (!text || !title || !prompt) {
        return fault(__LINE__);
    }
    item.strText = hexText(text);
    if (const XMLElement* type = element->FirstChildElement("ITEM_TYPE_FOR")) {
        item.nType = parseInteger(type->GetText());
    }
    item.strTitle = hexText(title);
    item.strPrompt = hexText(prompt);
    if (const XMLElement* inputs = element->FirstChildElement("INPUT_SETTING")) {
        for (const XMLElement* input = inputs->FirstChildElement("INPUT"); input;
             input = input->NextSiblingElement("INPUT")) {
            if (readInput(input, item.inputs.emplace_back()) != 0) {
                return -1;
            }
        }
    }
    if (const XMLElement* buttons = element->FirstChildElement("BUTTON_SETTING")) {
        for (const XMLElement* button = buttons->FirstChildElement("BUTTON"); button;
             button = button->NextSiblingElement("BUTTON")) {
            if (readButton(button, item.buttons.emplace_back()) != 0) {
                return -1;
            }
        }
    }
    return 0;
}

int readGroup(const XMLElement* element, _TAccountGroupItem& group) {
    const XMLElement* name = element->FirstChildElement("GROUP_STRING");
    if (!name) {
        return fault(__LINE__);
    }
    group.strName = hexText(name);
    if (const XMLElement* type = element->FirstChildElement("GROUP_TYPE_FOR")) {
        group.nType = parseInteger(type->GetText());
    }
    for (const XMLElement* item = element->FirstChildElement("ITEM"); item;
         item = item->NextSiblingElement("ITEM")) {
        if (readItem(item, group.items.emplace_back()) != 0) {
            return -1;
        }
    }
    return 0;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

} // namespace

std::wstring UnicodeHex2WString(const char* text) {
    if (!text) {
        return {};
    }
    const std::string hex(text);
    if (hex.size() % 4 != 0) {
        return {};
    }
    std::wstring result;
    result.reserve(hex.size() / 4);
    for (size_t i = 0; i < hex.size(); i += 4) {
        unsigned unit = 0;
        for (size_t k = 0; k < 4; ++k) {
            const int digit = hexDigit(hex[i + k]);
            if (digit < 0) {
                return {};
            }
            unit = unit << 4 | static_cast<unsigned>(digit);
        }
        result.push_back(static_cast<wchar_t>(unit));
    }
    return result;
}

std::wstring ASCII2WString(const char* text) {
    std::wstring result;
    if (!text) {
        return result;
    }
    for (; *text; ++text) {
        result.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*text)));
    }
    return result;
}

int GetUSSDDataFromFile(const QString& path, _TAccountData& data, int languageIndex) {
    data = _TAccountData();
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > kMaxFileSize) {
        return 0;
    }
    tinyxml2::XMLDocument document;
    if (document.LoadFile(QFile::encodeName(path).constData()) != tinyxml2::XML_SUCCESS) {
        return 0;
    }
    const XMLElement* root = document.FirstChildElement("ROOT");
    if (!root) {
        return 0;
    }
    const XMLElement* language = root->FirstChildElement("LANGUAGE");
    int32_t languageID = 0;
    for (; language; language = language->NextSiblingElement("LANGUAGE")) {
        const char* id = language->Attribute("LANGUAGE_ID");
        if (!id) {
            DebugPrint("data prase error resume:\nFunction:%s \nLine:%d\n", kFunction, __LINE__);
            continue;
        }
        languageID = parseInteger(id);
        if (languageIndex == -1 || languageID == languageIndex) {
            break;
        }
    }
    if (!language) {
        return 0;
    }
    data.nLanguageID = languageID;
    const XMLElement* tip = language->FirstChildElement("TIP");
    if (!tip) {
        return fault(__LINE__);
    }
    data.strTip = hexText(tip);
    const XMLElement* group = language->FirstChildElement("GROUP");
    if (!group) {
        return fault(__LINE__);
    }
    for (; group; group = group->NextSiblingElement("GROUP")) {
        if (readGroup(group, data.groups.emplace_back()) != 0) {
            data.groups.clear();
            return -1;
        }
    }
    return 0;
}

QString WStringToQString(const std::wstring& text) {
    QString result;
    result.reserve(static_cast<qsizetype>(text.size()));
    for (const wchar_t c : text) {
        const auto code = static_cast<char32_t>(c);
        if (code <= 0xFFFF) {
            result.append(QChar(static_cast<char16_t>(code)));
        } else {
            result.append(QString::fromUcs4(&code, 1));
        }
    }
    return result;
}
