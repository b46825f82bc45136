#include "qel/sg/matrix_conversion_node.h"
#include "qel/sg/matrix_split.h"
#include "qel/sg/scene.h"
#include <cmath>

namespace sg {
namespace {

float finite(float value) { return std::isfinite(value) ? value : 0; }

}  // namespace

void MatrixConversionNode::compute(std::uint64_t todo) {
    if (todo & translationBit) computeTranslation();
    if (todo & rotationBit) computeRotation();
}

void MatrixConversionNode::computeTranslation() {
    MatrixSplit split;
    split.matrix = readMatrix();
    split.preTranslation = read(PreTranslation);
    split.splitTranslation();
    write(Translation, split.translation);
}

void MatrixConversionNode::computeRotation() {
    MatrixSplit split;
    split.matrix = readMatrix();
    split.preRotation = read(PreRotation);
    split.postRotation = read(PostRotation);
    split.splitRotation();
    write(Rotation, split.rotation);
    auto const& [x, y, z, w] = split.quaternion;
    int const first = layout().rows[RotationQuaternion].firstChild;
    write(first, {x, y, z});
    at<db::FloatAttribute>(first + 3).raw() = w;
}

float MatrixConversionNode::real(int row) const { return finite(at<db::FloatAttribute>(row).raw()); }

Qelp::Matrix34 MatrixConversionNode::readMatrix() const {
    Qelp::Matrix34 m = at<db::Matrix34Attribute>(InputMatrix).raw();
    for (auto& row : m.m)
        for (float& value : row) value = finite(value);
    return m;
}

void MatrixConversionNode::write(int first, Qelp::Vector3 const& value) {
    at<db::FloatAttribute>(first).raw() = value.x;
    at<db::FloatAttribute>(first + 1).raw() = value.y;
    at<db::FloatAttribute>(first + 2).raw() = value.z;
}

}  // namespace sg
