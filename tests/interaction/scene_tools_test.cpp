#include "tests/app/fixture.h"

namespace Tavo {
namespace {

using SceneTools = StartedApplication;

TEST_F(SceneTools, AreActivatedByNumberAndByName) {
    wchar_t const* const names[] = {L"NullTool",   L"SelectTool", L"CameraTool", L"MoveTool",
                                    L"RotateTool", L"ScaleTool",  L"TimingTool"};
    EXPECT_EQ(scene().ActiveToolName(), L"SelectTool");
    for (int i = 0; i < 7; ++i) {
        scene().SetActiveTool(unsigned(i));
        EXPECT_EQ(scene().ActiveToolIndex(), i);
        EXPECT_EQ(scene().ActiveToolName(), names[i]);
        scene().SetActiveTool(0u).SetActiveTool(names[i]);
        EXPECT_EQ(scene().ActiveToolIndex(), i);
        EXPECT_EQ(time().ActiveTool().Integer(), i);
    }
}

TEST_F(SceneTools, AnUnknownToolLeavesTheActiveOne) {
    scene().SetActiveTool(3u);
    scene().SetActiveTool(7u).SetActiveTool(L"movetool").SetActiveTool(L"");
    EXPECT_EQ(scene().ActiveToolIndex(), 3);
    for (int index : {7, -1}) {
        time().ActiveTool().SetInteger(index);
        EXPECT_EQ(scene().ActiveToolName(), L"NullTool") << index;
    }
}

TEST_F(SceneTools, OnlyMovingAndRotatingHaveAnOrientation) {
    for (unsigned tool = 0; tool < 7; ++tool) {
        scene().SetActiveTool(tool);
        EXPECT_EQ(scene().ActiveToolOrientation(), 0) << tool;
        scene().ToggleActiveToolOrientation();
        EXPECT_EQ(scene().ActiveToolOrientation(), tool == 3 || tool == 4 ? 1 : 0) << tool;
        scene().ToggleActiveToolOrientation();
        EXPECT_EQ(scene().ActiveToolOrientation(), 0) << tool;
    }
}

TEST_F(SceneTools, RefuseDeletionRenamingReparentingAndSelection) {
    for (XTool const& tool : {XTool(scene().SelectTool()), XTool(scene().MoveTool()), XTool(scene().RotateTool()),
                              XTool(scene().ScaleTool()), XTool(scene().TimingTool())}) {
        EXPECT_TRUE(tool.IsValid());
        EXPECT_FALSE(tool.SupportsDeletion() || tool.SupportsRenaming() || tool.SupportsReparenting() ||
                     tool.SupportsSelection());
    }
}

}  // namespace
}  // namespace Tavo
