#pragma once
// A one-line progress bar on stderr for long commands, drawn only when progress is shown (stderr a
// terminal, no --quiet): how far, what is being done, done / total and the rate since the bar
// (re)started, e.g.
//   [##########....................]  35%  report.pdf  pass 13/35  700.0 MiB / 2.0 GiB  85.0 MiB/s
//   [#####.........................]  17%  cache entries 12  12 / 70  30.5/s
// Redraws at most ten times a second.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace cli {

class ProgressBar {
public:
    /// What the figures count.
    enum class Unit { Bytes, Items };

    /// `enabled` false draws nothing.
    explicit ProgressBar(bool enabled);
    /// A bar that draws when progress is shown.
    ProgressBar();
    ~ProgressBar();

    /// Shows `done` of `total` (in `unit`, fractions of an item allowed), after `label`.
    void update(double done, double total, Unit unit, const std::string& label);
    /// The same in bytes.
    void bytes(std::uint64_t done, std::uint64_t total, const std::string& label);
    /// Measures the rate anew from now (a new file, a new run).
    void restart();
    /// Clears the line so that ordinary output can follow.
    void finish();

    /// "1.2 GiB", "512 B".
    static std::string humanBytes(double bytes);
    /// The text after the label: "700.0 MiB / 2.0 GiB  85.0 MiB/s" ("12 / 70  30.5/s" for items);
    /// no rate before a twentieth of a second has passed.
    static std::string figures(double done, double total, Unit unit, double seconds);

private:
    bool m_enabled;
    bool m_escapes;          ///< the terminal clears a line on request
    std::size_t m_width = 0; ///< the longest line drawn since the last finish()
    bool m_drawn = false;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_lastDraw;
};

} // namespace cli
