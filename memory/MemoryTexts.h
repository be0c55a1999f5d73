#pragma once
// The memory-wipe window's texts, exactly as the user sees them, and the command line's words for
// the same run, defined once for the window, the command line and the tests.

#include <cstdint>
#include <string>

namespace memory::texts {

/// Shown by "Read B4 Using": seven lines, each opening with a blank, joined by CR LF.
extern const std::string ReadB4Using;
/// Label2's caption before the suggested size (three blanks on purpose).
inline const std::string SuggestedPrefix = "Suggested Array Size   ";

/// Asked by the command line before a run of `size` characters a string.
std::string confirmWipe(std::int32_t size);
/// How the command line explains a run that ended before its last pass; `lastPass` -1 when none
/// was completed.
/// `groupLimit`: the floor was kept below the limit of this process's memory group, not below
/// what the machine has.
std::string stoppedAtFloor(int lastPass, std::uint64_t floor, bool groupLimit);
std::string stoppedOutOfMemory(int lastPass);
std::string stoppedInterrupted(int lastPass);

} // namespace memory::texts
