#pragma once
// What the trace-cleaning routines need from whoever drives them. The window's cache list List1 is
// their working list: it holds the cache addresses after a listing and, for a moment during the
// full clean, the files of the cookie folder. The window lets pending events run when asked, so it
// stays live during long wipes; the command line notices Ctrl-C there and draws its progress bar.

#include <cstdint>
#include <string>
#include <vector>

namespace cleaning {

/// The parts of the full clean, for progress reports.
enum class TraceStep { TempFiles, CacheEntries, CookieFiles, History };

class TraceView {
public:
    virtual ~TraceView() = default;

    // List1.
    virtual void clearList() = 0;
    virtual void addLine(const std::string& line) = 0;
    virtual std::size_t lineCount() const = 0;
    /// The line at `index`, from 0.
    virtual std::string line(std::size_t index) const = 0;

    /// Lets pending events run: the window stays responsive and its timers fire; the command line
    /// notices Ctrl-C. Called at least every few dozen milliseconds while a file is overwritten.
    virtual void pumpEvents() {}
    /// A request to stop (Ctrl-C): the file being overwritten is deleted at once and nothing
    /// further is touched.
    virtual bool interrupted() { return false; }

    /// Where the overwrite of `path` stands: `written` of `total` bytes of pass `pass` (1..11).
    virtual void wiping(const std::string& /*path*/, int /*pass*/, std::uint64_t /*written*/,
                        std::uint64_t /*total*/) {}
    /// One item of `step` is finished (a file deleted, a cache entry or the history handled).
    virtual void itemDone(TraceStep /*step*/, const std::string& /*item*/) {}
};

/// A view whose working list is a plain list of lines: for the command line and previews.
class ListView : public TraceView {
public:
    void clearList() override { m_lines.clear(); }
    void addLine(const std::string& line) override { m_lines.push_back(line); }
    std::size_t lineCount() const override { return m_lines.size(); }
    std::string line(std::size_t index) const override { return m_lines.at(index); }
    const std::vector<std::string>& lines() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
};

} // namespace cleaning
