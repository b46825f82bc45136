// A write to the same parts of many elements of one attribute array. What each single write does besides, telling the
// graph and listing itself for the observers, is done for runs of elements. The history keeps every part's old value,
// and the observers learn the same, as from single writes.
//
// As long as it stands no element may come or go; one beyond the end must not be asked for. Ascending elements make
// long runs, and each of any other order is a run of its own.
#pragma once
#include "qel/db/database.h"
#include <array>

namespace db {

class BulkWrite {
public:
    // `parts`: rows of the elements' layout, at most as many as there is room for, all of them below 64.
    static constexpr std::size_t mostParts = 8;
    BulkWrite(AttributeArray& array, std::initializer_list<int> parts);
    ~BulkWrite() { finishRun(); }
    BulkWrite(BulkWrite const&) = delete;
    BulkWrite& operator=(BulkWrite const&) = delete;

    // True: every one of the parts of this element is to be given its value now, by raw(). False: by setValue(), as
    // something flows into one of them, or as the array was removed and takes no writes.
    bool open(std::size_t element) {
        bool const goesOn = element == run_.to && element - told_ < mostUntold;
        if (!goesOn) [[unlikely]]
            moveOn(element);
        block_ = reinterpret_cast<char*>(blocks_[element]);
        bool isKept = !isRemoved_;
        for (std::size_t i = 0; i < partCount_; ++i) isKept &= part<Attribute>(i).isKept();
        if (!isKept && !keep()) [[unlikely]]
            return false;
        run_.to = element + 1;
        return true;
    }

    // Of the element that was opened last, in the order in which the parts were given.
    template<class A> A& part(std::size_t i) const { return *reinterpret_cast<A*>(block_ + offsets_[i]); }

private:
    static constexpr std::size_t mostUntold = 64;  // elements: the graph looks at them while they are in the cache
    void moveOn(std::size_t element);
    bool keep();
    void tell();
    void finishRun();

    Database& database_;
    std::span<ElementBlock* const> blocks_;
    char* block_ = nullptr;
    std::array<std::uint32_t, mostParts> offsets_;
    std::size_t partCount_ = 0;
    ElementRun run_;
    std::size_t told_ = 0;  // of the run up to here
    bool isRemoved_;
};

}  // namespace db
