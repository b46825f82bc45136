// XTrajectory: a path in space that an object follows: translation keys, rotation keys attached to points between them,
// and a timing curve that says how far along the path the object is at each moment.
//
// Three coordinates run along a path: the key parameter (0 at the first key, n - 1 at the last), the fraction of its
// arc length (0 to 1; times MaxArcLength a distance in metres), and the time in seconds, the timing curve's input.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XTrajectory : public XTyped<XTrajectory, XTransform, sg::TrajectoryNode> {
public:
    static constexpr XWord TypeID = L"Trajectory", DefaultName = L"trajectory", DefaultTimingName = L"trajectoryTiming";
    static constexpr XColour DefaultColour{0, 0.75f, 1, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(InputValue, 51)  // the current fraction, from the timing curve
    TAVO_ATTRIBUTE(InputUnits, 52)
    TAVO_ATTRIBUTE(OutputUnits, 53)
    TAVO_ATTRIBUTE(PreInfinity, 54)  // outside the path's range: as the extrapolations of a curve
    TAVO_ATTRIBUTE(PostInfinity, 55)
    TAVO_ATTRIBUTE(IsTranslationCurveSampled, 56)
    TAVO_ATTRIBUTE(InterpolationTangentsCoeff, 57)  // of automatic tangents
    // Each: 0 key parameter, 1 in handle, 2 position, 3 out handle, 4 interpolation, 5 continuity. The order of the
    // keys is that of their parameters, not of the elements; handles are points.
    TAVO_ATTRIBUTE(TranslationKeyframesArray, 58)
    TAVO_ATTRIBUTE(IsRotationCurveSampled, 59)
    // Each: 0 attach point (a key parameter; no two share one), 1 in tangent, 2 orientation x, y, z, w, 3 out tangent,
    // 4 interpolation, 5 continuity. Tangents are directions.
    TAVO_ATTRIBUTE(RotationKeyframesArray, 60)
    TAVO_ATTRIBUTE(MaxArcLength, 61)  // metres; read only
    TAVO_ATTRIBUTE(UseSafeGuards, 62)
    TAVO_ATTRIBUTE(SafeGuardsArray, 63)          // each: 0 centre, 1 radius, 2 dropoff range, 3 pinch, 4 bubble
    TAVO_ATTRIBUTE(TimingCurveFirstKeyTime, 64)  // seconds
    TAVO_ATTRIBUTE(TimingCurveLastKeyTime, 65)
    TAVO_ATTRIBUTE(TimingHandlesNum, 66)
    TAVO_ATTRIBUTE(TimingEnforceMonotonic, 67)
    TAVO_ATTRIBUTE(TimingPreserveTips, 68)
    TAVO_ATTRIBUTE(TimingTipsDropoffRange, 69)
    TAVO_ATTRIBUTE(TimingTipsDropoffPinch, 70)
    TAVO_ATTRIBUTE(TimingTipsDropoffBubble, 71)
    TAVO_ATTRIBUTE(TimingHandlesTimesArray, 72)  // computed by the node, as the two that follow
    TAVO_ATTRIBUTE(TimingHandlesArcLengthsArray, 73)
    TAVO_ATTRIBUTE(TimingHandlesPositionsArray, 74)
    TAVO_ATTRIBUTE(SmartEditing, 75)  // 0 "retainFeel", 1 "retainConstraints", 2 "notUsed"
    TAVO_ATTRIBUTE(PaintOnCurve, 76)  // drawn as a tube
    TAVO_ATTRIBUTE(PaintThicknessVerticesNum, 77)
    TAVO_ATTRIBUTE(PaintCurveRadius, 78)  // metres
    TAVO_ATTRIBUTE(PaintAnimationName, 79)
    TAVO_ATTRIBUTE(LocalCurveMatrix, 80)  // read only, as the next
    TAVO_ATTRIBUTE(WorldCurveMatrix, 81)
    TAVO_ATTRIBUTE(ShowCurrentFrame, 82)
    TAVO_ATTRIBUTE(ShowTranslationHandles, 83)
    TAVO_ATTRIBUTE(ShowRotationCurves, 84)
    TAVO_ATTRIBUTE(ShowRotationKeys, 85)
    TAVO_ATTRIBUTE(ShowRotationHandles, 86)
    TAVO_ATTRIBUTE(ShowTiming, 87)
    TAVO_ATTRIBUTE(ShowSafeGuards, 88)

    void onInitialize() override;
};
using XTrajectoryDef = XTypedDef<XTrajectory>;

}  // namespace Tavo
