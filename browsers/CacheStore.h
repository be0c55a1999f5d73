#pragma once
// The URL cache where the browsers keep it in their profiles (Linux): the disk caches of every browser profile found (see BrowserProfiles.h),
// enumerated profile by profile, entry by entry, each entry read only when the enumeration reaches
// it. The entries an enumeration has read are remembered by address, so deleting a long list of
// them ("Wipe Cache") finds each one without reading the caches again; a cache folder is read
// again only when an address is not known and the folder has changed since it was read. A profile
// whose browser holds it is neither read nor changed, and is named by storesInUse(). Entry files
// whose key cannot be read, and the caches beside the disk cache, are reached by deleteUnlisted().

#include "browsers/BrowserProfiles.h"
#include "platform/UrlCache.h"

#include <map>
#include <memory>

namespace browsers {

class CacheStore final : public platform::UrlCache {
public:
    /// The caches of the profiles found in `folders`, their files reached through `files`.
    CacheStore(ProfileFiles& files, UserFolders folders);
    ~CacheStore() override;

    platform::UrlCacheEnum findFirst(void* buffer, std::uint32_t& size) override;
    bool findNext(platform::UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) override;
    void findClose(platform::UrlCacheEnum enumeration) override;
    bool deleteEntry(const std::string& url, platform::Remover& remover) override;
    std::size_t deleteUnlisted(platform::Remover& remover) override;
    std::vector<std::string> storesInUse() const override { return m_inUse; }
    std::vector<platform::StoreProblem> storeProblems() const override { return m_problems; }

private:
    struct Catalogue;
    class Enumeration;

    std::shared_ptr<Catalogue> discover();

    ProfileFiles& m_files;
    UserFolders m_folders;
    std::shared_ptr<Catalogue> m_catalogue;
    /// An enumeration positioned at its first entry by a findFirst that only asked for the size.
    std::unique_ptr<Enumeration> m_probe;
    std::map<platform::UrlCacheEnum, std::unique_ptr<Enumeration>> m_open;
    platform::UrlCacheEnum m_lastHandle = 0;
    std::vector<std::string> m_inUse;
    std::vector<platform::StoreProblem> m_problems;
};

} // namespace browsers
