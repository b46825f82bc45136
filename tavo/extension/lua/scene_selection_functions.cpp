// What is selected in a scene.
#include "tavo/extension/lua/scene_rows.h"
#include "tavo/interaction/selection.h"

namespace Tavo {
namespace {

using Objects = Qelutils::Vector<XObject>;

Objects ofScene(XScene const& scene, Objects objects) {
    std::erase_if(objects, [&](XObject const& object) { return &object.Database() != &scene || !object.IsValid(); });
    return objects;
}

XObject selectedObject(XScene const& scene, int index) {
    return index < 1 ? XObject() : scene.Selection().Object(index - 1);
}

Objects selection(XScene const& scene, std::wstring const& type) {
    Objects out;
    return scene.Selection().Objects(type, out);
}

// An empty list clears the selection; nothing at all, or only what is gone, changes nothing.
void select(XScene& scene, std::optional<Objects> const& objects) {
    if (!objects) return;
    Objects const valid = ofScene(scene, *objects);
    if (objects->empty() || !valid.empty()) scene.Selection().Select(valid);
}

void deselect(XScene& scene, Objects const& objects) {
    for (XObject const& object : ofScene(scene, objects)) scene.Selection().Deselect(object);
}

void selectAppend(XScene& scene, Objects const& objects) {
    for (XObject const& object : ofScene(scene, objects)) scene.Selection().Append(object);
}

template<XSelection& (XSelection::*change)()> void changeSelection(XScene& scene) {
    XSelection selection = scene.Selection();
    (selection.*change)();
}

}  // namespace

std::vector<XScriptFunction> sceneSelectionRows() {
    using S = XSelection;
    return {
        {"selectionCount",
         [](XScene const& scene) { return scene.Selection().Count(); },
         {},
         "How many objects are selected."},
        {"selectedObject", selectedObject, {"index"}, "A selected object, counted from 1 in the order of selection."},
        {"selection", selection, {"type"}, "The selected objects of exactly that type; all without one."},
        {"isSelected",
         [](XScene const& scene, XObject const& object) { return scene.Selection().IsSelected(object); },
         {"object"},
         "Whether an object is selected."},
        {"clearSelection", changeSelection<&S::Clear>, {}, "Leaves nothing selected."},
        {"select", select, {"objects"}, "Selects one or more objects, and nothing else."},
        {"deselect", deselect, {"objects"}, "Takes one or more objects out of the selection."},
        {"selectAppend", selectAppend, {"objects"}, "Selects one or more objects as well."},
        {"selectAll", changeSelection<&S::SelectAll>, {}, "Selects all transforms and shapes."},
        {"selectType",
         [](XScene& scene, std::wstring const& type) { scene.Selection().SelectByType(type, IsObjectType); },
         {"type"},
         "Selects the objects of exactly that type, and nothing else."},
        {"selectParent", changeSelection<&S::SelectParent>, {}, "Selects the parents of the selected objects instead."},
        {"selectChild",
         changeSelection<&S::SelectChild>,
         {},
         "Selects the first children of the selected objects instead."},
        {"selectPrevious",
         changeSelection<&S::SelectPrevious>,
         {},
         "Selects the previous siblings of the selected objects instead."},
        {"selectNext",
         changeSelection<&S::SelectNext>,
         {},
         "Selects the next siblings of the selected objects instead."},
    };
}

}  // namespace Tavo
