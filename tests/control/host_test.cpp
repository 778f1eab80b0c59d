// What passes between the control and its host: input of the trees, tool tips that
// follow the mouse, and the persisted properties.
#include "control/memory/memory_property_bag.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

using Log = std::vector<std::string>;

// A host that logs every event and changes the arguments it is allowed to change.
class Host : public TreeViewEvents {
public:
    void KeyDown(int16_t& key, int16_t& shift) override { Heard("KeyDown", key, shift); key = 0; shift = 4; }
    void KeyPress(int16_t& ascii) override { Heard("KeyPress", ascii); ascii = 'B'; }
    void MouseDown(int16_t& button, int16_t&, float& x, float&) override { Heard("MouseDown", button); button = 2; x = 99; }
    void MouseMove(int16_t& button, int16_t&, float&, float&) override { Heard("MouseMove", button); }
    void Click() override { Heard("Click"); }
    void DblClick() override { Heard("DblClick"); }
    void ToolTipChanged(const std::u16string& text) override { log.push_back("ToolTipChanged '" + ToUtf8(text) + "'"); }

    Log log;

private:
    template <class... Values>
    void Heard(const char* event, Values... values) {
        std::string line = event;
        ((line += " " + std::to_string(values)), ...);
        log.push_back(line);
    }
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
    // Moves the mouse over the class tree and answers the tip shown.
    std::u16string Move(float y, int16_t button = 0) {
        int16_t shift = 0;
        float x = 5;
        platform.classTree.Input()->MouseMove(button, shift, x, y);
        return platform.classTree.ToolTipText();
    }

    Host host;
    float runRow = 0;
};

TEST_F(Events, KeyAndMouseArgumentsChangedByTheHostComeBack) {
    TreeInput* input = platform.classTree.Input();
    int16_t key = 65, shift = 1, ascii = 'a', button = 1;
    float x = 3, y = 4;
    input->KeyDown(key, shift);
    EXPECT_EQ(std::pair(key, shift), (std::pair<int16_t, int16_t>(0, 4)));
    input->KeyPress(ascii);
    EXPECT_EQ(ascii, 'B');
    input->MouseDown(button, shift, x, y);
    EXPECT_EQ(std::pair(button, x), (std::pair<int16_t, float>(2, 99)));
    platform.classTree.UserClick(Node(u"--C"));
    platform.fileTree.UserDblClick(kNoNode);
    EXPECT_EQ(host.log, (Log{"KeyDown 65 1", "KeyPress 97", "MouseDown 1", "Click", "DblClick"}));
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
