// Characters and the limits of joints. Lengths in metres, angles in radians.
#pragma once
#include "tavo/commands/creation_commands.h"
#include "tavo/kinematics/joint_limit.h"

namespace Tavo {

TAVO_COMMAND(XCharacterize, L"Characterize", L"Makes a character of each selected transform that stands in none.")
TAVO_COMMAND(XAlignHingeOffset, L"AlignHingeOffset",
             L"Lets the two frames of every physics hinge of the active scene coincide.")

class XAlignJointLimit : public XCommandType<XAlignJointLimit> {
    static constexpr wchar_t const* axes[] = {L"XAxis", L"YAxis", L"ZAxis"};
    static constexpr wchar_t const* directions[] = {L"AlignToFirstChild", L"AlignToChildAverage"};

public:
    static constexpr XWord TypeID = L"AlignJointLimit";
    static constexpr wchar_t const* Help = L"Points an axis of each selected limit along the bone and zeroes it there.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, JointLimitAxis, L"The axis that is turned.", enumeration, axes)
    TAVO_PARAMETER(9, AlignmentDirection, L"What it is to point at.", enumeration, directions)

    void onRun() override;
};
using XAlignJointLimitDef = XTypedDef<XAlignJointLimit>;

class XCreateJointLimit : public XCommandType<XCreateJointLimit, XCreateTransform> {
    static constexpr auto colour = parameter_kinds::colourRows(XJointLimit::DefaultColour);
    static constexpr wchar_t const* rotations[] = {L"LimitType", L"XAxis", L"YAxis", L"ZAxis"};
    static constexpr float swing = XJointLimit::DefaultSwingLimitAngle, twist = XJointLimit::DefaultTwistAngle,
                           softSwing = XJointLimit::DefaultSwingSoftLimitRatio,
                           softTwist = XJointLimit::DefaultTwistSoftRatio;

public:
    static constexpr XWord TypeID = L"CreateJointLimit";
    static constexpr wchar_t const* Help = L"Gives each selected joint that has none a limit and selects the last one.";
    using XTyped::XTyped;

    TAVO_PARAMETER(9, Colour, L"Red, green, blue, alpha.", compound, colour)
    TAVO_PARAMETER(33, InitialRotation, L"The axis that points along the bone: X of a ball socket, Y of a hinge.",
                   enumeration, rotations)
    TAVO_PARAMETER_XYZ(34, MovingOffset, L"The moving frame relative to the joint, before the limit is aligned.", angle)
    TAVO_PARAMETER(37, LimitType, L"What moves within the limit.", enumeration, sg::limitTypes)
    TAVO_PARAMETER(38, Swing1Active, L"Limits the first swing.", boolean, true)
    TAVO_PARAMETER(39, Swing1Angle, L"How far the first swing may go.", angle, swing)
    TAVO_PARAMETER(40, Swing2Active, L"Limits the second swing.", boolean, true)
    TAVO_PARAMETER(41, Swing2Angle, L"How far the second swing may go.", angle, swing)
    TAVO_PARAMETER(42, TwistActive, L"Limits the twist.", boolean, true)
    TAVO_PARAMETER(43, TwistAngle, L"How far the twist may go.", angle, twist)
    TAVO_PARAMETER(44, TwistOffset, L"The middle of the twist.", angle, XJointLimit::DefaultTwistOffset)
    TAVO_PARAMETER(45, SoftSwingActive, L"Resists before the swings reach their limits.", boolean)
    TAVO_PARAMETER(46, SoftSwing1Ratio, L"Of the first swing's angle, from where it resists.", real, softSwing)
    TAVO_PARAMETER(47, SoftSwing2Ratio, L"Of the second swing's angle, from where it resists.", real, softSwing)
    TAVO_PARAMETER(48, SoftTwistActive, L"Resists before the twist reaches its limit.", boolean)
    TAVO_PARAMETER(49, SoftTwistRatio, L"Of the twist's angle, from where it resists.", real, softTwist)
    TAVO_PARAMETER(51, ShowFixedAxes, L"Draws the axes of the fixed frame.", boolean)
    TAVO_PARAMETER(52, ShowMovingAxes, L"Draws the axes of the moving frame.", boolean)

    void onRun() override;

protected:
    void align(XJointLimit& limit) const;
};
using XCreateJointLimitDef = XTypedDef<XCreateJointLimit>;

}  // namespace Tavo
