#pragma once
// The saved form of a button: its 29 persisted properties as key/value texts, in a fixed order.
// Saving leaves out every value equal to its default, so a design file names only what the
// designer changed; loading takes the default for a key that is missing or cannot be read.
// The tooltip's centring is not among the keys: it is false after every load.

#include "controls/ggcommand/ButtonProperties.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ggcommand {

class PropertyBag {
public:
    /// Sets `key` to `value`, replacing an earlier value of the key (which keeps its place).
    void write(const std::string& key, const std::string& value);
    /// The value of `key`, empty when the bag does not have it.
    std::optional<std::string> read(const std::string& key) const;
    /// Keys and values in the order they were first written.
    const std::vector<std::pair<std::string, std::string>>& entries() const { return m_entries; }
    bool empty() const { return m_entries.empty(); }

private:
    std::vector<std::pair<std::string, std::string>> m_entries;
};

/// The 29 persisted keys, in saving order ("Caption" ... "Enabled").
const std::vector<std::string>& persistedKeys();

/// `properties` saved against `defaults`: the keys in their order, values equal to the default
/// left out.
PropertyBag saveProperties(const ButtonProperties& properties, const ButtonProperties& defaults);

/// A button loaded from `bag`: each key's value where present and readable, its value from
/// `defaults` otherwise; `toolTipCentered` is always false.
ButtonProperties loadProperties(const PropertyBag& bag, const ButtonProperties& defaults);

} // namespace ggcommand
