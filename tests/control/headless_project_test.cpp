// A project without a view must write exactly the bytes the control writes, through
// creation, loading and a full rescan, so that tools may use either.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "control/headless_project.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

class HeadlessProjectTest : public ControlTest {
protected:
    // Sources inside the project folder, in a subfolder and beside the folder (stored
    // with "../"), so that every kind of stored name is written.
    void WriteSources() {
        const std::filesystem::path examples = std::filesystem::path(KESTREL_SOURCE_DIR) / "examples";
        std::filesystem::create_directories(dir / "proj/sub");
        std::filesystem::copy_file(examples / "shapes.h", dir / "proj/sub/shapes.h");
        std::filesystem::copy_file(examples / "shapes.cpp", dir / "proj/shapes.cpp");
        Write("beside.cpp", "class Beside { public: int Count(int a); private: int n; };\nint Free(void) { return 0; }\n");
        sources = {{Path("proj/sub/shapes.h"), FILETYPE_DEFINITION},
                   {Path("proj/shapes.cpp"), FILETYPE_IMPLEMENTATION},
                   {Path("beside.cpp"), FILETYPE_IMPLEMENTATION}};
    }

    template <class Project>
    std::string Create(Project& project, const std::string& name) {
        project.NewProject(Path("proj/" + name), LANGUAGE_C, 7);
        for (const auto& [file, type] : sources) EXPECT_TRUE(project.files()->Add(file, type));
        EXPECT_TRUE(project.Save());
        return ReadFileBytes(dir / "proj" / name);
    }

    std::vector<std::pair<std::u16string, int32_t>> sources;
};

TEST_F(HeadlessProjectTest, WritesTheControlsBytesWhenCreatingLoadingAndRescanning) {
    ErrorCapture errors;
    WriteSources();
    auto headless = HeadlessProject::Create();
    const std::string shownBytes = Create(*view, "shown.kpr");
    const std::string headlessBytes = Create(*headless, "headless.kpr");
    ASSERT_FALSE(shownBytes.empty());
    EXPECT_EQ(headlessBytes, shownBytes);

    // An edit on disk, then each loads its own file and rescans everything.
    Write("beside.cpp", "class Beside { public: int Count(int a, int b); };\nvoid Other() {}\n");
    auto reloaded = HeadlessProject::Create();
    ASSERT_TRUE(view->Load(Path("proj/shown.kpr")));
    ASSERT_TRUE(reloaded->Load(Path("proj/headless.kpr")));
    EXPECT_EQ(reloaded->ID(), 7);
    EXPECT_EQ(reloaded->files()->count(), 3);
    ASSERT_TRUE(view->SaveComplete());
    ASSERT_TRUE(reloaded->SaveComplete());
    const std::string rescanned = ReadFileBytes(dir / "proj/shown.kpr");
    EXPECT_NE(rescanned, shownBytes);
    EXPECT_EQ(ReadFileBytes(dir / "proj/headless.kpr"), rescanned);
    EXPECT_TRUE(errors.reports.empty());
}

TEST_F(HeadlessProjectTest, KeepsItsProjectWhenAFileIsNoProject) {
    WriteSources();
    auto headless = HeadlessProject::Create();
    Create(*headless, "p.kpr");
    Write("proj/not.kpr", "plain text, not a project\n");
    EXPECT_FALSE(headless->Load(Path("proj/not.kpr")));
    EXPECT_EQ(headless->files()->count(), 3);
}

}  // namespace
}  // namespace kestrel::test
