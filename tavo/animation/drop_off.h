// XDropOff: how an edit falls off around what was grabbed. Its weight at a distance is a cubic Bezier curve over the
// control values 1, pinch, bubble and 0, from distance 0 to the range. A small value, free of any scene.
#pragma once
#include "tavo/app/word.h"

namespace Tavo {

class XDropOff {
public:
    // Whether distances are taken along the path or in space.
    enum Mode : unsigned { CurveDropoff = 0, RadialDropoff = 1 };
    static constexpr XWord ModeNames[] = {L"CurveDropoff", L"RadialDropoff"};

    XDropOff(float range = 1, unsigned mode = CurveDropoff, float pinch = 1, float bubble = 0) :
        m_range(range), m_innerTangent(pinch), m_outerTangent(bubble), m_mode(mode) {}
    bool operator==(XDropOff const&) const = default;

    // 1 at distance 0, 0 from the range on and below 0. A range of 0 holds distance 0 alone, a negative one nothing. In
    // 0 to 1 if pinch and bubble are; never outside what 0, 1, pinch and bubble span.
    float ComputeWeight(float distance) const;

    float m_range;         // metres; the distance at which the weight reaches 0
    float m_innerTangent;  // the pinch; 0 drops at once, 1 leaves softly
    float m_outerTangent;  // the bubble; 0 arrives softly, above 1 the weight may exceed 1
    unsigned int m_mode;   // any other number than those of Mode weighs nothing in lists
};

}  // namespace Tavo
