// The parts of one element of an attribute array, read where it lies. The element is row 0 of its block; its parts
// follow. For nodes that compute.
#pragma once
#include "qel/db/node.h"

namespace sg {

class ElementParts {
public:
    explicit ElementParts(db::Attribute const& element) :
        block_(reinterpret_cast<char const*>(&element.block())), layout_(*element.block().layout) {}
    template<class A> auto const& read(int row) const {
        return reinterpret_cast<A const*>(block_ + layout_.offsets[std::size_t(row)])->raw();
    }
    int firstChildOf(int row) const { return layout_.rows[std::size_t(row)].firstChild; }

private:
    char const* block_;
    db::Layout const& layout_;
};

}  // namespace sg
