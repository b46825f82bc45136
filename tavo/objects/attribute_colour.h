// A colour in a compound of four floats: red, green, blue, alpha.
#pragma once
#include "tavo/objects/attribute.h"
#include "tavo/objects/colour.h"

namespace Tavo {

inline XColour colourOf(XAttribute const& compound) {
    auto const part = [&](int i) { return compound.Attribute(i).Float(); };
    return {part(0), part(1), part(2), part(3)};
}

inline void setColour(XAttribute const& compound, XColour const& colour) {
    float const parts[] = {colour.Red(), colour.Green(), colour.Blue(), colour.Alpha()};
    for (int i = 0; i < 4; ++i) compound.Attribute(i).SetFloat(parts[i]);
}

}  // namespace Tavo
