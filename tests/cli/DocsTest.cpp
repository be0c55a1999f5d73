// The manual page and the bash completion as they are installed: the page must read without groff
// warnings, reach the nested commands and carry the README's limits of overwriting; the completion
// must complete in a real bash.

#include "tests/support/Process.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <sstream>

using testsupport::readFile;
using testsupport::runCommand;
using testsupport::shellQuoted;

namespace {

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

TEST(ManPage, ReadsCleanlyNamesNestedCommandsAndTellsTheLimitsOfOverwriting) {
    const testsupport::CliResult r = runCommand("groff -man -ww -z " + shellQuoted(SCOURMILL_MANPAGE));
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "");
    const std::string page = readFile(SCOURMILL_MANPAGE);
    EXPECT_NE(page.find(".SS \"scourmill\\-cli indexdat find"), std::string::npos);
    EXPECT_NE(page.find("\\fB\\-\\-pattern\\fR"), std::string::npos);
    EXPECT_NE(page.find(".SH \"WHAT OVERWRITING CANNOT REACH\""), std::string::npos);
}

TEST(BashCompletion, CompletesCommandsOptionsAndFilesAtEveryLevel) {
    EXPECT_EQ(completions("scourmill-cli sh"), "shred shred-dir show-cache");
    EXPECT_EQ(completions("scourmill-cli --quiet shred --y"), "--yes");
    // The chooser's items, blanks and quotes in them, matched as typed (opening quote, backslashes)
    // and handed back whole; readline quotes them (-o filenames).
    EXPECT_EQ(completions("scourmill-cli clean-item -y \\\"IE\\\\\\ T", "|"), "IE Typed URL's"); // "IE\ T
    testsupport::ScratchDir dir;
    dir.write("report.dat", "x");
    // Arguments and option values are files.
    EXPECT_EQ(completions("scourmill-cli indexdat find --pattern " + shellQuoted(dir.path() / "rep")),
              (dir.path() / "report.dat").string());
}
