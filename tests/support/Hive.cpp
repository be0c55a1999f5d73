#include "tests/support/Hive.h"

#include <fstream>

namespace testsupport {

const std::string HiveHeader = "WINE REGISTRY Version 2\n"
                               ";; All keys relative to \\\\User\\\\S-1-5-21-0-0-0-1000\n"
                               "\n"
                               "#arch=win64\n";

std::filesystem::path writeUserReg(const std::filesystem::path& prefix, const std::string& sections) {
    std::filesystem::create_directories(prefix);
    const auto path = prefix / "user.reg";
    std::ofstream(path, std::ios::binary) << HiveHeader << sections;
    return path;
}

} // namespace testsupport
