// A write to the same parts of many elements of one attribute array. What each single write does besides, telling the
// graph and listing itself for the observers, is done for runs of elements. The history keeps every part's old value,
// and the observers learn the same, as from single writes.
//
// As long as it stands no element may come or go; one beyond the end must not be asked for. Ascending elements make
// long runs, and each of any other order is a run of its own.
#pragma once
#include "qel/db/database.h"
#include <array>
#include <utility>

namespace db {

// Its bookkeeping, whatever the number of parts.
class BulkWrite {
public:
    BulkWrite(BulkWrite const&) = delete;
    BulkWrite& operator=(BulkWrite const&) = delete;

protected:
    BulkWrite(AttributeArray& array, std::span<int const> parts);
    ~BulkWrite() { finish(); }

    static constexpr std::size_t mostUntold = 64;  // elements: the graph looks at them while they are in the cache
    bool goesOn(std::size_t element) const { return element == run_.to && element - told_ < mostUntold; }
    void moveOn(std::size_t element);
    bool keep(ElementBlock& element);

    std::span<ElementBlock* const> blocks_;
    ElementRun run_;
    std::size_t told_ = 0;  // of the run up to here
    bool isRemoved_;

private:
    void tell();
    void finish();

    Database& database_;
};

// The write, to so many parts of each element.
template<std::size_t count> class BulkWriteOf : BulkWrite {
public:
    // `parts`: rows of the elements' layout, below 64.
    BulkWriteOf(AttributeArray& array, int const (&parts)[count]) : BulkWrite(array, parts) {
        for (std::size_t i = 0; i < count; ++i) offsets_[i] = array.elementLayout().offsets[std::size_t(parts[i])];
    }

    // True: every one of the parts of this element is to be given its value now, by raw(). False: by setValue(), as
    // something flows into one of them, or as the array was removed and takes no writes.
    bool open(std::size_t element) {
        if (!goesOn(element)) [[unlikely]]
            moveOn(element);
        block_ = reinterpret_cast<char*>(blocks_[element]);
        if (!areKept(std::make_index_sequence<count>()) && !keep(*blocks_[element])) [[unlikely]]
            return false;
        run_.to = element + 1;
        return true;
    }

    // Of the element that was opened last, in the order in which the parts were given.
    template<class A> A& part(std::size_t i) const { return *reinterpret_cast<A*>(block_ + offsets_[i]); }

private:
    template<std::size_t... i> bool areKept(std::index_sequence<i...>) const {
        return !isRemoved_ && (unsigned(part<Attribute>(i).isKept()) & ...) != 0;
    }

    char* block_ = nullptr;
    std::array<std::uint32_t, count> offsets_;
};

}  // namespace db
