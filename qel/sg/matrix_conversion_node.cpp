#include "qel/sg/matrix_conversion_node.h"
#include "qel/sg/matrix_split.h"
#include "qel/sg/raw_values.h"
#include "qel/sg/scene.h"

namespace sg {

void MatrixConversionNode::compute(std::uint64_t todo) {
    if (todo & translationBit) computeTranslation();
    if (todo & rotationBit) computeRotation();
}

void MatrixConversionNode::computeTranslation() {
    MatrixSplit split;
    split.matrix = readMatrix();
    split.preTranslation = readVector(*this, PreTranslation);
    split.splitTranslation();
    writeVector(*this, Translation, split.translation);
}

void MatrixConversionNode::computeRotation() {
    MatrixSplit split;
    split.matrix = readMatrix();
    split.preRotation = readVector(*this, PreRotation);
    split.postRotation = readVector(*this, PostRotation);
    split.splitRotation();
    writeVector(*this, Rotation, split.rotation);
    auto const& [x, y, z, w] = split.quaternion;
    int const first = layout().rows[RotationQuaternion].firstChild;
    writeVector(*this, first, {x, y, z});
    at<db::FloatAttribute>(first + 3).raw() = w;
}

Qelp::Matrix34 MatrixConversionNode::readMatrix() const {
    Qelp::Matrix34 m = at<db::Matrix34Attribute>(InputMatrix).raw();
    for (auto& row : m.m)
        for (float& value : row) value = finite(value);
    return m;
}

}  // namespace sg
