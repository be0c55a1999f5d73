// The order in which an overwrite reaches the device: every pass written over the whole file and
// flushed before the next pass starts, and the last one flushed before the file is cut and its name
// removed. Otherwise the system may keep only the last pass in its cache and write that alone, or
// free the blocks before any pass reached them.

#include "platform/Platform.h"
#include "proxies/ProxyPlatform.h"
#include "tests/support/Scratch.h"
#include "wipe/Engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

/// One letter per event: a pass's digit for a run of its writes, followed by "?" when the run did
/// not cover the whole file; F a flush, T a cut, C the handle closed, R the name removed.
struct Trace {
    std::string text;
    std::uint64_t length = 0;
    char run = 0;
    std::vector<bool> covered;

    void written(std::uint64_t at, const unsigned char* bytes, std::size_t count) {
        if (count == 0)
            return;
        const char pass = static_cast<char>('0' + bytes[0]);
        if (pass != run)
            event(0);
        run = pass;
        for (std::size_t i = 0; i < count; ++i) {
            if (at + i < covered.size())
                covered[at + i] = true;
            if (bytes[i] != bytes[0])
                run = '!'; // two passes in one write
        }
    }
    void event(char what) {
        if (run) {
            text += run;
            if (std::find(covered.begin(), covered.end(), false) != covered.end())
                text += '?';
        }
        run = 0;
        covered.assign(length, false);
        if (what)
            text += what;
    }
};

struct RecordingFile final : platform::ProxyRawFile {
    Trace& trace;
    std::uint64_t at = 0;
    RecordingFile(std::unique_ptr<platform::RawFile> real, Trace& trace) : ProxyRawFile(std::move(real)), trace(trace) {}
    ~RecordingFile() override { trace.event('C'); }
    std::int64_t seek(std::int64_t distance, From from) override {
        const std::int64_t now = ProxyRawFile::seek(distance, from);
        at = now < 0 ? at : static_cast<std::uint64_t>(now);
        return now;
    }
    std::size_t write(const void* data, std::size_t count) override {
        const std::size_t done = ProxyRawFile::write(data, count);
        trace.written(at, static_cast<const unsigned char*>(data), done);
        at += done;
        return done;
    }
    bool flush() override {
        trace.event('F');
        return ProxyRawFile::flush();
    }
    bool truncate() override {
        trace.event('T');
        return ProxyRawFile::truncate();
    }
};

struct RecordingFolder final : platform::ProxyFolder {
    Trace& trace;
    RecordingFolder(std::unique_ptr<platform::Folder> real, Trace& trace) : ProxyFolder(std::move(real)), trace(trace) {}
    std::unique_ptr<platform::RawFile> openForOverwrite(const std::string& name, Refusal& why) override {
        auto file = ProxyFolder::openForOverwrite(name, why);
        return file ? std::make_unique<RecordingFile>(std::move(file), trace) : nullptr;
    }
    bool removeFile(const std::string& name) override {
        trace.event('R');
        return ProxyFolder::removeFile(name);
    }
};

/// Three passes of the pass's number, in blocks of 4 KiB that each start their way to the device
/// at once: starting the way is no flush.
struct ThreePasses final : wipe::OverwriteScheme {
    int passes() const override { return 3; }
    Pass writePass(int pass, wipe::PassWriter& out) override {
        const std::string block(4096, static_cast<char>(pass));
        for (std::uint64_t at = 0; at < out.length(); at += block.size()) {
            if (!out.write(at, block.data(), std::min<std::uint64_t>(block.size(), out.length() - at)))
                return Pass::Failed;
            out.startFlush(at, block.size());
        }
        return Pass::Written;
    }
};

} // namespace

TEST(OverwriteOrder, EachPassIsWholeAndFlushedBeforeTheNextAndBeforeTheCut) {
    testsupport::ScratchDir dir;
    dir.write("secret.bin", std::string(10000, 's')); // not a whole number of blocks
    auto platform = platform::createNative();
    Trace trace;
    trace.length = 10000;
    RecordingFolder folder(platform->fileSystem().openFolder(dir.str()), trace);
    wipe::Engine engine(*platform, nullptr, nullptr);
    ThreePasses scheme;
    for (const bool verify : {false, true}) {
        SCOPED_TRACE(verify ? "read back" : "not read back");
        trace.text.clear();
        dir.write("secret.bin", std::string(10000, 's'));
        wipe::OverwriteOptions options;
        options.verify = verify;
        const auto v = engine.overwrite(folder, "secret.bin", scheme, options);
        EXPECT_TRUE(v.overwritten && v.removed) << v.why;
        EXPECT_EQ(trace.text, "1F2F3FTCR");
    }
}
