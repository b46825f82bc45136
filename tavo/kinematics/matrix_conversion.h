// XMatrixConversion: turns a matrix that flows through the graph back into what drives a transform, so that the
// transform stands at that matrix: constraints, and rigs that compute matrices, end in it. Connect the matrix, which is
// local to the transform's parent, to InputMatrix; the transform's pre translation, pre rotation and post rotation to
// the inputs of these names; and the outputs to its translation and rotation.
//
// Scale, shear and mirroring of the matrix are taken out. The angles are of order "XYZ". Metres and radians.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XMatrixConversion : public XTyped<XMatrixConversion, XObject, sg::MatrixConversionNode> {
public:
    static constexpr XWord TypeID = L"MatrixConversion";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(InputMatrix, 8)
    TAVO_ATTRIBUTE_XYZ(PreTranslation, 9)
    TAVO_ATTRIBUTE_XYZ(PreRotation, 12)
    TAVO_ATTRIBUTE_XYZ(PostRotation, 15)
    TAVO_ATTRIBUTE_XYZ(Translation, 18)     // output, as all that follow
    TAVO_ATTRIBUTE_XYZ(Rotation, 21)        // y in [-pi/2, pi/2], x and z in [-pi, pi]
    TAVO_ATTRIBUTE(RotationQuaternion, 24)  // x, y, z, w
};
using XMatrixConversionDef = XTypedDef<XMatrixConversion>;

}  // namespace Tavo
