// What passes between the control and its host: tool tips that follow the mouse, and
// the persisted properties.
#include <tuple>

#include "control/memory/memory_property_bag.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

using Log = std::vector<std::string>;

// A host that logs what it hears of and changes the arguments it may change.
class Host : public TreeViewEvents {
public:
    void KeyPress(int16_t& ascii) override { log.push_back("KeyPress " + std::to_string(ascii)); ascii = 'B'; }
    void MouseDown(int16_t& button, int16_t&, float& x, float&) override { button = 2; x = 99; }
    void MouseUp(int16_t&, int16_t& shift, float&, float&) override { shift = 7; }
    void MouseMove(int16_t& button, int16_t&, float&, float&) override { log.push_back("MouseMove " + std::to_string(button)); }
    void ToolTipChanged(const std::u16string& text) override { log.push_back("ToolTipChanged '" + ToUtf8(text) + "'"); }

    Log log;
};

class Events : public ControlTest {
protected:
    void SetUp() override {
        view->SetEventListener(&host);
        view->NewProject(u"/p/demo.kpr", LANGUAGE_C, 0);
        view->AddFunction__(MakeFunction(u"Run", u"()", PUBLIC_SCOPE, u"runs it"), MakeClass(u"C"),
                            MakeFile(u"/p/a.h", FILETYPE_DEFINITION));
        for (NodeId n : {Node(u"++demo"), Node(u"--C"), Node(u"``C")}) platform.classTree.SetExpanded(n, true);
        runRow = platform.classTree.RowTop(Node(u"!!C::RUN()")) + 1;
        ASSERT_GT(runRow, 0);
        view->AutoToolTip(true);
    }
    std::u16string Move(float y, int16_t button = 0) {
        int16_t shift = 0;
        float x = 5;
        platform.classTree.Input()->MouseMove(button, shift, x, y);
        return platform.classTree.ToolTipText();
    }

    Host host;
    float runRow = 0;
};

TEST_F(Events, ArgumentsChangedByTheHostComeBackToTheTree) {
    TreeInput* input = platform.classTree.Input();
    int16_t ascii = 'a', button = 1, shift = 1;
    float x = 3, y = 4;
    input->KeyPress(ascii);
    input->MouseDown(button, shift, x, y);
    EXPECT_EQ(std::tuple(ascii, button, x), std::tuple(int16_t{'B'}, int16_t{2}, 99.0f));
    input->MouseUp(button, shift, x, y);
    EXPECT_EQ(shift, 7);
    EXPECT_EQ(host.log, Log{"KeyPress 97"});
}

TEST_F(Events, ToolTipsFollowTheUserTextOfTheNodeUnderTheMouse) {
    EXPECT_EQ(Move(runRow), u"runs it");
    EXPECT_EQ(Move(runRow + 2), u"runs it");  // same node: no second change
    EXPECT_EQ(Move(10000), u"");               // empty space
    Move(runRow, 1);                           // not while a button is held
    // A tag without its leading digit is the whole tip; a digit alone is no tip.
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"plain");
    EXPECT_EQ(Move(runRow), u"plain");
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"2");
    EXPECT_EQ(Move(runRow), u"");
    view->AutoToolTip(false);
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"1runs it");
    EXPECT_EQ(Move(runRow), u"");
    EXPECT_EQ(host.log, (Log{"ToolTipChanged 'runs it'", "MouseMove 0", "MouseMove 0", "ToolTipChanged ''",
                             "MouseMove 0", "MouseMove 1", "ToolTipChanged 'plain'", "MouseMove 0",
                             "ToolTipChanged ''", "MouseMove 0", "MouseMove 0"}));

    view->SetEventListener(nullptr);  // no listener is fine
    view->AutoToolTip(true);
    Move(runRow);
    platform.classTree.UserClick(kNoNode);
    EXPECT_TRUE(errors.reports.empty());
}

using Properties = ControlTest;

TEST_F(Properties, AnEmptyBagGivesTheDefaultsAndOnlyWhatDiffersFromThemIsStored) {
    MemoryPropertyBag bag;
    platform.site.ambientFont.name = u"DejaVu Sans";
    view->UserControl_ReadProperties(bag);
    EXPECT_EQ(platform.fileTree.GetFont().name, u"DejaVu Sans");
    EXPECT_EQ(view->ViewStyle(), prvClasses);
    view->UserControl_WriteProperties(bag);
    EXPECT_TRUE(bag.Values().empty());

    Font bold = platform.site.ambientFont;
    bold.bold = true;
    view->Font(bold);
    view->ViewStyle(prvFiles);
    view->Enabled(false);
    view->AsyncLoad(true);
    view->CreateBackup(true);
    view->AutoToolTip(true);
    view->files(std::make_shared<clsAllFiles>());
    // The host hears of the changes, but not of the loader or the tool tips switched.
    EXPECT_EQ(platform.site.changedProperties,
              (std::vector<std::string>{"Font", "ViewStyle", "Enabled", "CreateBackup", "Files"}));
    view->UserControl_WriteProperties(bag);
    EXPECT_EQ(bag.Values().size(), 6u);
}

}  // namespace
}  // namespace kestrel::test
