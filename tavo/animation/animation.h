// XAnimation: a value handle on an animation curve, from one float input (normally the scene's time, in seconds) to one
// float output or to a quaternion. All data are parallel array attributes of the node; evaluation is the node's.
//
// The arrays are not sorted. An attribute index is a key's slot in the arrays; a sorted index is its rank by input. The
// forms with a `float` key find a key by exact equality of its input. The mode, float or quaternion, is fixed when the
// curve is made; an operation of the other mode does nothing.
#pragma once
#include "qel/sg/node_types.h"
#include "qel/sg/units.h"
#include "tavo/animation/keyframe.h"

namespace Tavo {

class XAnimation : public XTyped<XAnimation, XObject, sg::AnimationNode> {
public:
    using Point = sg::CurvePoint;
    enum Mode { FloatOutputMode = 0, RotationOutputMode = 1 };

    static constexpr XWord TypeID = L"Animation", DefaultName = L"animation";
    static constexpr int DefaultContinuityType = 1, DefaultInterpolationType = 2, DefaultExtrapolationType = 0;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(OutputMode, 8)
    TAVO_ATTRIBUTE(InputValue, 9)
    TAVO_ATTRIBUTE(InputValuesArray, 10)
    TAVO_ATTRIBUTE(OutputValue, 11)
    TAVO_ATTRIBUTE(OutputValuesArray, 12)
    TAVO_ATTRIBUTE(OutputValueQuat, 13)
    TAVO_ATTRIBUTE_XYZ(OutputValueEuler, 14)
    TAVO_ATTRIBUTE(InputUnits, 17)
    TAVO_ATTRIBUTE(OutputUnits, 18)
    TAVO_ATTRIBUTE(PreExtrapolation, 19)
    TAVO_ATTRIBUTE(PostExtrapolation, 20)
    TAVO_ATTRIBUTE(IsCurveSampled, 21)
    TAVO_ATTRIBUTE(KeyframeMinX, 22)
    TAVO_ATTRIBUTE(KeyframeMaxX, 23)
    TAVO_ATTRIBUTE(KeyframeMinY, 24)
    TAVO_ATTRIBUTE(KeyframeMaxY, 25)
    TAVO_ATTRIBUTE(KeyframeInputValues, 26)
    TAVO_ATTRIBUTE(KeyframeOutputValues, 27)
    TAVO_ATTRIBUTE(KeyframeOutputValuesQuat, 28)
    TAVO_ATTRIBUTE(KeyframeInTangentsX, 29)
    TAVO_ATTRIBUTE(KeyframeInTangentsY, 30)
    TAVO_ATTRIBUTE(KeyframeOutTangentsX, 31)
    TAVO_ATTRIBUTE(KeyframeOutTangentsY, 32)
    TAVO_ATTRIBUTE(KeyframeInterpolations, 33)
    TAVO_ATTRIBUTE(KeyframeContinuities, 34)

    XScene& Scene() const;

    // ---- evaluation; float mode, otherwise 0 or false ----
    float Interpolate(float input) const;
    float PreGradient() const;
    float PostGradient() const;
    bool GetInputTangentControlPoint(int key, float& value) const;
    bool GetOutputTangentControlPoint(int key, float& value) const;
    void CurvePoints(Qelutils::Vector<Point>& out, float from, float to) const;

    // ---- keys ----
    XKeyframe Keyframe(float input) const;  // not valid when there is none
    XKeyframe Keyframe(int sorted) const;
    XKeyframe KeyframeByAttributeIndex(int index) const { return XKeyframe(*this, index); }  // unchecked
    int KeyframeCount() const;
    XAnimation& SetKeyframeCount(int count);  // below 1: nothing
    XAnimation& ClearAnimation();

    // ---- editing. Move, scale and snap hit the keys with from <= input <= to; the delete ranges hit those with
    // from <= input and to <= input, on purpose. Ranges of attribute indices are inclusive and unchecked ----
    XAnimation& DeleteKeyframe(float input);
    XAnimation& DeleteKeyframe(int sorted);
    XAnimation& DeleteKeyframeByAttributeIndex(int index);
    XAnimation& DeleteKeyframes(float from, float to);
    XAnimation& DeleteKeyframes(int from, int to);
    XAnimation& DeleteKeyframesByAttributeIndex(int from, int to);
    XAnimation& MoveKeyframe(int sorted, float dx, float dy);
    XAnimation& MoveKeyframes(float from, float to, float dx, float dy);
    XAnimation& MoveKeyframes(int from, int to, float dx, float dy);
    XAnimation& MoveKeyframesByAttributeIndex(int from, int to, float dx, float dy);
    XAnimation& ScaleKeyframe(float key, float sx, float sy, float px, float py);
    XAnimation& ScaleKeyframe(int sorted, float sx, float sy, float px, float py);
    XAnimation& ScaleKeyframes(float from, float to, float sx, float sy, float px, float py);
    XAnimation& ScaleKeyframes(int from, int to, float sx, float sy, float px, float py);
    XAnimation& ScaleKeyframesByAttributeIndex(int from, int to, float sx, float sy, float px, float py);
    XAnimation& SnapKeyframe(float key);
    XAnimation& SnapKeyframe(int sorted);
    XAnimation& SnapKeyframes(float from, float to);
    XAnimation& SnapKeyframes(int from, int to);
    XAnimation& SnapKeyframesByAttributeIndex(int from, int to);

    // ---- creation. The short forms of CreateKeyframe pass x as the output too: a decision of this system; callers
    // that want y use SetKeyframe. The defaults differ between the families ----
    XKeyframe CreateKeyframe(float x, float y, int interpolation, int continuity);
    XKeyframe CreateKeyframe(float x, float y, int interpolation);
    XKeyframe CreateKeyframe(float x, float y);
    XKeyframe CreateKeyframe(float x, XQuaternion const& value);
    XKeyframe EditKeyframe(float x, float y, int interpolation, int continuity);
    XKeyframe EditKeyframe(float x, float y, int interpolation);
    XKeyframe EditKeyframe(float x, float y);
    XKeyframe EditKeyframe(float x, XQuaternion const& value);
    XKeyframe EditKeyframe(int sorted, float x, float y, int interpolation, int continuity);
    XKeyframe EditKeyframe(int sorted, float x, float y, int interpolation);
    XKeyframe EditKeyframe(int sorted, float x, float y);
    XKeyframe EditKeyframe(int sorted, float x, XQuaternion const& value);
    XKeyframe EditKeyframeByAttributeIndex(int index, float x, float y, int interpolation, int continuity);
    XKeyframe EditKeyframeByAttributeIndex(int index, float x, float y, int interpolation);
    XKeyframe EditKeyframeByAttributeIndex(int index, float x, float y);
    XKeyframe EditKeyframeByAttributeIndex(int index, float x, XQuaternion const& value);
    XKeyframe SetKeyframe(float x, float y, int interpolation, int continuity);
    XKeyframe SetKeyframe(float x, float y, int interpolation);
    XKeyframe SetKeyframe(float x, float y);
    XKeyframe SetKeyframe(float x, XQuaternion const& value);
    XKeyframe SetKeyframe(XQuaternion const& value);  // at the current input
    // Replaces all keys: inputs first + i * step.
    XAnimation& InitializeKeyframes(int count, float first, float step, float value, int interpolation, int continuity);
    XAnimation& InitializeKeyframes(int count, float first, float step, XQuaternion const& value);

    // Brings an angle of the key in slot `key` to within half a turn of the key before it: (previous - half, previous +
    // half]. Only for curves whose output is an angle, and not for key 0. `unit` 0: degrees, otherwise radians.
    void EnsureCyclicContinuity(int key, float& value, sg::AngularUnit unit) const;
    void EnsureCyclicContinuity(int key, float& value) const;
    bool UniformSampling(int segments);  // false below 2 segments; gives segments + 1 linear keys

    // Replaces the samples by few keys with handles, which stay within `tolerance` of them in the plane of input and
    // output; SamplesFitter_simpleFit tells of the numbers. `resample` of 2 and above first takes that many even
    // segments. A sample whose output is within `duplicateEpsilon` of the one before it is left out, so that of a
    // stretch at one value the first sample remains. False with a warning for a curve that is not sampled and is to be
    // resampled; false as well without keys. One step of the history.
    bool FitSampledCurve(int resample, float tolerance, int maxRefinementIterations, int maxSamples,
                         int refinementSteps, float duplicateEpsilon);
    bool FitSampledCurve(int resample, float tolerance, int maxRefinementIterations, int maxSamples,
                         int refinementSteps);

    void onInitialize() override { XObject::onInitialize(); }

private:
    friend class XKeyframe;

    sg::AnimationNode* curveNode() const { return IsValid() ? static_cast<sg::AnimationNode*>(getNode()) : nullptr; }
    bool isFloatMode() const { return isInMode(FloatOutputMode); }
    bool isQuaternionMode() const { return isInMode(RotationOutputMode); }
    bool isInMode(Mode mode) const { return IsValid() && OutputMode().Enumeration() == mode; }
    // The arrays of float mode, in the order in which keys are added to them.
    void forEachFloatArray(auto const& action) const {
        for (int row : {26, 27, 33, 34, 29, 30, 31, 32}) action(Attribute(row));
    }
    XKeyframe keyOfRank(int sorted) const;
    bool inputsOfRanks(int from, int to, float& first, float& last) const;
    XAnimation& forKeys(int first, int last, auto const& action);
    XAnimation& forHits(auto const& isHit, auto const& action);
    XAnimation& forRange(int from, int to, auto const& hits, auto const& action);
    XAnimation& forOne(XKeyframe key, auto const& action);
    XAnimation& deleteKeys(int first, int last, auto const& isHit);
    XKeyframe editKey(XKeyframe key, float const* x, float y, int interpolation, int continuity);  // null x: as it is
    XKeyframe editKey(XKeyframe key, float const* x, XQuaternion const& value);
    void writeKeys(Qelutils::Vector<float> const& inputs, Qelutils::Vector<float> const& outputs, int interpolation,
                   int continuity);
};
using XAnimationDef = XTypedDef<XAnimation>;

}  // namespace Tavo
