// The numbers, names and kinds of every node type's attributes are a contract with all that reaches them by number.
#include "qel/sg/scene.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

using T = db::AttributeType;

struct Row {
    int number;
    wchar_t const* name;
    T type;
};
struct Table {
    db::NodeDef const& def;
    db::NodeDef const& base;
    std::vector<Row> rows;  // those that the type adds to its base
};

std::string utf8(std::wstring const& text) { return {text.begin(), text.end()}; }

std::vector<Row> run(int first, T type, std::initializer_list<wchar_t const*> names) {
    std::vector<Row> rows;
    for (wchar_t const* name : names) rows.push_back({first++, name, type});
    return rows;
}
std::vector<Row> join(std::initializer_list<std::vector<Row>> parts) {
    std::vector<Row> all;
    for (auto const& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

std::vector<Table> const& tables() {
    static std::vector<Table> const all = {
        {Node::Def, Node::Def, {{0, L"Name", T::String}, {1, L"AllowCompute", T::Boolean}}},
        {RenderableNode::Def,
         Node::Def,
         {{8, L"Visible", T::Boolean}, {9, L"Colour", T::Compound}, {10, L"ShowHierarchy", T::Boolean}}},
        {TransformBaseNode::Def, RenderableNode::Def,
         join({{{16, L"Prepared", T::Boolean}},
               run(17, T::Matrix, {L"ParentWorldMatrix", L"LocalMatrix", L"WorldMatrix"})})},
        {TransformNode::Def, TransformBaseNode::Def,
         join({{{20, L"TransformDataSource", T::Enumeration}},
               run(21, T::Float,
                   {L"TranslationX",
                    L"TranslationY",
                    L"TranslationZ",
                    L"RotationX",
                    L"RotationY",
                    L"RotationZ",
                    L"ScaleX",
                    L"ScaleY",
                    L"ScaleZ",
                    L"ScalePivotX",
                    L"ScalePivotY",
                    L"ScalePivotZ",
                    L"ScalePivotTranslationX",
                    L"ScalePivotTranslationY",
                    L"ScalePivotTranslationZ",
                    L"PreTranslationX",
                    L"PreTranslationY",
                    L"PreTranslationZ",
                    L"PreRotationX",
                    L"PreRotationY",
                    L"PreRotationZ",
                    L"PostRotationX",
                    L"PostRotationY",
                    L"PostRotationZ"}),
               {{45, L"RotationQuaternion", T::Compound},
                {46, L"RotationInterpolation", T::Enumeration},
                {47, L"RotationEulerOrder", T::Enumeration},
                {48, L"LocalMatrixInput", T::Matrix},
                {49, L"ShowTrajectory", T::Boolean},
                {50, L"ShowAxis", T::Boolean}}})},
        {JointNode::Def, TransformNode::Def,
         join({run(51, T::Float, {L"BoneRadius", L"LocatorRadius"}),
               run(53, T::Enumeration, {L"BoneStyle", L"LocatorStyle", L"AxesStyle"}),
               {{56, L"Tags", T::String}, {57, L"JointLimitReference", T::Pointer}}})},
        {JointLimitNode::Def, TransformNode::Def,
         join({{{51, L"JointReference", T::Pointer},
                {52, L"JointWorldMatrix", T::Matrix},
                {53, L"JointLocalMatrix", T::Matrix}},
               run(54, T::Float, {L"MovingOffsetX", L"MovingOffsetY", L"MovingOffsetZ"}),
               {{57, L"MovingOffsetMatrix", T::Matrix},
                {58, L"LimitType", T::Enumeration},
                {59, L"Swing1Active", T::Boolean},
                {60, L"Swing1Angle", T::Float},
                {61, L"Swing2Active", T::Boolean},
                {62, L"Swing2Angle", T::Float},
                {63, L"TwistActive", T::Boolean},
                {64, L"TwistAngle", T::Float},
                {65, L"TwistOffset", T::Float},
                {66, L"SoftSwingActive", T::Boolean},
                {67, L"SoftSwing1Ratio", T::Float},
                {68, L"SoftSwing2Ratio", T::Float},
                {69, L"SoftTwistActive", T::Boolean},
                {70, L"SoftTwistRatio", T::Float},
                {71, L"DisplayScale", T::Float},
                {72, L"ShowFixedAxes", T::Boolean},
                {73, L"ShowMovingAxes", T::Boolean}}})},
        {CharacterNode::Def, TransformNode::Def, {{51, L"IsEditable", T::Boolean}}},
        {KinematicsCharacterNode::Def, TransformNode::Def, {}},
        {IKSolverNode::Def, Node::Def,
         join({run(8, T::PointerArray, {L"IKHandleReferences", L"EndEffectorTransforms", L"RootJoints"}),
               run(11, T::IntegerArray, {L"JointHierarchy", L"EndEffectorIndexList", L"RootIndexList"}),
               run(14, T::AttributeArray, {L"InputTargets", L"BindPoses", L"InputGeometry", L"OutputGeometry"}),
               run(18, T::Boolean,
                   {L"IKHandleEnabled", L"IKSolverEnabled", L"DrawDebugLines", L"RootLocked", L"LockRootX",
                    L"LockRootY", L"LockRootZ", L"ContinuousMode"}),
               {{26, L"MaxIterations", T::Integer}},
               run(27, T::Float, {L"MoreBias", L"ReverseBias", L"PositionAccuracy", L"OrientationAccuracy"}),
               {{31, L"DisableAllLimits", T::Boolean},
                {32, L"IKHandleParams", T::AttributeArray},
                {33, L"JointIKParams", T::AttributeArray},
                {34, L"AssociatedObjects", T::PointerArray}}})},
        {IKHandleNode::Def, TransformNode::Def,
         join({run(51, T::Pointer, {L"IKSolverReference", L"IKRootReference", L"IKEffectorReference"}),
               run(54, T::Matrix, {L"IKRootWorldMatrix", L"IKEndEffectorWorldMatrix"}),
               {{56, L"IKHandleEnabled", T::Boolean},
                {57, L"SolverParameters", T::Compound},
                {58, L"IsPrimary", T::Boolean}}})},
        {JointIKParamsNode::Def, Node::Def, {{8, L"Parameters", T::Compound}}},
        {PoleVectorNode::Def,
         TransformNode::Def,
         {{51, L"ControlJoint", T::Pointer},
          {52, L"EndEffector", T::Pointer},
          {53, L"Enabled", T::Boolean},
          {54, L"Weight", T::Float},
          {55, L"PoleVector", T::Matrix},
          {56, L"SpaceWorldMatrix", T::Matrix}}},
        {RetargetNode::Def, Node::Def,
         join({run(8, T::PointerArray, {L"SourceJoints", L"TargetJoints"}),
               run(10, T::AttributeArray, {L"InputSourceGeometry", L"OutputTargetGeometry"}),
               run(12, T::IntegerArray, {L"SourceHierarchy", L"TargetHierarchy"}),
               run(14, T::Boolean, {L"Enabled", L"DrawDebugLines"}),
               run(16, T::AttributeArray, {L"SourceJointParams", L"TargetJointParams"}),
               {{18, L"DisableAllLimits", T::Boolean}, {19, L"AssociatedObjects", T::PointerArray}},
               {{20, L"Prepared", T::Boolean}},
               run(21, T::IntegerArray, {L"MappedSources", L"MappedTargets"})})},
        {JointRetargetParamsNode::Def, TransformNode::Def, {{51, L"Parameters", T::Compound}}},
        {KinematicsConstraintNode::Def, Node::Def,
         join({{{8, L"InputMatrices", T::AttributeArray}, {9, L"ParentWorldIn", T::Matrix}},
               run(10, T::Float,
                   {L"LocalTranslationOutX", L"LocalTranslationOutY", L"LocalTranslationOutZ", L"LocalRotationOutX",
                    L"LocalRotationOutY", L"LocalRotationOutZ"}),
               {{16, L"LocalMatrix", T::Matrix}, {17, L"NormalizeWeights", T::Boolean}}})},
        {AimConstraintNode::Def, Node::Def,
         join({run(8, T::Matrix, {L"WorldIn", L"UpVectorIn", L"ParentWorldIn"}),
               run(11, T::Float,
                   {L"LocalEulerOutX", L"LocalEulerOutY", L"LocalEulerOutZ", L"LocalTranslationInX",
                    L"LocalTranslationInY", L"LocalTranslationInZ"})})},
        {MatrixConversionNode::Def, Node::Def,
         join({{{8, L"InputMatrix", T::Matrix}},
               run(9, T::Float,
                   {L"PreTranslationX", L"PreTranslationY", L"PreTranslationZ", L"PreRotationX", L"PreRotationY",
                    L"PreRotationZ", L"PostRotationX", L"PostRotationY", L"PostRotationZ", L"TranslationX",
                    L"TranslationY", L"TranslationZ", L"RotationX", L"RotationY", L"RotationZ"}),
               {{24, L"RotationQuaternion", T::Compound}}})},
        {MirrorConstraintNode::Def, Node::Def,
         join({{{8, L"ParentWorldMatrix", T::Matrix}},
               run(9, T::Float,
                   {L"PreRotationX", L"PreRotationY", L"PreRotationZ", L"PostRotationX", L"PostRotationY",
                    L"PostRotationZ", L"PreTranslationX", L"PreTranslationY", L"PreTranslationZ"}),
               run(18, T::Matrix, {L"SourceWorldMatrix", L"InverseWorldMatrix", L"DrivingWorldMatrix"}),
               run(21, T::Float, {L"RotationX", L"RotationY", L"RotationZ"}),
               {{24, L"MirrorAxis", T::Integer}}})},
        {PinNode::Def, Node::Def,
         join({{{8, L"InputMatrices", T::AttributeArray}, {9, L"ParentWorldIn", T::Matrix}},
               run(10, T::Pointer,
                   {L"TranslationXReference", L"TranslationYReference", L"TranslationZReference", L"RotationXReference",
                    L"RotationYReference", L"RotationZReference", L"LocalMatrixReference", L"WorldMatrixReference"}),
               {{19, L"Pinned", T::Boolean}, {20, L"LocalMatrix", T::Matrix}}})},
        {NotNode::Def, Node::Def, {{6, L"Output", T::Boolean}, {7, L"Input", T::Boolean}}},
        {CopyMatrixNode::Def, Node::Def, {{8, L"Input", T::Matrix}, {9, L"OutputReference", T::Pointer}}},
        {FloatProductNode::Def, Node::Def, run(8, T::Float, {L"Input", L"Factor", L"Output"})},
        {AnimationNode::Def,
         Node::Def,
         {{8, L"OutputMode", T::Enumeration},
          {9, L"InputValue", T::Float},
          {10, L"InputValuesArray", T::FloatArray},
          {11, L"OutputValue", T::Float},
          {12, L"OutputValuesArray", T::FloatArray},
          {13, L"OutputValueQuat", T::Quaternion},
          {14, L"OutputValueEulerX", T::Float},
          {15, L"OutputValueEulerY", T::Float},
          {16, L"OutputValueEulerZ", T::Float},
          {17, L"InputUnits", T::Integer},
          {18, L"OutputUnits", T::Integer},
          {19, L"PreExtrapolation", T::Enumeration},
          {20, L"PostExtrapolation", T::Enumeration},
          {21, L"IsCurveSampled", T::Boolean},
          {22, L"KeyframeMinX", T::Float},
          {23, L"KeyframeMaxX", T::Float},
          {24, L"KeyframeMinY", T::Float},
          {25, L"KeyframeMaxY", T::Float},
          {26, L"KeyframeInputValues", T::FloatArray},
          {27, L"KeyframeOutputValues", T::FloatArray},
          {28, L"KeyframeOutputValuesQuat", T::AttributeArray},
          {29, L"KeyframeInTangentsX", T::FloatArray},
          {30, L"KeyframeInTangentsY", T::FloatArray},
          {31, L"KeyframeOutTangentsX", T::FloatArray},
          {32, L"KeyframeOutTangentsY", T::FloatArray},
          {33, L"KeyframeInterpolations", T::EnumerationArray},
          {34, L"KeyframeContinuities", T::EnumerationArray},
          {35, L"ExternalValue", T::Float},
          {36, L"KeysPrepared", T::Boolean}}},
        {TrajectoryNode::Def, TransformNode::Def,
         join({{{51, L"InputValue", T::Float}},
               run(52, T::Integer, {L"InputUnits", L"OutputUnits"}),
               run(54, T::Enumeration, {L"PreInfinity", L"PostInfinity"}),
               {{56, L"IsTranslationCurveSampled", T::Boolean},
                {57, L"InterpolationTangentsCoeff", T::Float},
                {58, L"TranslationKeyframesArray", T::AttributeArray},
                {59, L"IsRotationCurveSampled", T::Boolean},
                {60, L"RotationKeyframesArray", T::AttributeArray},
                {61, L"MaxArcLength", T::Float},
                {62, L"UseSafeGuards", T::Boolean},
                {63, L"SafeGuardsArray", T::AttributeArray},
                {64, L"TimingCurveFirstKeyTime", T::Float},
                {65, L"TimingCurveLastKeyTime", T::Float},
                {66, L"TimingHandlesNum", T::Integer},
                {67, L"TimingEnforceMonotonic", T::Boolean},
                {68, L"TimingPreserveTips", T::Boolean}},
               run(69, T::Float, {L"TimingTipsDropoffRange", L"TimingTipsDropoffPinch", L"TimingTipsDropoffBubble"}),
               run(72, T::FloatArray, {L"TimingHandlesTimesArray", L"TimingHandlesArcLengthsArray"}),
               {{74, L"TimingHandlesPositionsArray", T::Vector3Array},
                {75, L"SmartEditing", T::Enumeration},
                {76, L"PaintOnCurve", T::Boolean},
                {77, L"PaintThicknessVerticesNum", T::Integer},
                {78, L"PaintCurveRadius", T::Float},
                {79, L"PaintAnimationName", T::String},
                {80, L"LocalCurveMatrix", T::Matrix},
                {81, L"WorldCurveMatrix", T::Matrix}},
               run(82, T::Boolean,
                   {L"ShowCurrentFrame", L"ShowTranslationHandles", L"ShowRotationCurves", L"ShowRotationKeys",
                    L"ShowRotationHandles", L"ShowTiming", L"ShowSafeGuards"}),
               {{89, L"RotationsPrepared", T::Boolean}}})},
        {PrimitiveNode::Def, ShapeBaseNode::Def,
         join({{{18, L"Shape", T::Enumeration}},
               run(19, T::Float, {L"Width", L"Height", L"Length", L"Radius", L"Volume"}),
               {{24, L"InheritColour", T::Boolean},
                {25, L"InheritScale", T::Boolean},
                {26, L"DisplayStyle", T::Enumeration},
                {27, L"HighlightStyle", T::Integer},
                {29, L"RadialSegments", T::Integer},
                {30, L"ArcSegments", T::Integer}}})},
        {PhysicsBodyNode::Def, PrimitiveNode::Def,
         run(31, T::Float, {L"Density", L"Restitution", L"StaticFriction", L"DynamicFriction", L"SkinWidth"})},
        {PhysicsMeshInstanceNode::Def, MeshInstanceNode::Def,
         join({{{25, L"MotionEnabled", T::Boolean}},
               run(26, T::Float, {L"Density", L"Restitution", L"StaticFriction", L"DynamicFriction", L"SkinWidth"})})},
        {PhysicsCharacterNode::Def, TransformNode::Def, {}},
        {PhysicsJointNode::Def, JointNode::Def,
         join({{{58, L"MotionEnabled", T::Boolean}},
               run(59, T::Float,
                   {L"LinearDamping", L"AngularDamping", L"MaxAngularVelocity", L"SwingStiffness", L"TwistStiffness",
                    L"SwingDamping", L"TwistDamping", L"LinearVelocityX", L"LinearVelocityY", L"LinearVelocityZ",
                    L"AngularVelocityX", L"AngularVelocityY", L"AngularVelocityZ"}),
               {{72, L"DriveEnabled", T::Boolean}, {73, L"DriveBlendWeight", T::Float}, {74, L"DriveType", T::String}},
               run(75, T::Float,
                   {L"DriveSlerpStiffness", L"DriveSwingStiffness", L"DriveTwistStiffness", L"DriveSlerpDamping",
                    L"DriveSwingDamping", L"DriveTwistDamping"}),
               run(81, T::Matrix, {L"DriveInputMatrix", L"DriveOutputMatrix"}),
               {{83, L"ShowActiveDrive", T::Boolean}}})},
        {PhysicsJointLimitNode::Def, JointLimitNode::Def,
         run(74, T::Float,
             {L"Swing1Stiffness", L"Swing1Damping", L"Swing1Restitution", L"Swing2Stiffness", L"Swing2Damping",
              L"Swing2Restitution", L"LowerTwistStiffness", L"LowerTwistDamping", L"LowerTwistRestitution",
              L"UpperTwistStiffness", L"UpperTwistDamping", L"UpperTwistRestitution", L"SoftSwing1Stiffness",
              L"SoftSwing2Stiffness", L"SoftTwistStiffness"})},
        {PhysicsConstraintNode::Def, TransformNode::Def,
         join({run(51, T::Matrix, {L"TargetInputMatrix", L"TargetOutputMatrix"}),
               {{53, L"ConstraintEnabled", T::Boolean},
                {54, L"ConstraintMode", T::Enumeration},
                {55, L"TargetBlendWeight", T::Float}},
               run(56, T::Boolean, {L"ShowCurrentFrame", L"ShowTargetFrame"}),
               run(58, T::Float, {L"WorkingRotationX", L"WorkingRotationY", L"WorkingRotationZ"}),
               run(61, T::Boolean,
                   {L"TranslationXActive", L"TranslationYActive", L"TranslationZActive", L"RotationXActive",
                    L"RotationYActive", L"RotationZActive"}),
               run(67, T::Float,
                   {L"MaximumRange", L"TranslationStiffness", L"RotationStiffness", L"TranslationDamping",
                    L"RotationDamping", L"ForceLimit", L"TorqueLimit", L"SpeedMultiplier", L"SpeedLimit",
                    L"RelativeSpeedLimit"})})},
        {GroupNode::Def, Node::Def,
         join({{{8, L"Label", T::String},
                {9, L"ParentGroupReference", T::Pointer},
                {10, L"ChildGroupReferenceArray", T::PointerArray},
                {11, L"IsGroupFolder", T::Boolean},
                {12, L"IsGroupSeparator", T::Boolean},
                {13, L"ObjectReferenceArray", T::PointerArray},
                {14, L"SubObjectType", T::Integer},
                {15, L"SubObjectArray", T::IntegerArray}},
               run(16, T::Boolean,
                   {L"IsFocused", L"IsExpanded", L"IsActive", L"IsEditable", L"IsSelectable", L"IsVisible"}),
               {{22, L"Colour", T::Compound}}})},
        {CollisionGroupNode::Def, GroupNode::Def, {}},
        {DisplayGroupNode::Def, GroupNode::Def, {}},
        {SelectionGroupNode::Def, GroupNode::Def, {}},
        {SelectionNode::Def,
         Node::Def,
         {{13, L"Entities", T::PointerArray},
          {14, L"SubEntityType", T::Integer},
          {15, L"SubEntities", T::IntegerArray}}},
        {SceneSettingsNode::Def, Node::Def,
         join({run(8, T::Enumeration, {L"LinearUnits", L"MassUnits", L"AngularUnits"}),
               {{11, L"FrameRate", T::Integer}},
               run(12, T::Float,
                   {L"Time", L"StartTime", L"EndTime", L"PlaybackStartTime", L"PlaybackEndTime", L"SimulationRate"}),
               run(18, T::Integer, {L"SolverAccuracy", L"SolverSubsteps"}),
               run(20, T::Boolean, {L"ContinuousCollisions", L"PlayDuringSimulation"}),
               run(22, T::Float, {L"GravityX", L"GravityY", L"GravityZ"}),
               run(25, T::String, {L"StartScript", L"UpdateScript", L"EndScript"}),
               {{28, L"ScriptingLanguage", T::Enumeration}},
               run(29, T::StringArray, {L"PluginPaths", L"Plugins"}),
               {{31, L"ActiveTool", T::Integer}}})},
        {ViewportEditorSettingsNode::Def,
         Node::Def,
         {{8, L"Camera", T::StringArray},
          {9, L"ColourMode", T::IntegerArray},
          {10, L"DisplayMode", T::EnumerationArray},
          {11, L"HeadsUpMode", T::EnumerationArray},
          {12, L"DisplayFilter", T::AttributeArray}}},
        {SelectToolNode::Def,
         Node::Def,
         {{8, L"Items", T::IntegerArray}, {9, L"SubItems", T::IntegerArray}, {10, L"SelectionMode", T::Enumeration}}},
        {MoveToolNode::Def, Node::Def,
         join({{{8, L"Orientation", T::Enumeration}},
               run(9, T::Float, {L"TranslationX", L"TranslationY", L"TranslationZ"})})},
        {RotateToolNode::Def,
         Node::Def,
         {{8, L"Orientation", T::Enumeration}, {9, L"RotationAxis", T::Vector3}, {10, L"RotationAngle", T::Float}}},
        {ScaleToolNode::Def, Node::Def, run(8, T::Float, {L"ScaleX", L"ScaleY", L"ScaleZ"})},
        {TimingToolNode::Def,
         Node::Def,
         {{8, L"Orientation", T::Enumeration}, {9, L"Slide", T::Float}, {10, L"Scale", T::Float}}},
        {ObjectControllerNode::Def, Node::Def,
         join({{{8, L"DropoffEnabled", T::Boolean}, {9, L"DropoffMode", T::Enumeration}},
               run(10, T::Float, {L"DropoffRange", L"DropoffPinch", L"DropoffBubble"})})},
        {JointControllerNode::Def, ObjectControllerNode::Def, {{13, L"AutoRotateJointLimits", T::Boolean}}},
        {JointLimitControllerNode::Def, ObjectControllerNode::Def, {{13, L"RotateMovingFrameOffset", T::Boolean}}},
        {MeshInstanceControllerNode::Def, ObjectControllerNode::Def, {}},
        {PhysicsBodyControllerNode::Def, ObjectControllerNode::Def, {}},
        {TrajectoryControllerNode::Def,
         ObjectControllerNode::Def,
         {{13, L"RotationMode", T::Enumeration}, {14, L"BentSide", T::Enumeration}}},
    };
    return all;
}

TEST(NodeTables, EveryAttributeHasItsNumberNameAndKind) {
    for (Table const& t : tables()) {
        SCOPED_TRACE(utf8(t.def.getClassID()));
        EXPECT_TRUE(t.def.isOfType(t.base));
        db::Layout const& layout = t.def.layout();
        int own = &t.def == &t.base ? 0 : t.base.layout().topLevelCount, listed = 0;
        for (Row const& r : t.rows) {
            ASSERT_LT(r.number, layout.topLevelCount);
            db::AttributeDef const& def = *layout.rows[std::size_t(r.number)].def;
            EXPECT_EQ(utf8(def.name), utf8(r.name)) << r.number;
            EXPECT_EQ(def.type, r.type) << r.number;
            EXPECT_EQ(def.number, r.number);
        }
        for (int i = own; i < layout.topLevelCount; ++i)
            listed += !layout.rows[std::size_t(i)].def->hasFlag(db::FlagReserved);
        EXPECT_EQ(listed, int(t.rows.size())) << "the type has attributes that this table does not know";
    }
}

TEST(NodeTables, TypesAreFoundByTheirNames) {
    for (Table const& t : tables())
        EXPECT_EQ(db::Registry::getInstance().getNodeDef(L"sg", t.def.getClassID()), &t.def);
}

TEST(NodeTables, GapsAreReservedHiddenAndUnsaved) {
    db::AttributeDef const& gap = *PrimitiveNode::Def.layout().rows[28].def;
    EXPECT_TRUE(gap.hasFlag(db::FlagReserved));
    EXPECT_TRUE(gap.hasFlag(db::FlagHidden));
    EXPECT_FALSE(gap.isSaved());
}

// Pushing marks what the written row names and goes no further inside the node.
TEST(NodeTables, WhatAffectsAnOutputAffectsAllThatIsMadeOfIt) {
    for (db::NodeDef const* def : db::Registry::getInstance().all()) {
        SCOPED_TRACE(utf8(def->getClassID()));
        EXPECT_LT(def->outputs(), Input::lateStale);
        std::uint32_t madeOf[32] = {};
        for (db::RowInfo const& r : def->layout().rows)
            if (r.def->outputBit >= 0) madeOf[r.def->outputBit] |= r.affects;
        for (db::RowInfo const& r : def->layout().rows)
            for (int o = 0; o < 32; ++o)
                EXPECT_FALSE((r.affects >> o & 1) && (madeOf[o] & ~r.affects)) << utf8(r.def->name);
    }
}

TEST(NodeTables, CompositesHaveTheirChildrenInOrder) {
    struct Case {
        db::NodeDef const& def;
        int number;
        std::vector<Row> children;
    };
    std::vector<Row> const xyzw = run(0, T::Float, {L"X", L"Y", L"Z", L"W"});
    std::vector<Case> const cases = {
        {TransformNode::Def, 45, xyzw},
        {MatrixConversionNode::Def, 24, xyzw},
        {RenderableNode::Def, 9, run(0, T::Float, {L"Red", L"Green", L"Blue", L"Alpha"})},
        {AnimationNode::Def, 28, xyzw},
        {TrajectoryNode::Def, 58,
         join({{{0, L"KeyParameter", T::Integer}},
               run(1, T::Vector3, {L"InHandle", L"Position", L"OutHandle"}),
               run(4, T::Enumeration, {L"Interpolation", L"Continuity"})})},
        {TrajectoryNode::Def,
         60,
         {{0, L"AttachPoint", T::Float},
          {1, L"InTangent", T::Vector3},
          {2, L"Orientation", T::Compound},
          {3, L"OutTangent", T::Vector3},
          {4, L"Interpolation", T::Enumeration},
          {5, L"Continuity", T::Enumeration}}},
        {TrajectoryNode::Def, 63,
         join({{{0, L"Centre", T::Vector3}},
               run(1, T::Float, {L"Radius", L"DropoffRange", L"DropoffPinch", L"DropoffBubble"})})},
        {KinematicsConstraintNode::Def,
         8,
         {{0, L"Matrix", T::Matrix}, {1, L"Offset", T::Matrix}, {2, L"Weight", T::Float}}},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(utf8(c.def.getClassID()) + " " + std::to_string(c.number));
        db::AttributeDef const& row = *c.def.layout().rows[std::size_t(c.number)].def;
        bool const isArray = row.type == T::AttributeArray;
        auto const children = isArray ? row.children[0].children : row.children;
        ASSERT_EQ(children.size(), c.children.size());
        for (std::size_t i = 0; i < children.size(); ++i) {
            EXPECT_EQ(utf8(children[i].name), utf8(c.children[i].name));
            EXPECT_EQ(children[i].type, c.children[i].type);
        }
    }
}

TEST(NodeTables, ParametersOfSolversHaveTheirPlaces) {
    auto child = [](db::NodeDef const& def, int number, int i) -> db::AttributeDef const& {
        db::AttributeDef const& row = *def.layout().rows[std::size_t(number)].def;
        return (row.type == T::AttributeArray ? row.children[0].children : row.children)[std::size_t(i)];
    };
    EXPECT_EQ(child(IKHandleNode::Def, 57, 0).type, T::Enumeration);
    EXPECT_EQ(child(IKHandleNode::Def, 57, 4).type, T::Boolean);
    for (auto [def, number] : {std::pair(&JointIKParamsNode::Def, 8), std::pair(&IKSolverNode::Def, 33)}) {
        T const kinds[] = {T::Boolean, T::Matrix,  T::Matrix, T::Enumeration, T::Matrix, T::Matrix, T::Boolean,
                           T::Float,   T::Boolean, T::Float,  T::Boolean,     T::Float,  T::Float};
        for (int i = 0; i < 13; ++i) EXPECT_EQ(child(*def, number, 6 + i).type, kinds[i]) << 6 + i;
    }
    for (auto [def, number] : {std::pair(&JointRetargetParamsNode::Def, 51), std::pair(&RetargetNode::Def, 17)}) {
        EXPECT_EQ(child(*def, number, 0).type, T::String);
        EXPECT_EQ(child(*def, number, 1).type, T::Pointer);
        EXPECT_EQ(child(*def, number, 3).type, T::Matrix);
        EXPECT_EQ(child(*def, number, 4).type, T::Boolean);
        EXPECT_EQ(child(*def, number, 13).type, T::Enumeration);
        EXPECT_EQ(child(*def, number, 14).type, T::Matrix);
        EXPECT_EQ(child(*def, number, 15).type, T::Matrix);
        for (int i : {16, 18, 20}) EXPECT_EQ(child(*def, number, i).type, T::Boolean) << i;
        for (int i : {17, 19, 21, 22}) EXPECT_EQ(child(*def, number, i).type, T::Float) << i;
    }
}

TEST(NodeTables, WordsStandInTheOrderOfTheirValues) {
    struct Case {
        db::NodeDef const& def;
        int number;
        std::vector<std::wstring> words;
    };
    std::vector<Case> const cases = {
        {TransformNode::Def,
         20,
         {L"TranslationRotationEulerSource", L"TranslationRotationTwistSwingSource",
          L"TranslationRotationQuaternionSource", L"LocalMatrixSource"}},
        {TransformNode::Def, 46, {L"Quaternion", L"Euler"}},
        {TransformNode::Def, 47, {L"XYZ", L"XZY", L"YXZ", L"YZX", L"ZXY", L"ZYX"}},
        {JointNode::Def, 53, {L"Wireframe", L"Solid", L"Hidden"}},
        {JointNode::Def, 54, {L"Solid", L"Wireframe", L"WireframeAxes"}},
        {JointNode::Def, 55, {L"ShowSelected", L"Show", L"Hide"}},
        {JointLimitNode::Def, 58, {L"BallSocket", L"Hinge"}},
        {PrimitiveNode::Def, 18, {L"Box", L"Capsule", L"Cylinder", L"Sphere"}},
        {AnimationNode::Def, 8, {L"FloatOutputMode", L"RotationOutputMode"}},
        {AnimationNode::Def, 19, {L"constant", L"linear", L"cyclic", L"reverseCyclic", L"offsetCyclic"}},
        {AnimationNode::Def, 33, {L"constant", L"linear", L"spline", L"external"}},
        {AnimationNode::Def, 34, {L"broken", L"linear", L"linearCoupled"}},
        {TrajectoryNode::Def, 75, {L"retainFeel", L"retainConstraints", L"notUsed"}},
        {TrajectoryControllerNode::Def, 13, {L"Swirl", L"Bend"}},
        {TrajectoryControllerNode::Def, 14, {L"StartTip", L"EndTip"}},
        {MoveToolNode::Def, 8, {L"World", L"Object", L"User"}},
        {SceneSettingsNode::Def, 8, {L"Millimetres", L"Centimetres", L"Metres", L"Inches", L"Feet", L"Yards"}},
    };
    for (Case const& c : cases) {
        auto const words = c.def.layout().rows[std::size_t(c.number)].def->strings;
        EXPECT_EQ(std::vector<std::wstring>(words.begin(), words.end()), c.words)
            << utf8(c.def.getClassID()) << " " << c.number;
    }
}

TEST(NodeTables, NewNodesHaveTheirDefaults) {
    Scene scene;
    auto real = [&](wchar_t const* type, int number) {
        return scene.makeNode(type, L"n")->getAttribute(std::size_t(number))->asFloat()->getValue();
    };
    EXPECT_EQ(real(L"Transform", 27), 1);
    EXPECT_EQ(real(L"Joint", 51), 0.008f);
    EXPECT_EQ(real(L"Joint", 52), 0.015f);
    EXPECT_EQ(real(L"SceneSettings", 14), 3);
    EXPECT_EQ(real(L"SceneSettings", 23), -9.81f);
    EXPECT_EQ(real(L"PhysicsJointLimit", 74), 1e6f);
    EXPECT_EQ(real(L"PhysicsConstraint", 69), 5729.5776f);
    EXPECT_EQ(scene.makeNode(L"SceneSettings", L"n")->getAttribute(11)->asInt()->getValue(), 24);
    EXPECT_EQ(scene.makeNode(L"SceneSettings", L"n")->getAttribute(31)->asInt()->getValue(), 1);
    db::CompositeAttribute const& q = *scene.makeNode(L"Transform", L"n")->getAttribute(45)->asComposite();
    EXPECT_EQ(q.getAttribute(3)->asFloat()->getValue(), 1);
}

}  // namespace
}  // namespace sg
