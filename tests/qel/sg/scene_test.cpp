#include "qel/sg/scene.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

struct SceneTest : ::testing::Test {
    Node* make(wchar_t const* type, wchar_t const* name) { return scene.makeNode(type, name); }
    db::Attribute* attribute(Node* n, wchar_t const* name) { return n->findAttribute(name); }
    void set(Node* n, wchar_t const* name, float v) { attribute(n, name)->asFloat()->setValue(v); }
    float get(Node* n, wchar_t const* name) { return attribute(n, name)->asFloat()->getValue(); }
    Qelp::Matrix34 world(Node* n) { return attribute(n, L"WorldMatrix")->asMatrix34()->getValue(); }
    Scene scene;
};

TEST_F(SceneTest, AChildMovesWithItsParent) {
    Node* parent = make(L"Joint", L"parent");
    Node* child = make(L"Joint", L"child");
    parent->addChild(*child);
    set(parent, L"TranslationX", 1);
    set(child, L"TranslationX", 2);
    EXPECT_EQ(world(child).m[3][0], 3);
    set(parent, L"TranslationX", 5);
    EXPECT_EQ(world(child).m[3][0], 7);
    parent->removeChild(*child);
    EXPECT_EQ(world(child).m[3][0], 2);
    scene.commitTransient();
    scene.undo();
    EXPECT_EQ(scene.nodeCount(), 0u);
    scene.redo();
    EXPECT_EQ(world(child).m[3][0], 2);
}

TEST_F(SceneTest, ACurveDrivesAChannel) {
    Node* settings = make(L"SceneSettings", L"settings");
    Node* curve = make(L"Animation", L"curve");
    Node* joint = make(L"Joint", L"joint");
    attribute(curve, L"KeyframeInputValues")->asFloatArray()->setValue({0, 1, 2});
    attribute(curve, L"KeyframeOutputValues")->asFloatArray()->setValue({0, 10, 0});
    scene.commitTransient();
    scene.beginChangeBlock();
    EXPECT_EQ(scene.connect(attribute(settings, L"Time"), attribute(curve, L"InputValue")), Connected);
    EXPECT_EQ(scene.connect(attribute(curve, L"OutputValue"), attribute(joint, L"TranslationY")), Connected);
    scene.endChangeBlock(L"connect");
    for (float t : {0.5f, 1.f, 1.5f, 0.25f}) {
        set(settings, L"Time", t);
        EXPECT_FLOAT_EQ(world(joint).m[3][1], t <= 1 ? 10 * t : 20 - 10 * t);
    }
    scene.commitTransient();
    scene.undo();
    scene.undo();
    EXPECT_EQ(scene.getInputAttribute(attribute(joint, L"TranslationY")), nullptr);
    EXPECT_EQ(world(joint).m[3][1], 0);
    scene.redo();
    scene.redo();
    EXPECT_FLOAT_EQ(world(joint).m[3][1], 2.5f);
}

TEST_F(SceneTest, CyclesAreRefused) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    EXPECT_EQ(scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX")), Connected);
    EXPECT_EQ(scene.connect(attribute(b, L"TranslationX"), attribute(a, L"TranslationX")), WouldMakeCycle);
    EXPECT_EQ(scene.connect(attribute(a, L"WorldMatrix"), attribute(b, L"LocalMatrixInput")), Connected);
    EXPECT_EQ(scene.connect(attribute(b, L"WorldMatrix"), attribute(a, L"LocalMatrixInput")), WouldMakeCycle);
    EXPECT_EQ(scene.connect(attribute(b, L"TranslationY"), attribute(a, L"TranslationY")), Connected);
    set(a, L"TranslationX", 4);
    EXPECT_EQ(get(b, L"TranslationX"), 4);
}

TEST_F(SceneTest, ARemovedNodeComesBackConnected) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX"));
    set(a, L"TranslationX", 4);
    scene.commitTransient();
    a->remove();
    EXPECT_EQ(get(b, L"TranslationX"), 4);
    scene.commitTransient();
    scene.undo();
    set(a, L"TranslationX", 6);
    EXPECT_EQ(get(b, L"TranslationX"), 6);
}

TEST_F(SceneTest, ACopyTakesItsInnerConnectionsAlong) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    a->addChild(*b);
    scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX"));
    Node* copy = a->makeCopy(L"a_copy");
    ASSERT_NE(copy, nullptr);
    set(copy, L"TranslationX", 3);
    EXPECT_EQ(get(copy->getChild(0), L"TranslationX"), 3);
    EXPECT_EQ(get(b, L"TranslationX"), 0);
    EXPECT_EQ(copy->getChild(0)->getPath(), L"a_copy|b");
}

TEST_F(SceneTest, PatternsFindNodes) {
    Node* a = make(L"Joint", L"hips");
    Node* b = make(L"Joint", L"leftLeg");
    Node* c = make(L"Joint", L"leftFoot");
    a->addChild(*b);
    b->addChild(*c);
    auto find = [&](wchar_t const* pattern) {
        std::vector<Node*> out;
        scene.findNodes(pattern, out);
        return out.size();
    };
    EXPECT_EQ(find(L"*"), 3u);
    EXPECT_EQ(find(L"left*"), 2u);
    EXPECT_EQ(find(L"hips|*"), 1u);
    EXPECT_EQ(find(L"hips|**"), 3u);
    EXPECT_EQ(find(L"**|leftFoot"), 1u);
    EXPECT_EQ(find(L"hips|leftLeg|leftFoot"), 1u);
    EXPECT_EQ(find(L"leftLeg|leftFoot"), 0u);
}

}  // namespace
}  // namespace sg
