#pragma once
// The one kind of error the file object raises: a number from 45600 to 45604, the source
// "Win32File Object" and a description that carries the system's own text for the OS error behind
// it. Callers that show errors show the description; callers that react to them test the number.

#include <stdexcept>
#include <string>

namespace wipe {

class FileError : public std::runtime_error {
public:
    static constexpr int Unknown = 45600;
    static constexpr int AlreadyOpen = 45601;
    static constexpr int OpenFailed = 45602;
    static constexpr int NotOpen = 45603;
    static constexpr int SeekFailed = 45604;

    FileError(int number, const std::string& description)
        : std::runtime_error(description), m_number(number) {}

    int number() const { return m_number; }
    std::string source() const { return "Win32File Object"; }
    std::string description() const { return what(); }

private:
    int m_number;
};

} // namespace wipe
