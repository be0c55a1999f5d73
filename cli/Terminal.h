#pragma once
// The few facts about the terminal that the commands need, the same on every system: whether a
// standard stream is a terminal and whether that terminal understands the escape sequences that
// move the cursor and clear a line. What the command line says besides its output goes to stderr:
// progress bars, drawn only on a terminal, and one closing line per command saying what it
// changed. --quiet silences both.

#include <cstddef>

namespace cli {

enum class Stream { In, Out, Err };

/// Whether `stream` is connected to a terminal (a console window on Windows).
bool isTerminal(Stream stream);
/// Whether cursor-moving escape sequences work on the terminal behind `stream`; on Windows this
/// switches the console into processing them, where the console can.
bool escapesWork(Stream stream);
/// The width in columns of the terminal behind `stream`, 0 when it is no terminal.
std::size_t terminalColumns(Stream stream);
/// Whether stderr is a terminal (a bar redrawn in place would garble a file or a pipe).
bool stderrIsTerminal();
/// --quiet: no progress bars and no closing summary; questions, problems and errors still show.
void setQuiet(bool quiet);
bool quiet();
/// Whether progress bars are drawn: on a terminal, unless quiet.
bool progressShown();

} // namespace cli
