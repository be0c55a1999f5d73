#include "memory/MemoryFigures.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> captions(const platform::MemoryStatusRecord& r) {
    std::vector<std::string> out;
    for (const auto& line : memory::memoryLines(r))
        out.push_back(line.label + "=" + line.caption);
    return out;
}

class FailingSource : public platform::MemoryStatus {
public:
    bool query(platform::MemoryStatusRecord& r) override {
        r.ullTotalPhys = 77; // a failed call must not leak half-filled figures
        return false;
    }
};

} // namespace

TEST(MemoryFigures, ZeroRecordReadsZeroEverywhereInWindowOrder) {
    const std::vector<std::string> expected = {
        "Label1=Total Physical     0",
        "Label2=Available Physical     0",
        "Label3=Total PageFile     0",
        "Label4=Available PageFile     0",
        "Label5=Total Virtual     0",
        "Label6=Available Virtual     0",
        "Label7=Available Extended Virtual     0",
        "Label9=Current memory load:     0 %.",
        "Label8=PageFile Usage 0",
    };
    EXPECT_EQ(captions(platform::MemoryStatusRecord{}), expected);
}

TEST(MemoryFigures, FiguresArePlainUngroupedBytesAndUsageMayGoNegative) {
    platform::MemoryStatusRecord r;
    r.dwMemoryLoad = 57;
    r.ullTotalPhys = 4294967296ull;
    r.ullTotalPageFile = 6000000000ull;
    r.ullAvailPageFile = 1000000000ull;
    const auto lines = memory::memoryLines(r);
    EXPECT_EQ(lines[0].caption, "Total Physical     4294967296");
    EXPECT_EQ(lines[7].caption, "Current memory load:     57 %.");
    EXPECT_EQ(lines[8].caption, "PageFile Usage 5000000000");
    r.ullAvailPageFile = 6000000150ull; // more available than there is in all
    EXPECT_EQ(memory::memoryLines(r)[8].caption, "PageFile Usage -150");
}

TEST(MemoryFigures, FailedQueryGivesAZeroRecord) {
    FailingSource source;
    const auto record = memory::readMemoryStatus(source);
    EXPECT_EQ(record.dwLength, 64u);
    EXPECT_EQ(record.ullTotalPhys, 0u);
}
