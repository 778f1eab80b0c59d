// The persisted properties and what setting them does to the trees and the host.
#include "control/memory/memory_property_bag.h"
#include "control_fixture.h"

namespace kestrel::test {
namespace {

using Properties = ControlTest;

TEST_F(Properties, ChangesAreReportedAndTheBagStoresOnlyWhatDiffersFromTheDefaults) {
    MemoryPropertyBag bag;
    view->UserControl_InitProperties();
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
    EXPECT_FALSE(platform.fileTree.Enabled());
    // The host hears of the changes, but not of the loader or the tool tips switched.
    EXPECT_EQ(platform.site.changedProperties,
              (std::vector<std::string>{"Font", "ViewStyle", "Enabled", "CreateBackup", "Files"}));
    view->UserControl_WriteProperties(bag);
    EXPECT_EQ(bag.Values().size(), 6u);

    MemoryPlatform other;
    auto copy = TreeView::Create(other.Get());
    copy->UserControl_ReadProperties(bag);
    MemoryPropertyBag copied;
    copy->UserControl_WriteProperties(copied);
    EXPECT_EQ(copied.Values(), bag.Values());
    // What was read reaches the trees too.
    EXPECT_EQ(other.fileTree.GetFont(), bold);
    EXPECT_FALSE(other.fileTree.Enabled());
}

TEST_F(Properties, AnEmptyBagGivesTheDefaultsAndTheAmbientFont) {
    platform.site.ambientFont.name = u"DejaVu Sans";
    MemoryPropertyBag empty;
    view->UserControl_ReadProperties(empty);
    EXPECT_EQ(view->Font().name, u"DejaVu Sans");
    EXPECT_EQ(platform.fileTree.GetFont().name, u"DejaVu Sans");
    EXPECT_EQ(view->ViewStyle(), prvClasses);
    EXPECT_TRUE(platform.classTree.Visible());
    EXPECT_FALSE(platform.fileTree.Visible());
}

TEST_F(Properties, ResizeLaysBothTreesOverTheWholeControl) {
    platform.site.width = 300;
    platform.site.height = 200;
    platform.site.windowHandle = 42;
    view->UserControl_Resize();
    for (int16_t i = 0; i <= 1; ++i) {
        EXPECT_EQ(platform.Tree(i).Width(), 300);
        EXPECT_EQ(platform.Tree(i).Height(), 200);
        EXPECT_EQ(platform.Tree(i).Left(), 0);
    }
    EXPECT_EQ(view->hWnd(), 42);
}

}  // namespace
}  // namespace kestrel::test
