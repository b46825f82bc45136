#include "tavo/kinematics/transform.h"
#include "tavo/objects/scene.h"

namespace Tavo {

using Node = sg::TransformNode;

// ---- channels ----

XVector3 XTransform::channels(int first) const {
    return {channel(first, 0).Float(), channel(first, 1).Float(), channel(first, 2).Float()};
}

XTransform& XTransform::setChannels(int first, XVector3 const& value) {
    for (unsigned axis = 0; axis < 3; ++axis) channel(first, int(axis)).SetFloat(value[axis]);
    return *this;
}

// ---- the hierarchy ----

void XTransform::ChildTransforms(Qelutils::Vector<XObject>& out) const {
    ChildObjects(out, TypeID, SupportsObjectType);
}

void XTransform::DescendantTransforms(Qelutils::Vector<XObject>& out) const {
    DescendantObjects(out, TypeID, SupportsObjectType);
}

XTransform XTransform::ParentTransform() const { return XTransform(Parent()); }

XTransform XTransform::RootTransform() const { return XTransform(FindAncestor(TypeID, SupportsObjectType)); }

int XTransform::Depth() const {
    int depth = 0;
    for (XObject above = FindParentObject(TypeID, SupportsObjectType); above.IsValid();
         above = above.FindParentObject(TypeID, SupportsObjectType))
        ++depth;
    return depth;
}

// ---- life ----

bool XTransform::isSceneOrigin() const { return hasLiveNode() && Scene().IsRootObject(*this); }

void XTransform::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
}

void XTransform::initializeAs(XWord const& name, XColour const& colour) {
    SetName(name);
    SetIdentity();
    SetVisible(true);
    SetColour(colour);
}

// ---- copying and freezing ----

XTransform& XTransform::CopyTransform(XTransform const& other) {
    for (int first :
         {Node::PreTranslation, Node::Translation, Node::PreRotation, Node::Rotation, Node::PostRotation, Node::Scale})
        setChannels(first, other.channels(first));
    return *this;
}

XTransform& XTransform::FreezeRotation() {
    setChannels(Node::PreRotation, LocalMatrix().Matrix().RotationEulerAngles());
    setChannels(Node::Rotation, XVector3());
    return setChannels(Node::PostRotation, XVector3());
}

XTransform& XTransform::FreezeTranslation() {
    setChannels(Node::PreTranslation, LocalTranslation());
    return setChannels(Node::Translation, XVector3());
}

}  // namespace Tavo
