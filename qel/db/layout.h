// The layout of a block: which attributes lie in it and where. Made once per node type and once per element of an
// attribute array, from the rows of their tables.
#pragma once
#include "qel/db/attribute.h"
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace db {

// A row in its place. Top-level rows come first, so that the number of an attribute is its row; the children of
// compounds follow.
struct RowInfo {
    AttributeDef const* def;
    std::uint32_t offset = 0;               // bytes from the start of the block
    std::uint32_t affects = 0;              // outputs of the node, those of the enclosing compound included
    int parent = -1;                        // row of the enclosing compound; -1 at the top
    int firstChild = -1;                    // row of a compound's first child; they stand in a run
    std::unique_ptr<Layout const> element;  // of an attribute array: the layout of one element
};

class Layout {
public:
    // `header`: bytes in front of the first attribute. Of an element, row 0 is the element itself.
    Layout(std::vector<AttributeDef const*> const& topLevel, std::size_t header, std::uint32_t inheritedAffects = 0);

    std::vector<RowInfo> rows;
    std::vector<std::uint32_t> offsets;  // of the rows, once more and dense: for the evaluation
    int topLevelCount = 0;
    std::uint32_t size = 0;    // of the block, in bytes
    std::uint32_t hotEnd = 0;  // the hot attributes end here

    int find(std::wstring_view name) const;  // row of a top-level attribute; -1
    void construct(char* block, bool outside) const;
    void destruct(char* block) const;

private:
    void addChildren(int row);
    std::unordered_map<std::wstring_view, int> byName_;
};

std::size_t attributeSize(AttributeType type);
Attribute* constructAttribute(void* at, AttributePlace place, AttributeDef const& def);

}  // namespace db
