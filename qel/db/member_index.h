// Which values an array attribute holds, kept beside it so that asking is constant on average. It follows the array by
// its size and revision: what was appended is read on, after anything else the array is read anew.
#pragma once
#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace db {

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
        Key const key = KeyOf()(array.getValue()[at]);
        if (!array.removeAt(at)) return;
        if (auto const found = counts_.find(key); --found->second == 0) counts_.erase(found);
        revision_ = array.revision();
        --read_;
    }

private:
    using Counts = std::unordered_map<Key, std::size_t>;

    template<class Array> void follow(Array const& array) {
        auto const& values = array.getValue();  // may bring the array up to date, so it comes first
        if (revision_ != array.revision()) {
            counts_ = Counts();  // not cleared: that would cost the most it ever held
            read_ = 0;
            revision_ = array.revision();
        }
        for (; read_ < values.size(); ++read_) ++counts_[KeyOf()(values[read_])];
    }

    Counts counts_;
    std::size_t read_ = 0;
    std::uint64_t revision_ = 0;
};

}  // namespace db
