#include "ToolText.h"

#include <QLocale>
#include <QTranslator>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "ResourceLocator.h"

namespace {

bool g_translateEarly = false;

// Before the application object exists, QCoreApplication::translate has no translators: the tool's own
// file is loaded here for the system locale instead.
const QTranslator* earlyTranslator() {
    static const std::unique_ptr<QTranslator> translator = [] {
        auto loaded = std::make_unique<QTranslator>();
        if (!loaded->load(QLocale::system(), QStringLiteral("dialtone"), QStringLiteral("_"),
                          ResourceLocator::translationsDir()))
            loaded.reset();
        return loaded;
    }();
    return translator.get();
}

} // namespace

std::string Tool::T(const char* english) {
    if (QCoreApplication::instance())
        return tr(english).toStdString();
    if (g_translateEarly)
        if (const QTranslator* translator = earlyTranslator()) {
            const QString translated = translator->translate("dialtone", english);
            if (!translated.isEmpty())
                return translated.toStdString();
        }
    return english;
}

std::string Tool::F(const char* english, std::initializer_list<std::string> arguments) {
    std::string text = T(english);
    std::size_t at = 0;
    for (const std::string& argument : arguments) {
        at = text.find("%s", at);
        if (at == std::string::npos)
            break;
        text.replace(at, 2, argument);
        at += argument.size();
    }
    return text;
}

void Tool::translateEarly(bool forPeople) {
    g_translateEarly = forPeople;
}

std::size_t DisplayWidth(const std::string& utf8) {
    // Continuation bytes (10xxxxxx) do not start a code point.
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

void FieldList::print(std::size_t minimumWidth) const {
    std::size_t width = minimumWidth;
    for (const auto& [label, value] : _rows)
        width = std::max(width, DisplayWidth(label));
    for (const auto& [label, value] : _rows)
        std::printf("%s %s\n", PadRight(label, width).c_str(), value.c_str());
}

std::string PadRight(const std::string& text, std::size_t width) {
    const std::size_t shown = DisplayWidth(text);
    return shown < width ? text + std::string(width - shown, ' ') : text;
}

std::string PadLeft(const std::string& text, std::size_t width) {
    const std::size_t shown = DisplayWidth(text);
    return shown < width ? std::string(width - shown, ' ') + text : text;
}
