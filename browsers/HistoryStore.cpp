#include "browsers/HistoryStore.h"

#include "browsers/ProfileHistory.h"

#include <algorithm>

namespace browsers {
namespace {

using State = HistoryStore::State;
using platform::Remover;
using platform::StatUrl;
using platform::StoreProblem;

void noteInUse(State& state, const std::string& folder) {
    if (std::find(state.inUse.begin(), state.inUse.end(), folder) == state.inUse.end())
        state.inUse.push_back(folder);
}

/// Notes what became of one profile's history; true when all of it was done.
bool note(State& state, const BrowserProfile& profile, StoreResult result, const ProfileHistory* history) {
    if (result == StoreResult::InUse) {
        noteInUse(state, profile.folder);
        return false;
    }
    // A file is named once, with the first reason found: a database the clear left out is read
    // again by the listing that follows.
    const auto name = [&state](const StoreProblem& problem) {
        if (std::none_of(state.problems.begin(), state.problems.end(),
                         [&](const StoreProblem& p) { return p.file == problem.file; }))
            state.problems.push_back(problem);
    };
    if (history)
        for (const StoreProblem& problem : history->problems())
            name(problem);
    if (result == StoreResult::Failed && (!history || history->problems().empty()))
        name({profile.folder, "its history could not be reached"});
    return result == StoreResult::Done;
}

/// Forgets `url` (every address when empty) in every profile not held.
bool forgetEverywhere(State& state, ProfileFiles& files, const UserFolders& folders, const std::optional<std::string>& url,
                      Remover& remover) {
    state.clear();
    bool ok = true;
    for (const BrowserProfile& profile : findBrowserProfiles(files, folders)) {
        if (profileHeld(files, profile)) {
            ok = note(state, profile, StoreResult::InUse, nullptr) && ok;
            continue;
        }
        const auto history = profileHistory(profile, files);
        ok = note(state, profile, history->forget(url, remover), history.get()) && ok;
    }
    return ok;
}

class HistoryStoreEnum final : public platform::UrlHistoryEnum {
public:
    HistoryStoreEnum(ProfileFiles& files, std::vector<BrowserProfile> profiles, std::shared_ptr<State> state)
        : m_files(files), m_profiles(std::move(profiles)), m_state(std::move(state)) {}

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
                if ((m_flags & platform::StatUrlQuery::TopLevel) && !(candidate.dwFlags & kStatUrlTopLevel))
                    continue;
                record = std::move(candidate);
                if (m_flags & platform::StatUrlQuery::NoUrl)
                    record.pwcsUrl.clear();
                if (m_flags & platform::StatUrlQuery::NoTitle)
                    record.pwcsTitle.clear();
                return 1;
            }
            if (m_nextProfile >= m_profiles.size())
                return 0;
            // Profiles are read one at a time, as the enumeration reaches them.
            const BrowserProfile& profile = m_profiles[m_nextProfile++];
            m_records.clear();
            m_position = 0;
            if (profileHeld(m_files, profile)) {
                noteInUse(*m_state, profile.folder);
                continue;
            }
            const auto history = profileHistory(profile, m_files);
            const StoreResult result = history->read(m_records);
            // A profile that has no history database yet has nothing to tell; one whose database
            // cannot be read is named, with what could be read of it still listed.
            if (result == StoreResult::InUse)
                m_records.clear();
            if (result != StoreResult::Failed || !history->problems().empty())
                note(*m_state, profile, result, history.get());
        }
    }

private:
    ProfileFiles& m_files;
    std::vector<BrowserProfile> m_profiles;
    std::shared_ptr<State> m_state;
    std::size_t m_nextProfile = 0;
    std::vector<StatUrl> m_records;
    std::size_t m_position = 0;
    std::string m_prefix;
    std::uint32_t m_flags = 0;
};

} // namespace

HistoryStore::HistoryStore(ProfileFiles& files, UserFolders folders)
    : m_files(files), m_folders(std::move(folders)), m_state(std::make_shared<State>()) {}

bool HistoryStore::addUrl(const std::string& url, const std::string& title, std::uint32_t) {
    m_state->clear();
    for (const BrowserProfile& profile : findBrowserProfiles(m_files, m_folders)) {
        if (profileHeld(m_files, profile)) {
            noteInUse(*m_state, profile.folder);
            continue;
        }
        const StoreResult result = profileHistory(profile, m_files)->add(url, title);
        if (result == StoreResult::Done)
            return true;
        if (result == StoreResult::InUse)
            noteInUse(*m_state, profile.folder);
    }
    return false;
}

bool HistoryStore::deleteUrl(const std::string& url, std::uint32_t, Remover& remover) {
    return forgetEverywhere(*m_state, m_files, m_folders, url, remover);
}

std::unique_ptr<platform::UrlHistoryEnum> HistoryStore::enumUrls() {
    // What the change before found stays to be told: listing is how a change is checked.
    return std::make_unique<HistoryStoreEnum>(m_files, findBrowserProfiles(m_files, m_folders), m_state);
}

bool HistoryStore::clearHistory(Remover& remover) {
    return forgetEverywhere(*m_state, m_files, m_folders, std::nullopt, remover);
}

} // namespace browsers
