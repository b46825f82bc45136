// What a change of a scene means for its selection and its tools.
#include "tavo/interaction/scene_objects.h"
#include "tavo/objects/database_change.h"

namespace Tavo {

bool XSceneChange::IsSelectionChange() const { return IsObjectChanged(_scene.Selection()); }

bool XSceneChange::IsToolChange() const {
    return IsObjectChanged(_scene.SelectTool()) || IsObjectChanged(_scene.MoveTool()) ||
           IsObjectChanged(_scene.RotateTool()) || IsObjectChanged(_scene.ScaleTool()) ||
           IsObjectChanged(_scene.TimingTool());
}

bool XSceneChange::IsSelectedObjectChanged() const {
    Qelutils::Vector<XObject> selected;
    _scene.Selection().Entities().ObjectRefs(selected);
    return IsObjectChanged(selected);
}

}  // namespace Tavo
