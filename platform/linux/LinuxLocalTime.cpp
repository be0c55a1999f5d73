#include "platform/LocalTime.h"

#include <cstdint>
#include <ctime>

namespace platform {

bool fileTimeToLocalFileTime(const FileTime& utc, FileTime& local) {
    ::tzset(); // a changed TZ counts from the next call on, as a changed zone does on Windows
    const std::time_t now = std::time(nullptr);
    struct tm parts {};
    if (!::localtime_r(&now, &parts))
        return false;
    const std::int64_t ticks = static_cast<std::int64_t>((std::uint64_t{utc.dwHighDateTime} << 32) | utc.dwLowDateTime);
    const std::int64_t shift = static_cast<std::int64_t>(parts.tm_gmtoff) * 10'000'000;
    if (ticks < 0 || (shift < 0 && ticks < -shift) || (shift > 0 && ticks > INT64_MAX - shift))
        return false;
    const auto shifted = static_cast<std::uint64_t>(ticks + shift);
    local.dwLowDateTime = static_cast<std::uint32_t>(shifted);
    local.dwHighDateTime = static_cast<std::uint32_t>(shifted >> 32);
    return true;
}

} // namespace platform
