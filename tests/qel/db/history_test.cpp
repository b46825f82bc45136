// Blocks in both modes, what joins which step, limits, the checkpoint.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct History : Fixture {
    Node* n = makeStep(L"n");
    float value() { return number(n).getValue(); }
    void set(float v) { number(n).setValue(v); }
};

TEST_F(History, AnEndWithoutABeginningDoesNothing) {
    set(2);
    database.endChangeBlock(L"nothing");
    EXPECT_EQ(database.getUndoCount(), 1u);
    EXPECT_EQ(watcher.told(), 1u);
}

TEST_F(History, AnEmptyBlockMakesNoStepAndTellsNobody) {
    step([] {});
    gesture([] {});
    database.commitTransient();
    EXPECT_EQ(database.getUndoCount(), 1u);
    EXPECT_EQ(watcher.told(), 1u);
}

TEST_F(History, AnEmptyBlockThatKeepsItsStepMakesOneThatHoldsNothing) {
    database.setCheckpoint();
    step([&] { database.keepStep(); }, L"kept");
    EXPECT_EQ(database.getUndoCount(), 2u);
    EXPECT_EQ(database.getUndoLabel(), L"kept");
    EXPECT_EQ(watcher.told(), 2u);
    EXPECT_TRUE(database.isAtCheckpoint());
    EXPECT_TRUE(database.undo());
    EXPECT_TRUE(database.isAtCheckpoint());
    EXPECT_FALSE(n->isRemoved());
    EXPECT_TRUE(database.redo());
    step([] {});  // the next one keeps nothing
    EXPECT_EQ(database.getUndoCount(), 2u);
}

TEST_F(History, OnlyTheOutermostRecordedBlockKeepsItsStep) {
    database.keepStep();
    step([&] { step([&] { database.keepStep(); }); });
    gesture([&] { database.keepStep(); });
    EXPECT_EQ(database.getUndoCount(), 1u);
    database.beginChangeBlock();
    database.keepStep();
    database.cancel();
    step([] {});
    EXPECT_EQ(database.getUndoCount(), 1u);
    step([&] {
        database.keepStep();
        step([] {});
    });
    EXPECT_EQ(database.getUndoCount(), 2u);
}

TEST_F(History, AStepThatHoldsNothingEndsWhatCouldBeRedone) {
    step([&] { set(2); });
    database.undo();
    step([&] { database.keepStep(); });
    EXPECT_EQ(database.getRedoCount(), 0u);
    EXPECT_EQ(database.getUndoCount(), 2u);
}

TEST_F(History, TheOuterBlockDecidesTheMode) {
    gesture([&] { step([&] { set(2); }, L"inner"); });
    EXPECT_EQ(database.getUndoCount(), 1u);
    EXPECT_EQ(watcher.transient.back(), true);
    step([&] { gesture([&] { set(3); }); }, L"outer");
    EXPECT_EQ(database.getUndoLabel(), L"outer");
    EXPECT_EQ(watcher.transient.back(), false);
}

TEST_F(History, AWriteOutsideABlockGoesThroughAndJoinsTheNextStep) {
    set(2);
    EXPECT_EQ(value(), 2);
    EXPECT_EQ(watcher.told(), 1u);
    step([&] { get<IntAttribute>(n, L"Integer").setValue(1); }, L"next");
    EXPECT_EQ(watcher.attributes.size(), 2u);
    EXPECT_EQ(database.getUndoCount(), 2u);
    database.undo();
    EXPECT_EQ(value(), 0.5f);
}

TEST_F(History, WhatIsPendingJoinsEvenAnEmptyBlock) {
    set(2);
    step([] {}, L"takes it");
    EXPECT_EQ(database.getUndoLabel(), L"takes it");
}

TEST_F(History, AGestureIsOneStepFromItsFirstValue) {
    for (int i = 1; i < 5; ++i) gesture([&] { set(float(i)); });
    EXPECT_EQ(database.getUndoCount(), 1u);
    EXPECT_EQ(watcher.told(), 5u);
    database.commitTransient();
    EXPECT_EQ(watcher.transient, (std::vector<bool>{false, true, true, true, true, false}));
    EXPECT_EQ(watcher.attributes, std::vector<Attribute*>{&number(n)});
    database.commitTransient();
    EXPECT_EQ(watcher.told(), 6u);
    database.undo();
    EXPECT_EQ(value(), 0.5f);
    database.redo();
    EXPECT_EQ(value(), 4);
}

TEST_F(History, TheFinalSetHoldsTheStructureOfTheGestureToo) {
    Node* made = nullptr;
    gesture([&] { made = make(L"made"); });
    gesture([&] { n->addChild(*made); });
    gesture([&] { made->setName(L"named"); });
    step([&] { set(1); });
    EXPECT_EQ(watcher.added, std::vector<Node*>{made});
    EXPECT_EQ(watcher.reparented, std::vector<Node*>{made});
    EXPECT_EQ(watcher.renamed, std::vector<Node*>{made});
}

TEST_F(History, ARenameOutsideABlockIsToldWithTheNextStep) {
    n->setName(L"m");
    step([&] { set(1); });
    EXPECT_EQ(watcher.renamed, std::vector<Node*>{n});
}

TEST_F(History, InsideATransientBlockCommitTransientTellsWhatIsNew) {
    database.beginChangeBlock(ChangeMode::Transient);
    set(1);
    database.commitTransient();
    EXPECT_EQ(watcher.told(), 2u);
    database.commitTransient();
    EXPECT_EQ(watcher.told(), 2u);
    set(2);
    database.commitTransient();
    EXPECT_EQ(watcher.attributes.size(), 1u);
    database.endChangeBlock();
    EXPECT_EQ(watcher.told(), 3u);
    database.commitTransient();
    EXPECT_EQ(database.getUndoCount(), 2u);
}

TEST_F(History, InsideARecordedBlockCommitTransientAndUndoDoNothing) {
    database.beginChangeBlock();
    set(1);
    database.commitTransient();
    EXPECT_EQ(watcher.told(), 1u);
    EXPECT_FALSE(database.undo());
    EXPECT_FALSE(database.redo());
    database.endChangeBlock(L"x");
    EXPECT_EQ(watcher.told(), 2u);
}

TEST_F(History, CancelOfARecordedBlockTakesBackThatBlockAlone) {
    gesture([&] { set(1); });
    database.beginChangeBlock();
    database.beginChangeBlock();
    set(2);
    database.cancel();
    EXPECT_FALSE(database.isInChangeBlock());
    EXPECT_EQ(value(), 1);
    database.endChangeBlock(L"a");
    database.endChangeBlock(L"b");
    set(3);
    database.commitTransient();
    database.undo();
    EXPECT_EQ(value(), 0.5f);
}

TEST_F(History, CancelOfATransientBlockTakesBackTheWholeGesture) {
    gesture([&] { set(1); });
    set(2);
    database.beginChangeBlock(ChangeMode::Transient);
    set(3);
    make(L"m");
    database.cancel();
    EXPECT_EQ(value(), 0.5f);
    EXPECT_EQ(database.findNodeByPath(L"m"), nullptr);
    database.commitTransient();
    EXPECT_EQ(database.getUndoCount(), 1u);
    database.cancel();
    EXPECT_EQ(database.getUndoCount(), 1u);
}

TEST_F(History, ANewStepCutsWhatWasUndone) {
    step([&] { set(1); });
    database.undo();
    EXPECT_EQ(database.getRedoLabel(), L"step");
    step([&] { set(2); });
    EXPECT_FALSE(database.redo());
    EXPECT_EQ(database.getRedoLabel(), L"");
}

TEST_F(History, UndoFirstMakesAStepOfWhatIsPending) {
    step([&] { set(1); });
    set(2);
    EXPECT_TRUE(database.undo());
    EXPECT_EQ(value(), 1);
    EXPECT_TRUE(database.redo());
    EXPECT_EQ(value(), 2);
}

TEST_F(History, ALimitOfZeroStopsRecording) {
    Node* gone = makeStep(L"gone");
    NodeHandle handle(gone);
    database.setMaxUndoItems(0);
    EXPECT_EQ(database.getUndoCount(), 0u);
    step([&] {
        set(2);
        gone->remove();
    });
    EXPECT_EQ(watcher.removed.size(), 1u);
    EXPECT_EQ(handle.getRef(), nullptr) << "nothing can bring it back";
    database.setMaxUndoItems(100000);
    EXPECT_FALSE(database.undo());
    EXPECT_EQ(value(), 2);
    step([&] { set(3); });
    EXPECT_TRUE(database.undo());
    EXPECT_EQ(value(), 2);
}

TEST_F(History, ARemovedNodeMayStillBeReadWhileItsRemovalIsToldUnderALimitOfZero) {
    database.setMaxUndoItems(0);
    std::wstring name;
    watcher.then = [&](ChangeSet const& set) {
        for (Node* r : set.RemovedNodes()) name = r->getNodeName();
    };
    step([&] { n->remove(); });
    EXPECT_EQ(name, L"n");
}

TEST_F(History, KeepsNoMoreThanTheLimit) {
    for (int i = 1; i <= 10; ++i) step([&] { set(float(i)); });
    database.setMaxUndoItems(3);
    EXPECT_EQ(database.getUndoCount(), 3u);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(database.undo());
    EXPECT_FALSE(database.undo());
    EXPECT_EQ(value(), 7);
    database.setMaxUndoItems(1);
    EXPECT_EQ(database.getRedoCount(), 1u) << "the nearest one stays";
    EXPECT_TRUE(database.redo());
    EXPECT_EQ(value(), 8);
    database.setMaxUndoItems(-5);
    EXPECT_EQ(database.getMaxUndoItems(), 0);
}

TEST_F(History, ClearingForgetsBothSides) {
    step([&] { set(1); });
    database.undo();
    set(2);
    database.clearUndoHistory();
    EXPECT_FALSE(database.undo());
    EXPECT_FALSE(database.redo());
    EXPECT_EQ(value(), 2);
    EXPECT_EQ(database.getHistoryBytes(), 0u);
}

TEST_F(History, ClearingInsideABlockLeavesTheBlockItsOwn) {
    database.beginChangeBlock();
    set(1);
    database.clearUndoHistory();
    database.endChangeBlock(L"x");
    EXPECT_EQ(database.getUndoCount(), 1u);
    database.undo();
    EXPECT_EQ(value(), 0.5f);
}

TEST_F(History, NodesMadeAndUndoneGoWithAllThatHappenedInThem) {
    database.clearUndoHistory();
    step([&] {
        Node *p = make(L"p"), *c = make(L"c");
        p->addChild(*c);
        n->addChild(*c);
        elements(c).add();
        elements(c).getElement(0)->asCompound()->getAttribute(0)->asFloat()->setValue(3);
        c->addDynamicString(L"d", L"x");
        numbers(c).resize(40);
        elements(c).removeAt(0);
    });
    database.undo();
    step([&] { set(1); });  // cuts the redo side
    EXPECT_EQ(database.nodeCount(), 1u);
}

TEST_F(History, TheCheckpointIsReachedAgainByUndoAndRedo) {
    database.setCheckpoint();
    step([&] { set(1); });
    EXPECT_FALSE(database.isAtCheckpoint());
    database.undo();
    EXPECT_TRUE(database.isAtCheckpoint());
    database.redo();
    EXPECT_FALSE(database.isAtCheckpoint());
    database.undo();
    set(1);
    EXPECT_FALSE(database.isAtCheckpoint()) << "pending";
    database.commitTransient();
    EXPECT_FALSE(database.isAtCheckpoint());
}

TEST_F(History, TheCheckpointOutlivesTheStepThatMadeIt) {
    database.setCheckpoint();
    database.setMaxUndoItems(1);
    step([&] { set(1); });  // drops the step of the checkpoint, not its state
    database.undo();
    EXPECT_TRUE(database.isAtCheckpoint());
    step([&] { set(1); });
    step([&] { set(2); });
    database.undo();
    EXPECT_FALSE(database.isAtCheckpoint());
}

TEST_F(History, TheCheckpointStandsWhenTheHistoryIsCleared) {
    database.setCheckpoint();
    database.clearUndoHistory();
    EXPECT_TRUE(database.isAtCheckpoint());
    step([&] { set(1); });
    database.clearUndoHistory();
    EXPECT_FALSE(database.isAtCheckpoint());
}

TEST_F(History, ADatabaseGoesWithOpenBlocksAndPendingChanges) {
    Database other;
    other.beginChangeBlock();
    Node* m = other.createNode(allDef(), L"m");
    numbers(m).add(1);
    elements(m).add();
    m->remove();
    other.addDynamicFloat(L"own", 1, 0, 2);
}

// ---- hooks ----

struct Hooked : Database {
    void customiseChangeSetPreCommit(ChangeSet&) override { note(L"customise first"); }
    void onDatabaseChangedPreCommit(ChangeSet const& set, bool transient) override {
        note(transient ? L"pre transient" : L"pre");
        if (then) then(set);
    }
    void customiseChangeSet(ChangeSet&) override { note(L"customise"); }
    void notifyObservers(ChangeSet const& set, bool transient) override {
        note(L"notify");
        Database::notifyObservers(set, transient);
    }
    void postCommit() override { note(L"post"); }
    void note(wchar_t const* what) { calls.push_back(what); }
    ~Hooked() override { destruct(); }
    std::vector<std::wstring> calls;
    std::function<void(ChangeSet const&)> then;
};

TEST(Hooks, ComeInTheOrderOfACommit) {
    Hooked d;
    d.beginChangeBlock();
    Node* n = d.createNode(allDef(), L"n");
    d.endChangeBlock();
    EXPECT_EQ(d.calls, (std::vector<std::wstring>{L"customise first", L"pre", L"customise", L"notify", L"post"}));
    d.calls.clear();
    d.beginChangeBlock(ChangeMode::Transient);
    get<IntAttribute>(n, L"Integer").setValue(1);
    d.commitTransient();
    EXPECT_EQ(d.calls,
              (std::vector<std::wstring>{L"customise first", L"pre transient", L"customise", L"notify", L"post"}));
    d.endChangeBlock();
}

TEST(Hooks, WhatTheyWriteBelongsToTheCommit) {
    Hooked d;
    Node* n = d.createNode(allDef(), L"n");
    d.commitTransient();
    d.then = [&](ChangeSet const&) {
        ChangeBlock const inner(&d, L"inner");
        get<FloatAttribute>(n, L"Float").setValue(8);
        d.commitTransient();
        EXPECT_FALSE(d.undo());
    };
    d.beginChangeBlock();
    get<IntAttribute>(n, L"Integer").setValue(1);
    d.endChangeBlock(L"outer");
    EXPECT_EQ(d.getUndoLabel(), L"outer");
    d.undo();
    EXPECT_EQ(get<FloatAttribute>(n, L"Float").getValue(), 0.5f);
}

TEST(Hooks, MayCancel) {
    Hooked d;
    Node* n = d.createNode(allDef(), L"n");
    d.commitTransient();
    d.then = [&](ChangeSet const&) { d.cancel(); };
    d.beginChangeBlock();
    get<IntAttribute>(n, L"Integer").setValue(1);
    d.endChangeBlock(L"outer");
    EXPECT_EQ(get<IntAttribute>(n, L"Integer").getValue(), 7);
    EXPECT_EQ(d.getUndoCount(), 1u);
    EXPECT_FALSE(d.isInChangeBlock());
}

TEST(Hooks, ASetAskedTooEarlyStillKnowsWhatCameLater) {
    Hooked d;
    Node* n = d.createNode(allDef(), L"n");
    d.commitTransient();
    Attribute& later = get<FloatAttribute>(n, L"Float");
    d.then = [&](ChangeSet const& set) {
        EXPECT_FALSE(set.hasChanged(later, false, false));
        later.asFloat()->setValue(8);
        EXPECT_TRUE(set.hasChanged(later, false, false));
    };
    d.beginChangeBlock();
    get<IntAttribute>(n, L"Integer").setValue(1);
    d.endChangeBlock();
}

}  // namespace
}  // namespace db::test
