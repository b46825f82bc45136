// Whether a new connection would close a cycle. Upstream of the source and downstream of the target are searched in
// turn, the cheaper next step first, and the search ends when either side is exhausted: building a scene stays linear
// however many read one source and however long the chains are that others hang on.
#include "qel/sg/scene.h"
#include <algorithm>

namespace sg {
namespace {

Node& nodeOf(db::Attribute const& a) { return static_cast<Node&>(a.node()); }

bool hasWorld(db::Node const& n) { return n.isOfType(TransformBaseNode::Def); }
db::Attribute const* parentWorldOf(Node const& n) {
    return hasWorld(n) ? &n.at<db::Attribute>(TransformBaseNode::ParentWorldMatrix) : nullptr;
}

class CycleSearch {
public:
    CycleSearch(db::Attribute const& to, std::uint32_t mark) : to_(to), mark_(mark) {}

    bool finds(db::Attribute const& from) {
        if (&from == &to_ || goDownFrom(to_) || goUpTo(from)) return true;
        std::size_t upCost = 0, downCost = 0;
        while (!up_.empty() && !down_.empty()) {
            std::size_t const nextUp = upCost + costUp(up_.back()), nextDown = downCost + costDown(down_.back());
            bool const upwards = nextUp <= nextDown;
            (upwards ? upCost : downCost) = std::min(nextUp, nextDown);
            if (upwards ? stepUp() : stepDown()) return true;
        }
        return false;
    }

private:
    // Outputs of a node; or, without bits, one plain attribute of it.
    struct Spot {
        Node* node;
        std::uint32_t bits;
        db::Attribute const* plain;
    };

    static std::size_t costUp(Spot const& s) { return s.bits ? s.node->inputCount + 1u : 1; }
    static std::size_t costDown(Spot const& s) {
        std::size_t cost = 1 + (passesOnWorld(s) ? s.node->getChildCount() : 0);
        for (OutGroup const& g : s.node->outputs)
            if (leaves(g, s)) cost += g.edges.size();
        return cost;
    }
    static bool leaves(OutGroup const& g, Spot const& s) { return s.bits ? (g.bit & s.bits) != 0 : g.from == s.plain; }
    static bool passesOnWorld(Spot const& s) {
        return (s.bits & TransformBaseNode::worldBit) && hasWorld(*s.node) && s.node->getChildCount() > 0;
    }

    void visit(Node& n) {
        if (n.mark != mark_) n.mark = mark_, n.upBits = n.downBits = 0;
    }

    bool goUp(Node& n, std::uint32_t bits) {
        visit(n);
        bits &= ~n.upBits;
        n.upBits |= bits;
        if (bits) up_.push_back({&n, bits, nullptr});
        return (n.upBits & n.downBits) != 0;
    }
    bool goUpTo(db::Attribute const& a) {  // true: it is downstream of the target
        if (&a == &to_) return true;
        Node& n = nodeOf(a);
        if (std::uint32_t const bits = outputBits(a)) return goUp(n, bits);
        if (&a == parentWorldOf(n) && goUpToParents(n)) return true;
        int const i = n.inputOf(a);
        if (i < 0 || n.places[std::size_t(i)].upMark == mark_) return false;
        n.places[std::size_t(i)].upMark = mark_;
        up_.push_back({&n, 0, &a});
        return n.places[std::size_t(i)].downMark == mark_;
    }
    bool goDown(Node& n, std::uint32_t bits) {
        visit(n);
        bits &= ~n.downBits;
        n.downBits |= bits;
        if (bits) down_.push_back({&n, bits, nullptr});
        return (n.upBits & n.downBits) != 0;
    }
    bool goDownFrom(db::Attribute const& a) {
        Node& n = nodeOf(a);
        if (n.groupOf(a)) down_.push_back({&n, 0, &a});
        return goDown(n, a.layout().rows[std::size_t(a.row())].affects);
    }

    bool stepUp() {
        Spot const s = up_.back();
        up_.pop_back();
        if (!s.bits) return goUpTo(*s.node->inputs[s.node->inputOf(*s.plain)].from);
        for (std::size_t i = 0; i < s.node->inputCount; ++i)
            if ((s.node->inputs[i].affects & s.bits) && goUpTo(*s.node->inputs[i].from)) return true;
        return (s.bits & TransformBaseNode::worldBit) && parentWorldOf(*s.node) && goUpToParents(*s.node);
    }
    // The primary parent's matrix comes along an edge, as a rule.
    bool goUpToParents(Node& n) {
        for (std::size_t i = 1; i < n.getParentCount(); ++i)
            if (hasWorld(*n.getParent(i)) && goUpTo(n.getParent(i)->at<db::Attribute>(TransformBaseNode::WorldMatrix)))
                return true;
        return false;
    }
    bool stepDown() {
        Spot const s = down_.back();
        down_.pop_back();
        for (OutGroup const& g : s.node->outputs)
            for (std::size_t e = 0; leaves(g, s) && e < g.edges.size(); ++e)
                if (goDownInto(*g.edges[e].target, g.edges[e].input)) return true;
        for (std::size_t i = 0; passesOnWorld(s) && i < s.node->getChildCount(); ++i) {
            Node& child = *s.node->getChild(i);
            if (child.getParent() != s.node && hasWorld(child) && goDownFrom(*parentWorldOf(child))) return true;
        }
        return false;
    }
    bool goDownInto(Node& n, std::size_t input) {
        Node::Place& place = n.places[input];
        place.downMark = mark_;
        return place.upMark == mark_ || goDownFrom(*n.inputs[input].to);
    }

    db::Attribute const& to_;
    std::uint32_t const mark_;
    std::vector<Spot> up_, down_;
};

}  // namespace

bool Scene::wouldCycle(db::Attribute const& from, db::Attribute const& to) {
    return CycleSearch(to, ++mark_).finds(from);
}

}  // namespace sg
