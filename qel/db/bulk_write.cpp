#include "qel/db/bulk_write.h"

namespace db {

BulkWrite::BulkWrite(AttributeArray& array, std::span<int const> parts) :
    blocks_(array.blocks()), run_{&array, 0, 0, 0}, isRemoved_(array.isRemoved()), database_(*array.getDatabase()) {
    for (int row : parts) run_.rows |= std::uint64_t(1) << row;
}

// What the history does not have yet is put there; nothing where one of the parts takes its value from elsewhere.
bool BulkWrite::keep(ElementBlock& element) {
    if (isRemoved_) return false;
    auto const forEachPart = [&](auto const& visit) {
        for (std::uint64_t rows = run_.rows; rows; rows &= rows - 1) visit(element.part(int(__builtin_ctzll(rows))));
    };
    bool isPlain = true;
    forEachPart([&](Attribute const& a) { isPlain &= !a.has(Attribute::live); });
    if (!isPlain) return false;
    forEachPart([&](Attribute& a) {
        if (!a.has(Attribute::recorded)) database_.journal_.push_back({&a, a.remember()});
        a.set(Attribute::recorded);
    });
    return true;
}

void BulkWrite::moveOn(std::size_t element) {
    if (element == run_.to) return tell();
    finish();
    run_.from = run_.to = told_ = element;
}

void BulkWrite::tell() {
    if (told_ == run_.to) return;
    run_.array->node().elementsChanged({run_.array, run_.rows, std::exchange(told_, run_.to), run_.to});
}

void BulkWrite::finish() {
    tell();
    if (run_.from < run_.to) database_.changes().addRun(run_);
}

}  // namespace db
