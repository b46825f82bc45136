#include "qel/sg/trajectory_node.h"
#include "qel/sg/element_parts.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"

namespace sg {
namespace {

template<class A> auto const& rawAt(char const* place) { return reinterpret_cast<A const*>(place)->raw(); }

PathRotationKey readRotationKey(db::Attribute const& key) {
    using T = TrajectoryNode;
    ElementParts const parts(key);
    int const first = parts.firstChildOf(1 + T::Orientation);
    auto const real = [&](int row) { return parts.read<db::FloatAttribute>(row); };
    return {real(1 + T::AttachPoint),
            parts.read<db::EnumAttribute>(1 + T::KeyInterpolation),
            {real(first), real(first + 1), real(first + 2), real(first + 3)},
            parts.read<db::Vector3Attribute>(1 + T::InTangent),
            parts.read<db::Vector3Attribute>(1 + T::OutTangent)};
}

float toFloat(double value) { return PathPoint(value, 0, 0).toVector().x; }

}  // namespace

// ---- which keys changed ----

void TrajectoryNode::note(db::Attribute const& a) {
    if (areAllChanged_) return;
    if (&a == &keyArray()) {
        areAllChanged_ = true;
    } else if (a.has(db::Attribute::outside) && a.block().array == &keyArray()) {
        int const slot = int(a.block().index);
        if (!written_.empty() && written_.back() == slot) return;
        written_.push_back(slot);
        noteSlots({slot, slot + 1});
    }
}

void TrajectoryNode::noteSlots(PathGeometry::Slots slots) {
    if (!changed_.empty() && changed_.back().to == slots.from)
        changed_.back().to = slots.to;
    else
        changed_.push_back(slots);
    std::size_t const most = keys_.size() / 2 + 1;
    areAllChanged_ = changed_.size() > most || written_.size() > most;
}

void TrajectoryNode::elementsChanged(db::ElementRun const& run) {
    if (run.array == &keyArray() && !areAllChanged_) {
        PathGeometry::Slots const slots{int(run.from), int(run.to)};
        gather(slots);
        noteSlots(slots);
    }
    TransformNode::elementsChanged(run);
}

void TrajectoryNode::valueChanged(db::Attribute& a) {
    note(a);
    TransformNode::valueChanged(a);
}

// What flows into a key is written without being noted, at the latest when its connection goes.
void TrajectoryNode::refreshValue(db::Attribute& a) {
    note(a);
    TransformNode::refreshValue(a);
}

bool TrajectoryNode::hasConnectedKey() const {
    return std::any_of(inputs, inputs + inputCount, [&](Input const& in) {
        return in.to->has(db::Attribute::outside) && in.to->block().array == &keyArray();
    });
}

void TrajectoryNode::gather(PathGeometry::Slots slots) {
    auto const blocks = keyArray().blocks();
    std::uint32_t const* const offsets = keyArray().elementLayout().offsets.data() + 1;
    std::uint32_t const number = offsets[KeyParameter], kind = offsets[Interpolation], in = offsets[InHandle],
                        position = offsets[Position], out = offsets[OutHandle];
    for (int slot = slots.from; slot < slots.to; ++slot) {
        char const* const block = reinterpret_cast<char const*>(blocks[std::size_t(slot)]);
        PathKey& key = keys_[std::size_t(slot)];
        key.number = rawAt<db::IntAttribute>(block + number);
        key.interpolation = rawAt<db::EnumAttribute>(block + kind);
        key.inHandle = rawAt<db::Vector3Attribute>(block + in);
        key.position = rawAt<db::Vector3Attribute>(block + position);
        key.outHandle = rawAt<db::Vector3Attribute>(block + out);
    }
}

void TrajectoryNode::gatherKeys() {
    areAllChanged_ = areAllChanged_ || hasConnectedKey();
    if (areAllChanged_) {
        keys_.resize(keyArray().size());
        gather({0, int(keys_.size())});
    } else
        for (int slot : written_) gather({slot, slot + 1});
    written_.clear();
}

// ---- evaluation by the graph ----

void TrajectoryNode::compute(std::uint64_t todo) {
    TransformNode::compute(todo);
    if (todo & lengthBit) computePath();
    if (todo & rotationsBit) computeRotations();
    if (todo & timesBit) computeTimes();
    if (todo & arcLengthsBit) computeArcLengths();
    if (todo & positionsBit) computePositions();
    if (todo & localCurveBit) computeLocalCurve();
    if (todo & worldCurveBit)
        at<db::Matrix34Attribute>(WorldCurveMatrix).raw() = Qelutils::multiply(
            at<db::Matrix34Attribute>(LocalCurveMatrix).raw(), at<db::Matrix34Attribute>(WorldMatrix).raw());
}

void TrajectoryNode::computePath() {
    gatherKeys();
    PathKeys const keys{keys_, at<db::FloatAttribute>(InterpolationTangentsCoeff).raw(),
                        CurveExtrapolation(at<db::EnumAttribute>(PreInfinity).raw()),
                        CurveExtrapolation(at<db::EnumAttribute>(PostInfinity).raw())};
    if (areAllChanged_)
        path_.update(keys);
    else
        path_.keysChanged(keys, changed_);
    areAllChanged_ = false;
    changed_.clear();
    at<db::FloatAttribute>(MaxArcLength).raw() = toFloat(path_.length());
}

void TrajectoryNode::computeRotations() {
    std::vector<PathRotationKey> keys;
    for (std::size_t slot = 0; slot < rotationArray().size(); ++slot)
        keys.push_back(readRotationKey(*rotationArray()[slot]));
    rotations_.update(keys);
}

void TrajectoryNode::computeTimes() {
    double const first = at<db::FloatAttribute>(TimingCurveFirstKeyTime).raw();
    double const last = at<db::FloatAttribute>(TimingCurveLastKeyTime).raw();
    int const count = std::clamp(at<db::IntAttribute>(TimingHandlesNum).raw(), 0, mostTimingHandles);
    std::vector<float>& times = at<db::FloatArrayAttribute>(TimingHandlesTimesArray).raw();
    times.resize(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        double const share = count > 1 ? double(i) / (count - 1) : 0;
        times[std::size_t(i)] = toFloat(first * (1 - share) + last * share);
    }
}

// Unless a connection brings them.
void TrajectoryNode::computeArcLengths() {
    auto& array = at<db::FloatArrayAttribute>(TimingHandlesArcLengthsArray);
    if (inputOf(array) >= 0) return;
    AnimationNode* curve = getTimingCurve();
    std::vector<float> const& times = std::as_const(at<db::FloatArrayAttribute>(TimingHandlesTimesArray)).raw();
    std::vector<float>& out = array.raw();
    out.clear();
    float fraction = 0;
    for (std::size_t i = 0; curve && i < times.size() && curve->compute(times[i], fraction); ++i)
        out.push_back(fraction);
}

void TrajectoryNode::computePositions() {
    std::vector<float> const& fractions =
        std::as_const(at<db::FloatArrayAttribute>(TimingHandlesArcLengthsArray)).raw();
    std::vector<Qelp::Vector3>& out = at<db::Vector3ArrayAttribute>(TimingHandlesPositionsArray).raw();
    out.assign(fractions.size(), {});
    for (std::size_t i = 0; i < fractions.size(); ++i) path_.positionAt(fractions[i], out[i]);
}

void TrajectoryNode::computeLocalCurve() {
    double const fraction = at<db::FloatAttribute>(InputValue).raw();
    Qelp::Matrix34& m = at<db::Matrix34Attribute>(LocalCurveMatrix).raw();
    Qelutils::quatToMatrix(rotations_.at(path_.parameterInside(fraction)), m);
    Qelp::Vector3 position;
    path_.positionAt(fraction, position);
    m.m[3][0] = position.x, m.m[3][1] = position.y, m.m[3][2] = position.z;
}

AnimationNode* TrajectoryNode::getTimingCurve() const {
    db::Attribute* const from = graph().getInputAttribute(&at<db::Attribute>(InputValue));
    if (!from || !from->node().isOfType(AnimationNode::Def)) return nullptr;
    auto& curve = static_cast<AnimationNode&>(from->node());
    return from == &curve.at<db::Attribute>(AnimationNode::OutputValue) ? &curve : nullptr;
}

// ---- evaluation by callers ----

PathGeometry const& TrajectoryNode::getPath() {
    update(lengthBit);
    return path_;
}

PathRotations const& TrajectoryNode::getRotations() {
    update(rotationsBit);
    return rotations_;
}

bool TrajectoryNode::computePosition(double fraction, Qelp::Vector3& position, double) {
    return getPath().positionAt(fraction, position);
}

bool TrajectoryNode::computePosition_parameter(double parameter, Qelp::Vector3& position) {
    return getPath().positionAtParameter(parameter, position);
}

Qelp::Quat TrajectoryNode::computeRotation_parameter(double parameter) { return getRotations().at(parameter); }

double TrajectoryNode::arcLengthMap(double parameter) { return getPath().fractionAt(parameter); }
double TrajectoryNode::inverseArcLengthMap(double fraction) { return getPath().parameterAt(fraction); }

void TrajectoryNode::getTranslationKeysOrderArray(std::vector<int>& out) { out = getPath().order(); }
int TrajectoryNode::isTranslationKeyframe(int parameter) { return getPath().findKey(parameter); }

void TrajectoryNode::getRotationKeysOrderArray(std::vector<int>& out) { out = getRotations().order(); }

int TrajectoryNode::isRotationKeyframe(double attachPoint, double tolerance) {
    return getRotations().findKey(attachPoint, tolerance);
}

bool TrajectoryNode::getTranslationInputTangentControlPoint(int parameter, Qelp::Vector3& point) {
    return getPath().inputControlPoint(parameter, point);
}

bool TrajectoryNode::getTranslationOutputTangentControlPoint(int parameter, Qelp::Vector3& point) {
    return getPath().outputControlPoint(parameter, point);
}

bool TrajectoryNode::findRaysClosestPointOnCurveParallelProjection(Qelp::Vector3 const& origin,
                                                                   Qelp::Vector3 const& direction, double& fraction) {
    return getPath().nearest(PathRay::parallel(PathPoint(origin), PathPoint(direction)), fraction);
}

bool TrajectoryNode::findRaysClosestPointOnCurvePerspectiveProjection(Qelp::Vector3 const& eye,
                                                                      Qelp::Vector3 const& origin,
                                                                      Qelp::Vector3 const& direction,
                                                                      double& fraction) {
    return getPath().nearest(PathRay::perspective(PathPoint(eye), PathPoint(origin), PathPoint(direction)), fraction);
}

}  // namespace sg
