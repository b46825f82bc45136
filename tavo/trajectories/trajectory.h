// XTrajectory: a path in space that an object follows: translation keys, rotation keys attached to points between them,
// and a timing curve that says how far along the path the object is at each moment. The class holds nothing of its own:
// keys are attributes of the node, and the node knows the geometry.
//
// Three coordinates run along a path: the key parameter (0 at the first key, n - 1 at the last), the fraction of its
// arc length (0 to 1; times MaxArcLength a distance in metres), and the time in seconds, the timing curve's input. That
// curve is the one whose output feeds InputValue; its outputs are fractions.
//
// A path is sampled (dense keys with linear interpolation) or a spline (few keys with handles); so says
// IsTranslationCurveSampled. Smart editing and the timing operations need a sampled timing curve, smart editing a
// sampled path too. Points are in the trajectory's own space, before its transform, in metres.
//
// Every edit is one change block. Translation keys are named by their key parameter, rotation keys by their attach
// point (within 1e-6). A key that is not there is passed over in silence; a list names each key once. Rotation keys
// stay with the number of their place when translation keys come and go. An edit of a trajectory that is invalid or
// may not be edited does nothing.
#pragma once
#include "qel/utils/dense.h"
#include "tavo/animation/drop_off.h"
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XTrajectory : public XTyped<XTrajectory, XTransform, sg::TrajectoryNode> {
public:
    static constexpr XWord TypeID = L"Trajectory", DefaultName = L"trajectory", DefaultTimingName = L"trajectoryTiming";
    static constexpr XColour DefaultColour{0, 0.75f, 1, 1};
    using XTyped::XTyped;
    using IDs = Qelutils::Vector<int>;
    using Floats = Qelutils::Vector<float>;

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

    // ---- geometry ----
    int ParameterIndex(float parameter) const;  // the slot of the key of that number, truncated; -1 for none
    // A key's handle, its own or the automatic one. False, and no change, when there is none on that side.
    bool GetInputTangentControlPoint(int parameter, XVector3& point) const;
    bool GetOutputTangentControlPoint(int parameter, XVector3& point) const;
    float ArcLengthMap(float parameter) const;  // to the fraction
    float InverseArcLengthMap(float fraction) const;
    bool ComputePosition(float fraction, XVector3& position) const;
    // The place of the path that looks nearest to a ray; false when none is seen.
    bool FindRayClosestPointOnCurveParallelProjection(XVector3 const& origin, XVector3 const& direction,
                                                      float& fraction) const;
    bool FindRayClosestPointOnCurvePerspectiveProjection(XVector3 const& eye, XVector3 const& origin,
                                                         XVector3 const& direction, float& fraction) const;
    // The four floats of a compound within a key. False, and no change, when they are not there.
    static bool QuaternionFromAttribute(XAttribute const& key, int sub, XQuaternion& rotation);
    static bool SetQuaternionFromAttribute(XAttribute& key, int sub, XQuaternion const& rotation);
    XAnimation TimingCurve() const;  // invalid without one

    // ---- translation keys. Position alone: linear; with one handle: a spline with its mirror image on the other side,
    // linearCoupled; with both: a broken spline ----
    XTrajectory& AppendTranslationKeyframe(XVector3 const& position);
    XTrajectory& AppendTranslationKeyframe(XVector3 const& position, XVector3 const& outHandle);
    XTrajectory& AppendTranslationKeyframe(XVector3 const& inHandle, XVector3 const& position,
                                           XVector3 const& outHandle);
    // In front of an existing key.
    XTrajectory& InsertTranslationKeyframe(int parameter, XVector3 const& position);
    XTrajectory& InsertTranslationKeyframe(int parameter, XVector3 const& position, XVector3 const& outHandle);
    XTrajectory& InsertTranslationKeyframe(int parameter, XVector3 const& inHandle, XVector3 const& position,
                                           XVector3 const& outHandle);
    // A key halfway between each two neighbours from one key to another: of a sampled path the middle, of a spline the
    // split that leaves its shape.
    XTrajectory& InsertInBetweenTranslationKeyframe(int first, int second);
    XTrajectory& DeleteTranslationKeyframe(int parameter);
    XTrajectory& DeleteTranslationKeyframe(IDs const& parameters);
    // Moves one handle, and the other as the key's continuity says: "linear" keeps both in line and their lengths'
    // ratio (with a handle on its key that divides by zero, unguarded), "linearCoupled" mirrors.
    XTrajectory& EditTranslationKeyframeInputTangent(int parameter, XVector3 const& point);
    XTrajectory& EditTranslationKeyframeOutputTangent(int parameter, XVector3 const& point);
    // Each id is a handle: of the key in slot id / 2 the in handle if it is even, else the out handle.
    XTrajectory& EditTranslationKeyframeTangentsPoints_interactive(IDs const& ids, XVector3 const& delta);
    // By the script words of a curve's keys; an unknown one does nothing.
    XTrajectory& EditTranslationKeyframeInterpolationType(int parameter, std::wstring const& type);
    XTrajectory& EditTranslationKeyframeInterpolationType(IDs const& parameters, std::wstring const& type);
    XTrajectory& EditTranslationKeyframeContinuityType(int parameter, std::wstring const& type);
    XTrajectory& EditTranslationKeyframeContinuityType(IDs const& parameters, std::wstring const& type);
    // From sampled keys to a spline: automatic tangents become handles. False, and no change, if it is one.
    bool ToSpline();

    // ---- other keys for the same path. Rotation keys keep their numbers ----
    // The most segments that sampling takes, and so the most keys it leaves is twice as many.
    static constexpr int MostSegments = 1'000'000;
    // Segments of one length each along the path. False, and no change, below 2, above the most, and without keys.
    bool UniformSampling(int segments);
    // Keys lie closer where the path bends: no segment is longer than an even one of `minSegments`, and at
    // `testSamples` places within each the path lies no farther than `tolerance` from where the chord is. Once a length
    // is found that fits, `refinementIterations` attempts look for a longer one. A millionth of the path is taken as it
    // is. False, and no change, unless all numbers are above 0, and without keys.
    bool AdaptiveSampling(float tolerance, int minSegments, int testSamples, int refinementIterations);
    // From dense keys to few with handles, which pass within `tolerance` of them; SamplesFitter_simpleFit tells of the
    // numbers. `resample` of 2 and above first takes that many even segments. A key within `duplicateEpsilon` of the
    // one before it is left out. False with a warning for a path that is not sampled and is to be resampled; false as
    // well, and no change, without keys.
    bool FitSampledCurveTranslation(int resample, float tolerance, int maxRefinementIterations, int maxSamples,
                                    int refinementSteps, float duplicateEpsilon = 1e-5F);
    // To that many segments, their ends where the path turns (SamplesFitter_multiFit). False, and no change, if the
    // path is not sampled, and if the keys do not determine the curve.
    bool FitSampledCurveTranslation(int segments, int window, float duplicateEpsilon = 1e-5F);
    // The same for a drag that has its samples, rows of three coordinates, at hand. Reads no attribute; the last
    // argument has no effect.
    bool FitSampledCurveTranslation_interactive(Qelp::Vector<double> const& parameters,
                                                Qelp::Matrix<double> const& samples, int segments, int window,
                                                float = 1e-5F);

    // ---- rotation keys. Without tangents: linear; with one: a spline, linearCoupled; with both: a broken spline. An
    // error is logged when there is one at that place already ----
    XTrajectory& AttachRotationKeyframe(float attach, XQuaternion const& orientation);
    XTrajectory& AttachRotationKeyframe(float attach, XQuaternion const& orientation, XVector3 const& tangent);
    XTrajectory& AttachRotationKeyframe(float attach, XVector3 const& inTangent, XQuaternion const& orientation,
                                        XVector3 const& outTangent);
    // The product of the rotation and the old orientation, as XQuaternion::Multiply forms it.
    XTrajectory& EditRotationKeyframeOrientation(float attach, XQuaternion const& rotation);
    XTrajectory& EditRotationKeyframeOrientation(Floats const& attach, XQuaternion const& rotation);
    // Stays on the path; may come to lie on another rotation key.
    XTrajectory& EditRotationKeyframeAttachPoint(float attach, float delta);
    XTrajectory& EditRotationKeyframeAttachPoint(Floats const& attach, float delta);
    XTrajectory& EditRotationKeyframeInTangent(float attach, XVector3 const& tangent);
    XTrajectory& EditRotationKeyframeOutTangent(float attach, XVector3 const& tangent);
    XTrajectory& EditRotationKeyframeInterpolationType(float attach, std::wstring const& type);
    XTrajectory& EditRotationKeyframeInterpolationType(Floats const& attach, std::wstring const& type);
    XTrajectory& EditRotationKeyframeContinuityType(float attach, std::wstring const& type);
    XTrajectory& EditRotationKeyframeContinuityType(Floats const& attach, std::wstring const& type);
    XTrajectory& DeleteRotationKeyframe(float attach);
    XTrajectory& DeleteRotationKeyframe(Floats const& attach);
    // With weights.
    XTrajectory& EditRotationKeyframeOrientation(Floats const& attach, XDropOff const& dropoff,
                                                 XQuaternion const& rotation);
    XTrajectory& EditRotationKeyframeOrientationBallOfInfluence(XVector3 const& centre, float radius,
                                                                XDropOff const& dropoff, XQuaternion const& rotation);
    XTrajectory& EditRotationKeyframeAttachPoint(Floats const& attach, XDropOff const& dropoff, float delta);
    XTrajectory& EditRotationKeyframeAttachPointBallOfInfluence(XVector3 const& centre, float radius,
                                                                XDropOff const& dropoff, float delta);

    // ---- safe guards: spheres in which no weighted edit moves a key. The dropoff's mode is not kept ----
    XTrajectory& UseSafeGuards(bool use);
    XTrajectory& AddSafeGuard(XVector3 const& centre, float radius, XDropOff const& dropoff);
    XTrajectory& EditSafeGuard(int index, XVector3 const& centre, float radius, XDropOff const& dropoff);
    XTrajectory& DeleteSafeGuard(int index);

    // ---- edits of positions. Each remembers the timing, moves keys with their handles by a weight each, and repairs
    // the timing as SmartEditing says. Weights: 1 for the keys that are named; those of a dropoff round them; those
    // round a ball; or given, one a slot (keys beyond the end stay), 0 leaving a key untouched ----
    XTrajectory& EditTranslationKeyframePosition(int parameter, XVector3 const& delta);
    XTrajectory& EditTranslationKeyframePosition(IDs const& parameters, XVector3 const& delta);
    XTrajectory& EditTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff, XVector3 const& delta);
    XTrajectory& EditTranslationKeyframePosition_interactive(Floats const& weights, XVector3 const& delta);
    XTrajectory& EditTranslationKeyframePositionBallOfInfluence(XVector3 const& centre, float radius,
                                                                XDropOff const& dropoff, XVector3 const& delta);
    // Along the axes of the frame, about its origin. Handles come out right in frames without rotation only: their
    // offsets stay in the frame's axes, a decision of this system.
    XTrajectory& ScaleTranslationKeyframePosition(int parameter, XMatrix const& frame, XVector3 const& scale);
    XTrajectory& ScaleTranslationKeyframePosition(IDs const& parameters, XMatrix const& frame, XVector3 const& scale);
    XTrajectory& ScaleTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff, XMatrix const& frame,
                                                  XVector3 const& scale);
    XTrajectory& ScaleTranslationKeyframePosition_interactive(Floats const& weights, XMatrix const& frame,
                                                              XVector3 const& scale);
    XTrajectory& ScaleTranslationKeyframePositionBallOfInfluence(XVector3 const& centre, float radius,
                                                                 XDropOff const& dropoff, XMatrix const& frame,
                                                                 XVector3 const& scale);
    // By "XYZ" angles in the frame, times the weight.
    XTrajectory& RotateTranslationKeyframePosition(int parameter, XMatrix const& frame, XVector3 const& rotation);
    XTrajectory& RotateTranslationKeyframePosition(IDs const& parameters, XMatrix const& frame,
                                                   XVector3 const& rotation);
    XTrajectory& RotateTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff, XMatrix const& frame,
                                                   XVector3 const& rotation);
    XTrajectory& RotateTranslationKeyframePosition_interactive(Floats const& weights, XMatrix const& frame,
                                                               XVector3 const& rotation);
    XTrajectory& RotateTranslationKeyframePositionBallOfInfluence(XVector3 const& centre, float radius,
                                                                  XDropOff const& dropoff, XMatrix const& frame,
                                                                  XVector3 const& rotation);
    // Curls: each key with a weight turns all that follow it, in the order of the slots, about the key before it;
    // backwards the other way round.
    XTrajectory& BendTranslationKeyframePosition(IDs const& parameters, XDropOff const& dropoff,
                                                 XVector3 const& rotation, bool forward);
    XTrajectory& BendTranslationKeyframePosition_interactive(Floats const& weights, XVector3 const& rotation,
                                                             bool forward);
    // Weights for a drag, computed at its start.
    void ComputeTranslationWeights(IDs const& parameters, XDropOff const& dropoff, Floats& weights) const;
    void ComputeTimeWeights(int handleCount, IDs const& selected, XDropOff const& dropoff, Floats& weights) const;

    // ---- timing along the path. Handles are spread evenly in time; between them a weight passes on smoothly. Nothing
    // happens without a timing curve; a warning is logged when that is not sampled ----
    XTrajectory& SlideTimingOnTrajectory(int handleCount, IDs const& selected, XDropOff const& dropoff, float amount);
    // From given outputs; with TimingEnforceMonotonic nothing changes where a fraction would fall from slot to slot.
    XTrajectory& SlideTimingOnTrajectory_interactive(Floats const& originals, Floats const& handleWeights,
                                                     float amount);
    // From the outputs as they are, so that events compound; `originals` is not read: a decision of this system.
    XTrajectory& ScaleTimingOnTrajectory_interactive(Floats const& originals, Floats const& handleWeights, float pivot,
                                                     float factor);

    void onInitialize() override;

protected:
    // The keys of the global fit in place of all there are. False, and no change, when it fails.
    bool fitSampledCurveTranslation_sharedCode(Qelp::Matrix<double> const& samples,
                                               Qelp::Vector<double> const& parameters, int segments, int window);

    // Weights, one an entry of what is weighed, in the order of the slots.
    void computeDropoffWeights_translations(XVector3 const& centre, float radius, XDropOff const& dropoff,
                                            Floats& weights) const;
    void computeDropoffWeights_translations(IDs const& parameters, XDropOff const& dropoff, Floats& weights) const;
    void computeSafeGuardWeights_translations(Floats& weights) const;
    void computeDropoffWeights_rotations(XVector3 const& centre, float radius, XDropOff const& dropoff,
                                         Floats& weights) const;
    void computeDropoffWeights_rotations(Floats const& attach, XDropOff const& dropoff, Floats& weights) const;
    void computeDropoffWeights_time(IDs const& selected, XDropOff const& dropoff, Floats& weights) const;
    // From a point; the radius is ignored, on purpose.
    void computeDropoffWeights_time(XVector3 const& centre, float radius, XDropOff const& dropoff,
                                    Floats& weights) const;

    // What is done to one key, by the slot.
    void editTranslationKeyframePosition_noCheck(int slot, XVector3 const& delta, float weight);
    void scaleTranslationKeyframePosition_noCheck(int slot, XMatrix const& frame, XVector3 const& scale, float weight);
    void rotateTranslationKeyframePosition_noCheck(int slot, XMatrix const& frame, XVector3 const& rotation,
                                                   float weight);
    void bendTranslationKeyframePosition_core(Floats const& weights, XVector3 const& rotation, bool forward);

    // Before an edit: the length of the path and where on it the timing keys are. False when there is no timing to
    // repair; a warning says why.
    bool smartEditInit(float& length, Floats& parameters) const;
    // After it, in silence.
    bool smartEditCore(float oldLength, Floats const& parameters);
    void smartEditCore_retainFeel_noCheck(float oldLength, Floats const& parameters, float eps);
    void smartEditCore_retainConstraints_noCheck(float oldLength, Floats const& parameters, float eps);

private:
    sg::TrajectoryNode* pathNode() const { return IsValid() ? static_cast<sg::TrajectoryNode*>(getNode()) : nullptr; }
    XTrajectory& smartEdit(std::wstring const& label, auto const& weigh, auto const& act);
    XTrajectory& editNamed(std::wstring const& label, IDs const& parameters, auto const& step);
    XTrajectory& editAround(std::wstring const& label, IDs const& parameters, XDropOff const& dropoff,
                            auto const& step);
    XTrajectory& editWeighted(std::wstring const& label, Floats const& weights, auto const& step);
    XTrajectory& editInBall(std::wstring const& label, XVector3 const& centre, float radius, XDropOff const& dropoff,
                            auto const& step);
};
using XTrajectoryDef = XTypedDef<XTrajectory>;

}  // namespace Tavo
