// Weights of the keys and handles of a path, from a dropoff: one float for each, in the order of the slots, 0 for what
// an edit does not touch. Free of any scene: the places are given as arrays. They serve translation keys, rotation keys
// and timing handles alike, which differ only in where they are.
//
// Nothing fails: a selected slot that does not exist is passed over, and a dropoff of unknown mode weighs nothing.
#pragma once
#include "qel/utils/values.h"
#include "qel/utils/vector.h"
#include "tavo/animation/drop_off.h"

namespace Tavo {

// Where the weighed things are.
struct XPathPlaces {
    Qelutils::Vector<Qelp::Vector3> positions;  // metres, in the path's own space
    Qelutils::Vector<double> fractions;         // of the path's length, 0 to 1; one a position
    double length = 0;                          // of the path, metres
};

// A sphere in which nothing moves; around it, movement returns as the dropoff falls. Its mode does not count.
struct XSafeGuard {
    Qelp::Vector3 centre;
    float radius = 0;
    XDropOff dropoff;
};

// 1 within the ball, and the dropoff of the distance from its surface outside.
Qelutils::Vector<float> BallWeights(XPathPlaces const& places, Qelp::Vector3 const& centre, float radius,
                                    XDropOff const& dropoff);
// The dropoff of the distance from a point.
Qelutils::Vector<float> PointWeights(XPathPlaces const& places, Qelp::Vector3 const& point, XDropOff const& dropoff);
// The largest weight that any of the selected slots gives, by the distance in space or along the path, as the mode
// says.
Qelutils::Vector<float> ListWeights(XPathPlaces const& places, Qelutils::Vector<int> const& selected,
                                    XDropOff const& dropoff);

// Each multiplies the weights by what it leaves of an edit: nothing within a guard; nothing at the ends of the path, a
// rising part up to the range of `tips` from them.
void MultiplySafeGuardWeights(Qelutils::Vector<Qelp::Vector3> const& positions,
                              Qelutils::Vector<XSafeGuard> const& guards, Qelutils::Vector<float>& weights);
void MultiplyTipsWeights(XPathPlaces const& places, XDropOff const& tips, Qelutils::Vector<float>& weights);

}  // namespace Tavo
