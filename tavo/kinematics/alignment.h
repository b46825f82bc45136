// What the operations share that point an axis at the children of a transform.
#pragma once
#include "tavo/kinematics/transform.h"
#include <optional>

namespace Tavo::alignment {

std::optional<XDirection> directionOf(std::wstring const& axis);  // "XAxis", "YAxis", "ZAxis"

// Where to point, in the world: any mode but the first two of XAlignmentMode means the origin. `children` is not empty.
XVector3 targetOf(Qelutils::Vector<XObject> const& children, XAlignmentMode mode);

// Turns the frame about its own origin until the axis points at the target. False, and no change, when it does already.
// Of two opposite directions no axis of rotation follows; it is then the world's X axis, as for every zero vector.
bool turnAxis(XMatrix& frame, XDirection direction, XVector3 const& target);

}  // namespace Tavo::alignment
