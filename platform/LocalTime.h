#pragma once
// Conversion of a UTC file time into local time the way FileTimeToLocalFileTime does it: by the
// zone's offset from UTC as it stands now (with daylight saving as it is today, not as it was at
// that time), so that a time converted twice moves twice.

#include "platform/UrlCache.h" // FileTime

namespace platform {

/// `utc` shifted by the local zone's current offset from UTC into `local`. False (and `local`
/// left as it was) when the result would leave the range of a file time.
bool fileTimeToLocalFileTime(const FileTime& utc, FileTime& local);

} // namespace platform
