// What one commit changed. It is built by the writes themselves, lent to the observers for the time of the telling, and
// copies nothing; questions about single attributes are answered from an index that is made when it pays. What was
// written in bulk is entered as runs of elements, and becomes single attributes only when someone wants the list.
#pragma once
#include "qel/db/node.h"

namespace db {

class ChangeSet {
public:
    ChangeSet() = default;
    ChangeSet(ChangeSet const&) = delete;
    ChangeSet& operator=(ChangeSet const&) = delete;

    // True when that attribute itself changed; of a node: when it, or an attribute of it, is in the set. `children`:
    // or something inside it; `connections`: or something that feeds it directly.
    bool hasChanged(Attribute const* attribute, bool children, bool connections) const;
    bool hasChanged(Attribute const& attribute, bool children, bool connections) const {
        return hasChanged(&attribute, children, connections);
    }
    bool hasTypeChanged(int typeID) const { return !ChangedNodes(typeID).empty(); }

    std::vector<Attribute*> const& ChangedAttributes() const;
    std::vector<Attribute*> const& RemovedAttributes() const { return removedAttributes_; }
    std::vector<Node*> const& ChangedNodes() const;            // each once
    std::vector<Node*> const& ChangedNodes(int typeID) const;  // of exactly that type, each once, by id
    std::vector<Node*> const& AddedNodes() const { return added_; }
    std::vector<Node*> const& RemovedNodes() const { return removed_; }
    std::vector<Node*> const& RenamedNodes() const { return renamed_; }
    std::vector<Node*> const& ReparentedNodes() const { return reparented_; }
    bool empty() const;

    // ---- for the database and the graph while the set is built ----
    // Once each, by its flag. Its node counts as changed too; which those are is found when someone asks.
    void addAttribute(Attribute& a) {
        if (a.has(Attribute::listed)) return;
        a.set(Attribute::listed);
        attributes_.push_back(&a);
    }
    void addRun(ElementRun const& run);
    void listRuns() const;  // one by one from here on: before elements come or go
    void addNode(Node& n) {
        if (n.has(Attribute::listed)) return;
        n.set(Attribute::listed);
        touched_.push_back(&n);
    }
    void addRemovedAttribute(Attribute& a) { removedAttributes_.push_back(&a); }
    void addAdded(Node& n) { enter(added_, n, 1); }  // these, too, once each
    void addRemoved(Node& n) { enter(removed_, n, 2); }
    void addRenamed(Node& n) { enter(renamed_, n, 4); }
    void addReparented(Node& n) { enter(reparented_, n, 8); }
    void forgetRemovedAttributes() { removedAttributes_.clear(); }
    void close(std::uint32_t flags);  // the set is complete: clears them, `listed` among them, of all that is listed
    void reset();

private:
    friend class Attribute;  // enters itself when it is written
    void enter(std::vector<Node*>& list, Node& n, std::uint8_t bit);
    template<class Visit> void forEachInRuns(Visit const& visit) const;
    bool isListed(Attribute const& attribute) const;
    bool isNodeListed(Attribute const& node) const;
    void listClosedRuns() const;

    mutable std::vector<Attribute*> attributes_;
    mutable std::vector<ElementRun> runs_;
    std::size_t nextRun_ = 0;  // where the run would stand that is entered next, if it is entered again
    bool isClosed_ = false;
    std::vector<Attribute*> removedAttributes_;
    std::vector<Node*> touched_, added_, removed_, renamed_, reparented_;
    mutable std::vector<Node*> nodes_;
    mutable std::vector<Attribute const*> sorted_, sortedNodes_;
    mutable std::unordered_map<int, std::vector<Node*>> byType_;
    // How much of the lists these know: a set may be asked before it is complete.
    mutable std::size_t nodesCount_ = 0, groupedCount_ = 0;
    mutable std::size_t looked_ = 0;  // entries that were walked past in search of single attributes
};

}  // namespace db
