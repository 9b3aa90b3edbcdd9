#include "tools/pages/completions.h"

#include <string_view>

namespace aceconv::pages {
namespace {

/// Those of the words that are not empty.
std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        text += (text.empty() || word.empty() ? "" : " ") + word;
    }
    return text;
}

/// With a backslash in front of `special` characters.
std::string escaped(std::string_view text, std::string_view special) {
    std::string out;
    for (const char c : text) {
        out += special.find(c) == std::string_view::npos ? "" : "\\";
        out += c;
    }
    return out;
}

/// As one word of bash and zsh.
std::string quoted(std::string_view text) {
    std::string out = "'";
    for (const char c : text) {
        out += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return out + "'";
}

std::vector<std::string> names_of(const std::vector<VerbEntry> &verbs) {
    std::vector<std::string> names;
    for (const VerbEntry &verb : verbs) {
        names.push_back(verb.name);
    }
    return names;
}

// bash: a table of what may follow a word of a verb, and what looks it up.

/// Names, FILE, DIR, or what no completion is known of.
std::string follows(const OptionEntry &option) {
    return option.choices.empty() ? option.value : joined(option.choices);
}

std::string bash_rows(const VerbEntry &verb, const std::string &name) {
    std::vector<std::string> options;
    std::string rows, arguments;
    for (const OptionEntry &option : verb.options) {
        if (option.is_argument()) {
            arguments = follows(option);
            continue;
        }
        for (const std::string &word : {option.letter, option.name}) {
            if (!word.empty()) {
                options.push_back(word);
                if (!option.value.empty() && !option.value_left_out) {
                    rows +=
                        "    [" + quoted(name + " " + word) + "]=" + quoted(follows(option)) + "\n";
                }
            }
        }
    }
    return "    [" + quoted(name + " -") + "]=" + quoted(joined(options)) + "\n    [" +
           quoted(name + " ") + "]=" + quoted(arguments) + "\n" + rows;
}

constexpr const char *bash_frame = R"(
_aceconv() {
    local cur prev words cword split
    _init_completion -s || return
    local verb= i
    for ((i = 1; i < cword; ++i)); do
        if [[ ${words[i]} != -* && " ${_aceconv_follows[' ']} " == *" ${words[i]} "* ]]; then
            verb=${words[i]}
            break
        fi
    done
    local key="$verb "
    if [[ -v _aceconv_follows["$verb $prev"] ]]; then
        key="$verb $prev"
    elif [[ $split == true ]]; then
        return
    elif [[ $cur == -* ]]; then
        key="$verb -"
    fi
    case ${_aceconv_follows[$key]} in
    FILE) _filedir ;;
    DIR) _filedir -d ;;
    [A-Z]*) ;;
    *) mapfile -t COMPREPLY < <(compgen -W "${_aceconv_follows[$key]}" -- "$cur") ;;
    esac
}
complete -F _aceconv aceconv
)";

// zsh: the specifications that _arguments reads.

std::string zsh_action(const OptionEntry &option) {
    if (!option.choices.empty()) {
        return "(" + joined(option.choices) + ")";
    }
    return option.value == "FILE" ? "_files" : option.value == "DIR" ? "_files -/" : " ";
}

std::string zsh_specification(const OptionEntry &option) {
    const std::string value = option.name + ":" + zsh_action(option);
    if (option.is_argument()) {
        return quoted((option.several ? "*:" : option.required ? ":" : "::") + value);
    }
    const std::string others = joined({option.name, option.letter, option.excludes});
    std::string text = option.several ? "'*'" : quoted("(" + others + ")");
    const std::string sign = option.value.empty() ? "" : option.value_left_out ? "=-" : "=";
    text += option.letter.empty()
                ? option.name + sign
                : "{" + option.letter + (sign.empty() ? "" : "+") + "," + option.name + sign + "}";
    const std::string argument = option.value.empty() ? ""
                                                      : (option.value_left_out ? "::" : ":") +
                                                            option.value + ":" + zsh_action(option);
    return text + quoted("[" + escaped(option.help, "[]:\\") + "]" + argument);
}

std::string zsh_arguments(const VerbEntry &verb, const char *indent) {
    std::string text;
    for (const OptionEntry &option : verb.options) {
        text += std::string(" \\\n") + indent + zsh_specification(option);
    }
    return text + "\n";
}

// fish: a call for each option of each verb.

std::string fish_quoted(std::string_view text) {
    return "'" + escaped(text, "\\'") + "'";
}

std::string fish_option(const OptionEntry &option, const std::string &condition) {
    std::string text = "complete -c aceconv -n " + fish_quoted(condition);
    if (option.is_argument()) {
        return option.value == "FILE" ? "" : text + " -xa " + quoted(joined(option.choices)) + "\n";
    }
    text += option.letter.empty() ? "" : " -s " + option.letter.substr(1);
    text += " -l " + option.name.substr(2);
    if (!option.choices.empty()) {
        text += " -xa " + quoted(joined(option.choices));
    } else if (option.value == "DIR") {
        text += " -xa '(__fish_complete_directories)'";
    } else if (option.value == "FILE") {
        text += " -rF";
    } else if (!option.value.empty() && !option.value_left_out) {
        text += " -x";
    }
    return text + " -d " + fish_quoted(option.help) + "\n";
}

} // namespace

std::string bash_completion(const CommandEntry &command) {
    VerbEntry itself = command.itself;
    itself.options.push_back({.letter = "",
                              .name = "VERB",
                              .value = "VERB",
                              .choices = names_of(command.verbs),
                              .help = ""});
    std::string text = "# Completion of aceconv in bash.\n"
                       "# What may follow a word of a verb: names, a FILE, a DIR.\n"
                       "declare -gA _aceconv_follows=(\n" +
                       bash_rows(itself, "");
    for (const VerbEntry &verb : command.verbs) {
        text += bash_rows(verb, verb.name);
    }
    return text + ")\n" + bash_frame;
}

std::string zsh_completion(const CommandEntry &command) {
    std::string text = "#compdef aceconv\n# Completion of aceconv in zsh.\n\n"
                       "local context state state_descr line\ntypeset -A opt_args\nlocal -a verbs\n"
                       "verbs=(\n";
    for (const VerbEntry &verb : command.verbs) {
        text += "    " + quoted(verb.name + ":" + verb.help) + "\n";
    }
    text += ")\n\n_arguments -C" + zsh_arguments(command.itself, "    ");
    text.pop_back();
    text += " \\\n    ': :->verb' '*:: :->rest' && return\n\n"
            "case $state in\nverb) _describe verb verbs ;;\nrest)\n    case $words[1] in\n";
    for (const VerbEntry &verb : command.verbs) {
        text += "    " + verb.name + ")\n        _arguments" + zsh_arguments(verb, "            ") +
                "        ;;\n";
    }
    return text + "    esac\n    ;;\nesac\n";
}

std::string fish_completion(const CommandEntry &command) {
    const std::string verbs = joined(names_of(command.verbs));
    const std::string no_verb = "not __fish_seen_subcommand_from " + verbs;
    std::string text = "# Completion of aceconv in fish.\ncomplete -c aceconv -n " +
                       fish_quoted(no_verb) + " -f\n";
    for (const OptionEntry &option : command.itself.options) {
        text += fish_option(option, no_verb);
    }
    for (const VerbEntry &verb : command.verbs) {
        text += "complete -c aceconv -n " + fish_quoted(no_verb) + " -a " + verb.name + " -d " +
                fish_quoted(verb.help) + "\n";
        for (const OptionEntry &option : verb.options) {
            text += fish_option(option, "__fish_seen_subcommand_from " + verb.name);
        }
    }
    return text;
}

} // namespace aceconv::pages
