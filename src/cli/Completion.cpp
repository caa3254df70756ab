#include "Completion.h"

#include <cstdio>
#include <map>

namespace {

std::map<const CLI::Option*, std::vector<std::string>>& OfferedValues() {
    static std::map<const CLI::Option*, std::vector<std::string>> values;
    return values;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

bool TakesValue(const CLI::Option* option) {
    return option->nonpositional() && option->get_items_expected_min() > 0;
}

// What one command offers: its sub-commands, its own options (the tool's are offered everywhere, since
// they may stand anywhere), the options that take a value, and the values of its arguments.
struct Node {
    std::string path;
    std::vector<std::string> commands;
    std::vector<std::string> options;
    std::vector<std::string> valued;
    std::vector<std::string> values;
    std::vector<std::pair<std::string, std::vector<std::string>>> optionValues;
};

void Collect(const CLI::App& app, const std::string& path, std::vector<Node>& nodes) {
    Node node{path, {}, {}, {}, {}, {}};
    for (const CLI::Option* option : app.get_options()) {
        const auto offered = OfferedValues().find(option);
        if (!option->nonpositional()) {
            if (offered != OfferedValues().end())
                node.values.insert(node.values.end(), offered->second.begin(), offered->second.end());
            continue;
        }
        // The tool's own options, --help among them, are offered after every command.
        if (app.get_parent() != nullptr && option == app.get_help_ptr())
            continue;
        for (const std::string& name : option->get_lnames()) {
            node.options.push_back("--" + name);
            if (TakesValue(option))
                node.valued.push_back("--" + name);
            if (offered != OfferedValues().end())
                node.optionValues.emplace_back("--" + name, offered->second);
        }
    }
    std::vector<const CLI::App*> children;
    for (const CLI::App* command : app.get_subcommands({})) {
        if (!command->get_group().empty()) {
            node.commands.push_back(command->get_name());
            children.push_back(command);
        }
    }
    nodes.push_back(node);
    for (const CLI::App* command : children)
        Collect(*command, path.empty() ? command->get_name() : path + " " + command->get_name(), nodes);
}

// The shell function both scripts share: "_dialtone_tree PATH KIND" prints the words of one kind.
std::string TreeFunction(const CLI::App& app) {
    std::vector<Node> nodes;
    Collect(app, "", nodes);
    std::string text = "_dialtone_tree() {\n    case \"$1|$2\" in\n";
    const auto entry = [&text](const std::string& key, const std::string& words) {
        if (!words.empty())
            text += "        \"" + key + "\") echo '" + words + "' ;;\n";
    };
    for (const Node& node : nodes) {
        entry(node.path + "|commands", Joined(node.commands));
        entry(node.path + "|options", Joined(node.options));
        entry(node.path + "|valued", Joined(node.valued));
        entry(node.path + "|values", Joined(node.values));
        for (const auto& [name, words] : node.optionValues)
            entry(node.path + "|" + name, Joined(words));
    }
    return text + "    esac\n}\n";
}

// "_dialtone_words PATH KIND": the command's own options (or those that take a value) and the tool's.
// "_dialtone_offer CUR PREV": the words that may stand at the cursor, or "-/" when a folder is wanted.
const char* const kWords = R"SH(_dialtone_words() {
    _dialtone_tree "$1" "$2"
    [[ -n $1 ]] && echo " $(_dialtone_tree "" "$2")"
}
_dialtone_offer() {
    case " $(_dialtone_words "$_dialtone_path" valued) " in
    *" $2 "*)
        if [[ $2 == --dev-dir ]]; then echo -/; else _dialtone_words "$_dialtone_path" "$2"; fi ;;
    *)
        if [[ $1 == -* ]]; then
            _dialtone_words "$_dialtone_path" options
        else
            echo "$(_dialtone_tree "$_dialtone_path" commands) $(_dialtone_tree "$_dialtone_path" values)"
        fi ;;
    esac
}
)SH";

// Sets _dialtone_path (the command the words so far name) and skips option values; the words are "$@".
const char* const kWalk = R"SH(_dialtone_walk() {
    _dialtone_path=""
    local skip=0 w
    for w in "$@"; do
        if ((skip)); then skip=0; continue; fi
        case "$w" in
        --*=*) ;;
        -*) case " $(_dialtone_words "$_dialtone_path" valued) " in *" $w "*) skip=1 ;; esac ;;
        *) case " $(_dialtone_tree "$_dialtone_path" commands) " in
            *" $w "*) _dialtone_path="${_dialtone_path:+$_dialtone_path }$w" ;;
            esac ;;
        esac
    done
}
)SH";

// A list separated by commas ("gsm900,umts2100") is completed one name at a time.
const char* const kBashMain = R"SH(_dialtone() {
    local cur="${COMP_WORDS[COMP_CWORD]}" head="" list
    _dialtone_walk "${COMP_WORDS[@]:1:COMP_CWORD-1}"
    list="$(_dialtone_offer "$cur" "${COMP_WORDS[COMP_CWORD-1]}")"
    if [[ $list == -/ ]]; then COMPREPLY=($(compgen -d -- "$cur")); return; fi
    [[ $cur == *,* && $cur != -* ]] && head="${cur%,*}," && cur="${cur##*,}"
    COMPREPLY=($(compgen -P "$head" -W "$list" -- "$cur"))
}
complete -F _dialtone dialtone
)SH";

const char* const kZshMain = R"SH(_dialtone_main() {
    local cur="${words[CURRENT]}" head="" list
    _dialtone_walk "${(@)words[2,CURRENT-1]}"
    list="$(_dialtone_offer "$cur" "${words[CURRENT-1]}")"
    if [[ $list == -/ ]]; then _files -/; return; fi
    if [[ $cur == *,* && $cur != -* ]]; then head="${cur%,*},"; fi
    compadd -p "$head" -- ${=list}
}
_dialtone_main "$@"
)SH";

} // namespace

void OfferValues(CLI::Option* option, std::vector<std::string> words) {
    OfferedValues()[option] = std::move(words);
}

std::string BashCompletion(const CLI::App& app) {
    return "# bash completion for dialtone, made by \"dialtone --completion bash\"\n" + TreeFunction(app) +
           kWords + kWalk + kBashMain;
}

std::string ZshCompletion(const CLI::App& app) {
    return "#compdef dialtone\n# zsh completion for dialtone, made by \"dialtone --completion zsh\"\n" +
           TreeFunction(app) + kWords + kWalk + kZshMain;
}

void AddCompletionOption(CLI::App& app) {
    const auto print = [&app](const std::string& shell) {
        const std::string script = shell == "bash" ? BashCompletion(app) : ZshCompletion(app);
        std::fwrite(script.data(), 1, script.size(), stdout);
        throw CLI::Success();
    };
    CLI::Option* option = app.add_option_function<std::string>(
        "--completion", print, "Print the completion script for the shell (bash or zsh) and end");
    option->check(CLI::IsMember({"bash", "zsh"}))->type_name("SHELL");
    OfferValues(option, {"bash", "zsh"});
}
