#include "tests/qel/db/test_nodes.h"
#include <gtest/gtest.h>

namespace db::test {
namespace {

struct CountingObserver : DatabaseObserver {
    void onDatabaseChanged(ChangeSet const& set, bool transient) override {
        ++told;
        lastTransient = transient;
        changed = set.ChangedAttributes().size();
    }
    int told = 0;
    bool lastTransient = false;
    std::size_t changed = 0;
};

struct DatabaseTest : ::testing::Test {
    Node* make(wchar_t const* name) { return database.createNode(allDef(), name); }
    Database database;
};

TEST_F(DatabaseTest, AWriteIsUndoneAndRedone) {
    database.beginChangeBlock();
    Node* n = make(L"a");
    database.endChangeBlock(L"make");
    database.beginChangeBlock();
    get<FloatAttribute>(n, L"Float").setValue(2);
    get<FloatAttribute>(n, L"Float").setValue(3);
    database.endChangeBlock(L"write");
    EXPECT_EQ(database.getUndoLabel(), L"write");
    EXPECT_TRUE(database.undo());
    EXPECT_EQ(get<FloatAttribute>(n, L"Float").getValue(), 0.5f);
    EXPECT_TRUE(database.redo());
    EXPECT_EQ(get<FloatAttribute>(n, L"Float").getValue(), 3.f);
}

TEST_F(DatabaseTest, NestedBlocksCommitOnceWithTheOuterLabel) {
    CountingObserver o;
    database.addObserver(&o);
    Node* n = make(L"a");
    database.commitTransient();
    database.beginChangeBlock();
    database.beginChangeBlock();
    get<IntAttribute>(n, L"Integer").setValue(1);
    database.endChangeBlock(L"inner");
    EXPECT_EQ(o.told, 1);
    database.endChangeBlock(L"outer");
    EXPECT_EQ(o.told, 2);
    EXPECT_EQ(database.getUndoLabel(), L"outer");
    EXPECT_EQ(database.getUndoCount(), 2u);
}

TEST_F(DatabaseTest, ARemovedNodeComesBackWithItsID) {
    database.beginChangeBlock();
    Node* a = make(L"a");
    Node* b = make(L"b");
    a->addChild(*b);
    database.endChangeBlock(L"make");
    int const id = b->getID();
    NodeHandle handle(b);
    database.beginChangeBlock();
    a->remove();
    database.endChangeBlock(L"remove");
    EXPECT_EQ(database.lookupNode(id), nullptr);
    EXPECT_FALSE(handle.isAlive());
    database.undo();
    EXPECT_EQ(database.lookupNode(id), b);
    EXPECT_TRUE(handle.isAlive());
    EXPECT_EQ(b->getPath(), L"a|b");
    EXPECT_EQ(database.findNodeByPath(L"a|b"), b);
}

TEST_F(DatabaseTest, LikeNamedSiblingsGetNumbers) {
    make(L"Joint");
    Node* second = make(L"Joint");
    Node* third = make(L"Joint");
    EXPECT_EQ(second->getNodeName(), L"Joint1");
    EXPECT_EQ(third->getNodeName(), L"Joint2");
    second->remove();
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint1");
}

TEST_F(DatabaseTest, CancelTakesTheOpenBlockBackAndLeavesWhatWasPending) {
    Node* n = make(L"a");
    get<FloatAttribute>(n, L"Float").setValue(2);
    database.beginChangeBlock();
    get<FloatAttribute>(n, L"Float").setValue(3);
    get<FloatArrayAttribute>(n, L"FloatArray").add(1);
    make(L"b");
    database.cancel();
    EXPECT_EQ(get<FloatAttribute>(n, L"Float").getValue(), 2.f);
    EXPECT_EQ(get<FloatArrayAttribute>(n, L"FloatArray").size(), 0u);
    EXPECT_EQ(database.findNodeByPath(L"b"), nullptr);
    database.endChangeBlock();
    database.commitTransient();
    EXPECT_TRUE(database.undo());
    EXPECT_EQ(database.findNodeByPath(L"a"), nullptr);
}

TEST_F(DatabaseTest, ElementsOfAttributeArraysAreUndone) {
    Node* n = make(L"a");
    database.commitTransient();
    auto& elements = get<AttributeArray>(n, L"Elements");
    database.beginChangeBlock();
    elements.add();
    elements.add();
    n->findAttribute(L"Elements[1].First")->asFloat()->setValue(9);
    database.endChangeBlock(L"add");
    Attribute* first = n->findAttribute(L"Elements[1].First");
    EXPECT_EQ(first->getLocalPathName(), L"Elements[1].First");
    AttributeHandle handle(first);
    database.undo();
    EXPECT_EQ(elements.size(), 0u);
    EXPECT_EQ(handle.getRef(), nullptr);
    database.redo();
    ASSERT_EQ(handle.getRef(), first);
    EXPECT_EQ(first->asFloat()->getValue(), 9.f);
    EXPECT_EQ(database.lookupAttribute(first->getID()), first);
}

TEST_F(DatabaseTest, NothingIsUndoneOfWhatHappenedUnderALimitOfZero) {
    database.setMaxUndoItems(0);
    database.beginChangeBlock();
    Node* n = make(L"a");
    get<FloatAttribute>(n, L"Float").setValue(3);
    database.endChangeBlock(L"x");
    database.setMaxUndoItems(100000);
    EXPECT_FALSE(database.undo());
    EXPECT_EQ(get<FloatAttribute>(n, L"Float").getValue(), 3.f);
}

}  // namespace
}  // namespace db::test
