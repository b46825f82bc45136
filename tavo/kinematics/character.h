// XCharacter: what groups a kinematic skeleton and its physics twin under one object.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XCharacter : public XTyped<XCharacter, XTransform, sg::CharacterNode> {
public:
    static constexpr XWord TypeID = L"Character", DefaultName = L"character";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(IsEditable, 51)  // its parts may be moved one by one

    bool supportsReparenting() const override { return false; }
    void onInitialize() override;
};
using XCharacterDef = XTypedDef<XCharacter>;

}  // namespace Tavo
