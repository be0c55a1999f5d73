#include "cli/Help.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace cli {
namespace {

/// Leading and trailing line breaks taken off, so that the parts of the help join with one blank line.
std::string trimmedLines(const std::string& text) {
    const std::size_t first = text.find_first_not_of('\n');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of('\n') - first + 1);
}

std::string joined(const std::vector<std::string>& parts) {
    std::string out;
    for (const std::string& part : parts) {
        const std::string text = trimmedLines(part);
        if (!text.empty())
            out += (out.empty() ? "" : "\n\n") + text;
    }
    return out + "\n";
}

/// Letters to add, drop, change or swap with the next to make `a` into `b` ("--yse" is one from "--yes").
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j)
        d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

/// The option `name` ("-y", "--size") of `command` or of a command above it, whose options
/// apply below it too; none when unknown.
const CLI::Option* optionOf(const CLI::App& command, const std::string& name) {
    for (const CLI::App* level = &command; level; level = level->get_parent())
        if (const CLI::Option* option = level->get_option_no_throw(name); option && !option->get_positional())
            return option;
    return nullptr;
}

/// Every spelling of the visible options of `command` and the commands above it.
std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* level = &command; level; level = level->get_parent())
        for (const CLI::Option* option : level->get_options())
            if (!option->get_group().empty() && !option->get_positional()) {
                for (const std::string& name : option->get_lnames())
                    names.push_back("--" + name);
                for (const std::string& name : option->get_snames())
                    names.push_back("-" + name);
            }
    return names;
}

std::string commandPath(const CLI::App& command) {
    std::string path;
    for (const CLI::App* level = &command; level->get_parent(); level = level->get_parent())
        path = level->get_name() + (path.empty() ? "" : " ") + path;
    return path;
}

} // namespace

std::string wrapped(const std::string& text, std::size_t width, std::size_t indent) {
    std::string out;
    std::istringstream lines(text);
    std::string line;
    bool firstLine = true;
    while (std::getline(lines, line)) {
        if (!firstLine)
            out += "\n" + std::string(indent, ' ');
        firstLine = false;
        // A line that starts with spaces (an item of a list) keeps them on its continued lines.
        const std::size_t lead = std::min(line.find_first_not_of(' '), line.size());
        const std::size_t room = width > indent + lead + 1 ? width - indent - lead : 1;
        std::istringstream words(line.substr(lead));
        std::string word;
        std::size_t used = 0;
        out += std::string(lead, ' ');
        while (words >> word) {
            if (used > 0 && used + 1 + word.size() > room) {
                out += "\n" + std::string(indent + lead, ' ');
                used = 0;
            }
            out += (used > 0 ? " " : "") + word;
            used += (used > 0 ? 1 : 0) + word.size();
        }
    }
    return out;
}

HelpFormatter::HelpFormatter(std::size_t width) : m_width(width) {
    column_width(std::min<std::size_t>(30, width / 3));
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
    if (mode == CLI::AppFormatMode::Sub)
        return CLI::Formatter::make_help(app, name, mode);
    std::vector<std::string> parts{make_description(app), make_usage(app, name), make_positionals(app)};
    for (const std::string& group : app->get_groups()) {
        const auto options = app->get_options([&group](const CLI::Option* option) {
            return option->get_group() == group && option->nonpositional();
        });
        if (!group.empty() && !options.empty())
            parts.push_back(make_group(group, false, options));
    }
    parts.push_back(make_subcommands(app, mode));
    parts.push_back(make_footer(app));
    return joined(parts);
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
    return wrapped(app->get_description(), m_width);
}

std::string HelpFormatter::make_usage(const CLI::App* app, std::string name) const {
    return wrapped(trimmedLines(CLI::Formatter::make_usage(app, name)), m_width, 2) + "\n";
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
    return wrapped(app->get_footer(), m_width);
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool positional) const {
    // An argument's name already names its value.
    const std::string value = positional ? (option->get_items_expected_max() > 1 ? "..." : "") : make_option_opts(option);
    return entry(make_option_name(option, positional) + value, make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
    return entry(command->get_display_name(true), command->get_description());
}

std::string HelpFormatter::entry(const std::string& name, const std::string& description) const {
    const std::size_t column = get_column_width();
    std::string out = "  " + name;
    if (description.empty())
        return out + "\n";
    if (out.size() + 1 > column)
        out += "\n" + std::string(column, ' ');
    else
        out += std::string(column - out.size(), ' ');
    return out + wrapped(description, m_width, column) + "\n";
}

std::optional<std::string> closest(const std::string& word, const std::vector<std::string>& known) {
    // A typo a third of the word long at most (two at most): "-z" is not a typo of "-h".
    std::optional<std::string> best;
    std::size_t bestDistance = std::min<std::size_t>(2, word.size() / 3);
    for (const std::string& candidate : known) {
        const std::size_t distance = editDistance(word, candidate);
        if (distance > 0 && distance <= bestDistance && (!best || distance < bestDistance)) {
            best = candidate;
            bestDistance = distance;
        }
    }
    if (best)
        return best;
    // A word cut short names the one command it starts.
    std::vector<std::string> started;
    std::copy_if(known.begin(), known.end(), std::back_inserter(started),
                 [&word](const std::string& candidate) { return !word.empty() && candidate.starts_with(word); });
    if (started.size() == 1)
        return started.front();
    return std::nullopt;
}

std::string unknownUse(const CLI::App& app, const std::vector<std::string>& args) {
    const CLI::App* level = &app;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word == "--")
            return {};
        if (word.starts_with("-") && word.size() > 1) {
            // "-qy" is "-q -y"; "--size=5" names --size.
            std::vector<std::string> names;
            if (word.starts_with("--"))
                names.push_back(word.substr(0, word.find('=')));
            else
                for (char letter : word.substr(1))
                    names.push_back(std::string("-") + letter);
            for (const std::string& name : names) {
                const CLI::Option* option = optionOf(*level, name);
                if (!option) {
                    std::string message = "unknown option '" + name + "'";
                    if (level != &app)
                        message += " for '" + commandPath(*level) + "'";
                    if (const auto meant = closest(name, optionNames(*level)))
                        message += " (did you mean '" + *meant + "'?)";
                    return message;
                }
                // An option's value is no command name: step over it.
                if (names.size() == 1 && word.find('=') == std::string::npos && option->get_items_expected_max() > 0)
                    ++i;
                if (option->get_items_expected_max() > 0)
                    break; // the rest of "-s5" is the value
            }
            continue;
        }
        const auto commands = level->get_subcommands({});
        if (commands.empty())
            continue; // an argument
        const auto named = std::find_if(commands.begin(), commands.end(),
                                        [&word](const CLI::App* command) { return command->check_name(word); });
        if (named != commands.end()) {
            level = *named;
            continue;
        }
        std::vector<std::string> shown;
        for (const CLI::App* command : commands)
            if (!command->get_group().empty())
                shown.push_back(command->get_name());
        std::string message = "unknown command '" + word + "'";
        if (level != &app)
            message += " for '" + commandPath(*level) + "'";
        if (const auto meant = closest(word, shown))
            message += " (did you mean '" + *meant + "'?)";
        return message;
    }
    return {};
}

} // namespace cli
