// The project-writing commands of the real kestrel program destroy nothing by accident:
// not a file that is no project, not a project behind a symbolic link, not a project
// that was not read whole, and not the entries of sources that cannot be read.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "support/scratch.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrel::test;

std::string N(int32_t n) {
    const auto u = static_cast<uint32_t>(n);
    return {char(u & 0xFF), char(u >> 8 & 0xFF), char(u >> 16 & 0xFF), char(u >> 24 & 0xFF)};
}
std::string S(const std::string& text) { return N(static_cast<int32_t>(text.size())) + text; }

class CliWriteSafety : public ::testing::Test {
protected:
    Outcome Kestrel(const std::string& args) { return RunKestrel(dir, args); }
    std::string Bytes(const std::string& name) { return ReadFileBytes(dir / name); }
    void Source(const std::string& name, const std::string& text) {
        fs::create_directories((dir / name).parent_path());
        WriteFileBytes(dir / name, text);
    }
    // The dump's lines that name files and classes, without the counts.
    std::string Outline(const std::string& project) {
        Outcome dump = Kestrel("dump " + project);
        EXPECT_EQ(dump.status, 0) << dump.err;
        std::string outline;
        size_t from = 0;
        while (from < dump.out.size()) {
            const size_t end = dump.out.find('\n', from);
            const std::string line = dump.out.substr(from, end - from);
            if (line.starts_with("file ") || line.starts_with("  class "))
                outline += line.substr(0, line.find('"', line.find('"') + 1) + 1) + "\n";
            from = end + 1;
        }
        return outline;
    }

    ScratchDir scratch;
    const fs::path& dir = scratch.path();
};

TEST_F(CliWriteSafety, NewRefusesToWriteOverAFileThatIsNoProjectUnlessForced) {
    const std::string source = "#include \"shapes.h\"\nint Shape::count_ = 0;\n";
    Source("shapes.cpp", source);
    Source("shapes.h", "class Shape {\npublic:\n    void Move();\n};\n");
    Source("empty.kpr", "");
    // The arguments swapped: the source file is kept.
    Outcome swapped = Kestrel("new shapes.cpp shapes.h");
    EXPECT_EQ(swapped.status, 1);
    EXPECT_EQ(swapped.err, "kestrel: shapes.cpp: exists and is not a kestrel project file; not writing over it "
                           "(--force does)\n");
    EXPECT_EQ(Bytes("shapes.cpp"), source);
    EXPECT_EQ(Kestrel("new empty.kpr shapes.h").status, 1);
    EXPECT_EQ(Bytes("empty.kpr"), "");
    // A project is written over, as ever; so is anything with --force.
    ASSERT_EQ(Kestrel("new p.kpr shapes.h").status, 0);
    Outcome again = Kestrel("new p.kpr shapes.cpp --id 7");
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(Bytes("p.kpr").substr(0, 22), S("KESTREL1.1") + N(0) + N(7));
    Outcome forced = Kestrel("new empty.kpr --force shapes.h");
    EXPECT_EQ(forced.status, 0) << forced.err;
    EXPECT_EQ(Outline("empty.kpr"), "file \"shapes.h\"\n  class \"Shape\"\n");
}

TEST_F(CliWriteSafety, ASaveWritesThroughSymbolicLinks) {
    Source("src/a.h", "class A {\npublic:\n    void Run();\n};\n");
    Source("src/b.h", "class B {\npublic:\n    void Stop();\n};\n");
    fs::create_directories(dir / "store");
    ASSERT_EQ(Kestrel("new store/p.kpr src/a.h").status, 0);
    // A relative link, and a link to that link from another folder.
    fs::create_symlink("store/p.kpr", dir / "link.kpr");
    fs::create_directories(dir / "other");
    fs::create_symlink(dir / "link.kpr", dir / "other" / "chain.kpr");
    Outcome added = Kestrel("add other/chain.kpr src/b.h");
    ASSERT_EQ(added.status, 0) << added.err;
    EXPECT_TRUE(fs::is_symlink(dir / "link.kpr"));
    EXPECT_TRUE(fs::is_symlink(dir / "other" / "chain.kpr"));
    EXPECT_EQ(Outline("store/p.kpr"), "file \"../src/a.h\"\n  class \"A\"\nfile \"../src/b.h\"\n  class \"B\"\n");
    // A link to a project not made yet makes it where the link points; names are kept
    // relative to that file, so that every link to it finds the same sources.
    fs::create_symlink("store/q.kpr", dir / "new.kpr");
    ASSERT_EQ(Kestrel("new new.kpr src/a.h").status, 0);
    EXPECT_TRUE(fs::is_symlink(dir / "new.kpr"));
    EXPECT_EQ(Outline("store/q.kpr"), "file \"../src/a.h\"\n  class \"A\"\n");
    ASSERT_EQ(Kestrel("update other/chain.kpr").status, 0);
    fs::create_directories(dir / "deep" / "er");
    fs::create_symlink("../../store/q.kpr", dir / "deep" / "er" / "q.kpr");
    Outcome deep = Kestrel("update deep/er/q.kpr");
    EXPECT_EQ(deep.status, 0) << deep.err;
    EXPECT_EQ(Outline("store/q.kpr"), "file \"../src/a.h\"\n  class \"A\"\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir / "store"), {}), 2);
}

TEST_F(CliWriteSafety, ASaveKeepsTheModeAndTheOwnerOfTheFileItReplaces) {
    Source("a.h", "class A {\npublic:\n    void Run();\n};\n");
    ASSERT_EQ(Kestrel("new p.kpr a.h").status, 0);
    ASSERT_EQ(::chmod((dir / "p.kpr").c_str(), 0640), 0);
    const bool superuser = ::geteuid() == 0;  // only the superuser can give a file away
    if (superuser) {
        ASSERT_EQ(::chown((dir / "p.kpr").c_str(), 65534, 65534), 0);
    }
    ASSERT_EQ(Kestrel("update p.kpr").status, 0);
    struct stat info {};
    ASSERT_EQ(::stat((dir / "p.kpr").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    if (superuser) {
        EXPECT_EQ(info.st_uid, 65534u);
    }
}

TEST_F(CliWriteSafety, AProjectNotReadWholeIsNotSavedOverUnlessForced) {
    Source("b.h", "class B {\npublic:\n    void Stop();\n};\n");
    // A file record that holds the class A twice: the second stops the reading.
    const std::string emptyClass = S("A") + N(3) + S("") + N(0) + N(0) + N(0);
    const std::string damaged = S("KESTREL1.1") + N(0) + N(0) + N(1) + S("a.h") + N(2) + N(2) + N(0) + S("") +
                                emptyClass + emptyClass;
    WriteFileBytes(dir / "p.kpr", damaged);
    const std::string report = "kestrel: error in clsOneFile.cls";
    for (const char* command : {"add p.kpr b.h", "remove p.kpr a.h", "update p.kpr"}) {
        Outcome refused = Kestrel(command);
        EXPECT_EQ(refused.status, 1) << command;
        EXPECT_EQ(refused.err.find(report), 0u) << refused.err;
        EXPECT_NE(refused.err.find("kestrel: p.kpr: was not read whole (see above); not saving over it (--force does)\n"),
                  std::string::npos)
            << refused.err;
        EXPECT_EQ(Bytes("p.kpr"), damaged) << command;
    }
    Outcome dump = Kestrel("dump p.kpr");
    EXPECT_EQ(dump.status, 1);
    EXPECT_EQ(dump.err.find(report), 0u);
    // Forced, the save goes ahead, and the status still tells of the error.
    Outcome forced = Kestrel("add p.kpr b.h --force");
    EXPECT_EQ(forced.status, 1);
    EXPECT_EQ(Outline("p.kpr"), "file \"a.h\"\n  class \"A\"\nfile \"b.h\"\n  class \"B\"\n");
}

TEST_F(CliWriteSafety, SourcesThatCannotBeReadAreNamedAndNoneReadableWritesNothing) {
    Source("src/a.h", "class A {\npublic:\n    void Run();\n};\n");
    Source("src/b.h", "class B {\npublic:\n    void Stop();\n};\n");
    Source("src/notes.txt", "listed, never read\n");
    ASSERT_EQ(Kestrel("new p.kpr src").status, 0);
    ASSERT_EQ(Kestrel("add p.kpr src/notes.txt").status, 0);
    const std::string project = Bytes("p.kpr");
    // Moved without its sources: nothing can be read, so nothing is written.
    fs::create_directories(dir / "moved");
    fs::copy_file(dir / "p.kpr", dir / "moved" / "p.kpr");
    Outcome moved = Kestrel("update moved/p.kpr");
    EXPECT_EQ(moved.status, 1);
    const std::string missing = ": cannot be read: No such file or directory\n";
    EXPECT_EQ(moved.err, "kestrel: " + (dir / "moved/src/a.h").string() + missing + "kestrel: " +
                             (dir / "moved/src/b.h").string() + missing +
                             "kestrel: moved/p.kpr: none of its files can be read; nothing written\n");
    EXPECT_EQ(Bytes("moved/p.kpr"), project);
    // One of them gone: it is named, the rest is saved.
    fs::remove(dir / "src/b.h");
    Outcome partly = Kestrel("update p.kpr");
    EXPECT_EQ(partly.status, 1);
    EXPECT_EQ(partly.err, "kestrel: " + (dir / "src/b.h").string() + missing);
    EXPECT_EQ(Outline("p.kpr"), "file \"src/a.h\"\n  class \"A\"\nfile \"src/b.h\"\nfile \"src/notes.txt\"\n");
    // A file that exists but cannot be opened for reading, added: a socket.
    const std::string socketPath = (dir / "src/socket.h").string();
    const int sock = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(::bind(sock, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    Source("src/c.h", "class C {\n    int c;\n};\n");
    Outcome added = Kestrel("add p.kpr src/socket.h src/c.h");
    ::close(sock);
    EXPECT_EQ(added.status, 1);
    EXPECT_EQ(added.err, "kestrel: " + socketPath + ": cannot be read: No such device or address\n");
    EXPECT_NE(Outline("p.kpr").find("file \"src/c.h\"\n  class \"C\"\n"), std::string::npos);
}

}  // namespace
