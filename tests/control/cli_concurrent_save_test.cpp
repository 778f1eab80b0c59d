// Saves of the real kestrel program under stress: two writers of one project at once,
// a writer that must wait for another, and saves killed at any moment, with and without
// unnamed files (O_TMPFILE). Afterwards the project is the old one or the new one, and
// nothing else is left in its folder.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

#include "support/kestrel_process.h"
#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;
using Clock = std::chrono::steady_clock;

// A header of `classes` classes of 50 functions each.
void WriteHeader(const fs::path& path, const std::string& stem, int classes) {
    std::ofstream out(path);
    for (int c = 0; c < classes; ++c) {
        out << "class " << stem << "_" << c << " {\npublic:\n";
        for (int m = 0; m < 50; ++m) out << "    void member_" << m << "(int first_" << m << ", const char* second);\n";
        out << "};\n";
    }
}

std::set<std::string> Entries(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
}

// Whether the descriptor `fd` of process `pid` was opened for writing.
bool OpenForWriting(pid_t pid, const std::string& fd) {
    std::ifstream info("/proc/" + std::to_string(pid) + "/fdinfo/" + fd);
    std::string field;
    unsigned long flags = 0;
    while (info >> field)
        if (field == "flags:" && info >> std::oct >> flags) return (flags & O_ACCMODE) != O_RDONLY;
    return false;
}

// The file in `folder` that the process has open for writing, if any: the new project
// file it is writing.
std::string FileBeingWritten(pid_t pid, const fs::path& folder) {
    std::error_code ec;
    for (const auto& fd : fs::directory_iterator("/proc/" + std::to_string(pid) + "/fd", ec)) {
        std::error_code unreadable;
        const fs::path target = fs::read_symlink(fd.path(), unreadable);
        if (!unreadable && target.parent_path() == folder && OpenForWriting(pid, fd.path().filename().string()))
            return target.filename().string();
    }
    return {};
}

class CliConcurrentSave : public ::testing::Test {
protected:
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }

    // A project of `files` headers of 100 classes, and extra.h waiting to be added.
    void MakeProject(int files) {
        fs::create_directories(dir / "src");
        for (int f = 0; f < files; ++f) WriteHeader(dir / "src" / ("f" + std::to_string(f) + ".h"), "F" + std::to_string(f), 100);
        WriteHeader(dir / "extra.h", "Extra", 1);
        Outcome made = Kestrel("new big.kpr src");
        ASSERT_EQ(made.status, 0) << made.err;
    }

    // Starts adding extra.h to big.kpr, waits until the process writes the new project
    // file (or ends), then kills it; answers the name of that file, empty when the
    // process ended first.
    std::string KillWhileWriting(SpawnOptions options, std::mt19937& random) {
        const pid_t pid = SpawnKestrel(dir, {"add", "big.kpr", "extra.h"}, options);
        std::string writing;
        int raw = 0;
        while (writing.empty() && ::waitpid(pid, &raw, WNOHANG) == 0) writing = FileBeingWritten(pid, dir);
        if (!writing.empty()) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
            ::kill(pid, SIGKILL);
            WaitFor(pid);
        }
        return writing;
    }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

TEST_F(CliConcurrentSave, TwoWritersAtOnceLoseNothing) {
    MakeProject(4);
    constexpr int kTrials = 12;
    for (int trial = 0; trial < kTrials; ++trial) {
        const std::string a = "a" + std::to_string(trial) + ".h", b = "b" + std::to_string(trial) + ".h";
        WriteHeader(dir / a, "A" + std::to_string(trial), 1);
        WriteHeader(dir / b, "B" + std::to_string(trial), 1);
        const pid_t first = SpawnKestrel(dir, {"add", "big.kpr", a});
        const pid_t second = SpawnKestrel(dir, {"add", "big.kpr", b});
        EXPECT_EQ(WaitFor(first), 0);
        EXPECT_EQ(WaitFor(second), 0);
    }
    Outcome tree = Kestrel("tree --files big.kpr");
    ASSERT_EQ(tree.status, 0);
    int lost = 0;
    for (int trial = 0; trial < kTrials; ++trial)
        for (const char* stem : {"a", "b"})
            lost += tree.out.find("    " + (stem + std::to_string(trial)) + ".h\n") == std::string::npos;
    EXPECT_EQ(lost, 0);
}

TEST_F(CliConcurrentSave, AWriterWaitsForTheLockThenGivesUpNamingTheProject) {
    MakeProject(1);
    const std::string before = ReadFileBytes(dir / "big.kpr");
    // Another writer holds the lock: the lock is on the project's folder.
    const int held = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);  // not handed to kestrel
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    const auto start = Clock::now();
    Outcome refused = Kestrel("add big.kpr extra.h --wait 1");
    EXPECT_GE(Clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "kestrel: big.kpr: another program is writing this project; gave up after 1 s "
                           "(--wait SECONDS waits longer)\n");
    EXPECT_TRUE(ReadFileBytes(dir / "big.kpr") == before);
    // Readers need no lock.
    EXPECT_EQ(Kestrel("dump big.kpr").status, 0);
    // A writer that waits long enough goes on once the lock is let go.
    const pid_t waiting = SpawnKestrel(dir, {"add", "--wait", "20", "big.kpr", "extra.h"});
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    int raw = 0;
    EXPECT_EQ(::waitpid(waiting, &raw, WNOHANG), 0);
    ::close(held);
    EXPECT_EQ(WaitFor(waiting), 0);
    EXPECT_NE(Kestrel("tree --files big.kpr").out.find("    extra.h\n"), std::string::npos);
}

TEST_F(CliConcurrentSave, AKilledSaveLeavesTheOldOrTheNewProjectAndNothingElse) {
    MakeProject(40);
    const std::string oldProject = ReadFileBytes(dir / "big.kpr");
    const auto start = Clock::now();
    ASSERT_EQ(Kestrel("add big.kpr extra.h").status, 0);
    const auto duration = Clock::now() - start;
    const std::string newProject = ReadFileBytes(dir / "big.kpr");
    ASSERT_NE(newProject, oldProject);
    const std::set<std::string> entries = Entries(dir);

    std::mt19937 random(20261124);
    int killedWhileWriting = 0, endedNew = 0;
    for (int trial = 0; trial < 16; ++trial) {
        WriteFileBytes(dir / "big.kpr", oldProject);
        if (trial % 2 == 0) {
            killedWhileWriting += !KillWhileWriting({}, random).empty();
        } else {
            // Any moment of the whole run, from starting up to renaming.
            const pid_t pid = SpawnKestrel(dir, {"add", "big.kpr", "extra.h"});
            std::this_thread::sleep_for(duration * (trial / 2 + std::uniform_real_distribution<>(0, 1)(random)) / 8);
            ::kill(pid, SIGKILL);
            WaitFor(pid);
        }
        EXPECT_EQ(Entries(dir), entries) << "trial " << trial;
        const std::string now = ReadFileBytes(dir / "big.kpr");
        EXPECT_TRUE(now == oldProject || now == newProject) << "trial " << trial;
        endedNew += now == newProject;
    }
    EXPECT_GE(killedWhileWriting, 4);
    EXPECT_LT(endedNew, 16);
    EXPECT_EQ(Kestrel("dump big.kpr").status, 0);
}

TEST_F(CliConcurrentSave, WithoutUnnamedFilesANamedTemporaryServesAndAKilledOneGoesWithTheNextSave) {
    MakeProject(20);
    const std::string oldProject = ReadFileBytes(dir / "big.kpr");
    const std::set<std::string> entries = Entries(dir);
    // A save killed while writing its named temporary leaves it behind.
    std::mt19937 random(7);
    const std::string temporary = KillWhileWriting({.withoutUnnamedFiles = true}, random);
    ASSERT_TRUE(temporary.starts_with(".kestrel-save-")) << temporary;
    EXPECT_TRUE(fs::exists(dir / temporary));
    EXPECT_TRUE(ReadFileBytes(dir / "big.kpr") == oldProject);
    // A temporary of a process that still runs (this one) is not touched; those that
    // earlier saves named after the project go when their process is gone.
    const std::string live = ".kestrel-save-" + std::to_string(::getpid()) + "-0";
    WriteFileBytes(dir / live, "in the making");
    const pid_t gone = ::fork();
    if (gone == 0) ::_exit(0);
    WaitFor(gone);
    const std::string earlier = "big.kpr.tmp" + std::to_string(gone) + "-1";
    WriteFileBytes(dir / earlier, "left by a kill");
    const std::string others = "other.kpr.tmp" + std::to_string(gone) + "-1";
    WriteFileBytes(dir / others, "not this project's");
    // The next save in the folder removes what the dead one left, and saves as ever.
    const pid_t pid = SpawnKestrel(dir, {"add", "big.kpr", "extra.h"}, {.withoutUnnamedFiles = true});
    ASSERT_EQ(WaitFor(pid), 0);
    EXPECT_FALSE(fs::exists(dir / temporary));
    EXPECT_FALSE(fs::exists(dir / earlier));
    EXPECT_EQ(ReadFileBytes(dir / live), "in the making");
    fs::remove(dir / live);
    EXPECT_TRUE(fs::exists(dir / others));
    fs::remove(dir / others);
    EXPECT_EQ(Entries(dir), entries);
    const std::string viaTemporary = ReadFileBytes(dir / "big.kpr");
    WriteFileBytes(dir / "big.kpr", oldProject);
    ASSERT_EQ(Kestrel("add big.kpr extra.h").status, 0);
    EXPECT_TRUE(ReadFileBytes(dir / "big.kpr") == viaTemporary);
}

}  // namespace
