// A matrix taken apart into what a transform needs to stand there: the inverse of the formula of
// transform_evaluation.h. Free of the scene.
//
// Given are a local matrix and a transform's pre translation, pre rotation and post rotation. Found are the translation
// and the rotation, as Euler angles of order XYZ and as a quaternion, for which
//     matrix = scale * Rpost * R * Rpre, with translation + preTranslation in row 3.
// Scale is taken out first, and so are shear and mirroring: rows 0 and 1 tell the rotation, and row 2 what they leave
// open, as `rotation::completed` says. A mirrored matrix so gives the rotation that is right with a negative Z scale.
//
// The result follows from the inputs alone, bit by bit: no angle is kept close to one found before. Near gimbal lock
// the three angles belong together, and at it the third is 0. Conventions are those of qel/utils/rotation_core.h.
#pragma once
#include "qel/utils/values.h"

namespace sg {

struct MatrixSplit {
    // ---- inputs, each a finite number ----
    Qelp::Matrix34 matrix;
    Qelp::Vector3 preTranslation;  // metres
    Qelp::Vector3 preRotation;     // radians, XYZ
    Qelp::Vector3 postRotation;    // radians, XYZ

    // ---- outputs ----
    Qelp::Vector3 translation;  // metres; beyond the range of a float the largest one
    Qelp::Vector3 rotation;     // radians, XYZ: y in [-pi/2, pi/2], x and z in [-pi, pi]
    Qelp::Quat quaternion;      // the same rotation, of unit length, w >= 0

    bool Validate() const;  // all inputs are finite
    bool Run();             // false, and no change, if they are not

    // The two halves of Run, for who needs but one of them; the inputs are known to be finite.
    void splitTranslation();
    void splitRotation();
};

}  // namespace sg
