#pragma once
// The URL history store on Linux: the history databases of every browser profile found (see
// BrowserProfiles.h), read profile by profile. Clearing and deleting reach every profile whose
// browser does not hold it; one that is held is left whole and named by storesInUse(). An address
// is added to the first profile that can take it (a Chromium-family one).

#include "platform/UrlHistory.h"
#include "platform/linux/Environment.h"

#include <memory>

namespace platform::linux {

/// SetFilter flags of IEnumSTATURL that the enumeration honours.
namespace StatUrlQuery {
constexpr std::uint32_t NoUrl = 0x20000;    ///< STATURL_QUERYFLAG_NOURL: leave the address out
constexpr std::uint32_t NoTitle = 0x40000;  ///< STATURL_QUERYFLAG_NOTITLE: leave the title out
constexpr std::uint32_t TopLevel = 0x80000; ///< STATURL_QUERYFLAG_TOPLEVEL: only pages shown as such
} // namespace StatUrlQuery

class LinuxUrlHistory final : public UrlHistory {
public:
    explicit LinuxUrlHistory(Environment env);

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override;
    bool deleteUrl(const std::string& url, std::uint32_t flags, Remover& remover) override;
    std::unique_ptr<UrlHistoryEnum> enumUrls() override;
    bool clearHistory(Remover& remover) override;
    std::vector<std::string> storesInUse() const override { return m_state->inUse; }
    std::vector<StoreProblem> storeProblems() const override { return m_state->problems; }
    /// What the last call found, shared with the enumerators, which find held and failing
    /// profiles as they reach them.
    struct State {
        std::vector<std::string> inUse;
        std::vector<StoreProblem> problems;
        void clear() {
            inUse.clear();
            problems.clear();
        }
    };

private:
    Environment m_env;
    std::shared_ptr<State> m_state;
};

} // namespace platform::linux
