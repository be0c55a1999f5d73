// The temporary-folder clean's overwrite passes against `dd conv=notrunc,fsync` over the same
// bytes, side by side in one run on one filesystem: a file of MiB mebibytes is planted in DIR, dd
// overwrites it a few times (the mean is taken), then the temporary-folder clean of DIR wipes it
// in its eleven passes, each timed from the end of the one before to the moment it has reached
// the device. Prints each pass's throughput as a ratio to dd's (goal: every pass >= 0.80).
// Usage: temp_clean_bench DIR [MiB]   (bench/temp_clean_compare.sh makes DIR a fresh ext4 mount)

#include "cleaning/TraceCleaner.h"
#include "platform/Platform.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Marks the end of each pass: after a pass's last block the window gets its turn once for the
// block and once more after the pass has been flushed and closed.
struct PassClock final : cleaning::ListView {
    std::vector<double> passSeconds;
    Clock::time_point passStart = Clock::now();
    int pumpsAfterLastBlock = -1;

    void wiping(const std::string&, int, std::uint64_t written, std::uint64_t total) override {
        if (written == total)
            pumpsAfterLastBlock = 0;
    }
    void pumpEvents() override {
        if (pumpsAfterLastBlock < 0 || ++pumpsAfterLastBlock < 2)
            return;
        passSeconds.push_back(secondsSince(passStart));
        passStart = Clock::now();
        pumpsAfterLastBlock = -1;
    }
};

void plant(const std::string& path, int mib) {
    const std::string block(1 << 20, 'p');
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    for (int i = 0; i < mib; ++i)
        out.write(block.data(), static_cast<std::streamsize>(block.size()));
    out.close();
    std::system(("sync -f '" + path + "'").c_str());
}

double ddPass(const std::string& path, int mib) {
    const auto start = Clock::now();
    const std::string command = "dd if=/dev/zero of='" + path + "' bs=1M count=" + std::to_string(mib) +
                                " conv=notrunc,fsync status=none";
    if (std::system(command.c_str()) != 0)
        std::fprintf(stderr, "dd failed\n");
    return secondsSince(start);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s DIR [MiB]\n", argv[0]);
        return 2;
    }
    const std::string dir = argv[1];
    const int mib = argc > 2 ? std::atoi(argv[2]) : 256;
    const std::string victim = dir + "/victim.tmp";
    const double mebibytes = mib;

    plant(victim, mib);
    constexpr int DdRuns = 3;
    double dd = 0;
    for (int i = 0; i < DdRuns; ++i)
        dd += ddPass(victim, mib) / DdRuns;

    plant(victim, mib);
    auto platform = platform::createNative();
    PassClock clock;
    cleaning::TraceCleaner cleaner(*platform, clock);
    cleaner.SetPaths({"", "", "", dir});
    clock.passStart = Clock::now();
    cleaner.CleanTempFolder();

    std::printf("dd conv=notrunc,fsync    %7.3f s a pass  %8.1f MiB/s  (mean of %d)\n", dd, mebibytes / dd, DdRuns);
    double worst = 1e9;
    for (std::size_t i = 0; i < clock.passSeconds.size(); ++i) {
        const double s = clock.passSeconds[i];
        worst = std::min(worst, dd / s);
        std::printf("temp clean pass %2zu       %7.3f s         %8.1f MiB/s  ratio %.2f\n", i + 1, s, mebibytes / s,
                    dd / s);
    }
    if (clock.passSeconds.size() != 11)
        std::printf("expected 11 passes, timed %zu\n", clock.passSeconds.size());
    std::printf("worst pass throughput / dd: %.2f   (goal >= 0.80)\n", worst);
    return 0;
}
