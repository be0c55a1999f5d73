#pragma once
// What became of each item a destructive command was asked to handle. Every question, count,
// summary line and exit code of such a command is built from these, never from what the command
// meant to do: a file is called overwritten only when every pass was written and reached the device.

#include <cstdint>
#include <string>
#include <utility>

namespace core {

struct Verdict {
    std::string item;         ///< the path, as shown to the user
    bool folder = false;      ///< a folder (only ever removed, never overwritten)
    bool overwritten = false; ///< every pass written and on the device
    bool removed = false;     ///< the name is gone
    bool verified = false;    ///< read back from the device and found as the last pass wrote it
    std::uint64_t bytes = 0;  ///< bytes written into it, its extra streams' included
    std::uint32_t streams = 0; ///< extra data streams of the file overwritten with it
    std::string why;          ///< why it was not overwritten, or left; empty when all went as asked
    bool problem = false;     ///< a failure to name: the command ends with exit 1

    /// Nothing done yet to `item`.
    static Verdict about(std::string item, bool folder = false) {
        Verdict v;
        v.item = std::move(item);
        v.folder = folder;
        return v;
    }
    /// `item` left alone for `why`; a failure to name unless `problem` is false.
    static Verdict left(std::string item, std::string why, bool folder = false, bool problem = true) {
        Verdict v = about(std::move(item), folder);
        v.why = std::move(why);
        v.problem = problem;
        return v;
    }
};

class VerdictSink {
public:
    virtual ~VerdictSink() = default;
    virtual void record(const Verdict& verdict) = 0;
};

} // namespace core
