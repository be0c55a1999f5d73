#pragma once
// Whether a program is running: any process whose program file name equals the name, ignoring case
// and surrounding blanks. Pending window events are let run between processes, so the window stays
// live during a scan.

#include "platform/Processes.h"

#include <functional>
#include <string>
#include <vector>

namespace autoclean {

/// The browsers whose closing AutoClean watches: "iexplore.exe" on Windows; on Linux the Chromium
/// family and Firefox, and "iexplore.exe" under Wine.
const std::vector<std::string>& watchedBrowsers();

/// True when some process runs a program named like any of `programNames`. `pumpEvents` runs
/// before each process is looked at. Processes that cannot be inspected do not match.
bool IsProcessRunning(platform::Processes& processes, const std::vector<std::string>& programNames,
                      const std::function<void()>& pumpEvents = {});
bool IsProcessRunning(platform::Processes& processes, const std::string& programName,
                      const std::function<void()>& pumpEvents = {});

} // namespace autoclean
