// Turning a transform so that one of its axes points at its children.
#include "tavo/kinematics/alignment.h"
#include "tavo/objects/scene.h"

namespace Tavo {
namespace {

XVector3 axisOf(XMatrix const& m, XDirection direction) {
    return direction == XAxis ? m.XAxis() : direction == YAxis ? m.YAxis() : m.ZAxis();
}

}  // namespace

std::optional<XDirection> alignment::directionOf(std::wstring const& axis) {
    constexpr XWord names[] = {L"XAxis", L"YAxis", L"ZAxis"};
    for (int i = 0; i < 3; ++i)
        if (names[i] == axis) return XDirection(i);
    return {};
}

XVector3 alignment::targetOf(Qelutils::Vector<XObject> const& children, XAlignmentMode mode) {
    if (mode == AlignToFirstChild) return XTransform(children.front()).WorldTranslation();
    return mode == AlignToChildAverage ? XTransform::calculateAverageTranslation(children) : XVector3();
}

bool alignment::turnAxis(XMatrix& frame, XDirection direction, XVector3 const& target) {
    XVector3 const position = frame.Translation();
    XVector3 const axis = axisOf(frame, direction).Normalize();
    XVector3 const wanted = XVector3().Subtract(target, position).Normalize();
    float const angle = wanted.RelativeAngle(axis);
    if (angle == 0) return false;
    frame.Multiply(XMatrix(XVector3().CrossProduct(wanted, axis).Normalize(), -angle));
    frame.SetTranslation(position);
    return true;
}

XVector3 XTransform::calculateAverageTranslation(Qelutils::Vector<XObject> const& transforms) {
    XVector3 sum;
    for (XObject const& object : transforms)
        if (XTransform const transform(object); transform.IsValid()) sum.Add(transform.WorldTranslation());
    return transforms.empty() ? sum : sum.Scale(1 / float(transforms.size()));
}

XTransform& XTransform::AlignAxis(XDirection direction, XAlignmentMode mode) {
    if (TransformDataSource().Enumeration() == LocalMatrixSource) return *this;
    Qelutils::Vector<XObject> descendants, children;
    DescendantTransforms(descendants);
    ChildTransforms(children);
    if (!descendants.empty() && !children.empty()) {
        XTransform const above = RootTransform();
        XTransform const root = above.IsValid() ? above : *this;
        Scene().ClearAnimation(root);
        Scene().DisconnectAnimation(root);
        if (!turnAxisTo(direction, alignment::targetOf(children, mode), descendants)) return *this;
        FreezeRotation();
    }
    Scene().UpdateDisplay();
    return *this;
}

// The descendants stay where they are in the world. False when the axis points there already.
bool XTransform::turnAxisTo(XDirection direction, XVector3 const& target,
                            Qelutils::Vector<XObject> const& descendants) {
    Qelutils::Vector<XMatrix> places;
    for (XObject const& object : descendants) places.push_back(XTransform(object).WorldMatrix().Matrix());
    XMatrix world = WorldMatrix().Matrix();
    if (!alignment::turnAxis(world, direction, target)) return false;
    SetWorldMatrix(world, UpdateAll);
    for (std::size_t i = 0; i < descendants.size(); ++i)
        XTransform(descendants[i]).SetWorldMatrix(places[i], UpdateAll);
    return true;
}

XTransform& XTransform::AlignAxis(std::wstring const& axis, XAlignmentMode mode) {
    std::optional<XDirection> const direction = alignment::directionOf(axis);
    return direction ? AlignAxis(*direction, mode) : *this;
}

}  // namespace Tavo
