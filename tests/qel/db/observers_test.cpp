// The registry of observers under change while they are told.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct Observers : Fixture {
    Observers() {
        database.addObserver(&second);
        database.addObserver(&third);
    }
    void change() {
        step([&] { number(n).setValue(number(n).getValue() + 1); });
    }
    Node* n = makeStep(L"n");
    Watcher second, third;
};

TEST_F(Observers, OneThatLeavesWhileToldIsNotCalledAgainAndTheOthersAre) {
    second.then = [&](ChangeSet const&) { database.removeObserver(&second); };
    change(), change();
    EXPECT_EQ(second.told(), 1u);
    EXPECT_EQ(second.after, 0);
    EXPECT_EQ(third.told(), 2u);
    EXPECT_EQ(third.after, 2);
    EXPECT_EQ(database.observers().count(), 2u);
}

TEST_F(Observers, OneMayTakeALaterOneOut) {
    watcher.then = [&](ChangeSet const&) { database.removeObserver(&third); };
    change();
    EXPECT_EQ(third.told(), 0u);
    EXPECT_EQ(second.told(), 1u);
    watcher.then = nullptr;
}

TEST_F(Observers, ARemovalThatWaitsIsToldToTheEnd) {
    watcher.then = [&](ChangeSet const&) { database.removeObserver(&third, ObserverManager::Wait); };
    change();
    EXPECT_EQ(third.told(), 1u);
    watcher.then = nullptr;
    change();
    EXPECT_EQ(third.told(), 1u);
}

TEST_F(Observers, AnAdditionWaitsForTheEndOfTheTelling) {
    Watcher fourth;
    watcher.then = [&](ChangeSet const&) { database.addObserver(&fourth); };
    change();
    watcher.then = nullptr;
    EXPECT_EQ(fourth.told(), 0u);
    EXPECT_EQ(fourth.after, 0);
    change();
    EXPECT_EQ(fourth.told(), 1u);
}

// Kept as it stands: what waits to be added is not taken out, and what waits to be removed is not added again.
TEST_F(Observers, WhatWaitsIsLeftAlone) {
    Watcher fourth;
    watcher.then = [&](ChangeSet const&) {
        database.addObserver(&fourth);
        database.removeObserver(&fourth);
        database.removeObserver(&third, ObserverManager::Wait);
        database.addObserver(&third);
    };
    change();
    watcher.then = nullptr;
    change();
    EXPECT_EQ(fourth.told(), 1u);
    EXPECT_EQ(third.told(), 1u);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(Observers, RemovingAnUnknownOneIsReported) {
    Watcher stranger;
    database.removeObserver(&stranger);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(log.lines[0].first, 1);
    EXPECT_EQ(log.lines[0].second, L"Observer not found in ObserverManager::remove()");
    database.setLogger(nullptr);
    database.removeObserver(&stranger);
}

TEST_F(Observers, WhoEditsWhileToldMakesAStepOfItsOwn) {
    second.then = [&](ChangeSet const& set) {
        second.then = nullptr;
        EXPECT_TRUE(set.hasChanged(number(n), false, false));
        step([&] { get<IntAttribute>(n, L"Integer").setValue(1); }, L"answer");
        EXPECT_TRUE(set.hasChanged(number(n), false, false)) << "the set told stands";
        EXPECT_FALSE(set.hasChanged(get<IntAttribute>(n, L"Integer"), false, false));
    };
    change();
    EXPECT_EQ(third.told(), 2u);
    EXPECT_EQ(database.getUndoLabel(), L"answer");
    EXPECT_EQ(database.getUndoCount(), 3u);
}

TEST_F(Observers, AWriteWhileToldStaysPending) {
    second.then = [&](ChangeSet const&) {
        second.then = nullptr;
        get<IntAttribute>(n, L"Integer").setValue(1);
    };
    change();
    EXPECT_EQ(third.told(), 1u);
    database.commitTransient();
    EXPECT_EQ(third.told(), 2u);
    EXPECT_EQ(third.attributes.size(), 1u);
}

TEST_F(Observers, OneMayUndoAndCutWhatTheOthersAreStillToldOf) {
    Node* made = nullptr;
    second.then = [&](ChangeSet const& set) {
        second.then = nullptr;
        EXPECT_TRUE(database.undo());
        change();  // frees the node on the redo side
        EXPECT_EQ(set.AddedNodes().at(0)->getNodeName(), L"made");
    };
    std::wstring name;
    third.then = [&](ChangeSet const& set) {
        if (!set.AddedNodes().empty()) name = set.AddedNodes()[0]->getNodeName();
    };
    step([&] { made = make(L"made"), elements(made).add(); });
    EXPECT_EQ(name, L"made");
    EXPECT_EQ(database.nodeCount(), 1u);
}

TEST_F(Observers, WhoAlwaysAnswersIsCutWithAMessage) {
    second.then = [&](ChangeSet const&) { change(); };
    change();
    second.then = nullptr;
    ASSERT_FALSE(log.lines.empty());
    EXPECT_EQ(log.lines[0].first, int(Qelutils::BasicLogger::Error));
    EXPECT_EQ(log.lines[0].second, L"Observers answer every change with another: they are not told of this one");
    EXPECT_LT(second.told(), 100u);
    std::size_t const told = third.told();
    change();
    EXPECT_EQ(third.told(), told + 1);
}

TEST_F(Observers, NestedTellingsApplyPendingChangesAtTheOutermostEnd) {
    Watcher fourth;
    second.then = [&](ChangeSet const&) {
        second.then = nullptr;
        database.addObserver(&fourth);
        change();
        EXPECT_EQ(fourth.told(), 0u);
    };
    change();
    change();
    EXPECT_EQ(fourth.told(), 1u);
}

}  // namespace
}  // namespace db::test
