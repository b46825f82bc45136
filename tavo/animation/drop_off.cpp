#include "tavo/animation/drop_off.h"
#include <algorithm>

namespace Tavo {

// Each product is rounded before they are summed. The sum may leave the span of the control values by a rounding, which
// the curve itself never does, and is held in it.
float XDropOff::ComputeWeight(float distance) const {
    if (m_range < distance || distance < 0) return 0;
    if (distance == m_range && m_range == 0) return 1;
    float const t = distance / m_range, u = 1 - t;
    double const t1 = t, u1 = u;
    float const first = float(u1 * u1 * u1);
    float const second = float(3 * t1 * u1 * u1 * double(m_innerTangent));
    float const third = float(3 * t1 * t1 * u1 * double(m_outerTangent));
    return std::clamp(first + second + third, std::min({0.F, m_innerTangent, m_outerTangent}),
                      std::max({1.F, m_innerTangent, m_outerTangent}));
}

}  // namespace Tavo
