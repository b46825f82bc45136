// How much each key takes part in an edit: where the weighed things are, for drop_off_weights.h to weigh them.
#include "tavo/animation/drop_off_weights.h"
#include "tavo/trajectories/trajectory_edit.h"

namespace Tavo {
namespace {

using Node = sg::TrajectoryNode;

double lengthOf(Node& node) { return double(float(node.getPath().length())); }

Qelutils::Vector<Qelp::Vector3> positionsOf(Node const& node) {
    XTranslationKeys const keys(node);
    Qelutils::Vector<Qelp::Vector3> out;
    out.reserve(std::size_t(keys.count()));
    for (int slot = 0; slot < keys.count(); ++slot) out.push_back(keys[slot].position());
    return out;
}

XPathPlaces translationPlaces(Node& node) {
    sg::PathGeometry const& path = node.getPath();
    Qelutils::Vector<double> fractions(std::size_t(path.keyCount()));
    for (int rank = 0; rank < path.keyCount(); ++rank)
        fractions[std::size_t(path.order()[std::size_t(rank)])] = path.fractionAt(rank);
    return {positionsOf(node), std::move(fractions), lengthOf(node)};
}

XPathPlaces rotationPlaces(Node& node) {
    XRotationKeys const keys(node);
    XPathPlaces places{{}, {}, lengthOf(node)};
    for (int slot = 0; slot < keys.count(); ++slot) {
        double const attach = double(keys[slot].attachPoint());
        Qelp::Vector3 position;
        node.computePosition_parameter(attach, position);
        places.positions.push_back(position);
        places.fractions.push_back(node.arcLengthMap(attach));
    }
    return places;
}

XPathPlaces handlePlaces(Node& node) {
    auto const& fractions = node.at<db::FloatArrayAttribute>(Node::TimingHandlesArcLengthsArray).getValue();
    return {node.at<db::Vector3ArrayAttribute>(Node::TimingHandlesPositionsArray).getValue(),
            {fractions.begin(), fractions.end()},
            lengthOf(node)};
}

Qelutils::Vector<XSafeGuard> safeGuardsOf(XTrajectory const& trajectory) {
    Qelutils::Vector<XSafeGuard> guards;
    XAttribute const array = trajectory.SafeGuardsArray();
    for (int i = 0; i < array.AttributeCount(); ++i) {
        XAttribute const guard = array.Attribute(i);
        auto const number = [&](int part) { return guard.Attribute(part).Float(); };
        XDropOff const dropoff(number(2), XDropOff::CurveDropoff, number(3), number(4));
        guards.push_back({guard.Attribute(0).Vector().AsVector(), number(1), dropoff});
    }
    return guards;
}

void keepSafeGuards(XTrajectory const& trajectory, Node const& node, Qelutils::Vector<float>& weights) {
    if (trajectory.UseSafeGuards().Boolean())
        MultiplySafeGuardWeights(positionsOf(node), safeGuardsOf(trajectory), weights);
}

// One weight a handle, whatever the arrays of the node hold.
void keepTips(XTrajectory const& trajectory, XPathPlaces const& places, Qelutils::Vector<float>& weights) {
    XDropOff const tips(trajectory.TimingTipsDropoffRange().Float(), XDropOff::CurveDropoff,
                        trajectory.TimingTipsDropoffPinch().Float(), trajectory.TimingTipsDropoffBubble().Float());
    if (trajectory.TimingPreserveTips().Boolean()) MultiplyTipsWeights(places, tips, weights);
    int const count = std::clamp(trajectory.TimingHandlesNum().Integer(), 0, Node::mostTimingHandles);
    weights.resize(std::size_t(count));
}

}  // namespace

// ---- translation keys ----

void XTrajectory::computeDropoffWeights_translations(XVector3 const& centre, float radius, XDropOff const& dropoff,
                                                     Floats& weights) const {
    weights.clear();
    Node* const node = pathNode();
    if (!node) return;
    weights = BallWeights({positionsOf(*node), {}, 0}, centre.AsVector(), radius, dropoff);
    keepSafeGuards(*this, *node, weights);
}

void XTrajectory::computeDropoffWeights_translations(IDs const& parameters, XDropOff const& dropoff,
                                                     Floats& weights) const {
    weights.clear();
    Node* const node = pathNode();
    if (!node) return;
    weights = ListWeights(translationPlaces(*node), translationSlots(*node, parameters), dropoff);
    keepSafeGuards(*this, *node, weights);
}

void XTrajectory::computeSafeGuardWeights_translations(Floats& weights) const {
    weights.clear();
    Node* const node = pathNode();
    if (!node) return;
    weights.assign(std::size_t(XTranslationKeys(*node).count()), 1.F);
    MultiplySafeGuardWeights(positionsOf(*node), safeGuardsOf(*this), weights);
}

void XTrajectory::ComputeTranslationWeights(IDs const& parameters, XDropOff const& dropoff, Floats& weights) const {
    computeDropoffWeights_translations(parameters, dropoff, weights);
}

// ---- rotation keys ----

void XTrajectory::computeDropoffWeights_rotations(XVector3 const& centre, float radius, XDropOff const& dropoff,
                                                  Floats& weights) const {
    weights.clear();
    if (Node* const node = pathNode()) weights = BallWeights(rotationPlaces(*node), centre.AsVector(), radius, dropoff);
}

void XTrajectory::computeDropoffWeights_rotations(Floats const& attach, XDropOff const& dropoff,
                                                  Floats& weights) const {
    weights.clear();
    if (Node* const node = pathNode())
        weights = ListWeights(rotationPlaces(*node), rotationSlots(*node, attach), dropoff);
}

// ---- timing handles ----

void XTrajectory::computeDropoffWeights_time(IDs const& selected, XDropOff const& dropoff, Floats& weights) const {
    weights.clear();
    Node* const node = pathNode();
    if (!node) return;
    XPathPlaces const places = handlePlaces(*node);
    weights = ListWeights(places, selected, dropoff);
    keepTips(*this, places, weights);
}

void XTrajectory::computeDropoffWeights_time(XVector3 const& centre, float, XDropOff const& dropoff,
                                             Floats& weights) const {
    weights.clear();
    Node* const node = pathNode();
    if (!node) return;
    XPathPlaces const places = handlePlaces(*node);
    weights = PointWeights(places, centre.AsVector(), dropoff);
    keepTips(*this, places, weights);
}

void XTrajectory::ComputeTimeWeights(int handleCount, IDs const& selected, XDropOff const& dropoff,
                                     Floats& weights) const {
    computeDropoffWeights_time(selected, dropoff, weights);
    weights.resize(std::size_t(std::clamp(handleCount, 0, Node::mostTimingHandles)));
}

}  // namespace Tavo
