// Random edits of structure, connections and values, with undo, redo and cancelling, against a model that keeps plain
// vectors and evaluates everything from scratch.
#include "qel/sg/scene.h"
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace sg {
namespace {

// ---- a node with two outputs, one made of the other ----

using namespace db::row;

class SumNode final : public Node {
public:
    static db::NodeDef const Def;
    explicit SumNode(db::NodeDef const& def) : Node(def) {}
    static float sum(float a, float b) { return a + b; }
    static float mix(float sum, float c) { return std::fmod(2 * sum + c, 64.f); }
    void compute(std::uint64_t todo) override {
        auto real = [&](int row) -> float& { return at<db::FloatAttribute>(row).raw(); };
        if (todo & 1) real(11) = sum(real(8), real(9));
        if (todo & 2) real(12) = mix(real(11), real(10));
    }
};

constexpr db::AttributeDef sumRows[] = {
    real(8, L"A").affects(3),   real(9, L"B").affects(3),
    real(10, L"C").affects(2),  real(11, L"Sum").output(0).affects(2),
    real(12, L"Mix").output(1), real(13, L"Free"),
    integer(14, L"Whole"),
};
db::NodeDef const SumNode::Def(L"test", L"Sum", &Node::Def, sumRows, sizeof(SumNode),
                               [](void* at, db::NodeDef const& def) -> db::Node* { return new (at) SumNode(def); });

// ---- the model ----

struct Value {
    float x = 0, y = 0;
    bool operator==(Value const&) const = default;
};

constexpr int slots = 22, most = 80;  // nodes; attributes of one of them
enum class Type { Many, Sum, Joint };
// Of a joint, in this order; the parent's matrix stands for the hierarchy.
enum JointPart { TX, TY, Source, LocalInput, ParentWorld, Local, World };

Type typeOf(int slot) { return slot == 0 ? Type::Many : slot % 2 ? Type::Sum : Type::Joint; }
int countOf(int slot) { return typeOf(slot) == Type::Many ? most : 7; }
bool isOutput(int slot, int part) {
    return (typeOf(slot) == Type::Sum && (part == 3 || part == 4)) || (typeOf(slot) == Type::Joint && part >= Local);
}
bool isMatrix(int slot, int part) { return typeOf(slot) == Type::Joint && part >= LocalInput; }
bool isWhole(int slot, int part) {
    return (typeOf(slot) == Type::Sum && part == 6) || (typeOf(slot) == Type::Joint && part == Source);
}
bool affects(int slot, int from, int to) {
    if (typeOf(slot) == Type::Sum) return (to == 3 && from <= 1) || (to == 4 && from <= 3);
    if (typeOf(slot) != Type::Joint) return false;
    return (to == Local && from <= LocalInput) || (to == World && from <= Local);
}

struct Part {
    int slot, part;
    int index() const { return slot * most + part; }
    static Part at(int index) { return {index / most, index % most}; }
};

struct State {
    std::vector<Value> values = std::vector<Value>(slots * most);
    std::vector<int> source = std::vector<int>(slots * most, -1);
    std::vector<std::vector<int>> parents = std::vector<std::vector<int>>(slots);
    std::vector<bool> alive = std::vector<bool>(slots);

    Value convert(Value v, Part to) const {
        if (isWhole(to.slot, to.part)) v.x = std::trunc(v.x);
        return v;
    }
    Value evaluate(Part p) const {
        std::vector<signed char> known(slots * most);
        std::vector<Value> memo(slots * most);
        return evaluate(p, known, memo);
    }
    Value evaluate(Part p, std::vector<signed char>& known, std::vector<Value>& memo) const {
        std::size_t const i = std::size_t(p.index());
        if (!known[i]) {
            memo[i] = compute(p, known, memo);
            known[i] = 1;
        }
        return memo[i];
    }
    Value compute(Part p, std::vector<signed char>& known, std::vector<Value>& memo) const {
        auto own = [&](int part) { return evaluate({p.slot, part}, known, memo); };
        int const from = source[std::size_t(p.index())];
        if (from >= 0) return convert(evaluate(Part::at(from), known, memo), p);
        if (typeOf(p.slot) == Type::Sum && p.part == 3) return {SumNode::sum(own(0).x, own(1).x), 0};
        if (typeOf(p.slot) == Type::Sum && p.part == 4) return {SumNode::mix(own(3).x, own(2).x), 0};
        if (typeOf(p.slot) == Type::Joint && p.part >= ParentWorld) {
            if (p.part == Local) return own(Source).x == 3 ? own(LocalInput) : Value{own(TX).x, own(TY).x};
            if (p.part == World) return {own(Local).x + own(ParentWorld).x, own(Local).y + own(ParentWorld).y};
            auto const& above = parents[std::size_t(p.slot)];
            bool const moved = !above.empty() && typeOf(above[0]) == Type::Joint;
            return moved ? evaluate({above[0], World}, known, memo) : Value();
        }
        return values[std::size_t(p.index())];
    }

    // Whether `to` lies downstream of `from`, or is it.
    bool reaches(Part from, Part to) const {
        std::vector<bool> seen(slots * most);
        std::vector<Part> work{from};
        while (!work.empty()) {
            Part const p = work.back();
            work.pop_back();
            if (p.index() == to.index()) return true;
            if (seen[std::size_t(p.index())]) continue;
            seen[std::size_t(p.index())] = true;
            for (int i = 0; i < slots * most; ++i)
                if (source[std::size_t(i)] == p.index()) work.push_back(Part::at(i));
            for (int o = 0; o < countOf(p.slot); ++o)
                if (affects(p.slot, p.part, o)) work.push_back({p.slot, o});
            if (typeOf(p.slot) != Type::Joint || p.part != World) continue;
            for (int c = 0; c < slots; ++c)
                for (int parent : parents[std::size_t(c)])
                    if (parent == p.slot && typeOf(c) == Type::Joint) work.push_back({c, ParentWorld});
        }
        return false;
    }
    bool isAncestor(int above, int below) const {
        for (int p : parents[std::size_t(below)])
            if (p == above || isAncestor(above, p)) return true;
        return false;
    }
};

// ---- both side by side ----

class RandomGraph : public ::testing::TestWithParam<unsigned> {
protected:
    RandomGraph() : random_(GetParam()) {
        for (int s = 0; s < slots; ++s) create(s);
        forget();
    }

    int below(int n) { return int(random_() % unsigned(n)); }
    Part anyPart() {
        int const s = below(3) == 0 ? 0 : below(slots);
        return {s, below(countOf(s))};
    }
    Node* node(int slot) { return nodes_[std::size_t(slot)]; }
    db::Attribute* attribute(Part p) {
        if (typeOf(p.slot) == Type::Many) return node(p.slot)->findAttribute(L"d" + std::to_wstring(p.part));
        if (typeOf(p.slot) == Type::Sum) return node(p.slot)->getAttribute(std::size_t(8 + p.part));
        static int const rows[] = {21, 22, 20, 48, 17, 18, 19};
        return node(p.slot)->getAttribute(std::size_t(rows[p.part]));
    }
    static Value read(db::Attribute& a) {
        if (a.isFloat()) return {a.asFloat()->getValue(), 0};
        if (a.isInt()) return {float(a.asInt()->getValue()), 0};
        if (a.isEnum()) return {float(a.asEnum()->getValue()), 0};
        Qelp::Matrix34 const& m = a.asMatrix34()->getValue();
        return {m.m[3][0], m.m[3][1]};
    }
    static void write(db::Attribute& a, Value v) {
        if (a.isFloat()) return a.asFloat()->setValue(v.x);
        if (a.isInt()) return a.asInt()->setValue(int(v.x));
        if (a.isEnum()) return a.asEnum()->setValue(int(v.x));
        Qelp::Matrix34 m;
        m.m[3][0] = v.x, m.m[3][1] = v.y;
        a.asMatrix34()->setValue(m);
    }

    // ---- edits ----

    void create(int s) {
        static wchar_t const* const types[] = {L"Node", L"Sum", L"Joint"};
        Node* n = scene_.makeNode(types[int(typeOf(s))], L"n", typeOf(s) == Type::Sum ? L"test" : L"sg");
        nodes_[std::size_t(s)] = n;
        for (int i = 0; typeOf(s) == Type::Many && i < most; ++i)
            n->addDynamicFloat(L"d" + std::to_wstring(i), 0, -1e9f, 1e9f);
        state_.alive[std::size_t(s)] = true;
        state_.parents[std::size_t(s)].clear();
        for (int p = 0; p < countOf(s); ++p)
            state_.values[std::size_t(Part{s, p}.index())] = {}, state_.source[std::size_t(Part{s, p}.index())] = -1;
    }
    void assign(Part p) {
        if (typeOf(p.slot) == Type::Joint && p.part == ParentWorld) return;
        Value v{float(below(20)), 0};
        if (isMatrix(p.slot, p.part)) v.y = float(below(20));
        if (typeOf(p.slot) == Type::Joint && p.part == Source) v.x = float(below(2) * 3);
        write(*attribute(p), v);
        // What is computed or connected does not hold what is written.
        if (!isOutput(p.slot, p.part) && state_.source[std::size_t(p.index())] < 0)
            state_.values[std::size_t(p.index())] = v;
    }
    void disconnectModel(int to) {
        state_.values[std::size_t(to)] = state_.evaluate(Part::at(to));
        state_.source[std::size_t(to)] = -1;
    }
    ConnectionResult connectModel(Part from, Part to, bool replace) {
        int& source = state_.source[std::size_t(to.index())];
        if (source == from.index()) return AlreadyConnected;
        if (isMatrix(from.slot, from.part) != isMatrix(to.slot, to.part)) return KindsDiffer;
        if (isOutput(to.slot, to.part) || (typeOf(to.slot) == Type::Joint && to.part == ParentWorld))
            return NotConnectable;
        if (source >= 0 && !replace) return InputTaken;
        if (state_.reaches(to, from)) return WouldMakeCycle;
        source = from.index();
        return Connected;
    }
    void connect(Part from, Part to) {
        bool const replace = below(3) > 0;
        ConnectionResult const result = scene_.connect(attribute(from), attribute(to), replace);
        ASSERT_EQ(result, connectModel(from, to, replace)) << from.index() << " to " << to.index();
    }
    void addChild(int parent, int child) {
        auto& above = state_.parents[std::size_t(child)];
        bool legal = parent != child && std::find(above.begin(), above.end(), parent) == above.end() &&
                     !state_.isAncestor(child, parent);
        if (legal && typeOf(parent) == Type::Joint && typeOf(child) == Type::Joint)
            legal = !state_.reaches({child, World}, {parent, World});
        ASSERT_EQ(node(parent)->addChild(*node(child)), legal) << parent << " over " << child;
        if (legal) above.push_back(parent);
    }
    void removeChild(int parent, int child) {
        auto& above = state_.parents[std::size_t(child)];
        auto const it = std::find(above.begin(), above.end(), parent);
        ASSERT_EQ(node(parent)->removeChild(*node(child)), it != above.end());
        if (it != above.end()) above.erase(it);
    }
    void removeModel(int s) {
        for (int c = 0; c < slots; ++c) {
            auto& above = state_.parents[std::size_t(c)];
            auto const it = std::find(above.begin(), above.end(), s);
            if (it == above.end()) continue;
            if (above.size() > 1)
                above.erase(it);
            else
                removeModel(c);
        }
        for (int p = 0; p < countOf(s); ++p)
            for (int to = 0; to < slots * most; ++to)
                if (state_.source[std::size_t(to)] == Part{s, p}.index() ||
                    (Part::at(to).slot == s && state_.source[std::size_t(to)] >= 0))
                    disconnectModel(to);
        state_.alive[std::size_t(s)] = false;
        state_.parents[std::size_t(s)].clear();
    }
    void disconnectOutputs(Part from) {
        scene_.disconnectOutputs(attribute(from));
        for (int to = 0; to < slots * most; ++to)
            if (state_.source[std::size_t(to)] == from.index()) disconnectModel(to);
    }

    void edit() {
        Part const a = anyPart(), b = anyPart();
        int const what = below(100);
        if (!state_.alive[std::size_t(a.slot)]) {
            if (!nodes_[std::size_t(a.slot)]) create(a.slot);
            return;
        }
        if (what < 35) return assign(a);
        if (what < 40) return disconnectOutputs(a);
        if (what < 50) {
            bool const was = state_.source[std::size_t(a.index())] >= 0;
            if (was) disconnectModel(a.index());
            EXPECT_EQ(scene_.disconnectInput(attribute(a)), was);
            return;
        }
        if (what >= 97 && a.slot != 0) {
            removeModel(a.slot);
            node(a.slot)->remove();
            return;
        }
        if (!state_.alive[std::size_t(b.slot)]) return;
        if (what < 80) return connect(a, b);
        if (a.slot == 0 || b.slot == 0) return;
        int const s = a.slot / 2 * 2, t = b.slot / 2 * 2;  // mostly joints
        if (s == 0 || t == 0 || !state_.alive[std::size_t(s)] || !state_.alive[std::size_t(t)])
            return addChild(a.slot, b.slot);
        what < 92 ? addChild(s, t) : removeChild(s, t);
    }

    // ---- steps ----

    void commit(std::size_t before) {
        if (scene_.getUndoCount() == before && scene_.getRedoCount() == history_.size() - 1 - done_) return;
        history_.resize(done_ + 1);
        history_.push_back(state_);
        ++done_;
    }
    void forget() {
        scene_.clearUndoHistory();
        history_.assign(1, state_);
        done_ = 0;
        for (int s = 0; s < slots; ++s)
            if (!state_.alive[std::size_t(s)]) nodes_[std::size_t(s)] = nullptr;
    }
    void block() {
        std::size_t const before = scene_.getUndoCount();
        State const start = state_;
        auto const nodes = nodes_;
        scene_.beginChangeBlock();
        for (int i = below(4); i >= 0; --i) {
            edit();
            if (below(4) == 0) check(anyPart());
        }
        if (below(6) == 0) {
            scene_.cancel();
            state_ = start;
            nodes_ = nodes;
        } else {
            scene_.endChangeBlock();
            commit(before);
        }
    }
    void step() {
        int const what = below(10);
        if (what < 6) return block();
        std::size_t const before = scene_.getUndoCount();
        if (what < 8) {
            edit();
            scene_.commitTransient();
            return commit(before);
        }
        for (int i = below(5); i >= 0; --i) {
            bool const back = what == 8;
            bool const can = back ? done_ > 0 : done_ + 1 < history_.size();
            ASSERT_EQ(back ? scene_.undo() : scene_.redo(), can);
            if (!can) return;
            back ? --done_ : ++done_;
            state_ = history_[done_];
        }
    }

    void check(Part p) {
        if (!state_.alive[std::size_t(p.slot)]) return;
        ASSERT_EQ(read(*attribute(p)), state_.evaluate(p)) << "slot " << p.slot << " part " << p.part;
    }
    void checkAll() {
        std::vector<signed char> known(slots * most);
        std::vector<Value> memo(slots * most);
        for (int s = 0; s < slots; ++s)
            for (int p = 0; state_.alive[std::size_t(s)] && p < countOf(s); ++p) {
                ASSERT_EQ(read(*attribute({s, p})), state_.evaluate({s, p}, known, memo))
                    << "slot " << s << " part " << p;
                int const from = state_.source[std::size_t(Part{s, p}.index())];
                ASSERT_EQ(scene_.getInputAttribute(attribute({s, p})), from < 0 ? nullptr : attribute(Part::at(from)));
            }
    }
    // What stopping early rests on: what lies downstream of anything out of date is out of date.
    void checkInvariant() {
        for (int s = 0; s < slots; ++s) {
            if (!state_.alive[std::size_t(s)]) continue;
            Node& n = *node(s);
            for (OutGroup const& g : n.outputs) {
                if (!g.from) continue;
                int const input = g.bit ? -1 : n.inputOf(*g.from);
                ASSERT_TRUE(input < 0 || (n.inputs[input].affects & Input::passes));
                if (g.bit ? !(n.dirty & g.bit) : input < 0 || !n.isStale(std::size_t(input))) continue;
                for (Edge const& e : g.edges) {
                    ASSERT_TRUE(e.target->isStale(e.input));
                    ASSERT_EQ(e.target->inputs[e.input].affects & Input::outputs & ~e.target->dirty, 0u);
                }
            }
        }
    }

    std::mt19937 random_;
    Scene scene_;
    std::vector<Node*> nodes_ = std::vector<Node*>(slots);
    State state_;
    std::vector<State> history_;
    std::size_t done_ = 0;
};

TEST_P(RandomGraph, AgreesWithAModelThatEvaluatesEverythingFromScratch) {
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    for (int i = 0; i < 25000; ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        step();
        check(anyPart());
        if (i % 16 == 0) checkInvariant();
        if (i % 64 == 0) checkAll();
        if (i % 500 == 499) forget();
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomGraph, ::testing::Values(1u, 2u, 3u, 4u));

}  // namespace
}  // namespace sg
