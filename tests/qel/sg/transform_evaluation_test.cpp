#include "qel/sg/transform_evaluation.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace sg;
using Qelp::Matrix34;
using Qelp::Vector3;

namespace {

constexpr unsigned seed = 22;
// Entries up to 10 or so, with a rounding of 6e-8 each in products of six matrices.
constexpr float tolerance = 2e-5F;

void expectEqual(Matrix34 const& a, Matrix34 const& b) {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) ASSERT_NEAR(a.m[i][j], b.m[i][j], tolerance) << i << ", " << j;
}

class Random {
public:
    void fill(float (&v)[3], float low, float high) {
        for (float& x : v) x = std::uniform_real_distribution<float>(low, high)(m_engine);
    }
    TransformInputs inputs(int source, int order) {
        TransformInputs in;
        fill(in.translation, -2, 2);
        fill(in.rotation, -2, 2);
        fill(in.scale, 0.3F, 2);
        fill(in.scalePivot, -2, 2);
        fill(in.scalePivotTranslation, -2, 2);
        fill(in.preTranslation, -2, 2);
        fill(in.preRotation, -4, 4);
        fill(in.postRotation, -4, 4);
        for (float& x : in.quaternion) x = std::normal_distribution<float>()(m_engine);
        for (auto& row : in.localMatrixInput.m)
            for (int j = 0; j < 3; ++j) row[j] = std::normal_distribution<float>()(m_engine);
        in.eulerOrder = order;
        in.dataSource = source;
        return in;
    }

private:
    std::mt19937 m_engine{seed};
};

Matrix34 product(TransformInputs const& in) {
    Matrix34 out = localScaleMatrix(in);
    for (auto const& component : {localPostRotationMatrix(in), localRotationMatrix(in), localPreRotationMatrix(in),
                                  localTranslationMatrix(in), localPreTranslationMatrix(in)})
        out = Qelutils::multiply(out, component);
    return out;
}

Matrix34 evaluated(TransformInputs const& in) {
    Matrix34 out;
    localMatrix(in, out);
    return out;
}

Vector3 transformed(float x, float y, float z, Matrix34 const& m) {
    Matrix34 point;
    point.m[3][0] = x;
    point.m[3][1] = y;
    point.m[3][2] = z;
    point = Qelutils::multiply(point, m);
    return {point.m[3][0], point.m[3][1], point.m[3][2]};
}

Matrix34 euler(float const (&v)[3], int order) {
    Matrix34 out;
    Qelutils::eulerToMatrix({v[0], v[1], v[2]}, order, out);
    return out;
}

}  // namespace

TEST(TransformEvaluation, DefaultInputsGiveTheIdentity) { EXPECT_EQ(evaluated({}), Matrix34()); }

TEST(TransformEvaluation, IsTheProductOfItsComponentsForEverySourceAndOrder) {
    SCOPED_TRACE(seed);
    Random random;
    for (int source = 0; source < 4; ++source)
        for (int order = 0; order < 6; ++order)
            for (int round = 0; round < 200; ++round) {
                TransformInputs const in = random.inputs(source, order);
                expectEqual(evaluated(in), product(in));
                if (HasFatalFailure()) return;
            }
}

// The composition once more, written out point by point.
TEST(TransformEvaluation, APointPassesThroughScalePostRotationRotationPreRotationAndTranslations) {
    Random random;
    for (int order = 0; order < 6; ++order) {
        TransformInputs const in = random.inputs(EulerSource, order);
        float p[3] = {0.3F, -1.2F, 0.8F};
        for (int i = 0; i < 3; ++i)
            p[i] = (p[i] - in.scalePivot[i]) * in.scale[i] + in.scalePivot[i] + in.scalePivotTranslation[i];
        Vector3 v = transformed(p[0], p[1], p[2], euler(in.postRotation, 0));
        v = transformed(v.x, v.y, v.z, euler(in.rotation, order));
        v = transformed(v.x, v.y, v.z, euler(in.preRotation, 0));
        Vector3 const result = transformed(0.3F, -1.2F, 0.8F, evaluated(in));
        EXPECT_NEAR(result.x, v.x + in.translation[0] + in.preTranslation[0], tolerance);
        EXPECT_NEAR(result.y, v.y + in.translation[1] + in.preTranslation[1], tolerance);
        EXPECT_NEAR(result.z, v.z + in.translation[2] + in.preTranslation[2], tolerance);
    }
}

TEST(TransformEvaluation, WithoutScaleTheTranslationIsTheSumOfBoth) {
    Random random;
    TransformInputs in = random.inputs(EulerSource, 3);
    for (int i = 0; i < 3; ++i) {
        in.scale[i] = 1;
        in.scalePivotTranslation[i] = 0;
    }
    Matrix34 const m = evaluated(in);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(m.m[3][i], in.translation[i] + in.preTranslation[i]);
}

TEST(TransformEvaluation, APivotWithoutScaleMovesNothing) {
    TransformInputs in;
    in.scalePivot[0] = 5;
    EXPECT_EQ(evaluated(in), Matrix34());
}

TEST(TransformEvaluation, ScaleKeepsThePivotInItsPlace) {
    TransformInputs in;
    in.scale[0] = 3;
    in.scalePivot[0] = 2;
    EXPECT_EQ(transformed(2, 0, 0, evaluated(in)), Vector3({2, 0, 0}));
    EXPECT_EQ(transformed(3, 0, 0, evaluated(in)), Vector3({5, 0, 0}));
}

TEST(TransformEvaluation, ScaleActsBeforeRotation) {
    TransformInputs in;
    in.scale[0] = 2;
    in.rotation[2] = static_cast<float>(std::acos(-1) / 2);
    Vector3 const v = transformed(1, 0, 0, evaluated(in));
    EXPECT_NEAR(v.x, 0, tolerance);
    EXPECT_NEAR(v.y, 2, tolerance);
}

TEST(TransformEvaluation, PreAndPostRotationAreXYZWhateverTheOrder) {
    TransformInputs in = Random().inputs(EulerSource, 5);
    TransformInputs other = in;
    other.eulerOrder = 0;
    EXPECT_EQ(localPreRotationMatrix(in), euler(in.preRotation, 0));
    EXPECT_EQ(localPostRotationMatrix(in), euler(in.postRotation, 0));
    EXPECT_EQ(localPreRotationMatrix(in), localPreRotationMatrix(other));
    EXPECT_NE(localRotationMatrix(in), localRotationMatrix(other));
}

TEST(TransformEvaluation, EachSourceReadsItsOwnRotation) {
    TransformInputs in = Random().inputs(EulerSource, 4);
    EXPECT_EQ(localRotationMatrix(in), euler(in.rotation, 4));
    in.dataSource = TwistSwingSource;
    Matrix34 expected;
    Qelutils::twistSwingToMatrix({in.rotation[0], in.rotation[1], in.rotation[2]}, expected);
    EXPECT_EQ(localRotationMatrix(in), expected);
    in.dataSource = QuaternionSource;
    Qelutils::quatToMatrix({in.quaternion[0], in.quaternion[1], in.quaternion[2], in.quaternion[3]}, expected);
    EXPECT_EQ(localRotationMatrix(in), expected);
    in.dataSource = LocalMatrixSource;
    Qelutils::rotationOf(in.localMatrixInput, expected);
    EXPECT_EQ(localRotationMatrix(in), expected);
}

TEST(TransformEvaluation, AnUnknownSourceIsEuler) {
    TransformInputs in = Random().inputs(EulerSource, 2);
    Matrix34 const expected = evaluated(in);
    for (int source : {-1, 4, 1000}) {
        in.dataSource = source;
        EXPECT_EQ(evaluated(in), expected);
    }
}

TEST(TransformEvaluation, TheLocalMatrixInputReplacesEverything) {
    TransformInputs in = Random().inputs(LocalMatrixSource, 0);
    EXPECT_EQ(evaluated(in), in.localMatrixInput);
    Matrix34 const expected = in.localMatrixInput;
    in.localMatrixInput.m[3][3] = 1;
    EXPECT_EQ(evaluated(in), expected) << "column 3 stays 0";
    localMatrix(in, in.localMatrixInput);
    EXPECT_EQ(in.localMatrixInput, expected);
}

TEST(TransformEvaluation, TheScaleOfALocalMatrixInputHoldsItsMirroring) {
    TransformInputs in;
    float const angles[3] = {0.4F, 1, -2};
    Matrix34 stretch;
    stretch.m[0][0] = 2;
    stretch.m[1][1] = 3;
    stretch.m[2][2] = -4;
    in.localMatrixInput = Qelutils::multiply(stretch, euler(angles, 0));
    in.dataSource = LocalMatrixSource;
    Vector3 const scale = localScale(in);
    EXPECT_NEAR(scale.x, 2, tolerance);
    EXPECT_NEAR(scale.y, 3, tolerance);
    EXPECT_NEAR(scale.z, -4, tolerance);
    expectEqual(localScaleMatrix(in), stretch);
}

TEST(TransformEvaluation, TheScaleIsTheAttributesOtherwise) {
    TransformInputs const in = Random().inputs(QuaternionSource, 0);
    EXPECT_EQ(localScale(in), Vector3({in.scale[0], in.scale[1], in.scale[2]}));
}

TEST(TransformEvaluation, OverwritesWhateverStoodInTheResult) {
    TransformInputs const in = Random().inputs(EulerSource, 1);
    Matrix34 out;
    for (auto& row : out.m)
        for (float& entry : row) entry = 99;
    localMatrix(in, out);
    EXPECT_EQ(out, evaluated(in));
}
