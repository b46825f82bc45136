// Finding nodes and attributes by path and pattern, and copying them.
#include "qel/sg/scene.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

struct LookupCopyTest : ::testing::Test {
    Node* make(wchar_t const* type, wchar_t const* name, Node* parent = nullptr) {
        Node* n = scene.makeNode(type, name);
        if (parent) parent->addChild(*n);
        return n;
    }
    db::Attribute* attribute(Node* n, wchar_t const* name) { return n->findAttribute(name); }
    std::vector<std::wstring> find(wchar_t const* pattern) {
        std::vector<Node*> nodes;
        scene.findNodes(pattern, nodes);
        std::vector<std::wstring> names;
        for (Node* n : nodes) names.push_back(n->getNodeName());
        return names;
    }
    Scene scene;
};

using Names = std::vector<std::wstring>;

TEST_F(LookupCopyTest, PatternsMatchNamesOrWholePaths) {
    Node* hips = make(L"Joint", L"hips");
    Node* left = make(L"Joint", L"leftLeg", hips);
    make(L"Joint", L"foot", left);
    Node* right = make(L"Joint", L"rightLeg", hips);
    make(L"Joint", L"foot", right);
    make(L"Joint", L"camera1");
    struct Case {
        wchar_t const* pattern;
        Names names;
    } const cases[] = {
        {L"*", {L"hips", L"leftLeg", L"foot", L"rightLeg", L"foot", L"camera1"}},
        {L"foot", {L"foot", L"foot"}},
        {L"f?ot", {L"foot", L"foot"}},
        {L"*Leg", {L"leftLeg", L"rightLeg"}},
        {L"Foot", {}},
        {L"", {}},
        {L"hips|*", {L"leftLeg", L"rightLeg"}},
        {L"hips|*|foot", {L"foot", L"foot"}},
        {L"hips|**", {L"hips", L"leftLeg", L"foot", L"rightLeg", L"foot"}},
        {L"**|foot", {L"foot", L"foot"}},
        {L"**|**|foot", {L"foot", L"foot"}},
        {L"hips|**|foot", {L"foot", L"foot"}},
        {L"hips|leftLeg|foot", {L"foot"}},
        {L"hips|leftLeg|", {}},
        {L"leftLeg|foot", {}},
        {L"|hips", {}},
        {L"*|*|*|*", {}},
        {L"camera?|**", {L"camera1"}},
    };
    for (Case const& c : cases)
        EXPECT_EQ(find(c.pattern), c.names) << std::string(c.pattern, c.pattern + std::wcslen(c.pattern));
}

TEST_F(LookupCopyTest, NodesBelowSeveralParentsAreFoundOnceByEveryPath) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    make(L"Joint", L"before", b);
    Node* shared = make(L"Joint", L"shared", a);
    b->addChild(*shared);
    make(L"Joint", L"after", b);
    make(L"Joint", L"leaf", shared);
    EXPECT_EQ(find(L"a|*"), Names({L"shared"}));
    EXPECT_EQ(find(L"b|*"), Names({L"before", L"shared", L"after"}));
    EXPECT_EQ(find(L"b|shared|*"), Names({L"leaf"}));
    EXPECT_EQ(find(L"**|leaf"), Names({L"leaf"}));
    EXPECT_EQ(find(L"*|shared"), Names({L"shared"}));
    EXPECT_EQ(scene.findNode(L"b|shared|leaf"), scene.findNode(L"a|shared|leaf"));
}

TEST_F(LookupCopyTest, DiamondsDoNotMultiplyTheSearch) {
    Node* top = make(L"Joint", L"top");
    for (int i = 0; i < 60; ++i) {
        Node *l = make(L"Joint", L"l", top), *r = make(L"Joint", L"r", top), *next = make(L"Joint", L"m", l);
        r->addChild(*next);
        top = next;
    }
    EXPECT_EQ(find(L"**|m").size(), 60u);
}

TEST_F(LookupCopyTest, NodesAreFoundBelowANode) {
    Node* hips = make(L"Joint", L"hips");
    Node* leg = make(L"Joint", L"leg", hips);
    Node* foot = make(L"Joint", L"foot", leg);
    struct Case {
        wchar_t const* path;
        Node *below, *found;
    } const cases[] = {
        {L"hips|leg|foot", nullptr, foot}, {L"leg|foot", hips, foot},    {L"foot", leg, foot},
        {L"foot", hips, nullptr},          {L"", hips, nullptr},         {L"", nullptr, nullptr},
        {L"leg|", hips, nullptr},          {L"hips|", nullptr, nullptr}, {L"|leg", hips, nullptr},
        {L"hips", hips, nullptr},
    };
    for (Case const& c : cases) EXPECT_EQ(scene.findNode(c.path, c.below), c.found);
}

TEST_F(LookupCopyTest, AttributesAreFoundByPath) {
    Node* hips = make(L"Joint", L"hips.v2");
    Node* leg = make(L"Joint", L"leg", hips);
    db::Attribute* dotted = leg->addDynamicFloat(L"a.b", 0, 0, 1);
    EXPECT_EQ(scene.findAttributeByPath(L"hips.v2.TranslationX"), attribute(hips, L"TranslationX"));
    EXPECT_EQ(scene.findAttributeByPath(L"hips.v2|leg.RotationQuaternion.W"), attribute(leg, L"RotationQuaternion.W"));
    EXPECT_EQ(scene.findAttributeByPath(L"hips.v2|leg.a.b"), dotted);
    for (wchar_t const* none : {L"", L"hips.v2", L"hips.v2|leg", L"hips.v2|leg.None", L"leg.TranslationX", L"."})
        EXPECT_EQ(scene.findAttributeByPath(none), nullptr);
}

TEST_F(LookupCopyTest, AnAttributeHasAPathForEachWayFromTheTop) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b"), *c = make(L"Joint", L"c", a);
    b->addChild(*c);
    Node *d = make(L"Joint", L"d", c), *e = make(L"Joint", L"e", d);
    b->addChild(*e);
    auto paths = [&](db::Attribute const& of) {
        Names out;
        scene.getPathNames(of, out);
        return out;
    };
    EXPECT_EQ(paths(*attribute(a, L"TranslationX")), Names({L"a.TranslationX"}));
    EXPECT_EQ(paths(*attribute(e, L"RotationQuaternion.X")),
              Names({L"a|c|d|e.RotationQuaternion.X", L"b|c|d|e.RotationQuaternion.X", L"b|e.RotationQuaternion.X"}));
    EXPECT_EQ(paths(*d), Names({L"a|c|d", L"b|c|d"}));
}

TEST_F(LookupCopyTest, AllNodesAreListedConnectionsIncluded) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Null", L"b", a);
    scene.connect(attribute(a, L"TranslationX"), attribute(a, L"TranslationY"));
    std::vector<Node*> all;
    scene.listAllNodes(all);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0], a);
    EXPECT_EQ(all[1], b);
    EXPECT_TRUE(all[2]->isNotAnObject());
    EXPECT_EQ(find(L"*").size(), 2u);
}

TEST_F(LookupCopyTest, UnknownTypesAreNotMade) {
    EXPECT_EQ(scene.makeNode(L"Nothing", L"n"), nullptr);
    EXPECT_EQ(scene.makeNode(L"TransformBase", L"n"), nullptr) << "abstract";
    EXPECT_EQ(scene.makeNode(L"Joint", L"n", L"other"), nullptr);
    Node* stand = make(L"Unknown", L"n");
    ASSERT_NE(stand, nullptr);
    EXPECT_EQ(scene.unknownNodeDef(), &UnknownNode::Def);
    EXPECT_TRUE(stand->addDynamicFloat(L"kept", 1, 0, 2));
}

// ---- copies ----

TEST_F(LookupCopyTest, ACopyHasValuesDynamicAttributesAndElements) {
    Node* solver = make(L"IKSolver", L"solver");
    Qelp::Matrix34 m;
    m.m[3][1] = 5;
    attribute(solver, L"InputTargets")->asAttributeArray()->add()->asMatrix34()->setValue(m);
    solver->addDynamicFloat(L"extra", 0.5f, 0, 1)->asFloat()->setValue(0.75f);
    solver->addDynamicMatrix34(L"pose", m);
    attribute(solver, L"MaxIterations")->asInt()->setValue(7);
    Node* copy = solver->makeCopy(L"solver");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getNodeName(), L"solver1");
    EXPECT_EQ(attribute(copy, L"MaxIterations")->asInt()->getValue(), 7);
    EXPECT_EQ(attribute(copy, L"InputTargets[0]")->asMatrix34()->getValue().m[3][1], 5);
    EXPECT_EQ(attribute(copy, L"extra")->asFloat()->getValue(), 0.75f);
    attribute(copy, L"extra")->setToDefaultValue();
    EXPECT_EQ(attribute(copy, L"extra")->asFloat()->getValue(), 0.5f);
    EXPECT_TRUE(attribute(copy, L"pose")->isDefaultValue());
    EXPECT_EQ(attribute(copy, L"pose")->asMatrix34()->getValue().m[3][1], 5);
}

TEST_F(LookupCopyTest, ACopyStandsAtTheTopWithoutItsParentsMatrix) {
    Node *parent = make(L"Joint", L"parent"), *child = make(L"Joint", L"child", parent);
    attribute(parent, L"TranslationX")->asFloat()->setValue(10);
    attribute(child, L"TranslationX")->asFloat()->setValue(1);
    attribute(child, L"WorldMatrix")->asMatrix34()->getValue();
    Node* copy = child->makeCopy(L"copy");
    EXPECT_EQ(copy->getParent(), nullptr);
    EXPECT_EQ(attribute(copy, L"WorldMatrix")->asMatrix34()->getValue().m[3][0], 1);
}

TEST_F(LookupCopyTest, CopiesKeepNamesOrderAndSeveralParents) {
    Node* top = make(L"Joint", L"top");
    Node *a = make(L"Joint", L"a", top), *b = make(L"Joint", L"b", top);
    make(L"Joint", L"first", b);
    Node* shared = make(L"Joint", L"shared", b);  // b, met later, is its first parent
    a->addChild(*shared);
    make(L"Joint", L"leaf", shared);
    Node* outside = make(L"Joint", L"outside");
    outside->addChild(*shared);
    Node* copy = top->makeCopy(L"top");
    Names names;
    std::vector<db::Node*> below;
    copy->getDescendents(below);
    for (db::Node* n : below) names.push_back(n->getPath());
    EXPECT_EQ(names, Names({L"top1|a", L"top1|b|shared", L"top1|b|shared|leaf", L"top1|b", L"top1|b|first"}));
    EXPECT_EQ(scene.findNode(L"top1|a|shared")->getParentCount(), 2u);
    EXPECT_EQ(outside->getChildCount(), 1u);
}

TEST_F(LookupCopyTest, ReferencesToWhatIsCopiedLeadToTheCopies) {
    Node *top = make(L"Joint", L"top"), *child = make(L"Joint", L"child", top), *other = make(L"Joint", L"other");
    Node* group = make(L"Group", L"group", top);
    Node* retarget = make(L"Retarget", L"retarget", top);
    attribute(top, L"JointLimitReference")->asPointer()->setValue(child);
    attribute(child, L"JointLimitReference")->asPointer()->setValue(other);
    auto* objects = attribute(group, L"ObjectReferenceArray")->asPointerArray();
    for (db::Attribute* a :
         {static_cast<db::Attribute*>(child), static_cast<db::Attribute*>(other), attribute(child, L"TranslationX")})
        objects->add(a);
    attribute(retarget, L"SourceJointParams")->asAttributeArray()->add();
    attribute(retarget, L"SourceJointParams[0].Referent")->asPointer()->setValue(child);
    db::Attribute* nodes = top->addDynamic(db::AttributeType::NodeContainer, L"nodes");
    nodes->asNodeContainer()->add(child);

    Node* copy = top->makeCopy(L"copy");
    db::Attribute* to = scene.findNode(L"copy|child");
    EXPECT_EQ(attribute(copy, L"JointLimitReference")->asPointer()->getValue(), to);
    EXPECT_EQ(scene.findAttributeByPath(L"copy|child.JointLimitReference")->asPointer()->getValue(), other);
    auto* copied = scene.findAttributeByPath(L"copy|group.ObjectReferenceArray")->asPointerArray();
    EXPECT_EQ(copied->getElement(0), to);
    EXPECT_EQ(copied->getElement(1), other);
    EXPECT_EQ(copied->getElement(2), scene.findAttributeByPath(L"copy|child.TranslationX"));
    EXPECT_EQ(scene.findAttributeByPath(L"copy|retarget.SourceJointParams[0].Referent")->asPointer()->getValue(), to);
    EXPECT_EQ(attribute(copy, L"nodes")->asNodeContainer()->getNode(0), to->asNode());
}

TEST_F(LookupCopyTest, CopiedCurvesStayOnTheClockAndInnerConnectionsStayInside) {
    Node* settings = make(L"SceneSettings", L"settings");
    Node *top = make(L"Joint", L"top"), *curve = make(L"Animation", L"curve", top),
         *outside = make(L"Joint", L"outside");
    attribute(curve, L"KeyframeInputValues")->asFloatArray()->setValue({0, 1});
    attribute(curve, L"KeyframeOutputValues")->asFloatArray()->setValue({0, 10});
    scene.connect(attribute(settings, L"Time"), attribute(curve, L"InputValue"));
    scene.connect(attribute(curve, L"OutputValue"), attribute(top, L"TranslationX"));
    scene.connect(attribute(outside, L"TranslationY"), attribute(top, L"TranslationY"));
    scene.connect(attribute(top, L"TranslationZ"), attribute(outside, L"TranslationZ"));
    attribute(outside, L"TranslationY")->asFloat()->setValue(3);
    scene.commitTransient();
    Node* copy = top->makeCopy(L"copy");
    scene.commitTransient();
    attribute(settings, L"Time")->asFloat()->setValue(0.5f);
    EXPECT_EQ(scene.getInputAttribute(attribute(copy, L"TranslationX")),
              scene.findAttributeByPath(L"copy|curve.OutputValue"));
    EXPECT_EQ(attribute(copy, L"TranslationX")->asFloat()->getValue(), 5);
    EXPECT_EQ(scene.getInputAttribute(attribute(copy, L"TranslationY")), nullptr);
    EXPECT_EQ(attribute(copy, L"TranslationY")->asFloat()->getValue(), 3);
    EXPECT_EQ(scene.getOutputCount(attribute(copy, L"TranslationZ")), 0u);
    scene.commitTransient();
    scene.undo();
    scene.undo();
    EXPECT_EQ(scene.findNode(L"copy"), nullptr);
    EXPECT_EQ(scene.getOutputCount(attribute(settings, L"Time")), 1u);
    scene.redo();
    attribute(settings, L"Time")->asFloat()->setValue(1);
    EXPECT_EQ(attribute(copy, L"TranslationX")->asFloat()->getValue(), 10);
}

}  // namespace
}  // namespace sg
