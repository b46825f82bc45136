// A matrix split into what drives a transform: alone, and as a node. Whether a split is right is asked of the transform
// node, which puts the parts together again by its own formula.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/matrix_split.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>

namespace sg {
namespace {

using C = MatrixConversionNode;
using T = TransformNode;
using Qelp::Matrix34;
using Qelp::Quat;
using Qelp::Vector3;

constexpr float pi = std::numbers::pi_v<float>;
constexpr float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();
constexpr unsigned seed = 18;

Matrix34 rows(Vector3 const& x, Vector3 const& y, Vector3 const& z, Vector3 const& origin = {}) {
    return {{{x.x, x.y, x.z, 0}, {y.x, y.y, y.z, 0}, {z.x, z.y, z.z, 0}, {origin.x, origin.y, origin.z, 0}}};
}
Matrix34 scaled(Matrix34 m, float x, float y, float z) {
    for (int j = 0; j < 3; ++j) m.m[0][j] *= x, m.m[1][j] *= y, m.m[2][j] *= z;
    return m;
}
Matrix34 euler(Vector3 const& angles) {
    Matrix34 m;
    Qelutils::eulerToMatrix(angles, 0, m);
    return m;
}
Matrix34 turned(Quat const& q) {
    Matrix34 m;
    Qelutils::quatToMatrix(q, m);
    return m;
}
void expectNear(Matrix34 const& a, Matrix34 const& b, float tolerance = 1e-5F) {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) ASSERT_NEAR(a.m[i][j], b.m[i][j], tolerance) << i << ", " << j;
}
MatrixSplit splitOf(Matrix34 const& m) {
    MatrixSplit split;
    split.matrix = m;
    EXPECT_TRUE(split.Run());
    return split;
}
Matrix34 rotationOf(Matrix34 const& m) { return euler(splitOf(m).rotation); }
bool isFinite(MatrixSplit const& s) {
    float const all[] = {s.translation.x, s.translation.y, s.translation.z, s.rotation.x,   s.rotation.y,
                         s.rotation.z,    s.quaternion.x,  s.quaternion.y,  s.quaternion.z, s.quaternion.w};
    for (float value : all)
        if (!std::isfinite(value)) return false;
    return true;
}

class Random {
public:
    float real(float limit) { return std::uniform_real_distribution<float>(-limit, limit)(engine_); }
    Vector3 vector(float limit) { return {real(limit), real(limit), real(limit)}; }
    Quat quaternion() {
        std::normal_distribution<float> normal;
        return {normal(engine_), normal(engine_), normal(engine_), normal(engine_)};
    }
    Matrix34 place() {
        Matrix34 m = turned(quaternion());
        for (int j = 0; j < 3; ++j) m.m[3][j] = real(5);
        return m;
    }

private:
    std::mt19937 engine_{seed};
};

struct MatrixConversionTest : ::testing::Test {
    MatrixConversionTest() :
        conversion(scene.makeNode(L"MatrixConversion", L"conversion")), transform(scene.makeNode(L"Transform", L"t")) {}

    static db::Attribute* attribute(Node* n, int number) { return n->getAttribute(std::size_t(number)); }
    static float get(Node* n, int number) { return n->at<db::FloatAttribute>(number).getValue(); }
    static void set(Node* n, int number, float value) { n->at<db::FloatAttribute>(number).setValue(value); }
    static void set(Node* n, int first, Vector3 const& v) {
        set(n, first, v.x), set(n, first + 1, v.y), set(n, first + 2, v.z);
    }
    static Vector3 vector(Node* n, int first) { return {get(n, first), get(n, first + 1), get(n, first + 2)}; }
    void setMatrix(Matrix34 const& m) { conversion->at<db::Matrix34Attribute>(C::InputMatrix).setValue(m); }
    Quat quaternion() {
        db::CompositeAttribute& q = *attribute(conversion, C::RotationQuaternion)->asComposite();
        auto const part = [&](std::size_t i) { return q.getAttribute(int(i))->asFloat()->getValue(); };
        return {part(0), part(1), part(2), part(3)};
    }
    Matrix34 local() { return transform->at<db::Matrix34Attribute>(T::LocalMatrix).getValue(); }
    ConnectionResult connect(int out, int in) {
        return scene.connect(attribute(conversion, out), attribute(transform, in));
    }
    // The transform stands where the conversion's matrix says.
    void drive() {
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(connect(C::Translation + i, T::Translation + i), Connected);
            EXPECT_EQ(connect(C::Rotation + i, T::Rotation + i), Connected);
            for (auto [given, input] : {std::pair{T::PreTranslation, C::PreTranslation},
                                        {T::PreRotation, C::PreRotation},
                                        {T::PostRotation, C::PostRotation}})
                EXPECT_EQ(scene.connect(attribute(transform, given + i), attribute(conversion, input + i)), Connected);
        }
    }
    std::uint64_t work(auto const& reads) {
        std::uint64_t const before = scene.evaluations();
        reads();
        return scene.evaluations() - before;
    }
    Scene scene;
    Node *conversion, *transform;
};

// ---- the split alone ----

TEST(MatrixSplit, OfTheIdentityIsExactlyNothing) {
    MatrixSplit const s = splitOf({});
    EXPECT_EQ(s.translation, Vector3());
    EXPECT_EQ(s.rotation, Vector3());
    EXPECT_EQ(s.quaternion, Quat());
}

TEST(MatrixSplit, EveryInputThatIsNotFiniteIsRefusedAndNothingChanges) {
    MatrixSplit good;
    good.translation = {1, 2, 3}, good.rotation = {4, 5, 6}, good.quaternion = {1, 0, 0, 0};
    for (float bad : {infinity, -infinity, nan})
        for (int place = 0; place < 21; ++place) {
            SCOPED_TRACE(place);
            MatrixSplit s = good;
            Vector3* const givens[] = {&s.preTranslation, &s.preRotation, &s.postRotation};
            if (place < 12)
                s.matrix.m[place / 3][place % 3] = bad;
            else
                (&givens[(place - 12) / 3]->x)[(place - 12) % 3] = bad;
            EXPECT_FALSE(s.Validate());
            EXPECT_FALSE(s.Run());
            EXPECT_EQ(s.translation, good.translation);
            EXPECT_EQ(s.rotation, good.rotation);
            EXPECT_EQ(s.quaternion, good.quaternion);
        }
}

TEST(MatrixSplit, ThePreTranslationIsTakenOffAndStaysInRange) {
    MatrixSplit s;
    s.matrix = rows({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {5, largest, -largest});
    s.preTranslation = {2, -largest, largest};
    EXPECT_TRUE(s.Run());
    EXPECT_EQ(s.translation, (Vector3{3, largest, -largest}));
}

TEST(MatrixSplit, ScaleIsTakenOut) {
    Random random;
    for (int round = 0; round < 100; ++round) {
        Matrix34 const m = turned(random.quaternion());
        for (float scale : {1e-30F, 0.01F, 3.F, 1e30F})
            expectNear(rotationOf(scaled(m, scale, 2 * scale, 0.5F * scale)), m);
    }
}

TEST(MatrixSplit, AMirroredMatrixGivesTheRotationThatANegativeZScaleGoesWith) {
    Random random;
    for (int round = 0; round < 100; ++round) {
        Matrix34 const m = turned(random.quaternion());
        expectNear(rotationOf(scaled(m, 2, 1, -3)), m);
    }
    expectNear(rotationOf(scaled({}, -1, 1, 1)), rows({-1, 0, 0}, {0, 1, 0}, {0, 0, -1}));
}

TEST(MatrixSplit, AScaleOfZeroAlongOneAxisLosesNothing) {
    Random random;
    for (int round = 0; round < 100; ++round) {
        Matrix34 const m = turned(random.quaternion());
        expectNear(rotationOf(scaled(m, 0, 1, 1)), m);
        expectNear(rotationOf(scaled(m, 1, 0, 1)), m);
        expectNear(rotationOf(scaled(m, 1, 1, 0)), m);
    }
}

TEST(MatrixSplit, TwoRowsOfOneDirectionLeaveTheThirdToTell) {
    Vector3 const x{1, 0, 0}, z{0, 0, 1};
    expectNear(rotationOf(rows(x, x, z)), Matrix34());
    expectNear(rotationOf(rows(x, {0, 1, 0}, x)), Matrix34());
    expectNear(rotationOf(rows(z, {0, 1, 0}, z)), rows(z, {0, 1, 0}, {-1, 0, 0}));
}

TEST(MatrixSplit, WithOneDirectionLeftTheSmallestTurnTakesItsAxisThere) {
    Random random;
    for (int axis = 0; axis < 3; ++axis)
        for (int round = 0; round < 100; ++round) {
            Matrix34 const m = turned(random.quaternion());
            Matrix34 const left = scaled(m, axis == 0, axis == 1, axis == 2);
            MatrixSplit const s = splitOf(left);
            expectNear(scaled(euler(s.rotation), axis == 0, axis == 1, axis == 2), left);
            float const angle = std::acos(std::clamp(m.m[axis][axis], -1.F, 1.F));
            EXPECT_NEAR(2 * std::acos(std::min(s.quaternion.w, 1.F)), angle, 2e-3F) << "no twist about it";
        }
}

TEST(MatrixSplit, AnAxisThatPointsBackIsHalfATurn) {
    for (int axis = 0; axis < 3; ++axis) {
        Matrix34 const back = scaled({}, axis == 0 ? -1 : 0, axis == 1 ? -1 : 0, axis == 2 ? -1 : 0);
        EXPECT_EQ(rotationOf(back).m[axis][axis], -1);
    }
}

TEST(MatrixSplit, AMatrixOfZerosIsNoRotation) {
    EXPECT_EQ(splitOf(scaled({}, 0, 0, 0)).rotation, Vector3());
    EXPECT_EQ(splitOf(scaled({}, 0, 0, 0)).quaternion, Quat());
}

TEST(MatrixSplit, NearGimbalLockTheAnglesBelongTogether) {
    Random random;
    for (float side : {-1.F, 1.F})
        for (float off : {0.F, 1e-7F, 1e-6F, 1e-5F, 1e-4F, 1e-3F})
            for (int round = 0; round < 50; ++round) {
                SCOPED_TRACE(off);
                Matrix34 const m = euler({random.real(pi), side * (pi / 2 - off), random.real(pi)});
                expectNear(rotationOf(m), m, 2e-6F);
                expectNear(turned(splitOf(m).quaternion), m, 2e-6F);
            }
    EXPECT_EQ(splitOf(rows({0, 0, -1}, {0, 1, 0}, {1, 0, 0})).rotation, (Vector3{0, pi / 2, 0}));
}

TEST(MatrixSplit, IsFiniteWhateverFiniteNumbersComeIn) {
    std::mt19937 random(seed);
    auto const any = [&] {
        float const special[] = {0, -0.F, 1, -1, 1e-45F, 1e-38F, 1e-20F, 1e20F, largest, -largest, pi / 2, 1.0000001F};
        return special[random() % std::size(special)];
    };
    for (int round = 0; round < 100'000; ++round) {
        MatrixSplit s;
        for (auto& row : s.matrix.m)
            for (int j = 0; j < 3; ++j) row[j] = any();
        for (Vector3* given : {&s.preTranslation, &s.preRotation, &s.postRotation}) *given = {any(), any(), any()};
        ASSERT_TRUE(s.Run());
        ASSERT_TRUE(isFinite(s)) << round;
        ASSERT_LE(std::abs(s.rotation.y), pi / 2);
        ASSERT_GE(s.quaternion.w, 0);
        ASSERT_NEAR(s.quaternion.x * s.quaternion.x + s.quaternion.y * s.quaternion.y +
                        s.quaternion.z * s.quaternion.z + s.quaternion.w * s.quaternion.w,
                    1, 1e-6F);
    }
}

TEST(MatrixSplit, TheSameInputsGiveTheSameBitsWhateverCameBefore) {
    Random random;
    MatrixSplit reused;
    for (int round = 0; round < 100; ++round) {
        MatrixSplit fresh;
        fresh.matrix = random.place(), fresh.preRotation = random.vector(3), fresh.postRotation = random.vector(3);
        reused.matrix = fresh.matrix, reused.preRotation = fresh.preRotation, reused.postRotation = fresh.postRotation;
        EXPECT_TRUE(fresh.Run() && reused.Run());
        EXPECT_EQ(std::memcmp(&fresh, &reused, sizeof fresh), 0);
    }
}

// ---- the node ----

TEST_F(MatrixConversionTest, ATransformStandsWhereTheMatrixSaysWhateverItsGivens) {
    SCOPED_TRACE(seed);
    drive();
    Random random;
    for (int round = 0; round < 10'000; ++round) {
        Matrix34 const m = random.place();
        setMatrix(m);
        set(transform, T::PreTranslation, random.vector(3));
        set(transform, T::PreRotation, random.vector(4));
        set(transform, T::PostRotation, random.vector(4));
        expectNear(local(), m);
        if (HasFatalFailure()) return;
    }
}

TEST_F(MatrixConversionTest, ATransformsOwnMatrixGivesItsOwnRotationUnderAnyScale) {
    Node* const model = scene.makeNode(L"Transform", L"model");
    Random random;
    drive();
    EXPECT_EQ(scene.connect(attribute(model, T::LocalMatrix), attribute(conversion, C::InputMatrix)), Connected);
    for (int round = 0; round < 1000; ++round) {
        set(model, T::Translation, random.vector(5));
        set(model, T::Rotation, random.vector(pi / 2));
        for (int i = 0; i < 3; ++i) set(model, T::Scale + i, 1.5F + random.real(1.4F));
        for (Node* n : {model, transform}) {
            std::mt19937 same{unsigned(round)};
            for (int i = 0; i < 3; ++i) {
                set(n, T::PreRotation + i, float(same() % 7) - 3);
                set(n, T::PostRotation + i, float(same() % 7) - 3);
            }
        }
        Vector3 const found = vector(transform, T::Rotation), own = vector(model, T::Rotation);
        expectNear(euler(found), euler(own));
        if (HasFatalFailure()) return;
    }
}

TEST_F(MatrixConversionTest, TheQuaternionIsTheSameRotationAsTheAngles) {
    Random random;
    EXPECT_EQ(connect(C::RotationQuaternion, T::RotationQuaternion), Connected);
    for (int i = 0; i < 3; ++i) connect(C::Translation + i, T::Translation + i);
    transform->at<db::EnumAttribute>(T::DataSource).setValue(QuaternionSource);
    for (int round = 0; round < 1000; ++round) {
        Matrix34 const m = random.place();
        setMatrix(m);
        expectNear(turned(quaternion()), euler(vector(conversion, C::Rotation)));
        expectNear(local(), m);
        if (HasFatalFailure()) return;
    }
}

TEST_F(MatrixConversionTest, ANewOneSplitsTheIdentity) {
    EXPECT_EQ(vector(conversion, C::Translation), Vector3());
    EXPECT_EQ(vector(conversion, C::Rotation), Vector3());
    EXPECT_EQ(quaternion(), Quat());
}

TEST_F(MatrixConversionTest, ANumberThatIsNotFiniteCountsAsZero) {
    Matrix34 m = rows({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {nan, 2, infinity});
    setMatrix(m);
    set(conversion, C::PreTranslation, nan);
    set(conversion, C::PreRotation, infinity);
    set(conversion, C::PostRotation, -infinity);
    EXPECT_EQ(vector(conversion, C::Translation), (Vector3{0, 2, 0}));
    EXPECT_EQ(vector(conversion, C::Rotation), (Vector3{0, 0, pi / 2}));
    for (auto& row : m.m) std::fill_n(row, 3, nan);
    setMatrix(m);
    EXPECT_EQ(vector(conversion, C::Translation), Vector3());
    EXPECT_EQ(quaternion(), Quat());
}

TEST_F(MatrixConversionTest, WhatNobodyReadsIsNotComputed) {
    auto const readTranslation = [&] { get(conversion, C::Translation); };
    auto const readRotation = [&] { get(conversion, C::Rotation); };
    EXPECT_EQ(work([&] { setMatrix(Random().place()); }), 0u);
    EXPECT_EQ(work(readTranslation), 1u);
    EXPECT_EQ(work([&] { get(conversion, C::Translation + 2); }), 0u);
    EXPECT_EQ(work(readRotation), 1u);
    EXPECT_EQ(work([&] { quaternion(), get(conversion, C::Rotation + 1); }), 0u);
    for (int given = C::PreRotation; given < C::Translation; ++given) {
        SCOPED_TRACE(given);
        set(conversion, given, 0.5F);
        EXPECT_EQ(work(readTranslation), 0u);
        EXPECT_EQ(work(readRotation), 1u);
    }
    for (int given = C::PreTranslation; given < C::PreRotation; ++given) {
        SCOPED_TRACE(given);
        set(conversion, given, 0.5F);
        EXPECT_EQ(work(readRotation), 0u);
        EXPECT_EQ(work(readTranslation), 1u);
    }
}

TEST_F(MatrixConversionTest, WhoReadsTheRotationDoesNotPayForTheTranslation) {
    setMatrix(rows({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {1, 2, 3}));
    float const& stored = conversion->at<db::FloatAttribute>(C::Translation).raw();
    EXPECT_EQ(get(conversion, C::Rotation + 2), pi / 2);
    EXPECT_EQ(stored, 0);
    EXPECT_EQ(get(conversion, C::Translation), 1);
}

TEST_F(MatrixConversionTest, ATranslationIsMadeOfFourInputsARotationOfSeven) {
    for (int number = C::Translation; number <= C::RotationQuaternion; ++number) {
        SCOPED_TRACE(number);
        std::vector<db::Attribute*> affecting;
        scene.getAffectingAttributes(attribute(conversion, number), affecting);
        EXPECT_EQ(affecting.size(), number < C::Rotation ? 4u : 7u);
    }
}

TEST_F(MatrixConversionTest, OutputsTakeNoInput) {
    for (int number = C::Translation; number < C::RotationQuaternion; ++number)
        EXPECT_EQ(scene.connect(attribute(transform, T::Scale), attribute(conversion, number)), NotConnectable);
    EXPECT_EQ(scene.connect(attribute(transform, T::RotationQuaternion), attribute(conversion, C::RotationQuaternion)),
              NotConnectable);
}

TEST_F(MatrixConversionTest, UndoTakesTheOutputsBack) {
    drive();
    setMatrix(rows({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}));
    scene.commitTransient();
    Matrix34 const before = local();
    setMatrix(rows({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {4, 5, 6}));
    set(conversion, C::PreTranslation, 1);
    scene.commitTransient();
    Matrix34 const after = local();
    EXPECT_NE(after, before);
    for (int round = 0; round < 2; ++round) {
        scene.undo();
        EXPECT_EQ(local(), before);
        EXPECT_EQ(vector(conversion, C::Translation), (Vector3{1, 2, 3}));
        scene.redo();
        EXPECT_EQ(local(), after);
    }
}

TEST_F(MatrixConversionTest, ARemovedOneLeavesTheLastValuesAndUndoTakesItBack) {
    drive();
    setMatrix(rows({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}));
    scene.commitTransient();
    conversion->remove();
    EXPECT_EQ(local().m[3][0], 1);
    scene.commitTransient();
    scene.undo();
    setMatrix(rows({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {7, 8, 9}));
    EXPECT_EQ(local().m[3][0], 7);
}

TEST_F(MatrixConversionTest, ACopyAndALoadedSceneSplitTheSame) {
    Random random;
    setMatrix(random.place());
    set(conversion, C::PreRotation, random.vector(2));
    Vector3 const rotation = vector(conversion, C::Rotation);
    EXPECT_EQ(vector(conversion->makeCopy(L"copy"), C::Rotation), rotation);
    db::StringOutputStream out;
    EXPECT_TRUE(db::SaverXML(out, 0).save(scene));
    EXPECT_EQ(out.text().find("RotationQuaternion"), std::string::npos) << "results are not saved";
    Scene loaded;
    db::StringInputStream in(out.text());
    ASSERT_TRUE(db::LoaderXML(in, 0, nullptr).load(loaded));
    auto* const found = static_cast<Node*>(loaded.findNodeByPath(L"conversion"));
    ASSERT_TRUE(found);
    EXPECT_EQ(vector(found, C::Rotation), rotation);
}

}  // namespace
}  // namespace sg
