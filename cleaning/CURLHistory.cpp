#include "cleaning/CURLHistory.h"

#include <stdexcept>

namespace cleaning {

CURLHistory::CURLHistory(platform::Platform& platform)
    : m_store(platform.urlHistory()), m_storeFiles(platform, nullptr, nullptr) {
    Refresh("", 0);
}

void CURLHistory::AddURL(const std::string& URL, const std::string& Title, std::int32_t flags) {
    m_store.addUrl(URL, Title, static_cast<std::uint32_t>(flags));
}

std::int32_t CURLHistory::Count() const {
    return static_cast<std::int32_t>(m_entries.size());
}

void CURLHistory::Clear() {
    m_store.clearHistory(m_storeFiles);
    Refresh("", 0);
}

void CURLHistory::Refresh(const std::string& URLStartsWith, std::int32_t flags) {
    auto enumerator = m_store.enumUrls();
    if (!enumerator || !enumerator->setFilter(URLStartsWith, static_cast<std::uint32_t>(flags)))
        return;
    m_entries = Entries();
    platform::StatUrl record; // its size field is left as the enumerator sets it
    while (enumerator->next(record) != 0) {
        auto item = std::shared_ptr<URLHistoryItem>(new URLHistoryItem());
        item->Init(record);
        m_entries.push_back(std::move(item));
    }
}

std::size_t CURLHistory::position(std::int32_t index) const {
    if (index < 1 || index > Count())
        throw std::out_of_range("history index " + std::to_string(index) + " is outside 1 to " +
                                std::to_string(Count()));
    return static_cast<std::size_t>(index - 1);
}

std::shared_ptr<URLHistoryItem> CURLHistory::Item(std::int32_t Index) const {
    return m_entries[position(Index)];
}

void CURLHistory::Remove(std::int32_t Index) {
    const std::size_t at = position(Index);
    if (!m_store.deleteUrl(m_entries[at]->URL(), 0, m_storeFiles))
        return;
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(at));
}

void CURLHistory::DeleteURL(std::int32_t URL, std::int32_t flags) {
    if (!m_store.deleteUrl(std::to_string(URL), static_cast<std::uint32_t>(flags), m_storeFiles))
        return;
    Refresh("", 0);
}

} // namespace cleaning
