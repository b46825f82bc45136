#include "hosts/tavo/baking.h"
#include "tavo/animation/animation.h"
#include "tavo/objects/matrix.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {
namespace {

using namespace Tavo;
using Angles = std::array<float, 3>;

// Of an Euler order the axis whose rotation stands in the middle: XYZ, XZY, YXZ, YZX, ZXY, ZYX.
constexpr int middleAxis[] = {1, 2, 0, 2, 0, 1};

float nearest(float angle, float before) {
    constexpr double turn = 2 * std::numbers::pi;
    return float(double(angle) - turn * std::round((double(angle) - double(before)) / turn));
}

float distance(Angles const& a, Angles const& b) {
    float sum = 0;
    for (std::size_t i = 0; i < 3; ++i) sum += std::abs(a[i] - b[i]);
    return sum;
}

// A rotation has two triples of angles, each up to full turns: the one that lies next to the triple before.
Angles continued(Angles const& angles, Angles const& before, int order) {
    constexpr float half = std::numbers::pi_v<float>;
    Angles same = angles, other;
    for (int axis = 0; axis < 3; ++axis) {
        std::size_t const i = std::size_t(axis);
        other[i] = nearest(axis == middleAxis[order] ? half - angles[i] : angles[i] + half, before[i]);
        same[i] = nearest(angles[i], before[i]);
    }
    return distance(other, before) < distance(same, before) ? other : same;
}

XAttribute channelOf(XJoint const& joint, std::size_t number) {
    int const first = number < 3 ? sg::TransformNode::Translation : sg::TransformNode::Rotation;
    return joint.Attribute(first + int(number % 3));
}

}  // namespace

Baking::Place Baking::placeOf(std::size_t i) const {
    XJoint const& joint = joints_[i];
    XVector3 const at = joint.SubtractPreTranslation(joint.LocalTranslation());
    XMatrix const turn(joint.SubtractPrePostRotation(joint.LocalRotation()));
    XVector3 const angles = turn.RotationEulerAngles(orders_[i]);
    Angles next{angles.X(), angles.Y(), angles.Z()};
    if (!samples_[i].empty()) {
        Place const& last = samples_[i].back();
        next = continued(next, {last[3], last[4], last[5]}, orders_[i]);
    }
    return {at.X(), at.Y(), at.Z(), next[0], next[1], next[2]};
}

void Baking::sample(float time) {
    times_.push_back(time);
    for (std::size_t i = 0; i < joints_.size(); ++i) samples_[i].push_back(placeOf(i));
}

void Baking::writeChannel(XAttribute channel, std::vector<Place> const& places, std::size_t number) {
    Qelutils::Vector<float> values;
    for (Place const& place : places) values.push_back(place[number]);
    channel.ClearAnimation();
    channel.SetFloat(values.front());
    if (std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) == values.end()) return;
    XAnimation curve = channel.CreateAnimation();
    curve.InitializeKeyframes(int(values.size()), times_.front(), 0, 0, LinearInterpolation, CoupledContinuity);
    curve.KeyframeInputValues().SetFloat(Qelutils::Vector<float>(times_.begin(), times_.end()));
    curve.KeyframeOutputValues().SetFloat(values);
    curve.IsCurveSampled().SetBoolean(true);
}

void Baking::write() {
    for (std::size_t i = 0; i < joints_.size(); ++i) {
        if (samples_[i].empty()) continue;
        joints_[i].TransformDataSource().SetEnumeration(XTransform::EulerSource);
        joints_[i].RotationEulerOrder().SetEnumeration(orders_[i]);
        joints_[i].RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation);
        for (std::size_t number = 0; number < 6; ++number)
            writeChannel(channelOf(joints_[i], number), samples_[i], number);
    }
}

}  // namespace host
