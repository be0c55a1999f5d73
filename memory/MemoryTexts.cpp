#include "memory/MemoryTexts.h"

#include "core/NumberFormat.h"
#include "memory/MemoryWipe.h"

namespace memory::texts {
namespace {

/// "after pass 7 of 21" (passes counted from 1 for people), or "before the first pass".
std::string where(int lastPass) {
    if (lastPass < 0)
        return "before the first pass";
    return "after pass " + std::to_string(lastPass + 1) + " of " + std::to_string(MemoryWipe::Passes);
}

std::string mebibytes(std::uint64_t bytes) {
    return core::formatGrouped(static_cast<std::int64_t>(bytes >> 20)) + " MiB";
}

} // namespace

// "conjuntion" and "1rst" are spelled so on purpose.
const std::string ReadB4Using =
    " This function needs to be used in conjuntion with the memory monitor.\r\n"
    " The idea here is to create a full memory load and then have a PageFile Usage\r\n"
    " equal to the amount allocated to the system. Your system will seem slow on all 1rst executions\r\n"
    " because your memory is clean! 2nd openings will be fast because they will have been put back in\r\n"
    " cache after the 1rst reopening. Memory has been wiped per Dept of Def. standards.\r\n"
    " Use the suggested array size and adjust till total memory (ram + pagefile) is achieved\r\n"
    " Again, You can observe this by watching the Memory Monitor.";

std::string confirmWipe(std::int32_t size) {
    const auto bytes = static_cast<std::int64_t>(MemoryWipe::BytesPerCharacter) * MemoryWipe::Passes * size;
    return "Fill " + core::formatGrouped(bytes) + " bytes of memory with blanks (" +
           std::to_string(MemoryWipe::Passes) + " strings of " + core::formatGrouped(static_cast<std::int64_t>(size)) +
           " characters), so that the system has to give up and overwrite what other programs left in memory? "
           "Other programs may be slow afterwards.";
}

std::string stoppedAtFloor(int lastPass, std::uint64_t floor, bool groupLimit) {
    if (groupLimit)
        return "stopped " + where(lastPass) + ": going on would bring this process's memory group (its container or "
               "slice) within " + mebibytes(floor) + " of the group's limit; the memory was given back";
    return "stopped " + where(lastPass) + ": going on would leave less than " + mebibytes(floor) +
           " of memory (RAM and swap) to the rest of the system; the memory was given back";
}

std::string stoppedOutOfMemory(int lastPass) {
    return "stopped " + where(lastPass) + ": the system could not give more memory; the memory was given back";
}

std::string stoppedInterrupted(int lastPass) {
    return "interrupted " + where(lastPass) + "; the memory was given back";
}

} // namespace memory::texts
