// Writes to many elements as one: the history and the change set of single writes.
#include "qel/db/bulk_write.h"
#include "tests/qel/db/fixture.h"
#include <random>
#include <set>
#include <utility>

namespace db::test {
namespace {

// Notes what it is told, and the values that it finds then.
struct TellingNode : Node {
    using Node::Node;
    void elementsChanged(ElementRun const& run) override {
        told.push_back(run);
        for (std::size_t i = run.from; i < run.to; ++i)
            seen.push_back(static_cast<FloatAttribute&>(run.array->blocks()[i]->part(1)).getValue());
    }
    std::vector<ElementRun> told;
    std::vector<float> seen;
};

NodeDef const& tellingDef() {
    static auto const construct = +[](void* at, NodeDef const& def) -> Node* { return new (at) TellingNode(def); };
    static NodeDef const def(L"test", L"Telling", nullptr, allRows, sizeof(TellingNode), construct);
    return def;
}

struct BulkWrites : Fixture {
    using Floats = std::vector<float>;
    static constexpr int number = 1, text = 2;  // rows of the parts of an element

    BulkWrites() {
        step([&] { elements(n).resize(40); });
        step([&] { part(7).setValue(70); });
    }
    AttributeArray& array() { return elements(n); }
    FloatAttribute& part(std::size_t i) { return static_cast<FloatAttribute&>(array().blocks()[i]->part(number)); }
    StringAttribute& textOf(std::size_t i) { return static_cast<StringAttribute&>(array().blocks()[i]->part(text)); }
    Floats values() {
        Floats out;
        for (std::size_t i = 0; i < array().size(); ++i) out.push_back(part(i).getValue());
        return out;
    }
    void write(BulkWriteOf<1>& bulk, std::size_t i, float value) {
        if (bulk.open(i))
            bulk.part<FloatAttribute>(0).raw() = value;
        else
            part(i).setValue(value);
    }
    void writeRange(std::size_t from, std::size_t to, float offset) {
        BulkWriteOf bulk(array(), {number});
        for (std::size_t i = from; i < to; ++i) write(bulk, i, float(i) + offset);
    }
    void writeAll(float offset) { writeRange(0, array().size(), offset); }
    std::set<Attribute*> told() const { return {watcher.attributes.begin(), watcher.attributes.end()}; }

    Node* n = makeStep(L"n");
};

// ---- the history ----

TEST_F(BulkWrites, AreOneStepThatUndoAndRedoReplay) {
    Floats const before = values();
    step([&] { writeAll(0.5F), writeAll(1.5F); });
    Floats const after = values();
    EXPECT_EQ(after[3], 4.5F);
    database.undo();
    EXPECT_EQ(values(), before);
    database.redo();
    EXPECT_EQ(values(), after);
}

TEST_F(BulkWrites, KeepOldValuesOfAnySizeAndOfSeveralParts) {
    step([&] {
        BulkWriteOf bulk(array(), {number, text});
        ASSERT_TRUE(bulk.open(2));
        part(2).raw() = 5, textOf(2).raw() = L"bulk";
    });
    EXPECT_EQ(watcher.attributes, (std::vector<Attribute*>{&part(2), &textOf(2)}));
    database.undo();
    EXPECT_EQ(textOf(2).getValue(), L"two");
    EXPECT_EQ(part(2).getValue(), 1);
}

TEST_F(BulkWrites, OfAGestureAreToldEachTimeAndKeptOnce) {
    Floats const before = values();
    std::size_t const undos = database.getUndoCount();
    for (int i = 0; i < 10; ++i) {
        gesture([&] { writeAll(float(i)); });
        EXPECT_EQ(watcher.attributes.size(), 40u) << i;
    }
    database.commitTransient();
    EXPECT_EQ(watcher.attributes.size(), 40u) << "once more, with the step";
    EXPECT_EQ(database.getUndoCount(), undos + 1);
    database.undo();
    EXPECT_EQ(values(), before);
}

TEST_F(BulkWrites, ThatAreCancelledLeaveNoTrace) {
    Floats const before = values();
    database.beginChangeBlock(ChangeMode::Recorded);
    writeAll(3);
    database.cancel();
    EXPECT_EQ(values(), before);
    step([&] { writeAll(4); });
    database.undo();
    EXPECT_EQ(values(), before) << "the next step keeps old values of its own";
}

TEST_F(BulkWrites, InABlockAfterWhatIsPendingGoBackAlone) {
    gesture([&] { writeAll(3); });
    Floats const pending = values();
    database.beginChangeBlock(ChangeMode::Recorded);
    writeAll(9);
    database.cancel();
    EXPECT_EQ(values(), pending);
}

TEST_F(BulkWrites, ToWhatWasRemovedAreRefused) {
    AttributeArray& removed = array();
    step([&] { n->remove(); });
    step([&] { EXPECT_FALSE(BulkWriteOf(removed, {number}).open(0)); });
    EXPECT_TRUE(watcher.attributes.empty());
    database.undo();
    EXPECT_EQ(part(0).getValue(), 1);
}

TEST_F(BulkWrites, ToWhatTakesItsValueFromElsewhereAreRefused) {
    part(3).set(Attribute::live);
    step([&] {
        BulkWriteOf bulk(array(), {number, text});
        EXPECT_TRUE(bulk.open(2));
        EXPECT_FALSE(bulk.open(3));
        EXPECT_TRUE(bulk.open(4));
    });
    EXPECT_EQ(told(), (std::set<Attribute*>{&part(2), &textOf(2), &part(4), &textOf(4)}));
    part(3).clear(Attribute::live);
}

// ---- the change set ----

TEST_F(BulkWrites, ListEachPartOnceAndItsNode) {
    watcher.then = [&](ChangeSet const& set) {
        EXPECT_EQ(set.ChangedNodes(), std::vector<Node*>{n});
        EXPECT_TRUE(set.hasChanged(part(3), false, false));
        EXPECT_TRUE(set.hasChanged(array(), true, false));
        EXPECT_FALSE(set.hasChanged(array(), false, false));
        EXPECT_FALSE(set.hasChanged(textOf(3), false, false));
    };
    step([&] { writeAll(0), writeAll(1), part(5).setValue(9); });
    EXPECT_EQ(watcher.attributes.size(), 40u);
    EXPECT_EQ(told().size(), 40u);
}

TEST_F(BulkWrites, AnswerBeforeAnybodyAsksForTheList) {
    struct Asking : DatabaseObserver {
        void onDatabaseChanged(ChangeSet const& set, bool) override { ask(set); }
        std::function<void(ChangeSet const&)> ask;
    } asking;
    Node* const other = makeStep(L"other");
    Attribute const *element = array()[3], *untouched = array()[30];
    asking.ask = [&](ChangeSet const& set) {
        EXPECT_FALSE(set.empty());
        EXPECT_TRUE(set.hasChanged(part(3), false, false) && set.hasChanged(part(11), false, false));
        EXPECT_FALSE(set.hasChanged(part(12), false, false) || set.hasChanged(textOf(3), false, false));
        EXPECT_TRUE(set.hasChanged(element, true, false) && set.hasChanged(array(), true, false));
        EXPECT_FALSE(set.hasChanged(element, false, false) || set.hasChanged(untouched, true, false));
        EXPECT_TRUE(set.hasChanged(n, false, false) && set.hasTypeChanged(allDef().getTypeID()));
        EXPECT_FALSE(set.hasChanged(other, true, false) || set.hasChanged(elements(other), true, false));
        std::vector<Node*> const& nodes = set.ChangedNodes();
        EXPECT_EQ(set.ChangedAttributes().size(), 9u);
        EXPECT_EQ(&nodes, &set.ChangedNodes()) << "the list does not move while it is read";
        EXPECT_EQ(nodes, std::vector<Node*>{n});
        EXPECT_TRUE(set.hasChanged(part(3), false, false));
    };
    database.removeObserver(&watcher);
    database.addObserver(&asking);
    gesture([&] { writeRange(3, 12, 0); });
    database.removeObserver(&asking);
}

TEST_F(BulkWrites, StandBesideSingleWritesOfTheSameSet) {
    Node* const m = makeStep(L"m");
    for (ChangeMode mode : {ChangeMode::Transient, ChangeMode::Recorded}) {
        database.beginChangeBlock(mode);
        Fixture::number(m).setValue(3);
        part(4).setValue(3);
        writeRange(2, 8, 1);
        part(7).setValue(4), part(9).setValue(4);
        writeRange(6, 11, 2);
        database.endChangeBlock(L"");
        EXPECT_EQ(watcher.attributes.size(), 10u);
        std::set<Attribute*> expected{&Fixture::number(m)};
        for (std::size_t i = 2; i < 11; ++i) expected.insert(&part(i));
        EXPECT_EQ(told(), expected);
    }
}

TEST_F(BulkWrites, OfManyShortRunsListEachPartOnce) {
    step([&] { array().resize(1000); });
    for (int event = 0; event < 3; ++event) {
        gesture([&] {
            for (int again = 0; again < 2; ++again) {
                BulkWriteOf bulk(array(), {number});
                for (std::size_t i = 0; i < 1000; i += 2) write(bulk, i, float(event + again));
            }
        });
        EXPECT_EQ(watcher.attributes.size(), 500u);
        EXPECT_EQ(told().size(), 500u);
    }
}

TEST_F(BulkWrites, BeforeElementsMoveListWhatTheyWrote) {
    Attribute* const third = &part(3);
    step([&] {
        writeRange(3, 4, 1);
        array().insert(0);
        array().removeAt(10);
    });
    EXPECT_EQ(told(), (std::set<Attribute*>{third, &array()}));
    Attribute* const moved = &part(5);
    struct Late : DatabaseObserver {
        void postDatabaseChanged(ChangeSet const& set, bool) override {
            if (found.empty()) found = set.ChangedAttributes();
        }
        std::vector<Attribute*> found;
    } late;
    struct Editing : DatabaseObserver {
        void onDatabaseChanged(ChangeSet const&, bool) override {
            if (!std::exchange(done, true)) array->insert(0);
        }
        AttributeArray* array;
        bool done = false;
    } editing;
    editing.array = &array();
    database.removeObserver(&watcher);
    database.addObserver(&editing), database.addObserver(&late);
    gesture([&] { writeRange(5, 6, 2); });
    EXPECT_TRUE(editing.done);
    EXPECT_EQ(late.found, std::vector<Attribute*>{moved}) << "not the element that is there now";
    database.removeObserver(&editing), database.removeObserver(&late);
}

TEST_F(BulkWrites, OfNothingTellNobody) {
    std::size_t const before = watcher.told();
    step([&] { BulkWriteOf const bulk(array(), {number}); });
    EXPECT_EQ(watcher.told(), before);
}

// ---- the node ----

TEST_F(BulkWrites, TellTheirNodeOfEveryElementOnceWhenItsValueIsThere) {
    auto* telling = static_cast<TellingNode*>(database.createNode(tellingDef(), L"telling"));
    n = telling;
    Floats expected;
    step([&] {
        array().resize(300);
        BulkWriteOf bulk(array(), {number});
        for (std::size_t i = 0; i < 300; ++i) {
            if (i >= 100 && i < 110) continue;
            write(bulk, i, float(i) + 0.5F);
            expected.push_back(float(i) + 0.5F);
        }
    });
    EXPECT_EQ(telling->seen, expected);
    EXPECT_LT(telling->told.size(), 10u);
    for (ElementRun const& run : telling->told) EXPECT_TRUE(run.array == &array() && run.rows == 2);
}

// ---- random edits against plain vectors ----

TEST_F(BulkWrites, AndSingleWritesAndSplicesUndoAndRedoToWhatPlainVectorsSay) {
    constexpr unsigned seed = 77;
    std::mt19937 random(seed);
    auto const below = [&](std::size_t count) { return std::size_t(random() % std::max<std::size_t>(count, 1)); };
    Floats now = values();
    std::vector<Floats> states{now};
    database.clearUndoHistory();
    auto const edit = [&] {
        std::size_t const from = below(now.size()), to = from + below(now.size() - from + 1), what = below(6);
        float const value = float(random() % 1000);
        if (what < 3) {
            BulkWriteOf bulk(array(), {number});
            for (std::size_t i = from; i < to; i += 1 + below(20) / 19) write(bulk, i, now[i] = value + float(i));
        } else if (what == 3 && !now.empty()) {
            part(from).setValue(now[from] = value);
        } else if (what == 4) {
            array().insert(unsigned(from));
            now.insert(now.begin() + long(from), 1.F);
        } else if (now.size() > 1) {
            array().removeAt(from);
            now.erase(now.begin() + long(from));
        }
    };
    for (int round = 0; round < 300; ++round) {
        std::size_t const parts = 1 + below(3);
        if (below(2))
            step([&] {
                for (std::size_t i = 0; i <= parts; ++i) edit();
            });
        else
            for (std::size_t i = 0; i <= parts; ++i) gesture(edit);
        database.commitTransient();
        ASSERT_EQ(values(), now) << round << ", seed " << seed;
        if (states.size() - 1 < database.getUndoCount()) states.push_back(now);
        if (below(10)) continue;
        std::size_t const back = 1 + below(database.getUndoCount());
        for (std::size_t i = 0; i < back; ++i) {
            ASSERT_TRUE(database.undo());
            ASSERT_EQ(values(), states[database.getUndoCount()]) << round << ", seed " << seed;
        }
        for (std::size_t i = 0; i < back; ++i) {
            ASSERT_TRUE(database.redo());
            ASSERT_EQ(values(), states[database.getUndoCount()]) << round << ", seed " << seed;
        }
    }
    while (database.undo()) { ASSERT_EQ(values(), states[database.getUndoCount()]) << "seed " << seed; }
}

}  // namespace
}  // namespace db::test
