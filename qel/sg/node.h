// A node that takes part in evaluation.
//
// Inside a node values flow from inputs to the outputs they affect, as the type's table says; between nodes they flow
// along connections. A node's state is two words: a bit per output that is out of date, a bit per connected input whose
// source has moved. Writing an input sets bits downstream and stops where they are set; reading an output computes what
// is needed, once. What nobody reads is never computed.
//
// The invariant behind stopping early: an output out of date, or a stale input that is passed on, implies that
// everything downstream of it is. So compute() writes raw values of its own outputs only, and is a pure function of the
// node's own block.
//
// What is computed or connected takes its value from there alone: a write by hand is recorded but does not hold, and
// comes to light, if at all, when undo goes back to a time before the connection. An output can be fed by a connection
// only where its row affects itself and is not read-only; compute() leaves it alone while something flows in.
#pragma once
#include "qel/db/node.h"

namespace sg {

class Node;
class Scene;
class Connection;

// A connected input, beside the node that reads it.
struct Input {
    // `affects` holds, above the outputs, what is particular to this input:
    static constexpr std::uint32_t passes = 1u << 31;     // its attribute feeds others itself
    static constexpr std::uint32_t lateStale = 1u << 30;  // stale, of inputs from the 64th on
    static constexpr std::uint32_t floats = 1u << 29;     // one float to another, the usual case
    static constexpr std::uint32_t outputs = floats - 1;  // the bits of our outputs that depend on it

    Node* source;
    db::Attribute *from, *to;
    std::uint32_t sourceBits;  // the source's outputs that must be up to date; 0 when `from` is a plain attribute
    std::uint32_t affects;
};

struct Edge {
    Node* target;
    std::uint32_t input;  // its place among the target's inputs
};

// What lies downstream of a source, as a flat list: made when one source is pushed twice under one structure.
struct Plan {
    struct Step {
        Node* node;
        std::uint64_t dirty, stale;
    };
    std::uint64_t structure = 0;
    std::uint64_t pushed = 0;  // the evaluations until the last push; only what came later lacks marks
    std::uint32_t id = 0;
    bool isNumbered = false;  // its nodes bear its id and their places in it
    std::vector<Step> steps;
    std::vector<Edge> late;  // inputs from the 64th on of their nodes
};

// The readers of one source attribute. The hierarchy's own edges (a parent's world matrix) stand apart from the
// connections that users make, so that these keep their order.
struct OutGroup {
    db::Attribute* from;  // null of a group that stands empty: places hold the numbers of groups
    std::uint32_t bit;    // of the source's state; 0 of a plain attribute, connected or not
    bool hierarchy;
    std::vector<Edge> edges;
    Plan plan;
    std::uint64_t lastStructure = 0;
};

class Node : public db::Node {
public:
    static inline std::wstring const ClassID = L"Node";
    static db::NodeDef const Def;

    explicit Node(db::NodeDef const& def) : Node(def, nullptr, 0) {}
    ~Node() override;

    Scene& graph() const { return *reinterpret_cast<Scene*>(database_); }
    Scene* getScene() const { return reinterpret_cast<Scene*>(database_); }
    Node* getParent(std::size_t i = 0) const { return static_cast<Node*>(db::Node::getParent(i)); }
    Node* getChild(std::size_t i) const { return static_cast<Node*>(db::Node::getChild(i)); }

    // Computes the outputs in `todo`. The inputs are up to date; raw values are read and written.
    virtual void compute(std::uint64_t /*todo*/) {}
    // Computes an output, or brings an input up to date, even if it is not out of date.
    void callCompute(db::Attribute& attribute);

    // A copy of this node and all below it, with the connections between them and those from the scene's clock, so that
    // copied curves play; what refers to a copied node refers to its copy. It stands at the top, under a unique form of
    // `name`. Null when the ids are used up, and of what is no object.
    Node* makeCopy(std::wstring const& name);

    // ---- evaluation; for this library ----
    void valueChanged(db::Attribute& a) override;
    void elementsChanged(db::ElementRun const& run) override;
    void refreshValue(db::Attribute& a) override;
    void onRemove() override;
    void onRemovePart(db::ElementBlock& part) override;

    // The first 63 inputs have a bit each; the last bit says that one of the others may be stale.
    static constexpr std::size_t lateInput = 63;
    static constexpr std::uint64_t lateBit = 1ull << lateInput;
    bool isStale(std::size_t input) const {
        return input < lateInput ? (stale >> input & 1) != 0 : (inputs[input].affects & Input::lateStale) != 0;
    }
    bool setStale(std::size_t input) {  // false when it was
        bool const was = isStale(input);
        stale |= 1ull << std::min(input, lateInput);
        if (input >= lateInput) inputs[input].affects |= Input::lateStale;
        return !was;
    }
    void clearStale(std::size_t input) {
        if (input < lateInput)
            stale &= ~(1ull << input);
        else
            inputs[input].affects &= ~Input::lateStale;
    }
    inline void update(std::uint64_t bits, int depth = 0);
    inline void prefetchSources() const;
    inline void takeOver(Input& input, int depth);
    void takeOverLate(std::uint64_t todo, int depth);
    void refreshPlain(db::Attribute& a, int depth);  // an attribute that is no output
    std::size_t addInput(Input const& input);
    void swapInputs(std::size_t a, std::size_t b);
    OutGroup* groupOf(db::Attribute const& a, bool hierarchy = false);
    int inputOf(db::Attribute const& to) const;  // -1 when it is not connected

    struct Place {
        std::uint32_t group, edge;               // where the source lists this input
        Connection* connection;                  // null of an edge of the hierarchy
        std::uint32_t upMark = 0, downMark = 0;  // scratch of searches
    };
    std::vector<OutGroup> outputs;
    std::vector<Place> places;                         // one per input
    std::uint32_t mark = 0, upBits = 0, downBits = 0;  // scratch of searches
    std::uint32_t planID = 0, planIndex = 0;           // the plan made last that reaches this node; 0: none

protected:
    // `room`: inputs that the class holds inside itself, beside its state.
    Node(db::NodeDef const& def, Input* room, std::size_t count);

private:
    template<class Which> void disconnectWhere(Which const& which);
    Input* room_;
};

// Where a class begins that holds its inputs first and on a cache line of their own.
inline constexpr std::size_t roomOffset = (sizeof(Node) + 63) / 64 * 64;

// Takes a value over, converting between the kinds of number. The kinds are known to match or convert.
void carry(db::Attribute const& from, db::Attribute& to);
bool canCarry(db::Attribute const& from, db::Attribute const& to);

class NodeHandle : public db::NodeHandle {
public:
    using db::NodeHandle::NodeHandle;
    Node* getRef() const { return static_cast<Node*>(db::NodeHandle::getRef()); }
};
using AttributeHandle = db::AttributeHandle;

}  // namespace sg
