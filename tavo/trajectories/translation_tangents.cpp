// The handles of translation keys, and what their continuity asks of them.
#include "tavo/animation/keyframe.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"

namespace Tavo {
namespace {

using Part = XTranslationKey::Part;

std::wstring const tangentLabel = L"Edit Translation Keyframe Tangent",
                   interpolationLabel = L"Edit Translation Keyframe Interpolation",
                   continuityLabel = L"Edit Translation Keyframe Continuity";

// Of a linear key whose handle lies on it, the ratio divides by zero: a decision of this system.
void moveHandle(XTranslationKey const& key, Part moved, Part other, PathPoint const& to) {
    PathPoint const position(key.position()), opposite(key.point(other).getValue());
    double const ratio = (position - opposite).length() / (position - PathPoint(key.point(moved).getValue())).length();
    int const continuity = key.continuity();
    key.point(moved).setValue(toVector(to));
    if (continuity == CoupledContinuity) key.point(other).setValue(toVector(position + (position - to) * ratio));
    if (continuity == LinearCoupledContinuity) key.point(other).setValue(toVector(position + (position - to)));
}

void moveHandle(XTrajectory const& trajectory, int parameter, Part moved, Part other, XVector3 const& to) {
    XTrajectoryEdit const edit(trajectory, tangentLabel);
    int const slot = edit ? edit.node().isTranslationKeyframe(parameter) : -1;
    if (slot >= 0) moveHandle(XTranslationKeys(edit.node())[slot], moved, other, PathPoint(to.AsVector()));
}

// The handles come into line, each with the length that is given.
void align(XTranslationKey const& key, double inLength, double outLength) {
    PathPoint const position(key.position());
    PathPoint const way = normalised(PathPoint(key.outHandle()) - PathPoint(key.inHandle()));
    key.setOutHandle(toVector(position + way * outLength));
    key.setInHandle(toVector(position - way * inLength));
}

void setContinuity(XTranslationKey const& key, int continuity) {
    PathPoint const position(key.position());
    double const in = (PathPoint(key.inHandle()) - position).length();
    double const out = (PathPoint(key.outHandle()) - position).length();
    if (continuity == CoupledContinuity) align(key, in, out);
    if (continuity == LinearCoupledContinuity) align(key, (in + out) * 0.5, (in + out) * 0.5);
    key.setContinuity(continuity);
}

}  // namespace

XTrajectory& XTrajectory::EditTranslationKeyframeInputTangent(int parameter, XVector3 const& point) {
    moveHandle(*this, parameter, Part::InHandle, Part::OutHandle, point);
    return *this;
}

XTrajectory& XTrajectory::EditTranslationKeyframeOutputTangent(int parameter, XVector3 const& point) {
    moveHandle(*this, parameter, Part::OutHandle, Part::InHandle, point);
    return *this;
}

XTrajectory& XTrajectory::EditTranslationKeyframeTangentsPoints_interactive(IDs const& ids, XVector3 const& delta) {
    XTrajectoryEdit const edit(*this, tangentLabel);
    if (!edit) return *this;
    XTranslationKeys const keys(edit.node());
    for (int id : ids) {
        if (id < 0 || id / 2 >= keys.count()) continue;
        Part const moved = id % 2 == 0 ? Part::InHandle : Part::OutHandle;
        Part const other = id % 2 == 0 ? Part::OutHandle : Part::InHandle;
        XTranslationKey const key = keys[id / 2];
        moveHandle(key, moved, other, PathPoint(key.point(moved).getValue()) + PathPoint(delta.AsVector()));
    }
    return *this;
}

XTrajectory& XTrajectory::EditTranslationKeyframeInterpolationType(int parameter, std::wstring const& type) {
    return EditTranslationKeyframeInterpolationType(IDs{parameter}, type);
}

XTrajectory& XTrajectory::EditTranslationKeyframeInterpolationType(IDs const& parameters, std::wstring const& type) {
    XTrajectoryEdit const edit(*this, interpolationLabel);
    int const interpolation = interpolationOf(type);
    if (!edit || interpolation < 0) return *this;
    for (int slot : translationSlots(edit.node(), parameters))
        XTranslationKeys(edit.node())[slot].setInterpolation(interpolation);
    return *this;
}

XTrajectory& XTrajectory::EditTranslationKeyframeContinuityType(int parameter, std::wstring const& type) {
    return EditTranslationKeyframeContinuityType(IDs{parameter}, type);
}

XTrajectory& XTrajectory::EditTranslationKeyframeContinuityType(IDs const& parameters, std::wstring const& type) {
    XTrajectoryEdit const edit(*this, continuityLabel);
    int const continuity = continuityOf(type);
    if (!edit || continuity < 0) return *this;
    for (int slot : translationSlots(edit.node(), parameters))
        setContinuity(XTranslationKeys(edit.node())[slot], continuity);
    return *this;
}

}  // namespace Tavo
