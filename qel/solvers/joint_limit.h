// How far a joint may turn: the range between a fixed frame and a moving frame. Free of any scene.
//
// The moving frame hangs on the joint: as rotations of row vectors it stands, in the space of the joint's parent, at
// movingOffset * jointLocal. What is limited is its rotation R as seen from the fixed frame,
//     movingOffset * jointLocal = R * fixedFrame,
// measured as rotation_core.h measures twist and swing, in the vector form: first the twist, a turn about X; then the
// swing, a turn about an axis in the YZ plane, which takes the X axis by the shortest way to where it points. The first
// swing angle is the Y component of the swing's axis times its angle, the second the Z component. In these coordinates
// a swing by any angle about any axis is as far from rest as the angle says, and no pose short of a swing of pi is
// singular. There, and where the twist is opposite to the middle of its range, no limit can be continuous: what is
// nearest lies on either side.
//
// A ball and socket bounds the twist to twistOffset +- twistAngle and both swings together by an ellipse, whose
// semi-axes are their angles; a swing that is not active leaves a strip. A hinge turns about X alone: it allows no
// swing, whatever is said of swings, and bounds the twist alike. An angle of pi or more bounds nothing by itself.
//
// Angles are radians. Nothing fails and nothing yields NaN: an angle or a ratio that is negative or not a number is
// read as 0, a ratio above 1 as 1, a twist offset that is not finite as 0, and a rotation without direction as the
// identity. Rotations need not have unit length.
#pragma once
#include "qel/solvers/ellipse.h"
#include "qel/utils/rotation_core.h"
#include "qel/utils/values.h"
#include <numbers>

namespace sg {

using Qelutils::rotation::Quaternion;

// The values of the attribute; any other is a ball and socket.
enum JointLimitType { BallSocketLimit = 0, HingeLimit = 1 };

struct JointLimit {
    int type = BallSocketLimit;
    Quaternion fixedFrame;    // the limit's local rotation, in the space of the joint's parent
    Quaternion movingOffset;  // of the moving frame, in the space of the joint

    bool swing1Active = true;
    double swing1Angle = std::numbers::pi / 4;
    bool swing2Active = true;
    double swing2Angle = std::numbers::pi / 4;
    bool twistActive = true;
    double twistAngle = std::numbers::pi / 2;  // to either side of the offset
    double twistOffset = 0;

    // A soft limit resists from ratio * angle on, and its border is approached but never reached: of each further step
    // the share goes through that is left of the room between (see softClampToEllipse; the twist alike). A ratio of 1
    // is the hard limit. A solver that clamps again and again wants hard limits: softened twice is softened more.
    bool softSwingActive = false;
    double softSwing1Ratio = 0.7;
    double softSwing2Ratio = 0.7;
    bool softTwistActive = false;
    double softTwistRatio = 0.7;

    // All numbers are finite, no angle is negative, all ratios lie in [0, 1], and the type is one of the two. What is
    // not valid still limits, as said above.
    bool Validate() const;
};

// Where a joint stands in its limit, or by how much it is beyond.
struct JointLimitAngles {
    double twist = 0;   // in [-pi, pi] where measured
    double swing1 = 0;  // about Y
    double swing2 = 0;  // about Z
    bool operator==(JointLimitAngles const&) const = default;
};

// To the hard border, in radians: negative inside, minus infinity where there is no border.
struct JointLimitDistance {
    double twist = 0;
    double swing = 0;  // of both swings together; of a hinge the angle of the swing, never negative
};

// The rotation of a matrix without scale, shear and mirroring, for the frames and for the joint.
Quaternion rotationOfFrame(Qelp::Matrix34 const& m);

JointLimitAngles measureJointRotation(JointLimit const& limit, Quaternion const& jointLocal);
// The inverse: the joint's local rotation at which these angles are measured.
Quaternion jointRotationAt(JointLimit const& limit, JointLimitAngles const& angles);

// What the soft and hard limits make of the angles. Angles inside come back bit by bit, others on the border, or short
// of it where it is soft. The hard limit takes the twist and the swings each to the nearest that is allowed.
JointLimitAngles clampJointAngles(JointLimit const& limit, JointLimitAngles const& angles);
// What would have to be taken away to be inside the hard limit: 0 for what is inside.
JointLimitAngles jointLimitExcess(JointLimit const& limit, JointLimitAngles const& angles);
JointLimitDistance jointLimitDistance(JointLimit const& limit, JointLimitAngles const& angles);

// The joint's local rotation, limited. What is allowed comes back bit by bit; of the two quaternions of another result,
// the one closer to the argument.
Quaternion clampJointRotation(JointLimit const& limit, Quaternion const& jointLocal);

}  // namespace sg
