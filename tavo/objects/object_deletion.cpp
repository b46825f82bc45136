// How an object goes, and what goes with it.
#include "tavo/objects/object_deletion.h"
#include "qel/sg/transform_node.h"
#include "tavo/app/application.h"
#include "tavo/objects/database.h"
#include "tavo/objects/graph_access.h"

namespace Tavo {

XObject XObject::Deletion::Level::next() {
    while (nextInput < inputs.size())
        if (XObject source = object.releaseInput(inputs[nextInput++]); source.isUnconnected()) return source;
    if (!areChildrenListed) object.ChildObjects(children);
    areChildrenListed = true;
    while (nextChild < children.size())
        if (XObject const& child = children[nextChild++]; child.IsValid()) return child;
    return {};
}

void XObject::Deletion::enter(XObject object) {
    if (!object.IsValid() || !object.dynamicSupportsDeletion()) {
        XApplication::Instance().LogError(L"The object '%s' does not support deletion", object.Path());
        departures.ExpectHierarchy(object);  // it goes all the same with what it stands below
        return;
    }
    departures.Expect(object);
    object.dynamicOnDelete();
    levels.push_back({object, connectedInputs(object), {}});
}

void XObject::Deletion::leave() {
    XObject object = levels.back().object;
    levels.pop_back();
    object.DisconnectInputAttributes();
    object.DisconnectOutputAttributes();
    if (XObject const parent = object.deleteNode(); parent.IsValid()) enter(parent);
}

void XObject::Deletion::Run(XObject const& object) {
    enter(object);
    while (!levels.empty())
        if (XObject const next = levels.back().next(); next.IsValid())
            enter(next);
        else
            leave();
}

void XObject::Delete() { Deletion(XObjectEvents::Deleted).Run(*this); }

void XObject::Remove() {
    if (!dynamicSupportsDeletion() || !IsValid()) return;
    dynamicOnDelete();
    Database().ReparentChildObjects(*this);
    XObject parent;
    {
        XObjectEvents::Departures departures(XObjectEvents::Removed);
        departures.ExpectHierarchy(*this);  // a child that could not move goes along
        parent = deleteNode();
    }
    if (parent.IsValid()) parent.Delete();
}

// What runs before may have taken the object along already: then the parent is not asked for either.
XObject XObject::deleteNode() {
    XObject const parent = mustDeleteParent() ? Parent() : XObject();
    Database().deleteNode(*this);
    return parent;
}

XObject& XObject::DeleteChild(std::wstring const& name) {
    if (XObject child = Child(name); child.IsValid()) child.Delete();
    return *this;
}

XObject& XObject::DeleteChild(int index) {
    if (XObject child = Child(index); child.IsValid()) child.Delete();
    return *this;
}

XObject& XObject::DeleteChildObjects() {
    Qelutils::Vector<XObject> children;
    ChildObjects(children);
    for (XObject& child : children)
        if (child.IsValid()) child.Delete();
    return *this;
}

bool XObject::isUnconnected() const { return AttributeCount() > 0 && !HasInputAttributes() && !HasOutputAttributes(); }

void XObject::DeleteIfUnconnected() {
    if (isUnconnected()) Delete();
}

// What has a place in space is tied to what stands above and below it: it does not go for having fed something.
XObject XObject::releaseInput(XAttribute& input) const {
    XObject const source = input.InputObject();
    if (!source.IsValid() || !source.SupportsDeletion() || source.IsParentOf(*this)) return {};
    input.DisconnectInput();
    return source.isNodeOfType(sg::TransformBaseNode::Def) ? XObject() : source;
}

void XObject::DeleteInputObjects() {
    for (XAttribute& input : connectedInputs(*this)) releaseInput(input).DeleteIfUnconnected();
}

}  // namespace Tavo
