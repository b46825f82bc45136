#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/value_fixture.h"

namespace Tavo {
namespace {

class Vector3Functions : public ScriptValues {
protected:
    Vector3Functions() { run("v, w = function() return vec(1, 2, 3) end, vec(-2, 0.5, 4)"); }
    static XVector3 v() { return {1, 2, 3}; }
    static XVector3 w() { return {-2, 0.5f, 4}; }
};

TEST_F(Vector3Functions, AreAllThereInTheirOrder) {
    EXPECT_EQ((std::vector<std::string>{"add",
                                        "convertParentSpace",
                                        "convertToLocalSpace",
                                        "convertToWorldSpace",
                                        "crossProduct",
                                        "distance",
                                        "distanceSquared",
                                        "dotProduct",
                                        "interpolate",
                                        "isEqual",
                                        "isNormal",
                                        "isZero",
                                        "magnitude",
                                        "magnitudeSquared",
                                        "multiply",
                                        "normalize",
                                        "polarAngle",
                                        "relativeAngle",
                                        "rotateAxisAngle",
                                        "rotateX",
                                        "rotateY",
                                        "rotateZ",
                                        "scale",
                                        "set",
                                        "setZero",
                                        "slerp",
                                        "subtract"}),
              namesOf(Tavo::Vector3Functions()));
}

TEST_F(Vector3Functions, WithOneOperandChangeTheVectorAndGiveItBack) {
    expectBecomes(XVector3(-1, 2.5f, 7), "v()", "add(w)");
    expectBecomes(XVector3(3, 1.5f, -1), "v()", "subtract(w)");
    expectBecomes(v().CrossProduct(w()), "v()", "crossProduct(w)");
    expectBecomes(XVector3(-0.5f, 1.25f, 3.5f), "v()", "interpolate(w, 0.5)");
    expectBecomes(XVector3().SphericalInterpolate(v(), w(), 0.25f), "v()", "slerp(w, 0.25)");
}

TEST_F(Vector3Functions, WithTwoOperandsBecomeTheirResult) {
    expectBecomes(XVector3(-1, 2.5f, 7), "vec(9, 9, 9)", "add(v(), w)");
    expectBecomes(XVector3(3, 1.5f, -1), "vec(9, 9, 9)", "subtract(v(), w)");
    expectBecomes(v().CrossProduct(w()), "vec(9, 9, 9)", "crossProduct(v(), w)");
    expectBecomes(XVector3(-0.5f, 1.25f, 3.5f), "vec(9, 9, 9)", "interpolate(v(), w, 0.5)");
    expectBecomes(XVector3().SphericalInterpolate(v(), w(), 0.25f), "vec(9, 9, 9)", "slerp(v(), w, 0.25)");
}

TEST_F(Vector3Functions, TakeNumbersInPlaceOfAnOperand) {
    expectBecomes(XVector3(5, 7, 9), "v()", "add(4, 5, 6)");
    expectBecomes(XVector3(5, 7, 9), "vec(0, 0, 0)", "add(1, 2, 3, 4, 5, 6)");
    expectBecomes(XVector3(2, 3, 4), "v()", "interpolate(3, 4, 5, 0.5)");
    expectBecomes(XVector3(4, 5, 6), "vec(0, 0, 0)", "interpolate(v(), 7, 8, 9, 0.5)");
}

TEST_F(Vector3Functions, ConvertBetweenSpacesAsTheSystemDoes) {
    run("a, b = mat(0,1,0,0, -1,0,0,0, 0,0,1,0, 1,2,3,1), mat(1,0,0,0, 0,0,1,0, 0,-1,0,0, 4,5,6,1)");
    XMatrix const a(XVector3(0, 1, 0), XVector3(-1, 0, 0), XVector3(0, 0, 1), XVector3(1, 2, 3)),
        b(XVector3(1, 0, 0), XVector3(0, 0, 1), XVector3(0, -1, 0), XVector3(4, 5, 6));
    expectBecomes(v().ConvertToLocalSpace(a), "v()", "convertToLocalSpace(a)");
    expectBecomes(v().ConvertToWorldSpace(a), "v()", "convertToWorldSpace(a)");
    expectBecomes(v().ConvertParentSpace(a, b), "v()", "convertParentSpace(a, b)");
}

TEST_F(Vector3Functions, Measure) {
    expectValue(std::sqrt(14.0f), "v():magnitude()");
    expectValue(14.0f, "v():magnitudeSquared()");
    expectValue(12.25f, "v():distanceSquared(1, 2, 6.5)");
    expectValue(3.5f, "v():distance({x = 1, y = 2, z = 6.5})");
    expectValue(11.0f, "v():dotProduct(w)");
    expectValue(float(M_PI / 4), "vec(1, 5, 1):polarAngle()");
    expectValue(float(M_PI / 2), "vec(2, 0, 0):relativeAngle(0, 3, 0)");
}

TEST_F(Vector3Functions, Compare) {
    EXPECT_EQ("true false true", eval("return v():isEqual(1, 2, 3), v():isEqual(w), v():isEqual({1, 2, 3.4}, 0.5)"));
    EXPECT_EQ("false true", eval("return v():isNormal(), vec(0, 1, 0):isNormal()"));
    EXPECT_EQ("false true true", eval("return v():isZero(), vec(0, 0, 0):isZero(), v():isZero(14)"));
}

TEST_F(Vector3Functions, AreTransformedByAMatrixAsAPlace) {
    expectBecomes(XVector3(-1, 3, 6), "v()", "multiply(mat(0,1,0,0, -1,0,0,0, 0,0,1,0, 1,2,3,1))");
    expectBecomes(XVector3(-1, 3, 6), "v()", "multiply(0,1,0,0, -1,0,0,0, 0,0,1,0, 1,2,3,1)");
}

TEST_F(Vector3Functions, AreMultipliedByAFactor) {
    expectBecomes(XVector3(-4, 1, 8), "v()", "multiply(2, w)");
    expectBecomes(XVector3(2, 4, 6), "v()", "multiply(2)");
    expectBecomes(XVector3(2, 4, 6), "v()", "scale(2)");
    expectBecomes(v(), "v()", "scale()");
    expectBecomes(v(), "v()", "multiply()");
}

TEST_F(Vector3Functions, Turn) {
    expectBecomes(XVector3(1, -3, 2), "v()", "rotateX(math.pi / 2)");
    expectBecomes(XVector3(3, 2, -1), "v()", "rotateY(math.pi / 2)");
    expectBecomes(XVector3(-2, 1, 3), "v()", "rotateZ(math.pi / 2)");
    expectBecomes(XVector3(-2, 1, 3), "v()", "rotateAxisAngle({0, 0, 1}, math.pi / 2)");
}

TEST_F(Vector3Functions, SetTakesNumbersTablesAndQuaternions) {
    expectBecomes(XVector3(4, 5, 6), "v()", "set(4, 5, 6)");
    expectBecomes(XVector3(0, 5, 0), "v()", "set({y = 5})");
    expectBecomes(XVector3(0, 0.6f, 0), "v()", "set(quat(0, 0.6, 0, 0.8))");
    expectBecomes(XVector3(), "v()", "set()");
    expectBecomes(XVector3(), "v()", "setZero()");
    expectBecomes(XVector3(0, 0.6f, 0.8f), "vec(0, 3, 4)", "normalize()");
}

TEST_F(Vector3Functions, KeepNamesAndPositionsTheSame) {
    EXPECT_EQ("5.0 5.0", eval("local a = vec(1, 2, 3):add(4, 0, 0) return a.x, a[1]"));
}

TEST_F(Vector3Functions, WhatIsLeftOutIsZero) {
    expectBecomes(v(), "v()", "add()");
    expectBecomes(v(), "v()", "interpolate(w)");
    expectBecomes(v(), "v()", "rotateX()");
    expectBecomes(w(), "vec(9, 9, 9)", "add(nil, w)");
}

TEST_F(Vector3Functions, AWrongKindNamesFunctionAndArgument) {
    EXPECT_EQ("script:2: Vector3:add: argument 1 (a) must be a vector, not string", failure("v():add('x')"));
    EXPECT_EQ("script:2: Vector3:add: argument 2 (b) must be a table or 3 numbers", failure("v():add(w, 1)"));
    EXPECT_EQ("script:2: Vector3:interpolate: argument 3 (t) must be a number, not boolean",
              failure("v():interpolate(v(), w, true)"));
    EXPECT_EQ("script:2: Vector3:interpolate: argument 2 (b) must be a vector, not boolean",
              failure("v():interpolate(w, true)"));
    EXPECT_EQ("script:2: Vector3:multiply: argument 1 (matrixOrFactor) must be a matrix of 16 numbers",
              failure("v():multiply(w)"));
    EXPECT_EQ("script:2: Vector3:set: argument 1 (value) must be a table or 3 numbers", failure("v():set(1, 2)"));
}

TEST_F(Vector3Functions, AreSoundWhateverTheyAreGiven) { expectSound("sampleVector"); }

}  // namespace
}  // namespace Tavo
