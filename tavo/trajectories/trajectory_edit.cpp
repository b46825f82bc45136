#include "tavo/trajectories/trajectory_edit.h"
#include "tavo/animation/keyframe.h"
#include <algorithm>
#include <span>

namespace Tavo {
namespace {

constexpr double sameAttachPoint = 1e-6;

int placeOf(std::wstring const& word, std::span<XEnumerationWord const> words) {
    auto const it = std::find_if(words.begin(), words.end(), [&](auto const& each) { return each.key == word; });
    return it == words.end() ? -1 : int(it - words.begin());
}

}  // namespace

XTrajectoryEdit::XTrajectoryEdit(XTrajectory const& trajectory, std::wstring const& label) :
    _block(trajectory.Database(), label),
    _node(trajectory.IsValid() && trajectory.IsEditable() ? static_cast<sg::TrajectoryNode*>(trajectory.getNode())
                                                          : nullptr) {}

Qelutils::Vector<int> distinctSlots(Qelutils::Vector<int> slots) {
    std::sort(slots.begin(), slots.end());
    slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
    slots.erase(slots.begin(), std::lower_bound(slots.begin(), slots.end(), 0));
    return slots;
}

Qelutils::Vector<int> translationSlots(sg::TrajectoryNode& node, Qelutils::Vector<int> const& parameters) {
    Qelutils::Vector<int> slots;
    for (int parameter : parameters) slots.push_back(node.isTranslationKeyframe(parameter));
    return distinctSlots(std::move(slots));
}

Qelutils::Vector<int> rotationSlots(sg::TrajectoryNode& node, Qelutils::Vector<float> const& attach) {
    Qelutils::Vector<int> slots;
    for (float each : attach) slots.push_back(rotationSlot(node, each));
    return distinctSlots(std::move(slots));
}

int rotationSlot(sg::TrajectoryNode& node, float attach) {
    return node.isRotationKeyframe(double(attach), sameAttachPoint);
}

int interpolationOf(std::wstring const& word) { return placeOf(word, InterpolationWords); }
int continuityOf(std::wstring const& word) { return placeOf(word, ContinuityWords); }

}  // namespace Tavo
