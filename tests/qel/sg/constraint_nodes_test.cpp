// Constraints in the graph: what they follow, what they drive, and what they leave alone.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "tests/qel/sg/rig_fixture.h"
#include <limits>

namespace sg {
namespace {

using K = KinematicsConstraintNode;
using A = AimConstraintNode;
using T = TransformNode;
using Qelp::Matrix34;
using Qelp::Vector3;
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

struct KinematicsConstraintTest : RigTest {
    KinematicsConstraintTest() :
        constraint(make(L"KinematicsConstraint")), parent(place({1, 2, 3}, {0.3F, 0.2F, 0.1F})),
        driven(place({}, {}, parent)) {}
    // The driven transform follows in its parent.
    void drive() {
        EXPECT_EQ(connect(driven, T::ParentWorldMatrix, constraint, K::ParentWorldIn), Connected);
        connectVector(constraint, K::LocalTranslationOut, driven, T::Translation);
        connectVector(constraint, K::LocalRotationOut, driven, T::Rotation);
    }
    Matrix34 world(Node* n) { return matrix(n, T::WorldMatrix); }
    Node *constraint, *parent, *driven;
};

TEST_F(KinematicsConstraintTest, WithoutTargetsItGivesTheParent) {
    drive();
    EXPECT_EQ(matrix(constraint, K::LocalMatrix), Matrix34());
    EXPECT_EQ(world(driven), world(parent));
}

TEST_F(KinematicsConstraintTest, ATargetIsFollowedWhereverTheParentIs) {
    Node* target = place({4, 5, 6}, {1, 0.5F, -0.5F});
    drive();
    addTarget(constraint, target);
    expectNear(world(driven), world(target));
    set(parent, T::Translation, 10);
    set(parent, T::Rotation, -1);
    expectNear(world(driven), world(target));
    set(target, T::Translation + 1, -7);
    expectNear(world(driven), world(target));
}

TEST_F(KinematicsConstraintTest, TheOutputsAreThePartsOfTheLocalMatrix) {
    addTarget(constraint, place({4, 5, 6}, {1, 0.5F, -0.5F}));
    Matrix34 const local = matrix(constraint, K::LocalMatrix);
    Matrix34 expected = euler(vector(constraint, K::LocalRotationOut));
    Vector3 const at = vector(constraint, K::LocalTranslationOut);
    expected.m[3][0] = at.x, expected.m[3][1] = at.y, expected.m[3][2] = at.z;
    expectNear(local, expected);
    expectNear(at, {4, 5, 6});
}

TEST_F(KinematicsConstraintTest, SeveralTargetsAreAveraged) {
    drive();
    addTarget(constraint, place({2, 0, 0}, {0, 0, 0.5F}), 0.5F);
    addTarget(constraint, place({0, 4, 0}, {0, 0, -0.1F}), 0.5F);
    Matrix34 expected = euler({0, 0, 0.2F});
    expected.m[3][0] = 1, expected.m[3][1] = 2;
    expectNear(world(driven), expected);
}

TEST_F(KinematicsConstraintTest, AWeightIsAnInputLikeAnyOther) {
    addTarget(constraint, place({2, 0, 0}));
    db::CompositeAttribute& second = addTarget(constraint, place({4, 0, 0}));
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 3);
    second.getAttribute(K::TargetWeight)->asFloat()->setValue(3);
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 3.5F);
    Node* source = make(L"Not");
    EXPECT_EQ(scene.connect(attribute(source, NotNode::Output), second.getAttribute(K::TargetWeight)), Connected);
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 3);
    setFlag(source, NotNode::Input, true);
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 2);
}

TEST_F(KinematicsConstraintTest, TheOffsetIsAPlaceInTheTargetsSpace) {
    db::CompositeAttribute& target = addTarget(constraint, place({2, 0, 0}, {0, 0, pi / 2}));
    Matrix34 offset;
    offset.m[3][0] = 1;
    target.getAttribute(K::TargetOffset)->asMatrix34()->setValue(offset);
    expectNear(vector(constraint, K::LocalTranslationOut), {2, 1, 0});
}

TEST_F(KinematicsConstraintTest, WeightsThatAreNotNormalisedLeaveTheRestToTheParent) {
    addTarget(constraint, place({2, 0, 0}), 0.25F);
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 2);
    setFlag(constraint, K::NormalizeWeights, false);
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 0.5F);
}

TEST_F(KinematicsConstraintTest, RemovingATargetIsFollowedAndUndone) {
    addTarget(constraint, place({2, 0, 0}));
    addTarget(constraint, place({4, 0, 0}));
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 3);
    scene.commitTransient();
    scene.beginChangeBlock();
    constraint->at<db::AttributeArray>(K::InputMatrices).removeAt(0);
    scene.endChangeBlock();
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 4);
    scene.undo();
    EXPECT_FLOAT_EQ(get(constraint, K::LocalTranslationOut), 3);
}

TEST_F(KinematicsConstraintTest, BrokenNumbersDoNotSpread) {
    drive();
    Node* target = place({nan, 5, 6}, {nan, 0, 0});
    addTarget(constraint, target, nan);
    addTarget(constraint, target);
    EXPECT_TRUE(isFinite(world(driven)));
}

TEST_F(KinematicsConstraintTest, WhatItDrivesCannotBeItsTarget) {
    drive();
    db::Attribute* element = constraint->at<db::AttributeArray>(K::InputMatrices).add();
    EXPECT_EQ(scene.connect(attribute(driven, T::WorldMatrix), element->asComposite()->getAttribute(0), true, true),
              WouldMakeCycle);
    EXPECT_EQ(scene.connect(attribute(parent, T::WorldMatrix), element->asComposite()->getAttribute(0), true, true),
              Connected);
}

TEST_F(KinematicsConstraintTest, NothingIsComputedThatDidNotMove) {
    drive();
    Node* target = place({4, 5, 6});
    addTarget(constraint, target);
    world(driven);
    EXPECT_EQ(work([&] { world(driven); }), 0u);
    set(driven, T::Scale, 2);
    EXPECT_EQ(work([&] { vector(constraint, K::LocalTranslationOut); }), 0u);
}

TEST_F(KinematicsConstraintTest, ADocumentKeepsItsTargets) {
    Node* target = scene.makeNode(L"Transform", L"target");
    set(target, T::Translation, 4);
    db::CompositeAttribute& element = addTarget(constraint, target, 0.5F);
    element.getAttribute(K::TargetOffset)->asMatrix34()->setValue(euler({0, 0, 1}));
    Matrix34 const before = matrix(constraint, K::LocalMatrix);
    db::StringOutputStream out;
    ASSERT_TRUE(db::SaverXML(out, 0).save(scene));
    Scene copy;
    db::StringInputStream in(out.text());
    ASSERT_TRUE(db::LoaderXML(in, 0, nullptr).load(copy));
    Node* const found = copy.findNode(constraint->getNodeName());
    ASSERT_TRUE(found);
    EXPECT_EQ(matrix(found, K::LocalMatrix), before);
}

// ---- aim ----

struct AimConstraintTest : RigTest {
    AimConstraintTest() :
        constraint(make(L"AimConstraint")), parent(place({1, 2, 3}, {0.3F, 0.2F, 0.1F})), driven(place({}, {}, parent)),
        target(place({5, -2, 4})), up(place({0, 50, 0})) {
        EXPECT_EQ(connect(driven, T::ParentWorldMatrix, constraint, A::ParentWorldIn), Connected);
        EXPECT_EQ(connect(target, T::WorldMatrix, constraint, A::WorldIn), Connected);
        EXPECT_EQ(connect(up, T::WorldMatrix, constraint, A::UpVectorIn), Connected);
        connectVector(constraint, A::LocalEulerOut, driven, T::Rotation);
    }
    static Vector3 row(Matrix34 const& m, int i) { return {m.m[i][0], m.m[i][1], m.m[i][2]}; }
    static float dot(Vector3 const& a, Vector3 const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
    Vector3 directionTo(Node* n) {
        Vector3 const from = row(matrix(driven, T::WorldMatrix), 3), to = row(matrix(n, T::WorldMatrix), 3);
        Vector3 const d{to.x - from.x, to.y - from.y, to.z - from.z};
        float const length = std::sqrt(dot(d, d));
        return {d.x / length, d.y / length, d.z / length};
    }
    void expectAimed() {
        Matrix34 const m = matrix(driven, T::WorldMatrix);
        expectNear(row(m, 0), directionTo(target));
        EXPECT_NEAR(dot(row(m, 2), directionTo(up)), 0, 1e-5);
        EXPECT_GT(dot(row(m, 1), directionTo(up)), 0);
    }
    Node *constraint, *parent, *driven, *target, *up;
};

TEST_F(AimConstraintTest, PointsXAtTheTargetWithYToTheUpObject) {
    expectAimed();
    set(target, T::Translation, Vector3{-3, 7, 1});
    expectAimed();
    set(up, T::Translation, Vector3{0, 0, -9});
    expectAimed();
    set(parent, T::Rotation, Vector3{1, -2, 3});
    set(parent, T::Translation, Vector3{0, 1, 0});
    expectAimed();
}

TEST_F(AimConstraintTest, OfWhatStandsAwayFromItsParentTheTranslationIsAnInput) {
    set(driven, T::Translation, Vector3{2, 1, -3});
    connectVector(driven, T::Translation, constraint, A::LocalTranslationIn);
    expectAimed();
}

TEST_F(AimConstraintTest, WithEverythingInOnePlaceNothingIsTurned) {
    set(parent, T::Translation, Vector3{});
    set(parent, T::Rotation, Vector3{});
    set(target, T::Translation, Vector3{});
    set(up, T::Translation, Vector3{});
    EXPECT_EQ(vector(constraint, A::LocalEulerOut), Vector3());
}

TEST_F(AimConstraintTest, BrokenNumbersDoNotSpread) {
    set(target, T::Translation, nan);
    set(up, T::Rotation, nan);
    set(constraint, A::LocalTranslationIn, nan);
    EXPECT_TRUE(isFinite(matrix(driven, T::LocalMatrix)));
}

TEST_F(AimConstraintTest, WhatAimsCannotBeItsOwnTarget) {
    EXPECT_EQ(connect(driven, T::WorldMatrix, constraint, A::WorldIn), WouldMakeCycle);
}

}  // namespace
}  // namespace sg
