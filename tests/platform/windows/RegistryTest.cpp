// HKEY_CURRENT_USER through advapi32: what the backend writes is read back with the system's own
// calls and the other way round, texts outside the ANSI code page included. Everything happens
// below a key of the tests' own, removed afterwards (under Wine it lives in the scratch prefix).

#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

namespace {

const std::string TestKey = "Software\\Tavi Scourmill Tests";
const std::wstring TestKeyW = L"Software\\Tavi Scourmill Tests";
/// "Café ☕ 日本": two and three UTF-8 bytes per character.
const std::string Text = "Caf\xC3\xA9 \xE2\x98\x95 \xE6\x97\xA5\xE6\x9C\xAC";
const std::wstring TextW = L"Caf\u00E9 \u2615 \u65E5\u672C";

std::wstring readDirectly(const wchar_t* name) {
    wchar_t data[256] = {};
    DWORD size = sizeof data;
    if (::RegGetValueW(HKEY_CURRENT_USER, TestKeyW.c_str(), name, RRF_RT_ANY, nullptr, data, &size) != ERROR_SUCCESS)
        return L"<missing>";
    return data;
}

} // namespace

class WindowsRegistryTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::Registry& reg = p->registry();
    platform::RegKey key = 0;

    void SetUp() override { ASSERT_EQ(reg.createKey(platform::CurrentUserRoot, TestKey, key), ERROR_SUCCESS); }
    void TearDown() override {
        reg.closeKey(key);
        ::RegDeleteTreeW(HKEY_CURRENT_USER, TestKeyW.c_str());
    }

    long setText(const std::string& name, const std::string& text) {
        return reg.setValue(key, name, platform::RegType::Sz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                            static_cast<std::uint32_t>(text.size() + 1));
    }
};

TEST_F(WindowsRegistryTest, ValuesWrittenHereAreTheSystemsAndBack) {
    ASSERT_EQ(setText("url1", Text), ERROR_SUCCESS);
    EXPECT_EQ(readDirectly(L"url1"), TextW);

    const std::wstring name = L"\u65E5\u672C";
    ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, TestKeyW.c_str(), name.c_str(), REG_SZ, TextW.c_str(),
                                static_cast<DWORD>((TextW.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
    // Asked without a buffer: the type and the UTF-8 size with its NUL.
    std::uint32_t kind = 0, size = 0;
    ASSERT_EQ(reg.queryValue(key, "\xE6\x97\xA5\xE6\x9C\xAC", &kind, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(kind, platform::RegType::Sz);
    EXPECT_EQ(size, Text.size() + 1);
    std::string data(size, '\0');
    ASSERT_EQ(reg.queryValue(key, "\xE6\x97\xA5\xE6\x9C\xAC", &kind, reinterpret_cast<std::uint8_t*>(data.data()), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(data, Text + '\0');

    std::vector<std::string> names;
    ASSERT_EQ(reg.valueNames(key, names), ERROR_SUCCESS);
    EXPECT_EQ(names, (std::vector<std::string>{"url1", "\xE6\x97\xA5\xE6\x9C\xAC"}));
}

TEST_F(WindowsRegistryTest, DeletedValuesAreGoneForTheSystemAndMissingOnesReportSo) {
    ASSERT_EQ(setText("a", "x"), ERROR_SUCCESS);
    ASSERT_EQ(setText("MRUList", "a"), ERROR_SUCCESS);
    EXPECT_EQ(reg.deleteValue(key, "a"), ERROR_SUCCESS);
    EXPECT_EQ(readDirectly(L"a"), L"<missing>");
    EXPECT_EQ(readDirectly(L"MRUList"), L"a");
    EXPECT_EQ(reg.deleteValue(key, "a"), ERROR_FILE_NOT_FOUND);
    platform::RegKey missing = 0;
    EXPECT_EQ(reg.openKey(platform::CurrentUserRoot, TestKey + "\\No Such Key", missing), ERROR_FILE_NOT_FOUND);
}

TEST_F(WindowsRegistryTest, NumbersAndKeysOpenedFromTheRootBehaveAsAdvapi32s) {
    const std::uint32_t number = 0x01020304;
    ASSERT_EQ(reg.setValue(key, "n", platform::RegType::Dword, reinterpret_cast<const std::uint8_t*>(&number), 4),
              ERROR_SUCCESS);
    platform::RegKey again = 0;
    ASSERT_EQ(reg.openKey(platform::CurrentUserRoot, TestKey, again), ERROR_SUCCESS);
    std::uint32_t kind = 0, value = 0, size = 4;
    EXPECT_EQ(reg.queryValue(again, "n", &kind, reinterpret_cast<std::uint8_t*>(&value), &size), ERROR_SUCCESS);
    EXPECT_EQ(kind, platform::RegType::Dword);
    EXPECT_EQ(value, number);
    reg.closeKey(again);
}
