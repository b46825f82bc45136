// Which tool of a scene is active. Without a display there is no manipulator to place, and nothing carries weights.
#include "tavo/interaction/scene_objects.h"
#include <algorithm>
#include <iterator>

namespace Tavo {

int XScene::ActiveToolIndex() const { return _sceneSettings.ActiveTool().Integer(); }

std::wstring XScene::ActiveToolName() const {
    int const index = ActiveToolIndex();
    return ToolNames[index >= 0 && index < int(std::size(ToolNames)) ? index : NullTool];
}

void XScene::setActiveToolIndex(unsigned int index) {
    if (index < std::size(ToolNames)) _sceneSettings.ActiveTool().SetInteger(int(index));
}

// Also for a name or a number that no tool has: then the display alone is brought up to date.
XScene& XScene::SetActiveTool(unsigned int index) {
    setActiveToolIndex(index);
    UpdateActiveToolWeights();
    return UpdateActiveToolDisplay();
}

XScene& XScene::SetActiveTool(std::wstring const& name) {
    auto const found = std::find(std::begin(ToolNames), std::end(ToolNames), name);
    return SetActiveTool(unsigned(found - std::begin(ToolNames)));
}

int XScene::ActiveToolOrientation() const {
    if (ActiveToolIndex() == Tavo::MoveTool) return objects().moveTool.Orientation().Enumeration();
    if (ActiveToolIndex() == Tavo::RotateTool) return objects().rotateTool.Orientation().Enumeration();
    return WorldOrientation;
}

XScene& XScene::ToggleActiveToolOrientation() {
    int const other = ActiveToolOrientation() == ObjectOrientation ? WorldOrientation : ObjectOrientation;
    if (ActiveToolIndex() == Tavo::MoveTool) objects().moveTool.Orientation().SetEnumeration(other);
    if (ActiveToolIndex() == Tavo::RotateTool) objects().rotateTool.Orientation().SetEnumeration(other);
    UpdateActiveToolWeights();
    return UpdateActiveToolDisplay();
}

XScene& XScene::UpdateActiveToolDisplay() {
    UpdateActiveToolTransform();
    CommitTransient();
    return Redraw();
}

XScene& XScene::UpdateActiveToolTransform() { return *this; }
XScene& XScene::UpdateActiveToolWeights() { return *this; }
XScene& XScene::UpdateActiveToolWeights(XSceneChange const&, bool) { return *this; }

}  // namespace Tavo
