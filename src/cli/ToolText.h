#pragma once

#include <QCoreApplication>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

// The tool's words for people, in the user's language: Tool::T("Operator:"). The update-translations script
// collects them under the context "dialtone". Documents for scripts (--json, --output key=value), command
// and option names, --help and the --debug traffic never go through here.
class Tool {
    Q_DECLARE_TR_FUNCTIONS(dialtone)

public:
    // The translation of english; english itself while no translation is loaded.
    static std::string T(const char* english);
    // The translation of english with each "%s" replaced by the next argument, in order (translations keep
    // the English order); the arguments themselves are never read for "%s".
    static std::string F(const char* english, std::initializer_list<std::string> arguments);
    // Translates also before the application object exists (errors while the command line is read); set
    // once the command line shows whether the output is for people.
    static void translateEarly(bool forPeople);
};

// Columns a terminal gives text: one per UTF-8 code point.
std::size_t DisplayWidth(const std::string& utf8);

// "Label:   value" lines whose values start in one column, wide enough for the longest (translated) label
// and at least minimumWidth.
class FieldList {
public:
    void add(const std::string& label, const std::string& value) { _rows.emplace_back(label, value); }
    void print(std::size_t minimumWidth = 16) const;

private:
    std::vector<std::pair<std::string, std::string>> _rows;
};

// text and spaces up to width columns (left-aligned), or spaces and text (right-aligned); longer text stays
// as it is.
std::string PadRight(const std::string& text, std::size_t width);
std::string PadLeft(const std::string& text, std::size_t width);
