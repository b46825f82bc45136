// Random edits against the model. A failure names the seed and the number of the edit.
#include "tests/qel/db/model.h"
#include "tests/qel/db/test_nodes.h"
#include <gtest/gtest.h>
#include <unordered_map>

namespace db::test {
namespace {

// Everything that was told since the last check.
struct Told : DatabaseObserver {
    void onDatabaseChanged(ChangeSet const& set, bool) override {
        any = true;
        for (Attribute* a : set.ChangedAttributes()) attributes.insert(a->getID());
        enter(added, set.AddedNodes());
        enter(removed, set.RemovedNodes());
        enter(renamed, set.RenamedNodes());
        enter(reparented, set.ReparentedNodes());
    }
    static void enter(std::set<int>& ids, std::vector<Node*> const& nodes) {
        std::size_t const before = ids.size();
        std::set<int> fresh;
        for (Node* n : nodes) EXPECT_TRUE(fresh.insert(n->getID()).second) << "listed twice";
        ids.insert(fresh.begin(), fresh.end());
        EXPECT_GE(ids.size(), before);
    }
    void forget() { *this = Told(); }
    bool any = false;
    std::set<int> attributes, added, removed, renamed, reparented;
};

class RandomEdits : public ::testing::TestWithParam<unsigned> {
protected:
    RandomEdits() : random(GetParam()) { database.addObserver(&told); }

    unsigned below(std::size_t n) { return unsigned(random() % n); }
    int anyNode() {
        auto const& nodes = model.now.nodes();
        return nodes.empty() ? -1 : std::next(nodes.begin(), below(nodes.size()))->first;
    }
    Node& node(int id) { return *database.lookupNode(id); }
    std::wstring anyName() {
        static wchar_t const* const names[] = {L"a", L"a1", L"a2", L"a12", L"Joint", L"Joint1", L"b7", L"c09", L"ä"};
        return names[below(std::size(names))];
    }

    void hold(Attribute* a) {
        int const id = a->getID();
        ASSERT_GT(id, lastID) << "an id was used again";
        lastID = id;
        held.emplace_back(id, AttributeHandle(a));
    }
    // The values of a run of attributes that just came into being.
    void enterValues(NodeModel& n, int firstID, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            int const id = firstID + int(i);
            Attribute* a = database.lookupAttribute(id);
            if (!a || a->isCompound() || a->isAttributeArray()) continue;
            n.values[id] = read(*a);
            if (!isSeveral(*a)) { EXPECT_EQ(n.values[id], defaultOf(*a)); }
        }
    }

    void edit();
    void createNode();
    void structure(unsigned what);
    void writeValue();
    void editArray(Attribute& a, AnyValue& v);
    AnyValue anyValue(Attribute& a);
    void editElements();
    void editDynamic();
    void history(unsigned what);

    void check();
    void checkNode(int id, NodeModel const& n);
    void checkValue(int id, AnyValue const& expected);
    void checkHandles();
    void checkTold();
    void undoAllAndRedoAll();

    std::mt19937 random;
    Database database;
    Model model;
    State lastTold;
    Told told;
    std::vector<std::pair<int, AttributeHandle>> held;
    int lastID = -1;
};

// ---- edits ----

void RandomEdits::createNode() {
    NodeModel n;
    n.name = anyName();
    Node* made = database.createNode(allDef(), n.name);
    ASSERT_NE(made, nullptr);
    enterValues(n, made->getID() + 2, allDef().layout().rows.size() - 1);
    model.now.create(made->getID(), std::move(n));
    model.edited();
    hold(made);
}

void RandomEdits::structure(unsigned what) {
    int const a = anyNode(), b = anyNode();
    bool expected = true, done = true;
    if (what == 0) {
        done = node(a).remove();
        model.now.remove(a);
    } else if (what == 1) {
        std::wstring const name = anyName();
        node(a).setName(name);
        expected = done = model.now.rename(a, name);
    } else if (what == 2) {
        done = node(a).addChild(node(b));
        expected = model.now.addChild(a, b);
    } else {
        done = node(a).removeChild(node(b));
        expected = model.now.removeChild(a, b);
    }
    EXPECT_EQ(done, expected);
    if (expected) model.edited();
}

AnyValue RandomEdits::anyValue(Attribute& a) {
    if (!hasReferences(a)) return randomValue(a, random);
    NodeModel const& target = model.now.at(anyNode());
    AnyValue v;
    if (below(4) == 0)
        v.numbers = {-1};
    else if (below(2) || a.isNodeContainer() || target.elements.empty())
        v.numbers = {double(anyNode())};
    else
        v.numbers = {double(target.elements[below(target.elements.size())])};
    return v;
}

void RandomEdits::writeValue() {
    NodeModel& n = model.now.edit(anyNode());
    auto& [id, value] = *std::next(n.values.begin(), below(n.values.size()));
    Attribute& a = *database.lookupAttribute(id);
    if (below(12) == 0) {
        a.setToDefaultValue();
        bool const nothing = isSeveral(a) && value == AnyValue();
        value = isSeveral(a) ? AnyValue() : defaultOf(a);
        if (!nothing) model.edited();
        if (!isSeveral(a)) { EXPECT_TRUE(a.isDefaultValue()); }
    } else if (isSeveral(a))
        editArray(a, value);
    else {
        value = anyValue(a);
        write(a, value);
        model.edited();
    }
}

void insertAt(AnyValue& v, AnyValue const& one, std::size_t width, std::size_t at) {
    v.numbers.insert(v.numbers.begin() + long(std::min(at * width, v.numbers.size())), one.numbers.begin(),
                     one.numbers.end());
    v.texts.insert(v.texts.begin() + long(std::min(at, v.texts.size())), one.texts.begin(), one.texts.end());
}
void eraseAt(AnyValue& v, std::size_t width, std::size_t at) {
    if (v.texts.empty())
        v.numbers.erase(v.numbers.begin() + long(at * width), v.numbers.begin() + long((at + 1) * width));
    else
        v.texts.erase(v.texts.begin() + long(at));
}

void RandomEdits::editArray(Attribute& a, AnyValue& v) {
    std::size_t const width = widthOf(a), size = hasTexts(a) ? v.texts.size() : v.numbers.size() / width;
    ASSERT_EQ(static_cast<ArrayAttribute&>(a).size(), size);
    std::size_t const at = below(size + 2);  // may lie beyond the end
    AnyValue const one = anyValue(a);
    unsigned const what = below(10);
    bool done = true;
    if (what < 4) {
        done = setElement(a, one, at);
        EXPECT_EQ(done, at < size);
        if (done) eraseAt(v, width, at), insertAt(v, one, width, at);
    } else if (what < 6) {
        done = insertElement(a, one, at);
        EXPECT_EQ(done, at <= size);
        if (done) insertAt(v, one, width, at);
    } else if (what < 7) {
        done = static_cast<ArrayAttribute&>(a).removeAt(at);
        EXPECT_EQ(done, at < size);
        if (done) eraseAt(v, width, at);
    } else if (what < 9) {
        std::size_t const count = below(3) ? size + below(20) : below(size + 1);
        static_cast<ArrayAttribute&>(a).resize(count);
        done = count != size;
        AnyValue const fill = a.isPointerArray() || a.isNodeContainer() ? AnyValue{{-1}, {}} : defaultOf(a);
        for (std::size_t i = size; i < count; ++i) insertAt(v, fill, width, i);
        for (std::size_t i = size; i > count; --i) eraseAt(v, width, i - 1);
    } else {
        v = {};
        for (std::size_t i = below(60); i-- > 0;) insertAt(v, anyValue(a), width, 0);
        write(a, v);
    }
    if (done) model.edited();
}

void RandomEdits::editElements() {
    int const id = anyNode();
    auto& array = get<AttributeArray>(&node(id), L"Elements");
    NodeModel& n = model.now.edit(id);
    std::size_t const at = below(n.elements.size() + 2);
    if (below(3)) {
        Attribute* e = array.insert(at);
        ASSERT_EQ(e != nullptr, at <= n.elements.size());
        if (!e) return;
        n.elements.insert(n.elements.begin() + long(at), e->getID());
        enterValues(n, e->getID() + 1, 2);
        hold(e);
        hold(e->asCompound()->getAttribute(1));
    } else {
        ASSERT_EQ(array.removeAt(at), at < n.elements.size());
        if (at >= n.elements.size()) return;
        n.values.erase(n.elements[at] + 1);
        n.values.erase(n.elements[at] + 2);
        n.elements.erase(n.elements.begin() + long(at));
    }
    model.edited();
}

void RandomEdits::editDynamic() {
    static constexpr AttributeType types[] = {AttributeType::Float, AttributeType::String, AttributeType::Matrix,
                                              AttributeType::FloatArray, AttributeType::Vector3Array};
    int const id = anyNode();
    NodeModel& n = model.now.edit(id);
    if (!n.added.empty() && below(3) == 0) {
        std::size_t const at = below(n.added.size());
        ASSERT_TRUE(database.lookupAttribute(n.added[at].first)->remove());
        n.values.erase(n.added[at].first);
        n.added.erase(n.added.begin() + long(at));
    } else {
        std::wstring const name = L"extra" + std::to_wstring(below(6));
        bool const isFree = std::none_of(n.added.begin(), n.added.end(), [&](auto& x) { return x.second == name; });
        double const initial[4] = {3, 2, 1, 0};
        Attribute* a = node(id).addDynamic(types[below(std::size(types))], name, initial, L"t");
        ASSERT_EQ(a != nullptr, isFree);
        if (!a) return;
        n.added.emplace_back(a->getID(), name);
        enterValues(n, a->getID(), 1);
        hold(a);
    }
    model.edited();
}

void RandomEdits::history(unsigned what) {
    if (what < 6)
        EXPECT_EQ(database.undo(), model.undo());
    else if (what < 10)
        EXPECT_EQ(database.redo(), model.redo());
    else if (what < 12) {
        ChangeMode const mode = below(2) ? ChangeMode::Recorded : ChangeMode::Transient;
        database.beginChangeBlock(mode), model.begin(mode);
    } else if (what < 13)
        database.cancel(), model.cancel();
    else if (what < 15)
        database.commitTransient(), model.commitTransient();
    else if (below(60) == 0)
        database.clearUndoHistory(), model.clearHistory();
    else if (below(30) == 0) {
        static constexpr int limits[] = {0, 1, 3, 20, 200, 200, 200};
        int const most = limits[below(std::size(limits))];
        database.setMaxUndoItems(most), model.setMost(std::size_t(most));
    }
}

void RandomEdits::edit() {
    unsigned const what = below(100);
    if (model.depth() > 0 && below(5) == 0)
        database.endChangeBlock(L"step"), model.end();
    else if (what < 22)
        history(below(16));
    else if (what < 30 && model.depth() < 3) {
        ChangeMode const mode = below(3) ? ChangeMode::Recorded : ChangeMode::Transient;
        database.beginChangeBlock(mode), model.begin(mode);
    } else if (model.now.nodes().size() < 4 || (what < 38 && model.now.nodes().size() < 24))
        createNode();
    else if (what < 62)
        structure(what < 40 ? 0 : what < 46 ? 1 : what < 57 ? 2 : 3);
    else if (what < 85)
        writeValue();
    else if (what < 94)
        editElements();
    else
        editDynamic();
}

// ---- comparison ----

void RandomEdits::check() {
    ASSERT_EQ(database.getUndoCount(), model.undoCount());
    ASSERT_EQ(database.getRedoCount(), model.redoCount());
    ASSERT_EQ(database.nodeCount(), model.now.nodes().size());
    std::vector<Node*> all;
    database.listNodes(all);
    ASSERT_EQ(all.size(), model.now.nodes().size());
    ASSERT_EQ(database.getChildCount(), model.now.top().size());
    for (std::size_t i = 0; i < model.now.top().size(); ++i)
        ASSERT_EQ(database.getChild(i)->getID(), model.now.top()[i]);
    for (auto const& [id, n] : model.now.nodes()) checkNode(id, *n);
    checkHandles();
}

void RandomEdits::checkNode(int id, NodeModel const& n) {
    Node* found = database.lookupNode(id);
    ASSERT_NE(found, nullptr);
    ASSERT_EQ(found->getNodeName(), n.name);
    ASSERT_EQ(found->getParentCount(), n.parents.size());
    for (std::size_t i = 0; i < n.parents.size(); ++i) ASSERT_EQ(found->getParent(i)->getID(), n.parents[i]);
    ASSERT_EQ(found->getChildCount(), n.children.size());
    for (std::size_t i = 0; i < n.children.size(); ++i) {
        Node* child = found->getChild(i);
        ASSERT_EQ(child->getID(), n.children[i]);
        Node* named = found->findChild(child->getNodeName());
        ASSERT_TRUE(named == child || (named && named->getNodeName() == child->getNodeName()));
    }
    ASSERT_EQ(database.findNodeByPath(found->getPath()), found);
    auto& array = get<AttributeArray>(found, L"Elements");
    ASSERT_EQ(array.size(), n.elements.size());
    for (std::size_t i = 0; i < n.elements.size(); ++i) {
        ASSERT_EQ(array.getElement(i)->getID(), n.elements[i]);
        ASSERT_EQ(array.getElement(i)->getIndex(), int(i));
    }
    std::vector<Attribute*> added;
    found->getDynamicAttributes(added);
    ASSERT_EQ(added.size(), n.added.size());
    for (std::size_t i = 0; i < added.size(); ++i) {
        ASSERT_EQ(added[i]->getID(), n.added[i].first);
        ASSERT_EQ(found->findAttribute(n.added[i].second), added[i]);
    }
    for (auto const& [attribute, value] : n.values) checkValue(attribute, value);
}

void RandomEdits::checkValue(int id, AnyValue const& expected) {
    Attribute* a = database.lookupAttribute(id);
    ASSERT_NE(a, nullptr);
    ASSERT_EQ(a->getID(), id);
    if (!hasReferences(*a)) {
        ASSERT_EQ(read(*a), expected) << "of attribute " << id;
        return;
    }
    AnyValue targets = expected;
    for (double& t : targets.numbers)
        if (t >= 0 && !model.now.isAlive(int(t))) t = -1;
    ASSERT_EQ(read(*a), targets) << "of reference " << id;
}

void RandomEdits::checkHandles() {
    std::set<int> alive;
    for (auto const& [id, n] : model.now.nodes()) {
        alive.insert(id);
        alive.insert(n->elements.begin(), n->elements.end());
        for (auto const& value : n->values) alive.insert(value.first);
    }
    for (auto const& [id, handle] : held) {
        Attribute* a = handle.getRef();
        ASSERT_EQ(a != nullptr, alive.count(id) == 1) << "handle of " << id;
        ASSERT_EQ(a, database.lookupAttribute(id));
        if (!a && handle.getRefOrRemoved()) { ASSERT_TRUE(handle.getRefOrRemoved()->isRemoved()); }
    }
}

// What changed between two tellings must have been told.
void RandomEdits::checkTold() {
    if (!told.any) return;
    State const &was = lastTold, &is = model.now;
    for (auto const& [id, n] : is.nodes())
        if (!was.has(id)) { ASSERT_TRUE(told.added.count(id)) << id; }
    for (auto const& [id, n] : was.nodes()) {
        if (!is.has(id)) { ASSERT_TRUE(told.removed.count(id)) << id; }
        if (!is.has(id) || is.sameAs(was, id)) continue;
        NodeModel const& m = is.at(id);
        if (m.name != n->name) { ASSERT_TRUE(told.renamed.count(id)) << id; }
        if (m.parents != n->parents) { ASSERT_TRUE(told.reparented.count(id)) << id; }
        for (auto const& [attribute, value] : m.values) {
            auto const before = n->values.find(attribute);
            if (before != n->values.end() && before->second != value) { ASSERT_TRUE(told.attributes.count(attribute)); }
        }
    }
    lastTold = is;
    told.forget();
}

void RandomEdits::undoAllAndRedoAll() {
    while (model.depth() > 0) database.endChangeBlock(L"all"), model.end();
    for (bool more = true; more;) ASSERT_EQ(more = database.undo(), model.undo());
    check();
    for (bool more = true; more;) ASSERT_EQ(more = database.redo(), model.redo());
    check();
    checkTold();
}

TEST_P(RandomEdits, LeaveTheDatabaseAsTheModelSays) {
    std::printf("seed %u\n", GetParam());
    database.setMaxUndoItems(200), model.setMost(200);
    for (int i = 0; i < 25000; ++i) {
        SCOPED_TRACE("edit " + std::to_string(i));
        edit();
        checkTold();
        if (i % 50 == 0) check();
        if (i % 2500 == 2499) undoAllAndRedoAll();
        if (i % 5000 == 4999) held.clear();
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, ::testing::Values(1u, 20u, 303u, 4004u));

}  // namespace
}  // namespace db::test
