// Modern C++ through the real kestrel scan command: one small input per construct
// beside the trace it must give.
#include <gtest/gtest.h>

#include <string>

#include "support/scratch.h"

using namespace kestrel::test;

TEST(CppGolden, EachConstructGivesItsTrace) {
    for (const char* input : {"namespaces.cpp", "structs.h", "class_heads.h", "templates.h", "comments.cpp",
                              "preprocessor.cpp", "split_declarations.cpp", "not_functions.cpp", "kept.h"}) {
        const std::string path = std::string("tests/golden/cpp/") + input;
        Outcome run = RunKestrel(KESTREL_SOURCE_DIR, "scan --language cpp " + path);
        EXPECT_EQ(run.status, 0) << input;
        EXPECT_EQ(run.err, "") << input;
        EXPECT_EQ(run.out, Golden(std::string("cpp/") + input + ".trace")) << input;
    }
}

TEST(CppGolden, CAndCppNameTheirOwnLanguages) {
    // c keeps the C family's reading: the namespace's function is read as a body.
    Outcome c = RunKestrel(KESTREL_SOURCE_DIR, "scan --language c tests/golden/cpp/namespaces.cpp");
    EXPECT_EQ(c.out.find("db::Flush"), std::string::npos);
    for (const char* name : {"cpp", "c++", "7"}) {
        Outcome run = RunKestrel(KESTREL_SOURCE_DIR, std::string("scan --language ") + name + " tests/golden/cpp/namespaces.cpp");
        EXPECT_EQ(run.out, Golden("cpp/namespaces.cpp.trace")) << name;
    }
}

TEST(CppGolden, ANamespaceIsOneContainerInTheProject) {
    // The qualified name stays whole: db::detail is not class db with member detail::Check.
    ScratchDir dir;
    const std::string project = (dir.path() / "p.kpr").string();
    Outcome made = RunKestrel(KESTREL_SOURCE_DIR, "new '" + project + "' --language cpp --jobs 1 tests/golden/cpp/namespaces.cpp");
    ASSERT_EQ(made.status, 0) << made.err;
    const std::string dump = RunKestrel(KESTREL_SOURCE_DIR, "dump '" + project + "'").out;
    EXPECT_NE(dump.find("project language 7 "), std::string::npos);
    for (const char* container : {"class \"db\" ", "class \"db::detail\" ", "class \"db::v2\" ", "class \"net::http\" "}) {
        EXPECT_NE(dump.find(container), std::string::npos) << container;
    }
    EXPECT_NE(dump.find("function \"Check\" line 20 "), std::string::npos);
    // Scanned on worker threads, the calls are kept and handed on later: the same bytes.
    const std::string onWorkers = (dir.path() / "q.kpr").string();
    ASSERT_EQ(RunKestrel(KESTREL_SOURCE_DIR, "new '" + onWorkers + "' --language cpp --jobs 2 tests/golden/cpp/namespaces.cpp")
                  .status,
              0);
    EXPECT_EQ(ReadFileBytes(onWorkers), ReadFileBytes(project));
}
