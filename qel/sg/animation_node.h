// An animation curve as a node: keys in parallel arrays, an input, an output.
#pragma once
#include "qel/sg/curve_evaluation.h"
#include "qel/sg/node.h"

namespace sg {

class AnimationNode final : public Node {
public:
    static inline std::wstring const ClassID = L"Animation";
    static db::NodeDef const Def;
    enum Number : int {
        OutputMode = 8,
        InputValue,
        InputValuesArray,
        OutputValue,
        OutputValuesArray,
        OutputValueQuat,
        OutputValueEulerX,
        OutputValueEulerY,
        OutputValueEulerZ,
        InputUnits,
        OutputUnits,
        PreExtrapolation,
        PostExtrapolation,
        IsCurveSampled,
        KeyframeMinX,
        KeyframeMaxX,
        KeyframeMinY,
        KeyframeMaxY,
        KeyframeInputValues,
        KeyframeOutputValues,
        KeyframeOutputValuesQuat,
        KeyframeInTangentsX,
        KeyframeInTangentsY,
        KeyframeOutTangentsX,
        KeyframeOutTangentsY,
        KeyframeInterpolations,
        KeyframeContinuities,
        ExternalValue,
        KeysPrepared,
    };
    static constexpr std::uint32_t keysBit = 1, valueBit = 2, rotationBit = 4, boundsBit = 8, batchBit = 16;

    explicit AnimationNode(db::NodeDef const& def = Def);

    // The curve at any input, whatever the node's own input is. False in quaternion mode.
    bool compute(float input, float& out);
    bool compute(float input, Qelp::Quat& out);  // false in float mode
    void compute(float from, float to, std::vector<CurvePoint>& points);
    float computePreGradient();
    float computePostGradient();
    // Of the key of that rank; false when there is none on that side.
    bool getInputTangentControlPoint(int rank, float& out);
    bool getOutputTangentControlPoint(int rank, float& out);
    // The slots of the keys in the order of their inputs.
    void getKeysOrderArray(std::vector<int>& out);
    // A key of a quaternion curve, by slot. A missing one reads as the identity and refuses to be written: false.
    Qelp::Quat getRotationKey(int slot) const;
    bool setRotationKey(int slot, Qelp::Quat const& value);
    int getKeyCount() const { return int(at<db::FloatArrayAttribute>(KeyframeInputValues).raw().size()); }

    void compute(std::uint64_t todo) override;

private:
    void computeRotation();
    db::CompositeAttribute* rotationKey(int slot) const;
    bool isRotation() const { return at<db::EnumAttribute>(OutputMode).raw() == 1; }
    void prepare();
    void prepareKeys();
    CurveKeys keys();
    void computeBounds();
    void computeBatch();

    // One cache line: a frame touches it, the node's state and the three hot attributes, and the keys.
    alignas(64) unsigned hint_ = 0;
    bool isRotationCurve_ = false;
    Input inputRoom_[1];
    PreparedCurve curve_;  // its first 24 bytes
    std::vector<Qelp::Quat> rotations_;
};

}  // namespace sg
