#include "tavo/commands/tool_commands.h"
#include "tavo/interaction/selection.h"
#include "tavo/interaction/tool.h"
#include "tavo/objects/scene.h"

namespace Tavo {
namespace {

void toggleEditMode(XScene& scene, int mode) { scene.ChangeEditMode(scene.Selection().EditMode() == mode ? 0 : mode); }

}  // namespace

void XActivateSelectTool::onRun() { Scene().SetActiveTool(unsigned(SelectTool)); }
void XActivateMoveTool::onRun() { Scene().SetActiveTool(unsigned(MoveTool)); }
void XActivateRotateTool::onRun() { Scene().SetActiveTool(unsigned(RotateTool)); }
void XActivateScaleTool::onRun() { Scene().SetActiveTool(unsigned(ScaleTool)); }
void XActivateTimingTool::onRun() { Scene().SetActiveTool(unsigned(TimingTool)); }
void XToggleToolAxis::onRun() { Scene().ToggleActiveToolOrientation(); }
void XToggleSelectedObjectSubObjectEditMode_1::onRun() { toggleEditMode(Scene(), 1); }
void XToggleSelectedObjectSubObjectEditMode_2::onRun() { toggleEditMode(Scene(), 2); }
void XToggleSelectedObjectSubObjectEditMode_3::onRun() { toggleEditMode(Scene(), 3); }
void XToggleSelectedObjectSubObjectEditMode_4::onRun() { toggleEditMode(Scene(), 4); }
void XZoomToFit::onRun() { Scene().ZoomToFit(); }

}  // namespace Tavo
