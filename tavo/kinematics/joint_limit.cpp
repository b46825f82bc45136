#include "tavo/kinematics/joint_limit.h"

namespace Tavo {

void XJointLimit::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    for (XAttribute active : {Swing1Active(), Swing2Active(), TwistActive()}) active.SetBoolean(true);
    for (XAttribute angle : {Swing1Angle(), Swing2Angle()}) angle.SetFloat(DefaultSwingLimitAngle);
    TwistAngle().SetFloat(DefaultTwistAngle);
    TwistOffset().SetFloat(DefaultTwistOffset);
    for (XAttribute soft : {SoftSwingActive(), SoftTwistActive()}) soft.SetBoolean(false);
    for (XAttribute ratio : {SoftSwing1Ratio(), SoftSwing2Ratio()}) ratio.SetFloat(DefaultSwingSoftLimitRatio);
    SoftTwistRatio().SetFloat(DefaultTwistSoftRatio);
}

}  // namespace Tavo
