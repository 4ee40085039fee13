// Saves killed part-way, in child processes: the target holds the old world or the new one,
// and once the next save has run, nothing else is left beside it. Each save is killed at
// chosen bytes of the new file (a file size limit ends the child as its write crosses it) and
// at chosen moments (SIGKILL), through unnamed files and through named scratch files.
#include "WorldGen.h"
#include "io/AtomicFile.h"
#include "io/WorldFile.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace zelmar;
using iotest::TempDir;
namespace fs = std::filesystem;

namespace {

struct Mode {
    bool unnamed;
    const char* name;
};

std::vector<std::string> filesIn(const std::string& dir) {
    std::vector<std::string> out;
    for (const auto& e : fs::directory_iterator(dir))
        out.push_back(e.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
}

// A child that saves `w` to `path` after telling the parent it starts; ended by a file size
// limit of `limit` bytes (0: none). Answers its process number once it is about to save.
pid_t startSave(const World& w, Group* root, const std::string& path, rlim_t limit) {
    int ready[2];
    if (::pipe(ready) != 0) return -1;
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(ready[0]);
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        if (limit) {
            const rlimit size{limit, limit};
            ::setrlimit(RLIMIT_FSIZE, &size);
        }
        ::write(ready[1], "s", 1);
        std::string error;
        ::_exit(io::saveWorld(w, path, root, 0x1203, error) ? 0 : 1);
    }
    ::close(ready[1]);
    char c;
    while (::read(ready[0], &c, 1) < 0 && errno == EINTR) {
    }
    ::close(ready[0]);
    return pid;
}

int waitFor(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

TEST(WorldSave, AKilledSaveLeavesTheOldOrTheNewWorldAndNoStrayFileAfterTheNextSave) {
    World w;
    iotest::GenSize size;
    size.groups = 20, size.polygons = 3000, size.bitmaps = 0, size.animations = 1;
    Group* root = iotest::makeRandomWorld(w, 21, size);
    for (const Mode mode : {Mode{true, "unnamed"}, Mode{false, "named"}}) {
        io::useUnnamedFiles(mode.unnamed);
        for (const char* ext : {".wld", ".zelmar", ".tolvane", ".3dzelmar"}) {
            // The classic path is the same for every format: one text and one binary suffice.
            if (!mode.unnamed && (ext == std::string(".tolvane") || ext == std::string(".3dzelmar"))) continue;
            SCOPED_TRACE(std::string(mode.name) + " " + ext);
            TempDir dir;
            const std::string path = dir / (std::string("world") + ext);
            std::string error;
            root->name = "old";
            ASSERT_TRUE(io::saveWorld(w, path, root, 0x1203, error)) << error;
            const std::vector<uint8_t> oldBytes = iotest::fileBytes(path);
            root->name = "new";
            const auto t0 = std::chrono::steady_clock::now();
            ASSERT_TRUE(io::saveWorld(w, dir / (std::string("reference") + ext), root, 0x1203, error));
            const auto took = std::chrono::steady_clock::now() - t0;
            const std::vector<uint8_t> newBytes = iotest::fileBytes(dir / (std::string("reference") + ext));
            ASSERT_NE(oldBytes, newBytes);
            const std::vector<std::string> expected = filesIn(dir.path);

            int leftOld = 0, leftNew = 0;
            auto check = [&](int status, const std::string& how) {
                SCOPED_TRACE(how);
                EXPECT_TRUE(WIFSIGNALED(status) || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) << status;
                const std::vector<uint8_t> now = iotest::fileBytes(path);
                EXPECT_TRUE(now == oldBytes || now == newBytes) << "a damaged world of " << now.size() << " bytes";
                (now == oldBytes ? leftOld : leftNew)++;
                // The next save puts the new world in place and leaves nothing else behind.
                ASSERT_TRUE(io::saveWorld(w, path, root, 0x1203, error)) << error;
                EXPECT_EQ(iotest::fileBytes(path), newBytes);
                EXPECT_EQ(filesIn(dir.path), expected);
                // Back to the old world for the next kill.
                root->name = "old";
                ASSERT_TRUE(io::saveWorld(w, path, root, 0x1203, error)) << error;
                root->name = "new";
            };
            // Killed as the new file's write crosses a chosen byte.
            for (int k = 1; k <= 3; ++k) {
                const rlim_t limit = newBytes.size() * k / 4;
                check(waitFor(startSave(w, root, path, limit)), "limit " + std::to_string(limit));
            }
            // Killed at chosen moments of a save that takes `took` here.
            for (int k = 0; k <= 4; ++k) {
                const pid_t pid = startSave(w, root, path, 0);
                std::this_thread::sleep_for(took * k / 2);
                ::kill(pid, SIGKILL);
                check(waitFor(pid), "killed after " + std::to_string(k) + " half saves");
            }
            EXPECT_GE(leftOld, 3); // the file size limits at least
            RecordProperty(std::string(mode.name) + ext, std::to_string(leftOld) + " old, " +
                                                             std::to_string(leftNew) + " new");
        }
    }
    io::useUnnamedFiles(true);
}

// Scratch files of processes that still run are another save in progress: left alone.
TEST(WorldSave, ScratchFilesOfARunningSaveAreLeftAlone) {
    TempDir dir;
    const std::string target = dir / "w.wld";
    const std::string mine = dir / (io::scratchPrefix(target) + std::to_string(::getpid()) + "-abcdef");
    const std::string dead = dir / (io::scratchPrefix(target) + "2147483646-abcdef");
    const std::string other = dir / (io::scratchPrefix(dir / "x.wld") + "2147483646-abcdef");
    for (const std::string& f : {mine, dead, other})
        std::fclose(std::fopen(f.c_str(), "w"));
    EXPECT_EQ(io::removeStaleScratchFiles(target), 1);
    EXPECT_TRUE(fs::exists(mine));
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_TRUE(fs::exists(other)); // another world's
}

} // namespace
