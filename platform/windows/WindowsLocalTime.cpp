#include "platform/LocalTime.h"

#include <windows.h>

namespace platform {

bool fileTimeToLocalFileTime(const FileTime& utc, FileTime& local) {
    const FILETIME in{utc.dwLowDateTime, utc.dwHighDateTime};
    FILETIME out{};
    if (!::FileTimeToLocalFileTime(&in, &out))
        return false;
    local.dwLowDateTime = out.dwLowDateTime;
    local.dwHighDateTime = out.dwHighDateTime;
    return true;
}

} // namespace platform
