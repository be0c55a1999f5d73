#include "autoclean/CheckProcess.h"

#include <algorithm>
#include <cctype>

namespace autoclean {
namespace {

std::string trimmedUpper(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    std::string out = text.substr(first, text.find_last_not_of(' ') - first + 1);
    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::toupper(c); });
    return out;
}

} // namespace

const std::vector<std::string>& watchedBrowsers() {
#ifdef _WIN32
    static const std::vector<std::string> names = {"iexplore.exe"};
#else
    // Program file names as the process list shows them (/proc/<pid>/exe), not the names of the
    // launcher scripts that start them: google-chrome, brave-browser and microsoft-edge exec chrome,
    // brave and msedge. Helpers that outlive the browser (chrome_crashpad_handler, Firefox's
    // crashhelper) are left out, or the clean would wait for them.
    static const std::vector<std::string> names = {"iexplore.exe", "firefox",          "firefox-esr", "firefox-bin",
                                                   "chromium",     "chromium-browser", "chrome",      "brave",
                                                   "vivaldi-bin",  "opera",            "msedge"};
#endif
    return names;
}

bool IsProcessRunning(platform::Processes& processes, const std::vector<std::string>& programNames,
                      const std::function<void()>& pumpEvents) {
    std::vector<std::string> targets;
    for (const auto& name : programNames)
        targets.push_back(trimmedUpper(name));
    for (const long id : processes.ids()) {
        if (pumpEvents)
            pumpEvents();
        const auto program = processes.programName(id);
        if (program && std::find(targets.begin(), targets.end(), trimmedUpper(*program)) != targets.end())
            return true;
    }
    return false;
}

bool IsProcessRunning(platform::Processes& processes, const std::string& programName,
                      const std::function<void()>& pumpEvents) {
    return IsProcessRunning(processes, std::vector<std::string>{programName}, pumpEvents);
}

} // namespace autoclean
