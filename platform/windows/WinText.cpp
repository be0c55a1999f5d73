#include "platform/windows/WinText.h"

#include <windows.h>

#include <cwchar>

namespace platform::windows {

std::wstring widen(const std::string& text) {
    if (text.empty())
        return {};
    const int size = static_cast<int>(text.size());
    const int units = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring out(static_cast<std::size_t>(units), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, out.data(), units);
    return out;
}

std::string narrow(const wchar_t* text, int length) {
    if (!text)
        return {};
    if (length < 0)
        length = static_cast<int>(std::wcslen(text));
    if (length == 0)
        return {};
    const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(bytes), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), bytes, nullptr, nullptr);
    return out;
}

std::string narrow(const std::wstring& text) {
    return narrow(text.data(), static_cast<int>(text.size()));
}

} // namespace platform::windows
