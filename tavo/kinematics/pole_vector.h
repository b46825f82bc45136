// XPoleVector: the direction in which the middle of a chain bends. A pole that a command has made follows a referent,
// which goes with the chain: who wants the pole elsewhere moves the referent.
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

    XTransform Referent() const;  // invalid when the pole stands free

    void onInitialize() override;
};
using XPoleVectorDef = XTypedDef<XPoleVector>;

}  // namespace Tavo
