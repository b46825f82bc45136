// Nodes that come, go and return; moves; removal of what holds others.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct Structure : Fixture {};

TEST_F(Structure, ARemovedNodeTakesWhatLiesBelowAlongAndBringsItBack) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b"), *c = makeStep(L"c");
    step([&] { a->addChild(*b), b->addChild(*c); });
    int const id = c->getID();
    step([&] { a->remove(); });
    EXPECT_EQ(watcher.removed, (std::vector<Node*>{c, b, a}));
    EXPECT_TRUE(c->isRemoved() && b->isRemoved() && a->isRemoved());
    EXPECT_EQ(database.nodeCount(), 0u);
    EXPECT_FALSE(a->remove());
    database.undo();
    EXPECT_EQ(watcher.added.size(), 3u);
    EXPECT_EQ(database.lookupNode(id), c);
    EXPECT_EQ(c->getPath(), L"a|b|c");
    database.redo();
    EXPECT_EQ(database.lookupNode(id), nullptr);
}

TEST_F(Structure, ANodeComesBackToItsPlaceAmongItsSiblings) {
    std::vector<Node*> nodes;
    step([&] {
        for (int i = 0; i < 6; ++i) nodes.push_back(make(L"x"));
    });
    step([&] {
        for (int i : {2, 3, 0, 5}) nodes[std::size_t(i)]->remove();
    });
    EXPECT_EQ(nodes[1]->nextSibling(), nodes[4]);
    EXPECT_EQ(nodes[4]->nextSibling(), nullptr);
    EXPECT_EQ(nodes[1]->previousSibling(), nullptr);
    database.undo();
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(database.getChild(i), nodes[i]);
}

TEST_F(Structure, IDsAreNeverUsedAgain) {
    Node* a = makeStep(L"a");
    int const id = a->getID();
    step([&] { a->remove(); });
    database.clearUndoHistory();
    EXPECT_GT(makeStep(L"b")->getID(), id);
    EXPECT_EQ(database.lookupNode(id), nullptr);
}

TEST_F(Structure, ClearIsUndone) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b");
    step([&] { a->addChild(*b); });
    step([&] { database.clear(); });
    EXPECT_EQ(database.nodeCount(), 0u);
    database.undo();
    EXPECT_EQ(b->getPath(), L"a|b");
}

TEST_F(Structure, NeitherItselfNorAnAncestorNorTheDatabaseTakesAChildTwice) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b"), *c = makeStep(L"c");
    step([&] { EXPECT_TRUE(a->addChild(*b) && b->addChild(*c)); });
    EXPECT_FALSE(a->addChild(*a));
    EXPECT_FALSE(c->addChild(*a));
    EXPECT_FALSE(a->addChild(*b));
    EXPECT_FALSE(database.addChild(*c));
    EXPECT_FALSE(a->addChild(database));
    EXPECT_FALSE(database.removeChild(*a));
    EXPECT_FALSE(a->removeChild(*c));
    Database other;
    EXPECT_FALSE(a->addChild(*other.createNode(allDef(), L"x")));
    Node* detached = database.createDetached(allDef());
    EXPECT_FALSE(a->addChild(*detached));
    EXPECT_TRUE(detached->remove());
}

TEST_F(Structure, ARemovedChildIsNoLongerItsParentsToTakeOut) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b");
    step([&] { a->addChild(*b); });
    step([&] { b->remove(); });
    EXPECT_FALSE(a->removeChild(*b));
    EXPECT_FALSE(a->addChild(*b));
    EXPECT_EQ(a->getChildCount(), 0u);
}

TEST_F(Structure, ManyDiamondsAreWalkedOnce) {
    Node* above = makeStep(L"top");
    Node* const top = above;
    step([&] {
        for (int i = 0; i < 60; ++i) {  // 2^60 ways from the bottom up
            Node *left = make(L"l"), *right = make(L"r"), *below = make(L"b");
            above->addChild(*left), above->addChild(*right);
            left->addChild(*below), right->addChild(*below);
            above = below;
        }
    });
    EXPECT_FALSE(above->addChild(*top));
    EXPECT_TRUE(top->isAncestorOf(*above));
    std::vector<Node*> all;
    top->getDescendents(all);
    EXPECT_EQ(all.size(), 180u);
    step([&] { top->remove(); });
    EXPECT_EQ(database.nodeCount(), 0u);
    database.undo();
    EXPECT_EQ(database.nodeCount(), 181u);
}

struct Noticing : Node {
    using Node::Node;
    void preRemove(bool) override { isRemovedNode() ? ++late : ++before; }
    void postRemove(bool) override { isRemovedNode() ? ++after : ++late; }
    static int before, after, late;
};
int Noticing::before = 0, Noticing::after = 0, Noticing::late = 0;
Node* makeNoticing(void* at, NodeDef const& def) { return new (at) Noticing(def); }
NodeDef const noticingDef(L"test", L"Noticing", &allDef(), {}, sizeof(Noticing), makeNoticing);

TEST_F(Structure, EveryRemovedNodeIsToldBeforeAndAfter) {
    Node* a = database.createNode(noticingDef, L"a");
    a->addChild(*database.createNode(noticingDef, L"b"));
    step([&] { a->remove(); });
    EXPECT_EQ(Noticing::before, 2);
    EXPECT_EQ(Noticing::after, 2);
    EXPECT_EQ(Noticing::late, 0);
}

TEST_F(Structure, ADeepChainNeedsNoDeepStack) {
    Node* const top = makeStep(L"x");
    step([&] {
        for (Node* at = top; int i : std::vector<int>(20000)) {
            (void)i;
            Node* next = make(L"x");
            at->addChild(*next);
            at = next;
        }
    });
    std::vector<Node*> all;
    top->getDescendents(all);
    EXPECT_EQ(all.size(), 20000u);
    step([&] { top->remove(); });
    database.undo();
    EXPECT_EQ(database.nodeCount(), 20001u);
}

TEST_F(Structure, TypesKnowTheirBase) {
    Node* a = database.createNode(noticingDef, L"a");
    EXPECT_TRUE(a->isOfType(allDef()) && a->isNodeType(noticingDef));
    EXPECT_FALSE(makeStep(L"b")->isOfType(noticingDef));
    Registry& r = Registry::getInstance();
    EXPECT_EQ(r.getNodeDef(L"test", L"Noticing", false), &noticingDef);
    EXPECT_EQ(r.getNodeDef(noticingDef.getTypeID()), &noticingDef);
    EXPECT_EQ(r.getNodeDef(L"test", L"None", false), nullptr);
    EXPECT_EQ(r.getNodeDef(-1), nullptr);
    EXPECT_EQ(a->getDefaultName(), L"Noticing");
}

}  // namespace
}  // namespace db::test
