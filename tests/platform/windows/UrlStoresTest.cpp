// The browser's stores on Windows: cache entries made with WinINet's own calls are listed through
// the platform the way the cache listing asks for them, and deleted; the history store either
// works or, where the system lacks it (Wine), fails without pretending.

#include "platform/Platform.h"
#include "tests/support/Wine.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <objbase.h>
#include <wininet.h>

#include <cstring>
#include <map>
#include <thread>
#include <vector>

namespace {

/// Windows's stores remove their own files: a remover handed to them is never asked.
struct NoRemover final : platform::Remover {
    bool removeEntry(platform::Folder&, const std::string& name) override {
        ADD_FAILURE() << "asked to remove " << name;
        return false;
    }
    bool rewrite(platform::Folder&, const std::string& name, const std::string&) override {
        ADD_FAILURE() << "asked to rewrite " << name;
        return false;
    }
} noRemover;

const std::string Ascii = "http://cache.example.test/page.html";
/// An address with letters outside the ANSI code page, as UTF-8 and as the system's UTF-16.
const std::string Unicode = "http://cache.example.test/\xC3\xA9t\xC3\xA9-\xE6\x97\xA5.html";
const std::wstring UnicodeW = L"http://cache.example.test/\u00E9t\u00E9-\u65E5.html";

/// Every entry, listed as the cache listing does: ask the size, hand over a buffer of exactly that
/// size, read the record. Each record is checked to point into its own buffer.
std::map<std::string, platform::UrlCacheEntryInfo> listAll(platform::UrlCache& cache) {
    std::map<std::string, platform::UrlCacheEntryInfo> out;
    std::vector<char> buffer;
    const auto take = [&](std::uint32_t size) {
        const auto& record = *reinterpret_cast<const platform::UrlCacheEntryInfo*>(buffer.data());
        EXPECT_EQ(record.dwStructSize, sizeof(platform::UrlCacheEntryInfo));
        EXPECT_GE(record.lpszSourceUrlName, buffer.data() + sizeof record);
        EXPECT_LT(record.lpszSourceUrlName, buffer.data() + size);
        out[record.lpszSourceUrlName] = record;
    };
    std::uint32_t size = 0;
    EXPECT_EQ(cache.findFirst(nullptr, size), 0u);
    if (size == 0)
        return out;
    buffer.assign(size, '\0');
    const platform::UrlCacheEnum handle = cache.findFirst(buffer.data(), size);
    EXPECT_NE(handle, 0u);
    take(size);
    for (;;) {
        size = 0;
        EXPECT_FALSE(cache.findNext(handle, nullptr, size));
        if (size == 0)
            break;
        // One byte short: refused, and the entry is still the next one.
        buffer.assign(size - 1, '\0');
        std::uint32_t shortSize = size - 1;
        EXPECT_FALSE(cache.findNext(handle, buffer.data(), shortSize));
        EXPECT_EQ(shortSize, size);
        buffer.assign(size, '\0');
        EXPECT_TRUE(cache.findNext(handle, buffer.data(), size));
        take(size);
    }
    cache.findClose(handle);
    return out;
}

} // namespace

TEST(WindowsUrlCache, EntriesCommittedByWinInetAreListedAsRecordsAndDeleted) {
    ASSERT_TRUE(testsupport::commitCacheEntry(std::wstring(Ascii.begin(), Ascii.end()), "plain"));
    ASSERT_TRUE(testsupport::commitCacheEntry(UnicodeW, "unicode"));
    auto p = platform::createNative();
    auto& cache = p->urlCache();

    const auto entries = listAll(cache);
    ASSERT_EQ(entries.count(Ascii), 1u);
    ASSERT_EQ(entries.count(Unicode), 1u);
    EXPECT_EQ(entries.at(Ascii).dwSizeLow, 5u);

    EXPECT_TRUE(cache.deleteEntry(Unicode, noRemover));
    EXPECT_FALSE(testsupport::inUrlCache(UnicodeW));
    EXPECT_TRUE(cache.deleteEntry(Ascii, noRemover));
    EXPECT_FALSE(cache.deleteEntry(Ascii, noRemover));
}

TEST(WindowsUrlHistory, TheStoreWorksOrFailsWithoutPretending) {
    auto p = platform::createNative();
    auto& history = p->urlHistory();
    const bool added = history.addUrl(Unicode, "Title", 0);
    if (testsupport::underWine() && !added) {
        // Wine's history object answers "not implemented" to everything: so does the platform, and
        // it names the store with that reason, once however often the listing meets it.
        EXPECT_EQ(history.enumUrls(), nullptr);
        EXPECT_FALSE(history.clearHistory(noRemover));
        EXPECT_EQ(history.enumUrls(), nullptr);
        const auto problems = history.storeProblems();
        ASSERT_EQ(problems.size(), 1u);
        EXPECT_EQ(problems[0].file, "the URL history store");
        EXPECT_NE(problems[0].reason.find("(0x80004001)"), std::string::npos) << problems[0].reason;
        return;
    }
    ASSERT_TRUE(added);
    auto enumerator = history.enumUrls();
    ASSERT_TRUE(enumerator);
    ASSERT_TRUE(enumerator->setFilter("http://cache.example.test/", 0));
    platform::StatUrl record;
    bool found = false;
    while (enumerator->next(record) == 1)
        found = found || record.pwcsUrl == Unicode;
    EXPECT_TRUE(found);
    EXPECT_TRUE(history.deleteUrl(Unicode, 0, noRemover));
}

TEST(WindowsUrlHistory, EachCallWorksFromAnyThreadAndEndsTheComItStarted) {
    auto p = platform::createNative();
    auto& history = p->urlHistory();
    bool added = false;
    std::vector<platform::StoreProblem> problems;
    HRESULT startedAfter = E_FAIL;
    std::thread([&] {
        added = history.addUrl(Ascii, "Title", 0);
        problems = history.storeProblems();
        // The call ended the COM it started: this thread may still choose its apartment model.
        startedAfter = ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        if (SUCCEEDED(startedAfter))
            ::CoUninitialize();
    }).join();
    EXPECT_EQ(startedAfter, S_OK);
    // Another thread, once the first has ended, reaches the store the same way.
    EXPECT_EQ(history.deleteUrl(Ascii, 0, noRemover), added);
    if (!added) {
        ASSERT_EQ(problems.size(), 1u);
        ASSERT_EQ(history.storeProblems().size(), 1u);
        EXPECT_EQ(history.storeProblems()[0].reason, problems[0].reason);
    }
}
