// XPoleVector: the direction in which the middle of a chain bends.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XPoleVector : public XTyped<XPoleVector, XTransform, sg::PoleVectorNode> {
public:
    static constexpr XWord TypeID = L"PoleVector", DefaultName = L"poleVector",
                           DefaultControlPoleSuffix = L"_controlPole", DefaultReferencePoleSuffix = L"_referencePole",
                           DefaultReferentSuffix = L"_referent";
    static constexpr XColour DefaultColour{0.25f, 0.5f, 0, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(ControlJoint, 51)  // reference
    TAVO_ATTRIBUTE(EndEffector, 52)   // reference; of a control pole
    TAVO_ATTRIBUTE(Enabled, 53)
    TAVO_ATTRIBUTE(Weight, 54)
    TAVO_ATTRIBUTE(PoleVector, 55)        // matrix, output
    TAVO_ATTRIBUTE(SpaceWorldMatrix, 56)  // input: of the space in which the pole vector is given

    void onInitialize() override;
};
using XPoleVectorDef = XTypedDef<XPoleVector>;

}  // namespace Tavo
