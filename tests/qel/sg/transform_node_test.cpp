// The transform as a node: from its attributes, along the hierarchy, under edits and undo. What the matrix itself must
// be is compared with a plain product of elementary matrices.
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace sg {
namespace {

using Qelp::Matrix34;

Matrix34 operator*(Matrix34 const& a, Matrix34 const& b) { return Qelutils::multiply(a, b); }
Matrix34 translation(float x, float y, float z) {
    Matrix34 m;
    m.m[3][0] = x, m.m[3][1] = y, m.m[3][2] = z;
    return m;
}
Matrix34 scaling(float x, float y, float z) {
    Matrix34 m;
    m.m[0][0] = x, m.m[1][1] = y, m.m[2][2] = z;
    return m;
}
Matrix34 turn(int axis, float angle) {
    Matrix34 m;
    int const i = (axis + 1) % 3, j = (axis + 2) % 3;
    m.m[i][i] = m.m[j][j] = std::cos(angle);
    m.m[i][j] = std::sin(angle);
    m.m[j][i] = -std::sin(angle);
    return m;
}
Matrix34 euler(float const* angles, int order) {
    static int const axes[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    Matrix34 m;
    for (int axis : axes[order]) m = m * turn(axis, angles[axis]);
    return m;
}

struct TransformNodeTest : ::testing::Test {
    Node* make(wchar_t const* type, wchar_t const* name, Node* parent = nullptr) {
        Node* n = scene.makeNode(type, name);
        if (parent) parent->addChild(*n);
        return n;
    }
    float set(Node* n, int number, float v) {
        n->at<db::FloatAttribute>(number).setValue(v);
        return v;
    }
    Matrix34 world(Node* n) { return n->at<db::Matrix34Attribute>(TransformNode::WorldMatrix).getValue(); }
    Matrix34 local(Node* n) { return n->at<db::Matrix34Attribute>(TransformNode::LocalMatrix).getValue(); }
    static void expectNear(Matrix34 const& a, Matrix34 const& b) {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 3; ++c) EXPECT_NEAR(a.m[r][c], b.m[r][c], 2e-4f) << r << " " << c;
    }
    Scene scene;
};

TEST_F(TransformNodeTest, EveryAttributeTakesPartInTheLocalMatrix) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> any(-1.5f, 1.5f);
    Node* n = make(L"Transform", L"n");
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        float v[51] = {};
        // One attribute at a time, or all: so that none is missed that another change would have brought along.
        int const first = round % 3 ? TransformNode::Translation + int(random() % 24) : TransformNode::Translation;
        int const last = round % 3 ? first : TransformNode::PostRotation + 2;
        for (int i = first; i <= last; ++i) set(n, i, any(random));
        if (round % 5 == 0) n->at<db::EnumAttribute>(TransformNode::RotationEulerOrder).setValue(int(random() % 6));
        for (int i = TransformNode::Translation; i <= TransformNode::PostRotation + 2; ++i)
            v[i] = n->at<db::FloatAttribute>(i).getValue();
        int const order = n->at<db::EnumAttribute>(TransformNode::RotationEulerOrder).getValue();
        auto at = [&](int i, float sign = 1) { return translation(sign * v[i], sign * v[i + 1], sign * v[i + 2]); };
        Matrix34 const expected = at(TransformNode::ScalePivot, -1) * scaling(v[27], v[28], v[29]) *
                                  at(TransformNode::ScalePivot) * at(TransformNode::ScalePivotTranslation) *
                                  euler(v + TransformNode::PostRotation, 0) *
                                  euler(v + TransformNode::Rotation, order) * euler(v + TransformNode::PreRotation, 0) *
                                  at(TransformNode::Translation) * at(TransformNode::PreTranslation);
        expectNear(local(n), expected);
        expectNear(world(n), expected);
    }
}

TEST_F(TransformNodeTest, TheDataSourceSaysWhereTheRotationComesFrom) {
    Node* n = make(L"Transform", L"n");
    set(n, TransformNode::Translation, 2);
    set(n, TransformNode::Rotation, 0.5f);
    db::CompositeAttribute& q = *n->getAttribute(TransformNode::RotationQuaternion)->asComposite();
    q.getAttribute(1)->asFloat()->setValue(std::sin(0.4f));
    q.getAttribute(3)->asFloat()->setValue(std::cos(0.4f));
    Matrix34 input = translation(9, 8, 7) * turn(2, 1);
    n->at<db::Matrix34Attribute>(TransformNode::LocalMatrixInput).setValue(input);
    auto& source = n->at<db::EnumAttribute>(TransformNode::DataSource);
    Matrix34 const expected[] = {turn(0, 0.5f) * translation(2, 0, 0), turn(0, 0.5f) * translation(2, 0, 0),
                                 turn(1, 0.8f) * translation(2, 0, 0), input};
    for (int round = 0; round < 2; ++round)
        for (int s = 0; s < 4; ++s) {
            SCOPED_TRACE(s);
            source.setValue(s);
            expectNear(world(n), expected[s]);
        }
}

TEST_F(TransformNodeTest, TwistAndSwingAreNotEulerAngles) {
    Node* n = make(L"Transform", L"n");
    n->at<db::EnumAttribute>(TransformNode::DataSource).setValue(1);
    set(n, TransformNode::Rotation + 1, 0.6f);
    set(n, TransformNode::Rotation + 2, 0.8f);  // one radian about (0, 0.6, 0.8)
    Matrix34 m;
    Qelutils::quatToMatrix({0, 0.6f * std::sin(0.5f), 0.8f * std::sin(0.5f), std::cos(0.5f)}, m);
    expectNear(local(n), m);
}

TEST_F(TransformNodeTest, WorldMatricesAreTheProductUpTheHierarchy) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b", a), *c = make(L"Joint", L"c", b);
    int k = 0;
    for (Node* n : {a, b, c})
        set(n, TransformNode::Translation, float(++k)), set(n, TransformNode::Rotation + 2, 0.3f * float(k));
    for (Node* moved : {a, b, c, a}) {
        set(moved, TransformNode::Rotation, set(moved, TransformNode::Translation + 1, 0.1f * float(++k)));
        expectNear(world(c), local(c) * local(b) * local(a));
        expectNear(c->at<db::Matrix34Attribute>(TransformNode::ParentWorldMatrix).getValue(), world(b));
    }
}

TEST_F(TransformNodeTest, OnlyTransformsHandTheirMatrixDown) {
    Node *a = make(L"Joint", L"a"), *null = make(L"Null", L"null", a), *c = make(L"Joint", L"c", null);
    set(a, TransformNode::Translation, 5);
    set(c, TransformNode::Translation, 1);
    EXPECT_EQ(world(c).m[3][0], 1);
    null->removeChild(*c);
    a->addChild(*c);
    EXPECT_EQ(world(c).m[3][0], 6);
}

TEST_F(TransformNodeTest, ReparentingFollowsTheNewParentAndIsUndone) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b"), *c = make(L"Joint", L"c", a);
    set(a, TransformNode::Translation, 10);
    set(b, TransformNode::Translation, 20);
    scene.commitTransient();
    EXPECT_EQ(world(c).m[3][0], 10);
    {
        db::ChangeBlock block(&scene, L"reparent");
        a->removeChild(*c);
        b->addChild(*c);
    }
    EXPECT_EQ(world(c).m[3][0], 20);
    scene.undo();
    EXPECT_EQ(world(c).m[3][0], 10);
    scene.redo();
    EXPECT_EQ(world(c).m[3][0], 20);
    b->remove();
    EXPECT_EQ(scene.nodeCount(), 1u) << "c went with it";
    scene.commitTransient();
    scene.undo();
    set(b, TransformNode::Translation, 30);
    EXPECT_EQ(world(c).m[3][0], 30);
}

TEST_F(TransformNodeTest, TheFirstParentMovesANodeAndTheNextOneInheritsIt) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b"), *c = make(L"Joint", L"c", a);
    b->addChild(*c);
    set(a, TransformNode::Translation, 10);
    set(b, TransformNode::Translation, 20);
    EXPECT_EQ(world(c).m[3][0], 10);
    scene.commitTransient();
    a->remove();
    EXPECT_EQ(world(c).m[3][0], 20);
    scene.commitTransient();
    scene.undo();
    EXPECT_EQ(world(c).m[3][0], 10);
    set(a, TransformNode::Translation, 11);
    EXPECT_EQ(world(c).m[3][0], 11);
}

TEST_F(TransformNodeTest, CancellingTakesTheMatrixBack) {
    Node* a = make(L"Joint", L"a");
    set(a, TransformNode::Scale, 2);
    scene.commitTransient();
    Matrix34 const before = world(a);
    scene.beginChangeBlock();
    set(a, TransformNode::Scale, 5);
    EXPECT_NE(world(a), before);
    scene.cancel();
    EXPECT_EQ(world(a), before);
}

TEST_F(TransformNodeTest, TheInputsAreUpToDate) {
    auto* n = static_cast<TransformNode*>(make(L"Joint", L"n"));
    Node* driver = make(L"Joint", L"driver");
    scene.connect(&driver->at<db::Attribute>(TransformNode::Scale), &n->at<db::Attribute>(TransformNode::Scale + 1));
    set(driver, TransformNode::Scale, 3);
    EXPECT_EQ(n->getInputs().scale[1], 3);
}

}  // namespace
}  // namespace sg
