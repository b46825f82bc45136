// Rotation keys and their tangents. Unlike handles, tangents of one key point the same way on both sides.
#include "tavo/app/application.h"
#include "tavo/trajectories/new_keys.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"
#include <algorithm>

namespace Tavo {
namespace {

std::wstring const attachLabel = L"Attach Rotation Keyframe", editLabel = L"Edit Rotation Keyframe",
                   deleteLabel = L"Delete Rotation Keyframe";

// The two spellings are decisions of this system.
constexpr wchar_t const* occupied = L"A rotation keyframe already exists at that attachPoint.";
constexpr wchar_t const* occupiedWithTangents = L"A rotation keyframe already exists at that attach point.";

using Tangents = XNewRotationKey::Tangents;

XTrajectory& attachKey(XTrajectory& trajectory, float attach, XNewRotationKey const& key) {
    XTrajectoryEdit const edit(trajectory, attachLabel);
    if (!edit) return trajectory;
    if (rotationSlot(edit.node(), attach) < 0)
        key.addTo(edit.node(), attach);
    else
        XApplication::Instance().LogError(key.tangents ? occupiedWithTangents : occupied);
    return trajectory;
}

// `action` on each of the keys, in one change block.
void forKeys(XTrajectory const& trajectory, Qelutils::Vector<float> const& attach, auto const& action) {
    XTrajectoryEdit const edit(trajectory, editLabel);
    if (!edit) return;
    for (int slot : rotationSlots(edit.node(), attach)) action(XRotationKeys(edit.node())[slot]);
}

void forWeights(XTrajectoryEdit const& edit, Qelutils::Vector<float> const& weights, auto const& action) {
    if (!edit) return;
    XRotationKeys const keys(edit.node());
    for (int slot = 0; slot < std::min(keys.count(), int(weights.size())); ++slot)
        if (weights[std::size_t(slot)] != 0) action(keys[slot], weights[std::size_t(slot)]);
}

void turn(XRotationKey const& key, XQuaternion const& rotation) {
    key.setOrientation(XQuaternion().Multiply(rotation, XQuaternion(key.orientation())).AsQuaternion());
}

void turnByWeights(XTrajectoryEdit const& edit, Qelutils::Vector<float> const& weights, XQuaternion const& rotation) {
    forWeights(edit, weights, [&](XRotationKey const& key, float weight) {
        turn(key, XQuaternion().SphericalInterpolate(XQuaternion(), rotation, weight));
    });
}

void slide(XRotationKey const& key, float delta, int lastTranslationKey) {
    key.setAttachPoint(std::clamp(key.attachPoint() + delta, 0.F, float(std::max(lastTranslationKey, 0))));
}

void slideByWeights(XTrajectoryEdit const& edit, Qelutils::Vector<float> const& weights, float delta) {
    if (!edit) return;
    int const last = XTranslationKeys(edit.node()).count() - 1;
    forWeights(edit, weights, [&](XRotationKey const& key, float weight) { slide(key, weight * delta, last); });
}

// Of a linear key with a zero tangent, the ratio divides by zero: a decision of this system.
Qelp::Vector3 opposite(int continuity, Qelp::Vector3 const& other, Qelp::Vector3 const& before,
                       Qelp::Vector3 const& after) {
    if (continuity == LinearCoupledContinuity) return after;
    if (continuity != CoupledContinuity) return other;
    return toVector(PathPoint(after) * (PathPoint(other).length() / PathPoint(before).length()));
}

void setContinuity(XRotationKey const& key, int continuity) {
    PathPoint const in(key.inTangent()), out(key.outTangent());
    PathPoint const way = normalised(in + out), mean = middle(in, out);
    if (continuity == CoupledContinuity) {
        key.setInTangent(toVector(way * in.length()));
        key.setOutTangent(toVector(way * out.length()));
    } else if (continuity == LinearCoupledContinuity) {
        key.setInTangent(toVector(mean));
        key.setOutTangent(toVector(mean));
    }
    key.setContinuity(continuity);
}

}  // namespace

XTrajectory& XTrajectory::AttachRotationKeyframe(float attach, XQuaternion const& orientation) {
    return attachKey(*this, attach, {orientation.AsQuaternion(), {}});
}

XTrajectory& XTrajectory::AttachRotationKeyframe(float attach, XQuaternion const& orientation,
                                                 XVector3 const& tangent) {
    Tangents const both{tangent.AsVector(), tangent.AsVector()};
    return attachKey(*this, attach, {orientation.AsQuaternion(), both, LinearCoupledContinuity});
}

XTrajectory& XTrajectory::AttachRotationKeyframe(float attach, XVector3 const& inTangent,
                                                 XQuaternion const& orientation, XVector3 const& outTangent) {
    Tangents const both{inTangent.AsVector(), outTangent.AsVector()};
    return attachKey(*this, attach, {orientation.AsQuaternion(), both});
}

XTrajectory& XTrajectory::DeleteRotationKeyframe(float attach) { return DeleteRotationKeyframe(Floats{attach}); }

XTrajectory& XTrajectory::DeleteRotationKeyframe(Floats const& attach) {
    XTrajectoryEdit const edit(*this, deleteLabel);
    if (!edit) return *this;
    IDs const slots = rotationSlots(edit.node(), attach);
    for (auto slot = slots.rbegin(); slot != slots.rend(); ++slot)
        XRotationKeys(edit.node()).array().removeAt(std::size_t(*slot));
    return *this;
}

// ---- orientation and place ----

XTrajectory& XTrajectory::EditRotationKeyframeOrientation(float attach, XQuaternion const& rotation) {
    return EditRotationKeyframeOrientation(Floats{attach}, rotation);
}

XTrajectory& XTrajectory::EditRotationKeyframeOrientation(Floats const& attach, XQuaternion const& rotation) {
    forKeys(*this, attach, [&](XRotationKey const& key) { turn(key, rotation); });
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeOrientation(Floats const& attach, XDropOff const& dropoff,
                                                          XQuaternion const& rotation) {
    XTrajectoryEdit const edit(*this, editLabel);
    Floats weights;
    computeDropoffWeights_rotations(attach, dropoff, weights);
    turnByWeights(edit, weights, rotation);
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeOrientationBallOfInfluence(XVector3 const& centre, float radius,
                                                                         XDropOff const& dropoff,
                                                                         XQuaternion const& rotation) {
    XTrajectoryEdit const edit(*this, editLabel);
    Floats weights;
    computeDropoffWeights_rotations(centre, radius, dropoff, weights);
    turnByWeights(edit, weights, rotation);
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeAttachPoint(float attach, float delta) {
    return EditRotationKeyframeAttachPoint(Floats{attach}, delta);
}

XTrajectory& XTrajectory::EditRotationKeyframeAttachPoint(Floats const& attach, float delta) {
    int const last = TranslationKeyframesArray().AttributeCount() - 1;
    forKeys(*this, attach, [&](XRotationKey const& key) { slide(key, delta, last); });
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeAttachPoint(Floats const& attach, XDropOff const& dropoff, float delta) {
    XTrajectoryEdit const edit(*this, editLabel);
    Floats weights;
    computeDropoffWeights_rotations(attach, dropoff, weights);
    slideByWeights(edit, weights, delta);
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeAttachPointBallOfInfluence(XVector3 const& centre, float radius,
                                                                         XDropOff const& dropoff, float delta) {
    XTrajectoryEdit const edit(*this, editLabel);
    Floats weights;
    computeDropoffWeights_rotations(centre, radius, dropoff, weights);
    slideByWeights(edit, weights, delta);
    return *this;
}

// ---- tangents and kinds ----

XTrajectory& XTrajectory::EditRotationKeyframeInTangent(float attach, XVector3 const& tangent) {
    forKeys(*this, {attach}, [&](XRotationKey const& key) {
        key.setOutTangent(opposite(key.continuity(), key.outTangent(), key.inTangent(), tangent.AsVector()));
        key.setInTangent(tangent.AsVector());
    });
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeOutTangent(float attach, XVector3 const& tangent) {
    forKeys(*this, {attach}, [&](XRotationKey const& key) {
        key.setInTangent(opposite(key.continuity(), key.inTangent(), key.outTangent(), tangent.AsVector()));
        key.setOutTangent(tangent.AsVector());
    });
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeInterpolationType(float attach, std::wstring const& type) {
    return EditRotationKeyframeInterpolationType(Floats{attach}, type);
}

XTrajectory& XTrajectory::EditRotationKeyframeInterpolationType(Floats const& attach, std::wstring const& type) {
    int const interpolation = interpolationOf(type);
    forKeys(*this, attach, [&](XRotationKey const& key) {
        if (interpolation >= 0) key.setInterpolation(interpolation);
    });
    return *this;
}

XTrajectory& XTrajectory::EditRotationKeyframeContinuityType(float attach, std::wstring const& type) {
    return EditRotationKeyframeContinuityType(Floats{attach}, type);
}

XTrajectory& XTrajectory::EditRotationKeyframeContinuityType(Floats const& attach, std::wstring const& type) {
    int const continuity = continuityOf(type);
    forKeys(*this, attach, [&](XRotationKey const& key) {
        if (continuity >= 0) setContinuity(key, continuity);
    });
    return *this;
}

}  // namespace Tavo
