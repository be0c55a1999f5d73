#include "cli/ProgressBar.h"

#include "cli/Terminal.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace cli {

// Padding stands in for the escapes only on a console that is known to lack them; anywhere else
// the bar is written as every terminal reads it.
ProgressBar::ProgressBar(bool enabled)
    : m_enabled(enabled), m_escapes(enabled && (!isTerminal(Stream::Err) || escapesWork(Stream::Err))) {
    restart();
}

ProgressBar::ProgressBar() : ProgressBar(progressShown()) {}

ProgressBar::~ProgressBar() {
    finish();
}

void ProgressBar::restart() {
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

std::string ProgressBar::figures(double done, double total, Unit unit, double seconds) {
    const auto amount = [unit](double value) {
        return unit == Unit::Bytes ? humanBytes(value) : std::to_string(static_cast<std::uint64_t>(std::floor(value)));
    };
    std::string text = amount(done) + " / " + amount(total);
    if (seconds >= 0.05) {
        const double rate = done / seconds;
        if (unit == Unit::Bytes) {
            text += "  " + humanBytes(rate) + "/s";
        } else {
            char perSecond[32];
            std::snprintf(perSecond, sizeof perSecond, "  %.1f/s", rate);
            text += perSecond;
        }
    }
    return text;
}

void ProgressBar::update(double done, double total, Unit unit, const std::string& label) {
    if (!m_enabled)
        return;
    const auto now = std::chrono::steady_clock::now();
    const double fraction = total > 0 ? std::clamp(done / total, 0.0, 1.0) : 1.0;
    if (m_drawn && now - m_lastDraw < std::chrono::milliseconds(100) && fraction < 1.0)
        return;
    m_lastDraw = now;
    constexpr int Width = 30;
    const int filled = static_cast<int>(fraction * Width);
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.append(static_cast<std::size_t>(Width - filled), '.');
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    char head[64];
    std::snprintf(head, sizeof head, "[%s] %3d%%  ", bar.c_str(), static_cast<int>(fraction * 100));
    const std::string line = head + label + "  " + figures(done, total, unit, seconds);
    // Without escape sequences (an older Windows console) a shorter line is padded over the longer
    // one before it.
    const std::string padding = !m_escapes && line.size() < m_width ? std::string(m_width - line.size(), ' ') : "";
    std::fprintf(stderr, "\r%s%s", line.c_str(), m_escapes ? "\033[K" : padding.c_str());
    std::fflush(stderr);
    m_width = std::max(m_width, line.size());
    m_drawn = true;
}

void ProgressBar::bytes(std::uint64_t done, std::uint64_t total, const std::string& label) {
    update(static_cast<double>(done), static_cast<double>(total), Unit::Bytes, label);
}

void ProgressBar::finish() {
    if (m_enabled && m_drawn) {
        if (m_escapes)
            std::fprintf(stderr, "\r\033[K");
        else
            std::fprintf(stderr, "\r%s\r", std::string(m_width, ' ').c_str());
        m_width = 0;
        std::fflush(stderr);
        m_drawn = false;
    }
}

} // namespace cli
