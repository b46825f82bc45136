#include "qel/sg/scene.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

struct RecordingLog : Qelutils::BasicLogger {
    void Log(Level, char const*) override {}
    void Log(Level, wchar_t const* text) override { lines.push_back(text); }
    void Log(Level, std::wstring const& text) override { lines.push_back(text); }
    std::vector<std::wstring> lines;
};

struct ConnectionsTest : ::testing::Test {
    ConnectionsTest() { scene.setLogger(&log); }
    Node* make(wchar_t const* type, wchar_t const* name) { return scene.makeNode(type, name); }
    db::Attribute* attribute(Node* n, wchar_t const* name) { return n->findAttribute(name); }
    db::Attribute* custom(Node* n, wchar_t const* name) { return n->addDynamicFloat(name, 0, -1e9f, 1e9f); }
    void set(db::Attribute* a, float v) { a->asFloat()->setValue(v); }
    float get(db::Attribute* a) { return a->asFloat()->getValue(); }
    Qelp::Matrix34 world(Node* n) { return attribute(n, L"WorldMatrix")->asMatrix34()->getValue(); }
    std::vector<db::Attribute*> outputs(db::Attribute* a) {
        std::vector<db::Attribute*> out;
        scene.getOutputAttributes(a, out);
        return out;
    }
    RecordingLog log;
    Scene scene;
};

// ---- kinds ----

TEST_F(ConnectionsTest, NumbersConvertAsByACast) {
    double const inf = std::numeric_limits<double>::infinity();
    struct Case {
        double from;
        int asInt;
        bool asBool;
        float asFloat;
    } const cases[] = {
        {0, 0, false, 0},
        {1, 1, true, 1},
        {2.9, 2, true, 2.9f},
        {-2.9, -2, true, -2.9f},
        {1e-300, 0, true, 0},
        {1e20, 2147483647, true, 1e20f},
        {-1e20, -2147483647 - 1, true, -1e20f},
        {inf, 2147483647, true, float(inf)},
    };
    Node* n = make(L"Node", L"n");
    db::Attribute* from = n->addDynamic(db::AttributeType::Double, L"from");
    db::Attribute* i = n->addDynamicInt(L"i", 0, -9, 9);
    db::Attribute* b = n->addDynamicBool(L"b", false);
    db::Attribute* f = custom(n, L"f");
    db::Attribute* e = n->addDynamic(db::AttributeType::Enumeration, L"e");
    for (db::Attribute* to : {i, b, f, e}) ASSERT_EQ(scene.connect(from, to), Connected);
    for (Case const& c : cases) {
        SCOPED_TRACE(c.from);
        from->asDouble()->setValue(c.from);
        EXPECT_EQ(i->asInt()->getValue(), c.asInt);
        EXPECT_EQ(e->asEnum()->getValue(), c.asInt);
        EXPECT_EQ(b->asBool()->getValue(), c.asBool);
        EXPECT_EQ(f->asFloat()->getValue(), c.asFloat);
    }
    from->asDouble()->setValue(std::nan(""));
    EXPECT_EQ(i->asInt()->getValue(), 0);
    EXPECT_TRUE(b->asBool()->getValue());
}

TEST_F(ConnectionsTest, EveryNumberFeedsEveryNumber) {
    using T = db::AttributeType;
    Node* n = make(L"Node", L"n");
    int k = 0;
    for (T from : {T::Integer, T::Boolean, T::Enumeration, T::Float, T::Double})
        for (T to : {T::Integer, T::Boolean, T::Enumeration, T::Float, T::Double}) {
            double const one[4] = {1, 0, 0, 0};
            db::Attribute* a = n->addDynamic(from, L"a" + std::to_wstring(++k), one);
            db::Attribute* b = n->addDynamic(to, L"b" + std::to_wstring(k));
            ASSERT_EQ(scene.connect(a, b), Connected);
            scene.disconnectInput(b);
            EXPECT_FALSE(b->isDefaultValue());
        }
}

TEST_F(ConnectionsTest, OtherKindsFeedTheirLikeOnly) {
    using T = db::AttributeType;
    std::vector<T> const kinds = {T::Float,        T::String,      T::Vector3,      T::Matrix,      T::Pointer,
                                  T::IntegerArray, T::FloatArray,  T::MatrixArray,  T::Quaternion,  T::StringArray,
                                  T::PointerArray, T::DoubleArray, T::BooleanArray, T::Vector3Array};
    Node* n = make(L"Node", L"n");
    int k = 0;
    for (T from : kinds)
        for (T to : kinds) {
            db::Attribute* a = n->addDynamic(from, L"a" + std::to_wstring(++k));
            db::Attribute* b = n->addDynamic(to, L"b" + std::to_wstring(k));
            EXPECT_EQ(scene.connect(a, b), from == to ? Connected : KindsDiffer) << int(from) << " to " << int(to);
        }
    db::Attribute* nodes = n->addDynamic(T::NodeContainer, L"nodes");
    db::Attribute* more = n->addDynamic(T::NodeContainer, L"more");
    EXPECT_EQ(scene.connect(nodes, more), KindsDiffer);
}

// ---- what is refused ----

TEST_F(ConnectionsTest, WhatCannotBeConnectedIsRefusedWithAMessage) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    Node* gone = make(L"Joint", L"gone");
    gone->remove();
    Scene other;
    Node* stranger = other.makeNode(L"Joint", L"stranger");
    db::Attribute* ax = attribute(a, L"TranslationX");
    db::Attribute* bx = attribute(b, L"TranslationX");
    scene.connect(attribute(a, L"TranslationZ"), attribute(b, L"TranslationZ"));
    struct Case {
        db::Attribute *from, *to;
        bool replace;
        ConnectionResult result;
        wchar_t const* message;
    } const cases[] = {
        {nullptr, bx, true, MissingAttribute,
         L"Unable to connect \"\" to \"b.TranslationX\": an end of the connection does not exist in this scene"},
        {ax, nullptr, true, MissingAttribute,
         L"Unable to connect \"a.TranslationX\" to \"\": an end of the connection does not exist in this scene"},
        {ax, attribute(gone, L"TranslationX"), true, MissingAttribute, nullptr},
        {attribute(gone, L"TranslationX"), ax, true, MissingAttribute, nullptr},
        {ax, attribute(stranger, L"TranslationX"), true, MissingAttribute, nullptr},
        {ax, attribute(b, L"WorldMatrix"), true, KindsDiffer,
         L"Unable to connect \"a.TranslationX\" to \"b.WorldMatrix\": their kinds differ"},
        {attribute(a, L"LocalMatrix"), attribute(b, L"WorldMatrix"), true, NotConnectable,
         L"Unable to connect \"a.LocalMatrix\" to \"b.WorldMatrix\": the target is computed by its object"},
        {attribute(a, L"LocalMatrix"), attribute(b, L"ParentWorldMatrix"), true, NotConnectable, nullptr},
        {attribute(a, L"Tags"), attribute(b, L"Name"), true, NotConnectable, nullptr},
        {ax, attribute(b, L"TranslationZ"), false, InputTaken,
         L"Unable to connect \"a.TranslationX\" to \"b.TranslationZ\": the target already has an input"},
        {attribute(b, L"TranslationZ"), attribute(a, L"TranslationZ"), true, WouldMakeCycle,
         L"Unable to connect \"b.TranslationZ\" to \"a.TranslationZ\": the connection would close a cycle"},
        {ax, ax, true, WouldMakeCycle, nullptr},
        {a, b, true, NotConnectable, nullptr},
        {ax, scene.addDynamicFloat(L"ofTheScene", 0, 0, 1), true, NotConnectable, nullptr},
    };
    for (Case const& c : cases) {
        log.lines.clear();
        EXPECT_EQ(scene.connect(c.from, c.to, c.replace), c.result);
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_TRUE(!c.message || log.lines[0] == c.message);
        EXPECT_EQ(scene.connect(c.from, c.to, c.replace, true), c.result);
        EXPECT_EQ(log.lines.size(), 1u) << "quiet";
    }
    EXPECT_EQ(scene.getInputAttribute(nullptr), nullptr);
    EXPECT_EQ(scene.getInputAttribute(a), nullptr);
    EXPECT_EQ(scene.getOutputCount(nullptr), 0u);
    EXPECT_FALSE(scene.disconnect(nullptr));
    EXPECT_FALSE(scene.disconnectInput(bx));
    EXPECT_FALSE(scene.disconnectOutputs(a));
}

TEST_F(ConnectionsTest, TheSameConnectionTwiceIsOne) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    EXPECT_EQ(scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX")), Connected);
    EXPECT_EQ(scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX")), AlreadyConnected);
    EXPECT_EQ(scene.getOutputCount(attribute(a, L"TranslationX")), 1u);
    EXPECT_TRUE(log.lines.empty());
}

// ---- making and breaking ----

TEST_F(ConnectionsTest, AnotherSourceReplacesTheFirst) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *b = custom(n, L"b"), *to = custom(n, L"to");
    set(a, 1), set(b, 2);
    scene.connect(a, to);
    scene.connect(b, to);
    EXPECT_EQ(scene.getInputAttribute(to), b);
    EXPECT_TRUE(outputs(a).empty());
    EXPECT_EQ(get(to), 2);
}

TEST_F(ConnectionsTest, DisconnectingKeepsTheLastValue) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *to = custom(n, L"to");
    scene.connect(a, to);
    set(a, 7);  // nobody reads it before the connection goes
    EXPECT_TRUE(scene.disconnectInput(to));
    set(a, 8);
    EXPECT_EQ(get(to), 7);
}

TEST_F(ConnectionsTest, ConnectingAndDisconnectingAreUndoneAndDoneAgain) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *to = custom(n, L"to");
    set(to, 5), set(a, 1);
    scene.commitTransient();
    scene.connect(a, to);
    scene.commitTransient();
    EXPECT_EQ(get(to), 1);
    set(a, 2);
    scene.commitTransient();
    scene.disconnectInput(to);
    scene.commitTransient();
    set(to, 9);
    scene.commitTransient();

    scene.undo();
    EXPECT_EQ(get(to), 2);
    scene.undo();
    EXPECT_EQ(scene.getInputAttribute(to), a);
    scene.undo();
    EXPECT_EQ(get(to), 1);
    scene.undo();
    EXPECT_EQ(scene.getInputAttribute(to), nullptr);
    EXPECT_EQ(get(to), 5);
    while (scene.redo()) {}
    EXPECT_EQ(get(to), 9);
    EXPECT_EQ(scene.getInputAttribute(to), nullptr);
}

TEST_F(ConnectionsTest, OutputsKeepTheirOrderOverUndoAndRedo) {
    Node* n = make(L"Node", L"n");
    db::Attribute* from = custom(n, L"from");
    std::vector<db::Attribute*> to;
    for (int i = 0; i < 6; ++i) scene.connect(from, to.emplace_back(custom(n, (L"t" + std::to_wstring(i)).c_str())));
    scene.commitTransient();
    EXPECT_EQ(outputs(from), to);
    for (int i : {1, 4, 0, 2}) {
        scene.disconnectInput(to[std::size_t(i)]);
        scene.commitTransient();
    }
    auto const after = outputs(from);
    EXPECT_EQ(after.size(), 2u);
    for (int i = 0; i < 4; ++i) scene.undo();
    EXPECT_EQ(outputs(from), to);
    for (int i = 0; i < 4; ++i) scene.redo();
    EXPECT_EQ(outputs(from), after);
    for (int i = 0; i < 4; ++i) scene.undo();
    scene.disconnectOutputs(from);
    EXPECT_TRUE(outputs(from).empty());
    scene.commitTransient();
    scene.undo();
    EXPECT_EQ(outputs(from), to);
}

TEST_F(ConnectionsTest, DisconnectTakesInputsAndOutputs) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *b = custom(n, L"b"), *c = custom(n, L"c");
    scene.connect(a, b);
    scene.connect(b, c);
    EXPECT_TRUE(scene.disconnect(b));
    EXPECT_EQ(scene.getInputAttribute(b), nullptr);
    EXPECT_EQ(scene.getInputAttribute(c), nullptr);
    EXPECT_FALSE(scene.disconnect(b));
}

TEST_F(ConnectionsTest, AWriteToAConnectedAttributeDoesNotHold) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *to = custom(n, L"to");
    set(a, 1);
    scene.connect(a, to);
    for (bool readBefore : {false, true}) {
        if (readBefore) get(to);
        set(to, 9);
        EXPECT_EQ(get(to), 1);
    }
    scene.disconnectInput(to);
    set(to, 9);
    EXPECT_EQ(get(to), 9);
}

TEST_F(ConnectionsTest, AWriteToAnOutputDoesNotHold) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    a->addChild(*b);
    set(attribute(a, L"TranslationX"), 2);
    world(b);
    Qelp::Matrix34 m;
    m.m[3][0] = 50;
    attribute(a, L"WorldMatrix")->asMatrix34()->setValue(m);
    EXPECT_EQ(world(b).m[3][0], 2);
    EXPECT_EQ(world(a).m[3][0], 2);
}

TEST_F(ConnectionsTest, ArraysFlowAndComeBackWithUndo) {
    Node* n = make(L"Node", L"n");
    auto floats = [&](wchar_t const* name) { return n->addDynamicFloatArray(name, 0, -9, 9)->asFloatArray(); };
    using Values = std::vector<float>;
    db::FloatArrayAttribute *a = floats(L"a"), *to = floats(L"to");
    to->setValue({1, 2, 3});
    scene.commitTransient();
    to->setElement(7, 1);
    scene.commitTransient();
    a->setValue({4});
    scene.connect(a, to);
    scene.commitTransient();
    EXPECT_EQ(to->getValue(), Values({4}));
    EXPECT_FALSE(to->setElement(9, 0)) << "what flows in cannot be edited";
    to->add(5), to->resize(9), to->removeAt(0);
    EXPECT_EQ(to->getValue(), Values({4}));
    a->setValue({5, 6, 7, 8});
    scene.commitTransient();
    scene.disconnectInput(to);
    to->add(9);
    scene.commitTransient();
    EXPECT_EQ(to->getValue(), Values({5, 6, 7, 8, 9}));

    scene.undo();
    EXPECT_EQ(to->getValue(), Values({5, 6, 7, 8}));
    scene.undo();
    EXPECT_EQ(to->getValue(), Values({4}));
    scene.undo();
    EXPECT_EQ(to->getValue(), Values({1, 7, 3}));
    scene.undo();
    EXPECT_EQ(to->getValue(), Values({1, 2, 3}));
    scene.undo();
    while (scene.redo()) {}
    EXPECT_EQ(to->getValue(), Values({5, 6, 7, 8, 9}));
}

// ---- attributes that pass on ----

TEST_F(ConnectionsTest, AnAttributeThatIsFedFeedsOthers) {
    Node* a = make(L"Joint", L"a");
    Node* b = make(L"Joint", L"b");
    Node* c = make(L"Joint", L"c");
    for (Node* order : {b, a})  // downstream first, so that the middle is a source before it is a target
        scene.connect(attribute(order, L"TranslationX"), attribute(order == b ? c : b, L"TranslationX"));
    for (float x : {3.f, 4.f}) {
        set(attribute(a, L"TranslationX"), x);
        EXPECT_EQ(get(attribute(c, L"TranslationX")), x);
        EXPECT_EQ(world(c).m[3][0], x);
        EXPECT_EQ(world(b).m[3][0], x);
    }
    scene.disconnectInput(attribute(b, L"TranslationX"));
    set(attribute(b, L"TranslationX"), 9);
    EXPECT_EQ(world(c).m[3][0], 9);
}

TEST_F(ConnectionsTest, AnyNumberOfAttributesOfANodePassOn) {
    constexpr int count = 200;
    Node *a = make(L"Node", L"a"), *b = make(L"Joint", L"b"), *c = make(L"Node", L"c");
    std::vector<db::Attribute*> from, through, to;
    for (int i = 0; i < count; ++i) {
        std::wstring const name = L"d" + std::to_wstring(i);
        from.push_back(custom(a, name.c_str()));
        through.push_back(custom(b, name.c_str()));
        to.push_back(custom(c, name.c_str()));
        ASSERT_EQ(scene.connect(from.back(), through.back()), Connected);
        ASSERT_EQ(scene.connect(through.back(), to.back()), Connected);
    }
    for (int round = 0; round < 3; ++round)
        for (int i = 0; i < count; ++i) {
            set(from[std::size_t(i)], float(1000 * round + i));
            EXPECT_TRUE(i % 3 != round || get(to[std::size_t(i)]) == float(1000 * round + i));
            EXPECT_TRUE(i % 5 != round || get(through[std::size_t(i)]) == float(1000 * round + i));
        }
    for (int i = 0; i < count; ++i) EXPECT_EQ(get(to[std::size_t(i)]), float(2000 + i));
    // A circle of attributes is one however many a node has, and none where they only share the node.
    EXPECT_EQ(scene.connect(to[70], from[71]), Connected);
    EXPECT_EQ(scene.connect(to[70], from[70]), WouldMakeCycle);
    EXPECT_EQ(scene.connect(to[71], from[70]), WouldMakeCycle);
}

TEST_F(ConnectionsTest, TheSixtyFourthInputMovesItsOutputs) {
    Node *a = make(L"Node", L"a"), *b = make(L"Joint", L"b");
    db::Attribute* time = custom(a, L"time");
    for (int i = 0; i < 100; ++i) scene.connect(time, custom(b, (L"d" + std::to_wstring(i)).c_str()));
    db::Attribute* x = custom(a, L"x");
    scene.connect(x, attribute(b, L"TranslationX"));
    scene.connect(time, attribute(b, L"TranslationY"));
    for (float v : {1.f, 2.f, 3.f}) {
        set(x, v), set(time, -v);
        EXPECT_EQ(world(b).m[3][0], v);
        EXPECT_EQ(world(b).m[3][1], -v);
    }
    for (int i = 0; i < 50; ++i) scene.disconnectInput(attribute(b, (L"d" + std::to_wstring(i)).c_str()));
    set(x, 8);
    EXPECT_EQ(world(b).m[3][0], 8);
    EXPECT_EQ(get(attribute(b, L"d99")), -3);
}

// ---- cycles ----

TEST_F(ConnectionsTest, CyclesAreRefusedOutputByOutput) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    auto connect = [&](Node* from, wchar_t const* out, Node* to, wchar_t const* in) {
        return scene.connect(attribute(from, out), attribute(to, in), true, true);
    };
    EXPECT_EQ(connect(a, L"WorldMatrix", a, L"LocalMatrixInput"), WouldMakeCycle);
    EXPECT_EQ(connect(a, L"TranslationX", a, L"TranslationY"), Connected);
    EXPECT_EQ(connect(a, L"TranslationY", a, L"TranslationX"), WouldMakeCycle);
    EXPECT_EQ(connect(a, L"TranslationY", b, L"TranslationX"), Connected);
    EXPECT_EQ(connect(b, L"TranslationX", a, L"TranslationX"), WouldMakeCycle) << "through attributes that pass on";
    EXPECT_EQ(connect(b, L"WorldMatrix", a, L"LocalMatrixInput"), Connected) << "it moves no translation of a";
    EXPECT_EQ(connect(a, L"WorldMatrix", b, L"LocalMatrixInput"), WouldMakeCycle);
}

TEST_F(ConnectionsTest, ANodeIsNotParentedBelowWhatItMoves) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    scene.connect(attribute(b, L"WorldMatrix"), attribute(a, L"LocalMatrixInput"));
    EXPECT_FALSE(a->canBeParentOf(*b));
    EXPECT_FALSE(a->addChild(*b));
    EXPECT_TRUE(b->addChild(*a));
    b->removeChild(*a);
    scene.disconnectInput(attribute(a, L"LocalMatrixInput"));
    EXPECT_TRUE(a->addChild(*b));
    EXPECT_EQ(scene.connect(attribute(b, L"WorldMatrix"), attribute(a, L"LocalMatrixInput")), WouldMakeCycle);
    EXPECT_EQ(scene.connect(attribute(b, L"LocalMatrix"), attribute(a, L"LocalMatrixInput")), Connected);
}

TEST_F(ConnectionsTest, FurtherParentsCountForCyclesBecauseTheyMayBecomeTheFirst) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b"), *child = make(L"Joint", L"child");
    a->addChild(*child);
    b->addChild(*child);
    EXPECT_EQ(scene.connect(attribute(child, L"WorldMatrix"), attribute(b, L"LocalMatrixInput")), WouldMakeCycle);
    EXPECT_EQ(scene.connect(attribute(child, L"ParentWorldMatrix"), attribute(b, L"LocalMatrixInput")), WouldMakeCycle);
    b->removeChild(*child);
    EXPECT_EQ(scene.connect(attribute(child, L"WorldMatrix"), attribute(b, L"LocalMatrixInput")), Connected);
    EXPECT_FALSE(b->addChild(*child));
    set(attribute(a, L"TranslationX"), 3);
    EXPECT_EQ(world(child).m[3][0], 3);
}

// ---- depth ----

TEST_F(ConnectionsTest, LongChainsEvaluateWithoutDeepRecursion) {
    constexpr int count = 100000;
    struct Case {
        wchar_t const* type;
        wchar_t const *from, *to;
    } const cases[] = {{L"Joint", L"WorldMatrix", L"LocalMatrixInput"},
                       {L"Joint", L"TranslationX", L"TranslationX"},
                       {L"Animation", L"OutputValue", L"InputValue"}};
    for (Case const& c : cases) {
        std::vector<Node*> chain;
        for (int i = 0; i < count; ++i) {
            chain.push_back(make(c.type, L""));
            if (chain.back()->isOfType(TransformNode::Def))
                attribute(chain.back(), L"TransformDataSource")
                    ->asEnum()
                    ->setValue(i > 0 && c.to == std::wstring(L"LocalMatrixInput") ? 3 : 0);
            else {
                attribute(chain.back(), L"KeyframeInputValues")->asFloatArray()->setValue({-1, 99});
                attribute(chain.back(), L"KeyframeOutputValues")->asFloatArray()->setValue({-1, 99});
            }
            if (i == 0) continue;
            ASSERT_EQ(scene.connect(attribute(chain[std::size_t(i - 1)], c.from), attribute(chain.back(), c.to)),
                      Connected);
        }
        bool const isCurve = chain[0]->isOfType(AnimationNode::Def);
        for (float x : {1.f, 2.f}) {
            set(attribute(chain[0], isCurve ? L"InputValue" : L"TranslationX"), x);
            float const got = isCurve ? get(attribute(chain.back(), L"OutputValue")) : world(chain.back()).m[3][0];
            EXPECT_EQ(got, x);
        }
        EXPECT_EQ(scene.connect(attribute(chain.back(), c.from), attribute(chain[0], c.to)), WouldMakeCycle);
        chain[count / 2]->remove();
        EXPECT_EQ(scene.getInputAttribute(attribute(chain[count / 2 + 1], c.to)), nullptr);
    }
}

TEST_F(ConnectionsTest, DeepHierarchiesEvaluateWithoutDeepRecursion) {
    Node* top = make(L"Joint", L"j");
    Node* last = top;
    for (int i = 0; i < 2000; ++i) {
        Node* next = make(L"Joint", L"j");
        last->addChild(*next);
        last = next;
    }
    set(attribute(top, L"TranslationX"), 4);
    EXPECT_EQ(world(last).m[3][0], 4);
}

// ---- children, elements, dynamic attributes ----

TEST_F(ConnectionsTest, ChildrenOfACompoundAreConnectedSingly) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    attribute(b, L"TransformDataSource")->asEnum()->setValue(2);
    for (wchar_t const* part : {L"RotationQuaternion.Z", L"RotationQuaternion.W"})
        EXPECT_EQ(scene.connect(attribute(a, part), attribute(b, part)), Connected);
    set(attribute(a, L"RotationQuaternion.W"), 0);
    set(attribute(a, L"RotationQuaternion.Z"), 1);  // half a turn about z
    EXPECT_NEAR(world(b).m[0][0], -1, 1e-6);
}

TEST_F(ConnectionsTest, CompoundsOfLikeChildrenAreConnectedWhole) {
    Node* joint = make(L"JointIKParams", L"params");
    Node* solver = make(L"IKSolver", L"solver");
    db::Attribute* from = attribute(joint, L"Parameters");
    db::Attribute* to = attribute(solver, L"JointIKParams")->asAttributeArray()->add();
    EXPECT_EQ(scene.connect(from, to), Connected);
    EXPECT_EQ(scene.connect(from, to), AlreadyConnected);
    EXPECT_EQ(scene.getInputAttribute(to), from);
    EXPECT_EQ(outputs(from), std::vector<db::Attribute*>{to});
    EXPECT_EQ(scene.getOutputCount(from), 1u);
    set(attribute(joint, L"Parameters.Stiffness"), 0.5f);
    EXPECT_EQ(get(attribute(solver, L"JointIKParams[0].Stiffness")), 0.5f);
    EXPECT_EQ(scene.connect(attribute(make(L"IKHandle", L"h"), L"SolverParameters"), to), KindsDiffer);
    EXPECT_TRUE(scene.disconnectInput(to));
    EXPECT_EQ(scene.getInputAttribute(to), nullptr);
    EXPECT_FALSE(scene.disconnectInput(to));
}

TEST_F(ConnectionsTest, RemovingAnElementTakesItsConnectionsAlong) {
    Node* handle = make(L"Joint", L"handle");
    Node* solver = make(L"IKSolver", L"solver");
    Node* reader = make(L"Joint", L"reader");
    db::AttributeArray& targets = *attribute(solver, L"InputTargets")->asAttributeArray();
    for (int i = 0; i < 3; ++i) scene.connect(attribute(handle, L"LocalMatrix"), targets.add());
    scene.connect(targets[1], attribute(reader, L"LocalMatrixInput"));
    scene.commitTransient();
    db::Attribute* removed = targets[1];
    targets.removeAt(1);
    scene.commitTransient();
    EXPECT_EQ(scene.getOutputCount(attribute(handle, L"LocalMatrix")), 2u);
    EXPECT_EQ(scene.getInputAttribute(attribute(reader, L"LocalMatrixInput")), nullptr);
    set(attribute(handle, L"TranslationX"), 2);
    EXPECT_EQ(targets[1]->asMatrix34()->getValue().m[3][0], 2);
    scene.commitTransient();
    scene.undo();
    scene.undo();
    EXPECT_EQ(targets[1], removed);
    EXPECT_EQ(scene.getInputAttribute(removed), attribute(handle, L"LocalMatrix"));
    set(attribute(handle, L"TranslationX"), 6);
    attribute(reader, L"TransformDataSource")->asEnum()->setValue(3);
    EXPECT_EQ(world(reader).m[3][0], 6);
}

TEST_F(ConnectionsTest, RemovingADynamicAttributeTakesItsConnectionsAlong) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *b = custom(n, L"b"), *c = custom(n, L"c");
    scene.connect(a, b);
    scene.connect(b, c);
    scene.commitTransient();
    EXPECT_TRUE(b->remove());
    scene.commitTransient();
    EXPECT_EQ(scene.getOutputCount(a), 0u);
    EXPECT_EQ(scene.getInputAttribute(c), nullptr);
    scene.clearUndoHistory();
    db::Attribute* again = custom(n, L"b");
    EXPECT_EQ(scene.connect(a, again), Connected);
    set(a, 3);
    EXPECT_EQ(get(again), 3);
}

// ---- removal ----

TEST_F(ConnectionsTest, ARemovedNodeComesBackWithAllItsConnections) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b"), *c = make(L"Joint", L"c");
    b->addChild(*c);
    scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX"));
    scene.connect(attribute(b, L"WorldMatrix"), attribute(a, L"LocalMatrixInput"));
    scene.connect(attribute(a, L"TranslationY"), attribute(c, L"TranslationY"));
    scene.commitTransient();
    b->remove();
    scene.commitTransient();
    EXPECT_EQ(scene.getOutputCount(attribute(a, L"TranslationX")), 0u);
    EXPECT_EQ(b->inputCount, 0);
    scene.undo();
    set(attribute(a, L"TranslationX"), 2);
    set(attribute(a, L"TranslationY"), 3);
    EXPECT_EQ(world(c).m[3][0], 2);
    EXPECT_EQ(world(c).m[3][1], 3);
    EXPECT_EQ(scene.getInputAttribute(attribute(a, L"LocalMatrixInput")), attribute(b, L"WorldMatrix"));
    b->remove();
    scene.clearUndoHistory();
    set(attribute(a, L"TranslationX"), 4);
    EXPECT_EQ(scene.getOutputCount(attribute(a, L"TranslationX")), 0u);
}

TEST_F(ConnectionsTest, ConnectionsAreNodesInChangeSets) {
    struct Seen : db::DatabaseObserver {
        void onDatabaseChanged(db::ChangeSet const& set, bool) override {
            added = removed = 0;
            for (db::Node* n : set.AddedNodes()) added += n->isOfType(Connection::Def);
            for (db::Node* n : set.RemovedNodes()) removed += n->isOfType(Connection::Def);
            changed = set.ChangedAttributes();
        }
        int added = 0, removed = 0;
        std::vector<db::Attribute*> changed;
    } seen;
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *b = custom(n, L"b");
    scene.commitTransient();
    scene.addObserver(&seen);
    auto expect = [&](int added, int removed) {
        EXPECT_EQ(seen.added, added);
        EXPECT_EQ(seen.removed, removed);
        EXPECT_NE(std::find(seen.changed.begin(), seen.changed.end(), b), seen.changed.end());
    };
    scene.connect(a, b);
    scene.commitTransient();
    expect(1, 0);
    scene.undo();
    expect(0, 1);
    scene.redo();
    expect(1, 0);
    scene.disconnectInput(b);
    scene.commitTransient();
    expect(0, 1);
    scene.removeObserver(&seen);
}

TEST_F(ConnectionsTest, AConnectionRemovedAsANodeIsBroken) {
    Node* n = make(L"Node", L"n");
    db::Attribute *a = custom(n, L"a"), *b = custom(n, L"b");
    scene.connect(a, b);
    set(a, 4);
    std::vector<Node*> all;
    scene.listAllNodes(all);
    ASSERT_EQ(all.size(), 2u);
    ASSERT_TRUE(all[1]->isNotAnObject());
    EXPECT_FALSE(n->addChild(*all[1]));
    EXPECT_EQ(all[1]->makeCopy(L"c"), nullptr);
    all[1]->remove();
    EXPECT_EQ(scene.getInputAttribute(b), nullptr);
    EXPECT_EQ(get(b), 4);
    scene.createNode(Connection::Def, L"loose")->remove();  // one without ends does nothing
    EXPECT_EQ(scene.makeNode(L"Connection", L"c"), nullptr);
}

// ---- what a value is made of ----

TEST_F(ConnectionsTest, AffectingAttributesLieOneStepBack) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX"));
    std::vector<db::Attribute*> out;
    scene.getAffectingAttributes(attribute(b, L"TranslationX"), out);
    EXPECT_EQ(out, std::vector<db::Attribute*>{attribute(a, L"TranslationX")});
    EXPECT_TRUE(scene.hasAffectingAttributes(attribute(b, L"TranslationX")));
    EXPECT_FALSE(scene.hasAffectingAttributes(attribute(b, L"TranslationY")));
    out.clear();
    scene.getAffectingAttributes(attribute(b, L"LocalMatrix"), out);
    EXPECT_NE(std::find(out.begin(), out.end(), attribute(b, L"RotationZ")), out.end());
    EXPECT_EQ(std::find(out.begin(), out.end(), attribute(b, L"ParentWorldMatrix")), out.end());
    EXPECT_TRUE(scene.hasAffectingAttributes(attribute(b, L"LocalMatrix")));
    scene.getAffectingAttributes(nullptr, out);
}

TEST_F(ConnectionsTest, CallComputeComputesWhatIsNotOutOfDate) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX"));
    world(b);
    auto const before = scene.evaluations();
    b->callCompute(*attribute(b, L"WorldMatrix"));
    EXPECT_GT(scene.evaluations(), before);
    set(attribute(a, L"TranslationX"), 3);
    b->callCompute(*attribute(b, L"TranslationX"));
    EXPECT_EQ(attribute(b, L"TranslationX")->asFloat()->raw(), 3);
    EXPECT_EQ(world(b).m[3][0], 3);
}

TEST_F(ConnectionsTest, NothingIsComputedThatNobodyReads) {
    Node *a = make(L"Joint", L"a"), *b = make(L"Joint", L"b");
    scene.connect(attribute(a, L"TranslationX"), attribute(b, L"TranslationX"));
    world(b);
    auto const before = scene.evaluations();
    for (int i = 0; i < 10; ++i) set(attribute(a, L"TranslationX"), float(i));
    EXPECT_EQ(scene.evaluations(), before);
    world(b);
    EXPECT_EQ(scene.evaluations(), before + 1);
    world(b);
    EXPECT_EQ(scene.evaluations(), before + 1);
}

}  // namespace
}  // namespace sg
