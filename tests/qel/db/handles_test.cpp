// Handles to nodes, attributes and elements, and references in attributes, through removal, return and death.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct Handles : Fixture {
    Node* n = makeStep(L"n");
    Node* holder = makeStep(L"holder");
    PointerAttribute& pointer = get<PointerAttribute>(holder, L"Pointer");
};

TEST_F(Handles, AnEmptyOneIsNull) {
    EXPECT_EQ(AttributeHandle().getRef(), nullptr);
    EXPECT_EQ(NodeHandle().getRef(), nullptr);
    EXPECT_FALSE(NodeHandle().isAlive());
    EXPECT_EQ(AttributeHandle(nullptr).getRefOrRemoved(), nullptr);
}

TEST_F(Handles, FollowRemovalReturnAndDeath) {
    NodeHandle node(n);
    AttributeHandle attribute(&number(n));
    step([&] { n->remove(); });
    EXPECT_FALSE(node.isAlive());
    EXPECT_EQ(node.getRef(), n);
    EXPECT_EQ(attribute.getRef(), nullptr);
    EXPECT_EQ(attribute.getRefOrRemoved(), &number(n));
    EXPECT_EQ(AttributeHandle(&number(n)), attribute) << "made while it is removed";
    database.undo();
    EXPECT_TRUE(node.isAlive());
    EXPECT_EQ(attribute.getRef(), &number(n));
    database.redo();
    database.clearUndoHistory();
    EXPECT_EQ(node.getRef(), nullptr);
    EXPECT_EQ(attribute.getRefOrRemoved(), nullptr);
}

TEST_F(Handles, OfElementsFollowTheElementAndItsNode) {
    step([&] { elements(n).resize(2); });
    AttributeHandle first(n->findAttribute(L"Elements[0].First")), second(n->findAttribute(L"Elements[1].First"));
    step([&] { elements(n).removeAt(0); });
    EXPECT_EQ(first.getRef(), nullptr);
    EXPECT_EQ(second.getRef(), n->findAttribute(L"Elements[0].First"));
    step([&] { n->remove(); });
    EXPECT_EQ(second.getRef(), nullptr);
    database.undo();
    EXPECT_NE(second.getRef(), nullptr);
    database.undo();
    EXPECT_NE(first.getRef(), nullptr);
    step([&] { n->remove(); });
    database.clearUndoHistory();
    EXPECT_EQ(first.getRefOrRemoved(), nullptr);
    EXPECT_EQ(second.getRefOrRemoved(), nullptr);
}

TEST_F(Handles, OutliveTheirDatabase) {
    NodeHandle node;
    AttributeHandle attribute, element;
    {
        Database other;
        Node* m = other.createNode(allDef(), L"m");
        node = NodeHandle(m);
        attribute = AttributeHandle(&number(m));
        element = AttributeHandle(elements(m).add());
    }
    EXPECT_EQ(node.getRef(), nullptr);
    EXPECT_EQ(attribute.getRef(), nullptr);
    EXPECT_EQ(element.getRef(), nullptr);
}

TEST_F(Handles, ANewNodeInTheSameMemoryIsAnother) {
    NodeHandle node(n);
    step([&] { n->remove(); });
    database.clearUndoHistory();
    Node* next = makeStep(L"n");
    NodeHandle other(next);
    EXPECT_EQ(node.getRef(), nullptr);
    EXPECT_EQ(other.getRef(), next);
}

TEST_F(Handles, APointerIsNullWhileItsTargetIsRemovedAndForGoodOnceItDied) {
    step([&] { pointer.setValue(&number(n)); });
    EXPECT_EQ(pointer.getValue(), &number(n));
    step([&] { n->remove(); });
    EXPECT_EQ(pointer.getValue(), nullptr);
    database.undo();
    EXPECT_EQ(pointer.getValue(), &number(n));
    database.redo();
    database.clearUndoHistory();
    EXPECT_EQ(pointer.getValue(), nullptr);
    step([&] { pointer.setValue(holder); });
    EXPECT_EQ(pointer.getValue(), holder);
    database.undo();
    EXPECT_EQ(pointer.getValue(), nullptr);
}

TEST_F(Handles, PointersInArraysReadNullInTheirPlace) {
    auto& array = get<PointerArrayAttribute>(holder, L"PointerArray");
    step([&] { array.add(n), array.add(holder), array.insert(nullptr, 0); });
    step([&] { n->remove(); });
    EXPECT_EQ(array.size(), 3u);
    EXPECT_EQ(array.getElement(1), nullptr);
    EXPECT_EQ(array.getElement(2), holder);
    EXPECT_EQ(array.getElement(3), nullptr);
    database.undo();
    EXPECT_EQ(array.getElement(1), n);
}

}  // namespace
}  // namespace db::test
