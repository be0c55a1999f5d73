#pragma once
// The manual page and the bash completion of scourmill-cli, made from the command line's own
// definitions at build time, so that every command and option a helper adds appears in both
// without a second list to keep. The parts no definition carries (exit status, what overwriting
// cannot reach) come from the README, whose text stays the one place they are written.

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

namespace cli {

/// The section of `markdown` under the heading whose text is `title` (any level), up to the next
/// heading of that level or higher; "" when there is none.
std::string markdownSection(const std::string& markdown, const std::string& title);

/// Markdown paragraphs and "- " lists (with **bold** and `code`) as man(7) text.
std::string markdownToRoff(const std::string& markdown);

/// The scourmill-cli(1) page for `app` (every visible command, nested ones included, with its
/// options, arguments and notes), its exit status, and `limits` (Markdown) as the section on what
/// overwriting cannot reach.
std::string manPage(const CLI::App& app, const std::string& version, const std::string& limits);

/// The fixed words a command's argument takes, by the command's path ("clean-item").
using ArgumentWords = std::map<std::string, std::vector<std::string>>;

/// A bash completion script for `app`: commands at every level, their options, the words of
/// `words` for the arguments of the commands it names, file names for other arguments.
std::string bashCompletion(const CLI::App& app, const ArgumentWords& words = {});

/// The build's requests, answered before the command line is parsed:
///   --generate-manpage README OUT    writes the manual page (its limits section from README)
///   --generate-bash-completion OUT   writes the completion script
/// Returns the exit code when `argv` is one of them (0 written, 2 not), else -1.
int generateDocs(const CLI::App& app, const std::string& version, const ArgumentWords& words, int argc,
                 char** argv);

} // namespace cli
