// New objects of the hierarchy. A command's parameters bear the names of the new object's attributes, and become their
// values. Lengths in metres, angles in radians.
#pragma once
#include "qel/sg/enumerations.h"
#include "tavo/commands/command_pattern.h"
#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/shape.h"

namespace Tavo {

// The base of the family: what every new object that has a place in space is given.
class XCreateTransform : public XCommandType<XCreateTransform> {
    static constexpr auto colour = parameter_kinds::colourRows(XTransform::DefaultColour);

public:
    static constexpr XWord TypeID = L"CreateTransform";
    static constexpr wchar_t const* Help = L"Creates a transform below the first selected one and selects it.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, Visible, L"Drawn at all.", boolean, true)
    TAVO_PARAMETER(9, Colour, L"Red, green, blue, alpha.", compound, colour)
    TAVO_PARAMETER(10, ShowHierarchy, L"Draws the line to the parent.", boolean, true)
    TAVO_PARAMETER_XYZ(11, Translation, L"Where it stands below its parent.", length)
    TAVO_PARAMETER_XYZ(14, Rotation, L"How it is turned.", angle)
    TAVO_PARAMETER_XYZ(17, Scale, L"How large it is.", real, 1)
    TAVO_PARAMETER_XYZ(20, PreTranslation, L"The place of rest, added to the translation.", length)
    TAVO_PARAMETER_XYZ(23, PreRotation, L"The turn of rest, after the rotation.", angle)
    TAVO_PARAMETER_XYZ(26, PostRotation, L"A turn before the rotation.", angle)
    TAVO_PARAMETER(29, RotationInterpolation, L"How rotation is keyed: as a whole, or each angle.", enumeration,
                   sg::rotationInterpolations)
    TAVO_PARAMETER(30, RotationEulerOrder, L"The order of the three rotations.", enumeration, sg::eulerOrders)
    TAVO_PARAMETER(31, ShowTrajectory, L"Draws the path over time.", boolean, true)
    TAVO_PARAMETER(32, ShowAxis, L"Draws the axes.", boolean, true)

    void onRun() override;

protected:
    XTransform firstSelectedTransform() const;
    void finish(XObject const& created);  // selects it, as the result
};
using XCreateTransformDef = XTypedDef<XCreateTransform>;

class XCreateJoint : public XCommandType<XCreateJoint, XCreateTransform> {
    static constexpr auto colour = parameter_kinds::colourRows(XJoint::DefaultBoneColour);

public:
    static constexpr XWord TypeID = L"CreateJoint";
    static constexpr wchar_t const* Help =
        L"Creates a joint below the first selected transform and selects it, so that repeated runs make a chain.";
    using XTyped::XTyped;

    TAVO_PARAMETER(9, Colour, L"Red, green, blue, alpha.", compound, colour)
    TAVO_DEFAULT(11, 0.2f)  // a chain grows along X
    TAVO_PARAMETER(33, Characterize, L"A joint that nothing stands above begins a character.", boolean, true)
    TAVO_PARAMETER(34, BoneRadius, L"Of the drawn bone.", length, XJoint::DefaultBoneRadius)
    TAVO_PARAMETER(35, LocatorRadius, L"Of the drawn joint.", length, XJoint::DefaultLocatorRadius)
    TAVO_PARAMETER(36, BoneStyle, L"How the bone is drawn.", enumeration, sg::boneStyles,
                   XJoint::DefaultBoneDisplayStyle)
    TAVO_PARAMETER(37, LocatorStyle, L"How the joint is drawn.", enumeration, sg::locatorStyles,
                   XJoint::DefaultLocatorDisplayStyle)
    TAVO_PARAMETER(38, AxesStyle, L"When the axes are drawn.", enumeration, sg::axesStyles,
                   XJoint::DefaultAxesDisplayStyle)

    void onRun() override;
};
using XCreateJointDef = XTypedDef<XCreateJoint>;

// Runs under the word of what it makes: a primitive is the type "Shape".
class XCreatePrimitive : public XCommandType<XCreatePrimitive> {
    static constexpr auto colour = parameter_kinds::colourRows({0, 0.5f, 0.7f, 1});

public:
    static constexpr XWord TypeID = L"CreateShape", NodeClassID = L"CreatePrimitive";
    static constexpr wchar_t const* Help = L"Creates a primitive shape below each selected transform.";
    using XTyped::XTyped;

    TAVO_PARAMETER(8, Visible, L"Drawn at all.", boolean, true)
    TAVO_PARAMETER(9, Colour, L"Red, green, blue, alpha.", compound, colour)
    TAVO_PARAMETER(10, ShowHierarchy, L"Draws the line to the parent.", boolean, true)
    TAVO_PARAMETER(11, Shape, L"Which primitive.", enumeration, sg::shapes)
    TAVO_PARAMETER(12, Width, L"Of a box.", length, 0.2f)
    TAVO_PARAMETER(13, Height, L"Of a box.", length, 0.2f)
    TAVO_PARAMETER(14, Length, L"Of a box, a capsule, a cylinder.", length, 0.35f)
    TAVO_PARAMETER(15, Radius, L"Of a capsule, a cylinder, a sphere.", length, 0.1f)
    TAVO_PARAMETER(16, InheritColour, L"Takes the colour of the transform above.", boolean)
    TAVO_PARAMETER(17, InheritScale, L"Takes the scale of the transform above.", boolean)
    TAVO_PARAMETER(18, DisplayStyle, L"How it is drawn.", enumeration, sg::displayStyles, 3)
    TAVO_PARAMETER(19, HighlightStyle, L"How it is drawn while selected.", integer, 1)
    TAVO_PARAMETER(20, RadialSegments, L"Around the axis.", integer, 16)
    TAVO_PARAMETER(21, ArcSegments, L"From pole to pole of what is round.", integer, 8)

    void onRun() override;
};
using XCreatePrimitiveDef = XTypedDef<XCreatePrimitive>;

}  // namespace Tavo
