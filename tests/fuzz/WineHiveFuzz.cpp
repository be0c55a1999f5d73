// The Wine hive reader over any text: user.reg may have been edited by hand, cut short by a full
// disk or written by another Wine version. Every text must parse without fault; an unchanged hive
// writes back byte for byte; and after changes made as the registry calls make them (on keys and
// value names taken from the input's own section lines), the text written parses again into a
// hive that reads as the changed one did.

#include "platform/Registry.h"
#include "winehive/WineHive.h"
#include "tests/fuzz/FuzzCheck.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

using winehive::HiveValue;
using winehive::WineHive;

namespace {

constexpr std::size_t MaxKeys = 4;
constexpr std::int64_t Now = 1767225600;

/// The key paths of the first section lines, roughly unescaped ("[A\\\\B] 123" gives "A\B").
std::vector<std::string> sectionKeys(const std::string& text) {
    std::vector<std::string> keys;
    for (std::size_t pos = text.find("\n["); pos != std::string::npos && keys.size() < MaxKeys;
         pos = text.find("\n[", pos + 1)) {
        const std::size_t end = text.find_first_of("]\n", pos + 2);
        std::string key = text.substr(pos + 2, end == std::string::npos ? std::string::npos : end - pos - 2);
        for (std::size_t at = 0; (at = key.find("\\\\", at)) != std::string::npos; ++at)
            key.erase(at, 1);
        keys.push_back(key);
    }
    return keys;
}

/// Everything a reader of `hive` sees of `keys`: existence, value names and values, in order.
std::string readable(const WineHive& hive, const std::vector<std::string>& keys) {
    std::string out;
    for (const std::string& key : keys) {
        out += hive.hasKey(key) ? "[+]" : "[-]";
        out += key;
        out += '\n';
        for (const std::string& name : hive.valueNames(key)) {
            const HiveValue* value = hive.value(key, name);
            FUZZ_CHECK(value != nullptr);
            out += name;
            out += '=';
            out += std::to_string(value->type);
            out += ':';
            out.append(value->data.begin(), value->data.end());
            out += '\n';
        }
    }
    return out;
}

/// A value of a type picked by `selector`, holding `bytes`; strings get their closing NUL.
HiveValue makeValue(std::uint8_t selector, const std::string& bytes) {
    static const std::uint32_t types[] = {platform::RegType::Sz,     platform::RegType::ExpandSz,
                                          platform::RegType::MultiSz, platform::RegType::Binary,
                                          platform::RegType::Dword,  platform::RegType::None,
                                          0xb,                        0x80000001};
    HiveValue value;
    value.type = types[selector % std::size(types)];
    value.data.assign(bytes.begin(), bytes.end());
    const bool isString = value.type == platform::RegType::Sz || value.type == platform::RegType::ExpandSz ||
                          value.type == platform::RegType::MultiSz;
    if (isString && selector & 0x80)
        value.data.push_back(0);
    if (value.type == platform::RegType::Dword && selector & 0x40)
        value.data.resize(4);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    WineHive hive;
    if (!hive.parse(text))
        return 0;
    FUZZ_CHECK_EQUAL(hive.text(), text);

    std::vector<std::string> keys = sectionKeys(text);

    // Changes shaped by the input: a value named like an existing one or new, data from the text.
    const std::uint8_t selector = size > 0 ? data[size / 2] : 0;
    const std::string bytes = text.substr(size / 3, selector % 48);
    const std::string key = keys.empty() ? "Software\\Fuzz" : keys[selector % keys.size()];
    std::vector<std::string> names = hive.valueNames(key);
    const std::string name = names.empty() || selector & 0x20 ? bytes.substr(0, selector % 7) : names.front();

    hive.createKey(key, Now);
    FUZZ_CHECK(hive.hasKey(key));
    hive.setValue(key, name, makeValue(selector, bytes), Now);
    FUZZ_CHECK(hive.value(key, name) != nullptr);
    if (names.size() > 1) {
        FUZZ_CHECK(hive.deleteValue(key, names.back(), Now));
        FUZZ_CHECK(hive.value(key, names.back()) == nullptr);
    }
    const std::string subKey = key + "\\" + bytes.substr(0, 5);
    hive.createKey(subKey, Now);
    keys.push_back(key);
    keys.push_back(subKey);

    WineHive again;
    const std::string written = hive.text();
    FUZZ_CHECK(again.parse(written));
    FUZZ_CHECK_EQUAL(again.text(), written);
    FUZZ_CHECK_EQUAL(readable(again, keys), readable(hive, keys));
    return 0;
}
