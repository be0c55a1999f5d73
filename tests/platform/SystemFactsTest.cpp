// Memory figures, connectivity and well-known folders against what /proc and the environment say.

#include "platform/Platform.h"
#include "platform/linux/LinuxConnectivity.h"
#include "tests/support/ProcFields.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(MemoryStatus, FiguresMatchProcMeminfo) {
    const auto meminfo = [](const char* name) { return testsupport::procKilobytes("/proc/meminfo", name); };
    auto p = platform::createNative();
    platform::MemoryStatusRecord r;
    ASSERT_TRUE(p->memoryStatus().query(r));
    EXPECT_EQ(r.ullTotalPhys, meminfo("MemTotal"));
    EXPECT_EQ(r.ullTotalPageFile, meminfo("MemTotal") + meminfo("SwapTotal"));
    // Available memory moves between two reads; it stays within a few percent.
    EXPECT_NEAR(static_cast<double>(r.ullAvailPhys), static_cast<double>(meminfo("MemAvailable")),
                0.05 * static_cast<double>(meminfo("MemTotal")));
    EXPECT_GT(r.ullTotalVirtual, r.ullAvailVirtual);
    EXPECT_GT(r.ullAvailVirtual, 0u);
}

TEST(Connectivity, DefaultRouteMeansConnectedButLoopbackDoesNot) {
    using platform::linux::hasDefaultRoute;
    const std::string header = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
    const std::string v4Default = header + "eth0\t00000000\t0102A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n";
    const std::string v4Local = header + "eth0\t0002A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
    const std::string v6Default = "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                                  "fe800000000000000000000000000001 00000400 00000001 00000000 00000003 eth0\n";
    const std::string v6Unreachable = "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                                      "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200 lo\n";
    EXPECT_TRUE(hasDefaultRoute(v4Default, ""));
    EXPECT_FALSE(hasDefaultRoute(v4Local, v6Unreachable));
    EXPECT_TRUE(hasDefaultRoute(header, v6Default));
    EXPECT_FALSE(hasDefaultRoute("", ""));
}

TEST(KnownFolders, RegistryPathsMapIntoTheWinePrefixAndTempIsAnAbsoluteFolderOrSlashTmp) {
    platform::Environment env = platform::processEnvironment();
    const std::string prefix = env["WINEPREFIX"], tmp = env["TMPDIR"];
    auto p = platform::createNative(env);
    auto& folders = p->knownFolders();
    EXPECT_EQ(folders.fromRegistryPath("c:\\"), prefix + "/drive_c");
    EXPECT_EQ(folders.fromRegistryPath("D:\\Data\\"), prefix + "/dosdevices/d:/Data");
    EXPECT_EQ(folders.homePath(), env["HOME"]);
    EXPECT_EQ(folders.usersPath(), "");
    std::filesystem::create_directories(prefix + "/drive_c/users");
    EXPECT_EQ(folders.usersPath(), prefix + "/drive_c/users");

    for (const auto& [value, temp] : {std::pair{std::string("relative/tmp"), std::string("/tmp")},
                                      std::pair{tmp + "/missing", std::string("/tmp")}, std::pair{tmp + "/", tmp}}) {
        env["TMPDIR"] = value;
        EXPECT_EQ(platform::createNative(env)->knownFolders().tempPath(), temp) << value;
    }
}
