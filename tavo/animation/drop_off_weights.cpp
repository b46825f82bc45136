#include "tavo/animation/drop_off_weights.h"
#include <algorithm>
#include <cmath>

namespace Tavo {
namespace {

float distance(Qelp::Vector3 const& a, Qelp::Vector3 const& b) {
    double const x = double(a.x) - b.x, y = double(a.y) - b.y, z = double(a.z) - b.z;
    return float(std::sqrt(x * x + y * y + z * z));
}

Qelutils::Vector<float> weightsOf(Qelutils::Vector<Qelp::Vector3> const& positions, auto const& weight) {
    Qelutils::Vector<float> out;
    out.reserve(positions.size());
    for (Qelp::Vector3 const& position : positions) out.push_back(weight(position));
    return out;
}

// `between` gives the distance of two slots.
Qelutils::Vector<float> largestWeights(std::size_t count, Qelutils::Vector<int> const& selected,
                                       XDropOff const& dropoff, auto const& between) {
    Qelutils::Vector<float> out(count, 0.F);
    for (int slot : selected) {
        if (slot < 0 || std::size_t(slot) >= count) continue;
        for (std::size_t i = 0; i < count; ++i)
            out[i] = std::max(out[i], dropoff.ComputeWeight(between(i, std::size_t(slot))));
    }
    return out;
}

}  // namespace

Qelutils::Vector<float> BallWeights(XPathPlaces const& places, Qelp::Vector3 const& centre, float radius,
                                    XDropOff const& dropoff) {
    return weightsOf(places.positions, [&](Qelp::Vector3 const& position) {
        float const d = distance(position, centre);
        return d <= radius ? 1 : dropoff.ComputeWeight(d - radius);
    });
}

Qelutils::Vector<float> PointWeights(XPathPlaces const& places, Qelp::Vector3 const& point, XDropOff const& dropoff) {
    return weightsOf(places.positions,
                     [&](Qelp::Vector3 const& position) { return dropoff.ComputeWeight(distance(position, point)); });
}

Qelutils::Vector<float> ListWeights(XPathPlaces const& places, Qelutils::Vector<int> const& selected,
                                    XDropOff const& dropoff) {
    if (dropoff.m_mode == XDropOff::RadialDropoff)
        return largestWeights(places.positions.size(), selected, dropoff, [&](std::size_t i, std::size_t slot) {
            return distance(places.positions[i], places.positions[slot]);
        });
    std::size_t const count = places.fractions.size();
    if (dropoff.m_mode != XDropOff::CurveDropoff) return Qelutils::Vector<float>(count, 0.F);
    return largestWeights(count, selected, dropoff, [&](std::size_t i, std::size_t slot) {
        return float(std::abs(places.fractions[i] - places.fractions[slot]) * places.length);
    });
}

void MultiplySafeGuardWeights(Qelutils::Vector<Qelp::Vector3> const& positions,
                              Qelutils::Vector<XSafeGuard> const& guards, Qelutils::Vector<float>& weights) {
    for (std::size_t i = 0; i < std::min(positions.size(), weights.size()); ++i) {
        float free = 1;
        for (XSafeGuard const& guard : guards) {
            float const d = distance(positions[i], guard.centre);
            free *= d > guard.radius ? 1 - guard.dropoff.ComputeWeight(d - guard.radius) : 0;
        }
        weights[i] *= free;
    }
}

void MultiplyTipsWeights(XPathPlaces const& places, XDropOff const& tips, Qelutils::Vector<float>& weights) {
    for (std::size_t i = 0; i < std::min(places.fractions.size(), weights.size()); ++i) {
        double const fraction = places.fractions[i];
        float const tip = float(std::min(fraction, 1 - fraction) * places.length);
        if (tip < tips.m_range) weights[i] *= 1 - tips.ComputeWeight(tip);
    }
}

}  // namespace Tavo
