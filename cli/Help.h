#pragma once
// How scourmill-cli talks about its own use: help wrapped to the terminal, and a word it does not
// know named back to the user with the command that was probably meant.

#include <CLI/CLI.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace cli {

/// `text` broken at spaces into lines of at most `width` columns (a longer word stands alone); its
/// own line breaks are kept, and every line but the first starts with `indent` spaces.
std::string wrapped(const std::string& text, std::size_t width, std::size_t indent = 0);

/// CLI11's help layout, wrapped to `width` columns, with one blank line between its parts.
class HelpFormatter final : public CLI::Formatter {
public:
    explicit HelpFormatter(std::size_t width);

    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
    std::string make_description(const CLI::App* app) const override;
    std::string make_usage(const CLI::App* app, std::string name) const override;
    std::string make_footer(const CLI::App* app) const override;
    std::string make_option(const CLI::Option* option, bool positional) const override;
    std::string make_subcommand(const CLI::App* command) const override;

private:
    std::string entry(const std::string& name, const std::string& description) const;

    std::size_t m_width;
};

/// The known word closest to `word` in spelling (a typo or two away, or `word` cut short), if any.
std::optional<std::string> closest(const std::string& word, const std::vector<std::string>& known);

/// What `args` (argv without the program) uses that `app` does not know, named with the closest
/// known word: "unknown command 'shredd' (did you mean 'shred'?)" for a word where a command name
/// belongs, "unknown option '--yse' for 'shred' (did you mean '--yes'?)" for an option that neither
/// the command nor those above it take. Empty when everything is known.
std::string unknownUse(const CLI::App& app, const std::vector<std::string>& args);

} // namespace cli
