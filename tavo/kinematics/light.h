// XLight: a source of light.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XLight : public XTyped<XLight, XTransform, sg::LightNode> {
public:
    static constexpr XWord TypeID = L"Light";
    using XTyped::XTyped;
};
using XLightDef = XTypedDef<XLight>;

}  // namespace Tavo
