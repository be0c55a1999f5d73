#include "cli/Docs.h"

#include <fstream>
#include <iostream>
#include <sstream>
#include <string_view>
#include <vector>

namespace cli {
namespace {

using Options = std::vector<const CLI::Option*>;
using Commands = std::vector<const CLI::App*>;

bool visible(const CLI::Option* option) {
    return !option->get_group().empty();
}

Commands commandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

/// The visible options (or the arguments) of `app`; `withHelp` false leaves out a command's own
/// --help, which the manual page names once for all.
Options optionsOf(const CLI::App& app, bool positional, bool withHelp = false) {
    const CLI::Option* help = app.get_parent() && !withHelp ? app.get_help_ptr() : nullptr;
    return app.get_options([positional, help](const CLI::Option* option) {
        return visible(option) && option != help && option->get_positional() == positional;
    });
}

bool takesValue(const CLI::Option* option) {
    return option->get_items_expected_max() > 0;
}

/// Every spelling of an option: "-y", "--yes".
std::vector<std::string> spellings(const CLI::Option* option) {
    std::vector<std::string> names;
    for (const std::string& name : option->get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option->get_lnames())
        names.push_back("--" + name);
    return names;
}

std::string commandPath(const CLI::App& command) {
    std::string path = command.get_name();
    for (const CLI::App* parent = command.get_parent(); parent && parent->get_parent(); parent = parent->get_parent())
        path = parent->get_name() + " " + path;
    return path;
}

// ---- roff ---------------------------------------------------------------------------------------

/// Backslashes and hyphens as man(7) wants them.
std::string escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else
            out += c;
    }
    return out;
}

/// No line of `text` taken for a request: a leading "." or "'" is guarded.
std::string guarded(const std::string& text) {
    std::string out;
    bool lineStart = true;
    for (char c : text) {
        if (lineStart && (c == '.' || c == '\''))
            out += "\\&";
        out += c;
        lineStart = c == '\n';
    }
    return out;
}

/// Plain text as man(7) reads it.
std::string roff(const std::string& text) {
    return guarded(escaped(text));
}

/// Inline Markdown (**bold**, `code`) as roff, the rest escaped.
std::string inlineRoff(const std::string& text) {
    std::string out;
    std::size_t i = 0;
    while (i < text.size()) {
        const bool bold = text.compare(i, 2, "**") == 0;
        const bool code = text[i] == '`';
        if (bold || code) {
            const std::string mark = bold ? "**" : "`";
            const std::size_t end = text.find(mark, i + mark.size());
            if (end != std::string::npos) {
                out += "\\fB" + escaped(text.substr(i + mark.size(), end - i - mark.size())) + "\\fR";
                i = end + mark.size();
                continue;
            }
        }
        out += escaped(std::string(1, text[i]));
        ++i;
    }
    return guarded(out);
}

void optionEntry(std::ostringstream& out, const CLI::Option* option) {
    out << ".TP\n";
    if (option->get_positional()) {
        out << "\\fI" << roff(option->get_name(true)) << "\\fR";
        if (option->get_items_expected_max() > 1)
            out << "...";
    } else {
        std::string sep;
        for (const std::string& name : spellings(option)) {
            out << sep << "\\fB" << roff(name) << "\\fR";
            sep = ", ";
        }
        if (takesValue(option))
            out << " \\fI" << roff(option->get_type_name()) << "\\fR";
    }
    out << "\n" << roff(option->get_description()) << "\n";
    if (!option->get_default_str().empty())
        out << "(default: " << roff(option->get_default_str()) << ")\n";
}

std::string usage(const CLI::App& command) {
    std::string text = "scourmill-cli " + commandPath(command);
    if (!optionsOf(command, false).empty())
        text += " [OPTIONS]";
    if (!commandsOf(command).empty())
        text += " COMMAND";
    for (const CLI::Option* argument : optionsOf(command, true)) {
        const std::string name = argument->get_name(true) + (argument->get_items_expected_max() > 1 ? "..." : "");
        text += " " + (argument->get_required() ? name : "[" + name + "]");
    }
    return text;
}

void commandSection(std::ostringstream& out, const CLI::App& command) {
    out << ".SS \"" << roff(usage(command)) << "\"\n" << roff(command.get_description()) << "\n";
    for (const CLI::Option* option : optionsOf(command, true))
        optionEntry(out, option);
    for (const CLI::Option* option : optionsOf(command, false))
        optionEntry(out, option);
    if (const std::string footer = command.get_footer(); !footer.empty())
        out << ".PP\n" << roff(footer) << "\n";
    for (const CLI::App* sub : commandsOf(command))
        commandSection(out, *sub);
}

// ---- bash ---------------------------------------------------------------------------------------

/// `text` as one bash word, in single quotes.
std::string bashQuoted(const std::string& text) {
    std::string out = "'";
    for (char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

void completionCases(std::ostringstream& out, const CLI::App& command, const std::string& path,
                     const ArgumentWords& words, std::string& descents, std::string& valueOptions) {
    std::string names;
    for (const CLI::App* sub : commandsOf(command)) {
        names += (names.empty() ? "" : " ") + sub->get_name();
        descents += std::string(descents.empty() ? "" : " | ") + "\"" + path + "|" + sub->get_name() + "\"";
    }
    std::string options;
    for (const CLI::Option* option : optionsOf(command, false, true))
        for (const std::string& name : spellings(option)) {
            options += (options.empty() ? "" : " ") + name;
            if (takesValue(option) && valueOptions.find(" " + name + " ") == std::string::npos)
                valueOptions += name + " ";
        }
    out << "    \"" << path << "\") commands=\"" << names << "\" options=\"" << options << "\"";
    if (const auto fixed = words.find(path); fixed != words.end()) {
        out << " words=(";
        for (const std::string& word : fixed->second)
            out << (&word == &fixed->second.front() ? "" : " ") << bashQuoted(word);
        out << ")";
    }
    out << " ;;\n";
    for (const CLI::App* sub : commandsOf(command))
        completionCases(out, *sub, path.empty() ? sub->get_name() : path + " " + sub->get_name(), words, descents,
                        valueOptions);
}

} // namespace

std::string markdownSection(const std::string& markdown, const std::string& title) {
    std::istringstream in(markdown);
    std::string line;
    std::string section;
    std::size_t level = 0;
    while (std::getline(in, line)) {
        const std::size_t hashes = line.find_first_not_of('#');
        const bool heading = hashes != std::string::npos && hashes > 0 && line[hashes] == ' ';
        if (level > 0) {
            if (heading && hashes <= level)
                break;
            section += line + "\n";
        } else if (heading && line.substr(hashes + 1) == title) {
            level = hashes;
        }
    }
    return section;
}

std::string markdownToRoff(const std::string& markdown) {
    std::istringstream in(markdown);
    std::string line;
    std::string out;
    std::string paragraph;
    bool item = false;
    const auto flush = [&] {
        if (!paragraph.empty())
            out += (item ? ".IP \\(bu 2\n" : ".PP\n") + inlineRoff(paragraph) + "\n";
        paragraph.clear();
    };
    while (std::getline(in, line)) {
        const std::size_t text = line.find_first_not_of(' ');
        if (text == std::string::npos) {
            flush();
            item = false;
        } else if (line[text] == '#') {
            flush();
            item = false;
            out += ".SS \"" + roff(line.substr(line.find_first_not_of("# "))) + "\"\n";
        } else if (line.compare(text, 2, "- ") == 0) {
            flush();
            item = true;
            paragraph = line.substr(text + 2);
        } else {
            paragraph += (paragraph.empty() ? "" : " ") + line.substr(text);
        }
    }
    flush();
    return out;
}

std::string manPage(const CLI::App& app, const std::string& version, const std::string& limits) {
    std::ostringstream out;
    out << ".TH SCOURMILL\\-CLI 1 \"\" \"scourmill\\-cli " << roff(version) << "\" \"User Commands\"\n"
        << ".SH NAME\nscourmill\\-cli \\- erase browser traces, overwrite files, free space and memory\n"
        << ".SH SYNOPSIS\n.B scourmill\\-cli\n[\\fIOPTIONS\\fR] \\fICOMMAND\\fR [\\fICOMMAND OPTIONS\\fR] "
           "[\\fIARGUMENTS\\fR]\n"
        << ".SH DESCRIPTION\n" << roff(app.get_description()) << "\n"
        << ".PP\nEvery command takes \\fB\\-\\-help\\fR. Commands that destroy data ask on the terminal first, "
           "unless given \\fB\\-\\-yes\\fR; with no terminal to ask on, the answer is no. Long commands draw a "
           "progress bar on standard error when it is a terminal, and every command that changes something "
           "ends with one line on standard error saying what it changed.\n"
        << ".SH OPTIONS\n";
    for (const CLI::Option* option : optionsOf(app, false))
        optionEntry(out, option);
    out << ".SH COMMANDS\n";
    for (const CLI::App* command : commandsOf(app))
        commandSection(out, *command);
    out << ".SH \"EXIT STATUS\"\n"
        << ".TP\n.B 0\nDone.\n"
        << ".TP\n.B 1\nSome items could not be processed (each is named on standard error), a question was "
           "answered no, or the command was interrupted.\n"
        << ".TP\n.B 2\nA usage error or invalid input.\n";
    if (!limits.empty())
        out << ".SH \"WHAT OVERWRITING CANNOT REACH\"\n" << markdownToRoff(limits);
    out << ".SH \"SEE ALSO\"\n.BR shred (1),\n.BR blkdiscard (8),\n.BR tune2fs (8)\n";
    return out.str();
}

std::string bashCompletion(const CLI::App& app, const ArgumentWords& words) {
    std::ostringstream cases;
    std::string descents;
    std::string valueOptions = " ";
    completionCases(cases, app, "", words, descents, valueOptions);
    std::ostringstream out;
    out << "# bash completion for scourmill-cli; made from its own command definitions.\n"
        << "_scourmill_cli() {\n"
        << "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} path= i word\n"
        << "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
        << "        word=${COMP_WORDS[i]}\n"
        << "        case \"$path|$word\" in\n"
        << "        " << descents << ") path=${path:+$path }$word ;;\n"
        << "        esac\n"
        << "    done\n"
        << "    local commands= options= words=()\n"
        << "    case \"$path\" in\n"
        << cases.str()
        << "    esac\n"
        << "    case \"" << valueOptions << "\" in\n"
        << "    *\" $prev \"*) COMPREPLY=($(compgen -f -- \"$cur\")); return ;;\n"
        << "    esac\n"
        << "    if [[ $cur == -* ]]; then\n"
        << "        COMPREPLY=($(compgen -W \"$options\" -- \"$cur\"))\n"
        << "    elif [[ -n $commands ]]; then\n"
        << "        COMPREPLY=($(compgen -W \"$commands\" -- \"$cur\"))\n"
        // Fixed words hold blanks and quotes: matched against what was typed with its opening quote
        // and backslashes taken off, and handed back as they are for readline to quote (-o filenames).
        << "    elif ((${#words[@]})); then\n"
        << "        local typed=${cur#[\\\"\\']} fixed\n"
        << "        typed=${typed//\\\\/}\n"
        << "        COMPREPLY=()\n"
        << "        for fixed in \"${words[@]}\"; do\n"
        << "            [[ $fixed == \"$typed\"* ]] && COMPREPLY+=(\"$fixed\")\n"
        << "        done\n"
        << "    else\n"
        << "        COMPREPLY=($(compgen -f -- \"$cur\"))\n"
        << "    fi\n"
        << "}\n"
        << "complete -o filenames -F _scourmill_cli scourmill-cli\n";
    return out.str();
}

int generateDocs(const CLI::App& app, const std::string& version, const ArgumentWords& words, int argc,
                 char** argv) {
    const std::string_view request = argc > 1 ? argv[1] : "";
    std::string text;
    std::string out;
    if (request == "--generate-manpage" && argc == 4) {
        std::ifstream readme(argv[2]);
        std::stringstream markdown;
        markdown << readme.rdbuf();
        const std::string limits = markdownSection(markdown.str(), "What overwriting cannot reach");
        if (!readme || limits.empty()) {
            std::cerr << "scourmill-cli: " << argv[2] << " has no section \"What overwriting cannot reach\"\n";
            return 2;
        }
        text = manPage(app, version, limits);
        out = argv[3];
    } else if (request == "--generate-bash-completion" && argc == 3) {
        text = bashCompletion(app, words);
        out = argv[2];
    } else {
        return -1;
    }
    std::ofstream file(out, std::ios::binary | std::ios::trunc);
    file << text;
    return file.good() ? 0 : 2;
}

} // namespace cli
