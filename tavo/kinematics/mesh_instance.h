// XMeshInstance: a mesh drawn in one place. Several may show one mesh.
#pragma once
#include "tavo/kinematics/shape.h"

namespace Tavo {

class XMeshInstance : public XTyped<XMeshInstance, XShape, sg::MeshInstanceNode> {
public:
    static constexpr XWord TypeID = L"MeshInstance", DefaultName = L"meshInstance";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Mesh, 18)      // reference
    TAVO_ATTRIBUTE(Material, 19)  // reference
    TAVO_ATTRIBUTE(InheritColour, 20)
    TAVO_ATTRIBUTE(InheritScale, 21)
    TAVO_ATTRIBUTE(DisplayStyle, 22)
    TAVO_ATTRIBUTE(HighlightStyle, 23)
    TAVO_ATTRIBUTE(DoubleSided, 24)

    void onInitialize() override;

protected:
    void initializeAs(XWord const& name);
};
using XMeshInstanceDef = XTypedDef<XMeshInstance>;

}  // namespace Tavo
