#include "memory/MemoryFigures.h"

#include <gtest/gtest.h>

namespace {

class FailingSource : public platform::MemoryStatus {
public:
    bool query(platform::MemoryStatusRecord& r) override {
        r.ullTotalPhys = 77; // a failed call must not leak half-filled figures
        return false;
    }
};

} // namespace

TEST(MemoryFigures, FiguresArePlainUngroupedBytesAndUsageMayGoNegative) {
    platform::MemoryStatusRecord r;
    r.dwMemoryLoad = 57;
    r.ullTotalPhys = 4294967296ull;
    r.ullTotalPageFile = 6000000000ull;
    r.ullAvailPageFile = 1000000000ull;
    const auto lines = memory::memoryLines(r);
    EXPECT_EQ(lines[0].caption, "Total Physical     4294967296");
    EXPECT_EQ(lines[7].label + "=" + lines[7].caption, "Label9=Current memory load:     57 %.");
    EXPECT_EQ(lines[8].label + "=" + lines[8].caption, "Label8=PageFile Usage 5000000000");
    r.ullAvailPageFile = 6000000150ull; // more available than there is in all
    EXPECT_EQ(memory::memoryLines(r)[8].caption, "PageFile Usage -150");

    FailingSource source;
    EXPECT_EQ(memory::readMemoryStatus(source).ullTotalPhys, 0u);
}
