// The table of defaults: every class constant, its type and its value, and that new objects bear them.
#include "tests/objects/typed_object.h"

namespace Tavo {
namespace {

// ---- the table ----

using string = XWord;

// As the table says it: numbers with six digits.
std::string shown(XWord const& value) { return Qelutils::toUtf8(value); }
std::string shown(bool value) { return value ? "true" : "false"; }
std::string shown(int value) { return std::to_string(value); }
std::string shown(float value) { return Qelutils::toUtf8(Qelutils::format(L"%g", double(value))); }
std::string shown(XColour const& c) {
    return shown(c.Red()) + ", " + shown(c.Green()) + ", " + shown(c.Blue()) + ", " + shown(c.Alpha());
}

struct Row {
    char const* name;
    bool isOfType;
    std::string expected, actual;
};

#define ROW(Type, Class, Constant, value)                                                                              \
    {                                                                                                                  \
#Class "_" #Constant, std::is_same_v < decltype(X##Class::Constant), Type const>, value,                       \
            shown(X##Class::Constant)                                                                                  \
    }

// clang-format off
Row const rows[] = {
    ROW(string, Camera, FrontCameraName, "front"),
    ROW(string, Camera, SideCameraName, "side"),
    ROW(string, Camera, DefaultName, "camera"),
    ROW(float, Camera, DefaultViewingAngle, "60"),
    ROW(float, Camera, DefaultViewingWidth, "3"),
    ROW(float, Camera, DefaultNearClipDistance, "0.01"),
    ROW(float, Camera, DefaultFarClipDistance, "1000"),
    ROW(float, Camera, DefaultAspectRatio, "1.85"),
    ROW(float, Camera, DefaultPerspectiveTX, "1.8"),
    ROW(float, Camera, DefaultPerspectiveTY, "0.5"),
    ROW(float, Camera, DefaultPerspectiveTZ, "1.8"),
    ROW(float, Camera, DefaultTopTX, "0"),
    ROW(float, Camera, DefaultTopTY, "20"),
    ROW(float, Camera, DefaultTopTZ, "0"),
    ROW(float, Camera, DefaultFrontTX, "0"),
    ROW(float, Camera, DefaultFrontTY, "0"),
    ROW(float, Camera, DefaultFrontTZ, "20"),
    ROW(float, Camera, DefaultSideTX, "20"),
    ROW(float, Camera, DefaultSideTY, "0"),
    ROW(float, Camera, DefaultSideTZ, "0"),
    ROW(XColour, Camera, DefaultColour, "0.5, 0.2, 0, 1"),
    ROW(string, Character, DefaultName, "character"),
    ROW(string, Grid, DefaultName, "grid"),
    ROW(float, Grid, DefaultSize, "20"),
    ROW(float, Grid, DefaultSpacing, "1"),
    ROW(XColour, Grid, DefaultColour, "0.15, 0.15, 0.15, 1"),
    ROW(int, Grid, DefaultDivisions, "5"),
    ROW(string, IKHandle, DefaultName, "ikHandle"),
    ROW(string, IKHandle, DefaultSuffix, "_IK"),
    ROW(XColour, IKHandle, DefaultColour, "1, 0, 0.4, 1"),
    ROW(string, IKSolver, DefaultName, "IKSolver"),
    ROW(string, Joint, DefaultName, "joint"),
    ROW(float, Joint, DefaultBoneRadius, "0.008"),
    ROW(float, Joint, DefaultLocatorRadius, "0.015"),
    ROW(XColour, Joint, DefaultBoneColour, "0.3, 0.3, 0.7, 1"),
    ROW(int, Joint, DefaultBoneDisplayStyle, "0"),
    ROW(int, Joint, DefaultAxesDisplayStyle, "0"),
    ROW(int, Joint, DefaultLocatorDisplayStyle, "2"),
    ROW(string, JointLimit, DefaultName, "jointLimit"),
    ROW(string, JointLimit, DefaultSuffix, "Limit"),
    ROW(XColour, JointLimit, DefaultColour, "0.1, 0.25, 0.5, 0.6"),
    ROW(float, JointLimit, DefaultSwingSoftLimitRatio, "0.7"),
    ROW(float, JointLimit, DefaultTwistSoftRatio, "0.7"),
    ROW(float, JointLimit, DefaultSwingLimitAngle, "0.785398"),
    ROW(float, JointLimit, DefaultTwistAngle, "1.5708"),
    ROW(float, JointLimit, DefaultTwistOffset, "0"),
    ROW(string, ObjectGroup, DefaultName, "objectGroup"),
    ROW(float, ObjectGroup, HueDivisions, "14"),
    ROW(float, ObjectGroup, Saturation, "0.55"),
    ROW(float, ObjectGroup, Luminescence, "0.5"),
    ROW(int, ObjectGroup, RandomHueCount, "1000"),
    ROW(string, PhysicsBody, DefaultName, "physicsBody"),
    ROW(XColour, PhysicsBody, DefaultColour, "0, 0.6, 0.5, 1"),
    ROW(int, PhysicsBody, DefaultShape, "0"),
    ROW(float, PhysicsBody, DefaultDensity, "1000"),
    ROW(float, PhysicsBody, DefaultRestitution, "0.05"),
    ROW(float, PhysicsBody, DefaultStaticFriction, "0.2"),
    ROW(float, PhysicsBody, DefaultDynamicFriction, "0.2"),
    ROW(float, PhysicsBody, DefaultSkinWidth, "0.001"),
    ROW(float, PhysicsBody, DefaultWidth, "0.2"),
    ROW(float, PhysicsBody, DefaultHeight, "0.2"),
    ROW(float, PhysicsBody, DefaultLength, "0.35"),
    ROW(float, PhysicsBody, DefaultRadius, "0.1"),
    ROW(float, PhysicsBody, AutoSizeBoxWidth, "0.1"),
    ROW(float, PhysicsBody, AutoSizeBoxHeight, "0.1"),
    ROW(float, PhysicsBody, AutoSizeBoxLength, "0.1"),
    ROW(float, PhysicsBody, AutoSizeCapsuleRadius, "0.05"),
    ROW(float, PhysicsBody, AutoSizeCapsuleLength, "0.1"),
    ROW(float, PhysicsBody, AutoSizeCylinderRadius, "0.05"),
    ROW(float, PhysicsBody, AutoSizeCylinderLength, "0.1"),
    ROW(float, PhysicsBody, AutoSizeSphereRadius, "0.1"),
    ROW(string, PhysicsCharacter, DefaultName, "physics"),
    ROW(string, PhysicsConstraint, DefaultName, "physicsConstraint"),
    ROW(int, PhysicsConstraint, DefaultMode, "0"),
    ROW(float, PhysicsConstraint, DefaultTranslationStiffness, "100000"),
    ROW(float, PhysicsConstraint, DefaultRotationStiffness, "5729.58"),
    ROW(float, PhysicsConstraint, DefaultTranslationDamping, "0"),
    ROW(float, PhysicsConstraint, DefaultRotationDamping, "0"),
    ROW(float, PhysicsConstraint, DefaultForceLimit, "10"),
    ROW(float, PhysicsConstraint, DefaultTorqueLimit, "1"),
    ROW(float, PhysicsConstraint, DefaultRange, "0.1"),
    ROW(XColour, PhysicsConstraint, DefaultColour, "0, 0.75, 1, 1"),
    ROW(string, PhysicsJoint, DefaultName, "physicsJoint"),
    ROW(string, PhysicsJoint, DefaultConstraintSuffix, "physicsConstraint"),
    ROW(string, PhysicsJoint, DefaultTargetTransformSuffix, "physicsConstraintTarget"),
    ROW(string, PhysicsJoint, DefaultTargetHandleSuffix, "physicsConstraintHandle"),
    ROW(string, PhysicsJoint, DefaultTargetHandleFolder, "physicsConstraintTargets"),
    ROW(float, PhysicsJoint, DefaultWorldDamping, "0"),
    ROW(float, PhysicsJoint, DefaultHandleSize, "0.1"),
    ROW(float, PhysicsJoint, DefaultStiffness, "0"),
    ROW(float, PhysicsJoint, DefaultDamping, "0"),
    ROW(XColour, PhysicsJoint, DefaultColour, "0.2, 0.7843, 0.2, 1"),
    ROW(float, PhysicsJoint, DefaultBoneRadius, "0.01"),
    ROW(float, PhysicsJoint, DefaultLocatorRadius, "0.02"),
    ROW(int, PhysicsJoint, DefaultBoneDisplayStyle, "0"),
    ROW(int, PhysicsJoint, DefaultAxesDisplayStyle, "0"),
    ROW(int, PhysicsJoint, DefaultLocatorDisplayStyle, "2"),
    ROW(float, PhysicsJoint, DefaultDriveStiffness, "1e+06"),
    ROW(float, PhysicsJoint, DefaultDriveDamping, "0"),
    ROW(float, PhysicsJoint, DefaultDriveBlendWeight, "1"),
    ROW(string, PhysicsJointLimit, DefaultName, "physicsJointLimit"),
    ROW(string, PhysicsJointLimit, DefaultSuffix, "Limit"),
    ROW(XColour, PhysicsJointLimit, DefaultColour, "0.1, 0.45, 0.23, 0.6"),
    ROW(float, PhysicsJointLimit, DefaultSwingLimitAngle, "0.785398"),
    ROW(float, PhysicsJointLimit, DefaultTwistAngle, "1.5708"),
    ROW(float, PhysicsJointLimit, DefaultTwistOffset, "0"),
    ROW(float, PhysicsJointLimit, DefaultStiffness, "1e+06"),
    ROW(float, PhysicsJointLimit, DefaultDamping, "0.1"),
    ROW(float, PhysicsJointLimit, DefaultRestitution, "0"),
    ROW(float, PhysicsJointLimit, DefaultSwingSoftLimitStiffness, "10000"),
    ROW(float, PhysicsJointLimit, DefaultSwingSoftLimitRatio, "0.7"),
    ROW(float, PhysicsJointLimit, DefaultTwistSoftStiffness, "10000"),
    ROW(float, PhysicsJointLimit, DefaultTwistSoftRatio, "0.7"),
    ROW(string, PhysicsMeshInstance, DefaultName, "physicsMeshInstance"),
    ROW(string, PluginManager, PluginFileExtension, "tvl"),
    ROW(string, PoleVector, DefaultName, "poleVector"),
    ROW(string, PoleVector, DefaultControlPoleSuffix, "_controlPole"),
    ROW(string, PoleVector, DefaultReferencePoleSuffix, "_referencePole"),
    ROW(string, PoleVector, DefaultReferentSuffix, "_referent"),
    ROW(XColour, PoleVector, DefaultColour, "0.25, 0.5, 0, 1"),
    ROW(string, Primitive, DefaultName, "shape"),
    ROW(int, Primitive, DefaultShape, "0"),
    ROW(float, Primitive, DefaultRadius, "0.05"),
    ROW(float, Primitive, DefaultWidth, "0.05"),
    ROW(float, Primitive, DefaultHeight, "0.05"),
    ROW(float, Primitive, DefaultLength, "0.3"),
    ROW(XColour, Primitive, DefaultColour, "0, 0.5, 0.7, 1"),
    ROW(string, SceneSettings, DefaultName, "SceneSettings"),
    ROW(int, SceneSettings, DefaultFrameRate, "24"),
    ROW(int, SceneSettings, DefaultAngularUnits, "0"),
    ROW(int, SceneSettings, DefaultLinearUnits, "2"),
    ROW(int, SceneSettings, DefaultMassUnits, "1"),
    ROW(float, SceneSettings, DefaultTime, "0"),
    ROW(float, SceneSettings, DefaultStartTime, "0"),
    ROW(float, SceneSettings, DefaultEndTime, "3"),
    ROW(float, SceneSettings, DefaultStartPlaybackTime, "0"),
    ROW(float, SceneSettings, DefaultEndPlaybackTime, "3"),
    ROW(float, SceneSettings, DefaultSimulationRate, "60"),
    ROW(int, SceneSettings, DefaultSolverAccuracy, "100"),
    ROW(int, SceneSettings, DefaultSolverSubsteps, "10"),
    ROW(bool, SceneSettings, DefaultContinuousCollisions, "true"),
    ROW(bool, SceneSettings, DefaultPlayDuringSimulation, "true"),
    ROW(float, SceneSettings, DefaultGravityX, "0"),
    ROW(float, SceneSettings, DefaultGravityY, "-9.81"),
    ROW(float, SceneSettings, DefaultGravityZ, "0"),
    ROW(int, SceneSettings, DefaultScriptingLanguage, "0"),
    ROW(string, Shape, DefaultName, "shape"),
    ROW(string, Shape, DefaultSuffix, "Shape"),
    ROW(string, Trajectory, DefaultName, "trajectory"),
    ROW(string, Trajectory, DefaultTimingName, "trajectoryTiming"),
    ROW(XColour, Trajectory, DefaultColour, "0, 0.75, 1, 1"),
    ROW(string, Transform, DefaultName, "transform"),
};
// clang-format on
#undef ROW

TEST(Defaults, AreTheConstantsOfTheirClasses) {
    for (Row const& row : rows) {
        EXPECT_TRUE(row.isOfType) << row.name;
        EXPECT_EQ(row.actual, row.expected) << row.name;
    }
    EXPECT_EQ(std::size(rows), 152u);
}

// ---- new objects ----

// Without the number that makes a name unique.
std::string stem(std::wstring const& text) {
    return Qelutils::toUtf8(text.substr(0, text.find_last_not_of(L"0123456789") + 1));
}

std::string shown(XAttribute const& a) {
    if (a.IsCompositeAttribute())
        return shown(
            XColour(a.Attribute(0).Float(), a.Attribute(1).Float(), a.Attribute(2).Float(), a.Attribute(3).Float()));
    return a.IsFloat()  ? shown(a.Float())
           : a.IsBool() ? shown(a.Boolean())
           : a.IsInt()  ? shown(a.Integer())
           : a.IsEnum() ? shown(a.Enumeration())
                        : stem(a.String());
}

// Gives the attribute another value than it has.
void spoil(XAttribute a) {
    if (a.IsCompositeAttribute())
        for (int i = 0; i < a.AttributeCount(); ++i) spoil(a.Attribute(i));
    a.SetFloat(a.Float() + 7).SetBoolean(!a.Boolean()).SetInteger(a.Integer() + 3).SetEnumeration(a.Enumeration() + 1);
    a.SetString(a.String() + L" spoilt");
}

struct Initial {
    XWord type;
    wchar_t const* attribute;
    std::string value;
};

// clang-format off
Initial const initials[] = {
    {XTransform::TypeID, L"Name", shown(XTransform::DefaultName)},
    {XTransform::TypeID, L"Colour", shown(XTransform::DefaultColour)},
    {XTransform::TypeID, L"Visible", "true"},
    {XCamera::TypeID, L"Name", shown(XCamera::DefaultName)},
    {XCamera::TypeID, L"Colour", shown(XCamera::DefaultColour)},
    {XCamera::TypeID, L"ViewingAngle", shown(XCamera::DefaultViewingAngle)},
    {XCamera::TypeID, L"ViewingWidth", shown(XCamera::DefaultViewingWidth)},
    {XCamera::TypeID, L"NearClipDistance", shown(XCamera::DefaultNearClipDistance)},
    {XCamera::TypeID, L"FarClipDistance", shown(XCamera::DefaultFarClipDistance)},
    {XCamera::TypeID, L"AspectRatio", shown(XCamera::DefaultAspectRatio)},
    {XCharacter::TypeID, L"Name", shown(XCharacter::DefaultName)},
    {XCharacter::TypeID, L"Colour", shown(XTransform::DefaultColour)},
    {XCharacter::TypeID, L"Visible", "true"},
    {XCharacter::TypeID, L"IsEditable", "false"},
    {XGrid::TypeID, L"Name", shown(XGrid::DefaultName)},
    {XGrid::TypeID, L"Colour", shown(XGrid::DefaultColour)},
    {XGrid::TypeID, L"Size", shown(XGrid::DefaultSize)},
    {XGrid::TypeID, L"Spacing", shown(XGrid::DefaultSpacing)},
    {XGrid::TypeID, L"Divisions", shown(XGrid::DefaultDivisions)},
    {XIKHandle::TypeID, L"Name", shown(XIKHandle::DefaultName)},
    {XIKHandle::TypeID, L"Colour", shown(XIKHandle::DefaultColour)},
    {XIKHandle::TypeID, L"Visible", "true"},
    {XJoint::TypeID, L"Name", shown(XJoint::DefaultName)},
    {XJoint::TypeID, L"Colour", shown(XJoint::DefaultBoneColour)},
    {XJoint::TypeID, L"Visible", "true"},
    {XJoint::TypeID, L"BoneRadius", shown(XJoint::DefaultBoneRadius)},
    {XJoint::TypeID, L"LocatorRadius", shown(XJoint::DefaultLocatorRadius)},
    {XJoint::TypeID, L"BoneStyle", shown(XJoint::DefaultBoneDisplayStyle)},
    {XJoint::TypeID, L"AxesStyle", shown(XJoint::DefaultAxesDisplayStyle)},
    {XJoint::TypeID, L"LocatorStyle", shown(XJoint::DefaultLocatorDisplayStyle)},
    {XJointLimit::TypeID, L"Name", shown(XJointLimit::DefaultName)},
    {XJointLimit::TypeID, L"Colour", shown(XJointLimit::DefaultColour)},
    {XJointLimit::TypeID, L"Visible", "true"},
    {XJointLimit::TypeID, L"Swing1Active", "true"},
    {XJointLimit::TypeID, L"Swing2Active", "true"},
    {XJointLimit::TypeID, L"TwistActive", "true"},
    {XJointLimit::TypeID, L"Swing1Angle", shown(XJointLimit::DefaultSwingLimitAngle)},
    {XJointLimit::TypeID, L"Swing2Angle", shown(XJointLimit::DefaultSwingLimitAngle)},
    {XJointLimit::TypeID, L"TwistAngle", shown(XJointLimit::DefaultTwistAngle)},
    {XJointLimit::TypeID, L"TwistOffset", shown(XJointLimit::DefaultTwistOffset)},
    {XJointLimit::TypeID, L"SoftSwingActive", "false"},
    {XJointLimit::TypeID, L"SoftTwistActive", "false"},
    {XJointLimit::TypeID, L"SoftSwing1Ratio", shown(XJointLimit::DefaultSwingSoftLimitRatio)},
    {XJointLimit::TypeID, L"SoftSwing2Ratio", shown(XJointLimit::DefaultSwingSoftLimitRatio)},
    {XJointLimit::TypeID, L"SoftTwistRatio", shown(XJointLimit::DefaultTwistSoftRatio)},
    {XObjectGroup::TypeID, L"IsGroupFolder", "false"},
    {XObjectGroup::TypeID, L"IsGroupSeparator", "false"},
    {XObjectGroup::TypeID, L"SubObjectType", "0"},
    {XObjectGroup::TypeID, L"IsFocused", "false"},
    {XObjectGroup::TypeID, L"IsExpanded", "true"},
    {XObjectGroup::TypeID, L"IsEditable", "true"},
    {XObjectGroup::TypeID, L"IsSelectable", "true"},
    {XPhysicsBody::TypeID, L"Name", shown(XPhysicsBody::DefaultName)},
    {XPhysicsBody::TypeID, L"Colour", shown(XPhysicsBody::DefaultColour)},
    {XPhysicsBody::TypeID, L"Shape", shown(XPhysicsBody::DefaultShape)},
    {XPhysicsBody::TypeID, L"Width", shown(XPhysicsBody::DefaultWidth)},
    {XPhysicsBody::TypeID, L"Height", shown(XPhysicsBody::DefaultHeight)},
    {XPhysicsBody::TypeID, L"Length", shown(XPhysicsBody::DefaultLength)},
    {XPhysicsBody::TypeID, L"Radius", shown(XPhysicsBody::DefaultRadius)},
    {XPhysicsBody::TypeID, L"Density", shown(XPhysicsBody::DefaultDensity)},
    {XPhysicsBody::TypeID, L"Restitution", shown(XPhysicsBody::DefaultRestitution)},
    {XPhysicsBody::TypeID, L"StaticFriction", shown(XPhysicsBody::DefaultStaticFriction)},
    {XPhysicsBody::TypeID, L"DynamicFriction", shown(XPhysicsBody::DefaultDynamicFriction)},
    {XPhysicsBody::TypeID, L"SkinWidth", shown(XPhysicsBody::DefaultSkinWidth)},
    {XPhysicsBody::TypeID, L"DisplayStyle", "1"},
    {XPhysicsBody::TypeID, L"HighlightStyle", "0"},
    {XPhysicsCharacter::TypeID, L"Name", shown(XPhysicsCharacter::DefaultName)},
    {XPhysicsCharacter::TypeID, L"Colour", shown(XPhysicsJoint::DefaultColour)},
    {XPhysicsCharacter::TypeID, L"Visible", "true"},
    {XPhysicsConstraint::TypeID, L"Name", shown(XPhysicsConstraint::DefaultName)},
    {XPhysicsConstraint::TypeID, L"Colour", shown(XPhysicsConstraint::DefaultColour)},
    {XPhysicsConstraint::TypeID, L"Visible", "true"},
    {XPhysicsConstraint::TypeID, L"ConstraintEnabled", "true"},
    {XPhysicsConstraint::TypeID, L"ConstraintMode", shown(XPhysicsConstraint::DefaultMode)},
    {XPhysicsConstraint::TypeID, L"MaximumRange", shown(XPhysicsConstraint::DefaultRange)},
    {XPhysicsConstraint::TypeID, L"TranslationStiffness", shown(XPhysicsConstraint::DefaultTranslationStiffness)},
    {XPhysicsConstraint::TypeID, L"RotationStiffness", shown(XPhysicsConstraint::DefaultRotationStiffness)},
    {XPhysicsConstraint::TypeID, L"TranslationDamping", shown(XPhysicsConstraint::DefaultTranslationDamping)},
    {XPhysicsConstraint::TypeID, L"RotationDamping", shown(XPhysicsConstraint::DefaultRotationDamping)},
    {XPhysicsConstraint::TypeID, L"ForceLimit", shown(XPhysicsConstraint::DefaultForceLimit)},
    {XPhysicsConstraint::TypeID, L"TorqueLimit", shown(XPhysicsConstraint::DefaultTorqueLimit)},
    {XPhysicsJoint::TypeID, L"Name", shown(XPhysicsJoint::DefaultName)},
    {XPhysicsJoint::TypeID, L"Colour", shown(XPhysicsJoint::DefaultColour)},
    {XPhysicsJoint::TypeID, L"Visible", "true"},
    {XPhysicsJoint::TypeID, L"BoneRadius", shown(XPhysicsJoint::DefaultBoneRadius)},
    {XPhysicsJoint::TypeID, L"LocatorRadius", shown(XPhysicsJoint::DefaultLocatorRadius)},
    {XPhysicsJoint::TypeID, L"BoneStyle", shown(XPhysicsJoint::DefaultBoneDisplayStyle)},
    {XPhysicsJoint::TypeID, L"AxesStyle", shown(XPhysicsJoint::DefaultAxesDisplayStyle)},
    {XPhysicsJoint::TypeID, L"LocatorStyle", shown(XPhysicsJoint::DefaultLocatorDisplayStyle)},
    {XPhysicsJoint::TypeID, L"MotionEnabled", "true"},
    {XPhysicsJoint::TypeID, L"LinearDamping", shown(XPhysicsJoint::DefaultWorldDamping)},
    {XPhysicsJoint::TypeID, L"AngularDamping", shown(XPhysicsJoint::DefaultWorldDamping)},
    {XPhysicsJoint::TypeID, L"MaxAngularVelocity", shown(XPhysicsJoint::DefaultMaximumAngularVelocity)},
    {XPhysicsJoint::TypeID, L"SwingStiffness", shown(XPhysicsJoint::DefaultStiffness)},
    {XPhysicsJoint::TypeID, L"TwistStiffness", shown(XPhysicsJoint::DefaultStiffness)},
    {XPhysicsJoint::TypeID, L"SwingDamping", shown(XPhysicsJoint::DefaultDamping)},
    {XPhysicsJoint::TypeID, L"TwistDamping", shown(XPhysicsJoint::DefaultDamping)},
    {XPhysicsJoint::TypeID, L"DriveEnabled", "false"},
    {XPhysicsJoint::TypeID, L"DriveBlendWeight", shown(XPhysicsJoint::DefaultDriveBlendWeight)},
    {XPhysicsJoint::TypeID, L"DriveType", "SlerpDrive"},
    {XPhysicsJoint::TypeID, L"DriveSlerpStiffness", shown(XPhysicsJoint::DefaultDriveStiffness)},
    {XPhysicsJoint::TypeID, L"DriveSwingStiffness", shown(XPhysicsJoint::DefaultDriveStiffness)},
    {XPhysicsJoint::TypeID, L"DriveTwistStiffness", shown(XPhysicsJoint::DefaultDriveStiffness)},
    {XPhysicsJoint::TypeID, L"DriveSlerpDamping", shown(XPhysicsJoint::DefaultDriveDamping)},
    {XPhysicsJoint::TypeID, L"DriveSwingDamping", shown(XPhysicsJoint::DefaultDriveDamping)},
    {XPhysicsJoint::TypeID, L"DriveTwistDamping", shown(XPhysicsJoint::DefaultDriveDamping)},
    {XPhysicsJoint::TypeID, L"ShowActiveDrive", "false"},
    {XPhysicsJointLimit::TypeID, L"Name", shown(XPhysicsJointLimit::DefaultName)},
    {XPhysicsJointLimit::TypeID, L"Colour", shown(XPhysicsJointLimit::DefaultColour)},
    {XPhysicsJointLimit::TypeID, L"Visible", "true"},
    {XPhysicsJointLimit::TypeID, L"Swing1Active", "true"},
    {XPhysicsJointLimit::TypeID, L"Swing2Active", "true"},
    {XPhysicsJointLimit::TypeID, L"TwistActive", "true"},
    {XPhysicsJointLimit::TypeID, L"Swing1Angle", shown(XPhysicsJointLimit::DefaultSwingLimitAngle)},
    {XPhysicsJointLimit::TypeID, L"Swing2Angle", shown(XPhysicsJointLimit::DefaultSwingLimitAngle)},
    {XPhysicsJointLimit::TypeID, L"TwistAngle", shown(XPhysicsJointLimit::DefaultTwistAngle)},
    {XPhysicsJointLimit::TypeID, L"TwistOffset", shown(XPhysicsJointLimit::DefaultTwistOffset)},
    {XPhysicsJointLimit::TypeID, L"SoftSwingActive", "false"},
    {XPhysicsJointLimit::TypeID, L"SoftTwistActive", "false"},
    {XPhysicsJointLimit::TypeID, L"SoftSwing1Ratio", shown(XPhysicsJointLimit::DefaultSwingSoftLimitRatio)},
    {XPhysicsJointLimit::TypeID, L"SoftSwing2Ratio", shown(XPhysicsJointLimit::DefaultSwingSoftLimitRatio)},
    {XPhysicsJointLimit::TypeID, L"SoftTwistRatio", shown(XPhysicsJointLimit::DefaultTwistSoftRatio)},
    {XPhysicsJointLimit::TypeID, L"Swing1Stiffness", shown(XPhysicsJointLimit::DefaultStiffness)},
    {XPhysicsJointLimit::TypeID, L"Swing1Damping", shown(XPhysicsJointLimit::DefaultDamping)},
    {XPhysicsJointLimit::TypeID, L"Swing1Restitution", shown(XPhysicsJointLimit::DefaultRestitution)},
    {XPhysicsJointLimit::TypeID, L"Swing2Stiffness", shown(XPhysicsJointLimit::DefaultStiffness)},
    {XPhysicsJointLimit::TypeID, L"Swing2Damping", shown(XPhysicsJointLimit::DefaultDamping)},
    {XPhysicsJointLimit::TypeID, L"Swing2Restitution", shown(XPhysicsJointLimit::DefaultRestitution)},
    {XPhysicsJointLimit::TypeID, L"LowerTwistStiffness", shown(XPhysicsJointLimit::DefaultStiffness)},
    {XPhysicsJointLimit::TypeID, L"LowerTwistDamping", shown(XPhysicsJointLimit::DefaultDamping)},
    {XPhysicsJointLimit::TypeID, L"LowerTwistRestitution", shown(XPhysicsJointLimit::DefaultRestitution)},
    {XPhysicsJointLimit::TypeID, L"UpperTwistStiffness", shown(XPhysicsJointLimit::DefaultStiffness)},
    {XPhysicsJointLimit::TypeID, L"UpperTwistDamping", shown(XPhysicsJointLimit::DefaultDamping)},
    {XPhysicsJointLimit::TypeID, L"UpperTwistRestitution", shown(XPhysicsJointLimit::DefaultRestitution)},
    {XPhysicsJointLimit::TypeID, L"SoftSwing1Stiffness", shown(XPhysicsJointLimit::DefaultSwingSoftLimitStiffness)},
    {XPhysicsJointLimit::TypeID, L"SoftSwing2Stiffness", shown(XPhysicsJointLimit::DefaultSwingSoftLimitStiffness)},
    {XPhysicsJointLimit::TypeID, L"SoftTwistStiffness", shown(XPhysicsJointLimit::DefaultTwistSoftStiffness)},
    {XPhysicsMeshInstance::TypeID, L"Name", shown(XPhysicsMeshInstance::DefaultName)},
    {XPhysicsMeshInstance::TypeID, L"Visible", "true"},
    {XPoleVector::TypeID, L"Name", shown(XPoleVector::DefaultName)},
    {XPoleVector::TypeID, L"Colour", shown(XPoleVector::DefaultColour)},
    {XPoleVector::TypeID, L"Visible", "true"},
    {XPrimitive::TypeID, L"Name", shown(XPrimitive::DefaultName)},
    {XPrimitive::TypeID, L"Colour", shown(XPrimitive::DefaultColour)},
    {XPrimitive::TypeID, L"Shape", shown(XPrimitive::DefaultShape)},
    {XPrimitive::TypeID, L"Width", shown(XPrimitive::DefaultWidth)},
    {XPrimitive::TypeID, L"Height", shown(XPrimitive::DefaultHeight)},
    {XPrimitive::TypeID, L"Length", shown(XPrimitive::DefaultLength)},
    {XPrimitive::TypeID, L"Radius", shown(XPrimitive::DefaultRadius)},
    {XSceneSettings::TypeID, L"FrameRate", shown(XSceneSettings::DefaultFrameRate)},
    {XSceneSettings::TypeID, L"AngularUnits", shown(XSceneSettings::DefaultAngularUnits)},
    {XSceneSettings::TypeID, L"LinearUnits", shown(XSceneSettings::DefaultLinearUnits)},
    {XSceneSettings::TypeID, L"MassUnits", shown(XSceneSettings::DefaultMassUnits)},
    {XSceneSettings::TypeID, L"Time", shown(XSceneSettings::DefaultTime)},
    {XSceneSettings::TypeID, L"StartTime", shown(XSceneSettings::DefaultStartTime)},
    {XSceneSettings::TypeID, L"EndTime", shown(XSceneSettings::DefaultEndTime)},
    {XSceneSettings::TypeID, L"SimulationRate", shown(XSceneSettings::DefaultSimulationRate)},
    {XSceneSettings::TypeID, L"SolverAccuracy", shown(XSceneSettings::DefaultSolverAccuracy)},
    {XSceneSettings::TypeID, L"SolverSubsteps", shown(XSceneSettings::DefaultSolverSubsteps)},
    {XSceneSettings::TypeID, L"ContinuousCollisions", shown(XSceneSettings::DefaultContinuousCollisions)},
    {XSceneSettings::TypeID, L"PlayDuringSimulation", shown(XSceneSettings::DefaultPlayDuringSimulation)},
    {XSceneSettings::TypeID, L"GravityX", shown(XSceneSettings::DefaultGravityX)},
    {XSceneSettings::TypeID, L"GravityY", shown(XSceneSettings::DefaultGravityY)},
    {XSceneSettings::TypeID, L"GravityZ", shown(XSceneSettings::DefaultGravityZ)},
    {XSceneSettings::TypeID, L"ScriptingLanguage", shown(XSceneSettings::DefaultScriptingLanguage)},
    {XSceneSettings::TypeID, L"ActiveTool", shown(XSceneSettings::DefaultActiveTool)},
    {XSceneSettings::TypeID, L"PlaybackStartTime", shown(XSceneSettings::DefaultStartPlaybackTime)},
    {XSceneSettings::TypeID, L"PlaybackEndTime", shown(XSceneSettings::DefaultEndPlaybackTime)},
    {XSceneSettings::TypeID, L"StartScript", ""},
    {XSceneSettings::TypeID, L"UpdateScript", ""},
    {XSceneSettings::TypeID, L"EndScript", ""},
    {XTrajectory::TypeID, L"Name", shown(XTrajectory::DefaultName)},
    {XTrajectory::TypeID, L"Colour", shown(XTrajectory::DefaultColour)},
    {XTrajectory::TypeID, L"Visible", "true"},
    {XTrajectory::TypeID, L"ShowCurrentFrame", "false"},
    {XTrajectory::TypeID, L"ShowRotationCurves", "false"},
    {XTrajectory::TypeID, L"ShowTiming", "false"},
};
// clang-format on

class NewObjects : public StartedApplication {
protected:
    NewObjects() {
        make<XCharacter, XIKHandle, XJointLimit, XPhysicsBody, XPhysicsCharacter, XPhysicsConstraint, XPhysicsJoint,
             XPhysicsJointLimit, XPhysicsMeshInstance, XPoleVector, XTrajectory>();
        for (Initial const& each : initials)
            if (!objects.count(each.type)) objects[each.type] = scene().CreateObject(each.type);
    }
    template<class... Objects> void make() { ((objects[Objects::TypeID] = makeObject<Objects>(scene())), ...); }

    void expectDefaults() const {
        for (Initial const& each : initials)
            EXPECT_EQ(shown(attributeOf(each)), each.value)
                << Qelutils::toUtf8(each.type) << "." << Qelutils::toUtf8(each.attribute);
    }
    XAttribute attributeOf(Initial const& each) const { return objects.at(each.type).Attribute(each.attribute); }

    std::map<std::wstring, XObject> objects;
};

TEST_F(NewObjects, BearTheDefaultsOfTheirTypes) { expectDefaults(); }

TEST_F(NewObjects, GetTheDefaultsAgainWhenTheyAreInitialized) {
    for (Initial const& each : initials) {
        spoil(attributeOf(each));
        ASSERT_NE(shown(attributeOf(each)), each.value) << Qelutils::toUtf8(each.attribute);
    }
    for (auto& [type, object] : objects) object.Initialize();
    expectDefaults();
}

TEST_F(NewObjects, StandWhereTheyAreMade) {
    for (wchar_t const* type : {L"Character", L"IKHandle", L"JointLimit", L"PhysicsJoint", L"Trajectory"}) {
        XTransform transform(objects.at(type));
        transform.SetTranslation(1, 2, 3).Initialize();
        EXPECT_TRUE(transform.LocalMatrix().Matrix().IsIdentity()) << Qelutils::toUtf8(type);
    }
}

TEST_F(NewObjects, LeaveWhatTheNodeGives) {
    XPhysicsMeshInstance const mesh(objects.at(L"PhysicsMeshInstance"));
    XObject(mesh).Attribute(L"Density").SetFloat(5);
    XObject(mesh).Initialize();
    EXPECT_EQ(mesh.Density().Float(), 5);
}

}  // namespace
}  // namespace Tavo
