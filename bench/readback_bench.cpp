// The engine's read-back past the system's cache, timed alone, for bench/wipe_compare.sh to set
// beside `dd iflag=direct` over the same file. The file must hold zeros (what dd wrote): comparing
// with what a pass wrote is part of what a verified wipe costs. Prints the seconds it took.
// Usage: readback_bench FILE

#include "platform/Platform.h"
#include "wipe/Engine.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: readback_bench FILE\n");
        return 2;
    }
    const auto platform = platform::createNative();
    const auto [dir, name] = wipe::splitPath(platform->fileSystem(), argv[1]);
    const auto folder = platform->fileSystem().openFolder(dir);
    const auto file = folder ? folder->openFile(name, false) : nullptr;
    const auto info = file ? file->info() : std::nullopt;
    if (!info) {
        std::fprintf(stderr, "%s: cannot be opened\n", argv[1]);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const std::int64_t differs = wipe::readBackDifference(
        *file, info->size, [](std::uint64_t, unsigned char* out, std::size_t count) { std::memset(out, 0, count); });
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", took.count());
    if (differs != -1)
        std::fprintf(stderr, "%s: %s\n", argv[1], differs == -2 ? "cannot be read back" : "not all zeros");
    return differs == -1 ? 0 : 1;
}
