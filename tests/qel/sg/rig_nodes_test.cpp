// The small nodes of rigs: poles, pins, and matrices that are taken over.
#include "tests/qel/sg/rig_fixture.h"
#include <limits>

namespace sg {
namespace {

using T = TransformNode;
using Qelp::Matrix34;
using Qelp::Vector3;
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

Matrix34 at(float x, float y, float z) {
    Matrix34 m;
    m.m[3][0] = x, m.m[3][1] = y, m.m[3][2] = z;
    return m;
}

// ---- not ----

using NotTest = RigTest;

TEST_F(NotTest, GivesTheOpposite) {
    Node* n = make(L"Not");
    EXPECT_TRUE(flag(n, NotNode::Output));
    setFlag(n, NotNode::Input, true);
    EXPECT_FALSE(flag(n, NotNode::Output));
    Node* second = make(L"Not");
    EXPECT_EQ(connect(n, NotNode::Output, second, NotNode::Input), Connected);
    EXPECT_TRUE(flag(second, NotNode::Output));
}

// ---- pole vector ----

struct PoleVectorTest : RigTest {
    using P = PoleVectorNode;
    Node* pole = make(L"PoleVector");
};

TEST_F(PoleVectorTest, IsThePolesPlaceInTheWorld) {
    Node* parent = place({1, 2, 3}, {0, 0, pi / 2});
    parent->addChild(*pole);
    set(pole, T::Translation, Vector3{2, 0, 0});
    expectNear(matrix(pole, P::PoleVector), matrix(pole, T::WorldMatrix));
    set(parent, T::Translation, 7);
    EXPECT_NEAR(matrix(pole, P::PoleVector).m[3][0], 7, 1e-5);
}

TEST_F(PoleVectorTest, IsGivenInTheSpaceThatIsConnected) {
    Node* space = place({1, 2, 3}, {0.3F, 0.2F, 0.1F});
    space->addChild(*pole);
    EXPECT_EQ(connect(space, T::WorldMatrix, pole, P::SpaceWorldMatrix), Connected);
    set(pole, T::Translation, Vector3{2, 1, 5});
    expectNear(matrix(pole, P::PoleVector), matrix(pole, T::LocalMatrix));
}

TEST_F(PoleVectorTest, TheLengthOfItsRowsIsTheWeight) {
    set(pole, T::Scale, Vector3{3, 3, 3});
    auto const length = [&] {
        Matrix34 const m = matrix(pole, P::PoleVector);
        return std::hypot(m.m[0][0], m.m[0][1], m.m[0][2]);
    };
    struct {
        float weight, expected;
    } const cases[] = {{1, 1}, {0.5F, 0.5F}, {0, 0}, {-2, 0}, {5, 1}, {nan, 0}};
    for (auto const& c : cases) {
        set(pole, P::Weight, c.weight);
        EXPECT_FLOAT_EQ(length(), c.expected) << c.weight;
    }
    set(pole, P::Weight, 1);
    setFlag(pole, P::Enabled, false);
    EXPECT_EQ(length(), 0);
}

TEST_F(PoleVectorTest, BrokenNumbersDoNotSpread) {
    set(pole, T::Translation, nan);
    set(pole, T::Rotation, nan);
    EXPECT_TRUE(isFinite(matrix(pole, P::PoleVector)));
}

// ---- pin ----

struct PinTest : RigTest {
    using P = PinNode;
    PinTest() : parent(place({1, 2, 3}, {0.3F, 0.2F, 0.1F})), held(place({2, 1, 0}, {0.5F, 0.4F, 0.3F}, parent)) {
        pin = static_cast<P*>(make(L"Pin"));
        addTarget(pin, held);
        EXPECT_EQ(connect(held, T::ParentWorldMatrix, pin, P::ParentWorldIn), Connected);
        for (int i = 0; i < 6; ++i) refer(pin, P::TranslationReference + i, attribute(held, T::Translation + i));
        refer(pin, P::LocalMatrixReference, attribute(held, T::LocalMatrix));
        refer(pin, P::WorldMatrixReference, attribute(held, T::WorldMatrix));
    }
    Matrix34 world() { return matrix(held, T::WorldMatrix); }
    db::Attribute* target() {
        return pin->at<db::AttributeArray>(P::InputMatrices).getElement(0)->asComposite()->getAttribute(0);
    }
    void setWeight(float weight) {
        pin->at<db::AttributeArray>(P::InputMatrices)
            .getElement(0)
            ->asComposite()
            ->getAttribute(2)
            ->asFloat()
            ->setValue(weight);
    }
    void moveParent() {
        set(parent, T::Translation, Vector3{5, 0, -1});
        set(parent, T::Rotation, Vector3{-1, 0.6F, 2});
    }
    Node *parent, *held;
    PinNode* pin;
};

TEST_F(PinTest, ReleasedItsTargetFollows) {
    EXPECT_FALSE(flag(pin, P::Pinned));
    moveParent();
    expectNear(matrix(pin, P::LocalMatrix), matrix(held, T::LocalMatrix));
}

TEST_F(PinTest, PinnedItsTargetStaysInTheWorld) {
    Matrix34 const before = world();
    pin->setPinned(true);
    EXPECT_TRUE(flag(pin, P::Pinned));
    moveParent();
    expectNear(Qelutils::multiply(matrix(pin, P::LocalMatrix), matrix(parent, T::WorldMatrix)), before);
}

TEST_F(PinTest, HoldPutsTheTransformBackAtItsTarget) {
    Matrix34 const before = world();
    pin->setPinned(true);
    moveParent();
    EXPECT_TRUE(pin->hold());
    expectNear(world(), before);
}

TEST_F(PinTest, HoldReckonsWithTheTransformsOwnRotationsAndOrder) {
    set(held, T::PreRotation, Vector3{0.5F, 0.1F, 0.2F});
    set(held, T::PostRotation, Vector3{0, 0.3F, 1});
    set(held, T::PreTranslation, Vector3{1, 1, 1});
    for (int order = 0; order < 6; ++order) {
        held->at<db::EnumAttribute>(T::RotationEulerOrder).setValue(order);
        pin->setPinned(false);
        Matrix34 const before = world();
        pin->setPinned(true);
        set(parent, T::Rotation, Vector3{float(order), 1, -1});
        EXPECT_TRUE(pin->hold());
        expectNear(world(), before);
    }
}

TEST_F(PinTest, ALesserWeightLeavesItsShareToThePresentPlace) {
    pin->setPinned(true);
    Vector3 const from = vector(held, T::Translation);
    set(held, T::Translation, Vector3{from.x + 4, from.y, from.z});
    setWeight(0.25F);
    EXPECT_TRUE(pin->hold());
    expectNear(vector(held, T::Translation), {from.x + 3, from.y, from.z});
    for (float none : {0.F, -1.F, nan}) {
        setWeight(none);
        EXPECT_FALSE(pin->hold());
    }
    expectNear(vector(held, T::Translation), {from.x + 3, from.y, from.z});
}

TEST_F(PinTest, NothingIsHeldThatIsNotPinned) {
    EXPECT_FALSE(pin->hold());
    moveParent();
    Vector3 const before = vector(held, T::Translation);
    EXPECT_FALSE(pin->hold());
    EXPECT_EQ(vector(held, T::Translation), before);
}

TEST_F(PinTest, ChannelsThatAreConnectedAreLeftAlone) {
    Node* driver = place({9, 9, 9});
    connectVector(driver, T::Translation, held, T::Translation);
    connectVector(driver, T::Rotation, held, T::Rotation);
    scene.commitTransient();
    pin->setPinned(true);
    scene.commitTransient();
    scene.beginChangeBlock();
    EXPECT_TRUE(pin->hold());
    scene.endChangeBlock();
    EXPECT_EQ(get(held, T::Translation), 9);
    EXPECT_TRUE(scene.undo());
    EXPECT_FALSE(flag(pin, P::Pinned)) << "holding wrote nothing and made no step";
}

TEST_F(PinTest, ReleasedAgainItFollowsAgain) {
    pin->setPinned(true);
    EXPECT_EQ(scene.getInputAttribute(target()), nullptr);
    moveParent();
    pin->setPinned(false);
    EXPECT_EQ(scene.getInputAttribute(target()), attribute(held, T::WorldMatrix));
    expectNear(matrix(pin, P::LocalMatrix), matrix(held, T::LocalMatrix));
}

TEST_F(PinTest, PinningAndHoldingAreUndone) {
    Vector3 const before = vector(held, T::Translation);
    scene.commitTransient();
    scene.beginChangeBlock();
    pin->setPinned(true);
    scene.endChangeBlock();
    scene.beginChangeBlock();
    moveParent();
    pin->hold();
    scene.endChangeBlock();
    scene.undo();
    EXPECT_EQ(vector(held, T::Translation), before);
    EXPECT_TRUE(flag(pin, P::Pinned));
    scene.undo();
    EXPECT_FALSE(flag(pin, P::Pinned));
    EXPECT_EQ(scene.getInputAttribute(target()), attribute(held, T::WorldMatrix));
}

TEST_F(PinTest, WithoutReferencesHoldWritesNothing) {
    for (int i = 0; i < 8; ++i) refer(pin, P::TranslationReference + i, nullptr);
    pin->setPinned(true);
    Vector3 const before = vector(held, T::Translation);
    moveParent();
    EXPECT_TRUE(pin->hold());
    EXPECT_EQ(vector(held, T::Translation), before);
    pin->setPinned(false);
    EXPECT_FALSE(flag(pin, P::Pinned));
}

TEST_F(PinTest, APinWithoutTargetsHoldsNothing) {
    pin->at<db::AttributeArray>(P::InputMatrices).clearArray();
    pin->setPinned(true);
    EXPECT_FALSE(pin->hold());
    pin->setPinned(false);
    EXPECT_EQ(matrix(pin, P::LocalMatrix), Matrix34());
}

// A rig switches the handle off while its joint is pinned.
TEST_F(PinTest, WhetherItIsPinnedFlowsOn) {
    Node *negated = make(L"Not"), *handle = make(L"IKHandle");
    EXPECT_EQ(connect(pin, P::Pinned, negated, NotNode::Input), Connected);
    db::Attribute* enabled = attribute(handle, 57)->asComposite()->getAttribute(4);
    EXPECT_EQ(scene.connect(attribute(negated, NotNode::Output), enabled), Connected);
    EXPECT_TRUE(enabled->asBool()->getValue());
    pin->setPinned(true);
    EXPECT_FALSE(enabled->asBool()->getValue());
}

// ---- copies ----

struct CopyMatrixTest : RigTest {
    using C = CopyMatrixNode;
    CopyMatrixTest() : solver(make(L"IKSolver")), joint(place({1, 2, 3})) {
        geometry = solver->at<db::AttributeArray>(16).add()->asMatrix34();
        node = static_cast<C*>(make(L"CopyMatrix", solver));
        EXPECT_EQ(connect(joint, T::LocalMatrix, node, C::Input), Connected);
        refer(node, C::OutputReference, geometry);
    }
    Node *solver, *joint;
    db::Matrix34Attribute* geometry;
    C* node;
};

TEST_F(CopyMatrixTest, EvaluationWritesNothing) {
    expectNear(matrix(node, C::Input), at(1, 2, 3));
    EXPECT_EQ(geometry->getValue(), Matrix34());
}

TEST_F(CopyMatrixTest, ACopyIsAnEditThatIsUndone) {
    scene.commitTransient();
    scene.beginChangeBlock();
    EXPECT_TRUE(node->copy());
    scene.endChangeBlock();
    EXPECT_EQ(geometry->getValue(), at(1, 2, 3));
    set(joint, T::Translation, 9);
    EXPECT_EQ(geometry->getValue(), at(1, 2, 3)) << "until it is copied again";
    EXPECT_TRUE(scene.undo());
    EXPECT_EQ(geometry->getValue(), at(1, 2, 3));
    EXPECT_TRUE(scene.undo());
    EXPECT_EQ(geometry->getValue(), Matrix34());
}

TEST_F(CopyMatrixTest, ThereIsNoCycleAlthoughTheCopyComesBackToTheJoint) {
    Node* conversion = make(L"MatrixConversion");
    EXPECT_EQ(scene.connect(geometry, attribute(conversion, 8)), Connected);
    EXPECT_EQ(connect(conversion, 18, joint, T::Translation), Connected);
    EXPECT_EQ(matrix(joint, T::LocalMatrix), at(0, 2, 3));
    EXPECT_TRUE(node->copy());
    EXPECT_EQ(geometry->getValue(), at(0, 2, 3));
}

TEST_F(CopyMatrixTest, WithoutAMatrixToWriteNothingIsCopied) {
    refer(node, C::OutputReference, attribute(joint, T::Translation));
    EXPECT_FALSE(node->copy());
    refer(node, C::OutputReference, nullptr);
    EXPECT_FALSE(node->copy());
    refer(node, C::OutputReference, geometry);
    EXPECT_EQ(scene.connect(attribute(joint, T::WorldMatrix), geometry), Connected);
    EXPECT_FALSE(node->copy());
    scene.disconnectInput(geometry);
    solver->remove();
    EXPECT_FALSE(node->copy());
}

TEST_F(CopyMatrixTest, AllAreReadBeforeTheFirstIsWritten) {
    // The second joint hangs on what the first copy writes.
    Node *conversion = make(L"MatrixConversion"), *second = place({});
    EXPECT_EQ(scene.connect(geometry, attribute(conversion, 8)), Connected);
    EXPECT_EQ(connect(conversion, 18, second, T::Translation), Connected);
    auto* other = solver->at<db::AttributeArray>(16).add()->asMatrix34();
    Node* copier = make(L"CopyMatrix", solver);
    EXPECT_EQ(connect(second, T::LocalMatrix, copier, C::Input), Connected);
    refer(copier, C::OutputReference, other);
    make(L"Not", solver);
    EXPECT_EQ(copyMatrices(*solver), 2u);
    EXPECT_EQ(geometry->getValue(), at(1, 2, 3));
    EXPECT_EQ(other->getValue(), Matrix34());
    EXPECT_EQ(copyMatrices(*solver), 2u);
    EXPECT_EQ(other->getValue(), at(1, 0, 0));
}

}  // namespace
}  // namespace sg
