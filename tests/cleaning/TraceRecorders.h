#pragma once
// A stand-in for the window around the trace-cleaning routines: a view whose working list is a
// plain list and which remembers what a window would have shown.

#include "cleaning/TraceView.h"
#include "tests/support/Recorders.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace testsupport {

struct TraceRecorder final : cleaning::ListView {
    /// Bytes each pass of each file writes, as reported while writing.
    std::map<std::string, std::map<int, std::uint64_t>> passBytes;
    std::function<void()> onPump;
    bool stop = false;

    void wiping(const std::string& path, int pass, std::uint64_t, std::uint64_t total) override {
        passBytes[path][pass] = total;
    }
    void pumpEvents() override {
        if (onPump)
            onPump();
    }
    bool interrupted() override { return stop; }
};

} // namespace testsupport
