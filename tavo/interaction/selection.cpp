#include "tavo/interaction/selection.h"
#include "tavo/app/application.h"
#include "tavo/kinematics/shape.h"
#include "tavo/objects/scene.h"

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

int indexOf(XAttribute const& references, XObject const& object) {
    for (int i = 0, count = references.ArraySize(); i < count; ++i)
        if (references.ObjectRef(i) == object) return i;
    return -1;
}

}  // namespace

int XSelection::EditMode() const { return IsValid() && Count() == 1 ? SubEntityType().Integer() : 0; }

bool XSelection::IsSubObjectEditMode(XObject const& object) const { return EditMode() != 0 && IsSelected(object); }

bool XSelection::IsSelected(XObject const& object) const { return IsValid() && indexOf(Entities(), object) >= 0; }

XObject XSelection::Object(int index) const {
    if (index < 0 || index >= Count()) return XObject::Undefined;
    return XApplication::Instance().ActiveScene().Object(Entities().ObjectRef(index).Path());
}

Qelutils::Vector<XObject>& XSelection::Objects(Qelutils::Vector<XObject>& out) const {
    Entities().ObjectRefs(out);
    return out;
}

XObject XSelection::Object(std::wstring const& type, XComparisonMode mode) const {
    XObject const first = Object(0);
    return first.IsValid() && first.Matches(type, mode) ? first : XObject();
}
XSelection& XSelection::SelectAll() {
    Qelutils::Vector<XObject> all;
    Clear();
    Database().Objects(XTransform::TypeID, SupportsObjectType, all);
    for (auto& o : all) Append(o);
    Database().Objects(XShape::TypeID, SupportsObjectType, all);
    for (auto& o : all) Append(o);
    return *this;
}
XSelection& XSelection::SelectParent() { return Select(Object(0).Parent()); }
XSelection& XSelection::SelectChild() { return Select(Object(0).Child(0)); }
XSelection& XSelection::SelectNext() { return Select(Object(0).Next()); }
XSelection& XSelection::SelectPrevious() { return Select(Object(0).Previous()); }

XSelection& XSelection::Select(XObject const& object) {
    if (!object.IsValid()) return *this;
    Block const block(Database());
    doClear();
    doAppend(object);
    return *this;
}

XSelection& XSelection::Append(XObject const& object) {
    Block const block(Database());
    doAppend(object);
    return *this;
}

XSelection& XSelection::Deselect(XObject const& object) {
    if (IsSubObjectEditMode()) return *this;
    Block const block(Database());
    if (int const index = indexOf(Entities(), object); index >= 0) Entities().Delete(index);
    return *this;
}

XSelection& XSelection::Clear() {
    Block const block(Database());
    doClear();
    return *this;
}

XSelection& XSelection::ClearSubObjects() {
    Block const block(Database());
    SubEntities().Clear();
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

void XSelection::doAppend(XObject const& object) {
    if (object.IsValid() && !IsSelected(object) && XSceneObject(object).SupportsSelection())
        Entities().AddObjectRef(object);
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
    std::unique_ptr<XObject> const typed(CreateObject());
    auto const* const object = dynamic_cast<XSceneObject const*>(typed.get());
    return !object || object->supportsSelection();
}

}  // namespace Tavo
