// clang-format off
// The tables of all node types: number, name, kind, default, unit, what depends on it. The numbers are a contract with
// everything that reaches attributes by number; gaps are filled by reserved attributes. One file, in the order of
// derivation, because a type is made from its base.
// Not formatted: each row of a table is a line.
#include "qel/sg/enumerations.h"
#include "qel/sg/scene.h"

namespace sg {
namespace {

using namespace db::row;
using Rows = db::AttributeDef const[];
using T = db::AttributeType;
using db::FlagAnimatable, db::FlagHidden, db::FlagInternal, db::FlagReadOnly, db::FlagUnsaved;

template<class N> db::Node* make(void* at, db::NodeDef const& def) { return new (at) N(def); }

// ---- what several tables share ----

constexpr wchar_t const* dataSources[] = {L"TranslationRotationEulerSource", L"TranslationRotationTwistSwingSource",
                                          L"TranslationRotationQuaternionSource", L"LocalMatrixSource"};
constexpr wchar_t const* outputModes[] = {L"FloatOutputMode", L"RotationOutputMode"};
constexpr wchar_t const* interpolations[] = {L"constant", L"linear", L"spline", L"external"};
constexpr wchar_t const* continuities[] = {L"broken", L"linear", L"linearCoupled"};
constexpr wchar_t const* extrapolations[] = {L"constant", L"linear", L"cyclic", L"reverseCyclic", L"offsetCyclic"};
constexpr wchar_t const* linearUnits[] = {L"Millimetres", L"Centimetres", L"Metres", L"Inches", L"Feet", L"Yards"};
constexpr wchar_t const* massUnits[] = {L"Grams", L"Kilograms", L"Tonnes", L"Pounds", L"Stones"};
constexpr wchar_t const* angularUnits[] = {L"Degrees", L"Radians"};
constexpr wchar_t const* scriptingLanguages[] = {L"Lua", L"Python"};
constexpr wchar_t const* orientations[] = {L"World", L"Object", L"User"};
constexpr wchar_t const* selectionModes[] = {L"Replace", L"Add", L"Toggle", L"AddToDynamicSelection"};
constexpr wchar_t const* smartEditings[] = {L"retainFeel", L"retainConstraints", L"notUsed"};
constexpr wchar_t const* cameraTypes[] = {L"Perspective", L"Top", L"Front", L"Side"};
constexpr wchar_t const* lightTypes[] = {L"Directional", L"Point", L"Spot"};
constexpr wchar_t const* dropoffModes[] = {L"ArcLength", L"Parameter", L"Time"};
constexpr wchar_t const* rotationToolModes[] = {L"Swirl", L"Bend"};
constexpr wchar_t const* bentSides[] = {L"StartTip", L"EndTip"};
constexpr wchar_t const* retargetModes[] = {L"Fixed", L"Auto", L"Free"};
constexpr wchar_t const* ikHandleModes[] = {L"PositionAndOrientation", L"Position", L"Secondary"};

constexpr Rows xyzw = {real(0, L"X"), real(1, L"Y"), real(2, L"Z"), real(3, L"W", 1)};
constexpr Rows white = {real(0, L"Red", 0.75), real(1, L"Green", 0.75), real(2, L"Blue", 0.75), real(3, L"Alpha", 1)};
constexpr Rows rotationKey = {compound(0, L"Rotation", xyzw)};
constexpr Rows matrixElement = {matrix(0, L"Matrix")};
constexpr Rows matrixArrayElement = {array(0, L"Pose", T::MatrixArray)};
constexpr Rows stringArrayElement = {array(0, L"Types", T::StringArray)};

constexpr db::AttributeDef length(int n, wchar_t const* name, double initial = 0) { return real(n, name, initial).unit(Linear).with(FlagAnimatable); }
constexpr db::AttributeDef angle(int n, wchar_t const* name, double initial = 0) { return real(n, name, initial).unit(Angular).with(FlagAnimatable); }
constexpr db::AttributeDef channel(int n, wchar_t const* name, double initial = 0) { return real(n, name, initial).with(FlagAnimatable); }
// An output that a connection may take over: while something flows in, the node leaves it alone. It affects itself.
constexpr db::AttributeDef fed(db::AttributeDef d) { return d.flags &= ~unsigned(db::FlagReadOnly), d; }
constexpr db::AttributeDef floats(int n, wchar_t const* name) { return array(n, name, T::FloatArray); }

// ---- the root and the hierarchy ----

constexpr Rows nodeRows = {
    text(0, L"Name").doc(L"The object's name, unique among its siblings."),
    boolean(1, L"AllowCompute", true).with(FlagInternal).doc(L"False while a rig is rebuilt: the node does not compute."),
    // 2 to 7 are kept free for what all nodes may come to share: most types begin at 8
};
static_assert(isSound(nodeRows, 0));

constexpr Rows renderableRows = {
    boolean(8, L"Visible", true).with(FlagAnimatable).doc(L"Drawn at all."),
    compound(9, L"Colour", white).doc(L"Red, green, blue, alpha."),
    boolean(10, L"ShowHierarchy", true).doc(L"Draws the line to the parent."),
};
static_assert(isSound(renderableRows, 8));

constexpr std::uint32_t local = TransformBaseNode::localBit, rest = TransformBaseNode::preparedBit, above = TransformBaseNode::aboveWorldBit;
constexpr std::uint32_t world = TransformBaseNode::worldBit | above;
constexpr Rows transformBaseRows = {
    boolean(16, L"Prepared").with(FlagInternal | FlagHidden | FlagUnsaved).output(2).affects(local | world),
    matrix(17, L"ParentWorldMatrix").with(FlagReadOnly | FlagUnsaved).affects(world).hot().doc(L"World matrix of the parent."),
    matrix(18, L"LocalMatrix").output(0).affects(world).hot().doc(L"The transform relative to the parent."),
    matrix(19, L"WorldMatrix").output(1).affects(above).hot().doc(L"Local matrix times the parent's world matrix."),
};
static_assert(isSound(transformBaseRows, 11));

constexpr std::uint32_t moved = local | world, changed = rest | moved;
constexpr Rows quaternionRows = {channel(0, L"X"), channel(1, L"Y"), channel(2, L"Z"), channel(3, L"W", 1)};
constexpr Rows transformRows = {
    enumeration(20, L"TransformDataSource", dataSources).affects(changed).doc(L"Where the rotation, or the whole matrix, comes from."),
    length(21, L"TranslationX").affects(moved).hot(), length(22, L"TranslationY").affects(moved).hot(), length(23, L"TranslationZ").affects(moved).hot(),
    angle(24, L"RotationX").affects(moved).hot(), angle(25, L"RotationY").affects(moved).hot(), angle(26, L"RotationZ").affects(moved).hot(),
    channel(27, L"ScaleX", 1).affects(changed), channel(28, L"ScaleY", 1).affects(changed), channel(29, L"ScaleZ", 1).affects(changed),
    length(30, L"ScalePivotX").affects(changed), length(31, L"ScalePivotY").affects(changed), length(32, L"ScalePivotZ").affects(changed),
    length(33, L"ScalePivotTranslationX").affects(changed), length(34, L"ScalePivotTranslationY").affects(changed),
    length(35, L"ScalePivotTranslationZ").affects(changed),
    length(36, L"PreTranslationX").affects(changed), length(37, L"PreTranslationY").affects(changed), length(38, L"PreTranslationZ").affects(changed),
    angle(39, L"PreRotationX").affects(changed), angle(40, L"PreRotationY").affects(changed), angle(41, L"PreRotationZ").affects(changed),
    angle(42, L"PostRotationX").affects(changed), angle(43, L"PostRotationY").affects(changed), angle(44, L"PostRotationZ").affects(changed),
    compound(45, L"RotationQuaternion", quaternionRows).affects(changed),
    enumeration(46, L"RotationInterpolation", rotationInterpolations).doc(L"How rotation is keyed: as a whole, or each angle."),
    enumeration(47, L"RotationEulerOrder", eulerOrders).affects(changed | TransformBaseNode::ofOrderBit),
    matrix(48, L"LocalMatrixInput").affects(changed).doc(L"The local matrix when the data source is the matrix."),
    boolean(49, L"ShowTrajectory"), boolean(50, L"ShowAxis"),
};
static_assert(isSound(transformRows, 20));

// ---- skeleton ----

constexpr Rows jointRows = {
    length(51, L"BoneRadius", 0.008), length(52, L"LocatorRadius", 0.015),
    enumeration(53, L"BoneStyle", boneStyles), enumeration(54, L"LocatorStyle", locatorStyles, 2), enumeration(55, L"AxesStyle", axesStyles),
    text(56, L"Tags").doc(L"Free words; importers keep the name that the source file had here."),
    pointer(57, L"JointLimitReference"),
};
static_assert(isSound(jointRows, 51));

constexpr Rows jointLimitRows = {
    pointer(51, L"JointReference"), matrix(52, L"JointWorldMatrix"), matrix(53, L"JointLocalMatrix"),
    angle(54, L"MovingOffsetX").affects(JointLimitNode::movingOffsetBit), angle(55, L"MovingOffsetY").affects(JointLimitNode::movingOffsetBit),
    angle(56, L"MovingOffsetZ").affects(JointLimitNode::movingOffsetBit),
    matrix(57, L"MovingOffsetMatrix").output(10).doc(L"Those angles by the rotation's Euler order: the moving frame in the joint's space."),
    enumeration(58, L"LimitType", limitTypes).doc(L"A ball and socket has both swings and the twist; a hinge the twist alone."),
    boolean(59, L"Swing1Active", true), angle(60, L"Swing1Angle", 0.7853982).doc(L"The largest swing about Y, to either side; with the other a half axis of an ellipse."),
    boolean(61, L"Swing2Active", true), angle(62, L"Swing2Angle", 0.7853982).doc(L"The largest swing about Z."),
    boolean(63, L"TwistActive", true), angle(64, L"TwistAngle", 1.5707964).doc(L"The largest turn about X, to either side of the offset."),
    angle(65, L"TwistOffset").doc(L"The middle of the twist's range."),
    boolean(66, L"SoftSwingActive"), channel(67, L"SoftSwing1Ratio", 0.7).doc(L"From this share of the angle on the limit resists, and is never reached."),
    channel(68, L"SoftSwing2Ratio", 0.7), boolean(69, L"SoftTwistActive"), channel(70, L"SoftTwistRatio", 0.7),
    channel(71, L"DisplayScale", 1), boolean(72, L"ShowFixedAxes"), boolean(73, L"ShowMovingAxes"),
};
static_assert(isSound(jointLimitRows, 51));

constexpr Rows characterRows = {boolean(51, L"IsEditable")};

// ---- solvers ----

constexpr Rows solverParameterRows = {
    enumeration(0, L"Mode", ikHandleModes).doc(L"What the handle wants of its effector. A secondary one pulls only while it is pinned."),
    channel(1, L"PositionWeight", 1).range(0, 1e30).doc(L"Against the other handles, where not all can have their way."),
    channel(2, L"OrientationWeight", 1).range(0, 1e30),
    channel(3, L"SecondaryWeight", 0).range(0, 1e30).doc(L"How much of its weights a secondary handle pulls with that is not pinned; it gives way to all others."),
    boolean(4, L"Free", true).doc(L"Not pinned: a secondary handle follows its effector."),
};
constexpr Rows solverParameterElement = {compound(0, L"Parameters", solverParameterRows)};
constexpr Rows jointIKParameterRows = {
    boolean(0, L"IsJoint", true).doc(L"False for a transform between joints, which the solver leaves as it is."),
    channel(1, L"Stiffness").range(0, 1e30).doc(L"The joint turns 1 / (1 + stiffness) as readily as others."),
    channel(2, L"RotationWeightX", 1).range(0, 1e30).doc(L"How readily it turns about its own X axis; 0: not at all."),
    channel(3, L"RotationWeightY", 1).range(0, 1e30), channel(4, L"RotationWeightZ", 1).range(0, 1e30),
    boolean(5, L"LimitActive", true).doc(L"The limit below counts, as far as its parts are active."),
    boolean(6, L"PoleVectorActive"), matrix(7, L"ControlPole"), matrix(8, L"ReferencePole"),
    enumeration(9, L"LimitType", limitTypes), matrix(10, L"LimitMatrix"), matrix(11, L"MovingOffsetMatrix"),
    boolean(12, L"Swing1Active"), real(13, L"Swing1Angle").unit(Angular), boolean(14, L"Swing2Active"), real(15, L"Swing2Angle").unit(Angular),
    boolean(16, L"TwistActive"), real(17, L"TwistAngle").unit(Angular), real(18, L"TwistOffset").unit(Angular),
};
constexpr Rows jointIKParameterElement = {compound(0, L"Parameters", jointIKParameterRows)};
constexpr std::uint32_t solved = IKSolverNode::solvedBit;
constexpr Rows solvedElement = {matrix(0, L"Matrix").output(0)};
constexpr Rows ikSolverRows = {
    boolean(1, L"AllowCompute", true).with(FlagInternal).affects(solved).doc(L"False while the rig is rebuilt: the node does not compute."),
    array(8, L"IKHandleReferences", T::PointerArray), array(9, L"EndEffectorTransforms", T::PointerArray), array(10, L"RootJoints", T::PointerArray),
    array(11, L"JointHierarchy", T::IntegerArray).affects(solved).doc(L"The number of each joint's parent; -1 for the topmost root."),
    array(12, L"EndEffectorIndexList", T::IntegerArray).affects(solved), array(13, L"RootIndexList", T::IntegerArray).affects(solved),
    attributeArray(14, L"InputTargets", matrixElement).affects(solved), attributeArray(15, L"BindPoses", matrixArrayElement).affects(solved),
    attributeArray(16, L"InputGeometry", matrixElement).affects(solved), attributeArray(17, L"OutputGeometry", solvedElement).affects(solved),
    boolean(18, L"IKHandleEnabled", true).affects(solved), boolean(19, L"IKSolverEnabled", true).affects(solved), boolean(20, L"DrawDebugLines"),
    boolean(21, L"RootLocked").affects(solved).doc(L"The topmost root does not move, only turn."),
    boolean(22, L"LockRootX").affects(solved), boolean(23, L"LockRootY").affects(solved), boolean(24, L"LockRootZ").affects(solved),
    boolean(25, L"ContinuousMode").affects(solved).doc(L"Each solve begins from the last one's result instead of the input geometry."),
    integer(26, L"MaxIterations", 200).range(0, 1e6).affects(solved),
    real(27, L"MoreBias").affects(solved).doc(L"Above 0, joints near the root turn more readily than those near the effectors."),
    real(28, L"ReverseBias").affects(solved).doc(L"Above 0, joints near the effectors turn more readily than those near the root."),
    real(29, L"PositionAccuracy", 0.0001).unit(Linear).range(0, 1e30).affects(solved).doc(L"A target this close is met."),
    real(30, L"OrientationAccuracy", 0.001).unit(Angular).range(0, 1e30).affects(solved),
    boolean(31, L"DisableAllLimits").affects(solved),
    attributeArray(32, L"IKHandleParams", solverParameterElement).affects(solved), attributeArray(33, L"JointIKParams", jointIKParameterElement).affects(solved),
    array(34, L"AssociatedObjects", T::PointerArray),
};
static_assert(isSound(ikSolverRows, 1));
constexpr Rows ikHandleRows = {
    pointer(51, L"IKSolverReference"), pointer(52, L"IKRootReference"), pointer(53, L"IKEffectorReference"), matrix(54, L"IKRootWorldMatrix"),
    matrix(55, L"IKEndEffectorWorldMatrix"), boolean(56, L"IKHandleEnabled", true), compound(57, L"SolverParameters", solverParameterRows),
    boolean(58, L"IsPrimary", true),
};
constexpr Rows jointIKParamsRows = {compound(8, L"Parameters", jointIKParameterRows)};
constexpr Rows poleVectorRows = {
    pointer(51, L"ControlJoint").doc(L"The joint whose chain bends towards the pole."), pointer(52, L"EndEffector").doc(L"The chain's end, of a control pole."),
    boolean(53, L"Enabled", true).affects(above), channel(54, L"Weight", 1).affects(above).doc(L"From 0, no pull, to 1."),
    matrix(55, L"PoleVector").output(3).with(FlagUnsaved).doc(L"Row 3 is the pole's place; the other rows its axes times its weight, 0 if it is not enabled."),
    matrix(56, L"SpaceWorldMatrix").affects(above).doc(L"World matrix of the space in which the pole vector is given; the identity: the world."),
};
static_assert(isSound(poleVectorRows, 51));
constexpr Rows retargetParameterRows = {
    text(0, L"JointName").doc(L"What joints are matched by."),
    pointer(1, L"Referent").doc(L"The transform in whose frame the motion is copied: the joint itself, or none: its own motion; one that is above all joints: the world's."),
    matrix(2, L"ReferentMatrix").doc(L"The axes in which the motion is measured, against the world's; the rotation counts."),
    matrix(3, L"Origin").doc(L"The local matrix in the pose of reference."),
    boolean(4, L"HasParent").doc(L"False for the first joint of a list."),
    enumeration(5, L"Mode", retargetModes, 1).doc(L"How far origins correspond. Fixed: as they stand. Auto: arms and legs are turned to point where the source's do. Free: all bones are."),
    real(6, L"TranslationWeight", 1).range(0, 1).doc(L"Share of the travel, and of what the source adds to its translation."),
    real(7, L"RotationWeight", 1).range(0, 1).doc(L"0: as the parent carries it. 1: as the source turns."),
    real(8, L"Scale", 1).doc(L"Of the translation, besides the ratio of the two skeletons."),
    boolean(9, L"Active", true).doc(L"If not, the joint keeps its origin."),
    real(10, L"OffsetX").unit(Angular).doc(L"Turned by this at last, about its own axes, X first."), real(11, L"OffsetY").unit(Angular), real(12, L"OffsetZ").unit(Angular),
    enumeration(13, L"LimitType", limitTypes), matrix(14, L"LimitMatrix"), matrix(15, L"MovingOffsetMatrix"),
    boolean(16, L"Swing1Active"), real(17, L"Swing1Angle").unit(Angular), boolean(18, L"Swing2Active"), real(19, L"Swing2Angle").unit(Angular),
    boolean(20, L"TwistActive"), real(21, L"TwistAngle").unit(Angular), real(22, L"TwistOffset").unit(Angular),
};
constexpr Rows retargetParameterElement = {compound(0, L"Parameters", retargetParameterRows)};
using Q = RetargetNode;
constexpr Rows retargetOutputElement = {matrix(0, L"Matrix").output(0)};
constexpr std::uint32_t retargeted = Q::geometryBit, rerigged = Q::preparedBit | retargeted;
constexpr Rows retargetRows = {
    boolean(1, L"AllowCompute", true).with(FlagInternal).affects(rerigged).doc(L"False while a rig is rebuilt: the node does not compute."),
    array(8, L"SourceJoints", T::PointerArray).affects(rerigged), array(9, L"TargetJoints", T::PointerArray).affects(rerigged),
    attributeArray(10, L"InputSourceGeometry", matrixElement).affects(retargeted).doc(L"Local matrices of the source's joints."),
    attributeArray(11, L"OutputTargetGeometry", retargetOutputElement).affects(retargeted).doc(L"Local matrices that the target's joints are to have."),
    array(12, L"SourceHierarchy", T::IntegerArray).affects(rerigged), array(13, L"TargetHierarchy", T::IntegerArray).affects(rerigged),
    boolean(14, L"Enabled", true).affects(retargeted).doc(L"If not, the target stands at its origins."), boolean(15, L"DrawDebugLines"),
    attributeArray(16, L"SourceJointParams", retargetParameterElement).affects(rerigged),
    attributeArray(17, L"TargetJointParams", retargetParameterElement).affects(rerigged),
    boolean(18, L"DisableAllLimits").affects(retargeted), array(19, L"AssociatedObjects", T::PointerArray),
    boolean(20, L"Prepared").with(FlagInternal | FlagHidden | FlagUnsaved).output(1).affects(retargeted),
    boolean(21, L"Solved").with(FlagInternal | FlagHidden | FlagUnsaved).output(0).doc(L"Stands for all elements of the output."),
};
static_assert(isSound(retargetRows, 1));
constexpr Rows jointRetargetParamsRows = {compound(51, L"Parameters", retargetParameterRows)};

// ---- constraints ----

constexpr Rows kinematicsTargetRows = {
    matrix(0, L"Matrix").doc(L"The target's world matrix."), matrix(1, L"Offset").doc(L"Where the target wants it, in the target's space."),
    real(2, L"Weight", 1).doc(L"Negative counts as 0."),
};
constexpr Rows kinematicsTargetElement = {compound(0, L"Target", kinematicsTargetRows)};
constexpr std::uint32_t blended = KinematicsConstraintNode::blendBit, aimed = AimConstraintNode::aimBit;
constexpr Rows kinematicsConstraintRows = {
    attributeArray(8, L"InputMatrices", kinematicsTargetElement).affects(blended), matrix(9, L"ParentWorldIn").affects(blended),
    real(10, L"LocalTranslationOutX").unit(Linear).output(0), real(11, L"LocalTranslationOutY").unit(Linear).output(0),
    real(12, L"LocalTranslationOutZ").unit(Linear).output(0),
    real(13, L"LocalRotationOutX").unit(Angular).output(0).doc(L"Euler angles of order XYZ."), real(14, L"LocalRotationOutY").unit(Angular).output(0),
    real(15, L"LocalRotationOutZ").unit(Angular).output(0),
    matrix(16, L"LocalMatrix").output(0).with(FlagUnsaved).doc(L"Translation and rotation, without scale."),
    boolean(17, L"NormalizeWeights", true).affects(blended).doc(L"Only the weights' ratios count; if not, what they leave of 1 is the parent's."),
};
static_assert(isSound(kinematicsConstraintRows, 8));
constexpr Rows aimConstraintRows = {
    matrix(8, L"WorldIn").affects(aimed).doc(L"World matrix of the target that the X axis points at."),
    matrix(9, L"UpVectorIn").affects(aimed).doc(L"World matrix of the object that is above: the Y axis leans to it."), matrix(10, L"ParentWorldIn").affects(aimed),
    real(11, L"LocalEulerOutX").unit(Angular).output(0).doc(L"Euler angles of order XYZ."), real(12, L"LocalEulerOutY").unit(Angular).output(0),
    real(13, L"LocalEulerOutZ").unit(Angular).output(0),
    length(14, L"LocalTranslationInX").affects(aimed).doc(L"Where what aims stands in its parent."), length(15, L"LocalTranslationInY").affects(aimed),
    length(16, L"LocalTranslationInZ").affects(aimed),
};
static_assert(isSound(aimConstraintRows, 8));
using C = MatrixConversionNode;
constexpr std::uint32_t split = C::translationBit | C::rotationBit;
constexpr Rows splitQuaternion = {real(0, L"X").output(1), real(1, L"Y").output(1), real(2, L"Z").output(1), real(3, L"W", 1).output(1)};
constexpr Rows matrixConversionRows = {
    matrix(8, L"InputMatrix").affects(split).doc(L"The local matrix at which a transform is to stand."),
    length(9, L"PreTranslationX").affects(C::translationBit), length(10, L"PreTranslationY").affects(C::translationBit),
    length(11, L"PreTranslationZ").affects(C::translationBit),
    angle(12, L"PreRotationX").affects(C::rotationBit), angle(13, L"PreRotationY").affects(C::rotationBit), angle(14, L"PreRotationZ").affects(C::rotationBit),
    angle(15, L"PostRotationX").affects(C::rotationBit), angle(16, L"PostRotationY").affects(C::rotationBit), angle(17, L"PostRotationZ").affects(C::rotationBit),
    real(18, L"TranslationX").unit(Linear).output(0), real(19, L"TranslationY").unit(Linear).output(0), real(20, L"TranslationZ").unit(Linear).output(0),
    real(21, L"RotationX").unit(Angular).output(1), real(22, L"RotationY").unit(Angular).output(1), real(23, L"RotationZ").unit(Angular).output(1),
    compound(24, L"RotationQuaternion", splitQuaternion).output(1),
};
static_assert(isSound(matrixConversionRows, 8));
constexpr Rows mirrorConstraintRows = {
    matrix(8, L"ParentWorldMatrix"), angle(9, L"PreRotationX"), angle(10, L"PreRotationY"), angle(11, L"PreRotationZ"),
    angle(12, L"PostRotationX"), angle(13, L"PostRotationY"), angle(14, L"PostRotationZ"),
    length(15, L"PreTranslationX"), length(16, L"PreTranslationY"), length(17, L"PreTranslationZ"),
    matrix(18, L"SourceWorldMatrix"), matrix(19, L"InverseWorldMatrix"), matrix(20, L"DrivingWorldMatrix"),
    angle(21, L"RotationX"), angle(22, L"RotationY"), angle(23, L"RotationZ"), integer(24, L"MirrorAxis"),
};
constexpr Rows pinRows = {
    attributeArray(8, L"InputMatrices", kinematicsTargetElement).affects(PinNode::placeBit), matrix(9, L"ParentWorldIn").affects(PinNode::placeBit),
    pointer(10, L"TranslationXReference"), pointer(11, L"TranslationYReference"), pointer(12, L"TranslationZReference"),
    pointer(13, L"RotationXReference"), pointer(14, L"RotationYReference"), pointer(15, L"RotationZReference"),
    pointer(16, L"LocalMatrixReference"), pointer(17, L"WorldMatrixReference"),
    boolean(19, L"Pinned").doc(L"The pinned object stays where it is."),
    matrix(20, L"LocalMatrix").output(0).with(FlagUnsaved).doc(L"Where the target is in the pinned object's parent, without scale."),
};
static_assert(isSound(pinRows, 8));
constexpr Rows notRows = {boolean(6, L"Output", true).output(0), boolean(7, L"Input").affects(NotNode::outputBit)};
constexpr Rows copyMatrixRows = {matrix(8, L"Input"), pointer(9, L"OutputReference").doc(L"The matrix that it is copied to, when asked.")};
constexpr Rows floatProductRows = {channel(8, L"Input"), channel(9, L"Factor", 1), channel(10, L"Output")};

// ---- animation ----

using A = AnimationNode;
constexpr std::uint32_t value = A::valueBit, rotated = A::rotationBit, batch = A::batchBit, results = value | rotated | batch;
constexpr std::uint32_t keyed = A::keysBit | A::boundsBit | results;
constexpr Rows animationRows = {
    enumeration(8, L"OutputMode", outputModes).affects(keyed).doc(L"Fixed once the curve has keys."),
    real(9, L"InputValue").affects(value | rotated).hot().doc(L"The current input, normally the scene's time."),
    floats(10, L"InputValuesArray").with(FlagUnsaved).affects(batch),
    real(11, L"OutputValue").output(1).hot(),
    floats(12, L"OutputValuesArray").output(4),
    quaternion(13, L"OutputValueQuat").output(2),
    real(14, L"OutputValueEulerX").unit(Angular).output(2), real(15, L"OutputValueEulerY").unit(Angular).output(2),
    real(16, L"OutputValueEulerZ").unit(Angular).output(2),
    integer(17, L"InputUnits"), integer(18, L"OutputUnits"),
    enumeration(19, L"PreExtrapolation", extrapolations).affects(keyed), enumeration(20, L"PostExtrapolation", extrapolations).affects(keyed),
    boolean(21, L"IsCurveSampled").doc(L"The keys are dense samples, not set by hand."),
    real(22, L"KeyframeMinX").output(3), real(23, L"KeyframeMaxX").output(3), real(24, L"KeyframeMinY").output(3), real(25, L"KeyframeMaxY").output(3),
    floats(26, L"KeyframeInputValues").affects(keyed).doc(L"One element a key, in the order in which keys were added."),
    floats(27, L"KeyframeOutputValues").affects(keyed),
    attributeArray(28, L"KeyframeOutputValuesQuat", rotationKey).affects(keyed),
    floats(29, L"KeyframeInTangentsX").affects(keyed), floats(30, L"KeyframeInTangentsY").affects(keyed),
    floats(31, L"KeyframeOutTangentsX").affects(keyed), floats(32, L"KeyframeOutTangentsY").affects(keyed),
    enumerationArray(33, L"KeyframeInterpolations", interpolations, 1).affects(keyed),
    enumerationArray(34, L"KeyframeContinuities", continuities, 1).affects(keyed),
    real(35, L"ExternalValue").affects(results).hot().doc(L"The value of segments whose interpolation is external."),
    boolean(36, L"KeysPrepared").with(FlagInternal | FlagHidden | FlagUnsaved).output(0).affects(keyed & ~A::keysBit),
};
static_assert(isSound(animationRows, 8));

constexpr Rows layerRows = {
    text(0, L"Label"), channel(1, L"Weight", 1), compound(2, L"Colour", white), boolean(3, L"Visible", true), boolean(4, L"Override"),
};
constexpr Rows layerElement = {compound(0, L"Layer", layerRows)};
constexpr Rows animationLayersRows = {attributeArray(8, L"Layers", layerElement)};

constexpr Rows translationKeyRows = {
    integer(0, L"KeyParameter"), vector(1, L"InHandle"), vector(2, L"Position"), vector(3, L"OutHandle"),
    enumeration(4, L"Interpolation", interpolations, 1), enumeration(5, L"Continuity", continuities, 1),
};
constexpr Rows rotationKeyRows = {
    real(0, L"AttachPoint"), vector(1, L"InTangent"), compound(2, L"Orientation", xyzw), vector(3, L"OutTangent"),
    enumeration(4, L"Interpolation", interpolations, 1), enumeration(5, L"Continuity", continuities, 1),
};
constexpr Rows safeGuardRows = {
    vector(0, L"Centre"), real(1, L"Radius").unit(Linear), real(2, L"DropoffRange"), real(3, L"DropoffPinch"), real(4, L"DropoffBubble"),
};
constexpr Rows translationKeyElement = {compound(0, L"Key", translationKeyRows)};
constexpr Rows trajectoryRotationElement = {compound(0, L"Key", rotationKeyRows)};
constexpr Rows safeGuardElement = {compound(0, L"SafeGuard", safeGuardRows)};
using P = TrajectoryNode;
constexpr std::uint32_t placed = P::localCurveBit | P::worldCurveBit, onPath = P::positionsBit | placed, shaped = P::lengthBit | onPath;
constexpr std::uint32_t handled = P::arcLengthsBit | P::positionsBit, timed = P::timesBit | handled;
constexpr Rows trajectoryRows = {
    // It affects the timing handles too: along its connection comes word of changes of the timing curve.
    real(51, L"InputValue").affects(handled | placed).doc(L"Where on the path, as a fraction of its length; fed by the timing curve."),
    integer(52, L"InputUnits"), integer(53, L"OutputUnits"),
    enumeration(54, L"PreInfinity", extrapolations).affects(shaped), enumeration(55, L"PostInfinity", extrapolations).affects(shaped),
    boolean(56, L"IsTranslationCurveSampled").doc(L"The keys are dense samples, not set by hand."),
    real(57, L"InterpolationTangentsCoeff", 0.3333333).affects(shaped).doc(L"Length of automatic handles; a third gives even speed."),
    attributeArray(58, L"TranslationKeyframesArray", translationKeyElement).affects(shaped),
    boolean(59, L"IsRotationCurveSampled"), attributeArray(60, L"RotationKeyframesArray", trajectoryRotationElement).affects(P::rotationsBit | placed),
    real(61, L"MaxArcLength").unit(Linear).output(4).affects(onPath).doc(L"Length of the path, before the node's own transform."),
    boolean(62, L"UseSafeGuards"), attributeArray(63, L"SafeGuardsArray", safeGuardElement),
    real(64, L"TimingCurveFirstKeyTime").unit(Time).affects(timed), real(65, L"TimingCurveLastKeyTime").unit(Time).affects(timed),
    integer(66, L"TimingHandlesNum", 10).affects(timed),
    boolean(67, L"TimingEnforceMonotonic"), boolean(68, L"TimingPreserveTips"),
    real(69, L"TimingTipsDropoffRange", 1), real(70, L"TimingTipsDropoffPinch"), real(71, L"TimingTipsDropoffBubble"),
    floats(72, L"TimingHandlesTimesArray").output(6).affects(handled).with(FlagUnsaved).doc(L"Spread evenly over the timing curve's range."),
    fed(floats(73, L"TimingHandlesArcLengthsArray").output(7).affects(handled).with(FlagUnsaved)).doc(L"Fractions, from the timing curve."),
    array(74, L"TimingHandlesPositionsArray", T::Vector3Array).output(8).with(FlagUnsaved), enumeration(75, L"SmartEditing", smartEditings),
    boolean(76, L"PaintOnCurve"), integer(77, L"PaintThicknessVerticesNum", 8), length(78, L"PaintCurveRadius", 0.01), text(79, L"PaintAnimationName"),
    matrix(80, L"LocalCurveMatrix").output(9).affects(above).with(FlagUnsaved).doc(L"Place and rotation at the input value, in the node's own space."),
    matrix(81, L"WorldCurveMatrix").output(3).with(FlagUnsaved).doc(L"Local curve matrix times world matrix."),
    boolean(82, L"ShowCurrentFrame"), boolean(83, L"ShowTranslationHandles", true), boolean(84, L"ShowRotationCurves"),
    boolean(85, L"ShowRotationKeys"), boolean(86, L"ShowRotationHandles"), boolean(87, L"ShowTiming"), boolean(88, L"ShowSafeGuards", true),
    boolean(89, L"RotationsPrepared").with(FlagInternal | FlagHidden | FlagUnsaved).output(5).affects(placed),
};
static_assert(isSound(trajectoryRows, 51));

// ---- geometry ----

constexpr Rows primitiveRows = {
    enumeration(18, L"Shape", shapes), length(19, L"Width", 0.05), length(20, L"Height", 0.05), length(21, L"Length", 0.3), length(22, L"Radius", 0.05),
    real(23, L"Volume").with(FlagReadOnly), boolean(24, L"InheritColour"), boolean(25, L"InheritScale"),
    enumeration(26, L"DisplayStyle", displayStyles, 3), integer(27, L"HighlightStyle", 1), integer(29, L"RadialSegments", 16), integer(30, L"ArcSegments", 8),
};
static_assert(isSound(primitiveRows, 11));
constexpr Rows meshRows = {
    array(8, L"Vertices", T::Vector3Array).unit(Linear), array(9, L"Normals", T::Vector3Array), array(10, L"FaceIndices", T::IntegerArray),
    array(11, L"FaceSizes", T::IntegerArray),
};
constexpr Rows meshInstanceRows = {
    pointer(18, L"Mesh"), pointer(19, L"Material"), boolean(20, L"InheritColour"), boolean(21, L"InheritScale"),
    enumeration(22, L"DisplayStyle", displayStyles), integer(23, L"HighlightStyle", 1), boolean(24, L"DoubleSided"),
};
constexpr Rows skinClusterRows = {
    array(8, L"Joints", T::PointerArray), array(9, L"BindMatrices", T::MatrixArray), array(10, L"VertexIndices", T::IntegerArray),
    array(11, L"JointIndices", T::IntegerArray), floats(12, L"Weights"),
};
constexpr Rows blendTargetRows = {text(0, L"Label"), channel(1, L"Weight"), array(2, L"Vertices", T::Vector3Array)};
constexpr Rows blendTargetElement = {compound(0, L"Target", blendTargetRows)};
constexpr Rows blendShapeRows = {attributeArray(8, L"Targets", blendTargetElement)};
constexpr Rows imageRows = {integer(0, L"Width"), integer(1, L"Height"), integer(2, L"Depth"), array(3, L"Pixels", T::IntegerArray)};
constexpr Rows materialRows = {
    compound(8, L"Diffuse", white), compound(9, L"Specular", white), compound(10, L"Ambient", white), channel(11, L"Shininess", 20),
    compound(12, L"DiffuseTexture", imageRows), compound(13, L"SpecularTexture", imageRows), compound(14, L"AmbientTexture", imageRows),
};
constexpr Rows cameraRows = {
    enumeration(51, L"CameraType", cameraTypes), channel(52, L"ViewingAngle", 60).doc(L"Degrees, of a perspective camera."), length(53, L"ViewingWidth", 3),
    length(54, L"NearClipDistance", 0.01), length(55, L"FarClipDistance", 1000), channel(56, L"AspectRatio", 1.85),
};
constexpr Rows lightRows = {
    enumeration(51, L"LightType", lightTypes), channel(52, L"Intensity", 1), angle(53, L"ConeAngle", 0.7853982), length(54, L"Range", 10),
};
constexpr Rows gridRows = {length(18, L"Size", 20), length(19, L"Spacing", 1), integer(20, L"Divisions", 5)};

// ---- physics ----

constexpr Rows physicsBodyRows = {
    channel(31, L"Density", 1000).unit(Density), channel(32, L"Restitution", 0.05), channel(33, L"StaticFriction", 0.2),
    channel(34, L"DynamicFriction", 0.2), length(35, L"SkinWidth", 0.001),
};
constexpr Rows physicsMeshInstanceRows = {
    boolean(25, L"MotionEnabled", true), channel(26, L"Density", 1000).unit(Density), channel(27, L"Restitution", 0.05),
    channel(28, L"StaticFriction", 0.2), channel(29, L"DynamicFriction", 0.2), length(30, L"SkinWidth", 0.001),
};
constexpr Rows physicsJointRows = {
    boolean(58, L"MotionEnabled", true), channel(59, L"LinearDamping"), channel(60, L"AngularDamping"), channel(61, L"MaxAngularVelocity").unit(AngularVelocity),
    channel(62, L"SwingStiffness"), channel(63, L"TwistStiffness"), channel(64, L"SwingDamping"), channel(65, L"TwistDamping"),
    channel(66, L"LinearVelocityX").unit(Velocity), channel(67, L"LinearVelocityY").unit(Velocity), channel(68, L"LinearVelocityZ").unit(Velocity),
    channel(69, L"AngularVelocityX").unit(AngularVelocity), channel(70, L"AngularVelocityY").unit(AngularVelocity),
    channel(71, L"AngularVelocityZ").unit(AngularVelocity),
    boolean(72, L"DriveEnabled"), channel(73, L"DriveBlendWeight", 1), text(74, L"DriveType", L"SlerpDrive"),
    channel(75, L"DriveSlerpStiffness", 1e6), channel(76, L"DriveSwingStiffness", 1e6), channel(77, L"DriveTwistStiffness", 1e6),
    channel(78, L"DriveSlerpDamping"), channel(79, L"DriveSwingDamping"), channel(80, L"DriveTwistDamping"),
    matrix(81, L"DriveInputMatrix"), matrix(82, L"DriveOutputMatrix"), boolean(83, L"ShowActiveDrive"),
};
static_assert(isSound(physicsJointRows, 58));
constexpr Rows physicsJointLimitRows = {
    channel(74, L"Swing1Stiffness", 1e6), channel(75, L"Swing1Damping", 0.1), channel(76, L"Swing1Restitution"),
    channel(77, L"Swing2Stiffness", 1e6), channel(78, L"Swing2Damping", 0.1), channel(79, L"Swing2Restitution"),
    channel(80, L"LowerTwistStiffness", 1e6), channel(81, L"LowerTwistDamping", 0.1), channel(82, L"LowerTwistRestitution"),
    channel(83, L"UpperTwistStiffness", 1e6), channel(84, L"UpperTwistDamping", 0.1), channel(85, L"UpperTwistRestitution"),
    channel(86, L"SoftSwing1Stiffness", 10000), channel(87, L"SoftSwing2Stiffness", 10000), channel(88, L"SoftTwistStiffness", 10000),
};
constexpr Rows physicsConstraintRows = {
    matrix(51, L"TargetInputMatrix"), matrix(52, L"TargetOutputMatrix"), boolean(53, L"ConstraintEnabled", true), db::row::value(54, L"ConstraintMode", T::Enumeration),
    channel(55, L"TargetBlendWeight", 1), boolean(56, L"ShowCurrentFrame"), boolean(57, L"ShowTargetFrame"),
    angle(58, L"WorkingRotationX"), angle(59, L"WorkingRotationY"), angle(60, L"WorkingRotationZ"),
    boolean(61, L"TranslationXActive", true), boolean(62, L"TranslationYActive", true), boolean(63, L"TranslationZActive", true),
    boolean(64, L"RotationXActive", true), boolean(65, L"RotationYActive", true), boolean(66, L"RotationZActive", true),
    length(67, L"MaximumRange", 0.1), channel(68, L"TranslationStiffness", 100000), channel(69, L"RotationStiffness", 5729.5776),
    channel(70, L"TranslationDamping"), channel(71, L"RotationDamping"), channel(72, L"ForceLimit", 10), channel(73, L"TorqueLimit", 1),
    channel(74, L"SpeedMultiplier", 1), channel(75, L"SpeedLimit"), channel(76, L"RelativeSpeedLimit"),
};
static_assert(isSound(physicsConstraintRows, 51));

// ---- groups, selection, settings ----

constexpr Rows groupRows = {
    text(8, L"Label"), pointer(9, L"ParentGroupReference"), array(10, L"ChildGroupReferenceArray", T::PointerArray),
    boolean(11, L"IsGroupFolder"), boolean(12, L"IsGroupSeparator"), array(13, L"ObjectReferenceArray", T::PointerArray),
    integer(14, L"SubObjectType"), array(15, L"SubObjectArray", T::IntegerArray), boolean(16, L"IsFocused"), boolean(17, L"IsExpanded", true),
    boolean(18, L"IsActive", true), boolean(19, L"IsEditable", true), boolean(20, L"IsSelectable", true), boolean(21, L"IsVisible", true),
    compound(22, L"Colour", white),
};
// The selection's own attributes begin at 13.
constexpr Rows selectionRows = {
    array(13, L"Entities", T::PointerArray), integer(14, L"SubEntityType"), array(15, L"SubEntities", T::IntegerArray),
};
constexpr Rows sceneSettingsRows = {
    enumeration(8, L"LinearUnits", linearUnits, 2), enumeration(9, L"MassUnits", massUnits, 1), enumeration(10, L"AngularUnits", angularUnits),
    integer(11, L"FrameRate", 24).unit(Framerate).range(0, 1e6), real(12, L"Time").unit(Time).hot(),
    real(13, L"StartTime").unit(Time), real(14, L"EndTime", 3).unit(Time),
    real(15, L"PlaybackStartTime").unit(Time), real(16, L"PlaybackEndTime", 3).unit(Time),
    real(17, L"SimulationRate", 60).unit(Framerate), integer(18, L"SolverAccuracy", 100), integer(19, L"SolverSubsteps", 10),
    boolean(20, L"ContinuousCollisions", true), boolean(21, L"PlayDuringSimulation", true),
    real(22, L"GravityX").unit(Acceleration), real(23, L"GravityY", -9.81).unit(Acceleration), real(24, L"GravityZ").unit(Acceleration),
    text(25, L"StartScript"), text(26, L"UpdateScript"), text(27, L"EndScript"), enumeration(28, L"ScriptingLanguage", scriptingLanguages),
    array(29, L"PluginPaths", T::StringArray), array(30, L"Plugins", T::StringArray), integer(31, L"ActiveTool", 1),
};
static_assert(isSound(sceneSettingsRows, 8));
constexpr Rows viewportRows = {
    array(8, L"Camera", T::StringArray), array(9, L"ColourMode", T::IntegerArray), array(10, L"DisplayMode", T::EnumerationArray),
    array(11, L"HeadsUpMode", T::EnumerationArray), attributeArray(12, L"DisplayFilter", stringArrayElement),
};

// ---- tools and controllers ----

constexpr Rows selectToolRows = {array(8, L"Items", T::IntegerArray), array(9, L"SubItems", T::IntegerArray), enumeration(10, L"SelectionMode", selectionModes)};
constexpr Rows moveToolRows = {enumeration(8, L"Orientation", orientations), length(9, L"TranslationX"), length(10, L"TranslationY"), length(11, L"TranslationZ")};
constexpr Rows rotateToolRows = {enumeration(8, L"Orientation", orientations), vector(9, L"RotationAxis"), angle(10, L"RotationAngle")};
constexpr Rows scaleToolRows = {channel(8, L"ScaleX", 1), channel(9, L"ScaleY", 1), channel(10, L"ScaleZ", 1)};
constexpr Rows timingToolRows = {enumeration(8, L"Orientation", orientations), channel(9, L"Slide"), channel(10, L"Scale")};
constexpr Rows controllerRows = {
    boolean(8, L"DropoffEnabled"), enumeration(9, L"DropoffMode", dropoffModes), real(10, L"DropoffRange", 1), real(11, L"DropoffPinch"),
    real(12, L"DropoffBubble"),
};
constexpr Rows jointControllerRows = {boolean(13, L"AutoRotateJointLimits", true)};
constexpr Rows jointLimitControllerRows = {boolean(13, L"RotateMovingFrameOffset")};
constexpr Rows trajectoryControllerRows = {enumeration(13, L"RotationMode", rotationToolModes), enumeration(14, L"BentSide", bentSides)};

}  // namespace

// ---- the types, bases first ----

#define SG_TYPE(Class, Base, rows) db::NodeDef const Class::Def(L"sg", Class::ClassID.c_str(), &Base::Def, rows, sizeof(Class), make<Class>)
#define SG_PLAIN(Class, Base) SG_TYPE(Class, Base, {})

db::NodeDef const Node::Def(L"sg", L"Node", nullptr, nodeRows, sizeof(Node), make<Node>);
SG_PLAIN(Connection, Node);
SG_PLAIN(UnknownNode, Node);
db::NodeDef const RenderableNode::Def(L"sg", L"Renderable", &Node::Def, renderableRows, sizeof(RenderableNode), nullptr);
db::NodeDef const TransformBaseNode::Def(L"sg", L"TransformBase", &RenderableNode::Def, transformBaseRows, sizeof(TransformBaseNode), nullptr);
SG_TYPE(TransformNode, TransformBaseNode, transformRows);

SG_PLAIN(NullNode, Node);
SG_TYPE(JointNode, TransformNode, jointRows);
SG_TYPE(JointLimitNode, TransformNode, jointLimitRows);
SG_TYPE(CharacterNode, TransformNode, characterRows);
SG_PLAIN(KinematicsCharacterNode, TransformNode);

SG_TYPE(IKSolverNode, Node, ikSolverRows);
SG_TYPE(IKHandleNode, TransformNode, ikHandleRows);
SG_TYPE(JointIKParamsNode, Node, jointIKParamsRows);
SG_TYPE(PoleVectorNode, TransformNode, poleVectorRows);
SG_TYPE(RetargetNode, Node, retargetRows);
SG_TYPE(JointRetargetParamsNode, TransformNode, jointRetargetParamsRows);
SG_TYPE(KinematicsConstraintNode, Node, kinematicsConstraintRows);
SG_TYPE(AimConstraintNode, Node, aimConstraintRows);
SG_TYPE(MatrixConversionNode, Node, matrixConversionRows);
SG_TYPE(MirrorConstraintNode, Node, mirrorConstraintRows);
SG_TYPE(PinNode, Node, pinRows);
SG_TYPE(NotNode, Node, notRows);
SG_TYPE(CopyMatrixNode, Node, copyMatrixRows);
SG_TYPE(FloatProductNode, Node, floatProductRows);

SG_TYPE(AnimationNode, Node, animationRows);
SG_TYPE(AnimationLayersNode, Node, animationLayersRows);
SG_TYPE(TrajectoryNode, TransformNode, trajectoryRows);

SG_PLAIN(ShapeBaseNode, RenderableNode);
SG_TYPE(PrimitiveNode, ShapeBaseNode, primitiveRows);
SG_TYPE(MeshNode, Node, meshRows);
SG_TYPE(MeshInstanceNode, ShapeBaseNode, meshInstanceRows);
SG_TYPE(SkinClusterNode, Node, skinClusterRows);
SG_PLAIN(SkinnedShapeNode, PrimitiveNode);
SG_TYPE(BlendShapeNode, Node, blendShapeRows);
SG_TYPE(MaterialNode, Node, materialRows);
SG_TYPE(CameraNode, TransformNode, cameraRows);
SG_TYPE(LightNode, TransformNode, lightRows);
SG_TYPE(GridNode, ShapeBaseNode, gridRows);

SG_TYPE(PhysicsBodyNode, PrimitiveNode, physicsBodyRows);
SG_PLAIN(PhysicsCharacterNode, TransformNode);
SG_TYPE(PhysicsConstraintNode, TransformNode, physicsConstraintRows);
SG_TYPE(PhysicsJointNode, JointNode, physicsJointRows);
SG_TYPE(PhysicsJointLimitNode, JointLimitNode, physicsJointLimitRows);
SG_TYPE(PhysicsMeshInstanceNode, MeshInstanceNode, physicsMeshInstanceRows);

SG_TYPE(GroupNode, Node, groupRows);
SG_PLAIN(CollisionGroupNode, GroupNode);
SG_PLAIN(DisplayGroupNode, GroupNode);
SG_PLAIN(SelectionGroupNode, GroupNode);
SG_TYPE(SelectionNode, Node, selectionRows);
SG_TYPE(SceneSettingsNode, Node, sceneSettingsRows);
SG_TYPE(ViewportEditorSettingsNode, Node, viewportRows);

SG_TYPE(SelectToolNode, Node, selectToolRows);
SG_TYPE(MoveToolNode, Node, moveToolRows);
SG_TYPE(RotateToolNode, Node, rotateToolRows);
SG_TYPE(ScaleToolNode, Node, scaleToolRows);
SG_TYPE(TimingToolNode, Node, timingToolRows);
SG_TYPE(ObjectControllerNode, Node, controllerRows);
SG_TYPE(JointControllerNode, ObjectControllerNode, jointControllerRows);
SG_TYPE(JointLimitControllerNode, ObjectControllerNode, jointLimitControllerRows);
SG_PLAIN(MeshInstanceControllerNode, ObjectControllerNode);
SG_PLAIN(PhysicsBodyControllerNode, ObjectControllerNode);
SG_TYPE(TrajectoryControllerNode, ObjectControllerNode, trajectoryControllerRows);

SG_PLAIN(CommandBaseNode, Node);

}  // namespace sg
