#include "tavo/interaction/selection.h"
#include "tavo/app/application.h"
#include "tavo/interaction/tool.h"
#include "tavo/kinematics/shape.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"
#include <utility>

namespace Tavo {
namespace {

class Block {
public:
    explicit Block(XDatabase& database) : _database(database) { _database.BeginChangeBlock(); }
    ~Block() { _database.EndChangeBlock(); }
    Block(Block const&) = delete;
    Block& operator=(Block const&) = delete;

private:
    XDatabase& _database;
};

bool mayBeSelected(XObject const& object) { return XSceneObject(object).SupportsSelection(); }

XObject nodeAt(XDatabase const& database, std::wstring const& path) {
    return database.SceneGraph() ? XObject(database.SceneGraph()->Node(path)) : XObject();
}

// The next one that can be selected in that direction: the object itself when it is the only one. An object may have
// further parents, and its own siblings need not lead back; as many steps as there are siblings are enough.
XObject nextSelectable(XObject const& object, XObject (XObject::*step)() const) {
    int left = object.SiblingCount();
    if (left <= 0) return XObject::Undefined;
    for (XObject at = (object.*step)(); left > 0; --left, at = (at.*step)())
        if (!at.IsValid() || at == object || mayBeSelected(at)) return at;
    return object;
}

}  // namespace

sg::SelectionNode* XSelection::selectionNode() const {
    return IsValid() ? static_cast<sg::SelectionNode*>(getNode()) : nullptr;
}

// Unlike the database's own lookup this says nothing about a path that leads nowhere.
XObject XSelection::find(std::wstring const& path) const { return nodeAt(Database(), path); }

// ---- questions ----

int XSelection::EditMode() const { return IsValid() && Count() == 1 ? SubEntityType().Integer() : 0; }

bool XSelection::IsSubObjectEditMode(XObject const& object) const { return EditMode() != 0 && IsSelected(object); }

bool XSelection::IsSelected(XObject const& object) const {
    sg::SelectionNode const* const node = selectionNode();
    return node && node->hasEntity(object.getNode());
}

bool XSelection::IsSelectedSubObject(int index) const {
    return IsSubObjectEditMode() && selectionNode()->hasSubEntity(index);
}

std::wstring XSelection::Path(int index) const { return index < 0 ? L"" : Entities().ObjectRef(index).Path(); }

std::vector<std::wstring> XSelection::Paths() const {
    std::vector<std::wstring> paths;
    return Paths(paths);
}

std::vector<std::wstring>& XSelection::Paths(std::vector<std::wstring>& out) const {
    out.clear();
    Qelutils::Vector<XObject> objects;
    for (XObject const& object : Objects(objects))
        if (object.IsValid()) out.push_back(object.Path());
    return out;
}

XObject XSelection::Object(int index) const {
    XApplication& application = XApplication::Instance();
    return application.IsStarted() ? nodeAt(application.ActiveScene(), Path(index)) : XObject();
}

XObject XSelection::Object(std::wstring const& type, XComparisonMode mode) const {
    XObject const first = Object(0);
    return first.IsValid() && first.Matches(type, mode) ? first : XObject::Undefined;
}

Qelutils::Vector<XObject>& XSelection::Objects(Qelutils::Vector<XObject>& out) const {
    Entities().ObjectRefs(out);
    return out;
}

Qelutils::Vector<XObject>& XSelection::Objects(std::wstring const& type, Qelutils::Vector<XObject>& out) const {
    Objects(out);
    if (!type.empty()) std::erase_if(out, [&](XObject const& object) { return !object.IsType(type); });
    return out;
}

// ---- tool frames ----

XMatrix XSelection::ObjectToolFrame() const {
    XObject const last = lastObject();
    XTransform const transform(XShape(last).IsValid() ? last.Parent() : last);
    return transform.IsValid() ? transform.WorldMatrix().Matrix().Orthonormalize() : XMatrix();
}

// A physics body is scaled along its own axes alone.
XMatrix XSelection::ObjectToolFrameWorldAligned() const {
    XMatrix const frame = ObjectToolFrame();
    bool const isScaling = XApplication::Instance().ActiveScene().ActiveToolIndex() == ScaleTool;
    if (isScaling && lastObject().SupportsType(L"PhysicsBody")) return frame;
    return XMatrix().SetTranslation(frame.Translation()).Orthonormalize();
}

XMatrix XSelection::SubObjectToolFrame(float) const { return {}; }
XMatrix XSelection::SubObjectToolFrameWorldAligned(float) const { return {}; }

// ---- changes of the objects ----

XSelection& XSelection::Select(XObject const& object) {
    if (!object.IsValid()) return *this;
    Block const block(Database());
    doClear();
    doAppend(object);
    return *this;
}

XSelection& XSelection::Select(std::wstring const& path) { return Select(find(path)); }

XSelection& XSelection::Select(std::vector<std::wstring> const& paths) {
    Block const block(Database());
    doClear();
    return Append(paths);
}

XSelection& XSelection::Select(Qelutils::Vector<XObject> const& objects) {
    Block const block(Database());
    doClear();
    for (XObject const& object : objects) doAppend(object);
    return *this;
}

XSelection& XSelection::Append(XObject const& object) {
    Block const block(Database());
    doAppend(object);
    return *this;
}

XSelection& XSelection::Append(std::wstring const& path) { return Append(find(path)); }

XSelection& XSelection::Append(std::vector<std::wstring> const& paths) {
    Block const block(Database());
    for (std::wstring const& path : paths) doAppend(find(path));
    return *this;
}

XSelection& XSelection::Deselect(XObject const& object) {
    if (IsSubObjectEditMode()) return *this;
    Block const block(Database());
    if (sg::SelectionNode* const node = selectionNode(); node && IsEditable()) node->removeEntity(object.getNode());
    return *this;
}

XSelection& XSelection::Deselect(std::wstring const& path) {
    XObject const object = find(path);
    return object.IsValid() && mayBeSelected(object) ? Deselect(object) : *this;
}

XSelection& XSelection::Deselect(std::vector<std::wstring> const& paths) {
    if (IsSubObjectEditMode()) return *this;
    Block const block(Database());
    std::vector<db::Node const*> nodes;
    for (std::wstring const& path : paths)
        if (XObject const object = find(path); object.IsValid() && mayBeSelected(object))
            nodes.push_back(object.getNode());
    if (sg::SelectionNode* const node = selectionNode(); node && IsEditable()) node->removeEntities(nodes);
    return *this;
}

XSelection& XSelection::Clear() {
    Block const block(Database());
    doClear();
    return *this;
}

XSelection& XSelection::SelectAll() {
    Block const block(Database());
    doClear();
    appendOfType<XTransform>();
    appendOfType<XShape>();
    return *this;
}

XSelection& XSelection::SelectByType(std::wstring const& type, XComparisonMode mode) {
    Block const block(Database());
    Qelutils::Vector<XObject> objects;
    Database().Objects(type, mode, objects);
    return Select(objects);
}

// ---- from the objects to their relatives ----

template<class Relative> XSelection& XSelection::selectRelatives(Relative const& relativeOf) {
    if (IsSubObjectEditMode()) return *this;
    Block const block(Database());
    Qelutils::Vector<XObject> objects;
    bool isReplaced = false;
    for (XObject const& object : Objects(objects)) {
        XObject const relative = object.IsValid() ? relativeOf(object) : XObject::Undefined;
        if (!relative.IsValid() || !mayBeSelected(relative)) continue;
        if (!std::exchange(isReplaced, true)) doClear();
        doAppend(relative);
    }
    return *this;
}

XSelection& XSelection::SelectParent() {
    return selectRelatives([](XObject const& object) { return object.Parent(); });
}
XSelection& XSelection::SelectChild() {
    return selectRelatives([](XObject const& object) { return object.Child(0); });
}
XSelection& XSelection::SelectPrevious() {
    return selectRelatives([](XObject const& object) { return nextSelectable(object, &XObject::Previous); });
}
XSelection& XSelection::SelectNext() {
    return selectRelatives([](XObject const& object) { return nextSelectable(object, &XObject::Next); });
}

// ---- changes of the sub-objects ----

XSelection& XSelection::ClearSubObjects() {
    Block const block(Database());
    SubEntities().Clear();
    return *this;
}

XSelection& XSelection::AppendSubObject(int index) {
    if (!IsSubObjectEditMode() || index < 0) return *this;
    Block const block(Database());
    if (!selectionNode()->hasSubEntity(index)) SubEntities().AddInteger(index);
    return *this;
}

XSelection& XSelection::DeselectSubObject(int index) {
    if (!IsSubObjectEditMode() || index < 0) return *this;
    Block const block(Database());
    if (IsEditable()) selectionNode()->removeSubEntity(index);
    return *this;
}

XSelection& XSelection::SetEditMode(int mode) {
    if (mode == 0) {
        SubEntityType().SetInteger(0);
        SubEntities().Clear();
    } else if (Count() == 1) {
        XObject const object = Entities().ObjectRef(0);
        if (object.IsValid() && object.SupportsEditMode(mode)) SubEntityType().SetInteger(mode);
    }
    return *this;
}

// ---- without a change block ----

void XSelection::doAppend(XObject const& object) {
    if (object.IsValid() && !IsSelected(object) && mayBeSelected(object)) Entities().AddObjectRef(object);
}

template<class Type> void XSelection::appendOfType() {
    Qelutils::Vector<XObject> objects;
    Database().Objects(Type::TypeID, SupportsObjectType, objects);
    for (XObject const& object : objects)
        if (Type(object).IsValid()) doAppend(object);
}

void XSelection::doClear() {
    if (!IsValid()) return;
    SetEditMode(0);
    Entities().Clear();
}

void XSelection::onInitialize() {
    XSceneObject::onInitialize();
    Entities().Clear();
    SubEntityType().SetInteger(0);
    SubEntities().Clear();
}

bool XSelection::isSystemSelection() const {
    XApplication& application = XApplication::Instance();
    return application.IsStarted() && *this == application.ActiveScene().Selection();
}

// ---- the same from the object's side ----

XSceneObject& XSceneObject::Select() {
    Scene().Selection().Select(*this);
    return *this;
}

XSceneObject& XSceneObject::SelectAppend() {
    Scene().Selection().Append(*this);
    return *this;
}

XSceneObject& XSceneObject::Deselect() {
    Scene().Selection().Deselect(*this);
    return *this;
}

bool XSceneObject::IsSelected() const { return Scene().queryIsSelected(*this); }

bool XSceneObject::IsParentSelected() const {
    for (XObject above = Parent(); above.IsValid(); above = above.Parent())
        if (Scene().queryIsSelected(above)) return true;
    return false;
}

bool XSceneObject::IsSelectable() const { return Scene().queryIsSelectable(*this); }

bool XSceneObject::IsVisible() const { return Scene().queryIsVisible(*this); }

// Display groups that forbid selection act where objects are picked, not here: a script may select their members.
bool XSceneObject::dynamicSupportsSelection() const {
    if (!IsValid() || !IsSelectable()) return true;
    XObjectDef const* const registered = Database().ObjectDefinition(getNode()->getClassID());
    if (registered && registered->AlwaysSupportsSelection()) return true;
    std::unique_ptr<XObject> const typed(CreateObject());
    auto const* const object = dynamic_cast<XSceneObject const*>(typed.get());
    return !object || object->supportsSelection();
}

}  // namespace Tavo
