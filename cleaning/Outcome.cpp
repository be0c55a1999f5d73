#include "cleaning/Outcome.h"

namespace cleaning {
namespace {

/// The name a user knows a left store by: a browser profile's browser, a file's own name.
std::string shortName(const std::string& item) {
    struct Known {
        const char* part;
        const char* name;
    };
    static const Known browsers[] = {
        {"/mozilla/firefox/", "Firefox"}, {"/.mozilla/firefox/", "Firefox"}, {"/google-chrome", "Google Chrome"},
        {"/BraveSoftware/", "Brave"},     {"/vivaldi", "Vivaldi"},           {"/microsoft-edge", "Microsoft Edge"},
        {"/chromium/", "Chromium"},
    };
    for (const Known& browser : browsers)
        if (item.find(browser.part) != std::string::npos)
            return browser.name;
    const auto slash = item.find_last_of("/\\");
    return slash == std::string::npos || slash + 1 == item.size() ? item : item.substr(slash + 1);
}

const std::string kRunning = "its browser is running; its ";

} // namespace

std::string Counted(std::size_t n, const std::string& one, const std::string& many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

void Outcome::Start() {
    m_done = {};
    m_left.clear();
    m_note.clear();
}

std::string Outcome::Text() const {
    std::string text;
    const auto add = [&text](std::size_t n, const char* one, const char* many) {
        if (n > 0)
            text += (text.empty() ? "" : ", ") + Counted(n, one, many);
    };
    add(DoneCount(TraceStep::CacheEntries), "cache entry", "cache entries");
    add(DoneCount(TraceStep::TempFiles), "temp file", "temp files");
    add(DoneCount(TraceStep::CookieFiles), "cookie record file", "cookie record files");
    add(DoneCount(TraceStep::History), "history entry", "history entries");
    if (!text.empty())
        text += " removed";
    if (!m_note.empty())
        text = text.empty() ? m_note : m_note + "; " + text;
    if (m_left.empty())
        return text.empty() ? "Nothing to remove" : text;
    if (text.empty())
        text = "Nothing removed";
    const auto& [item, reason] = m_left.front();
    // One running browser leaves its cache and its history: told together.
    const std::string suffix = " was left alone";
    std::vector<std::string> parts;
    for (const auto& [other, why] : m_left)
        if (other == item && why.rfind(kRunning, 0) == 0 && why.ends_with(suffix))
            parts.push_back(why.substr(kRunning.size(), why.size() - kRunning.size() - suffix.size()));
    std::size_t told = 1;
    if (!parts.empty()) {
        told = parts.size();
        text += ". " + shortName(item) + " is running: its " + parts.front() +
                (parts.size() > 1 ? " and " + parts.back() + " were" : std::string(" was")) +
                " left alone; close it and clean again";
    } else {
        text += ". Left: " + shortName(item) + " (" + reason + ")";
    }
    if (m_left.size() > told)
        text += "; " + Counted(m_left.size() - told, "more item", "more items") + " left";
    return text;
}

} // namespace cleaning
