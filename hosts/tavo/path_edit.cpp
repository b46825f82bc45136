#include "hosts/tavo/path_edit.h"

#include "hosts/tavo/console.h"
#include "hosts/tavo/paths.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/quaternion.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace host {

using namespace Tavo;

namespace {

using Weights = Qelutils::Vector<float>;

enum RotationKeyPart : int { AttachPoint = 0, Orientation = 2 };

XMatrix toPathSpace(XTrajectory const& path) { return XMatrix(path.WorldMatrix().Matrix()).Invert(); }

// The axes of the scene about a place, as the path sees them.
XMatrix frameAt(XTrajectory const& path, XVector3 const& centre) {
    return XMatrix().SetTranslation(centre).Multiply(toPathSpace(path));
}

Weights ballWeights(XTrajectory const& path, Ball const& ball, XDropOff const& dropoff) {
    XPathPlaces const places{positionsOf(path), {}, 0};
    XVector3 const centre = XVector3(ball.centre).Multiply(toPathSpace(path));
    Weights weights = BallWeights(places, centre.AsVector(), ball.radius, dropoff);
    if (path.UseSafeGuards().Boolean()) MultiplySafeGuardWeights(places.positions, guardsOf(path), weights);
    return weights;
}

Weights bendWeights(XTrajectory const& path, int corner, XDropOff const& dropoff) {
    XAttribute const keys = path.TranslationKeyframesArray();
    double const length = double(path.MaxArcLength().Float()), start = double(path.ArcLengthMap(float(corner)));
    Weights weights;
    for (int slot = 0; slot < keys.AttributeCount(); ++slot) {
        int const key = keys.Attribute(slot).Attribute(0).Integer();
        double const distance = (double(path.ArcLengthMap(float(key))) - start) * length;
        weights.push_back(key > corner ? 1 - dropoff.ComputeWeight(float(distance)) : 0);
    }
    if (path.UseSafeGuards().Boolean()) MultiplySafeGuardWeights(positionsOf(path), guardsOf(path), weights);
    return weights;
}

// Of a place between two keys, from theirs.
float weightAt(XTrajectory const& path, Weights const& weights, float attach) {
    int const last = std::max(keyCountOf(path) - 1, 0);
    double const at = std::clamp(double(attach), 0.0, double(last)), key = std::floor(at);
    auto const of = [&](int number) {
        int const slot = path.ParameterIndex(float(std::min(number, last)));
        return slot >= 0 && std::size_t(slot) < weights.size() ? double(weights[std::size_t(slot)]) : 0;
    };
    return float(of(int(key)) + (of(int(key) + 1) - of(int(key))) * (at - key));
}

// As a rotation after the key's own: the library's edit of orientations multiplies in another order.
void turnRotationKeys(XTrajectory const& path, XMatrix const& frame, XVector3 const& by, Weights const& weights) {
    XAttribute const keys = path.RotationKeyframesArray();
    XMatrix const inverse = XMatrix(frame).Invert();
    for (int slot = 0; slot < keys.AttributeCount(); ++slot) {
        XAttribute key = keys.Attribute(slot);
        float const weight = weightAt(path, weights, key.Attribute(AttachPoint).Float());
        XQuaternion own;
        if (weight == 0 || !XTrajectory::QuaternionFromAttribute(key, Orientation, own)) continue;
        XMatrix turned(own);
        turned.Multiply(inverse).Multiply(XMatrix(XQuaternion(XVector3(by).Scale(weight)))).Multiply(frame);
        XTrajectory::SetQuaternionFromAttribute(key, Orientation, turned.RotationQuaternion());
    }
}

void checkScale(XTrajectory const& path, XMatrix const& frame, XVector3 const& factors) {
    bool const even = factors.X() == factors.Y() && factors.Y() == factors.Z();
    if (even || path.IsTranslationCurveSampled().Boolean() || frame.IsRotationEqual(XMatrix())) return;
    throw wrongCall(fmt::format("{} is a spline that is turned in the scene: --scale takes one factor there; `tavo "
                                "trajectory sample` makes dense keys of it",
                                pathOf(path)));
}

// A scale by one factor needs no axes; the handles of splines come out right in a frame without a rotation alone.
XMatrix scaleFrame(XTrajectory const& path, XMatrix const& frame, XVector3 const& factors) {
    bool const even = factors.X() == factors.Y() && factors.Y() == factors.Z();
    checkScale(path, frame, factors);
    return even ? XMatrix().SetTranslation(frame.Translation()) : frame;
}

}  // namespace

Weights weightsOf(XTrajectory const& path, PathChange const& change, PathPlace const& place, XDropOff const& dropoff) {
    if (place.ball) return ballWeights(path, *place.ball, dropoff);
    if (change.kind == PathChange::bend) return bendWeights(path, place.keys.front(), dropoff);
    Weights weights;
    path.ComputeTranslationWeights(place.keys, dropoff, weights);
    return weights;
}

void editPath(XTrajectory path, PathChange const& change, XVector3 const& centre, Weights const& weights) {
    XMatrix const frame = frameAt(path, centre);
    switch (change.kind) {
    case PathChange::move:
        path.EditTranslationKeyframePosition_interactive(weights, XVector3(change.by).Rotate(toPathSpace(path)));
        break;
    case PathChange::scale:
        path.ScaleTranslationKeyframePosition_interactive(weights, scaleFrame(path, frame, change.by), change.by);
        break;
    case PathChange::rotate:
    case PathChange::bend: path.RotateTranslationKeyframePosition_interactive(weights, frame, change.by); break;
    }
    if (change.turns()) turnRotationKeys(path, frame, change.by, weights);
}

}  // namespace host
