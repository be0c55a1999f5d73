#pragma once
// Wine's text registry hive ("WINE REGISTRY Version 2", the user.reg of a prefix), kept as the
// file's own text: what is not changed is written back byte for byte, and a changed or new value
// is written in the form Wine itself writes it. Values are presented as the ANSI functions of
// advapi32 see them (strings as UTF-8 with their closing NUL), key and value names compare without
// regard to ASCII case. A value whose data runs on past the end of the file reads as Wine reads
// it, empty and of type 0, and is rewritten as Wine writes such a value once lines are added after
// it (they would otherwise become the rest of its data). Plain C++: no file access here;
// LinuxRegistry reads and writes.

#include <cstdint>
#include <string>
#include <vector>

namespace winehive {

struct HiveValue {
    std::uint32_t type = 0;
    /// String types: UTF-8, each string NUL-terminated as RegQueryValueExA returns them; other
    /// types: the bytes as stored.
    std::vector<std::uint8_t> data;
};

class WineHive {
public:
    /// Takes `text` as the hive. False (and an empty hive) when it is not a version 2 hive.
    bool parse(std::string text);
    /// The hive's text: the bytes parsed, with the changes made since.
    std::string text() const;

    /// Whether `key` ("Software\\Wine", no leading backslash) exists: it has a section of its own
    /// or some key below it has one (Wine leaves out keys that hold nothing but subkeys). The
    /// empty path, the hive's root, always exists.
    bool hasKey(const std::string& key) const;
    /// The value `name` ("" is the default value, "@") of `key`; null when missing.
    const HiveValue* value(const std::string& key, const std::string& name) const;
    /// The names of the values of `key`, in stored order.
    std::vector<std::string> valueNames(const std::string& key) const;

    /// Adds `key` with an empty section when it does not exist; true when it was added.
    /// `now` (seconds since 1970) stamps the new section.
    bool createKey(const std::string& key, std::int64_t now);
    /// Sets `name` of `key` (creating the key's section when needed) and stamps the key with `now`.
    void setValue(const std::string& key, const std::string& name, const HiveValue& value, std::int64_t now);
    /// Removes `name` from `key` and stamps the key; false (nothing changed) when it was not there.
    bool deleteValue(const std::string& key, const std::string& name, std::int64_t now);

    /// The line Wine writes for a value, without its line end ("\"name\"=dword:00000001").
    static std::string formatValue(const std::string& name, const HiveValue& value);

private:
    struct Entry {
        enum class Kind { Other, Stamp, Value };
        Kind kind = Kind::Other;
        std::string raw; ///< the line(s) as in the file, line ends included
        std::string name;
        std::string folded;
        HiveValue value;
        bool unfinished = false; ///< a value whose data runs on past the end of the file
    };
    struct Section {
        std::string path;
        std::string folded;
        std::string keyPart; ///< the key line up to and including ']'
        std::string head;    ///< the whole key line as in the file
        std::vector<Entry> entries;
    };

    std::vector<Section*> sectionsOf(const std::string& folded);
    std::vector<const Section*> sectionsOf(const std::string& folded) const;
    Section& appendSection(const std::string& key, std::int64_t now);
    static void stamp(Section& section, std::int64_t now);
    void finishUnfinished();

    std::string m_preamble;
    std::vector<Section> m_sections;
};

} // namespace winehive
