#pragma once
// What the command line says besides its output goes to stderr: progress bars, drawn only on a
// terminal, and one closing line per command saying what it changed. --quiet silences both.

namespace cli {

/// Whether stderr is a terminal (a bar redrawn in place would garble a file or a pipe).
bool stderrIsTerminal();
/// --quiet: no progress bars and no closing summary; questions, problems and errors still show.
void setQuiet(bool quiet);
bool quiet();
/// Whether progress bars are drawn: on a terminal, unless quiet.
bool progressShown();

} // namespace cli
