// What a scene does with its selected objects, and with the animation of a hierarchy.
#include "tavo/animation/animation.h"
#include "tavo/interaction/scene_objects.h"

namespace Tavo {
namespace {

// On a copy of the list, since edits change the selection. What an earlier edit took along is passed over.
template<class Edit> void editSelected(XScene& scene, Edit const& edit) {
    Qelutils::Vector<XObject> selected;
    scene.Selection().Objects(selected);
    scene.BeginChangeBlock();
    for (XObject& object : selected)
        if (object.IsValid()) edit(object);
    scene.EndChangeBlock();
}

template<class Edit> void editAnimated(XObject const& root, Edit const& edit) {
    Qelutils::Vector<XObject> objects;
    root.DescendantObjects(objects);
    objects.push_back(root);
    Qelutils::Vector<XAttribute> attributes;
    for (XObject const& object : objects) {
        object.Attributes(attributes);
        for (XAttribute& attribute : attributes)
            if (attribute.IsAnimated()) edit(attribute);
    }
}

}  // namespace

void XScene::clearSelection() { Selection().Clear(); }

XScene& XScene::CopySelection() {
    editSelected(*this, [](XObject& object) { object.Copy(); });
    return *this;
}

XScene& XScene::DeleteSelection() {
    BeginChangeBlock();
    editSelected(*this, [](XObject& object) { object.Delete(); });
    clearSelection();
    EndChangeBlock();
    return *this;
}

XScene& XScene::RemoveSelection() {
    BeginChangeBlock();
    editSelected(*this, [](XObject& object) { object.Remove(); });
    clearSelection();
    EndChangeBlock();
    return *this;
}

XScene& XScene::RenameSelection(std::wstring const& name) {
    editSelected(*this, [&](XObject& object) { object.SetName(name); });
    return *this;
}

XScene& XScene::UnparentSelection() {
    editSelected(*this, [](XObject& object) { object.Unparent(); });
    return *this;
}

// Its normal route is the last selected object as the parent; that the empty path leads nowhere is told on the way.
XScene& XScene::ReparentSelection() { return ReparentSelection(L""); }

XScene& XScene::ReparentSelection(std::wstring const& path) {
    static std::wstring const label = L"Reparenting objects";
    XChangeBlock const block(*this, label);
    XObject parent(getNode(path));
    Qelutils::Vector<XObject> selected;
    Selection().Objects(selected);
    if (!parent.IsValid() && selected.size() >= 2) {
        parent = selected.back();
        selected.pop_back();
    }
    if (!parent.IsValid()) return *this;
    for (XObject& object : selected) object.SetParent(parent);
    return *this;
}

void XScene::changeEditMode(int mode) { Selection().ClearSubObjects().SetEditMode(mode); }

XScene& XScene::ChangeEditMode(int mode) {
    changeEditMode(mode);
    UpdateActiveToolTransform();
    CommitTransient();
    return Redraw();
}

XScene& XScene::ClearAnimation(XObject const& root) {
    editAnimated(root, [](XAttribute& attribute) { attribute.ClearAnimation(); });
    return *this;
}

XScene& XScene::DisconnectAnimation(XObject const& root) {
    editAnimated(root, [](XAttribute& attribute) { attribute.DisconnectInput(); });
    return *this;
}

}  // namespace Tavo
