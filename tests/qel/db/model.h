// A database as plain maps and vectors, with a whole copy of its state for every step of the history. Slow, and simple
// enough to be right. A node's model is shared between the copies until it is edited.
#pragma once
#include "tests/qel/db/any_value.h"
#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <set>

namespace db::test {

struct NodeModel {
    std::wstring name;
    std::vector<int> parents, children;               // none: at the top
    std::vector<int> elements;                        // of its attribute array, by id
    std::vector<std::pair<int, std::wstring>> added;  // dynamic attributes
    std::map<int, AnyValue> values;                   // by attribute
};

class State {
public:
    bool has(int id) const { return nodes_.count(id) > 0; }
    NodeModel const& at(int id) const { return *nodes_.at(id); }
    NodeModel& edit(int id) {
        auto& n = nodes_.at(id);
        if (n.use_count() > 1) n = std::make_shared<NodeModel>(*n);
        return *n;
    }
    auto const& nodes() const { return nodes_; }
    std::vector<int> const& top() const { return top_; }
    std::vector<int> const& childrenOf(int parent) const { return parent < 0 ? top_ : at(parent).children; }
    bool sameAs(State const& o, int id) const { return nodes_.at(id) == o.nodes_.at(id); }

    void create(int id, NodeModel n) {
        n.name = uniqueName(-1, n.name, -1);
        nodes_[id] = std::make_shared<NodeModel>(std::move(n));
        top_.push_back(id);
    }
    // From the leaves up; a child with another parent only loses this one.
    void remove(int id) {
        while (!at(id).children.empty()) {
            int const child = at(id).children.back();
            if (at(child).parents.size() > 1)
                removeChild(id, child);
            else
                remove(child);
        }
        for (int p : parentsOf(id)) drop(p, id);
        nodes_.erase(id);
    }
    bool rename(int id, std::wstring const& wanted) {
        if (wanted == at(id).name) return false;
        std::wstring const name = uniqueName(parentsOf(id)[0], wanted, id);
        if (name == at(id).name) return false;
        edit(id).name = name;
        return true;
    }
    bool addChild(int parent, int child) {
        auto const& parents = at(child).parents;
        if (isAbove(child, parent) || std::count(parents.begin(), parents.end(), parent)) return false;
        if (parents.empty())
            move(child, -1, parent);
        else {
            edit(child).parents.push_back(parent);
            edit(parent).children.push_back(child);
        }
        return true;
    }
    bool removeChild(int parent, int child) {
        auto const& parents = at(child).parents;
        if (!std::count(parents.begin(), parents.end(), parent)) return false;
        if (parents.size() == 1) {
            move(child, parent, -1);
            return true;
        }
        drop(parent, child);
        auto& left = edit(child).parents;
        bool const wasPrimary = left[0] == parent;
        left.erase(std::find(left.begin(), left.end(), parent));
        if (wasPrimary) edit(child).name = uniqueName(left[0], at(child).name, child);
        return true;
    }
    // Nodes and what lies in them.
    bool isAlive(int id) const {
        if (has(id)) return true;
        for (auto const& [_, n] : nodes_)
            if (n->values.count(id) || std::count(n->elements.begin(), n->elements.end(), id)) return true;
        return false;
    }

private:
    std::vector<int> parentsOf(int id) const { return at(id).parents.empty() ? std::vector<int>{-1} : at(id).parents; }
    std::vector<int>& childrenToEdit(int parent) { return parent < 0 ? top_ : edit(parent).children; }
    void drop(int parent, int child) {
        auto& c = childrenToEdit(parent);
        c.erase(std::find(c.begin(), c.end(), child));
    }
    void move(int child, int from, int to) {
        drop(from, child);
        std::wstring const name = uniqueName(to, at(child).name, child);
        NodeModel& n = edit(child);
        n.name = name;
        n.parents = to < 0 ? std::vector<int>{} : std::vector<int>{to};
        childrenToEdit(to).push_back(child);
    }
    std::wstring uniqueName(int parent, std::wstring const& wanted, int except) const {
        std::set<std::wstring> taken;
        for (int c : childrenOf(parent))
            if (c != except) taken.insert(at(c).name);
        if (!taken.count(wanted)) return wanted;
        for (int k = 1;; ++k)
            if (!taken.count(wanted + std::to_wstring(k))) return wanted + std::to_wstring(k);
    }
    bool isAbove(int above, int id) const {  // or the same
        if (above == id) return true;
        for (int p : at(id).parents)
            if (isAbove(above, p)) return true;
        return false;
    }

    std::map<int, std::shared_ptr<NodeModel>> nodes_;
    std::vector<int> top_;
};

// The state of now with its history and the open blocks.
class Model {
public:
    State now;
    void edited() { isPending_ = true; }

    void begin(ChangeMode mode) {
        if (depth_++ > 0) return;
        mode_ = mode;
        atBegin_ = now;
        pendingAtBegin_ = isPending_;
    }
    void end() {
        if (depth_ == 0 || --depth_ > 0) return;
        if (mode_ == ChangeMode::Recorded) commit();
    }
    void cancel() {
        if (depth_ == 0) return;
        depth_ = 0;
        now = mode_ == ChangeMode::Recorded ? atBegin_ : states_[done_];
        isPending_ = mode_ == ChangeMode::Recorded && pendingAtBegin_;
    }
    void commitTransient() {
        if (depth_ == 0) commit();
    }
    bool undo() {
        if (depth_ > 0) return false;
        commit();
        if (done_ == 0) return false;
        now = states_[--done_];
        return true;
    }
    bool redo() {
        if (depth_ > 0) return false;
        commit();
        if (done_ + 1 == states_.size()) return false;
        now = states_[++done_];
        return true;
    }
    void clearHistory() {
        commitTransient();
        states_ = {states_[done_]};
        done_ = 0;
    }
    void setMost(std::size_t most) {
        most_ = most;
        trim();
    }
    int depth() const { return depth_; }
    std::size_t undoCount() const { return done_; }
    std::size_t redoCount() const { return states_.size() - done_ - 1; }

private:
    void commit() {
        if (!isPending_) return;
        isPending_ = false;
        states_.resize(done_ + 1);
        states_.push_back(now);
        ++done_;
        trim();
    }
    void trim() {
        while (states_.size() > most_ + 1) {
            if (done_ > 0)
                states_.pop_front(), --done_;
            else
                states_.pop_back();
        }
    }

    std::deque<State> states_{State()};  // what each step led to; the first is the oldest that can be reached
    std::size_t done_ = 0, most_ = 100000;
    State atBegin_;
    ChangeMode mode_ = ChangeMode::Recorded;
    int depth_ = 0;
    bool isPending_ = false, pendingAtBegin_ = false;
};

}  // namespace db::test
