#include "platform/linux/LinuxUrlHistory.h"

#include "platform/linux/BrowserProfiles.h"
#include "platform/linux/ProfileHistory.h"

#include <algorithm>

namespace platform::linux {
namespace {

void noteInUse(std::vector<std::string>& inUse, const std::string& folder) {
    if (std::find(inUse.begin(), inUse.end(), folder) == inUse.end())
        inUse.push_back(folder);
}

class LinuxUrlHistoryEnum final : public UrlHistoryEnum {
public:
    LinuxUrlHistoryEnum(std::vector<BrowserProfile> profiles, std::shared_ptr<std::vector<std::string>> inUse)
        : m_profiles(std::move(profiles)), m_inUse(std::move(inUse)) {}

    bool setFilter(const std::string& urlStartsWith, std::uint32_t flags) override {
        m_prefix = urlStartsWith;
        m_flags = flags;
        return true;
    }

    std::uint32_t next(StatUrl& record) override {
        for (;;) {
            while (m_position < m_records.size()) {
                StatUrl& candidate = m_records[m_position++];
                if (candidate.pwcsUrl.compare(0, m_prefix.size(), m_prefix) != 0)
                    continue;
                if ((m_flags & StatUrlQuery::TopLevel) && !(candidate.dwFlags & kStatUrlTopLevel))
                    continue;
                record = std::move(candidate);
                if (m_flags & StatUrlQuery::NoUrl)
                    record.pwcsUrl.clear();
                if (m_flags & StatUrlQuery::NoTitle)
                    record.pwcsTitle.clear();
                return 1;
            }
            if (m_nextProfile >= m_profiles.size())
                return 0;
            // Profiles are read one at a time, as the enumeration reaches them.
            const BrowserProfile& profile = m_profiles[m_nextProfile++];
            m_records.clear();
            m_position = 0;
            if (profileHeld(profile) || profileHistory(profile)->read(m_records) == StoreResult::InUse) {
                m_records.clear();
                noteInUse(*m_inUse, profile.folder);
            }
        }
    }

private:
    std::vector<BrowserProfile> m_profiles;
    std::shared_ptr<std::vector<std::string>> m_inUse;
    std::size_t m_nextProfile = 0;
    std::vector<StatUrl> m_records;
    std::size_t m_position = 0;
    std::string m_prefix;
    std::uint32_t m_flags = 0;
};

} // namespace

LinuxUrlHistory::LinuxUrlHistory(Environment env)
    : m_env(std::move(env)), m_inUse(std::make_shared<std::vector<std::string>>()) {}

bool LinuxUrlHistory::addUrl(const std::string& url, const std::string& title, std::uint32_t) {
    m_inUse->clear();
    for (const BrowserProfile& profile : findBrowserProfiles(m_env)) {
        if (profileHeld(profile)) {
            noteInUse(*m_inUse, profile.folder);
            continue;
        }
        const StoreResult result = profileHistory(profile)->add(url, title);
        if (result == StoreResult::Done)
            return true;
        if (result == StoreResult::InUse)
            noteInUse(*m_inUse, profile.folder);
    }
    return false;
}

bool LinuxUrlHistory::deleteUrl(const std::string& url, std::uint32_t) {
    m_inUse->clear();
    bool ok = true;
    for (const BrowserProfile& profile : findBrowserProfiles(m_env)) {
        const StoreResult result = profileHeld(profile) ? StoreResult::InUse : profileHistory(profile)->forget(url);
        if (result == StoreResult::InUse)
            noteInUse(*m_inUse, profile.folder);
        ok = ok && result == StoreResult::Done;
    }
    return ok;
}

std::unique_ptr<UrlHistoryEnum> LinuxUrlHistory::enumUrls() {
    m_inUse->clear();
    return std::make_unique<LinuxUrlHistoryEnum>(findBrowserProfiles(m_env), m_inUse);
}

bool LinuxUrlHistory::clearHistory() {
    m_inUse->clear();
    bool ok = true;
    for (const BrowserProfile& profile : findBrowserProfiles(m_env)) {
        const StoreResult result = profileHeld(profile) ? StoreResult::InUse : profileHistory(profile)->forget(std::nullopt);
        if (result == StoreResult::InUse)
            noteInUse(*m_inUse, profile.folder);
        ok = ok && result == StoreResult::Done;
    }
    return ok;
}

} // namespace platform::linux
