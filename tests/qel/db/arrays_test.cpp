// Arrays of values: edits of elements, in one step and across steps. And arrays of attributes.
#include "tests/qel/db/fixture.h"
#include <cmath>
#include <random>

namespace db::test {
namespace {

struct Arrays : Fixture {
    Node* n = makeStep(L"n");
    std::vector<float> values() { return numbers(n).getValue(); }
    void fill(std::size_t count) {
        step([&] {
            for (std::size_t i = 0; i < count; ++i) numbers(n).add(float(i));
        });
    }
};
using Floats = std::vector<float>;

TEST_F(Arrays, BeyondTheEndNothingHappens) {
    fill(2);
    EXPECT_FALSE(numbers(n).setElement(1, 2));
    EXPECT_FALSE(numbers(n).insert(1, 3));
    EXPECT_FALSE(numbers(n).removeAt(2));
    EXPECT_EQ(numbers(n).getElement(2), 0);
    database.commitTransient();
    EXPECT_EQ(database.getUndoCount(), 2u);
}

TEST_F(Arrays, TheRevisionMovesWithEveryChangeButAnAppend) {
    auto const revision = [&] { return numbers(n).revision(); };
    EXPECT_EQ(revision(), 0u);
    fill(3);
    step([&] { numbers(n).insert(9, 3), numbers(n).resize(6); });
    EXPECT_EQ(revision(), 0u);
    std::function<void()> const changes[] = {
        [&] { numbers(n).setElement(7, 1); },    [&] { numbers(n).insert(7, 1); },     [&] { numbers(n).removeAt(0); },
        [&] { numbers(n).resize(2); },           [&] { numbers(n).setValue({1, 2}); }, [&] { numbers(n).raw()[0] = 5; },
        [&] { numbers(n).setToDefaultValue(); },
    };
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        std::uint64_t const before = revision();
        step(changes[i]);
        EXPECT_GT(revision(), before) << i;
    }
    step([&] { numbers(n).add(1); });
    for (bool back : {true, true, false, true}) {
        std::uint64_t const before = revision();
        EXPECT_TRUE(back ? database.undo() : database.redo());
        EXPECT_GT(revision(), before);
    }
    database.beginChangeBlock();
    numbers(n).add(3);
    std::uint64_t const before = revision();
    database.cancel();
    EXPECT_GT(revision(), before);
}

TEST_F(Arrays, NewElementsHaveTheDefaultOfTheRow) {
    step([&] { get<IntArrayAttribute>(n, L"IntegerArray").resize(2); });
    EXPECT_EQ(get<IntArrayAttribute>(n, L"IntegerArray").getValue(), (std::vector<int>{3, 3}));
    step([&] { get<QuaternionArrayAttribute>(n, L"QuaternionArray").resize(1); });
    EXPECT_EQ(get<QuaternionArrayAttribute>(n, L"QuaternionArray").getElement(0), Qelp::Quat());
}

TEST_F(Arrays, EditsBeforeAndAfterASpliceInOneStep) {
    fill(40);
    Floats const before = values();
    step([&] {
        numbers(n).setElement(100, 39);  // the last page, not full
        numbers(n).add(40);
        numbers(n).setElement(101, 40);
        numbers(n).setElement(102, 39);
        numbers(n).removeAt(0);
        numbers(n).setElement(103, 0);
        numbers(n).insert(104, 20);
        numbers(n).resize(12);
        numbers(n).setElement(105, 11);
        numbers(n).setValue({1, 2, 3});
        numbers(n).setElement(106, 1);
        numbers(n).clearArray();
        numbers(n).add(5);
    });
    EXPECT_EQ(values(), Floats{5});
    database.undo();
    EXPECT_EQ(values(), before);
    database.redo();
    EXPECT_EQ(values(), Floats{5});
    database.undo();
    EXPECT_EQ(values(), before);
}

TEST_F(Arrays, OneElementKeepsAPageAndNotACopy) {
    step([&] { numbers(n).resize(100000); });
    std::size_t const before = database.getHistoryBytes();
    for (int i = 0; i < 100; ++i) gesture([&] { numbers(n).setElement(float(i), 5000); });
    database.commitTransient();
    EXPECT_LT(database.getHistoryBytes() - before, 1024u);
}

TEST_F(Arrays, ManyElementsAreSetInOneWriteThatKeepsThePagesThatDiffer) {
    fill(100);
    Floats const before = values();
    Floats now = before;
    now[20] = -1, now[99] = -2;
    database.commitTransient();
    std::size_t const bytes = database.getHistoryBytes();
    step([&] { EXPECT_TRUE(numbers(n).setElements(0, now)); });
    EXPECT_EQ(values(), now);
    EXPECT_LT(database.getHistoryBytes() - bytes, 100 * sizeof(float));
    database.undo();
    EXPECT_EQ(values(), before);
    database.redo();
    EXPECT_EQ(values(), now);
}

TEST_F(Arrays, ElementsThatKeepTheirBitsAreNoWrite) {
    fill(40);
    std::size_t const told = watcher.told();
    std::uint64_t const revision = numbers(n).revision();
    Floats const same = values();
    step([&] {
        EXPECT_TRUE(numbers(n).setElements(0, same));
        EXPECT_TRUE(numbers(n).setElements(40, {}));
    });
    EXPECT_EQ(watcher.told(), told);
    EXPECT_EQ(numbers(n).revision(), revision);
    step([&] { numbers(n).setElements(0, Floats{-0.F}); });
    EXPECT_TRUE(std::signbit(numbers(n).getElement(0))) << "equal, but not the same bits";
    EXPECT_EQ(numbers(n).revision(), revision + 1);
}

TEST_F(Arrays, ElementsAreSetFromAnyPlaceOnButNotBeyondTheEnd) {
    fill(40);
    step([&] { EXPECT_TRUE(numbers(n).setElements(15, Floats{7, 8, 9})); });
    Floats const before = values();
    EXPECT_EQ(Floats(before.begin() + 14, before.begin() + 19), (Floats{14, 7, 8, 9, 18}));
    step([&] {
        EXPECT_FALSE(numbers(n).setElements(0, Floats(41, 1)));
        EXPECT_FALSE(numbers(n).setElements(39, Floats{1, 2}));
        EXPECT_FALSE(numbers(n).setElements(41, {}));
        EXPECT_FALSE(numbers(n).setElements(std::size_t(-1), Floats{1, 2}));
    });
    EXPECT_EQ(values(), before);
    numbers(n).set(Attribute::live);
    step([&] { EXPECT_FALSE(numbers(n).setElements(0, Floats{3})) << "it takes its value from elsewhere"; });
    numbers(n).clear(Attribute::live);
    EXPECT_EQ(values(), before);
}

TEST_F(Arrays, ElementsSetAroundASpliceInOneStepGoBack) {
    fill(40);
    Floats const before = values();
    step([&] {
        numbers(n).setElements(0, Floats(40, -1));
        numbers(n).insert(-2, 20);
        numbers(n).setElements(0, Floats(41, -3));
        numbers(n).resize(50);
        numbers(n).setElements(0, Floats(50, -4));
    });
    EXPECT_EQ(values(), Floats(50, -4));
    database.undo();
    EXPECT_EQ(values(), before);
}

TEST_F(Arrays, RandomWritesOfElementsAndSplicesGoBackAndForthAsPlainVectorsSay) {
    constexpr unsigned seed = 4711;
    std::mt19937 random(seed);
    auto const below = [&](std::size_t count) { return std::size_t(random() % count); };
    fill(100);
    database.clearUndoHistory();
    Floats now = values();
    std::vector<Floats> states{now};
    auto const edit = [&] {
        std::size_t const at = below(now.size()), count = 1 + below(now.size() - at), what = below(4);
        float const value = float(random() % 100);
        if (what < 2) {
            Floats some(now.begin() + long(at), now.begin() + long(at + count));
            for (float& v : some)
                if (below(20) == 0) v = value;
            numbers(n).setElements(at, some);
            std::copy(some.begin(), some.end(), now.begin() + long(at));
        } else if (what == 2) {
            numbers(n).insert(value, at);
            now.insert(now.begin() + long(at), value);
        } else if (now.size() > 50) {
            numbers(n).removeAt(at);
            now.erase(now.begin() + long(at));
        }
    };
    for (int round = 0; round < 200; ++round) {
        step([&] {
            for (std::size_t i = 0; i < 1 + below(4); ++i) edit();
        });
        ASSERT_EQ(values(), now) << round << ", seed " << seed;
        if (states.size() == database.getUndoCount()) states.push_back(now);
    }
    while (database.undo()) { ASSERT_EQ(values(), states[database.getUndoCount()]) << "seed " << seed; }
    while (database.redo()) { ASSERT_EQ(values(), states[database.getUndoCount()]) << "seed " << seed; }
}

TEST_F(Arrays, AGestureOfManyElementsIsOneStep) {
    fill(100);
    Floats const before = values();
    for (int i = 0; i < 50; ++i) gesture([&] { numbers(n).setElement(-1, std::size_t(i * 2)), numbers(n).add(1); });
    database.commitTransient();
    database.undo();
    EXPECT_EQ(values(), before);
}

TEST_F(Arrays, AnAttributeArrayEditsItsElementsOneByOne) {
    step([&] { elements(n).resize(3); });
    Attribute* second = elements(n)[1];
    int const id = second->getID();
    step([&] { elements(n).removeAt(0); });
    EXPECT_EQ(second->getLocalPathName(), L"Elements[0]");
    EXPECT_EQ(second->getName(), L"Elements[0]");
    EXPECT_EQ(second->getIndex(), 0);
    EXPECT_EQ(second->getParentAttribute(), &elements(n));
    EXPECT_EQ(watcher.removedAttributes.size(), 1u);
    step([&] { EXPECT_TRUE(second->remove()); });
    EXPECT_TRUE(second->isRemoved());
    EXPECT_FALSE(second->remove());
    EXPECT_EQ(database.lookupAttribute(id), nullptr);
    database.undo();
    EXPECT_EQ(database.lookupAttribute(id), second);
    database.undo();
    EXPECT_EQ(second->getIndex(), 1);
    EXPECT_EQ(elements(n).insert(9), nullptr);
}

TEST_F(Arrays, AnAttributeArrayIsAssignedComparedAndReset) {
    Node* m = makeStep(L"m");
    step([&] {
        elements(n).resize(2);
        n->findAttribute(L"Elements[1].Second")->asString()->setValue(L"x");
    });
    step([&] { EXPECT_TRUE(elements(m).assign(elements(n))); });
    EXPECT_TRUE(elements(m).compare(elements(n)));
    step([&] { elements(m).setToDefaultValue(); });
    EXPECT_TRUE(elements(m).isDefaultValue());
    EXPECT_FALSE(elements(m).compare(elements(n)));
    database.undo();
    EXPECT_TRUE(elements(m).compare(elements(n)));
    EXPECT_FALSE(elements(m).assign(numbers(n)));
}

TEST_F(Arrays, ANodeContainerDoesNotOwn) {
    Node* m = makeStep(L"m");
    auto& container = get<NodeContainer>(n, L"NodeContainer");
    step([&] { container.add(m), container.add(n); });
    step([&] { m->remove(); });
    EXPECT_EQ(container.size(), 2u);
    EXPECT_EQ(container.getNode(0), nullptr);
    EXPECT_EQ(container.getNode(1), n);
    EXPECT_EQ(container.getNode(2), nullptr);
    database.undo();
    EXPECT_EQ(container.getNode(0), m);
}

}  // namespace
}  // namespace db::test
