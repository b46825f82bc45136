// Tools, their axes, the grain of editing.
#include "tests/commands/fixture.h"

namespace Tavo {
namespace {

using ToolCommands = CommandTest;

TEST_F(ToolCommands, EachActivatesItsTool) {
    std::map<std::wstring, int> const tools = {{L"ActivateSelectTool", 1},
                                               {L"ActivateMoveTool", 3},
                                               {L"ActivateRotateTool", 4},
                                               {L"ActivateScaleTool", 5},
                                               {L"ActivateTimingTool", 6}};
    for (auto const& [command, tool] : tools) {
        scene().SetActiveTool(2u);
        run(command);
        EXPECT_EQ(scene().ActiveToolIndex(), tool) << Qelutils::toUtf8(command);
        undo();
        EXPECT_EQ(scene().ActiveToolIndex(), 2) << Qelutils::toUtf8(command);
    }
}

TEST_F(ToolCommands, TheAxisOfTheActiveToolAloneIsTurned) {
    for (unsigned tool = 0; tool < 7; ++tool) {
        SCOPED_TRACE(tool);
        scene().SetActiveTool(tool);
        run(L"ToggleToolAxis");
        EXPECT_EQ(scene().MoveTool().Orientation().Enumeration(), tool == 3 ? ObjectOrientation : WorldOrientation);
        EXPECT_EQ(scene().RotateTool().Orientation().Enumeration(), tool == 4 ? ObjectOrientation : WorldOrientation);
        run(L"ToggleToolAxis");
        for (XAttribute const& axis : {scene().MoveTool().Orientation(), scene().RotateTool().Orientation()})
            EXPECT_EQ(axis.Enumeration(), WorldOrientation);
    }
}

TEST_F(ToolCommands, TogglingTheEditModeThatHoldsGoesBackToObjects) {
    for (int mode : {1, 2, 3, 4}) {
        SCOPED_TRACE(mode);
        select({spine});
        XSelection selection = scene().Selection();
        selection.SubEntityType().SetInteger(mode);
        selection.SubEntities().AddInteger(7);
        scene().CommitTransient();
        run(L"ToggleSelectedObjectSubObjectEditMode_" + std::to_wstring(mode));
        EXPECT_EQ(selection.EditMode(), 0);
        EXPECT_EQ(selection.SubObjectCount(), 0);
        undo();
        EXPECT_EQ(selection.EditMode(), mode);
        EXPECT_EQ(selection.SubObjectCount(), 1);
    }
}

// Nothing that can be selected has parts yet that an edit mode would show.
TEST_F(ToolCommands, AModeThatTheObjectDoesNotSupportIsNotEntered) {
    select({spine});
    for (int times = 0; times < 2; ++times) {
        run(L"ToggleSelectedObjectSubObjectEditMode_2");
        EXPECT_EQ(scene().Selection().EditMode(), 0);
    }
    scene().Selection().SubEntityType().SetInteger(2);
    run(L"ToggleSelectedObjectSubObjectEditMode_3");
    EXPECT_EQ(scene().Selection().EditMode(), 2);
}

TEST_F(ToolCommands, ZoomToFitDoesNothingWithoutADisplay) {
    std::string const before = bytes();
    run(L"ZoomToFit");
    EXPECT_TRUE(bytes() == before);
    EXPECT_TRUE(log.entries.empty());
}

}  // namespace
}  // namespace Tavo
