#include "tavo/trajectories/timing_curve.h"
#include "qel/sg/trajectory_node.h"
#include <algorithm>
#include <functional>
#include <numeric>

namespace Tavo {
namespace {

using Node = sg::AnimationNode;

}  // namespace

XTimingCurve::XTimingCurve(XTrajectory const& trajectory) :
    _node(trajectory.IsValid() ? static_cast<sg::TrajectoryNode*>(trajectory.getNode())->getTimingCurve() : nullptr) {}

bool XTimingCurve::isSampled() const { return _node && _node->at<db::BoolAttribute>(Node::IsCurveSampled).getValue(); }

Qelutils::Vector<float> const& XTimingCurve::outputs() const {
    static Qelutils::Vector<float> const none;
    return _node ? array(Node::KeyframeOutputValues).getValue() : none;
}

Qelutils::Vector<int> XTimingCurve::order() const {
    Qelutils::Vector<int> slots;
    if (!_node) return slots;
    auto const& inputs = array(Node::KeyframeInputValues).getValue();
    bool const isInOrder = std::is_sorted(inputs.begin(), inputs.end(), std::less_equal<float>());
    if (!isInOrder) return _node->getKeysOrderArray(slots), slots;
    slots.resize(inputs.size());
    std::iota(slots.begin(), slots.end(), 0);
    return slots;
}

XTimingKeys XTimingCurve::keys() const {
    if (!_node) return {};
    return {array(Node::KeyframeInputValues).getValue(), array(Node::KeyframeOutputValues).getValue()};
}

void XTimingCurve::write(XTimingKeys const& keys) const {
    if (!_node || !XObject(_node).IsEditable()) return;
    array(Node::KeyframeInputValues).setElements(0, keys.inputs);
    array(Node::KeyframeOutputValues).setElements(0, keys.outputs);
}

}  // namespace Tavo
