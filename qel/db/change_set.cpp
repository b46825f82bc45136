#include "qel/db/change_set.h"
#include "qel/db/database.h"
#include <unordered_set>

namespace db {

namespace {

constexpr std::size_t mostRuns = 64;  // of more, each question would have to look at too many

bool isIn(std::vector<Attribute const*>& sorted, auto const& list, Attribute const* attribute) {
    if (sorted.size() != list.size()) {
        sorted.assign(list.begin(), list.end());
        std::sort(sorted.begin(), sorted.end());
    }
    return std::binary_search(sorted.begin(), sorted.end(), attribute);
}

bool isInside(Attribute const* a, Attribute const& outer) {
    for (; a; a = a->getParentAttribute())
        if (a == &outer) return true;
    return false;
}

// Is one of the parts that this run wrote inside the attribute?
bool isInside(ElementRun const& run, Attribute const& outer) {
    if (isInside(run.array, outer)) return true;
    if (!outer.has(Attribute::outside) || outer.block().array != run.array) return false;
    if (outer.block().index < run.from || outer.block().index >= run.to) return false;
    Layout const& layout = *outer.block().layout;
    for (std::uint64_t rows = run.rows; rows; rows &= rows - 1)
        for (int row = __builtin_ctzll(rows); row >= 0; row = layout.rows[std::size_t(row)].parent)
            if (row == outer.row()) return true;
    return false;
}

}  // namespace

// ---- runs ----

bool ElementRun::holds(Attribute const& part) const {
    if (!part.has(Attribute::outside) || part.block().array != array || part.row() >= 64) return false;
    return (rows >> part.row() & 1) != 0 && part.block().index >= from && part.block().index < to;
}

template<class Visit> void ChangeSet::forEachInRuns(Visit const& visit) const {
    for (ElementRun const& run : runs_)
        for (std::size_t i = run.from; i < run.to; ++i) {
            ElementBlock& block = run.array->getElement(i)->block();
            for (std::uint64_t rows = run.rows; rows; rows &= rows - 1) visit(block.part(int(__builtin_ctzll(rows))));
        }
}

// A gesture in one block enters the same runs with each event.
void ChangeSet::addRun(ElementRun const& run) {
    addNode(run.array->node());
    if (nextRun_ >= runs_.size()) nextRun_ = 0;
    if (nextRun_ < runs_.size() && runs_[nextRun_] == run) {
        ++nextRun_;
        return;
    }
    if (runs_.size() == mostRuns) listRuns();
    runs_.push_back(run);
    nextRun_ = runs_.size();
}

// The nodes of what becomes listed are listed already.
void ChangeSet::listRuns() const {
    if (runs_.empty()) return;
    bool const areNodesKnown = nodesCount_ == touched_.size() + attributes_.size();
    if (isClosed_)
        listClosedRuns();
    else
        forEachInRuns([&](Attribute& a) {
            if (!a.has(Attribute::listed)) attributes_.push_back(&a);
            a.set(Attribute::listed);
        });
    runs_.clear();
    if (areNodesKnown) nodesCount_ = touched_.size() + attributes_.size();
}

// The flags belong to the next set by now.
void ChangeSet::listClosedRuns() const {
    std::unordered_set<Attribute const*> known;
    if (runs_.size() == 1)
        std::erase_if(attributes_, [&](Attribute const* a) { return runs_[0].holds(*a); });
    else
        known.insert(attributes_.begin(), attributes_.end());
    forEachInRuns([&](Attribute& a) {
        if (runs_.size() == 1 || known.insert(&a).second) attributes_.push_back(&a);
    });
}

// ---- questions ----

std::vector<Attribute*> const& ChangeSet::ChangedAttributes() const {
    listRuns();
    return attributes_;
}

// Few questions are answered by looking, which costs less than sorting first.
bool ChangeSet::isListed(Attribute const& attribute) const {
    if (sorted_.empty() && looked_ <= 16 * attributes_.size()) {
        looked_ += attributes_.size();
        return std::find(attributes_.begin(), attributes_.end(), &attribute) != attributes_.end();
    }
    return isIn(sorted_, attributes_, &attribute);
}

bool ChangeSet::isNodeListed(Attribute const& node) const { return isIn(sortedNodes_, ChangedNodes(), &node); }

bool ChangeSet::hasChanged(Attribute const* attribute, bool children, bool) const {
    if (!attribute) return false;
    if (attribute->isNode()) return isNodeListed(*attribute);  // its children's change is its own
    if (isListed(*attribute)) return true;
    if (std::any_of(runs_.begin(), runs_.end(), [&](ElementRun const& run) { return run.holds(*attribute); }))
        return true;
    if (!children) return false;
    return std::any_of(attributes_.begin(), attributes_.end(),
                       [&](Attribute const* a) { return isInside(a, *attribute); }) ||
           std::any_of(runs_.begin(), runs_.end(), [&](ElementRun const& run) { return isInside(run, *attribute); });
}

std::vector<Node*> const& ChangeSet::ChangedNodes() const {
    if (nodesCount_ == touched_.size() + attributes_.size()) return nodes_;
    nodesCount_ = touched_.size() + attributes_.size();
    nodes_ = touched_;
    sortedNodes_.clear();
    if (nodesCount_ <= 16) {
        for (Attribute const* a : attributes_)
            if (std::find(nodes_.begin(), nodes_.end(), &a->node()) == nodes_.end()) nodes_.push_back(&a->node());
        return nodes_;
    }
    std::unordered_set<Node const*> known(touched_.begin(), touched_.end());
    Node const* last = nullptr;
    for (Attribute const* a : attributes_)
        if (Node* const n = &a->node(); n != last)
            if (last = n; known.insert(n).second) nodes_.push_back(n);
    return nodes_;
}

std::vector<Node*> const& ChangeSet::ChangedNodes(int typeID) const {
    static std::vector<Node*> const none;
    ChangedNodes();
    if (groupedCount_ != nodes_.size()) {
        byType_.clear();
        for (Node* n : nodes_) byType_[n->getNodeDef().getTypeID()].push_back(n);
        for (auto& [id, nodes] : byType_)
            std::sort(nodes.begin(), nodes.end(), [](Node const* a, Node const* b) { return a->getID() < b->getID(); });
        groupedCount_ = nodes_.size();
    }
    auto const it = byType_.find(typeID);
    return it == byType_.end() ? none : it->second;
}

bool ChangeSet::empty() const { return attributes_.empty() && touched_.empty() && removedAttributes_.empty(); }

void ChangeSet::enter(std::vector<Node*>& list, Node& n, std::uint8_t bit) {
    addNode(n);
    if (n.listedAs_ & bit) return;
    n.listedAs_ |= bit;
    list.push_back(&n);
}

void ChangeSet::close(std::uint32_t flags) {
    if (flags & Attribute::recorded) listRuns();  // to clear that
    isClosed_ = true;
    for (Attribute* a : attributes_) a->clear(flags);
    for (Node* n : touched_) n->clear(Attribute::listed), n->listedAs_ = 0;
}

void ChangeSet::reset() {
    for (auto* list : {&touched_, &nodes_, &added_, &removed_, &renamed_, &reparented_}) list->clear();
    attributes_.clear();
    removedAttributes_.clear();
    runs_.clear();
    sorted_.clear();
    sortedNodes_.clear();
    if (groupedCount_ > 0) byType_.clear();
    nodesCount_ = groupedCount_ = looked_ = nextRun_ = 0;
    isClosed_ = false;
}

}  // namespace db
