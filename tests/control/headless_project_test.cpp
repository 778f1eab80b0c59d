// A project without a view must write exactly the bytes the control writes, through
// creation, loading and a full rescan, so that tools may use either.
#include "control/headless_project.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

using HeadlessProjectTest = ControlTest;

TEST_F(HeadlessProjectTest, WritesTheControlsBytesWhenCreatingLoadingAndRescanning) {
    // Sources inside the project folder, in a subfolder and beside the folder (stored
    // with "../"), so that every kind of stored name is written.
    const std::filesystem::path examples = std::filesystem::path(KESTREL_SOURCE_DIR) / "examples";
    Write("proj/sub/shapes.h", ReadFileBytes(examples / "shapes.h"));
    Write("proj/shapes.cpp", ReadFileBytes(examples / "shapes.cpp"));
    Write("beside.cpp", "class Beside { public: int Count(int a); private: int n; };\nint Free(void) { return 0; }\n");
    const auto create = [&](auto& project, const std::string& name) {
        project.NewProject(Path("proj/" + name), LANGUAGE_C, 7);
        EXPECT_TRUE(project.files()->Add(Path("proj/sub/shapes.h"), FILETYPE_DEFINITION));
        EXPECT_TRUE(project.files()->Add(Path("proj/shapes.cpp"), FILETYPE_IMPLEMENTATION));
        EXPECT_TRUE(project.files()->Add(Path("beside.cpp"), FILETYPE_IMPLEMENTATION));
        EXPECT_TRUE(project.Save());
        return ReadFileBytes(dir / "proj" / name);
    };
    const std::string shownBytes = create(*view, "shown.kpr");
    ASSERT_FALSE(shownBytes.empty());
    EXPECT_EQ(create(*HeadlessProject::Create(), "headless.kpr"), shownBytes);

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

    // A file that is no project leaves the project as it was.
    Write("proj/not.kpr", "plain text, not a project\n");
    EXPECT_FALSE(reloaded->Load(Path("proj/not.kpr")));
    EXPECT_EQ(reloaded->files()->count(), 3);
}

}  // namespace
}  // namespace kestrel::test
