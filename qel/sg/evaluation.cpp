// How changes travel: pushing marks downstream, updating chains too deep to recurse into, and converting values.
#include "qel/sg/scene.h"

namespace sg {

// ---- values ----

namespace {

using db::AttributeType;

bool isNumber(AttributeType t) { return t >= AttributeType::Integer && t <= AttributeType::Double; }

double readNumber(db::Attribute const& a) {
    switch (a.getAttributeType()) {
    case AttributeType::Integer: return a.asInt()->raw();
    case AttributeType::Boolean: return a.asBool()->raw() ? 1 : 0;
    case AttributeType::Enumeration: return a.asEnum()->raw();
    case AttributeType::Float: return double(a.asFloat()->raw());
    default: return a.asDouble()->raw();
    }
}

// Towards zero, as a cast; what does not fit becomes the nearest that does, no number 0.
int toInt(double x) {
    if (!(x == x)) return 0;
    return int(std::clamp(x, -2147483648.0, 2147483647.0));
}

void writeNumber(db::Attribute& a, double x) {
    switch (a.getAttributeType()) {
    case AttributeType::Integer: a.asInt()->raw() = toInt(x); break;
    case AttributeType::Boolean: a.asBool()->raw() = x != 0; break;
    case AttributeType::Enumeration: a.asEnum()->raw() = toInt(x); break;
    case AttributeType::Float: a.asFloat()->raw() = float(x); break;
    default: a.asDouble()->raw() = x; break;
    }
}

template<class A> bool carryAs(db::Attribute const& from, db::Attribute& to) {
    static_cast<A&>(to).raw() = static_cast<A const&>(from).raw();
    return true;
}

bool carrySame(db::Attribute const& from, db::Attribute& to) {
    switch (to.getAttributeType()) {
    case AttributeType::Matrix: return carryAs<db::Matrix34Attribute>(from, to);
    case AttributeType::Vector3: return carryAs<db::Vector3Attribute>(from, to);
    case AttributeType::Quaternion: return carryAs<db::QuaternionAttribute>(from, to);
    case AttributeType::String: return carryAs<db::StringAttribute>(from, to);
    case AttributeType::Pointer: return carryAs<db::PointerAttribute>(from, to);
    case AttributeType::IntegerArray: return carryAs<db::IntArrayAttribute>(from, to);
    case AttributeType::BooleanArray: return carryAs<db::BoolArrayAttribute>(from, to);
    case AttributeType::EnumerationArray: return carryAs<db::EnumArrayAttribute>(from, to);
    case AttributeType::FloatArray: return carryAs<db::FloatArrayAttribute>(from, to);
    case AttributeType::DoubleArray: return carryAs<db::DoubleArrayAttribute>(from, to);
    case AttributeType::StringArray: return carryAs<db::StringArrayAttribute>(from, to);
    case AttributeType::Vector3Array: return carryAs<db::Vector3ArrayAttribute>(from, to);
    case AttributeType::MatrixArray: return carryAs<db::Matrix34ArrayAttribute>(from, to);
    case AttributeType::PointerArray: return carryAs<db::PointerArrayAttribute>(from, to);
    case AttributeType::QuaternionArray: return carryAs<db::QuaternionArrayAttribute>(from, to);
    default: return false;
    }
}

}  // namespace

static bool haveLikeChildren(db::CompositeAttribute const& from, db::CompositeAttribute const& to) {
    if (from.getAttributeCount() != to.getAttributeCount()) return false;
    for (std::size_t i = 0; i < to.getAttributeCount(); ++i)
        if (!canCarry(*from.getAttribute(i), *to.getAttribute(i))) return false;
    return true;
}

bool canCarry(db::Attribute const& from, db::Attribute const& to) {
    AttributeType const f = from.getAttributeType(), t = to.getAttributeType();
    if (isNumber(f) && isNumber(t)) return true;
    if (from.isCompound() && to.isCompound()) return haveLikeChildren(*from.asComposite(), *to.asComposite());
    return f == t && f != AttributeType::NodeContainer && f != AttributeType::AttributeArray &&
           f != AttributeType::Node;
}

void carry(db::Attribute const& from, db::Attribute& to) {
    if (isNumber(to.getAttributeType()))
        writeNumber(to, readNumber(from));
    else
        carrySame(from, to);
}

// ---- marking what lies downstream ----

namespace {

std::uint32_t affects(db::Attribute const& a) { return a.layout().rows[std::size_t(a.row())].affects; }

}  // namespace

// `a` of `n` was written.
void Scene::push(sg::Node& n, db::Attribute& a) {
    bool const isOutput = outputBits(a) != 0;
    std::uint64_t const bits = affects(a) | (isOutput ? 1u << a.getDef().outputBit : 0);
    std::uint64_t const fresh = bits & ~n.dirty;
    n.dirty |= fresh;
    if (fresh) pushOutputs(n, fresh);
    int const input = a.has(db::Attribute::live) ? n.inputOf(a) : -1;
    if (input >= 0) n.setStale(std::size_t(input));  // what flows in holds, not what was written
    if (!isOutput) {
        for (OutGroup& g : n.outputs)
            if (g.from == &a) pushGroup(g);
    }
    spread();
}

void Scene::queue(sg::Node& n, std::uint64_t bits) {
    for (OutGroup& g : n.outputs)
        if (g.bit & bits) stack_.push_back(&g);
}

void Scene::queue(sg::Node& n, db::Attribute const& plain) {
    for (OutGroup& g : n.outputs)
        if (g.from == &plain) stack_.push_back(&g);
}

// The number of edges it went along.
std::size_t Scene::spread() {
    std::size_t walked = 0;
    while (!stack_.empty()) {
        OutGroup* const g = stack_.back();
        stack_.pop_back();
        walked += g->edges.size();
        pushEdges(*g);
    }
    return walked;
}

void Scene::pushEdges(OutGroup& g) {
    for (Edge const& e : g.edges) {
        sg::Node& t = *e.target;
        bool const fresh = t.setStale(e.input);
        Input const& in = t.inputs[e.input];
        std::uint64_t const now = in.affects & Input::outputs & ~t.dirty;
        t.dirty |= now;
        if (now) queue(t, now);
        if (fresh && (in.affects & Input::passes)) queue(t, *in.to);
    }
}

// A plan is made at the second push under one structure: a script that connects and sets in turn pays only walks.
void Scene::pushGroup(OutGroup& g) {
    if (g.plan.structure != structure_) {
        if (g.lastStructure != structure_) {
            g.lastStructure = structure_;
            return pushEdges(g);
        }
        makePlan(g.plan, {&g}, SIZE_MAX);
    }
    if (!isLogUseful(g.plan) || !markLogged(g.plan)) markAll(g.plan);
    if (logAt_ - log_.data() > std::ptrdiff_t(longLog)) forgetLog();
    g.plan.pushed = evaluations();
}

// These outputs have just gone out of date.
void Scene::pushOutputs(sg::Node& n, std::uint64_t bits) {
    Repeated& r = repeated_;
    bool const again = r.node == &n && r.bits == bits && r.structure == structure_;
    if (!again || !markRepeated()) {
        queue(n, bits);
        std::size_t const walked = spread();
        if (!again) r.node = &n, r.bits = bits, r.structure = structure_, r.walked = walked, r.plan.structure = 0;
    }
    r.plan.pushed = evaluations();
}

// By the plan, where that is no more work than to walk until everything is marked. False: nothing is done.
bool Scene::markRepeated() {
    Plan& plan = repeated_.plan;
    if (repeated_.walked == 0) return false;
    if (plan.structure != structure_) {
        std::vector<OutGroup const*> from;
        for (OutGroup const& g : repeated_.node->outputs)
            if (g.bit & repeated_.bits) from.push_back(&g);
        if (!makePlan(plan, std::move(from), 2 * repeated_.walked)) return repeated_.walked = 0, false;
        plan.isNumbered = plan.late.empty();
    }
    if (isLogUseful(plan)) return markLogged(plan);
    bool const mostWasRead = evaluations() - plan.pushed > plan.steps.size() / 2;
    if (mostWasRead) markAll(plan);
    return mostWasRead;
}

void Scene::growLog() {
    if (log_.size() >= mostLogged) return forgetLog();
    std::ptrdiff_t const used = logAt_ - log_.data();
    log_.resize(std::max<std::size_t>(64, 2 * log_.size()));
    logAt_ = log_.data() + used;
    logEnd_ = log_.data() + log_.size();
}

// False when the log cannot tell, or when to go through the plan is no more work.
bool Scene::isLogUseful(Plan const& plan) const {
    return plan.isNumbered && plan.pushed >= logStart_ && evaluations() - plan.pushed <= plan.steps.size() / 2;
}

// What nobody has read since the last push still bears its marks, so that one character of a hundred costs what one
// costs alone. False, and nothing marked, when another plan reaches one of the nodes too.
bool Scene::markLogged(Plan& plan) {
    sg::Node** const from = logAt_ - (evaluations() - plan.pushed);
    plan.isNumbered = std::all_of(from, logAt_, [&](sg::Node* n) { return n->planID == 0 || n->planID == plan.id; });
    if (!plan.isNumbered) return false;
    for (sg::Node** at = from; at < logAt_; ++at) {
        sg::Node& n = **at;
        if (n.planID == 0) continue;
        n.dirty |= plan.steps[n.planIndex].dirty;
        n.stale |= plan.steps[n.planIndex].stale;
    }
    return true;
}

void Scene::markAll(Plan& plan) {
    constexpr std::size_t ahead = 12;
    std::size_t const count = plan.steps.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i + ahead < count) __builtin_prefetch(&plan.steps[i + ahead].node->dirty, 1);
        plan.steps[i].node->dirty |= plan.steps[i].dirty;
        plan.steps[i].node->stale |= plan.steps[i].stale;
    }
    for (std::size_t i = 0; !plan.isNumbered && i < count; ++i) {
        plan.steps[i].node->planID = plan.id;
        plan.steps[i].node->planIndex = std::uint32_t(i);
    }
    for (Edge const& e : plan.late) e.target->setStale(e.input);
    plan.isNumbered = plan.late.empty();  // steps do not tell which of the late inputs are theirs
}

// What lies downstream of all these. False, and no plan, beyond `mostSteps`.
bool Scene::makePlan(Plan& plan, std::vector<OutGroup const*> work, std::size_t mostSteps) {
    plan.structure = 0;
    plan.steps.clear();
    plan.late.clear();
    std::uint32_t const mark = ++mark_;
    plan.id = ++lastPlanID_;
    auto reach = [&](Edge const& e) {
        sg::Node& t = *e.target;
        if (t.mark != mark) {
            t.mark = mark;
            t.planID = plan.id;  // whatever plan had it before must look for itself
            t.planIndex = std::uint32_t(plan.steps.size());
            plan.steps.push_back({&t, 0, 0});
        }
        Plan::Step& s = plan.steps[t.planIndex];
        if (e.input < sg::Node::lateInput)
            s.stale |= 1ull << e.input;
        else
            plan.late.push_back(e);
        Input const& in = t.inputs[e.input];
        std::uint64_t const now = in.affects & Input::outputs & ~s.dirty;
        s.dirty |= now;
        for (OutGroup const& o : t.outputs)
            if ((o.bit & now) || ((in.affects & Input::passes) && o.from == in.to)) work.push_back(&o);
    };
    while (!work.empty() && plan.steps.size() <= mostSteps) {
        OutGroup const& o = *work.back();
        work.pop_back();
        for (Edge const& e : o.edges) reach(e);
    }
    if (plan.steps.size() > mostSteps) return false;
    plan.structure = structure_;
    plan.isNumbered = false;
    return true;
}

// ---- chains too deep to recurse into ----

void Scene::needSource(sg::Node& n, std::size_t input) {
    if (!n.isStale(input)) return;
    Input const& in = n.inputs[input];
    sg::Node& s = *in.source;
    if (in.sourceBits) {
        if (s.dirty & in.sourceBits) deep_.push_back({&s, in.sourceBits, -1});
    } else if (int const i = in.from->has(db::Attribute::live) ? s.inputOf(*in.from) : -1; i >= 0)
        if (s.isStale(std::size_t(i))) deep_.push_back({&s, 0, i});
}

void Scene::evaluateDeep(Task const& root) {
    std::size_t const base = deep_.size();
    deep_.push_back(root);
    while (deep_.size() > base) {
        Task const task = deep_.back();
        sg::Node& n = *task.node;
        std::uint64_t const todo = n.dirty & task.bits;
        std::size_t const before = deep_.size();
        if (task.input >= 0) needSource(n, std::size_t(task.input));
        for (std::size_t i = 0; todo && i < n.inputCount; ++i)
            if (n.inputs[i].affects & todo) needSource(n, i);
        if (deep_.size() > before) continue;
        deep_.pop_back();
        if (task.input >= 0)
            n.refreshPlain(*n.inputs[task.input].to, 0);
        else if (todo)
            n.update(todo);  // all sources are up to date: it does not recurse
    }
}

}  // namespace sg
