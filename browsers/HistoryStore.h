#pragma once
// The URL history store where the browsers keep it in their profiles (Linux): the history
// databases of every browser profile found (see BrowserProfiles.h), read profile by profile. Clearing and deleting reach every profile whose
// browser does not hold it; one that is held is left whole and named by storesInUse(). An address
// is added to the first profile that can take it (a Chromium-family one).

#include "browsers/BrowserProfiles.h"
#include "platform/UrlHistory.h"

#include <memory>

namespace browsers {

class HistoryStore final : public platform::UrlHistory {
public:
    /// The store of the profiles found in `folders`, their files reached through `files`.
    HistoryStore(ProfileFiles& files, UserFolders folders);

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override;
    bool deleteUrl(const std::string& url, std::uint32_t flags, platform::Remover& remover) override;
    std::unique_ptr<platform::UrlHistoryEnum> enumUrls() override;
    bool clearHistory(platform::Remover& remover) override;
    std::vector<std::string> storesInUse() const override { return m_state->inUse; }
    std::vector<platform::StoreProblem> storeProblems() const override { return m_state->problems; }
    /// What the last call found, shared with the enumerators, which find held and failing
    /// profiles as they reach them.
    struct State {
        std::vector<std::string> inUse;
        std::vector<platform::StoreProblem> problems;
        void clear() {
            inUse.clear();
            problems.clear();
        }
    };

private:
    ProfileFiles& m_files;
    UserFolders m_folders;
    std::shared_ptr<State> m_state;
};

} // namespace browsers
