// Translation keys come and go.
#include "tavo/trajectories/new_keys.h"
#include "tavo/trajectories/points.h"
#include "tavo/trajectories/trajectory_edit.h"

namespace Tavo {
namespace {

std::wstring const appendLabel = L"Append Translation Keyframe", insertLabel = L"Insert Translation Keyframe",
                   deleteLabel = L"Delete Translation Keyframe";

using NewKey = XNewTranslationKey;
using Handles = NewKey::Handles;

NewKey linearKey(XVector3 const& position) { return {position.AsVector(), {}}; }

NewKey mirroredKey(XVector3 const& position, XVector3 const& out) {
    PathPoint const in = PathPoint(position.AsVector()) * 2 - PathPoint(out.AsVector());
    return {position.AsVector(), Handles{toVector(in), out.AsVector()}, LinearCoupledContinuity};
}

NewKey brokenKey(XVector3 const& in, XVector3 const& position, XVector3 const& out) {
    return {position.AsVector(), Handles{in.AsVector(), out.AsVector()}};
}

XTrajectory& append(XTrajectory& trajectory, NewKey const& key) {
    if (XTrajectoryEdit const edit(trajectory, appendLabel); edit)
        key.addTo(edit.node(), XTranslationKeys(edit.node()).count());
    return trajectory;
}

XTrajectory& insert(XTrajectory& trajectory, int number, NewKey const& key) {
    XTrajectoryEdit const edit(trajectory, insertLabel);
    if (!edit || edit.node().isTranslationKeyframe(number) < 0) return trajectory;
    XTranslationKeys const keys(edit.node());
    for (int slot = 0; slot < keys.count(); ++slot)
        if (keys[slot].number() >= number) keys[slot].raise(1);
    key.addTo(edit.node(), number);
    return trajectory;
}

}  // namespace

XTrajectory& XTrajectory::AppendTranslationKeyframe(XVector3 const& position) {
    return append(*this, linearKey(position));
}

XTrajectory& XTrajectory::AppendTranslationKeyframe(XVector3 const& position, XVector3 const& outHandle) {
    return append(*this, mirroredKey(position, outHandle));
}

XTrajectory& XTrajectory::AppendTranslationKeyframe(XVector3 const& inHandle, XVector3 const& position,
                                                    XVector3 const& outHandle) {
    return append(*this, brokenKey(inHandle, position, outHandle));
}

XTrajectory& XTrajectory::InsertTranslationKeyframe(int parameter, XVector3 const& position) {
    return insert(*this, parameter, linearKey(position));
}

XTrajectory& XTrajectory::InsertTranslationKeyframe(int parameter, XVector3 const& position,
                                                    XVector3 const& outHandle) {
    return insert(*this, parameter, mirroredKey(position, outHandle));
}

XTrajectory& XTrajectory::InsertTranslationKeyframe(int parameter, XVector3 const& inHandle, XVector3 const& position,
                                                    XVector3 const& outHandle) {
    return insert(*this, parameter, brokenKey(inHandle, position, outHandle));
}

XTrajectory& XTrajectory::DeleteTranslationKeyframe(int parameter) { return DeleteTranslationKeyframe(IDs{parameter}); }

XTrajectory& XTrajectory::DeleteTranslationKeyframe(IDs const& parameters) {
    XTrajectoryEdit const edit(*this, deleteLabel);
    if (!edit) return *this;
    XTranslationKeys const keys(edit.node());
    IDs const slots = translationSlots(edit.node(), parameters);
    if (slots.empty()) return *this;
    for (auto slot = slots.rbegin(); slot != slots.rend(); ++slot) keys.array().removeAt(std::size_t(*slot));
    IDs order;
    edit.node().getTranslationKeysOrderArray(order);
    for (int i = 0; i < int(order.size()); ++i) keys[order[std::size_t(i)]].setNumber(i);
    return *this;
}

}  // namespace Tavo
