// The local matrix of a transform from its attributes: what a transform node computes once a frame. Free of the scene.
//
// A point passes, in this order, through: scale about the pivot, post rotation, rotation, pre rotation, translation,
// pre translation; as row vectors
//     p' = ((p - scalePivot) * scale + scalePivot + scalePivotTranslation) Rpost R Rpre + translation + preTranslation.
// Pre and post rotation are Euler angles of order XYZ, whatever the order of the rotation. Conventions are those of
// qel/utils/rotation_core.h. Every result is finite for finite inputs, and column 3 is 0.
#pragma once
#include "qel/utils/values.h"

namespace sg {

// Where the rotation comes from; the local matrix input replaces everything else as well. Any other number is Euler.
enum TransformDataSource { EulerSource = 0, TwistSwingSource = 1, QuaternionSource = 2, LocalMatrixSource = 3 };

struct TransformInputs {
    float translation[3] = {0, 0, 0};  // metres
    // Radians: Euler angles by axis name, or the vector form of twist and swing: x the twist about X, (0, y, z) the
    // swing's axis times its angle.
    float rotation[3] = {0, 0, 0};
    float scale[3] = {1, 1, 1};
    float scalePivot[3] = {0, 0, 0};             // metres, before scale
    float scalePivotTranslation[3] = {0, 0, 0};  // metres, after scale, before rotation
    float preTranslation[3] = {0, 0, 0};         // metres
    float preRotation[3] = {0, 0, 0};            // radians
    float postRotation[3] = {0, 0, 0};           // radians
    float quaternion[4] = {0, 0, 0, 1};          // x, y, z, w, of any length; zero is the identity
    int eulerOrder = 0;                          // 0 XYZ, 1 XZY, 2 YXZ, 3 YZX, 4 ZXY, 5 ZYX; any other is XYZ
    int dataSource = EulerSource;
    Qelp::Matrix34 localMatrixInput;
};

// `out` may be the input matrix. Components that are exactly 0, or 1 in the scale, cost next to nothing.
void localMatrix(TransformInputs const& in, Qelp::Matrix34& out);

// The components, each as a matrix: scale * post * rotation * pre * translation * preTranslation is the local matrix.
// With LocalMatrixSource translation and rotation are those of the input, the scale is what remains (with any shear and
// mirroring), and the others are the identity.
Qelp::Matrix34 localScaleMatrix(TransformInputs const& in);
Qelp::Matrix34 localPostRotationMatrix(TransformInputs const& in);
Qelp::Matrix34 localRotationMatrix(TransformInputs const& in);
Qelp::Matrix34 localPreRotationMatrix(TransformInputs const& in);
Qelp::Matrix34 localTranslationMatrix(TransformInputs const& in);
Qelp::Matrix34 localPreTranslationMatrix(TransformInputs const& in);

// The scale along the three axes, without pivots and shear.
Qelp::Vector3 localScale(TransformInputs const& in);

}  // namespace sg
