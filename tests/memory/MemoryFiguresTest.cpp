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

TEST(MemoryFigures, PageFileUsageMayGoNegativeAndAFailedReadShowsNothing) {
    platform::MemoryStatusRecord r;
    r.ullTotalPageFile = 6000000000ull;
    r.ullAvailPageFile = 6000000150ull; // more available than there is in all
    EXPECT_EQ(memory::memoryLines(r)[8].caption, "PageFile Usage -150");
    FailingSource source;
    EXPECT_EQ(memory::readMemoryStatus(source).ullTotalPhys, 0u);
}
