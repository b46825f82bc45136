// Which values an array attribute holds, kept beside it so that asking is constant on average. It follows the array by
// its size and revision: what was appended is read on, after anything else the array is read anew.
#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace db {

// How often each key occurs: a flat table with linear probing, at most half of it in use, so that a question meets one
// place in memory. A key that went keeps its place until the table is made anew.
template<class Key> class KeyCounts {
public:
    bool contains(Key const& key) const { return !entries_.empty() && entries_[placeOf(key)].count > 0; }
    void add(Key const& key, std::uint32_t times = 1) {
        if (2 * (used_ + 1) > entries_.size()) grow();
        Entry& entry = entries_[placeOf(key)];
        if (!entry.isUsed) ++used_;
        entry = {key, entry.count + times, true};
    }
    void remove(Key const& key) {
        if (contains(key)) --entries_[placeOf(key)].count;
    }

private:
    struct Entry {
        Key key{};
        std::uint32_t count = 0;
        bool isUsed = false;
    };
    // Multiplied by the odd number nearest to 2^64 divided by the golden ratio, and its upper bits taken: neighbours in
    // memory, which pointers are, spread over the table (Knuth, The Art of Computer Programming 3, 6.4).
    std::size_t placeOf(Key const& key) const {
        std::uint64_t const hash = std::uint64_t(std::hash<Key>()(key)) * 0x9e3779b97f4a7c15u;
        std::size_t at = std::size_t(hash >> (64 - std::bit_width(entries_.size() - 1)));
        while (entries_[at].isUsed && !(entries_[at].key == key)) at = (at + 1) & (entries_.size() - 1);
        return at;
    }
    void grow() {
        std::size_t kept = 0;
        for (Entry const& entry : entries_) kept += entry.count > 0;
        std::vector<Entry> const old = std::exchange(entries_, std::vector<Entry>(std::bit_ceil(3 * kept + 8)));
        used_ = 0;
        for (Entry const& entry : old)
            if (entry.count > 0) add(entry.key, entry.count);
    }

    std::vector<Entry> entries_;  // a power of two, or none
    std::size_t used_ = 0;
};

// `KeyOf` gives the key of an element, the same as long as the revision stands.
template<class Key, class KeyOf> class MemberIndex {
public:
    template<class Array> bool contains(Array const& array, Key const& key) {
        follow(array);
        return counts_.contains(key);
    }

    // Takes element `at` out of the array and out of the index; without this, the next question would read it all.
    template<class Array> void removeAt(Array& array, std::size_t at) {
        follow(array);
        if (at >= read_) return;
        Key const key = KeyOf()(array.getValue()[at]);
        if (!array.removeAt(at)) return;
        counts_.remove(key);
        revision_ = array.revision();
        --read_;
    }

private:
    template<class Array> void follow(Array const& array) {
        auto const& values = array.getValue();  // may bring the array up to date, so it comes first
        if (revision_ != array.revision()) {
            counts_ = KeyCounts<Key>();
            read_ = 0;
            revision_ = array.revision();
        }
        for (; read_ < values.size(); ++read_) counts_.add(KeyOf()(values[read_]));
    }

    KeyCounts<Key> counts_;
    std::size_t read_ = 0;
    std::uint64_t revision_ = 0;
};

}  // namespace db
