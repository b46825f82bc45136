// Connections that go in threes: the X, Y and Z of a value.
#pragma once
#include "tavo/objects/attribute.h"

namespace Tavo {

// The three attributes of `target` from number `first` on are fed by the three of `source` from `sourceFirst` on.
inline void feedThree(XObject const& target, int first, XObject const& source, int sourceFirst) {
    for (int axis = 0; axis < 3; ++axis)
        target.Attribute(first + axis).ConnectInputTo(source.Attribute(sourceFirst + axis));
}

}  // namespace Tavo
