#include "cli/TerminalPrompts.h"

#include "cli/Terminal.h"

#include <cstdio>
#include <iostream>
#include <string>

namespace cli {

bool TerminalPrompts::askYesNo(const std::string& text, const std::string& title, int) {
    if (m_assumeYes)
        return true;
    if (!isTerminal(Stream::In)) {
        std::cerr << title << ": " << text << "\n(no terminal to ask on; answered No; use --yes)\n";
        return false;
    }
    std::cerr << title << ": " << text << " [y/N] " << std::flush;
    std::string answer;
    if (!std::getline(std::cin, answer))
        return false;
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "YES" || answer == "Yes";
}

void TerminalPrompts::tell(const std::string& text, const std::string& title, int) {
    std::cerr << title << ": " << text << "\n";
}

} // namespace cli
