#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/value_fixture.h"

namespace Tavo {
namespace {

class QuaternionFunctions : public ScriptValues {
protected:
    QuaternionFunctions() {
        run("q, p = function() return quat(0.48, 0, 0.6, 0.64) end, quat(0, 0.6, 0, 0.8)\n"
            "a, b = mat(0,1,0,0, -1,0,0,0, 0,0,1,0, 1,2,3,1), mat(1,0,0,0, 0,0,1,0, 0,-1,0,0, 4,5,6,1)");
    }
    static XQuaternion q() { return {0.48f, 0, 0.6f, 0.64f}; }
    static XQuaternion p() { return {0, 0.6f, 0, 0.8f}; }
    XMatrix const a{XVector3(0, 1, 0), XVector3(-1, 0, 0), XVector3(0, 0, 1), XVector3(1, 2, 3)},
        b{XVector3(1, 0, 0), XVector3(0, 0, 1), XVector3(0, -1, 0), XVector3(4, 5, 6)};
};

TEST_F(QuaternionFunctions, AreAllThereInTheirOrder) {
    EXPECT_EQ((std::vector<std::string>{"convertParentSpace",
                                        "convertToLocalSpace",
                                        "convertToWorldSpace",
                                        "crossProduct",
                                        "dotProduct",
                                        "interpolate",
                                        "isEqual",
                                        "isNormal",
                                        "isIdentity",
                                        "magnitude",
                                        "magnitudeSquared",
                                        "multiply",
                                        "normalize",
                                        "rotationAngle",
                                        "rotationAxis",
                                        "twistSwing",
                                        "twistSwingAngles",
                                        "relativeAngle",
                                        "rotateAxisAngle",
                                        "rotateX",
                                        "rotateY",
                                        "rotateZ",
                                        "set",
                                        "setMatrix",
                                        "setAxisAngle",
                                        "setTwistSwing",
                                        "setTwistSwingAngles",
                                        "setIdentity",
                                        "slerp"}),
              namesOf(Tavo::QuaternionFunctions()));
}

TEST_F(QuaternionFunctions, WithOneOperandChangeTheQuaternionAndGiveItBack) {
    expectBecomes(q().CrossProduct(p()), "q()", "crossProduct(p)");
    expectBecomes(q().Interpolate(p(), 0.25f), "q()", "interpolate(p, 0.25)");
    expectBecomes(XQuaternion().SphericalInterpolate(q(), p(), 0.25f), "q()", "slerp(p, 0.25)");
    expectBecomes(XQuaternion().Multiply(q(), p()), "q()", "multiply(p)");
}

TEST_F(QuaternionFunctions, WithTwoOperandsBecomeTheirResult) {
    expectBecomes(q().CrossProduct(p()), "quat(1, 0, 0, 0)", "crossProduct(q(), p)");
    expectBecomes(q().Interpolate(p(), 0.25f), "quat(1, 0, 0, 0)", "interpolate(q(), p, 0.25)");
    expectBecomes(XQuaternion().SphericalInterpolate(q(), p(), 0.25f), "quat(1, 0, 0, 0)", "slerp(q(), p, 0.25)");
    expectBecomes(XQuaternion().Multiply(q(), p()), "quat(1, 0, 0, 0)", "multiply(q(), p)");
    expectBecomes(XQuaternion().Multiply(q(), p()), "quat(1, 0, 0, 0)", "multiply(q(), 0, 0.6, 0, 0.8)");
}

TEST_F(QuaternionFunctions, ConvertBetweenSpaces) {
    expectBecomes(q().ConvertToLocalSpace(a), "q()", "convertToLocalSpace(a)");
    expectBecomes(q().ConvertToWorldSpace(a), "q()", "convertToWorldSpace(a)");
    expectBecomes(q().Multiply(a), "q()", "multiply(a)");
    expectBecomes(q().ConvertParentSpace(a, b), "q()", "convertParentSpace(a, b)");
}

TEST_F(QuaternionFunctions, Measure) {
    expectValue(1.0f, "quat(0, 3, 0, 4):magnitude()");
    expectValue(1.0f, "quat(0, 3, 0, 4):magnitudeSquared()");
    expectValue(0.512f, "q():dotProduct(p)");
    expectValue(q().RelativeAngle(p()), "q():relativeAngle(p)");
}

TEST_F(QuaternionFunctions, TellAxisAngleTwistAndSwing) {
    expectValue(2 * std::acos(0.8f), "p:rotationAngle()");
    expectValue(XVector3(0, 1, 0), "p:rotationAxis()");
    expectValue(q().RotationTwistSwing(), "q():twistSwing()");
    expectValue(q().RotationTwistSwingAngles(), "q():twistSwingAngles()");
}

TEST_F(QuaternionFunctions, Compare) {
    EXPECT_EQ("true false true", eval("return q():isEqual(0.48, 0, 0.6, 0.64), q():isEqual(p), q():isEqual(p, 2)"));
    EXPECT_EQ("true true false", eval("return q():isNormal(), quat(0, 0, 0, 1):isIdentity(), q():isIdentity(10)"));
}

TEST_F(QuaternionFunctions, TurnTheirFourNumbers) {
    expectBecomes(q().RotateX(0.5f), "q()", "rotateX(0.5)");
    expectBecomes(q().RotateY(0.5f), "q()", "rotateY(0.5)");
    expectBecomes(q().RotateZ(0.5f), "q()", "rotateZ(0.5)");
    expectBecomes(q().RotateAxisAngle(p(), 0.5f), "q()", "rotateAxisAngle(p, 0.5)");
}

TEST_F(QuaternionFunctions, SetTakesNumbersTablesAndVectorsAndKeepsTheLengthOne) {
    expectBecomes(p(), "q()", "set(0, 3, 0, 4)");
    expectBecomes(p(), "q()", "set({y = 3, w = 4})");
    expectBecomes(XQuaternion(0, 0.6f, 0.8f, 0), "q()", "set(vec(0, 3, 4))");
    expectBecomes(XQuaternion(), "q()", "set()");
    expectBecomes(XQuaternion(), "q()", "setIdentity()");
    expectBecomes(p(), "quat(0, 3, 0, 4)", "normalize()");
}

TEST_F(QuaternionFunctions, BecomeRotationsToldInOtherWays) {
    expectBecomes(XQuaternion().SetRotationMatrix(a), "q()", "setMatrix(a)");
    expectBecomes(p(), "q()", "setAxisAngle({0, 1, 0}, 2 * math.acos(0.8))");
    expectBecomes(q(), "quat(0, 0, 0, 1)", "setTwistSwing(q():twistSwing())");
    expectBecomes(q(), "quat(0, 0, 0, 1)", "setTwistSwingAngles(q():twistSwingAngles())");
}

TEST_F(QuaternionFunctions, WhatIsLeftOutIsTheIdentity) {
    expectBecomes(q(), "q()", "interpolate()");
    expectBecomes(XQuaternion(), "q()", "setMatrix()");
    expectValue(0.64f, "q():dotProduct()");
}

TEST_F(QuaternionFunctions, AWrongKindNamesFunctionAndArgument) {
    EXPECT_EQ("script:2: Quaternion:multiply: argument 1 (aOrMatrix) must be a quaternion, not string",
              failure("q():multiply('x')"));
    EXPECT_EQ("script:2: Quaternion:setMatrix: argument 1 (matrix) must be a matrix of 16 numbers",
              failure("q():setMatrix(p)"));
    EXPECT_EQ("script:2: Quaternion:set: argument 1 (value) must be a table or 4 numbers", failure("q():set(1, 2, 3)"));
}

TEST_F(QuaternionFunctions, AreSoundWhateverTheyAreGiven) { expectSound("sampleQuaternion"); }

}  // namespace
}  // namespace Tavo
