#include "qel/db/bulk_write.h"
#include <cassert>
#include <utility>

namespace db {

BulkWrite::BulkWrite(AttributeArray& array, std::initializer_list<int> parts) :
    database_(*array.getDatabase()), blocks_(array.blocks()), run_{&array, 0, 0, 0}, isRemoved_(array.isRemoved()) {
    assert(parts.size() <= mostParts && "more parts than a bulk write takes");
    for (int row : parts) {
        offsets_[partCount_++] = array.elementLayout().offsets[std::size_t(row)];
        run_.rows |= std::uint64_t(1) << row;
    }
}

// What the history does not have yet is put there; nothing where one of the parts takes its value from elsewhere.
bool BulkWrite::keep() {
    if (isRemoved_) return false;
    for (std::size_t i = 0; i < partCount_; ++i)
        if (part<Attribute>(i).has(Attribute::live)) return false;
    for (std::size_t i = 0; i < partCount_; ++i) {
        Attribute& a = part<Attribute>(i);
        if (a.has(Attribute::recorded)) continue;
        database_.journal_.push_back({&a, a.remember()});
        a.set(Attribute::recorded);
    }
    return true;
}

void BulkWrite::moveOn(std::size_t element) {
    if (element == run_.to) return tell();
    finishRun();
    run_.from = run_.to = told_ = element;
}

void BulkWrite::tell() {
    if (told_ == run_.to) return;
    run_.array->node().elementsChanged({run_.array, run_.rows, std::exchange(told_, run_.to), run_.to});
}

void BulkWrite::finishRun() {
    tell();
    if (run_.from < run_.to) database_.changes().addRun(run_);
}

}  // namespace db
