#include "qel/db/name_index.h"
#include <algorithm>
#include <functional>

namespace db {

std::uint32_t NameTable::hash(int parentID, std::wstring_view name) {
    std::uint64_t h = 0x9E3779B97F4A7C15ull * (std::uint64_t(std::uint32_t(parentID)) + 1);
    for (wchar_t c : name) {
        h = (h ^ std::uint64_t(c)) * 0x100000001B3ull;
        h ^= h >> 29;
    }
    return std::uint32_t(h ^ h >> 32);
}

void NameTable::insert(std::uint32_t hash, int id) {
    if ((count_ + 1) * 4 > entries_.size() * 3) grow();
    place({hash, id});
    ++count_;
}

void NameTable::erase(std::uint32_t hash, int id) {
    if (entries_.empty()) return;
    std::size_t i = hash & mask();
    for (; entries_[i].id != id || entries_[i].hash != hash; i = (i + 1) & mask())
        if (entries_[i].id < 0) return;
    for (std::size_t j = i;;) {  // close the gap, so that no tombstones gather
        j = (j + 1) & mask();
        if (entries_[j].id < 0) break;
        std::size_t const home = entries_[j].hash & mask();
        if (((j - home) & mask()) >= ((j - i) & mask())) {
            entries_[i] = entries_[j];
            i = j;
        }
    }
    entries_[i] = {};
    --count_;
}

void NameTable::place(Entry e) {
    std::size_t i = e.hash & mask();
    while (entries_[i].id >= 0) i = (i + 1) & mask();
    entries_[i] = e;
}

void NameTable::grow() {
    auto old = std::move(entries_);
    entries_.assign(std::max<std::size_t>(64, old.size() * 2), {});
    for (Entry const& e : old)
        if (e.id >= 0) place(e);
}

void StemNumbers::Stem::pop() {
    if (freed.empty()) {
        ++next;
        return;
    }
    std::pop_heap(freed.begin(), freed.end(), std::greater<>());
    freed.pop_back();
}

void StemNumbers::Stem::push(int number) {
    if (number >= next) return;
    if (freed.size() > 2 * std::size_t(next)) {  // freed again and again, by undo and redo
        std::sort(freed.begin(), freed.end());
        freed.erase(std::unique(freed.begin(), freed.end()), freed.end());
    }
    freed.push_back(number);
    std::push_heap(freed.begin(), freed.end(), std::greater<>());
}

void StemNumbers::release(int parentID, std::wstring_view name) {
    if (stems_.empty()) return;
    int number = 0, scale = 1;
    for (std::size_t at = name.size();
         at > 0 && name[at - 1] >= L'0' && name[at - 1] <= L'9' && scale <= 100'000'000;) {
        number += scale * (name[--at] - L'0');
        scale *= 10;
        if (name[at] == L'0') continue;  // numbers are written without a leading 0
        auto it = stems_.find({parentID, std::wstring(name.substr(0, at))});
        if (it != stems_.end()) it->second.push(number);
    }
}

}  // namespace db
