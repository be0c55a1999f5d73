#include "controls/ggcommand/DesignFile.h"

#include "controls/ggcommand/TextFields.h"

#include <sstream>

namespace ggcommand {
namespace {

bool needsQuotes(const std::string& value) {
    return !value.empty() && (value != trimmed(value) || value.front() == '"' ||
                              value.find('\n') != std::string::npos);
}

std::string quoted(const std::string& value) {
    std::string out = "\"";
    for (char c : value) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return out + '"';
}

std::string unquoted(const std::string& value) {
    if (value.size() < 2 || value.front() != '"' || value.back() != '"')
        return value;
    std::string out;
    for (std::size_t i = 1; i + 1 < value.size(); ++i) {
        char c = value[i];
        if (c == '\\' && i + 2 < value.size()) {
            c = value[++i];
            if (c == 'n')
                c = '\n';
        }
        out += c;
    }
    return out;
}

} // namespace

std::vector<DesignSection> parseDesign(const std::string& text) {
    std::vector<DesignSection> sections;
    DesignSection* current = nullptr;
    std::istringstream lines(text);
    for (std::string raw; std::getline(lines, raw);) {
        const std::string line = trimmed(raw);
        if (line.empty() || line.front() == ';' || line.front() == '#')
            continue;
        if (line.front() == '[' && line.back() == ']') {
            const std::string name = trimmed(line.substr(1, line.size() - 2));
            current = nullptr;
            for (auto& section : sections)
                if (section.name == name)
                    current = &section;
            if (!current)
                current = &sections.emplace_back(DesignSection{name, {}});
            continue;
        }
        const auto equals = line.find('=');
        if (!current || equals == std::string::npos)
            continue;
        current->properties.write(trimmed(line.substr(0, equals)), unquoted(trimmed(line.substr(equals + 1))));
    }
    return sections;
}

std::string formatDesign(const std::vector<DesignSection>& sections) {
    std::string out;
    for (const auto& section : sections) {
        if (!out.empty())
            out += '\n';
        out += '[' + section.name + "]\n";
        for (const auto& [key, value] : section.properties.entries())
            out += key + '=' + (needsQuotes(value) ? quoted(value) : value) + '\n';
    }
    return out;
}

} // namespace ggcommand
