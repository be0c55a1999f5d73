// Every way the program destroys data, attacked the same ways on real files: whatever the attack
// puts where a destructive command will look (a link out, a hard link, a mount, a file another
// process holds or maps, a pipe, a path too long for the system's path calls, a sparse
// file larger than its drive) must come out with its bytes and permissions as they were, and no
// verdict may call it overwritten. Each case runs one entry point against one attack.

#include "cleaning/CleanIT.h"
#include "cleaning/TraceCleaner.h"
#include "indexdat/ActivityWipe.h"
#include "tests/support/LoopImage.h"
#include "tests/support/Scratch.h"
#include "tests/support/ScratchMount.h"
#include "tests/support/Process.h"
#include "tests/wipe/Recorders.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/SecureDelete.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::ScratchDir;
using testsupport::shellQuoted;

namespace {

const bool Root = ::geteuid() == 0;

/// A child that holds `file` mapped, its descriptor long closed.
std::unique_ptr<testsupport::PausedChild> mapInChild(const fs::path& file) {
    return std::make_unique<testsupport::PausedChild>([&file] {
        const int fd = ::open(file.c_str(), O_RDONLY);
        void* map = fd >= 0 ? ::mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fd, 0) : MAP_FAILED;
        ::close(fd);
        return map != MAP_FAILED;
    });
}

/// The folder at the end of `chain` below `top`, reached one folder at a time (no path call could
/// name it); -1 when one is missing.
int openDeep(const fs::path& top, const std::vector<std::string>& chain) {
    int at = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
    for (const auto& folder : chain) {
        const int next = at < 0 ? -1 : ::openat(at, folder.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(at);
        at = next;
    }
    return at;
}

/// The bytes of `name` below `chain` in `top`.
std::string readDeep(const fs::path& top, const std::vector<std::string>& chain, const std::string& name) {
    const int at = openDeep(top, chain);
    const int fd = at < 0 ? -1 : ::openat(at, name.c_str(), O_RDONLY);
    ::close(at);
    std::string bytes;
    char buffer[256];
    for (ssize_t n; fd >= 0 && (n = ::read(fd, buffer, sizeof buffer)) > 0;)
        bytes.append(buffer, static_cast<std::size_t>(n));
    if (fd >= 0)
        ::close(fd);
    return fd >= 0 ? bytes : "<missing>";
}

/// One attack's world: the folder the command works in, a folder outside it that must survive,
/// and what must be found unchanged afterwards.
struct Scene {
    ScratchDir work, outside;
    fs::path folder;         ///< where the entry point looks for its item
    std::string name;        ///< the item's name there
    std::string suffix;      ///< added to the path the command is given ("/")
    std::string skip;        ///< why this attack cannot be made here
    std::vector<std::pair<fs::path, std::pair<std::string, fs::perms>>> kept;
    std::vector<std::function<std::string()>> keptDeep; ///< checks returning what is wrong, or ""
    std::vector<std::unique_ptr<testsupport::PausedChild>> children;
    std::vector<std::unique_ptr<testsupport::ScratchMount>> mounts;
    std::unique_ptr<testsupport::LoopImage> image;
    std::vector<fs::path> immutable;

    fs::path item() const { return folder / name; }
    /// `path` must be found as it is now.
    void keep(const fs::path& path) {
        kept.push_back({path, {readFile(path), fs::status(path).permissions()}});
    }
    ~Scene() {
        children.clear(); // nothing holds the files any more before they are set free and unmounted
        for (const auto& path : immutable)
            testsupport::runQuietly("chattr -i " + shellQuoted(path));
        for (auto it = mounts.rbegin(); it != mounts.rend(); ++it)
            (*it)->unmount();
    }
};

struct Entry {
    std::string name;
    bool automatic; ///< cleans on its own, not a path the user named
    /// Removes whatever it finds, in use or not (the trash: the user put it there to be gone).
    bool takesAll = false;
    std::function<void(Scene&)> prepare; ///< sets the scene's folder and name
    std::function<void(Scene&, testsupport::RecordingSink&, testsupport::RecordingVerdicts&)> run;
};

struct Attack {
    std::string name;
    std::function<void(Scene&, const Entry&)> make;
    /// The entry points the attack means something to; all when empty.
    std::function<bool(const Entry&)> applies = {};
};

bool named(const Entry& e, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(), [&e](const char* n) { return e.name == n; });
}

platform::Platform& native() {
    static const auto platform = platform::createNative();
    return *platform;
}

const std::vector<Entry>& entries() {
    static const std::vector<Entry> all = {
        {"shred", false, false, [](Scene& s) { s.folder = s.work.path(), s.name = "target"; },
         [](Scene& s, testsupport::RecordingSink& p, testsupport::RecordingVerdicts& v) {
             testsupport::SecureDeleteRecorder view;
             wipe::SecureDelete(native(), view, p, &v).WipeFile(s.item().string() + s.suffix);
         }},
        {"shred-dir", false, false,
         [](Scene& s) {
             s.folder = s.work.path() / "victim", s.name = "target";
             fs::create_directories(s.folder);
         },
         [](Scene& s, testsupport::RecordingSink& p, testsupport::RecordingVerdicts& v) {
             testsupport::SecureDeleteRecorder view;
             wipe::SecureDelete(native(), view, p, &v).WipeFolder(s.folder.string() + s.suffix);
         }},
        {"indexdat wipe", false, false, [](Scene& s) { s.folder = s.work.path(), s.name = "index.dat"; },
         [](Scene& s, testsupport::RecordingSink& p, testsupport::RecordingVerdicts& v) {
             indexdat::WipeFileContents(native(), s.item().string() + s.suffix, [](double) { return true; }, &p, &v);
         }},
        {"temp clean", true, false, [](Scene& s) { s.folder = s.work.path(), s.name = "target"; },
         [](Scene& s, testsupport::RecordingSink& p, testsupport::RecordingVerdicts& v) {
             cleaning::ListView view;
             cleaning::TraceCleaner cleaner(native(), view, &p, &v);
             cleaning::FolderPaths paths;
             paths.TempPath = s.folder.string();
             cleaner.SetPaths(paths);
             cleaner.CleanTempFolder();
         }},
        {"cookie records", true, false, [](Scene& s) { s.folder = s.work.path(), s.name = "index.dat"; },
         [](Scene& s, testsupport::RecordingSink& p, testsupport::RecordingVerdicts& v) {
             cleaning::ListView view;
             cleaning::TraceCleaner cleaner(native(), view, &p, &v);
             cleaning::FolderPaths paths;
             paths.CookiesPath = s.folder.string();
             cleaner.SetPaths(paths);
             cleaner.CleanAll();
         }},
        {"trash", true, true,
         [](Scene& s) {
             const fs::path trash = fs::path(std::getenv("XDG_DATA_HOME")) / "Trash";
             fs::remove_all(trash);
             fs::create_directories(trash / "files");
             fs::create_directories(trash / "info");
             std::ofstream(trash / "info/target.trashinfo") << "[Trash Info]\nPath=/somewhere/target\n";
             s.folder = trash / "files", s.name = "target";
         },
         [](Scene&, testsupport::RecordingSink& p, testsupport::RecordingVerdicts&) {
             core::SilentPrompts silent;
             cleaning::CleanIT(native(), silent, &p).EmptyRecycleBin("", true, true, true);
         }},
        {"browser cache", true, true,
         [](Scene& s) {
             // A Chromium profile of the scratch home, whose compiled-script cache holds the item.
             const fs::path profile = fs::path(std::getenv("XDG_CONFIG_HOME")) / "chromium/Default";
             fs::remove_all(profile);
             fs::create_directories(profile / "Code Cache/js");
             std::ofstream(profile / "Preferences") << "{}";
             s.folder = profile / "Code Cache/js", s.name = "target";
         },
         [](Scene&, testsupport::RecordingSink& p, testsupport::RecordingVerdicts& v) {
             cleaning::ListView view;
             cleaning::TraceCleaner(native(), view, &p, &v).CleanAll();
         }},
        {"free-space temporary file", true, false, [](Scene& s) { s.folder = s.work.path(), s.name = "WNXTEMP.000"; },
         [](Scene& s, testsupport::RecordingSink& p, testsupport::RecordingVerdicts&) {
             testsupport::FreeSpaceRecorder view;
             try {
                 wipe::FreeSpaceWipe(native(), view, p)
                     .run(s.folder.string(), core::Currency::fromWhole(65536), wipe::FreeSpaceWipe::fixedIncrement());
             } catch (const std::exception&) {
                 // the file object refusing its file: the run ends, which is all this test asks
             }
         }},
    };
    return all;
}

/// A secret file outside the work folder, kept, and `link`ed into the item's place by `how`.
fs::path secretOutside(Scene& s, fs::perms perms = fs::perms::owner_read | fs::perms::group_read) {
    const fs::path secret = s.outside.write("secret.txt", std::string(3000, 'S'));
    fs::permissions(secret, perms, fs::perm_options::replace);
    s.keep(secret);
    return secret;
}

const std::vector<Attack>& attacks() {
    static const std::vector<Attack> all = {
        {"a hard link to a read-only file outside",
         [](Scene& s, const Entry&) { fs::create_hard_link(secretOutside(s), s.item()); }},
        {"a link to a file outside", [](Scene& s, const Entry&) { fs::create_symlink(secretOutside(s), s.item()); }},
        {"a link to a folder outside",
         [](Scene& s, const Entry&) {
             secretOutside(s);
             fs::create_directory_symlink(s.outside.path(), s.item());
         }},
        {"a link in a parent folder",
         [](Scene& s, const Entry&) {
             const fs::path real = s.outside.path() / "real";
             fs::create_directories(real);
             std::ofstream(real / s.name) << std::string(3000, 'P');
             s.keep(real / s.name);
             fs::create_directory_symlink(real, s.work.path() / "parent-link");
             s.folder = s.work.path() / "parent-link";
         },
         // The roots of automatic cleaning come from the user's own settings; paths the user names
         // are walked.
         [](const Entry& e) { return !e.automatic; }},
        {"a link given with a trailing slash",
         [](Scene& s, const Entry&) {
             secretOutside(s);
             fs::remove(s.folder);
             fs::create_directory_symlink(s.outside.path(), s.folder);
             s.suffix = "/";
         },
         [](const Entry& e) { return named(e, {"shred-dir"}); }},
        {"a bind mount of a folder outside",
         [](Scene& s, const Entry&) {
             secretOutside(s);
             fs::create_directories(s.item());
             s.mounts.push_back(
                 std::make_unique<testsupport::ScratchMount>("--bind " + shellQuoted(s.outside.path()), s.item()));
             if (!s.mounts.back()->mounted())
                 s.skip = s.mounts.back()->reason();
         }},
        {"the named folder is a mount point",
         [](Scene& s, const Entry&) {
             secretOutside(s); // the mount's own files: shredding them first and refusing after is the fault
             s.mounts.push_back(
                 std::make_unique<testsupport::ScratchMount>("--bind " + shellQuoted(s.outside.path()), s.folder));
             if (!s.mounts.back()->mounted())
                 s.skip = s.mounts.back()->reason();
         },
         [](const Entry& e) { return named(e, {"shred-dir"}); }},
        {"a file open in another process",
         [](Scene& s, const Entry&) {
             std::ofstream(s.item()) << std::string(3000, 'O');
             s.keep(s.item());
             s.children.push_back(std::make_unique<testsupport::PausedChild>(
                 [path = s.item()] { return ::open(path.c_str(), O_RDONLY) >= 0; }));
             s.keptDeep.push_back([ready = s.children.back()->ready()] { return ready ? "" : "the holder did not start"; });
         },
         [](const Entry& e) { return !e.takesAll; }},
        {"a file mapped by another process",
         [](Scene& s, const Entry&) {
             std::ofstream(s.item()) << std::string(5000, 'W');
             s.keep(s.item());
             s.children.push_back(mapInChild(s.item()));
             if (!s.children.back()->ready())
                 s.skip = "mapping in a child failed";
         },
         [](const Entry& e) { return !e.takesAll; }},
        {"a pipe", [](Scene& s, const Entry&) { ASSERT_EQ(::mkfifo(s.item().c_str(), 0600), 0); }},
        {"an immutable file",
         [](Scene& s, const Entry&) {
             std::ofstream(s.item()) << std::string(3000, 'I');
             if (!Root || !testsupport::runQuietly("chattr +i " + shellQuoted(s.item()) + " 2>/dev/null"))
                 return void(s.skip = "chattr +i needs root and a filesystem that has the flag");
             s.immutable.push_back(s.item());
             s.keep(s.item());
         }},
        {"another user's file",
         [](Scene& s, const Entry&) {
             if (!Root)
                 return void(s.skip = "giving a file away needs root");
             std::ofstream(s.item()) << std::string(3000, 'U');
             ASSERT_EQ(::chown(s.item().c_str(), 65534, 65534), 0);
             s.keep(s.item());
         },
         [](const Entry& e) { return e.automatic && !e.takesAll; }},
        {"a file held open below a path longer than the system's limit",
         [](Scene& s, const Entry&) {
             fs::create_directories(s.item());
             std::vector<std::string> chain;
             int at = ::open(s.item().c_str(), O_RDONLY | O_DIRECTORY);
             for (int i = 0; i < 24; ++i) {
                 chain.push_back(std::string(200, static_cast<char>('a' + i)));
                 ::mkdirat(at, chain.back().c_str(), 0700);
                 const int next = ::openat(at, chain.back().c_str(), O_RDONLY | O_DIRECTORY);
                 ::close(at);
                 at = next;
             }
             const int fd = ::openat(at, "deep.txt", O_WRONLY | O_CREAT, 0600);
             (void)!::write(fd, "DEEP-AND-HELD", 13);
             ::close(fd);
             ::close(at);
             const fs::path top = s.item();
             s.children.push_back(std::make_unique<testsupport::PausedChild>([&] {
                 const int at = openDeep(top, chain);
                 return at >= 0 && ::openat(at, "deep.txt", O_RDONLY) >= 0;
             }));
             if (!s.children.back()->ready())
                 return void(s.skip = "holding the deep file failed");
             s.keptDeep.push_back([top, chain] {
                 const std::string now = readDeep(top, chain, "deep.txt");
                 return now == "DEEP-AND-HELD" ? "" : "the deep file now holds " + now;
             });
         },
         // The one walk into subfolders that keeps what is in use there.
         [](const Entry& e) { return named(e, {"temp clean"}); }},
        {"a sparse file larger than its drive",
         [](Scene& s, const Entry&) {
             s.image = std::make_unique<testsupport::LoopImage>(s.work.path(), 16);
             if (!s.image->mounted())
                 return void(s.skip = s.image->reason());
             s.folder = s.image->mountPoint();
             {
                 std::ofstream out(s.item());
                 out.seekp(8192); // behind the header an activity overwrite keeps
                 out << "SPARSE-SECRET-0f3c";
             }
             fs::resize_file(s.item(), std::uint64_t{4} << 30);
             auto* image = s.image.get();
             const fs::path item = s.item();
             s.keptDeep.push_back([image, item] {
                 image->sync();
                 if (image->imageContains("SPARSE-SECRET-0f3c"))
                     return std::string("the secret is still on the drive");
                 return std::string();
             });
         },
         [](const Entry& e) { return named(e, {"shred", "indexdat wipe", "temp clean"}); }},
    };
    return all;
}

class DestructionMatrix : public ::testing::TestWithParam<std::tuple<std::size_t, std::size_t>> {};

TEST_P(DestructionMatrix, LeavesWhatWasNotAskedForAndNeverCallsItOverwritten) {
    const Entry& entry = entries()[std::get<0>(GetParam())];
    const Attack& attack = attacks()[std::get<1>(GetParam())];
    Scene scene;
    entry.prepare(scene);
    attack.make(scene, entry);
    if (!scene.skip.empty())
        GTEST_SKIP() << scene.skip;
    const fs::path item = scene.item();
    const bool sparse = scene.image != nullptr;

    testsupport::RecordingSink problems;
    testsupport::RecordingVerdicts verdicts;
    entry.run(scene, problems, verdicts);

    for (const auto& [path, was] : scene.kept) {
        EXPECT_TRUE(readFile(path) == was.first) << path << " changed";
        EXPECT_EQ(fs::status(path).permissions(), was.second) << path << " had its permissions changed";
    }
    for (const auto& check : scene.keptDeep)
        EXPECT_EQ(check(), "");
    for (const auto& v : verdicts.all) {
        if (sparse) // the attack there is on the drive, not on the file: it must be overwritten
            EXPECT_TRUE(v.overwritten || v.folder) << v.item << ": " << v.why;
        else
            EXPECT_FALSE(v.overwritten && v.item == item.string()) << v.item << " called overwritten";
    }
}

std::string caseName(const ::testing::TestParamInfo<DestructionMatrix::ParamType>& info) {
    std::string name = entries()[std::get<0>(info.param)].name + "_against_" + attacks()[std::get<1>(info.param)].name;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}

std::vector<std::tuple<std::size_t, std::size_t>> cases() {
    std::vector<std::tuple<std::size_t, std::size_t>> all;
    for (std::size_t e = 0; e < entries().size(); ++e)
        for (std::size_t a = 0; a < attacks().size(); ++a)
            if (!attacks()[a].applies || attacks()[a].applies(entries()[e]))
                all.emplace_back(e, a);
    return all;
}

INSTANTIATE_TEST_SUITE_P(EveryEntryAgainstEveryAttack, DestructionMatrix, ::testing::ValuesIn(cases()), caseName);

} // namespace
