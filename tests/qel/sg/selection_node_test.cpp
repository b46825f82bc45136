// The selection as a node: its answers follow the two arrays, whatever changes them.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

struct SelectionNodeTest : ::testing::Test {
    SelectionNodeTest() {
        for (wchar_t const* name : {L"a", L"b", L"c"}) nodes.push_back(scene.makeNode(L"Joint", name));
        scene.commitTransient();
    }
    db::PointerArrayAttribute& entities() { return selection->at<db::PointerArrayAttribute>(SelectionNode::Entities); }
    db::IntArrayAttribute& numbers() { return selection->at<db::IntArrayAttribute>(SelectionNode::SubEntities); }
    std::vector<bool> has() const {
        std::vector<bool> out;
        for (Node const* node : nodes) out.push_back(selection->hasEntity(node));
        return out;
    }
    template<class F> void step(F const& edit) {
        db::ChangeBlock const block(&scene, L"step");
        edit();
    }

    Scene scene;
    SelectionNode* selection = static_cast<SelectionNode*>(scene.makeNode(L"Selection", L"selection"));
    std::vector<Node*> nodes;
};
using Answers = std::vector<bool>;
using Nodes = std::vector<db::Node const*>;

TEST_F(SelectionNodeTest, FollowsEveryKindOfEdit) {
    EXPECT_EQ(has(), (Answers{0, 0, 0}));
    entities().add(nodes[0]);
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
    entities().add(nodes[1]);
    EXPECT_EQ(has(), (Answers{1, 1, 0}));
    entities().setElement(nodes[2], 0);
    EXPECT_EQ(has(), (Answers{0, 1, 1}));
    entities().insert(nodes[0], 1);
    EXPECT_EQ(has(), (Answers{1, 1, 1}));
    entities().removeAt(2);
    EXPECT_EQ(has(), (Answers{1, 0, 1}));
    entities().resize(1);
    EXPECT_EQ(has(), (Answers{0, 0, 1}));
    entities().setValue({db::AttributeHandle(nodes[1])});
    EXPECT_EQ(has(), (Answers{0, 1, 0}));
    entities().raw()[0] = db::AttributeHandle(nodes[0]);
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
    entities().setToDefaultValue();
    EXPECT_EQ(has(), (Answers{0, 0, 0}));
}

TEST_F(SelectionNodeTest, FollowsUndoRedoAndCancel) {
    step([&] { entities().add(nodes[0]); });
    step([&] { entities().setElement(nodes[1], 0); });
    EXPECT_EQ(has(), (Answers{0, 1, 0}));
    scene.undo();
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
    scene.undo();
    EXPECT_EQ(has(), (Answers{0, 0, 0}));
    scene.redo(), scene.redo();
    EXPECT_EQ(has(), (Answers{0, 1, 0}));
    scene.beginChangeBlock();
    entities().setElement(nodes[2], 0);
    EXPECT_EQ(has(), (Answers{0, 0, 1}));
    scene.cancel();
    EXPECT_EQ(has(), (Answers{0, 1, 0}));
}

TEST_F(SelectionNodeTest, FollowsAConnection) {
    auto* other = static_cast<SelectionNode*>(scene.makeNode(L"Selection", L"other"));
    auto& source = other->at<db::PointerArrayAttribute>(SelectionNode::Entities);
    ASSERT_LE(scene.connect(&source, &entities()), Connected);
    source.add(nodes[2]);
    EXPECT_EQ(has(), (Answers{0, 0, 1}));
    source.setElement(nodes[0], 0);
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
    selection->removeEntity(nodes[0]);  // what flows in is not edited
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
    selection->removeEntities({nodes[0]});
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
}

TEST_F(SelectionNodeTest, WhatIsRemovedIsNotThereUntilItComesBack) {
    step([&] { entities().add(nodes[0]); });
    step([&] { nodes[0]->remove(); });
    EXPECT_FALSE(selection->hasEntity(nodes[0]));
    EXPECT_TRUE(selection->hasEntity(nullptr));
    scene.undo();
    EXPECT_TRUE(selection->hasEntity(nodes[0]));
    EXPECT_FALSE(selection->hasEntity(nullptr));
}

TEST_F(SelectionNodeTest, ANewNodeInThePlaceOfADeadOneIsAnother) {
    step([&] { entities().add(nodes[2]); });
    EXPECT_TRUE(selection->hasEntity(nodes[2]));
    step([&] { nodes[2]->remove(); });
    scene.clearUndoHistory();
    for (int i = 0; i < 100; ++i) EXPECT_FALSE(selection->hasEntity(scene.makeNode(L"Joint", L"new")));
    EXPECT_TRUE(selection->hasEntity(nullptr));
    selection->removeEntity(nullptr);
    EXPECT_EQ(entities().size(), 0u);
}

TEST_F(SelectionNodeTest, ANodeOfAnotherSceneWithTheSameIdIsAnother) {
    Scene other;
    other.makeNode(L"Selection", L"selection");
    Node* const twin = other.makeNode(L"Joint", L"a");
    ASSERT_EQ(twin->getID(), nodes[0]->getID());
    entities().add(nodes[0]);
    EXPECT_FALSE(selection->hasEntity(twin));
}

TEST_F(SelectionNodeTest, AnAttributeStandsForItsNode) {
    entities().add(&nodes[0]->at<db::Attribute>(TransformNode::Translation));
    db::Attribute* const part = nodes[1]->addDynamicFloat(L"part", 0, 0, 1);
    entities().add(part);
    EXPECT_EQ(has(), (Answers{1, 1, 0}));
    scene.commitTransient();
    step([&] { part->remove(); });
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
    EXPECT_TRUE(selection->hasEntity(nullptr));
    scene.undo();
    EXPECT_EQ(has(), (Answers{1, 1, 0}));
    selection->removeEntity(nodes[1]);
    EXPECT_EQ(has(), (Answers{1, 0, 0}));
}

TEST_F(SelectionNodeTest, TakesOutTheFirstOfEqualOnes) {
    auto const fill = [&] {
        entities().clearArray();
        for (std::size_t i : {0u, 1u, 0u, 2u, 0u}) entities().add(nodes[i]);
    };
    auto const left = [&] {
        Nodes out;
        for (std::size_t i = 0; i < entities().size(); ++i) out.push_back(entities().getElement(i)->asNode());
        return out;
    };
    fill();
    selection->removeEntity(nodes[0]);
    EXPECT_EQ(left(), (Nodes{nodes[1], nodes[0], nodes[2], nodes[0]}));
    EXPECT_EQ(has(), (Answers{1, 1, 1}));
    selection->removeEntity(nodes[2]);
    selection->removeEntity(nodes[2]);
    EXPECT_EQ(left(), (Nodes{nodes[1], nodes[0], nodes[0]}));
    EXPECT_EQ(has(), (Answers{1, 1, 0}));
    fill();
    selection->removeEntities({nodes[0], nodes[2], nodes[0], nodes[2]});
    EXPECT_EQ(left(), (Nodes{nodes[1], nodes[0]}));
    EXPECT_EQ(has(), (Answers{1, 1, 0}));
}

TEST_F(SelectionNodeTest, NumbersFollowLikewise) {
    for (int number : {4, 7, 4}) numbers().add(number);
    EXPECT_TRUE(selection->hasSubEntity(4) && selection->hasSubEntity(7) && !selection->hasSubEntity(5));
    selection->removeSubEntity(4);
    EXPECT_EQ(numbers().getValue(), (std::vector<int>{7, 4}));
    selection->removeSubEntity(4);
    selection->removeSubEntity(5);
    EXPECT_EQ(numbers().getValue(), std::vector<int>{7});
    EXPECT_FALSE(selection->hasSubEntity(4));
    numbers().setElement(9, 0);
    EXPECT_TRUE(selection->hasSubEntity(9) && !selection->hasSubEntity(7));
}

TEST_F(SelectionNodeTest, IsThereInADocumentThatIsLoaded) {
    entities().add(nodes[1]);
    scene.commitTransient();
    db::StringOutputStream document;
    ASSERT_TRUE(db::SaverXML(document).save(scene));
    Scene loaded;
    db::StringInputStream in(document.text());
    ASSERT_TRUE(db::LoaderXML(in).load(loaded));
    auto* const node = static_cast<SelectionNode*>(loaded.findNode(L"selection"));
    ASSERT_TRUE(node);
    EXPECT_TRUE(node->hasEntity(loaded.findNode(L"b")));
    EXPECT_FALSE(node->hasEntity(loaded.findNode(L"a")));
}

}  // namespace
}  // namespace sg
