// Input of the trees reaching the host, and tool tips that follow the mouse.
#include "control_fixture.h"

namespace kestrel::test {
namespace {

// A host that logs every event and changes the arguments it is allowed to change.
class Host : public TreeViewEvents {
public:
    void KeyDown(int16_t& keyCode, int16_t& shift) override {
        Log("KeyDown " + std::to_string(keyCode) + " " + std::to_string(shift));
        keyCode = 0;
        shift = 4;
    }
    void KeyPress(int16_t& keyAscii) override {
        Log("KeyPress " + std::to_string(keyAscii));
        keyAscii = 'B';
    }
    void KeyUp(int16_t& keyCode, int16_t& shift) override {
        Log("KeyUp " + std::to_string(keyCode) + " " + std::to_string(shift));
        keyCode += 1;
    }
    void MouseDown(int16_t& button, int16_t&, float& x, float&) override {
        Log("MouseDown " + std::to_string(button));
        button = 2;
        x = 99;
    }
    void MouseMove(int16_t& button, int16_t&, float&, float& y) override {
        Log("MouseMove " + std::to_string(button));
        y = -1;
    }
    void MouseUp(int16_t& button, int16_t& shift, float&, float&) override {
        Log("MouseUp " + std::to_string(button));
        shift = 7;
    }
    void Click() override { Log("Click"); }
    void DblClick() override { Log("DblClick"); }
    void ToolTipChanged(const std::u16string& text) override { Log("ToolTipChanged '" + ToUtf8(text) + "'"); }

    std::vector<std::string> Take() {
        std::vector<std::string> out;
        out.swap(log_);
        return out;
    }

private:
    void Log(std::string line) { log_.push_back(std::move(line)); }
    std::vector<std::string> log_;
};

class Events : public ControlTest {
protected:
    void SetUp() override {
        ControlTest::SetUp();
        view->SetEventListener(&host);
        view->NewProject(u"/p/demo.kpr", LANGUAGE_C, 0);
        FilePtr file = MakeFile(u"/p/a.h", FILETYPE_DEFINITION);
        view->AddFunction__(MakeFunction(u"Run", u"()", PUBLIC_SCOPE, u"runs it"), MakeClass(u"C"), file);
        for (NodeId n : {Node(u"++demo"), Node(u"--C"), Node(u"``C")}) platform.classTree.SetExpanded(n, true);
        runRow = platform.classTree.RowTop(Node(u"!!C::RUN()")) + 1;
        ASSERT_GT(runRow, 0);
    }
    void Move(int16_t tree, int16_t button, float y) {
        int16_t shift = 0;
        float x = 5;
        platform.Tree(tree).Input()->MouseMove(button, shift, x, y);
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
    EXPECT_EQ(host.Take(), (std::vector<std::string>{"KeyDown 65 1", "KeyPress 97", "KeyUp 10 4", "MouseDown 1",
                                                     "MouseUp 2", "Click", "DblClick"}));
}

TEST_F(Events, ToolTipsFollowTheUserTextOfTheNodeUnderTheMouse) {
    view->AutoToolTip(true);
    Move(0, 0, runRow);
    Move(0, 0, runRow + 2);  // same node: no second change
    EXPECT_EQ(platform.classTree.ToolTipText(), u"runs it");
    Move(0, 0, 10000);  // empty space
    EXPECT_EQ(platform.classTree.ToolTipText(), u"");
    EXPECT_EQ(host.Take(), (std::vector<std::string>{"ToolTipChanged 'runs it'", "MouseMove 0", "MouseMove 0",
                                                     "ToolTipChanged ''", "MouseMove 0"}));
}

TEST_F(Events, NoToolTipWhileAButtonIsHeldOrWhenSwitchedOff) {
    view->AutoToolTip(true);
    Move(0, 1, runRow);
    view->AutoToolTip(false);
    Move(0, 0, runRow);
    EXPECT_EQ(host.Take(), (std::vector<std::string>{"MouseMove 1", "MouseMove 0"}));
    EXPECT_EQ(platform.classTree.ToolTipText(), u"");
}

TEST_F(Events, ATagWithoutDigitIsTheWholeTip) {
    view->AutoToolTip(true);
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"plain");
    Move(0, 0, runRow);
    EXPECT_EQ(platform.classTree.ToolTipText(), u"plain");
    platform.classTree.SetTag(Node(u"!!C::RUN()"), u"2");
    Move(0, 0, runRow);
    EXPECT_EQ(platform.classTree.ToolTipText(), u"");
    EXPECT_EQ(host.Take(), (std::vector<std::string>{"ToolTipChanged 'plain'", "MouseMove 0", "ToolTipChanged ''",
                                                     "MouseMove 0"}));
}

TEST_F(Events, NoListenerIsFine) {
    view->SetEventListener(nullptr);
    view->AutoToolTip(true);
    Move(0, 0, runRow);
    platform.classTree.UserClick(kNoNode);
    EXPECT_TRUE(errors.reports.empty());
}

}  // namespace
}  // namespace kestrel::test
