// How a scene makes and moves objects: what has a place in space hangs below the root object, and keeps that place.
#include "tavo/interaction/scene_objects.h"
#include "tavo/objects/object_events.h"
#include <optional>

namespace Tavo {
namespace {

bool isTransform(XObject const& object) { return object.SupportsType(XTransform::TypeID); }

bool mayBecomeChild(XObject const& object, XObject const& parent) {
    return parent.IsValid() && object.getNode() && parent.getNode() &&
           parent.getNode()->canBeParentOf(*object.getNode());
}

void moveNode(sg::Node& node, sg::Node& parent) {
    while (db::Node* const former = node.getParent())
        if (!former->removeChild(node)) break;
    parent.addChild(node);
}

void moveNamed(XObject& object, sg::Node& parent) {
    XObjectEvents::Comparison const comparison(object);
    std::wstring const name = object.Name();
    moveNode(*object.getNode(), parent);
    object.SetName(name);
}

// Of an object that is being created: its first parent is no new one.
XObject& settle(XObject& object, XObject const& parent) {
    XObjectEvents::Pause const pause(object.Database());
    return object.SetParent(parent);
}

}  // namespace

XObject XScene::CreateNode(std::wstring const& nodeType) { return CreateNode(nodeType, XObject::Undefined); }

XObject XScene::CreateNode(std::wstring const& nodeType, XObject const& parent) {
    XObject object = XDatabase::CreateNode(nodeType, parent);
    if (!object.IsValid() || parent.IsValid()) return object;
    if (isTransform(object)) return settle(object, RootObject());
    if (!object.SupportsType(XShape::TypeID)) return object;
    BeginChangeBlock();  // who is told of the shape finds it below its transform
    settle(object, CreateObject(XTransform::TypeID));
    EndChangeBlock();
    return object;
}

void XScene::reparent(XObject& object, XObject const& parent, bool, bool keepWorld) {
    XObject const target = isTransform(object) && !isTransform(parent) ? XObject(RootObject()) : parent;
    if (!mayBecomeChild(object, target)) return;
    BeginChangeBlock();
    XTransform transform(object);
    std::optional<XMatrix> world;
    if (keepWorld && transform.IsValid()) world = transform.WorldMatrix().Matrix();
    moveNamed(object, *target.getNode());
    if (world) transform.SetWorldMatrix(*world);
    EndChangeBlock();
}

void XScene::unparent(XObject& object) { object.SetParent(RootObject()); }

void XScene::ReparentChildObjects(XObject& object) {
    XObject const above = object.Parent();
    XObject const target = above.IsValid() ? above : XObject(RootObject());
    if (!target.IsValid()) return;
    Qelutils::Vector<XObject> children;
    object.ChildObjects(children);
    for (XObject& child : children)
        if (child.IsValid()) reparent(child, target, false, true);
}

}  // namespace Tavo
