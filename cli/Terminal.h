#pragma once
// The few facts about the terminal that the commands need, the same on every system: whether a
// standard stream is a terminal and whether that terminal understands the escape sequences that
// move the cursor and clear a line. What the command line says besides its output goes to stderr:
// progress bars, drawn only on a terminal, and one closing line per command saying what it
// changed. --quiet silences both.

#include <cstddef>
#include <string>
#include <vector>

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
/// The program's arguments as UTF-8, whatever the system's code page. On Windows they are read
/// from the wide command line: the C runtime's `argv` holds them in the ANSI code page, where a
/// Cyrillic or CJK file name has already become question marks.
std::vector<std::string> utf8Arguments(int argc, char** argv);
/// Sets up stdout and stderr for UTF-8 text. On Windows both end lines in LF alike, and text for
/// a console goes through the console's own wide-character call, which shows every character
/// whatever its code page; a file or pipe gets the UTF-8 bytes unchanged.
void setUpStandardStreams();
/// --quiet: no progress bars and no closing summary; questions, problems and errors still show.
void setQuiet(bool quiet);
bool quiet();
/// Whether progress bars are drawn: on a terminal, unless quiet.
bool progressShown();

} // namespace cli
