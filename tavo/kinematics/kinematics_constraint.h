// XKinematicsConstraint: holds a transform at the weighted mean of its targets' world matrices. The node gives the
// place as translation and rotation, and as a matrix, in the space of ParentWorldIn; Constrain wires it to a transform.
// Metres and radians.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XKinematicsConstraint : public XTyped<XKinematicsConstraint, XObject, sg::KinematicsConstraintNode> {
public:
    static constexpr XWord TypeID = L"KinematicsConstraint";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(InputMatrices, 8)  // for each target: 0 its world matrix, 1 an offset, 2 its weight
    TAVO_ATTRIBUTE(ParentWorldIn, 9)  // of the transform that is held
    TAVO_ATTRIBUTE_XYZ(LocalTranslationOut, 10)
    TAVO_ATTRIBUTE_XYZ(LocalRotationOut, 13)  // order "XYZ"
    TAVO_ATTRIBUTE(LocalMatrix, 16)
    TAVO_ATTRIBUTE(NormalizeWeights, 17)

    // One target more; all then count equally. Nothing for an invalid one.
    XKinematicsConstraint& AddTarget(XTransform const& target);
    XKinematicsConstraint& ClearTargets();
    // Replaces the targets by the valid ones of these and lets the transform follow in what is locked, without its pre
    // and post values being in the way. What something else drives already is not taken over. Nothing at all without a
    // target or a lock. The targets must not stand below the transform: the graph refuses that.
    XKinematicsConstraint& Constrain(XTransform const& transform, XTransform const& target, bool lockTranslation = true,
                                     bool lockRotation = true);
    XKinematicsConstraint& Constrain(XTransform const& transform, Qelutils::Vector<XTransform> const& targets,
                                     bool lockTranslation = true, bool lockRotation = true);
};
using XKinematicsConstraintDef = XTypedDef<XKinematicsConstraint>;

}  // namespace Tavo
