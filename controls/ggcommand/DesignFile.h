#pragma once
// A window's design store: the saved properties of each of its buttons, in a small text file
// kept as a resource of the program. The format, one section per button:
//
//     ; comment lines start with ';' or '#'
//     [GGCommand3]
//     Caption=Cache/History/Cookies/TempFiles
//     Font=MS Sans Serif, 8.25, bold
//     GradientFromColor=0x00FFFFFF
//     ForeColor=0x80000012
//
// The section name is the button's object name; the keys are the 29 persisted keys (others are
// kept but unused). Values run to the end of the line with surrounding blanks removed; a value
// that must keep blanks at its ends is written in double quotes, inside which \" \\ and \n stand
// for a quote, a backslash and a line break. Colours are 0x00BBGGRR words or 0x80000000 + index
// for the system's colours; truth values are True / False; fonts are "family, points, styles".

#include "controls/ggcommand/PropertyBag.h"

#include <string>
#include <vector>

namespace ggcommand {

struct DesignSection {
    std::string name;
    PropertyBag properties;
};

/// The sections of a design file, in file order (a repeated section adds to the first one).
/// Lines that are neither a section, a key=value pair nor a comment are skipped.
std::vector<DesignSection> parseDesign(const std::string& text);

/// A design file that reads back to `sections`.
std::string formatDesign(const std::vector<DesignSection>& sections);

} // namespace ggcommand
