#pragma once
// The edge between the program's UTF-8 strings and the UTF-16 of the Windows wide-character calls.
// Every backend call converts here, so names outside the ANSI code page reach the system intact.

#include <string>

namespace platform::windows {

/// UTF-8 to UTF-16; invalid sequences become U+FFFD.
std::wstring widen(const std::string& text);
/// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
std::string narrow(const std::wstring& text);
/// The first `length` units at `text` (or up to its NUL when `length` is -1) as UTF-8; empty for null.
std::string narrow(const wchar_t* text, int length = -1);

} // namespace platform::windows
