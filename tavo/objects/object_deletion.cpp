// How an object goes, and what goes with it. Hierarchies and chains of inputs may be of any depth: what is under way is
// kept in a list and not on the call stack.
#include "qel/sg/transform_node.h"
#include "tavo/app/application.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/database.h"
#include "tavo/objects/graph_access.h"
#include "tavo/objects/object.h"

namespace Tavo {

struct XObject::Deletion {
    // An object between its onDelete and its end, with what goes before it: its inputs that nothing else needs, then
    // its children.
    struct Level {
        XObject object;
        Qelutils::Vector<XAttribute> inputs;
        Qelutils::Vector<XObject> children;
        std::size_t nextInput = 0, nextChild = 0;
        bool areChildrenListed = false;

        XObject next();  // invalid when there is no more
    };
    std::vector<Level> levels;

    void enter(XObject object);
    void leave();
};

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
        return;
    }
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

void XObject::Delete() {
    Deletion deletion;
    deletion.enter(*this);
    while (!deletion.levels.empty())
        if (XObject const next = deletion.levels.back().next(); next.IsValid())
            deletion.enter(next);
        else
            deletion.leave();
}

void XObject::Remove() {
    if (!dynamicSupportsDeletion() || !IsValid()) return;
    dynamicOnDelete();
    Database().ReparentChildObjects(*this);
    if (XObject parent = deleteNode(); parent.IsValid()) parent.Delete();
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
