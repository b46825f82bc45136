#include "qel/sg/rig_nodes.h"
#include "qel/sg/constraint_nodes.h"
#include "qel/sg/matrix_split.h"
#include "qel/sg/raw_values.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <algorithm>

namespace sg {

namespace {

Qelp::Vector3 vectorOf(float const (&v)[3]) { return {finite(v[0]), finite(v[1]), finite(v[2])}; }

// Of the transform that has this channel.
TransformInputs inputsOf(db::Attribute const* channel) {
    if (!channel || !channel->hasParentNode(TransformNode::Def)) return {};
    return static_cast<TransformNode&>(channel->node()).getInputs();
}

}  // namespace

// ---- pole vector ----

void PoleVectorNode::compute(std::uint64_t todo) {
    TransformNode::compute(todo);
    if (todo & aboveWorldBit) at<db::Matrix34Attribute>(PoleVector).raw() = poleVector();
}

double PoleVectorNode::weight() const {
    if (!at<db::BoolAttribute>(Enabled).raw()) return 0;
    return std::clamp(finite(at<db::FloatAttribute>(Weight).raw()), 0.F, 1.F);
}

Qelp::Matrix34 PoleVectorNode::poleVector() const {
    Affine const space = toAffine(at<db::Matrix34Attribute>(SpaceWorldMatrix).raw());
    Affine const place = multiply(toAffine(at<db::Matrix34Attribute>(WorldMatrix).raw()), inverse(space));
    Affine out = toAffine(rotationOf(place), place.row(3));
    for (int i = 0; i < 3; ++i)
        for (double& value : out.m[i]) value *= weight();
    return toMatrix(out);
}

// ---- pin ----

void PinNode::compute(std::uint64_t) {
    readTargets(at<db::AttributeArray>(InputMatrices), blend_.targets);
    blend_.parentWorld = at<db::Matrix34Attribute>(ParentWorldIn).raw();
    blend_.Run();
    at<db::Matrix34Attribute>(LocalMatrix).raw() = blend_.local;
}

void PinNode::setPinned(bool pinned) {
    db::AttributeArray const& targets = at<db::AttributeArray>(InputMatrices);
    auto const matrixOf = [&](std::size_t i) {
        return targets.getElement(i)->asComposite()->getAttribute(KinematicsConstraintNode::TargetMatrix);
    };
    for (std::size_t i = 0; pinned && i < targets.size(); ++i) graph().disconnectInput(matrixOf(i));
    db::Attribute* const world = reference(WorldMatrixReference);
    if (!pinned && world && !targets.empty()) graph().connect(world, matrixOf(0));
    at<db::BoolAttribute>(Pinned).setValue(pinned);
}

double PinNode::share() const {
    std::vector<BlendTarget> targets;
    readTargets(at<db::AttributeArray>(InputMatrices), targets);
    double sum = 0;
    for (BlendTarget const& target : targets) sum += target.usableWeight();
    return std::min(sum, 1.0);
}

Qelp::Matrix34 PinNode::heldPlace(double share) const {
    TargetBlend held;
    held.targets.push_back({at<db::Matrix34Attribute>(LocalMatrix).getValue(), {}, share});
    db::Attribute const* const present = reference(LocalMatrixReference);
    if (present && present->isMatrix34()) held.targets.push_back({present->asMatrix34()->getValue(), {}, 1 - share});
    held.Run();
    return held.local;
}

void PinNode::writeChannel(int number, float value) {
    db::Attribute* const channel = reference(number);
    if (channel && channel->isFloat() && !graph().getInputAttribute(channel)) channel->asFloat()->setValue(value);
}

bool PinNode::hold() {
    if (!at<db::BoolAttribute>(Pinned).getValue()) return false;
    callCompute(at<db::Attribute>(LocalMatrix));  // which brings the weights up to date
    if (share() == 0) return false;
    TransformInputs const in = inputsOf(reference(TranslationReference));
    MatrixSplit split{heldPlace(share()),
                      vectorOf(in.preTranslation),
                      vectorOf(in.preRotation),
                      vectorOf(in.postRotation),
                      {},
                      {},
                      {}};
    if (!split.Run()) return false;
    Qelp::Matrix34 turn;
    Qelutils::quatToMatrix(split.quaternion, turn);
    Qelp::Vector3 const angles = Qelutils::matrixToEuler(turn, in.eulerOrder), &to = split.translation;
    float const values[] = {to.x, to.y, to.z, angles.x, angles.y, angles.z};
    for (int i = 0; i < 6; ++i) writeChannel(TranslationReference + i, values[i]);
    return true;
}

// ---- copies ----

bool CopyMatrixNode::write(Qelp::Matrix34 const& value) {
    db::Attribute* const target = at<db::PointerAttribute>(OutputReference).getValue();
    if (!target || !target->isMatrix34() || target->has(db::Attribute::live)) return false;
    target->asMatrix34()->setValue(value);
    return true;
}

std::size_t copyMatrices(Node const& parent) {
    std::vector<std::pair<CopyMatrixNode*, Qelp::Matrix34>> all;
    for (std::size_t i = 0; i < parent.getChildCount(); ++i)
        if (Node* child = parent.getChild(i); child->isOfType(CopyMatrixNode::Def))
            all.emplace_back(static_cast<CopyMatrixNode*>(child),
                             child->at<db::Matrix34Attribute>(CopyMatrixNode::Input).getValue());
    std::size_t copied = 0;
    for (auto const& [node, value] : all) copied += node->write(value);
    return copied;
}

}  // namespace sg
