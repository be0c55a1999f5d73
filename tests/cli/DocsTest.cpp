// The manual page and the bash completion as they are installed. Every command and option the
// program's own --help lists must appear in both, however many commands are added later; the page
// must read without groff warnings and carry the README's limits of overwriting; the completion
// must complete in a real bash.

#include "tests/support/Process.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

using testsupport::readFile;
using testsupport::runCli;
using testsupport::runCommand;
using testsupport::shellQuoted;

namespace {

/// What `--help` of one command lists: its subcommands and its option spellings.
struct Help {
    std::vector<std::string> commands;
    std::vector<std::string> options;
};

/// Reads CLI11's help text: the first word of each entry line under "Subcommands:", and the
/// comma-separated spellings at the start of each entry line under "Options:". Into a pipe the
/// help fits 80 columns.
Help helpOf(const std::string& path) {
    const testsupport::CliResult r = runCli(path + " --help");
    EXPECT_EQ(r.code, 0) << path;
    Help help;
    std::istringstream lines(r.out);
    std::string line;
    std::string section;
    while (std::getline(lines, line)) {
        EXPECT_LE(line.size(), 80u) << path << ": " << line;
        if (!line.empty() && line.back() == ':' && line.front() != ' ') {
            section = line;
            continue;
        }
        if (line.rfind("  ", 0) != 0 || line.size() < 3 || line[2] == ' ')
            continue; // not an entry, or a continued description
        const std::string first = line.substr(2, line.find(' ', 2) - 2);
        if (section == "Subcommands:") {
            help.commands.push_back(first);
        } else if (section == "Options:") {
            std::istringstream names(first);
            std::string name;
            while (std::getline(names, name, ','))
                help.options.push_back(name);
        }
    }
    return help;
}

/// Every command path below `path` ("" for the top), `path` included, with its options.
void walk(const std::string& path, std::vector<std::pair<std::string, Help>>& out) {
    const Help help = helpOf(path);
    out.emplace_back(path, help);
    for (const std::string& command : help.commands)
        walk(path.empty() ? command : path + " " + command, out);
}

/// The words of a shell script, split at blanks, quotes and the shell's punctuation.
std::set<std::string> words(const std::string& script) {
    std::set<std::string> out;
    std::string word;
    for (char c : script + " ") {
        if (std::string(" \t\n\"'=|();").find(c) != std::string::npos) {
            if (!word.empty())
                out.insert(word);
            word.clear();
        } else {
            word += c;
        }
    }
    return out;
}

std::string roffEscaped(std::string text) {
    std::string out;
    for (char c : text)
        out += c == '-' ? std::string("\\-") : std::string(1, c);
    return out;
}

/// The words bash completes for `line` (the cursor at its end; no single quotes in it), joined by
/// `separator`.
std::string completions(const std::string& line, const std::string& separator = " ") {
    const std::string script = "source " + shellQuoted(SCOURMILL_COMPLETION) + "; COMP_WORDS=(" + line +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _scourmill_cli; "
                               "printf \"%s\\n\" \"${COMPREPLY[@]}\"";
    const testsupport::CliResult r = runCommand("bash -c " + shellQuoted(script));
    EXPECT_EQ(r.code, 0) << r.err;
    std::string joined;
    std::istringstream words(r.out);
    for (std::string word; std::getline(words, word);)
        joined += (joined.empty() ? "" : separator) + word;
    return joined;
}

} // namespace

TEST(ManPage, NamesEveryCommandAndOptionTheHelpLists) {
    std::vector<std::pair<std::string, Help>> all;
    walk("", all);
    ASSERT_GT(all.size(), 10u);
    const std::string page = readFile(SCOURMILL_MANPAGE);
    const std::set<std::string> completion = words(readFile(SCOURMILL_COMPLETION));
    for (const auto& [path, help] : all) {
        if (!path.empty()) {
            EXPECT_NE(page.find(".SS \"scourmill\\-cli " + roffEscaped(path)), std::string::npos) << path;
        }
        for (const std::string& option : help.options) {
            EXPECT_NE(page.find("\\fB" + roffEscaped(option) + "\\fR"), std::string::npos) << path << " " << option;
            EXPECT_TRUE(completion.count(option)) << path << " " << option;
        }
        for (const std::string& command : help.commands)
            EXPECT_TRUE(completion.count(command)) << command;
    }
}

TEST(ManPage, ReadsCleanlyAndTellsTheLimitsOfOverwriting) {
    const testsupport::CliResult r = runCommand("groff -man -ww -z " + shellQuoted(SCOURMILL_MANPAGE));
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "");
    const std::string page = readFile(SCOURMILL_MANPAGE);
    EXPECT_NE(page.find(".SH \"WHAT OVERWRITING CANNOT REACH\""), std::string::npos);
    EXPECT_NE(page.find(".IP \\(bu 2\n\\fBCopy\\-on\\-write filesystems and snapshots\\fR"), std::string::npos);
    EXPECT_NE(page.find("\\fBblkdiscard \\-\\-secure\\fR"), std::string::npos);
}

TEST(BashCompletion, CompletesCommandsOptionsAndFilesAtEveryLevel) {
    EXPECT_EQ(completions("scourmill-cli sh"), "shred shred-dir show-cache");
    EXPECT_EQ(completions("scourmill-cli history cl"), "clear");
    EXPECT_EQ(completions("scourmill-cli --quiet shred --y"), "--yes");
    // The chooser's items, blanks and quotes in them, matched as typed (opening quote, backslashes)
    // and handed back whole; readline quotes them (-o filenames).
    EXPECT_EQ(completions("scourmill-cli clean-item \"\"", "|"),
              "Recent Documents|IE Typed URL's|MS Media Player|Find Files or Folders|Find Computers|MS Paint|"
              "Run Menu|Word Pad|WinZip File|WinZip Extract|Recycle Bin|Do Em All");
    EXPECT_EQ(completions("scourmill-cli clean-item -y \\\"IE\\\\\\ T", "|"), "IE Typed URL's"); // "IE\ T
    testsupport::ScratchDir dir;
    dir.write("report.dat", "x");
    // Arguments and option values are files.
    EXPECT_EQ(completions("scourmill-cli indexdat find --pattern " + shellQuoted(dir.path() / "rep")),
              (dir.path() / "report.dat").string());
}
