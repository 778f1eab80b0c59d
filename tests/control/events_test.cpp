// Input of the trees reaching the host, and tool tips that follow the mouse.
#include <utility>

#include "control_fixture.h"

namespace kestrel::test {
namespace {

using Log = std::vector<std::string>;

// A host that logs every event and changes the arguments it is allowed to change.
class Host : public TreeViewEvents {
public:
    void KeyDown(int16_t& keyCode, int16_t& shift) override {
        Heard("KeyDown", keyCode, shift);
        keyCode = 0;
        shift = 4;
    }
    void KeyPress(int16_t& keyAscii) override {
        Heard("KeyPress", keyAscii);
        keyAscii = 'B';
    }
    void KeyUp(int16_t& keyCode, int16_t& shift) override {
        Heard("KeyUp", keyCode, shift);
        keyCode += 1;
    }
    void MouseDown(int16_t& button, int16_t&, float& x, float&) override {
        Heard("MouseDown", button);
        button = 2;
        x = 99;
    }
    void MouseMove(int16_t& button, int16_t&, float&, float&) override { Heard("MouseMove", button); }
    void MouseUp(int16_t& button, int16_t& shift, float&, float&) override {
        Heard("MouseUp", button);
        shift = 7;
    }
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
        FilePtr file = MakeFile(u"/p/a.h", FILETYPE_DEFINITION);
        view->AddFunction__(MakeFunction(u"Run", u"()", PUBLIC_SCOPE, u"runs it"), MakeClass(u"C"), file);
        for (NodeId n : {Node(u"++demo"), Node(u"--C"), Node(u"``C")}) platform.classTree.SetExpanded(n, true);
        runRow = platform.classTree.RowTop(Node(u"!!C::RUN()")) + 1;
        ASSERT_GT(runRow, 0);
        view->AutoToolTip(true);
    }
    // Moves the mouse over the class tree.
    void Move(float y, int16_t button = 0) {
        int16_t shift = 0;
        float x = 5;
        platform.classTree.Input()->MouseMove(button, shift, x, y);
    }

    Host host;
    float runRow = 0;
};

TEST_F(Events, KeyAndMouseArgumentsChangedByTheHostComeBack) {
    TreeInput* input = platform.classTree.Input();
    int16_t key = 65, shift = 1, ascii = 'a';
    input->KeyDown(key, shift);
    EXPECT_EQ(key, 0);
    EXPECT_EQ(shift, 4);
    input->KeyPress(ascii);
    EXPECT_EQ(ascii, 'B');
    key = 10;
    platform.fileTree.Input()->KeyUp(key, shift);
    EXPECT_EQ(key, 11);
    int16_t button = 1;
    float x = 3, y = 4;
    input->MouseDown(button, shift, x, y);
    EXPECT_EQ(button, 2);
    EXPECT_EQ(x, 99);
    input->MouseUp(button, shift, x, y);
    EXPECT_EQ(shift, 7);
    platform.classTree.UserClick(Node(u"--C"));
    platform.fileTree.UserDblClick(kNoNode);
    EXPECT_EQ(host.log, (Log{"KeyDown 65 1", "KeyPress 97", "KeyUp 10 4", "MouseDown 1", "MouseUp 2", "Click", "DblClick"}));
}

TEST_F(Events, ToolTipsFollowTheUserTextOfTheNodeUnderTheMouse) {
    Move(runRow);
    Move(runRow + 2);  // same node: no second change
    EXPECT_EQ(platform.classTree.ToolTipText(), u"runs it");
    Move(10000);  // empty space
    EXPECT_EQ(platform.classTree.ToolTipText(), u"");
    Move(runRow, 1);  // not while a button is held
    view->AutoToolTip(false);
    Move(runRow);
    EXPECT_EQ(platform.classTree.ToolTipText(), u"");
    EXPECT_EQ(host.log, (Log{"ToolTipChanged 'runs it'", "MouseMove 0", "MouseMove 0", "ToolTipChanged ''",
                             "MouseMove 0", "MouseMove 1", "MouseMove 0"}));
}

TEST_F(Events, ATagWithoutDigitIsTheWholeTip) {
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"plain");
    Move(runRow);
    EXPECT_EQ(platform.classTree.ToolTipText(), u"plain");
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"2");
    Move(runRow);
    EXPECT_EQ(platform.classTree.ToolTipText(), u"");
    EXPECT_EQ(host.log, (Log{"ToolTipChanged 'plain'", "MouseMove 0", "ToolTipChanged ''", "MouseMove 0"}));
}

TEST_F(Events, NoListenerIsFine) {
    view->SetEventListener(nullptr);
    Move(runRow);
    platform.classTree.UserClick(kNoNode);
    EXPECT_TRUE(errors.reports.empty());
}

}  // namespace
}  // namespace kestrel::test
