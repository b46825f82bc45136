// What a commit says that it changed.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct ChangeSets : Fixture {
    using Nodes = std::vector<Node*>;
};

TEST_F(ChangeSets, StartEmpty) {
    ChangeSet set;
    EXPECT_TRUE(set.empty());
    EXPECT_FALSE(set.hasChanged(nullptr, false, false));
    EXPECT_FALSE(set.hasChanged(*makeStep(L"n"), true, false));
    EXPECT_FALSE(set.hasTypeChanged(allDef().getTypeID()));
}

TEST_F(ChangeSets, AnswerForTheAttributeItselfItsNodeAndItsType) {
    Node *n = makeStep(L"n"), *m = makeStep(L"m");
    Attribute* child = n->findAttribute(L"Compound.First");
    bool asked = false;
    watcher.then = [&](ChangeSet const& set) {
        asked = true;
        EXPECT_TRUE(set.hasChanged(child, false, false));
        EXPECT_TRUE(set.hasChanged(n, false, false));
        EXPECT_FALSE(set.hasChanged(m, true, false));
        EXPECT_FALSE(set.hasChanged(number(n), false, false));
        EXPECT_FALSE(set.hasChanged(n->findAttribute(L"Compound"), false, false));
        EXPECT_TRUE(set.hasChanged(n->findAttribute(L"Compound"), true, false));
        EXPECT_TRUE(set.hasTypeChanged(allDef().getTypeID()));
        EXPECT_FALSE(set.hasTypeChanged(Database::Def.getTypeID()));
        EXPECT_EQ(set.ChangedNodes(allDef().getTypeID()), Nodes{n});
    };
    step([&] { child->asFloat()->setValue(3), child->asFloat()->setValue(4); });
    EXPECT_TRUE(asked);
    EXPECT_EQ(watcher.attributes.size(), 1u);
}

TEST_F(ChangeSets, ListStructureOnceEach) {
    Node *p = makeStep(L"p"), *q = makeStep(L"q"), *n = makeStep(L"n");
    step([&] {
        p->addChild(*n), p->removeChild(*n), q->addChild(*n);
        n->setName(L"x"), n->setName(L"y");
    });
    EXPECT_EQ(watcher.reparented, Nodes{n});
    EXPECT_EQ(watcher.renamed, Nodes{n});
    database.undo();
    EXPECT_EQ(watcher.reparented, Nodes{n});
    EXPECT_EQ(watcher.renamed, Nodes{n});
}

TEST_F(ChangeSets, ANodeMadeAndRemovedInOneStepIsInBothLists) {
    Node* n = nullptr;
    step([&] { n = make(L"n"), n->remove(); });
    EXPECT_EQ(watcher.added, Nodes{n});
    EXPECT_EQ(watcher.removed, Nodes{n});
}

TEST_F(ChangeSets, OfACancelTellWhatWentBack) {
    Node* n = makeStep(L"n");
    database.beginChangeBlock();
    number(n).setValue(3);
    Node* m = make(L"m");
    database.cancel();
    EXPECT_EQ(watcher.attributes, std::vector<Attribute*>{&number(n)});
    EXPECT_EQ(watcher.removed, Nodes{m});
}

TEST_F(ChangeSets, AreSortedByIDWithinAType) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b");
    watcher.then = [&](ChangeSet const& set) {
        EXPECT_EQ(set.ChangedNodes(), (Nodes{b, a}));
        EXPECT_EQ(set.ChangedNodes(allDef().getTypeID()), (Nodes{a, b}));
    };
    step([&] { number(b).setValue(1), number(a).setValue(1); });
}

}  // namespace
}  // namespace db::test
