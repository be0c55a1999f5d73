#include "winehive/WineHive.h"

#include "platform/Registry.h"

#include <algorithm>
#include <cstdio>

namespace winehive {
namespace RegType = platform::RegType;

namespace {

const std::string HiveSignature = "WINE REGISTRY Version 2";
// Seconds from 1601-01-01 (the FILETIME epoch) to 1970-01-01.
constexpr std::int64_t EpochDifference = 11644473600;

bool isHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

unsigned hexValue(char c) {
    return c <= '9' ? static_cast<unsigned>(c - '0') : static_cast<unsigned>((c | 0x20) - 'a' + 10);
}

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

std::string trimKey(const std::string& key) {
    std::size_t begin = 0, end = key.size();
    while (begin < end && key[begin] == '\\')
        ++begin;
    while (end > begin && key[end - 1] == '\\')
        --end;
    return key.substr(begin, end - begin);
}

// One UTF-8 sequence from `s` at `pos` (advanced past it) appended as UTF-16 units; a byte that
// starts no valid sequence stands for itself, so nothing read is ever dropped.
void appendUtf8Char(const std::string& s, std::size_t& pos, std::u16string& out) {
    const auto b0 = static_cast<unsigned char>(s[pos]);
    const int extra = b0 >= 0xC2 && b0 <= 0xDF ? 1 : b0 >= 0xE0 && b0 <= 0xEF ? 2 : b0 >= 0xF0 && b0 <= 0xF4 ? 3 : 0;
    if (b0 < 0x80 || extra == 0 || pos + extra >= s.size()) {
        out.push_back(b0);
        ++pos;
        return;
    }
    char32_t cp = b0 & (0x3F >> extra);
    for (int i = 1; i <= extra; ++i) {
        const auto b = static_cast<unsigned char>(s[pos + i]);
        if ((b & 0xC0) != 0x80) {
            out.push_back(b0);
            ++pos;
            return;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    pos += extra + 1;
    if (cp >= 0x10000) {
        cp -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
        out.push_back(static_cast<char16_t>(cp));
    }
}

std::u16string toUnits(const std::string& utf8) {
    std::u16string out;
    for (std::size_t pos = 0; pos < utf8.size();)
        appendUtf8Char(utf8, pos, out);
    return out;
}

std::string toUtf8(const std::u16string& units) {
    std::string out;
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t cp = units[i];
        if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000)
            cp = 0x10000 + ((cp - 0xD800) << 10) + (units[++i] - 0xDC00);
        if (cp < 0x80) {
            out += static_cast<char>(cp);
        } else if (cp < 0x800) {
            out += static_cast<char>(0xC0 | (cp >> 6));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            out += static_cast<char>(0xE0 | (cp >> 12));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (cp >> 18));
            out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    return out;
}

// A name as the hive holds it once written and read back: bytes that are not UTF-8 stand for the
// characters of the same value, as when they are read from the file.
std::string canonical(const std::string& text) {
    return toUtf8(toUnits(text));
}

// What names are compared by: the canonical text without regard to ASCII case.
std::string fold(const std::string& text) {
    std::string out = canonical(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return out;
}

// Wine's string unescaping: reads from `pos` up to the unescaped `end` character, leaves `pos`
// after it. False when the closing character is missing.
bool parseString(const std::string& s, std::size_t& pos, char end, std::u16string& out) {
    while (pos < s.size() && s[pos] != end) {
        if (s[pos] != '\\') {
            appendUtf8Char(s, pos, out);
            continue;
        }
        if (++pos >= s.size())
            return false;
        const char c = s[pos];
        switch (c) {
        case 'a': out.push_back(u'\a'); ++pos; break;
        case 'b': out.push_back(u'\b'); ++pos; break;
        case 'e': out.push_back(0x1B); ++pos; break;
        case 'f': out.push_back(u'\f'); ++pos; break;
        case 'n': out.push_back(u'\n'); ++pos; break;
        case 'r': out.push_back(u'\r'); ++pos; break;
        case 't': out.push_back(u'\t'); ++pos; break;
        case 'v': out.push_back(u'\v'); ++pos; break;
        case 'x': {
            ++pos;
            if (pos >= s.size() || !isHex(s[pos])) {
                out.push_back(u'x');
                break;
            }
            unsigned v = 0;
            for (int i = 0; i < 4 && pos < s.size() && isHex(s[pos]); ++i)
                v = v * 16 + hexValue(s[pos++]);
            out.push_back(static_cast<char16_t>(v));
            break;
        }
        default:
            if (c >= '0' && c <= '7') {
                unsigned v = 0;
                for (int i = 0; i < 3 && pos < s.size() && s[pos] >= '0' && s[pos] <= '7'; ++i)
                    v = v * 8 + static_cast<unsigned>(s[pos++] - '0');
                out.push_back(static_cast<char16_t>(v));
            } else {
                appendUtf8Char(s, pos, out);
            }
        }
    }
    if (pos >= s.size())
        return false;
    ++pos;
    return true;
}

// Wine's string escaping (the inverse of parseString): every unit is written, a NUL too, so that
// a name reads back as it was given. `special` holds the two characters that need a backslash
// besides the backslash itself.
std::string dumpString(const std::u16string& units, const char special[2]) {
    static const char escapes[33] = ".......abtnvfr.............e....";
    std::string out;
    char buf[16];
    const std::size_t n = units.size();
    for (std::size_t i = 0; i < n; ++i) {
        const char16_t c = units[i];
        const std::size_t left = n - i;
        if (c > 127) {
            const bool nextIsHex = left > 1 && units[i + 1] < 128 && isHex(static_cast<char>(units[i + 1]));
            std::snprintf(buf, sizeof buf, nextIsHex ? "\\x%04x" : "\\x%x", static_cast<unsigned>(c));
            out += buf;
        } else if (c < 32) {
            if (escapes[c] != '.') {
                out += '\\';
                out += escapes[c];
            } else {
                const bool nextIsOctal = left > 1 && units[i + 1] >= '0' && units[i + 1] <= '7';
                std::snprintf(buf, sizeof buf, nextIsOctal ? "\\%03o" : "\\%o", static_cast<unsigned>(c));
                out += buf;
            }
        } else {
            if (c == '\\' || c == special[0] || c == special[1])
                out += '\\';
            out += static_cast<char>(c);
        }
    }
    return out;
}

bool isStringType(std::uint32_t type) {
    return type == RegType::Sz || type == RegType::ExpandSz || type == RegType::MultiSz;
}

// Stored UTF-16 data as the ANSI functions return it.
std::vector<std::uint8_t> unitsToAnsi(const std::u16string& units) {
    const std::string text = toUtf8(units);
    return {text.begin(), text.end()};
}

std::vector<std::uint8_t> bytesToAnsi(std::uint32_t type, std::vector<std::uint8_t> bytes) {
    if (!isStringType(type) || bytes.size() % 2 != 0)
        return bytes;
    std::u16string units;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        units.push_back(static_cast<char16_t>(bytes[i] | (bytes[i + 1] << 8)));
    return unitsToAnsi(units);
}

// Reads the comma-separated hex bytes at `pos`; false on a malformed byte.
bool parseHexBytes(const std::string& s, std::size_t& pos, std::vector<std::uint8_t>& out) {
    while (pos < s.size() && isHex(s[pos])) {
        unsigned v = 0;
        while (pos < s.size() && isHex(s[pos]))
            v = v * 16 + hexValue(s[pos++]);
        if (v > 0xFF)
            return false;
        out.push_back(static_cast<std::uint8_t>(v));
        while (pos < s.size() && isSpace(s[pos]))
            ++pos;
        if (pos < s.size() && s[pos] == ',')
            ++pos;
        while (pos < s.size() && isSpace(s[pos]))
            ++pos;
    }
    return true;
}

std::string withoutLineEnd(const std::string& line) {
    std::size_t end = line.size();
    while (end > 0 && (line[end - 1] == '\n' || line[end - 1] == '\r'))
        --end;
    return line.substr(0, end);
}

// Splits `text` into lines, each with its line end.
std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t nl = text.find('\n', start);
        nl = nl == std::string::npos ? text.size() : nl + 1;
        lines.push_back(text.substr(start, nl - start));
        start = nl;
    }
    return lines;
}

struct ParsedValue {
    std::string name;
    HiveValue value;
    bool continues = false; ///< hex data goes on on the next line
};

// Where the data of a value line starts, after "name"= or @=; npos when the line is no value.
std::size_t parseValueName(const std::string& line, std::string& name) {
    std::size_t pos = 0;
    if (line.empty())
        return std::string::npos;
    if (line[0] == '@') {
        pos = 1;
    } else if (line[0] == '"') {
        pos = 1;
        std::u16string units;
        if (!parseString(line, pos, '"', units))
            return std::string::npos;
        name = toUtf8(units);
    } else {
        return std::string::npos;
    }
    while (pos < line.size() && isSpace(line[pos]))
        ++pos;
    if (pos >= line.size() || line[pos] != '=')
        return std::string::npos;
    ++pos;
    while (pos < line.size() && isSpace(line[pos]))
        ++pos;
    return pos;
}

// The data of a value, given the whole logical line (continuations joined); false when malformed.
bool parseValueData(const std::string& s, std::size_t pos, HiveValue& out, bool& continues) {
    auto startsWith = [&](const char* prefix) { return s.compare(pos, std::char_traits<char>::length(prefix), prefix) == 0; };
    continues = false;
    std::uint32_t stringType = 0;
    std::size_t skip = 0;
    if (startsWith("\""))
        stringType = RegType::Sz, skip = 1;
    else if (startsWith("str:\""))
        stringType = RegType::Sz, skip = 5;
    else if (startsWith("str(2):\""))
        stringType = RegType::ExpandSz, skip = 8;
    else if (startsWith("str(7):\""))
        stringType = RegType::MultiSz, skip = 8;
    if (stringType != 0) {
        pos += skip;
        std::u16string units;
        if (!parseString(s, pos, '"', units))
            return false;
        units.push_back(0);
        out.type = stringType;
        out.data = unitsToAnsi(units);
        return true;
    }
    if (startsWith("dword:")) {
        pos += 6;
        std::uint32_t v = 0;
        int digits = 0;
        for (; pos < s.size() && isHex(s[pos]) && digits < 8; ++digits)
            v = v * 16 + hexValue(s[pos++]);
        if (digits == 0)
            return false;
        out.type = RegType::Dword;
        out.data = {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8), static_cast<std::uint8_t>(v >> 16),
                    static_cast<std::uint8_t>(v >> 24)};
        return true;
    }
    if (startsWith("hex:")) {
        out.type = RegType::Binary;
        pos += 4;
    } else if (startsWith("hex(")) {
        pos += 4;
        std::uint32_t type = 0;
        int digits = 0;
        for (; pos < s.size() && isHex(s[pos]); ++digits)
            type = type * 16 + hexValue(s[pos++]);
        if (digits == 0 || s.compare(pos, 2, "):") != 0)
            return false;
        pos += 2;
        out.type = type;
    } else {
        return false;
    }
    std::vector<std::uint8_t> bytes;
    if (!parseHexBytes(s, pos, bytes))
        return false;
    while (pos < s.size() && isSpace(s[pos]))
        ++pos;
    if (pos < s.size()) {
        if (s[pos] != '\\' || pos + 1 != s.size())
            return false;
        continues = true;
    }
    out.data = bytesToAnsi(out.type, std::move(bytes));
    return true;
}

std::string fileTimeLine(std::int64_t now) {
    const auto ticks = static_cast<std::uint64_t>(now + EpochDifference) * 10000000ull;
    char buf[48];
    std::snprintf(buf, sizeof buf, "#time=%x%08x\n", static_cast<unsigned>(ticks >> 32),
                  static_cast<unsigned>(ticks & 0xFFFFFFFFu));
    return buf;
}

bool isBlank(const std::string& line) {
    return std::all_of(line.begin(), line.end(), isSpace);
}

} // namespace

bool WineHive::parse(std::string text) {
    m_preamble.clear();
    m_sections.clear();
    if (text.compare(0, HiveSignature.size(), HiveSignature) != 0)
        return false;
    const std::vector<std::string> lines = splitLines(text);
    Section* current = nullptr;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& raw = lines[i];
        const std::string line = withoutLineEnd(raw);
        if (i > 0 && !line.empty() && line[0] == '[') {
            std::size_t pos = 1;
            std::u16string units;
            if (parseString(line, pos, ']', units)) {
                Section section;
                section.path = trimKey(toUtf8(units));
                section.folded = fold(section.path);
                section.keyPart = line.substr(0, pos);
                section.head = raw;
                m_sections.push_back(std::move(section));
                current = &m_sections.back();
                continue;
            }
        }
        if (!current) {
            m_preamble += raw;
            continue;
        }
        Entry entry;
        entry.raw = raw;
        std::string name;
        const std::size_t dataPos = line.rfind("#time=", 0) == 0 ? std::string::npos : parseValueName(line, name);
        if (line.rfind("#time=", 0) == 0) {
            entry.kind = Entry::Kind::Stamp;
        } else if (dataPos != std::string::npos) {
            // Gather continuation lines first: hex data may run on over several lines.
            std::string logical = line;
            std::size_t last = i;
            HiveValue value;
            bool continues = false;
            bool ok = parseValueData(logical, dataPos, value, continues);
            while (ok && continues && last + 1 < lines.size()) {
                ++last;
                logical.pop_back(); // the trailing backslash
                std::string next = withoutLineEnd(lines[last]);
                std::size_t lead = 0;
                while (lead < next.size() && isSpace(next[lead]))
                    ++lead;
                logical += next.substr(lead);
                ok = parseValueData(logical, dataPos, value, continues);
            }
            if (ok) {
                for (std::size_t k = i + 1; k <= last; ++k)
                    entry.raw += lines[k];
                i = last;
                entry.kind = Entry::Kind::Value;
                entry.name = name;
                entry.folded = fold(name);
                entry.unfinished = continues;
                entry.value = continues ? HiveValue{} : std::move(value);
            }
        }
        current->entries.push_back(std::move(entry));
    }
    return true;
}

std::string WineHive::text() const {
    std::string out = m_preamble;
    for (const Section& section : m_sections) {
        out += section.head;
        for (const Entry& entry : section.entries)
            out += entry.raw;
    }
    return out;
}

std::vector<WineHive::Section*> WineHive::sectionsOf(const std::string& folded) {
    std::vector<Section*> found;
    for (Section& section : m_sections)
        if (section.folded == folded)
            found.push_back(&section);
    return found;
}

std::vector<const WineHive::Section*> WineHive::sectionsOf(const std::string& folded) const {
    std::vector<const Section*> found;
    for (const Section& section : m_sections)
        if (section.folded == folded)
            found.push_back(&section);
    return found;
}

bool WineHive::hasKey(const std::string& key) const {
    const std::string folded = fold(trimKey(key));
    if (folded.empty())
        return true;
    return std::any_of(m_sections.begin(), m_sections.end(), [&](const Section& s) {
        return s.folded == folded || (s.folded.size() > folded.size() && s.folded.compare(0, folded.size(), folded) == 0 &&
                                      s.folded[folded.size()] == '\\');
    });
}

const HiveValue* WineHive::value(const std::string& key, const std::string& name) const {
    const std::string foldedName = fold(name);
    const HiveValue* found = nullptr; // a later definition wins, as when Wine loads the file
    for (const Section* section : sectionsOf(fold(trimKey(key))))
        for (const Entry& entry : section->entries)
            if (entry.kind == Entry::Kind::Value && entry.folded == foldedName)
                found = &entry.value;
    return found;
}

std::vector<std::string> WineHive::valueNames(const std::string& key) const {
    std::vector<std::string> names;
    std::vector<std::string> folded;
    for (const Section* section : sectionsOf(fold(trimKey(key))))
        for (const Entry& entry : section->entries)
            if (entry.kind == Entry::Kind::Value && std::find(folded.begin(), folded.end(), entry.folded) == folded.end()) {
                names.push_back(entry.name);
                folded.push_back(entry.folded);
            }
    return names;
}

void WineHive::stamp(Section& section, std::int64_t now) {
    const std::string eol = section.head.size() >= 2 && section.head.compare(section.head.size() - 2, 2, "\r\n") == 0
                                ? "\r\n"
                                : "\n";
    section.head = section.keyPart + " " + std::to_string(now) + eol;
    for (Entry& entry : section.entries)
        if (entry.kind == Entry::Kind::Stamp) {
            entry.raw = fileTimeLine(now);
            if (eol == "\r\n")
                entry.raw.insert(entry.raw.size() - 1, "\r");
        }
}

void WineHive::finishUnfinished() {
    // Only the file's last value can be unfinished.
    if (m_sections.empty() || m_sections.back().entries.empty())
        return;
    Entry& last = m_sections.back().entries.back();
    if (last.unfinished) {
        last.raw = formatValue(last.name, last.value) + "\n";
        last.unfinished = false;
    }
}

WineHive::Section& WineHive::appendSection(const std::string& key, std::int64_t now) {
    finishUnfinished();
    Section section;
    section.path = canonical(trimKey(key));
    section.folded = fold(section.path);
    section.keyPart = "[" + dumpString(toUnits(section.path), "[]") + "]";
    Entry stampEntry;
    stampEntry.kind = Entry::Kind::Stamp;
    section.entries.push_back(stampEntry);
    // Wine puts a blank line before every key; the last line of the file may lack its line end.
    const std::string current = text();
    std::string lead = current.empty() || current.back() == '\n' ? "\n" : "\n\n";
    if (!m_sections.empty())
        m_sections.back().entries.push_back(Entry{Entry::Kind::Other, lead, {}, {}, {}});
    else
        m_preamble += lead;
    m_sections.push_back(std::move(section));
    stamp(m_sections.back(), now);
    return m_sections.back();
}

bool WineHive::createKey(const std::string& key, std::int64_t now) {
    if (hasKey(key))
        return false;
    appendSection(key, now);
    return true;
}

std::string WineHive::formatValue(const std::string& name, const HiveValue& value) {
    std::string out;
    std::size_t count = 0;
    if (!name.empty()) {
        out = "\"" + dumpString(toUnits(name), "\"\"") + "\"=";
    } else {
        out = "@=";
    }
    count = out.size();

    char buf[16];
    std::vector<std::uint8_t> bytes = value.data;
    if (isStringType(value.type)) {
        const std::u16string units = toUnits(std::string(value.data.begin(), value.data.end()));
        // Only a properly terminated string is written in string form, as Wine does.
        if (!units.empty() && units.back() == 0) {
            if (value.type != RegType::Sz) {
                std::snprintf(buf, sizeof buf, "str(%x):", static_cast<unsigned>(value.type));
                out += buf;
            }
            // The closing NUL is left out, as Wine leaves it out.
            return out + "\"" + dumpString(units.substr(0, units.size() - 1), "\"\"") + "\"";
        }
        bytes.clear();
        for (char16_t u : units) {
            bytes.push_back(static_cast<std::uint8_t>(u & 0xFF));
            bytes.push_back(static_cast<std::uint8_t>(u >> 8));
        }
    } else if (value.type == RegType::Dword && bytes.size() == 4) {
        std::snprintf(buf, sizeof buf, "dword:%08x", static_cast<unsigned>(bytes[0] | (bytes[1] << 8) | (bytes[2] << 16)) |
                                                         (static_cast<unsigned>(bytes[3]) << 24));
        return out + buf;
    }

    if (value.type == RegType::Binary)
        std::snprintf(buf, sizeof buf, "hex:");
    else
        std::snprintf(buf, sizeof buf, "hex(%x):", static_cast<unsigned>(value.type));
    out += buf;
    count += std::char_traits<char>::length(buf);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(buf, sizeof buf, "%02x", static_cast<unsigned>(bytes[i]));
        out += buf;
        count += 2;
        if (i + 1 < bytes.size()) {
            out += ',';
            if (++count > 76) {
                out += "\\\n  ";
                count = 2;
            }
        }
    }
    return out;
}

void WineHive::setValue(const std::string& key, const std::string& name, const HiveValue& value, std::int64_t now) {
    Entry entry;
    entry.kind = Entry::Kind::Value;
    entry.raw = formatValue(name, value) + "\n";
    // Read back what was written, so that the value reads as it will after the next load.
    std::string written = withoutLineEnd(entry.raw);
    for (std::size_t p; (p = written.find("\\\n  ")) != std::string::npos;)
        written.erase(p, 4);
    bool continues = false;
    parseValueData(written, parseValueName(written, entry.name), entry.value, continues);
    entry.name = canonical(name);
    entry.folded = fold(name);

    std::vector<Section*> sections = sectionsOf(fold(trimKey(key)));
    bool placed = false;
    for (Section* section : sections) {
        // The first definition is replaced in place; any later duplicate goes.
        auto& entries = section->entries;
        bool touched = false;
        for (auto it = entries.begin(); it != entries.end();) {
            if (it->kind != Entry::Kind::Value || it->folded != entry.folded) {
                ++it;
            } else if (!placed) {
                *it++ = entry;
                placed = touched = true;
            } else {
                it = entries.erase(it);
                touched = true;
            }
        }
        if (touched)
            stamp(*section, now);
    }
    if (placed)
        return;
    finishUnfinished();
    Section* target = sections.empty() ? &appendSection(key, now) : sections.back();
    // A new value goes after the key's last line that is not blank.
    auto& entries = target->entries;
    std::size_t at = entries.size();
    while (at > 0 && entries[at - 1].kind == Entry::Kind::Other && isBlank(entries[at - 1].raw))
        --at;
    if (at > 0 && !entries[at - 1].raw.empty() && entries[at - 1].raw.back() != '\n')
        entries[at - 1].raw += '\n';
    entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(at), std::move(entry));
    stamp(*target, now);
}

bool WineHive::deleteValue(const std::string& key, const std::string& name, std::int64_t now) {
    const std::string folded = fold(name);
    bool removed = false;
    for (Section* section : sectionsOf(fold(trimKey(key)))) {
        auto& entries = section->entries;
        const auto before = entries.size();
        std::erase_if(entries, [&](const Entry& e) { return e.kind == Entry::Kind::Value && e.folded == folded; });
        if (entries.size() != before) {
            removed = true;
            stamp(*section, now);
        }
    }
    return removed;
}

} // namespace winehive
