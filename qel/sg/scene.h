// The evaluating graph: a database whose nodes are connected.
//
// Paths: names joined with "|" from the top, and "." before the local path of an attribute.
// Patterns: '*' stands for any run of characters within a name, '?' for one. A pattern without '|' matches names at any
// depth, so "*" is every node; one with '|' matches whole paths, name by name, and "**" there stands for any number of
// levels, also none.
#pragma once
#include "qel/db/database.h"
#include "qel/sg/connection.h"
#include "qel/sg/node_types.h"
#include "qel/sg/units.h"

namespace sg {

// 0 or less: the connection stands.
enum ConnectionResult : int {
    AlreadyConnected = -1,
    Connected = 0,
    MissingAttribute,  // an end is missing, removed, or of another scene
    KindsDiffer,       // no conversion between the kinds
    InputTaken,        // and `replace` was not given
    WouldMakeCycle,
    NotConnectable,  // the target is computed by its node, or has no node that evaluates
};

class Scene : public db::Database {
public:
    using Node = sg::Node;  // not the one of the database
    static inline std::wstring const ClassID = L"Scene";

    explicit Scene(std::wstring const& name = {});
    ~Scene() override;

    // ---- nodes ----
    sg::Node* makeNode(std::wstring const& type, std::wstring const& name,
                       std::wstring const& nameSpace = L"sg");  // null: unknown type
    sg::Node* findNode(std::wstring const& path, sg::Node const* below = nullptr) const;
    void findNodes(std::wstring const& pattern, std::vector<sg::Node*>& out) const;  // in the order of the hierarchy
    db::Attribute* findAttributeByPath(std::wstring const& path) const;  // "a|b.Local[0].Name"; null for none
    void listAllNodes(std::vector<sg::Node*>& out) const;                // connections included, by id
    void getPathNames(db::Attribute const& a, std::vector<std::wstring>& out) const;  // one for each way from the top

    // ---- connections ----
    // The value of `from` flows into `to` from now on. A message goes to the log where it is refused. Numbers convert
    // into each other as by a cast, other kinds must be the same; compounds of like children are connected child by
    // child.
    ConnectionResult connect(db::Attribute* from, db::Attribute* to, bool replace = true, bool quiet = false);
    bool disconnect(db::Attribute* a);        // inputs and outputs; false when there were none
    bool disconnectInput(db::Attribute* to);  // the last value stays
    bool disconnectOutputs(db::Attribute* from);
    db::Attribute* getInputAttribute(db::Attribute const* to) const;  // what feeds it directly, or null
    void getOutputAttributes(db::Attribute const* from,
                             std::vector<db::Attribute*>& out) const;  // as connected; a gap is filled by the last
    std::size_t getOutputCount(db::Attribute const* from) const;
    // What its value is made of, one step back: the source that feeds it, or the inputs of its node that affect it.
    void getAffectingAttributes(db::Attribute const* a, std::vector<db::Attribute*>& out) const;
    bool hasAffectingAttributes(db::Attribute const* a) const;
    void removeInvalidConnections();  // those with an end that is gone

    // ---- figures, for tests and benchmarks ----
    std::uint64_t evaluations() const { return logStart_ + std::uint64_t(logAt_ - log_.data()); }
    std::uint64_t structureVersion() const { return structure_; }

    // ---- for the nodes ----
    void attach(db::Attribute& from, db::Attribute& to, Connection* connection, std::int64_t edge, std::int64_t input);
    std::pair<std::uint32_t, std::uint32_t> detach(db::Attribute& to);
    void push(sg::Node& n, db::Attribute& a);
    // Beyond it evaluation goes on without recursion, at twice the cost. A level takes some 110 bytes of the stack.
    static constexpr int mostDepth = 1024;
    void updateDeep(sg::Node& n, std::uint64_t bits) { evaluateDeep({&n, bits, -1}); }
    void refreshDeep(sg::Node& n, int input) { evaluateDeep({&n, 0, input}); }
    // `n` has come up to date: what the next push has to mark again.
    void noteEvaluation(sg::Node& n) {
        if (logAt_ == logEnd_) [[unlikely]]
            growLog();
        *logAt_++ = &n;
    }
    void forgetLog() {  // also when a node in it goes
        logStart_ = evaluations();
        logAt_ = log_.data();
    }
    // Would a value that flows from the one to the other come back to where it starts? Attribute by attribute: a.tx to
    // b.tx and b.world to a matrix of a that does not move tx is legal. Every parent of a node counts, as its world
    // matrix may come to depend on each when others go.
    bool wouldCycle(db::Attribute const& from, db::Attribute const& to);

    void listConnections(std::vector<ConnectionRecord>& out) const override;
    bool loadConnection(ConnectionRecord const& c) override;
    db::NodeDef const* unknownNodeDef() const override;
    std::unique_ptr<db::Database> makeEmpty() const override { return std::make_unique<Scene>(); }

protected:
    void onAdopted(db::Database& other) override;

private:
    struct Task {
        sg::Node* node;
        std::uint64_t bits;
        int input;  // to bring up to date that one; -1: the outputs in `bits`
    };
    ConnectionResult check(db::Attribute* from, db::Attribute* to, bool replace, wchar_t const*& why);
    ConnectionResult connectChildren(db::CompositeAttribute& from, db::CompositeAttribute& to, bool replace,
                                     bool quiet);
    db::Attribute* inputOfCompound(db::CompositeAttribute const& to) const;
    void evaluateDeep(Task const& root);
    void needSource(sg::Node& n, std::size_t input);
    void pushGroup(OutGroup& g);
    void pushOutputs(sg::Node& n, std::uint64_t bits);
    bool markRepeated();
    void pushEdges(OutGroup& g);
    void queue(sg::Node& n, std::uint64_t bits);
    void queue(sg::Node& n, db::Attribute const& plain);
    std::size_t spread();
    bool makePlan(Plan& plan, std::vector<OutGroup const*> work, std::size_t mostSteps);
    bool isLogUseful(Plan const& plan) const;
    bool markLogged(Plan& plan);
    void markAll(Plan& plan);
    void refuse(wchar_t const* why, db::Attribute const* from, db::Attribute const* to, bool quiet) const;

    std::uint64_t structure_ = 1;  // moves on with each connection made or broken
    static constexpr std::size_t mostLogged = 1 << 20, longLog = 1 << 12;
    void growLog();
    std::vector<sg::Node*> log_;  // up to logAt_: what was evaluated after the first logStart_ evaluations, in order
    sg::Node **logAt_ = nullptr, **logEnd_ = nullptr;
    std::uint64_t logStart_ = 0;
    // The outputs that were pushed last: a drag pushes the same ones with each event.
    struct Repeated {
        sg::Node* node = nullptr;
        std::uint64_t bits = 0, structure = 0;
        std::size_t walked = 0;  // edges, the first time; 0: a plan would take more steps than walking does
        Plan plan;
    } repeated_;
    std::uint32_t lastPlanID_ = 0;
    std::vector<OutGroup*> stack_;
    std::vector<Task> deep_;
    std::uint32_t mark_ = 0;
};

// The bits of the outputs that `a` is, or needs when it is read; 0 of a plain attribute.
std::uint32_t outputBits(db::Attribute const& a);

// Several sources are about to be read, each from memory of its own: asked for together, they arrive together.
inline void Node::prefetchSources() const {
    for (std::uint64_t s = stale & ~(1ull << 63); s; s &= s - 1) {
        Input const& i = inputs[std::size_t(__builtin_ctzll(s))];
        __builtin_prefetch(i.source, 1);
        __builtin_prefetch(reinterpret_cast<char const*>(i.source) + roomOffset, 1);
        __builtin_prefetch(i.from, 1);
    }
}

inline void Node::takeOver(Input& i, int depth) {
    if (i.sourceBits) {
        if (i.source->dirty & i.sourceBits) i.source->update(i.sourceBits, depth + 1);
    } else if (i.from->has(db::Attribute::live))
        i.source->refreshPlain(*i.from, depth + 1);
    if (i.affects & Input::floats) [[likely]]
        static_cast<db::FloatAttribute&>(*i.to).raw() = static_cast<db::FloatAttribute const&>(*i.from).raw();
    else
        carry(*i.from, *i.to);
}

inline void Node::update(std::uint64_t bits, int depth) {
    std::uint64_t const todo = dirty & bits;
    if (!todo) return;
    if (depth > Scene::mostDepth) return graph().updateDeep(*this, bits);
    if (stale & (stale - 1)) prefetchSources();
    std::uint64_t taken = 0;
    for (std::uint64_t s = stale & ~lateBit; s; s &= s - 1) {
        Input& i = inputs[std::size_t(__builtin_ctzll(s))];
        if (!(i.affects & todo)) continue;
        takeOver(i, depth);
        taken |= s & -s;
    }
    stale &= ~taken;
    if (stale & lateBit) takeOverLate(todo, depth);
    dirty &= ~todo;
    graph().noteEvaluation(*this);
    compute(todo);
}

}  // namespace sg
