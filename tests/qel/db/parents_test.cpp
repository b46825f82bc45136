// Nodes with several parents.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct Parents : Fixture {
    Parents() {
        step([&] { p->addChild(*c), q->addChild(*c), r->addChild(*c); });
    }
    std::vector<Node*> parents() {
        std::vector<Node*> all;
        for (std::size_t i = 0; i < c->getParentCount(); ++i) all.push_back(c->getParent(i));
        return all;
    }
    using Nodes = std::vector<Node*>;
    Node *p = makeStep(L"p"), *q = makeStep(L"q"), *r = makeStep(L"r"), *c = makeStep(L"c");
};

TEST_F(Parents, TheFirstIsThePrimaryOne) {
    EXPECT_EQ(parents(), (Nodes{p, q, r}));
    EXPECT_EQ(c->getParent(3), nullptr);
    EXPECT_EQ(c->getPath(), L"p|c");
    EXPECT_EQ(database.findNodeByPath(L"r|c"), c);
    EXPECT_EQ(database.getChildCount(), 3u);
}

TEST_F(Parents, TheNextOneBecomesPrimaryAndUndoRestoresTheOrder) {
    step([&] { EXPECT_TRUE(p->removeChild(*c)); });
    EXPECT_EQ(parents(), (Nodes{q, r}));
    EXPECT_EQ(c->getPath(), L"q|c");
    EXPECT_EQ(watcher.reparented, Nodes{c});
    database.undo();
    EXPECT_EQ(parents(), (Nodes{p, q, r}));
    database.redo();
    EXPECT_EQ(parents(), (Nodes{q, r}));
}

TEST_F(Parents, AFurtherOneIsRemovedAlone) {
    step([&] { q->removeChild(*c); });
    EXPECT_EQ(parents(), (Nodes{p, r}));
    database.undo();
    EXPECT_EQ(parents(), (Nodes{p, q, r}));
}

TEST_F(Parents, WithoutAnyItStandsAtTheTop) {
    step([&] { p->removeChild(*c), q->removeChild(*c), r->removeChild(*c); });
    EXPECT_EQ(c->getParentCount(), 0u);
    EXPECT_EQ(c->getPath(), L"c");
    database.undo();
    EXPECT_EQ(parents(), (Nodes{p, q, r}));
}

TEST_F(Parents, RemovingOneLeavesTheChildToTheOthers) {
    step([&] { p->remove(); });
    EXPECT_FALSE(c->isRemoved());
    EXPECT_EQ(parents(), (Nodes{q, r}));
    step([&] { q->remove(), r->remove(); });
    EXPECT_TRUE(c->isRemoved());
    database.undo();
    database.undo();
    EXPECT_EQ(parents(), (Nodes{p, q, r}));
}

TEST_F(Parents, RemovingTheChildTakesItOutOfAll) {
    step([&] { c->remove(); });
    EXPECT_EQ(p->getChildCount() + q->getChildCount() + r->getChildCount(), 0u);
    database.undo();
    EXPECT_EQ(q->getChild(0), c);
    EXPECT_EQ(r->findChild(L"c"), c);
}

TEST_F(Parents, ANewNameIsFoundUnderAllOfThem) {
    step([&] { c->setName(L"d"); });
    for (Node* parent : {p, q, r}) {
        EXPECT_EQ(parent->findChild(L"d"), c);
        EXPECT_EQ(parent->findChild(L"c"), nullptr);
    }
    database.undo();
    EXPECT_EQ(r->findChild(L"c"), c);
}

TEST_F(Parents, UnderAFurtherParentALookupPrefersItsOwn) {
    Node* own = nullptr;
    step([&] {
        Node* s = make(L"s");
        s->addChild(*(own = make(L"c")));
        s->addChild(*c);
        EXPECT_EQ(s->findChild(L"c"), own);
    });
    EXPECT_EQ(database.findNodeByPath(own->getPath()), own);
    EXPECT_EQ(database.findNodeByPath(c->getPath()), c);
}

TEST_F(Parents, WhoBecomesPrimaryMakesTheNameUnique) {
    Node* other = nullptr;
    step([&] {
        q->removeChild(*c);
        q->addChild(*(other = make(L"c")));
        q->addChild(*c);
        r->removeChild(*c);
    });
    step([&] { p->removeChild(*c); });
    EXPECT_EQ(c->getPath(), L"q|c1");
    EXPECT_EQ(watcher.renamed, Nodes{c});
    database.undo();
    EXPECT_EQ(c->getPath(), L"p|c");
    EXPECT_EQ(other->getPath(), L"q|c");
}

TEST_F(Parents, DescendentsAreListedOnce) {
    Node* top = makeStep(L"top");
    step([&] { top->addChild(*p), top->addChild(*q), top->addChild(*r); });
    Nodes all;
    top->getDescendents(all);
    EXPECT_EQ(all, (Nodes{p, c, q, r}));
}

}  // namespace
}  // namespace db::test
