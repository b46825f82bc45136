// The rotation along a path: keys attached to places of it, and what lies between them. Free of the scene.
//
// A key is attached at a key parameter of the path (path_geometry.h). Between two keys the interpolation of the left
// one decides:
// - constant holds the left key;
// - linear turns evenly along the shorter arc (slerp). Any other number counts as linear;
// - spline runs a cubic Bezier curve on the sphere of rotations, by de Casteljau's construction with slerp in the place
//   of straight blending (Shoemake, "Animating rotation with quaternion curves", SIGGRAPH 1985).
// A tangent is the speed of turning at its key: a rotation vector, radians per unit of key parameter, seen from outside
// the rotation. In and out tangents both point the way the path goes, so that equal ones make the rotation smooth
// however long the spans beside the key are. A spline key whose tangents are both zero, as those of new keys, takes the
// mean speed of the turns beside it, weighted by their spans as a whole.
//
// Before the first and after the last key their own orientation holds; without keys there is no rotation. Of keys at
// one place the first slot stands for all. Orientations need no unit length. Numbers that are not finite count as 0.
#pragma once
#include "qel/sg/curve_evaluation.h"
#include "qel/sg/rotation_blend.h"
#include <vector>

namespace sg {

struct PathRotationKey {
    double attach = 0;
    int interpolation = int(CurveInterpolation::linear);
    Qelp::Quat orientation;
    Qelp::Vector3 inTangent, outTangent;
};

class PathRotations {
public:
    void update(std::vector<PathRotationKey> const& keys);  // by slot

    int keyCount() const { return int(order_.size()); }
    std::vector<int> const& order() const { return order_; }  // slots by attach point
    int findKey(double attach, double tolerance) const;       // the slot of the nearest within the tolerance, or -1
    Qelp::Quat at(double parameter) const;                    // of unit length

private:
    struct Key {
        double attach;
        CurveInterpolation kind;
        BlendRotation rotation;
        BlendTurning in, out;  // the tangents, its own or the automatic ones
    };
    void findTangents(std::size_t rank, PathRotationKey const& key);
    std::size_t firstAt(double attach) const;
    static BlendRotation spline(Key const& left, Key const& right, double share);

    std::vector<int> order_;
    std::vector<Key> keys_;  // by rank
};

}  // namespace sg
