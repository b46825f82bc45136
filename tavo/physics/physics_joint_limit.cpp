#include "tavo/physics/physics_joint_limit.h"

namespace Tavo {

// The angles and what is active are those of every limit: its base has set them.
void XPhysicsJointLimit::onInitialize() {
    static_assert(DefaultSwingSoftLimitRatio == XJointLimit::DefaultSwingSoftLimitRatio &&
                  DefaultTwistSoftRatio == XJointLimit::DefaultTwistSoftRatio &&
                  DefaultTwistOffset == XJointLimit::DefaultTwistOffset);
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    for (XAttribute stiffness : {Swing1Stiffness(), Swing2Stiffness(), LowerTwistStiffness(), UpperTwistStiffness()})
        stiffness.SetFloat(DefaultStiffness);
    for (XAttribute damping : {Swing1Damping(), Swing2Damping(), LowerTwistDamping(), UpperTwistDamping()})
        damping.SetFloat(DefaultDamping);
    for (XAttribute restitution :
         {Swing1Restitution(), Swing2Restitution(), LowerTwistRestitution(), UpperTwistRestitution()})
        restitution.SetFloat(DefaultRestitution);
    for (XAttribute soft : {SoftSwing1Stiffness(), SoftSwing2Stiffness()})
        soft.SetFloat(DefaultSwingSoftLimitStiffness);
    SoftTwistStiffness().SetFloat(DefaultTwistSoftStiffness);
}

}  // namespace Tavo
