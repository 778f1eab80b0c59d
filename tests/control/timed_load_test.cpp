// Entry nodes added by the load timer in portions of 20.
#include "control/timed_load.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

class TimedLoading : public ControlTest {
protected:
    void SetUp() override {
        view->NewProject(u"/p/demo.kpr", LANGUAGE_C, 0);
        file = MakeFile(u"/p/a.cpp", FILETYPE_IMPLEMENTATION);
        shape = MakeClass(u"Shape");
    }
    void Queue(int n) {
        for (int i = 0; i < n; ++i) view->AddFunction__(MakeFunction(u"f" + ToText(i), u"()"), shape, file);
    }
    int Shown() { return platform.classTree.ChildCount(Node(u"``Shape")); }

    FilePtr file;
    ClassPtr shape;
};

TEST_F(TimedLoading, FortyFiveRequestsTakeThreeTicks) {
    view->SetCurrentClass(shape, file);
    view->TimedLoad().Enabled(true);
    Queue(45);
    // The first tick comes after 500 ms, the others every 50; the third finds the end.
    const struct { int ms, ticks, shown; } steps[] = {{0, 0, 0}, {499, 0, 0}, {1, 1, 20}, {50, 1, 40}, {50, 1, 45}};
    for (const auto& step : steps) {
        EXPECT_EQ(platform.timer.Advance(step.ms), step.ticks);
        EXPECT_EQ(Shown(), step.shown);
    }
    EXPECT_EQ(platform.timer.Interval(), 50);
    EXPECT_FALSE(view->TimedLoad().Enabled());
    EXPECT_EQ(view->TimedLoad().Pending(), 0);
    view->AddFunction__(MakeFunction(u"late", u"()"), shape, file);  // off again: added at once
    EXPECT_EQ(Shown(), 46);
}

TEST_F(TimedLoading, SwitchingOnAgainOrANewProjectDropsWhatWasQueued) {
    view->SetCurrentClass(shape, file);
    view->TimedLoad().Enabled(true);
    Queue(3);
    view->TimedLoad().Enabled(true);
    EXPECT_EQ(view->TimedLoad().Pending(), 0);
    EXPECT_EQ(platform.timer.Drain(), 1);  // the empty queue is switched off by its first tick
    EXPECT_EQ(Shown(), 0);

    view->TimedLoad().Enabled(true);
    Queue(5);
    view->NewProject(u"/p/other.kpr", LANGUAGE_C, 0);
    EXPECT_FALSE(platform.timer.Enabled());
    EXPECT_EQ(view->TimedLoad().Pending(), 0);
    EXPECT_EQ(platform.timer.Drain(), 0);
    EXPECT_EQ(Outline(), "");
}

TEST_F(TimedLoading, RequestsAreHandledInArrivalOrder) {
    view->TimedLoad().Enabled(true);
    view->AddFunction__(MakeFunction(u"Run", u"()"), shape, file);
    view->AddVariable__(MakeVariable(u"count", u"int"), shape, file);
    EXPECT_EQ(Node(u"--Shape"), kNoNode);
    platform.timer.Drain();
    // The class node keeps its folders in the order they were made.
    EXPECT_EQ(ChildKeys(Node(u"--Shape")), (std::vector<std::u16string>{u"``Shape", u"''Shape"}));
}

TEST_F(TimedLoading, APlatformWithoutTimerAddsEverythingAtOnce) {
    MemoryPlatform bare;
    Platform parts = bare.Get();
    parts.loadTimer = nullptr;
    auto control = TreeView::Create(parts);
    control->NewProject(u"/p/demo.kpr", LANGUAGE_C, 0);
    control->TimedLoad().Enabled(true);
    control->AddFunction__(MakeFunction(u"Run", u"()"), shape, file);
    EXPECT_NE(bare.classTree.Find(u"!!Shape::RUN()"), kNoNode);
    EXPECT_TRUE(errors.reports.empty());
}

}  // namespace
}  // namespace kestrel::test
