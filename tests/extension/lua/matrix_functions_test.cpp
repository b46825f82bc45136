#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/value_fixture.h"

namespace Tavo {
namespace {

class MatrixFunctions : public ScriptValues {
protected:
    MatrixFunctions() {
        run("m = function() return mat(0,2,0,0, -2,0,0,0, 0,0,2,0, 1,2,3,1) end\n"
            "b = mat(1,0,0,0, 0,0,1,0, 0,-1,0,0, 4,5,6,1) q = quat(0, 0.6, 0, 0.8)");
    }
    static XMatrix m() { return {XVector3(0, 2, 0), XVector3(-2, 0, 0), XVector3(0, 0, 2), XVector3(1, 2, 3)}; }
    static XMatrix b() { return {XVector3(1, 0, 0), XVector3(0, 0, 1), XVector3(0, -1, 0), XVector3(4, 5, 6)}; }
    static XQuaternion q() { return {0, 0.6f, 0, 0.8f}; }
    static XVector3 angles() { return {0.1f, 0.2f, 0.3f}; }
};

TEST_F(MatrixFunctions, AreAllThereInTheirOrder) {
    EXPECT_EQ((std::vector<std::string>{"convertParentSpace",
                                        "convertToLocalSpace",
                                        "convertToWorldSpace",
                                        "determinant",
                                        "invert",
                                        "isEqual",
                                        "isIdentity",
                                        "isIsotropic",
                                        "mirror",
                                        "multiply",
                                        "orthonormalize",
                                        "rotateAxisAngle",
                                        "rotate",
                                        "rotateX",
                                        "rotateY",
                                        "rotateZ",
                                        "rotation",
                                        "rotationAngle",
                                        "rotationAxis",
                                        "rotationTwistSwing",
                                        "rotationTwistSwingAngles",
                                        "effectiveScale",
                                        "scale",
                                        "set",
                                        "setIdentity",
                                        "setRotationAxisAngle",
                                        "setRotation",
                                        "setRotationEulers",
                                        "setRotationQuaternion",
                                        "setRotationTwistSwing",
                                        "setRotationTwistSwingAngles",
                                        "setTranslation",
                                        "setXAxis",
                                        "setYAxis",
                                        "setZAxis",
                                        "setZero",
                                        "translate",
                                        "translation",
                                        "transpose",
                                        "transpose3x3",
                                        "xAxis",
                                        "yAxis",
                                        "zAxis"}),
              namesOf(Tavo::MatrixFunctions()));
}

TEST_F(MatrixFunctions, MultiplyByOneOperandOrTwo) {
    expectBecomes(XMatrix().Multiply(m(), b()), "m()", "multiply(b)");
    expectBecomes(XMatrix().Multiply(b(), m()), "m()", "multiply(b, m())");
}

TEST_F(MatrixFunctions, ConvertBetweenSpaces) {
    expectBecomes(m().ConvertToLocalSpace(b()), "m()", "convertToLocalSpace(b)");
    expectBecomes(m().ConvertToWorldSpace(b()), "m()", "convertToWorldSpace(b)");
    expectBecomes(m().ConvertParentSpace(b(), m()), "m()", "convertParentSpace(b, m())");
}

TEST_F(MatrixFunctions, Invert) {
    run("i = m():invert():multiply(m())");
    expectValue(XMatrix(), "i");
    expectBecomes(XMatrix().SetZero(), "mat(0,0,0,0, 0,0,0,0, 0,0,0,0, 0,0,0,1)", "invert()");
}

TEST_F(MatrixFunctions, Measure) {
    expectValue(8.0f, "m():determinant()");
    expectValue(XVector3(2, 2, 2), "m():effectiveScale()");
    EXPECT_EQ("true false true", eval("return m():isEqual(m()), m():isEqual(b), m():isEqual(b, 9)"));
    EXPECT_EQ("true false", eval("return sampleMatrix:isIdentity(), m():isIdentity()"));
    EXPECT_EQ("true false", eval("return sampleMatrix:isIsotropic(), m():isIsotropic()"));
}

TEST_F(MatrixFunctions, MirrorAlongAnAxisOrAtAPlane) {
    expectBecomes(m().Mirror(1, 2), "m()", "mirror(1, 2)");
    expectBecomes(m().Mirror(XQuaternion(0, 1, 0, 0)), "m()", "mirror({0, 1, 0})");
    expectBecomes(m().Mirror(XQuaternion(0, 1, 0, 0)), "m()", "mirror(0, 1, 0, 0)");
}

TEST_F(MatrixFunctions, TurnAndKeepTheTranslation) {
    expectBecomes(m().RotateX(0.5f), "m()", "rotateX(0.5)");
    expectBecomes(m().RotateY(0.5f), "m()", "rotateY(0.5)");
    expectBecomes(m().RotateZ(0.5f), "m()", "rotateZ(0.5)");
    expectBecomes(m().RotateByAxisAngle(XVector3(0, 1, 0), 0.5f), "m()", "rotateAxisAngle({0, 1, 0}, 0.5)");
    expectBecomes(m().RotateByQuaternion(q()), "m()", "rotate(q)");
    expectBecomes(m().RotateByEulerAngles(angles()), "m()", "rotate(0.1, 0.2, 0.3)");
    expectBecomes(m().RotateByEulerAngles(angles(), 5), "m()", "rotate({0.1, 0.2, 0.3}, 5)");
    expectBecomes(m().RotateByEulerAngles(angles(), 5), "m()", "rotate({0.1, 0.2, 0.3}, 'ZYX')");
    expectBecomes(m().RotateByEulerAngles(angles()), "m()", "rotate({0.1, 0.2, 0.3}, 'none')");
}

TEST_F(MatrixFunctions, TellTheirRotation) {
    expectValue(b().RotationQuaternion(), "b:rotation()");
    expectValue(b().RotationEulerAngles(5), "b:rotation('ZYX')");
    expectValue(b().RotationAngle(), "b:rotationAngle()");
    expectValue(b().RotationAxis(), "b:rotationAxis()");
    expectValue(b().RotationTwistSwing(), "b:rotationTwistSwing()");
    expectValue(b().RotationTwistSwingAngles(), "b:rotationTwistSwingAngles()");
}

TEST_F(MatrixFunctions, TakeARotationAndKeepTheTranslation) {
    expectBecomes(m().SetRotationQuaternion(q()), "m()", "setRotation(q)");
    expectBecomes(m().SetRotationQuaternion(b().RotationQuaternion()), "m()", "setRotation(b)");
    expectBecomes(m().SetRotationEulerAngles(angles(), 5), "m()", "setRotation(0.1, 0.2, 0.3, 'ZYX')");
    expectBecomes(m().SetRotationEulerAngles(angles(), 5), "m()", "setRotationEulers(0.1, 0.2, 0.3, 5)");
    expectBecomes(m().SetRotationQuaternion(q()), "m()", "setRotationQuaternion(q)");
    expectBecomes(m().SetRotationAxisAngle(XVector3(0, 2, 0), 0.5f), "m()", "setRotationAxisAngle({0, 2, 0}, 0.5)");
    expectBecomes(m().SetRotationTwistSwing(angles()), "m()", "setRotationTwistSwing(0.1, 0.2, 0.3)");
    expectBecomes(m().SetRotationTwistSwingAngles(angles()), "m()", "setRotationTwistSwingAngles(0.1, 0.2, 0.3)");
}

TEST_F(MatrixFunctions, ScaleByOneFactorOrThree) {
    expectBecomes(m().ScaleBy(2), "m()", "scale(2)");
    expectBecomes(m().ScaleBy(XVector3(1, 2, 3)), "m()", "scale(1, 2, 3)");
    expectBecomes(m().ScaleBy(XVector3(1, 2, 3)), "m()", "scale(vec(1, 2, 3))");
    expectBecomes(m(), "m()", "scale()");
}

TEST_F(MatrixFunctions, SetTakesWhateverMakesAMatrix) {
    expectBecomes(b(), "m()", "set(b)");
    expectBecomes(b(), "m()", "set(1,0,0,0, 0,0,1,0, 0,-1,0,0, 4,5,6,1)");
    expectBecomes(b(), "m()", "set({1,0,0,0, 0,0,1,0, 0,-1,0,0, 4,5,6,1})");
    expectBecomes(XMatrix(q()), "m()", "set(q)");
    expectBecomes(XMatrix(XVector3(0, 1, 0), 0.5f), "m()", "set({0, 1, 0}, 0.5)");
    expectBecomes(b(), "m()", "set({1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {4, 5, 6})");
    expectBecomes(XMatrix(), "m()", "set()");
    expectBecomes(XMatrix(), "m()", "setIdentity()");
    expectBecomes(XMatrix().SetZero(), "m()", "setZero()");
}

TEST_F(MatrixFunctions, HaveRows) {
    expectValue(XVector3(0, 2, 0), "m():xAxis()");
    expectValue(XVector3(-2, 0, 0), "m():yAxis()");
    expectValue(XVector3(0, 0, 2), "m():zAxis()");
    expectValue(XVector3(1, 2, 3), "m():translation()");
    expectBecomes(m().SetXAxis(7, 8, 9), "m()", "setXAxis(7, 8, 9)");
    expectBecomes(m().SetYAxis(7, 8, 9), "m()", "setYAxis({7, 8, 9})");
    expectBecomes(m().SetZAxis(7, 8, 9), "m()", "setZAxis({x = 7, y = 8, z = 9})");
    expectBecomes(m().SetTranslation(7, 8, 9), "m()", "setTranslation(vec(7, 8, 9))");
    expectBecomes(m().SetTranslation(2, 2, 3), "m()", "translate(1, 0, 0)");
}

TEST_F(MatrixFunctions, AreMadeSquareAndTransposed) {
    expectBecomes(m().Orthonormalize(), "m()", "orthonormalize()");
    expectBecomes(m().Transpose3x3(), "m()", "transpose3x3()");
    expectBecomes(m().Transpose3x3().SetTranslation(0, 0, 0), "m()", "transpose()");
}

TEST_F(MatrixFunctions, AWrongKindNamesFunctionAndArgument) {
    EXPECT_EQ("script:2: Matrix:multiply: argument 1 (a) must be a matrix of 16 numbers", failure("m():multiply({1})"));
    EXPECT_EQ("script:2: Matrix:multiply: argument 2 (b) must be a matrix, not string",
              failure("m():multiply(b, 'x')"));
    EXPECT_EQ("script:2: Matrix:scale: argument 1 (factors) must be a table or 3 numbers", failure("m():scale(1, 2)"));
    EXPECT_EQ("script:2: Matrix:set: argument 1 must be 16 numbers, a rotation, an axis with an angle, or three axes "
              "and a translation",
              failure("m():set({1, 2, 3})"));
    EXPECT_EQ("script:2: Matrix:set: argument 1 (value) must be a table or 16 numbers", failure("m():set(1, 2, 3)"));
    EXPECT_EQ("script:2: Matrix:invert: argument 1 must be a matrix of 16 numbers",
              failure("getmetatable(sampleMatrix).__index.invert({1, 2})"));
}

TEST_F(MatrixFunctions, AreSoundWhateverTheyAreGiven) { expectSound("sampleMatrix"); }

}  // namespace
}  // namespace Tavo
