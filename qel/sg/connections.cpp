// Making and breaking connections.
#include "qel/sg/scene.h"
#include "qel/utils/text.h"

namespace sg {
namespace {

Node& nodeOf(db::Attribute const& a) { return static_cast<Node&>(a.node()); }
std::uint32_t affects(db::Attribute const& a) { return a.layout().rows[std::size_t(a.row())].affects; }

// The bit of the node's state that says that this source is out of date.
std::uint32_t ownBit(db::Attribute const& a) {
    int const bit = a.has(db::Attribute::outside) ? -1 : a.getDef().outputBit;
    return bit < 0 ? 0 : 1u << bit;
}

// The bits of all groups that pass an attribute on.
std::uint32_t onwardBits(Node& n, db::Attribute const& a) {
    std::uint32_t bits = 0;
    for (OutGroup const& g : n.outputs)
        if (g.from == &a) bits |= g.bit;
    return bits;
}

// A plain attribute that feeds others, and is perhaps fed itself, is an output of its own: it takes a bit from above;
// where all are used up, the last is shared.
std::uint32_t takePassBit(Node& n, db::Attribute const& a) {
    std::uint32_t const taken = n.passBits | n.getNodeDef().outputs();
    std::uint32_t const bit = taken == ~0u ? 1u << 31 : 1u << (31 - __builtin_clz(~taken));
    n.passBits |= bit;
    int const i = n.inputOf(a);
    if (i >= 0) {
        n.inputs[i].affects |= bit;
        if (n.stale & Node::stateBit(std::size_t(i))) n.dirty |= bit;
    }
    return bit;
}

std::uint64_t allInputs(Node const& n) { return n.inputCount >= 64 ? ~0ull : (1ull << n.inputCount) - 1; }

void fixEdge(OutGroup& g, std::size_t e) { g.edges[e].target->places[g.edges[e].input].edge = std::uint32_t(e); }
void fixInput(Node& n, std::size_t i) {
    n.inputs[i].source->outputs[n.places[i].group].edges[n.places[i].edge].input = std::uint32_t(i);
}

// Groups are dropped from the back only: places hold their numbers.
void dropEmptyGroups(Node& n) {
    while (!n.outputs.empty() && n.outputs.back().edges.empty()) {
        OutGroup const& g = n.outputs.back();
        if (!ownBit(*g.from) && !(affects(*g.from))) g.from->clear(db::Attribute::feeds);
        n.outputs.pop_back();
    }
    n.passBits = 0;
    for (OutGroup const& g : n.outputs)
        if (!ownBit(*g.from)) n.passBits |= g.bit;
}

}  // namespace

void Connection::onLife(bool removed) {
    if (removed)
        std::tie(edge, input) = graph().detach(*to);
    else
        graph().attach(*from, *to, this, edge, input);
    graph().changes().addAttribute(*to);
}

void Scene::attach(db::Attribute& from, db::Attribute& to, Connection* connection, std::int64_t edge, std::int64_t at) {
    sg::Node &s = nodeOf(from), &t = nodeOf(to);
    bool const hierarchy = !connection;
    if (!s.groupOf(from, hierarchy)) {
        OutGroup const* other = s.groupOf(from, !hierarchy);
        std::uint32_t const bit = ownBit(from) ? ownBit(from) : other ? other->bit : takePassBit(s, from);
        s.outputs.push_back({&from, bit, hierarchy, {}, {}, 0});
    }
    OutGroup& g = *s.groupOf(from, hierarchy);
    std::uint32_t const needs = ownBit(from) ? outputBits(from) : g.bit;
    std::size_t const last = t.addInput({&s, &from, &to, needs, affects(to) | onwardBits(t, to)});
    t.places.push_back({std::uint32_t(&g - s.outputs.data()), std::uint32_t(g.edges.size()), connection});
    g.edges.push_back({&t, std::uint32_t(last)});
    if (edge >= 0 && std::size_t(edge) + 1 < g.edges.size()) {
        std::swap(g.edges[std::size_t(edge)], g.edges.back());
        fixEdge(g, std::size_t(edge));
        fixEdge(g, g.edges.size() - 1);
    }
    if (at >= 0 && std::size_t(at) < last) {
        std::swap(t.inputs[at], t.inputs[last]);
        std::swap(t.places[std::size_t(at)], t.places[last]);
        fixInput(t, std::size_t(at));
        fixInput(t, last);
    }
    t.stale = allInputs(t);  // places moved; to carry once more is harmless
    from.set(db::Attribute::feeds);
    to.set(db::Attribute::live);
    ++structure_;
    t.dirty |= onwardBits(t, to);
    push(t, to);
    stack_.clear();
    if (std::uint32_t const onward = onwardBits(t, to)) stack_.push_back({&t, onward});
    spread();
}

std::pair<std::uint32_t, std::uint32_t> Scene::detach(db::Attribute& to) {
    sg::Node& t = nodeOf(to);
    std::size_t const at = std::size_t(t.inputOf(to));
    sg::Node::Place const gone = t.places[at];
    sg::Node& s = *t.inputs[at].source;
    OutGroup& g = s.outputs[gone.group];
    if (gone.edge + 1 < g.edges.size()) {
        g.edges[gone.edge] = g.edges.back();
        fixEdge(g, gone.edge);
    }
    g.edges.pop_back();
    std::size_t const last = --t.inputCount;
    if (at < last) {
        t.inputs[at] = t.inputs[last];
        t.places[at] = t.places[last];
        fixInput(t, at);
    }
    t.places.pop_back();
    t.stale = allInputs(t);
    dropEmptyGroups(s);
    if (ownBit(to) == 0) to.clear(db::Attribute::live);
    ++structure_;
    push(t, to);
    return {gone.edge, std::uint32_t(at)};
}

// ---- the public operations ----

void Scene::refuse(wchar_t const* why, db::Attribute const* from, db::Attribute const* to, bool quiet) const {
    if (quiet || !logger()) return;
    std::vector<std::wstring> f, t;
    if (from) getPathNames(*from, f);
    if (to) getPathNames(*to, t);
    std::wstring const text = Qelutils::format(L"Unable to connect \"%s\" to \"%s\": %s",
                                               f.empty() ? L"" : f[0].c_str(), t.empty() ? L"" : t[0].c_str(), why);
    logger()->Log(Qelutils::BasicLogger::Error, text);
}

ConnectionResult Scene::connect(db::Attribute* from, db::Attribute* to, bool replace, bool quiet) {
    auto refused = [&](ConnectionResult r, wchar_t const* why) { return refuse(why, from, to, quiet), r; };
    if (!from || !to || from->isRemoved() || to->isRemoved() || from->getDatabase() != this ||
        to->getDatabase() != this)
        return refused(MissingAttribute, L"an end of the connection does not exist in this scene");
    if (getInputAttribute(to) == from) return AlreadyConnected;
    if (!canCarry(*from, *to)) return refused(KindsDiffer, L"their kinds differ");
    int const taken = nodeOf(*to).inputOf(*to);
    if (ownBit(*to) || (to->isString() && to->asString()->isNodeName()) ||
        (taken >= 0 && !nodeOf(*to).places[std::size_t(taken)].connection))
        return refused(NotConnectable, L"the target is computed by its object");
    if (taken >= 0 && !replace) return refused(InputTaken, L"the target already has an input");
    if (wouldCycle(*from, *to)) return refused(WouldMakeCycle, L"the connection would close a cycle");
    if (taken >= 0) disconnectInput(to);
    noteWrite(*to);  // its own value comes back when the connection is undone
    auto* c = static_cast<Connection*>(createDetached(Connection::Def));
    if (!c) return refused(MissingAttribute, L"the scene is full");
    c->from = from;
    c->to = to;
    attach(*from, *to, c, -1, -1);
    return Connected;
}

bool Scene::disconnectInput(db::Attribute* to) {
    if (!to || to->getDatabase() != this) return false;
    sg::Node& t = nodeOf(*to);
    int const i = t.inputOf(*to);
    if (i < 0 || !t.places[std::size_t(i)].connection) return false;
    noteWrite(*to);
    t.refreshValue(*to);  // the last value stays, as if written
    t.places[std::size_t(i)].connection->remove();
    return true;
}

bool Scene::disconnectOutputs(db::Attribute* from) {
    std::vector<db::Attribute*> targets;
    getOutputAttributes(from, targets);
    for (std::size_t i = targets.size(); i-- > 0;) disconnectInput(targets[i]);
    return !targets.empty();
}

bool Scene::disconnect(db::Attribute* a) {
    bool const input = disconnectInput(a);
    return disconnectOutputs(a) || input;
}

db::Attribute* Scene::getInputAttribute(db::Attribute const* to) const {
    if (!to || to->isNode() || !to->has(db::Attribute::live)) return nullptr;
    sg::Node& t = nodeOf(*to);
    int const i = t.inputOf(*to);
    return i >= 0 && t.places[std::size_t(i)].connection ? t.inputs[i].from : nullptr;
}

void Scene::getOutputAttributes(db::Attribute const* from, std::vector<db::Attribute*>& out) const {
    if (!from || from->isNode()) return;
    if (OutGroup const* g = nodeOf(*from).groupOf(*from))
        for (Edge const& e : g->edges) out.push_back(e.target->inputs[e.input].to);
}

std::size_t Scene::getOutputCount(db::Attribute const* from) const {
    OutGroup const* g = from && !from->isNode() ? nodeOf(*from).groupOf(*from) : nullptr;
    return g ? g->edges.size() : 0;
}

void Scene::getAffectingAttributes(db::Attribute const* a, std::vector<db::Attribute*>& out) const {
    if (!a || a->isNode()) return;
    sg::Node& n = nodeOf(*a);
    int const input = n.inputOf(*a);
    if (input >= 0) return out.push_back(n.inputs[input].from);
    std::uint32_t const bit = ownBit(*a);
    db::Layout const& layout = n.getNodeDef().layout();
    for (int row = 0; bit && row < int(layout.rows.size()); ++row)
        if (layout.rows[std::size_t(row)].affects & bit) out.push_back(&n.at<db::Attribute>(row));
}

bool Scene::hasAffectingAttributes(db::Attribute const* a) const {
    if (!a || a->isNode() || !a->has(db::Attribute::live)) return false;
    std::vector<db::Attribute*> affecting;
    getAffectingAttributes(a, affecting);
    return !affecting.empty();
}

void Scene::removeInvalidConnections() {
    std::vector<ConnectionRecord> all;
    listConnections(all);
    for (ConnectionRecord const& c : all)
        if (c.from->isRemoved() || c.to->isRemoved()) disconnectInput(c.to);
}

void Scene::listConnections(std::vector<ConnectionRecord>& out) const {
    std::vector<db::Node*> nodes;
    listNodes(nodes);
    for (db::Node* n : nodes)
        if (n->isOfType(Connection::Def)) {
            auto* c = static_cast<Connection*>(n);
            out.push_back({c->getID(), c->from, c->to});
        }
}

bool Scene::loadConnection(ConnectionRecord const& c) {
    bool const sound = c.from && c.to && canCarry(*c.from, *c.to) && !ownBit(*c.to) &&
                       nodeOf(*c.to).inputOf(*c.to) < 0 && !wouldCycle(*c.from, *c.to);
    auto* node = sound ? static_cast<Connection*>(createForLoading(Connection::Def, c.id, {}, nullptr, true)) : nullptr;
    if (!node) return false;
    node->from = c.from;
    node->to = c.to;
    attach(*c.from, *c.to, node, -1, -1);
    return true;
}

// Upstream of the source and downstream of the target in turn, output by output: the smaller side decides, so that
// building a scene stays linear however many read one source. a.tx to b.tx and b.world to a.parentWorld is legal.
bool Scene::wouldCycle(db::Attribute const& from, db::Attribute const& to) {
    if (&from == &to) return true;
    ++mark_;
    std::vector<Task> up, down;
    auto fresh = [&](sg::Node& n) {
        if (n.mark != mark_) n.mark = mark_, n.upBits = n.downBits = 0;
    };
    auto goUp = [&](sg::Node& n, std::uint32_t bits) {
        fresh(n);
        bits &= ~n.upBits;
        n.upBits |= bits;
        if (bits) up.push_back({&n, bits});
        return (n.upBits & n.downBits) != 0;
    };
    auto goDown = [&](sg::Node& n, std::uint32_t bits) {
        fresh(n);
        bits &= ~n.downBits;
        n.downBits |= bits;
        if (bits) down.push_back({&n, bits});
        return (n.upBits & n.downBits) != 0;
    };
    sg::Node &s = nodeOf(from), &t = nodeOf(to);
    goDown(t, affects(to) | onwardBits(t, to));
    if (ownBit(from)) {
        if (goUp(s, outputBits(from))) return true;
    } else if (int const i = s.inputOf(from); i >= 0) {
        if (s.inputs[i].from == &to || goUp(*s.inputs[i].source, s.inputs[i].sourceBits)) return true;
    }
    while (!up.empty() && !down.empty()) {
        Task const u = up.back();
        up.pop_back();
        for (std::size_t i = 0; i < u.node->inputCount; ++i) {
            Input const& in = u.node->inputs[i];
            if ((in.affects & u.bits) && (in.from == &to || goUp(*in.source, in.sourceBits))) return true;
        }
        Task const d = down.back();
        down.pop_back();
        for (OutGroup const& g : d.node->outputs)
            for (std::size_t e = 0; (g.bit & d.bits) && e < g.edges.size(); ++e) {
                Edge const& edge = g.edges[e];
                if (edge.target->inputs[edge.input].to == &from ||
                    goDown(*edge.target, edge.target->inputs[edge.input].affects))
                    return true;
            }
    }
    return false;
}

}  // namespace sg
