// XAimConstraint: turns a transform so that its X axis points at a target, with an object that says where above is.
// Connect the world matrices of both, that of the transform's parent, and the transform's translation: left alone, it
// aims from its parent's origin. The angles, of order "XYZ" and in radians, go to the transform's rotation.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XAimConstraint : public XTyped<XAimConstraint, XObject, sg::AimConstraintNode> {
public:
    static constexpr XWord TypeID = L"AimConstraint";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(WorldIn, 8)     // of the target
    TAVO_ATTRIBUTE(UpVectorIn, 9)  // world matrix of the object that is above
    TAVO_ATTRIBUTE(ParentWorldIn, 10)
    TAVO_ATTRIBUTE_XYZ(LocalEulerOut, 11)  // output
    TAVO_ATTRIBUTE_XYZ(LocalTranslationIn, 14)
};
using XAimConstraintDef = XTypedDef<XAimConstraint>;

}  // namespace Tavo
