// Making and breaking connections.
#include "qel/sg/scene.h"
#include "qel/utils/text.h"

namespace sg {
namespace {

Node& nodeOf(db::Attribute const& a) { return static_cast<Node&>(a.node()); }

// Of the database itself, or a whole node: nothing that the graph evaluates.
bool isOutside(db::Attribute const& a) { return a.isNode() || a.node().isDatabase(); }

// One is kept free for the hierarchy's own.
constexpr std::size_t mostInputs = 0xfffe;

std::uint32_t affects(db::Attribute const& a) { return a.layout().rows[std::size_t(a.row())].affects; }

// The bit of the node's state that says that this source is out of date.
std::uint32_t ownBit(db::Attribute const& a) {
    int const bit = a.getDef().outputBit;
    return bit < 0 ? 0 : 1u << bit;
}

// Whether `to`, a plain attribute with an input, feeds others itself.
void setPasses(Node& n, db::Attribute const& to, bool on) {
    int const i = n.inputOf(to);
    if (i < 0) return;
    std::uint32_t& flags = n.inputs[i].affects;
    flags = on ? flags | Input::passes : flags & ~Input::passes;
}

void fixEdge(OutGroup& g, std::size_t e) { g.edges[e].target->places[g.edges[e].input].edge = std::uint32_t(e); }
void fixInput(Node& n, std::size_t i) {
    n.inputs[i].source->outputs[n.places[i].group].edges[n.places[i].edge].input = std::uint32_t(i);
}

// An empty group stays where it is, as places hold the numbers of those behind it, and is used again.
OutGroup& takeGroup(Node& n, db::Attribute& from, bool hierarchy) {
    if (OutGroup* g = n.groupOf(from, hierarchy)) return *g;
    if (!ownBit(from)) setPasses(n, from, true);
    OutGroup fresh{&from, ownBit(from), hierarchy, {}, {}, 0};
    for (OutGroup& g : n.outputs)
        if (!g.from) return g = std::move(fresh);
    return n.outputs.emplace_back(std::move(fresh));
}

void dropGroup(Node& n, OutGroup& g) {
    db::Attribute& from = *g.from;
    g.from = nullptr;
    g.bit = 0;
    while (!n.outputs.empty() && !n.outputs.back().from) n.outputs.pop_back();
    if (ownBit(from)) return;
    setPasses(n, from, false);
    if (!affects(from) && n.inputOf(from) < 0) from.clear(db::Attribute::feeds);
}

void connectNode(Connection& c, db::Attribute& from, db::Attribute& to) {
    c.from = &from;
    c.to = &to;
    c.graph().attach(from, to, &c, -1, -1);
}

}  // namespace

void Connection::onRemove() {
    if (!to) return;
    to->noteWhole();
    static_cast<Node&>(to->node()).refreshValue(*to);  // the last value stays, as if written
}

void Connection::onLife(bool removed) {
    if (!to) return;
    if (removed)
        std::tie(edge, input) = graph().detach(*to);
    else
        graph().attach(*from, *to, this, edge, input);
    graph().changes().addAttribute(*to);
}

void Scene::attach(db::Attribute& from, db::Attribute& to, Connection* connection, std::int64_t edge, std::int64_t at) {
    sg::Node &s = nodeOf(from), &t = nodeOf(to);
    OutGroup& g = takeGroup(s, from, !connection);
    bool const passes = !ownBit(to) && t.groupOf(to);
    std::uint32_t const kind = from.isFloat() && to.isFloat() ? Input::floats : 0u;
    std::size_t const last =
        t.addInput({&s, &from, &to, outputBits(from), affects(to) | kind | (passes ? Input::passes : 0u)});
    t.places.push_back({std::uint32_t(&g - s.outputs.data()), std::uint32_t(g.edges.size()), connection});
    g.edges.push_back({&t, std::uint32_t(last)});
    if (edge >= 0 && std::size_t(edge) + 1 < g.edges.size()) {
        std::swap(g.edges[std::size_t(edge)], g.edges.back());
        fixEdge(g, std::size_t(edge));
        fixEdge(g, g.edges.size() - 1);
    }
    if (at >= 0 && std::size_t(at) < last) {
        t.swapInputs(std::size_t(at), last);
        fixInput(t, std::size_t(at));
        fixInput(t, last);
    }
    from.set(db::Attribute::feeds);
    to.set(db::Attribute::live | db::Attribute::feeds);
    ++structure_;
    push(t, to);  // which makes the new input stale
}

std::pair<std::uint32_t, std::uint32_t> Scene::detach(db::Attribute& to) {
    sg::Node& t = nodeOf(to);
    std::size_t const at = std::size_t(t.inputOf(to)), last = t.inputCount - 1u;
    sg::Node::Place const gone = t.places[at];
    sg::Node& s = *t.inputs[at].source;
    OutGroup& g = s.outputs[gone.group];
    if (gone.edge + 1 < g.edges.size()) {
        g.edges[gone.edge] = g.edges.back();
        fixEdge(g, gone.edge);
    }
    g.edges.pop_back();
    if (at < last) {
        t.swapInputs(at, last);
        fixInput(t, at);
    }
    t.clearStale(last);
    --t.inputCount;
    t.places.pop_back();
    if (g.edges.empty()) dropGroup(s, g);
    if (!ownBit(to)) to.clear(db::Attribute::live);
    ++structure_;
    push(t, to);
    if (!affects(to) && !t.groupOf(to)) to.clear(db::Attribute::feeds);
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

ConnectionResult Scene::check(db::Attribute* from, db::Attribute* to, bool replace, wchar_t const*& why) {
    auto refused = [&](ConnectionResult r, wchar_t const* reason) { return why = reason, r; };
    if (!from || !to || from->isRemoved() || to->isRemoved() || from->getDatabase() != this ||
        to->getDatabase() != this)
        return refused(MissingAttribute, L"an end of the connection does not exist in this scene");
    if (isOutside(*from) || isOutside(*to))
        return refused(NotConnectable, L"the scene's own attributes are not evaluated");
    if (getInputAttribute(to) == from) return AlreadyConnected;
    if (!canCarry(*from, *to)) return refused(KindsDiffer, L"their kinds differ");
    if (to->getDef().hasFlag(db::FlagReadOnly) || (to->isString() && to->asString()->isNodeName()))
        return refused(NotConnectable, L"the target is computed by its object");
    bool const taken = nodeOf(*to).inputOf(*to) >= 0;
    if (taken && !replace) return refused(InputTaken, L"the target already has an input");
    if (!taken && nodeOf(*to).inputCount >= mostInputs)
        return refused(NotConnectable, L"the target's object has too many inputs");
    if (!to->isCompound() && wouldCycle(*from, *to))
        return refused(WouldMakeCycle, L"the connection would close a cycle");
    return Connected;
}

ConnectionResult Scene::connect(db::Attribute* from, db::Attribute* to, bool replace, bool quiet) {
    wchar_t const* why = L"";
    ConnectionResult const result = check(from, to, replace, why);
    if (result > Connected) refuse(why, from, to, quiet);
    if (result != Connected) return result;
    if (to->isCompound()) return connectChildren(*from->asComposite(), *to->asComposite(), replace, quiet);
    if (nodeOf(*to).inputOf(*to) >= 0) disconnectInput(to);
    to->noteWhole();  // its own value comes back when the connection is undone
    auto* c = static_cast<Connection*>(createDetached(Connection::Def));
    if (!c) return refuse(L"the scene is full", from, to, quiet), MissingAttribute;
    connectNode(*c, *from, *to);
    return Connected;
}

// All or nothing: what one of the children would be refused for refuses all.
ConnectionResult Scene::connectChildren(db::CompositeAttribute& from, db::CompositeAttribute& to, bool replace,
                                        bool quiet) {
    wchar_t const* why = L"";
    for (std::size_t i = 0; i < to.getAttributeCount(); ++i) {
        ConnectionResult const r = check(from.getAttribute(i), to.getAttribute(i), replace, why);
        if (r > Connected) return refuse(why, from.getAttribute(i), to.getAttribute(i), quiet), r;
    }
    for (std::size_t i = 0; i < to.getAttributeCount(); ++i) {
        ConnectionResult const r = connect(from.getAttribute(i), to.getAttribute(i), replace, quiet);
        if (r > Connected) return r;
    }
    return Connected;
}

bool Scene::disconnectInput(db::Attribute* to) {
    if (!to || to->getDatabase() != this || isOutside(*to)) return false;
    if (to->isCompound()) {
        bool any = false;
        for (std::size_t i = 0; i < to->asComposite()->getAttributeCount(); ++i)
            any |= disconnectInput(to->asComposite()->getAttribute(i));
        return any;
    }
    sg::Node& t = nodeOf(*to);
    int const i = t.inputOf(*to);
    if (i < 0 || !t.places[std::size_t(i)].connection) return false;
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
    if (!to || isOutside(*to)) return nullptr;
    if (to->isCompound()) return inputOfCompound(*to->asComposite());
    if (!to->has(db::Attribute::live)) return nullptr;
    sg::Node& t = nodeOf(*to);
    int const i = t.inputOf(*to);
    return i >= 0 && t.places[std::size_t(i)].connection ? t.inputs[i].from : nullptr;
}

// The compound whose children feed the children here, each its like.
db::Attribute* Scene::inputOfCompound(db::CompositeAttribute const& to) const {
    db::Attribute* whole = nullptr;
    for (std::size_t i = 0; i < to.getAttributeCount(); ++i) {
        db::Attribute const* from = getInputAttribute(to.getAttribute(i));
        db::Attribute* above = from ? from->getParentAttribute() : nullptr;
        if (!above || !above->isCompound() || above->isNode() || from->getIndex() != int(i) ||
            (whole && above != whole))
            return nullptr;
        whole = above;
    }
    return whole;
}

void Scene::getOutputAttributes(db::Attribute const* from, std::vector<db::Attribute*>& out) const {
    if (!from || isOutside(*from)) return;
    if (from->isCompound()) {
        std::vector<db::Attribute*> ofFirst;
        if (from->asComposite()->getAttributeCount() > 0)
            getOutputAttributes(from->asComposite()->getAttribute(0), ofFirst);
        for (db::Attribute* a : ofFirst)
            if (getInputAttribute(a->getParentAttribute()) == from) out.push_back(a->getParentAttribute());
    } else if (OutGroup const* g = nodeOf(*from).groupOf(*from))
        for (Edge const& e : g->edges) out.push_back(e.target->inputs[e.input].to);
}

std::size_t Scene::getOutputCount(db::Attribute const* from) const {
    if (!from || isOutside(*from)) return 0;
    if (from->isCompound()) {
        std::vector<db::Attribute*> all;
        getOutputAttributes(from, all);
        return all.size();
    }
    OutGroup const* g = nodeOf(*from).groupOf(*from);
    return g ? g->edges.size() : 0;
}

void Scene::getAffectingAttributes(db::Attribute const* a, std::vector<db::Attribute*>& out) const {
    if (!a || isOutside(*a)) return;
    sg::Node& n = nodeOf(*a);
    int const input = n.inputOf(*a);
    if (input >= 0) return out.push_back(n.inputs[input].from);
    std::uint32_t const bit = ownBit(*a);
    db::Layout const& layout = n.getNodeDef().layout();
    for (int row = 0; bit && row < int(layout.rows.size()); ++row)
        if (layout.rows[std::size_t(row)].affects & bit) out.push_back(&n.at<db::Attribute>(row));
}

bool Scene::hasAffectingAttributes(db::Attribute const* a) const {
    if (!a || !a->has(db::Attribute::live)) return false;
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
    wchar_t const* why = L"";
    if (check(c.from, c.to, false, why) != Connected || c.to->isCompound()) return false;
    auto* node = static_cast<Connection*>(createForLoading(Connection::Def, c.id, {}, nullptr, true));
    if (node) connectNode(*node, *c.from, *c.to);
    return node != nullptr;
}

}  // namespace sg
