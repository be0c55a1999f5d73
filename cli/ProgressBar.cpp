#include "cli/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace cli {

ProgressBar::ProgressBar(bool enabled) : m_enabled(enabled) {
    reset();
}

ProgressBar::ProgressBar() : ProgressBar(::isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
    finish();
}

void ProgressBar::reset() {
    m_start = std::chrono::steady_clock::now();
    m_lastDraw = {};
}

std::string ProgressBar::humanBytes(double bytes) {
    static const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    int unit = 0;
    while (bytes >= 1024.0 && unit < 4) {
        bytes /= 1024.0;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text;
}

void ProgressBar::update(double fraction, const std::string& label, std::uint64_t bytes) {
    if (!m_enabled)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (m_drawn && now - m_lastDraw < std::chrono::milliseconds(100) && fraction < 1.0)
        return;
    m_lastDraw = now;
    fraction = std::clamp(fraction, 0.0, 1.0);
    constexpr int Width = 30;
    const int filled = static_cast<int>(fraction * Width);
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.append(static_cast<std::size_t>(Width - filled), '.');
    std::string tail = label;
    if (bytes > 0) {
        const double seconds = std::chrono::duration<double>(now - m_start).count();
        tail += "  " + humanBytes(static_cast<double>(bytes));
        if (seconds > 0.05)
            tail += "  " + humanBytes(static_cast<double>(bytes) / seconds) + "/s";
    }
    std::fprintf(stderr, "\r[%s] %3d%%  %s\033[K", bar.c_str(), static_cast<int>(fraction * 100), tail.c_str());
    std::fflush(stderr);
    m_drawn = true;
}

void ProgressBar::finish() {
    if (m_enabled && m_drawn) {
        std::fprintf(stderr, "\r\033[K");
        std::fflush(stderr);
        m_drawn = false;
    }
}

} // namespace cli
