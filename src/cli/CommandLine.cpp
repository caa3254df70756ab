#include "CommandLine.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "CliSupport.h"
#include "ToolText.h"

namespace {

// Optimal string alignment distance: insertions, deletions, substitutions and swaps of neighbours.
std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j)
        d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t cost = a[i - 1] == b[j - 1] ? 0 : 1;
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + cost});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    }
    return d[a.size()][b.size()];
}

const CLI::Option* FindOption(const CLI::App* app, const std::string& name) {
    for (; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            if (option->check_name(name))
                return option;
        }
    }
    return nullptr;
}

bool HasPositionals(const CLI::App& app) {
    const auto options = app.get_options([](const CLI::Option* option) { return !option->nonpositional(); });
    return !options.empty();
}

const CLI::App* VisibleCommand(const CLI::App& family, const std::string& word) {
    for (const CLI::App* command : family.get_subcommands({})) {
        if (!command->get_group().empty() && command->check_name(word))
            return command;
    }
    return nullptr;
}

// Help without the "{}" that marks a flag taking its value after "=" only (--simulate{}).
class HelpFormat : public CLI::Formatter {
public:
    std::string make_option_name(const CLI::Option* option, bool positional) const override {
        std::string name = CLI::Formatter::make_option_name(option, positional);
        for (std::size_t at = name.find("{}"); at != std::string::npos; at = name.find("{}"))
            name.erase(at, 2);
        return name;
    }
};

} // namespace

void PrepareCommandLine(CLI::App& app) {
    app.fallthrough();
    app.formatter(std::make_shared<HelpFormat>());
}

std::vector<std::string> NearWords(const std::string& word, const std::vector<std::string>& candidates) {
    // Short words are near only one edit away; longer ones may take two.
    const std::size_t reach = word.size() <= 3 ? 1 : 2;
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const bool begins = word.size() >= 2 && candidate.compare(0, word.size(), word) == 0;
        const std::size_t distance = begins ? 0 : EditDistance(word, candidate);
        if (distance <= reach && distance < candidate.size())
            near.emplace_back(distance, candidate);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> words;
    for (auto& [distance, candidate] : near)
        words.push_back(std::move(candidate));
    return words;
}

std::vector<std::string> CommandNames(const CLI::App& family) {
    std::vector<std::string> names;
    for (const CLI::App* command : family.get_subcommands({})) {
        if (!command->get_group().empty())
            names.push_back(command->get_name());
    }
    return names;
}

std::optional<UnknownCommand> FindUnknownCommand(const CLI::App& app,
                                                 const std::vector<std::string>& arguments) {
    const CLI::App* family = &app;
    std::string path;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--")
            return std::nullopt;
        if (argument.size() > 1 && argument[0] == '-') {
            if (argument.find('=') != std::string::npos)
                continue;
            const CLI::Option* option = FindOption(family, argument);
            if (option != nullptr && option->get_items_expected_min() > 0)
                ++i;
            continue;
        }
        if (const CLI::App* command = VisibleCommand(*family, argument)) {
            family = command;
            path += (path.empty() ? "" : " ") + argument;
            continue;
        }
        // A family that takes arguments of its own may be reading one here.
        const std::vector<std::string> commands = CommandNames(*family);
        if (commands.empty() || HasPositionals(*family))
            return std::nullopt;
        return UnknownCommand{path, argument, NearWords(argument, commands)};
    }
    // The line ends where a command is still needed.
    if (family->get_require_subcommand_min() > 0)
        return UnknownCommand{path, "", CommandNames(*family)};
    return std::nullopt;
}

int ReportUnknownCommand(const UnknownCommand& unknown) {
    std::string near;
    for (const std::string& word : unknown.near)
        near += (near.empty() ? "" : ", ") + word;
    std::string text;
    if (unknown.word.empty() && unknown.family.empty())
        text = Tool::F("a command is needed: %s.", {near});
    else if (unknown.word.empty())
        text = Tool::F("'%s' needs a command: %s.", {unknown.family, near});
    else if (unknown.family.empty())
        text = Tool::F("unknown command '%s'.", {unknown.word});
    else
        text = Tool::F("unknown %s command '%s'.", {unknown.family, unknown.word});
    if (!near.empty() && !unknown.word.empty())
        text += " " + Tool::F("Did you mean: %s?", {near});
    const std::string help = "dialtone " + (unknown.family.empty() ? "" : unknown.family + " ") + "--help";
    std::fprintf(stderr, "dialtone: %s\n%s\n", text.c_str(),
                 Tool::F("Run '%s' for the list.", {help}).c_str());
    return EXIT_USAGE;
}

CLI::Validator WholeNumber(long min) {
    const std::string range = "must be a whole number, " + std::to_string(min) + " or more";
    return CLI::Validator(
        [min, range](std::string& text) {
            char* end = nullptr;
            errno = 0;
            const long value = std::strtol(text.c_str(), &end, 10);
            const bool read = !text.empty() && end != nullptr && *end == '\0' && errno == 0;
            return read && value >= min && value <= INT_MAX ? std::string() : range + ", not '" + text + "'";
        },
        "");
}

std::string UsageText(const CLI::ParseError& error) {
    std::string text = error.what();
    const std::size_t colon = text.find(": must be ");
    if (colon != std::string::npos)
        text.erase(colon, 1);
    return text;
}

CLI::Validator Seconds(double min, double max) {
    const auto number = [](double value) {
        std::ostringstream text;
        text << value;
        return text.str();
    };
    const std::string range = "must be a number of seconds from " + number(min) + " to " + number(max);
    return CLI::Validator(
        [min, max, range](std::string& text) {
            char* end = nullptr;
            const double value = std::strtod(text.c_str(), &end);
            const bool read = !text.empty() && end != nullptr && *end == '\0';
            return read && value >= min && value <= max ? std::string() : range + ", not '" + text + "'";
        },
        "");
}
