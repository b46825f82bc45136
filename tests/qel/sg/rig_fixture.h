// A scene for the nodes of rigs and constraints, with short ways to read and write attributes by number.
#pragma once
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <cmath>
#include <gtest/gtest.h>

namespace sg {

struct RigTest : ::testing::Test {
    static db::Attribute* attribute(Node* n, int number) { return n->getAttribute(std::size_t(number)); }
    static float get(Node* n, int number) { return n->at<db::FloatAttribute>(number).getValue(); }
    static void set(Node* n, int number, float value) { n->at<db::FloatAttribute>(number).setValue(value); }
    static Qelp::Vector3 vector(Node* n, int first) { return {get(n, first), get(n, first + 1), get(n, first + 2)}; }
    static void set(Node* n, int first, Qelp::Vector3 const& v) {
        set(n, first, v.x), set(n, first + 1, v.y), set(n, first + 2, v.z);
    }
    static Qelp::Matrix34 matrix(Node* n, int number) { return n->at<db::Matrix34Attribute>(number).getValue(); }
    static void set(Node* n, int number, Qelp::Matrix34 const& m) { n->at<db::Matrix34Attribute>(number).setValue(m); }
    static bool flag(Node* n, int number) { return n->at<db::BoolAttribute>(number).getValue(); }
    static void setFlag(Node* n, int number, bool value) { n->at<db::BoolAttribute>(number).setValue(value); }
    static void refer(Node* n, int number, db::Attribute* to) { n->at<db::PointerAttribute>(number).setValue(to); }

    Node* make(wchar_t const* type, Node* parent = nullptr) {
        Node* n = scene.makeNode(type, type);
        if (parent) parent->addChild(*n);
        return n;
    }
    // A transform that stands there.
    Node* place(Qelp::Vector3 const& translation, Qelp::Vector3 const& rotation = {}, Node* parent = nullptr) {
        Node* n = make(L"Transform", parent);
        set(n, TransformNode::Translation, translation);
        set(n, TransformNode::Rotation, rotation);
        return n;
    }
    ConnectionResult connect(Node* from, int out, Node* to, int in) {
        return scene.connect(attribute(from, out), attribute(to, in), true, true);
    }
    void connectVector(Node* from, int out, Node* to, int in) {
        for (int i = 0; i < 3; ++i) EXPECT_EQ(connect(from, out + i, to, in + i), Connected);
    }
    // A new target of a constraint or a pin, connected from the transform.
    db::CompositeAttribute& addTarget(Node* constraint, Node* target, float weight = 1) {
        auto& element =
            *constraint->at<db::AttributeArray>(KinematicsConstraintNode::InputMatrices).add()->asComposite();
        EXPECT_EQ(scene.connect(attribute(target, TransformNode::WorldMatrix), element.getAttribute(0)), Connected);
        element.getAttribute(2)->asFloat()->setValue(weight);
        return element;
    }
    std::uint64_t work(auto const& reads) {
        std::uint64_t const before = scene.evaluations();
        reads();
        return scene.evaluations() - before;
    }
    static Qelp::Matrix34 euler(Qelp::Vector3 const& angles, int order = 0) {
        Qelp::Matrix34 m;
        Qelutils::eulerToMatrix(angles, order, m);
        return m;
    }
    static void expectNear(Qelp::Matrix34 const& a, Qelp::Matrix34 const& b, float tolerance = 1e-5F) {
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j) EXPECT_NEAR(a.m[i][j], b.m[i][j], tolerance) << i << ", " << j;
    }
    static void expectNear(Qelp::Vector3 const& a, Qelp::Vector3 const& b, float tolerance = 1e-5F) {
        EXPECT_NEAR(a.x, b.x, tolerance);
        EXPECT_NEAR(a.y, b.y, tolerance);
        EXPECT_NEAR(a.z, b.z, tolerance);
    }
    static constexpr float pi = 3.14159265F;
    Scene scene;
};

}  // namespace sg
