#include "qel/sg/transform_node.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"

namespace sg {

void TransformBaseNode::compute(std::uint64_t todo) {
    if (todo & preparedBit) prepare();
    Qelp::Matrix34& local = at<db::Matrix34Attribute>(LocalMatrix).raw();
    if (todo & localBit) computeLocal(local);
    if (todo & worldBit)
        at<db::Matrix34Attribute>(WorldMatrix).raw() =
            Qelutils::multiply(local, at<db::Matrix34Attribute>(ParentWorldMatrix).raw());
}

void TransformBaseNode::onPlaceChanged(bool linked) {
    auto& parentWorld = at<db::Matrix34Attribute>(ParentWorldMatrix);
    if (!linked) {
        if (inputOf(parentWorld) < 0) return;
        graph().detach(parentWorld);
        parentWorld.raw() = Qelp::Matrix34();
        return;
    }
    Node* parent = getParent();
    if (parent && parent->isOfType(TransformBaseNode::Def))
        graph().attach(parent->at<db::Attribute>(WorldMatrix), parentWorld, nullptr, -1, -1);
}

TransformInputs TransformNode::getInputs() {
    update(getNodeDef().needs(0));
    TransformInputs in;
    readChannels(in);
    readRest(in);
    return in;
}

void TransformNode::prepare() { readRest(rest_); }

void TransformNode::computeLocal(Qelp::Matrix34& local) {
    readChannels(rest_);
    localMatrix(rest_, local);
}

void TransformNode::readChannels(TransformInputs& in) const {
    for (int i = 0; i < 3; ++i) in.translation[i] = real(Translation + i), in.rotation[i] = real(Rotation + i);
}

void TransformNode::readRest(TransformInputs& in) const {
    for (int i = 0; i < 3; ++i) {
        in.scale[i] = real(Scale + i);
        in.scalePivot[i] = real(ScalePivot + i);
        in.scalePivotTranslation[i] = real(ScalePivotTranslation + i);
        in.preTranslation[i] = real(PreTranslation + i);
        in.preRotation[i] = real(PreRotation + i);
        in.postRotation[i] = real(PostRotation + i);
    }
    int const quaternion = layout().rows[RotationQuaternion].firstChild;
    for (int i = 0; i < 4; ++i) in.quaternion[i] = real(quaternion + i);
    in.dataSource = at<db::EnumAttribute>(DataSource).raw();
    in.eulerOrder = at<db::EnumAttribute>(RotationEulerOrder).raw();
    in.localMatrixInput = at<db::Matrix34Attribute>(LocalMatrixInput).raw();
}

}  // namespace sg
