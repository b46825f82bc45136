// Children by name, for a whole database: one open table of {hash of parent and name, id}, gaps closed on removal, so
// that like-named children and deep trees cost no walk. And the smallest free number of a stem ("joint" -> "joint3")
// without trying them in turn.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace db {

class NameTable {
public:
    static std::uint32_t hash(int parentID, std::wstring_view name);

    void insert(std::uint32_t hash, int id);
    void erase(std::uint32_t hash, int id);
    // The smallest id under that hash for which same(id) holds; -1 for none. The smallest, so that the answer does not
    // depend on the order of insertion where a name stands twice.
    template<class F> int find(std::uint32_t hash, F const& same) const {
        int best = -1;
        if (entries_.empty()) return best;
        for (std::size_t i = hash & mask(); entries_[i].id >= 0; i = (i + 1) & mask())
            if (entries_[i].hash == hash && (best < 0 || entries_[i].id < best) && same(entries_[i].id))
                best = entries_[i].id;
        return best;
    }

private:
    struct Entry {
        std::uint32_t hash = 0;
        int id = -1;
    };
    std::size_t mask() const { return entries_.size() - 1; }
    void place(Entry e);
    void grow();

    std::vector<Entry> entries_;
    std::size_t count_ = 0;
};

// For each (parent, stem) that clashed once: every number below `next` that is not in `freed` was taken. A number that
// is handed out is checked against the table, so names given by hand need no bookkeeping.
class StemNumbers {
public:
    // The smallest number from 1 up for which taken(number) is false.
    template<class F> int take(int parentID, std::wstring const& stem, F const& taken) {
        Stem& s = stems_[{parentID, stem}];
        for (;;) {
            int const number = s.first();
            if (!taken(number)) return number;  // stays the first until someone bears it
            s.pop();
        }
    }
    // A name went away: "joint12" frees the 12th of "joint" and the 2nd of "joint1".
    void release(int parentID, std::wstring_view name);

private:
    struct Key {
        int parent;
        std::wstring stem;
        bool operator==(Key const&) const = default;
    };
    struct Hash {
        std::size_t operator()(Key const& k) const {
            return std::hash<std::wstring>()(k.stem) * 31 + std::size_t(k.parent);
        }
    };
    struct Stem {
        int next = 1;
        std::vector<int> freed;  // a heap, the smallest first
        int first() const { return freed.empty() ? next : freed.front(); }
        void pop();
        void push(int number);
    };
    std::unordered_map<Key, Stem, Hash> stems_;
};

}  // namespace db
