// A joint below a turned parent in a new scene, random transforms, and comparisons within a tolerance.
#pragma once
#include "tests/app/fixture.h"
#include <random>

namespace Tavo {

struct TransformTest : StartedApplication {
    TransformTest() {
        parent = scene().CreateObject(XTransform::TypeID);
        joint = scene().CreateObject(XJoint::TypeID, parent);
        parent.SetTranslation(1, 2, 3).SetRotationEulerAngles(0.3F, -0.4F, 0.5F);
    }
    float number(float limit) { return std::uniform_real_distribution<float>(-limit, limit)(random); }
    XVector3 vector(float limit) { return {number(limit), number(limit), number(limit)}; }
    XQuaternion quaternion() { return XQuaternion(vector(1.4F)); }
    XMatrix place() { return XMatrix(quaternion()).SetTranslation(vector(5)); }
    // Pre translation, pre and post rotation away from zero.
    void offset(XTransform transform) {
        transform.SetPreTranslation(vector(2)).SetPreRotationEulerAngles(vector(1)).SetPostRotationEulerAngles(
            vector(1));
    }
    static std::vector<float> numbers(XMatrix const& m) {
        std::vector<float> out;
        for (int i = 0; i < 16; ++i) out.push_back(m.Element(i / 4, i % 4));
        return out;
    }
    void setTime(float t) { time().Time().SetFloat(t); }

    static constexpr unsigned seed = 4711;
    std::mt19937 random{seed};
    XTransform parent;
    XJoint joint;
};

#define EXPECT_MATRIX(a, b) EXPECT_THAT(numbers(a), testing::Pointwise(testing::FloatNear(2e-5F), numbers(b)))
#define EXPECT_VECTOR(a, b) EXPECT_TRUE((a).IsEqual(b, 2e-5F)) << (a).X() << " " << (a).Y() << " " << (a).Z()

}  // namespace Tavo
