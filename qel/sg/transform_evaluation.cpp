#include "qel/sg/transform_evaluation.h"
#include "qel/utils/rotation_core.h"

namespace rotation = Qelutils::rotation;

namespace sg {
namespace {

bool isZero(float const (&v)[3]) { return v[0] == 0 && v[1] == 0 && v[2] == 0; }
bool isOne(float const (&v)[3]) { return v[0] == 1 && v[1] == 1 && v[2] == 1; }

bool hasScale(TransformInputs const& in) {
    return !isOne(in.scale) || !isZero(in.scalePivotTranslation);  // a pivot alone moves nothing
}

rotation::Triple triple(float const (&v)[3]) { return {v[0], v[1], v[2]}; }

rotation::Rotation sourceRotation(TransformInputs const& in) {
    switch (in.dataSource) {
    case TwistSwingSource: return rotation::fromQuaternion(rotation::fromTwistSwing(triple(in.rotation)));
    case QuaternionSource:
        return rotation::fromQuaternion({in.quaternion[0], in.quaternion[1], in.quaternion[2], in.quaternion[3]});
    case LocalMatrixSource: return rotation::orthonormal(in.localMatrixInput.m);
    default: return rotation::fromEuler(triple(in.rotation), in.eulerOrder);
    }
}

rotation::Rotation combinedRotation(TransformInputs const& in) {
    rotation::Rotation r = sourceRotation(in);
    if (!isZero(in.postRotation)) r = rotation::multiply(rotation::fromEuler(triple(in.postRotation), 0), r);
    if (!isZero(in.preRotation)) r = rotation::multiply(r, rotation::fromEuler(triple(in.preRotation), 0));
    return r;
}

// Where the origin comes to lie by the scale about its pivot.
double scaledOrigin(TransformInputs const& in, int axis) {
    double const pivot = in.scalePivot[axis];
    return pivot - pivot * in.scale[axis] + in.scalePivotTranslation[axis];
}

void applyScale(TransformInputs const& in, rotation::Rotation& r, double (&translation)[3]) {
    for (int i = 0; i < 3; ++i) {
        double const origin = scaledOrigin(in, i);
        for (int j = 0; j < 3; ++j) {
            translation[j] += origin * r.m[i][j];
            r.m[i][j] *= in.scale[i];
        }
    }
}

void copyAffine(Qelp::Matrix34 const& from, Qelp::Matrix34& to) {
    to = from;
    for (auto& row : to.m) row[3] = 0;
}

Qelp::Matrix34 matrixOf(rotation::Rotation const& r) {
    Qelp::Matrix34 out;
    rotation::store(r, out.m);
    return out;
}

Qelp::Matrix34 eulerMatrix(float const (&angles)[3]) { return matrixOf(rotation::fromEuler(triple(angles), 0)); }

Qelp::Matrix34 translationMatrix(float x, float y, float z) {
    return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {x, y, z, 0}}};
}

// The rows times the transposed rotation: lower triangular, the scale on the diagonal.
Qelp::Matrix34 withoutRotation(Qelp::Matrix34 const& m) {
    rotation::Rotation const r = rotation::orthonormal(m.m);
    Qelp::Matrix34 out;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out.m[i][j] = static_cast<float>(m.m[i][0] * r.m[j][0] + m.m[i][1] * r.m[j][1] + m.m[i][2] * r.m[j][2]);
    return out;
}

bool isMatrixSource(TransformInputs const& in) { return in.dataSource == LocalMatrixSource; }

}  // namespace

void localMatrix(TransformInputs const& in, Qelp::Matrix34& out) {
    if (isMatrixSource(in)) return copyAffine(in.localMatrixInput, out);
    rotation::Rotation r = combinedRotation(in);
    double translation[3];
    for (int j = 0; j < 3; ++j) translation[j] = double(in.translation[j]) + in.preTranslation[j];
    if (hasScale(in)) applyScale(in, r, translation);
    rotation::store(r, out.m);
    for (int j = 0; j < 3; ++j) {
        out.m[3][j] = static_cast<float>(translation[j]);
        out.m[j][3] = 0;
    }
    out.m[3][3] = 0;
}

Qelp::Matrix34 localScaleMatrix(TransformInputs const& in) {
    if (isMatrixSource(in)) return withoutRotation(in.localMatrixInput);
    Qelp::Matrix34 out;
    for (int i = 0; i < 3; ++i) {
        out.m[i][i] = in.scale[i];
        out.m[3][i] = static_cast<float>(scaledOrigin(in, i));
    }
    return out;
}

Qelp::Matrix34 localPostRotationMatrix(TransformInputs const& in) {
    return isMatrixSource(in) ? Qelp::Matrix34() : eulerMatrix(in.postRotation);
}

Qelp::Matrix34 localRotationMatrix(TransformInputs const& in) { return matrixOf(sourceRotation(in)); }

Qelp::Matrix34 localPreRotationMatrix(TransformInputs const& in) {
    return isMatrixSource(in) ? Qelp::Matrix34() : eulerMatrix(in.preRotation);
}

Qelp::Matrix34 localTranslationMatrix(TransformInputs const& in) {
    float const* const t = isMatrixSource(in) ? in.localMatrixInput.m[3] : in.translation;
    return translationMatrix(t[0], t[1], t[2]);
}

Qelp::Matrix34 localPreTranslationMatrix(TransformInputs const& in) {
    if (isMatrixSource(in)) return {};
    return translationMatrix(in.preTranslation[0], in.preTranslation[1], in.preTranslation[2]);
}

Qelp::Vector3 localScale(TransformInputs const& in) {
    if (!isMatrixSource(in)) return {in.scale[0], in.scale[1], in.scale[2]};
    Qelp::Matrix34 const m = withoutRotation(in.localMatrixInput);
    return {m.m[0][0], m.m[1][1], m.m[2][2]};
}

}  // namespace sg
