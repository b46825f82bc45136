// A transform whose sole primitive goes, goes with it.
#include "tavo/kinematics/shape.h"
#include "tavo/kinematics/transform.h"

namespace Tavo {

bool XObject::mustDeleteParent() const {
    if (!SupportsType(XPrimitive::TypeID)) return false;
    XTransform const transform(FindParentObject(XTransform::TypeID, SupportsObjectType));
    return transform.IsValid() && transform.ChildCount() == 1;
}

}  // namespace Tavo
