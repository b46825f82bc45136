// XKeyframe: a value handle on one key of an animation curve, that is, on one slot of the curve's parallel arrays. A
// key that moves keeps its slot; deleting another key may give it a different one, and a handle does not follow.
//
// A key made with the slot -1 does not exist yet; Create makes it, and the handle still does not learn its slot. Float
// operations on a key of a quaternion curve read 0 or an empty text and write nothing, and the other way round.
#pragma once
#include "tavo/objects/scene_object.h"

namespace Tavo {

class XAnimation;

enum XInterpolation : int {
    ConstantInterpolation = 0,
    LinearInterpolation = 1,
    SplineInterpolation = 2,
    ExternalInterpolation = 3
};
enum XContinuity : int { BrokenContinuity = 0, CoupledContinuity = 1, LinearCoupledContinuity = 2 };
enum XExtrapolation : int {
    ConstantExtrapolation = 0,
    LinearExtrapolation = 1,
    CyclicExtrapolation = 2,
    ReverseCyclicExtrapolation = 3,
    OffsetCyclicExtrapolation = 4,
};

// The word of a value for scripts and for people.
struct XEnumerationWord {
    XWord key;
    XWord label;
};
inline constexpr XEnumerationWord InterpolationWords[] = {
    {L"constant", L"Constant"}, {L"linear", L"Linear"}, {L"spline", L"Spline"}, {L"external", L"External"}};
// Key and label of value 1 differ on purpose, as those of "reverseCyclic" below.
inline constexpr XEnumerationWord ContinuityWords[] = {
    {L"broken", L"Broken"}, {L"linear", L"Coupled"}, {L"linearCoupled", L"Linear Coupled"}};
inline constexpr XEnumerationWord ExtrapolationWords[] = {{L"constant", L"Constant"},
                                                          {L"linear", L"Linear"},
                                                          {L"cyclic", L"Cyclic"},
                                                          {L"reverseCyclic", L"Reverse Cycle"},
                                                          {L"offsetCyclic", L"Offset Cyclic"}};

class XKeyframe : public XTyped<XKeyframe, XSceneObject> {
public:
    static constexpr XWord TypeID = L"Keyframe";
    using XTyped::XTyped;
    XKeyframe() = default;
    XKeyframe(XAnimation const& animation, int attributeIndex);

    int ObjectID() const { return _objectID; }  // of the curve's node
    int AttributeIndex() const { return _attributeIndex; }
    int Index() const;  // the first slot with this key's input
    XAnimation Animation() const;

    float InputValue() const;
    float OutputValue() const;
    XQuaternion OutputQuatValue() const;  // always the default quaternion: read the attribute instead
    std::wstring Continuity() const;      // labels
    std::wstring Interpolation() const;
    int ContinuityIndex() const;
    int InterpolationIndex() const;
    // The handles' control points minus the key, in curve units.
    float InTangentX() const;
    float InTangentY() const;
    float OutTangentX() const;
    float OutTangentY() const;

    XKeyframe& SetInputValue(float value);
    XKeyframe& SetOutputValue(float value);
    XKeyframe& SetOutputValueQuat(XQuaternion const& value);
    XKeyframe& SetContinuity(int continuity);
    XKeyframe& SetContinuity(std::wstring const& label);  // a label or a key; any other text does nothing
    XKeyframe& SetInterpolation(int interpolation);
    XKeyframe& SetInterpolation(std::wstring const& label);
    XKeyframe& SetInTangentX(float value);
    XKeyframe& SetInTangentY(float value);
    XKeyframe& SetOutTangentX(float value);
    XKeyframe& SetOutTangentY(float value);
    XKeyframe& Move(float dx, float dy);
    XKeyframe& Scale(float sx, float sy, float px, float py);  // about the pivot (px, py)
    XKeyframe& SnapToFrame();                                  // the input to the nearest integer
    void Create(float x, float y, int interpolation, int continuity);
    void Create(float x, XQuaternion const& value);
    void Delete();

    // The arrays of the curve.
    XAttribute OutputMode() const;
    XAttribute KeyframeInputValues() const;
    XAttribute KeyframeOutputValues() const;
    XAttribute KeyframeOutputValuesQuat() const;
    XAttribute KeyframeInTangentsX() const;
    XAttribute KeyframeInTangentsY() const;
    XAttribute KeyframeOutTangentsX() const;
    XAttribute KeyframeOutTangentsY() const;
    XAttribute KeyframeInterpolations() const;
    XAttribute KeyframeContinuities() const;

    bool isValid() const override;  // the curve is valid and has that slot

private:
    bool isFloatMode() const;
    bool isQuaternionMode() const;
    float readFloat(XAttribute const& array) const;
    XKeyframe& writeFloat(XAttribute array, float value);
    XKeyframe& writeEnumeration(XAttribute array, int value);

    int _objectID = InvalidID;
    int _attributeIndex = -1;
};
using XKeyframeDef = XTypedDef<XKeyframe>;

}  // namespace Tavo
