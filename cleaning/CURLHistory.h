#pragma once
// CURLHistory: the browser's URL history as a collection, indexed from 1, in the order the store's
// enumerator delivers the entries. A new collection already holds the whole history. The container
// is rebuilt by Refresh, Clear and DeleteURL, changed in place by Remove, and left as it is by
// AddURL, so Count reports an added address only after the next Refresh. A failing store call ends
// the operation where it is, without a message; Clear alone goes on past failures.

#include "cleaning/URLHistoryItem.h"
#include "platform/Platform.h"
#include "wipe/Engine.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace cleaning {

class CURLHistory {
public:
    using Entries = std::vector<std::shared_ptr<URLHistoryItem>>;

    /// Works on the URL history of `platform`, which must outlive the collection, and reads the
    /// whole history.
    explicit CURLHistory(platform::Platform& platform);

    /// Adds `URL` with `Title` to the store. The collection is not re-read.
    void AddURL(const std::string& URL, const std::string& Title, std::int32_t flags);
    /// The number of entries in the collection.
    std::int32_t Count() const;
    /// Clears the store's history, then re-reads it; failures of either step are ignored.
    void Clear();
    /// Re-reads the entries whose address starts with `URLStartsWith` (all when empty). A read
    /// that fails part-way keeps the entries read so far.
    void Refresh(const std::string& URLStartsWith = "", std::int32_t flags = 0);
    /// The entry at `Index`, from 1. Throws std::out_of_range outside 1..Count.
    std::shared_ptr<URLHistoryItem> Item(std::int32_t Index) const;
    /// Deletes the address of the entry at `Index` from the store, then takes the entry out of the
    /// collection (later entries move up one); the store is not re-read. Throws std::out_of_range
    /// outside 1..Count.
    void Remove(std::int32_t Index);
    /// Deletes the address that is the decimal text of `URL` ("17" for 17) from the store, then
    /// re-reads everything. Addresses given as text are deleted through Remove.
    void DeleteURL(std::int32_t URL, std::int32_t flags);
    /// The entries in order, for iteration.
    const Entries& NewEnum() const { return m_entries; }

private:
    std::size_t position(std::int32_t index) const;

    platform::UrlHistory& m_store;
    /// Removes the files a store drops whole (session files); the store names what stays.
    wipe::Engine m_storeFiles;
    Entries m_entries;
};

} // namespace cleaning
