#include "qel/sg/animation_node.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <utility>

namespace sg {
namespace {

template<class A> auto const& values(AnimationNode const& n, int row) { return std::as_const(n.at<A>(row)).raw(); }

// Null when it does not hold an element for each key.
template<class T> T const* dataOf(std::vector<T> const& v, std::size_t count) {
    return v.size() >= count ? v.data() : nullptr;
}

}  // namespace

AnimationNode::AnimationNode(db::NodeDef const& def) : Node(def, inputRoom_, std::size(inputRoom_)) {}

// ---- the keys ----

CurveKeys AnimationNode::keys() {
    auto const& inputs = values<db::FloatArrayAttribute>(*this, KeyframeInputValues);
    auto const& outputs = values<db::FloatArrayAttribute>(*this, KeyframeOutputValues);
    CurveKeys k;
    k.inputs = inputs.data();
    k.pre = CurveExtrapolation(at<db::EnumAttribute>(PreExtrapolation).raw());
    k.post = CurveExtrapolation(at<db::EnumAttribute>(PostExtrapolation).raw());
    if (isRotation()) {
        k.count = unsigned(std::min(inputs.size(), rotations_.size()));
        k.rotations = rotations_.data();
        return k;
    }
    k.count = unsigned(std::min(inputs.size(), outputs.size()));
    k.outputs = outputs.data();
    k.interpolations = dataOf(values<db::EnumArrayAttribute>(*this, KeyframeInterpolations), k.count);
    k.continuities = dataOf(values<db::EnumArrayAttribute>(*this, KeyframeContinuities), k.count);
    k.inTangentsX = dataOf(values<db::FloatArrayAttribute>(*this, KeyframeInTangentsX), k.count);
    k.inTangentsY = dataOf(values<db::FloatArrayAttribute>(*this, KeyframeInTangentsY), k.count);
    k.outTangentsX = dataOf(values<db::FloatArrayAttribute>(*this, KeyframeOutTangentsX), k.count);
    k.outTangentsY = dataOf(values<db::FloatArrayAttribute>(*this, KeyframeOutTangentsY), k.count);
    if (!k.inTangentsX || !k.inTangentsY || !k.outTangentsX || !k.outTangentsY)
        k.inTangentsX = k.inTangentsY = k.outTangentsX = k.outTangentsY = nullptr;
    return k;
}

void AnimationNode::prepareKeys() {
    isRotationCurve_ = isRotation();
    rotations_.clear();
    int const count = isRotationCurve_ ? int(at<db::AttributeArray>(KeyframeOutputValuesQuat).size()) : 0;
    for (int i = 0; i < count; ++i) rotations_.push_back(getRotationKey(i));
    curve_.update(keys());
}

db::CompositeAttribute* AnimationNode::rotationKey(int slot) const {
    db::Attribute* key =
        slot < 0 ? nullptr : at<db::AttributeArray>(KeyframeOutputValuesQuat).getElement(std::size_t(slot));
    return key ? key->asComposite() : nullptr;
}

Qelp::Quat AnimationNode::getRotationKey(int slot) const {
    db::CompositeAttribute const* key = rotationKey(slot);
    if (!key) return {};
    auto part = [&](std::size_t c) { return key->getAttribute(c)->asFloat()->raw(); };
    return {part(0), part(1), part(2), part(3)};
}

bool AnimationNode::setRotationKey(int slot, Qelp::Quat const& value) {
    db::CompositeAttribute* key = rotationKey(slot);
    if (!key) return false;
    float const parts[] = {value.x, value.y, value.z, value.w};
    for (std::size_t c = 0; c < 4; ++c) key->getAttribute(c)->asFloat()->setValue(parts[c]);
    return true;
}

void AnimationNode::prepare() { update(keysBit); }

// ---- evaluation by the graph ----

void AnimationNode::compute(std::uint64_t todo) {
    if (todo & keysBit) prepareKeys();
    if ((todo & valueBit) && !isRotationCurve_)
        at<db::FloatAttribute>(OutputValue).raw() = curve_.evaluate(at<db::FloatAttribute>(InputValue).raw(), hint_,
                                                                    at<db::FloatAttribute>(ExternalValue).raw());
    if (todo & rotationBit) computeRotation();
    if (todo & boundsBit) computeBounds();
    if (todo & batchBit) computeBatch();
}

void AnimationNode::computeRotation() {
    Qelp::Quat q;
    if (isRotationCurve_) q = curve_.evaluateRotation(at<db::FloatAttribute>(InputValue).raw(), hint_);
    at<db::QuaternionAttribute>(OutputValueQuat).raw() = q;
    Qelp::Matrix34 m;
    Qelutils::quatToMatrix(q, m);
    Qelp::Vector3 const euler = Qelutils::matrixToEuler(m, 0);
    at<db::FloatAttribute>(OutputValueEulerX).raw() = euler.x;
    at<db::FloatAttribute>(OutputValueEulerY).raw() = euler.y;
    at<db::FloatAttribute>(OutputValueEulerZ).raw() = euler.z;
}

void AnimationNode::computeBounds() {
    CurveBounds const b = curve_.bounds();
    at<db::FloatAttribute>(KeyframeMinX).raw() = b.minInput;
    at<db::FloatAttribute>(KeyframeMaxX).raw() = b.maxInput;
    at<db::FloatAttribute>(KeyframeMinY).raw() = b.minOutput;
    at<db::FloatAttribute>(KeyframeMaxY).raw() = b.maxOutput;
}

void AnimationNode::computeBatch() {
    auto const& inputs = values<db::FloatArrayAttribute>(*this, InputValuesArray);
    std::vector<float>& out = at<db::FloatArrayAttribute>(OutputValuesArray).raw();
    float const external = at<db::FloatAttribute>(ExternalValue).raw();
    out.resize(inputs.size());
    unsigned hint = 0;
    for (std::size_t i = 0; i < inputs.size(); ++i)
        out[i] = isRotationCurve_ ? 0 : curve_.evaluate(inputs[i], hint, external);
}

// ---- evaluation by callers ----

bool AnimationNode::compute(float input, float& out) {
    prepare();
    if (isRotationCurve_) return false;
    unsigned hint = hint_;
    out = curve_.evaluate(input, hint, at<db::FloatAttribute>(ExternalValue).getValue());
    return true;
}

bool AnimationNode::compute(float input, Qelp::Quat& out) {
    prepare();
    if (!isRotationCurve_) return false;
    unsigned hint = hint_;
    out = curve_.evaluateRotation(input, hint);
    return true;
}

void AnimationNode::compute(float from, float to, std::vector<CurvePoint>& points) {
    prepare();
    points.clear();
    if (!isRotationCurve_) curve_.points(from, to, points);
}

float AnimationNode::computePreGradient() {
    prepare();
    return isRotationCurve_ ? 0 : curve_.preGradient();
}

float AnimationNode::computePostGradient() {
    prepare();
    return isRotationCurve_ ? 0 : curve_.postGradient();
}

bool AnimationNode::getInputTangentControlPoint(int rank, float& out) {
    prepare();
    CurvePoint p;
    if (isRotationCurve_ || rank < 0 || unsigned(rank) >= curve_.count() ||
        !curve_.inputTangentControlPoint(unsigned(rank), p))
        return false;
    out = p.y;
    return true;
}

bool AnimationNode::getOutputTangentControlPoint(int rank, float& out) {
    prepare();
    CurvePoint p;
    if (isRotationCurve_ || rank < 0 || unsigned(rank) >= curve_.count() ||
        !curve_.outputTangentControlPoint(unsigned(rank), p))
        return false;
    out = p.y;
    return true;
}

void AnimationNode::getKeysOrderArray(std::vector<int>& out) {
    prepare();
    out.resize(curve_.count());
    for (unsigned rank = 0; rank < curve_.count(); ++rank) out[rank] = int(curve_.slotOf(rank));
}

}  // namespace sg
