#include "qel/db/node.h"
#include <cassert>

namespace db {
namespace {

// The elements of an array may be outputs too.
std::uint32_t outputsOf(RowInfo const& row) {
    std::uint32_t bits = row.def->outputBit < 0 ? 0 : 1u << row.def->outputBit;
    if (!row.element) return bits;
    for (RowInfo const& inner : row.element->rows) bits |= outputsOf(inner);
    return bits;
}

}  // namespace

NodeDef::NodeDef(wchar_t const* nameSpace, wchar_t const* classID, NodeDef const* base,
                 std::span<AttributeDef const> rows, std::size_t size, Construct construct) :
    namespace_(nameSpace),
    classID_(classID), base_(base), topLevel_(collectRows(rows)), layout_(topLevel_, size),
    typeID_(Registry::getInstance().add(*this)), construct_(construct) {
    std::uint32_t affectedBy[32] = {};
    for (RowInfo const& r : layout_.rows) outputs_ |= outputsOf(r);
    // A base's row may name an output that only some of its types have; in the others nothing would ever clear its bit.
    for (RowInfo& r : layout_.rows) r.affects &= outputs_;
    for (RowInfo const& r : layout_.rows)
        if (r.def->outputBit >= 0) affectedBy[r.def->outputBit] |= r.affects;
    for (int o = 0; o < 32; ++o) needs_[o] = outputs_ & 1u << o;
    for (bool more = true; more;) {  // an output that affects another is part of what that one needs
        more = false;
        for (int from = 0; from < 32; ++from)
            for (int to = 0; to < 32; ++to)
                if (affectedBy[from] >> to & 1 && (needs_[from] & ~needs_[to])) needs_[to] |= needs_[from], more = true;
    }
}

std::vector<AttributeDef const*> NodeDef::collectRows(std::span<AttributeDef const> rows) {
    std::vector<AttributeDef const*> all;
    if (base_) all = base_->topLevel_;
    int const inherited = int(all.size());
    for (AttributeDef const& def : rows) {
        if (def.number < inherited) {
            assert(all[std::size_t(def.number)]->type == def.type && "a row of the base keeps its kind");
            all[std::size_t(def.number)] = &def;
            continue;
        }
        assert(def.number >= int(all.size()) && "a row's number is taken by this type");
        while (int(all.size()) < def.number) {
            reservedNames_.push_back(L"Reserved" + std::to_wstring(all.size()));
            AttributeDef gap = row::integer(int(all.size()), reservedNames_.back().c_str());
            gap.flags = FlagReserved | FlagHidden | FlagUnsaved | FlagInternal;
            all.push_back(&reserved_.emplace_back(gap));
        }
        all.push_back(&def);
    }
    return all;
}

bool NodeDef::isOfType(NodeDef const& def) const {
    for (NodeDef const* d = this; d; d = d->base_)
        if (d == &def) return true;
    return false;
}

Registry& Registry::getInstance() {
    static Registry registry;
    return registry;
}

int Registry::add(NodeDef const& def) {
    int const id = int(byID_.size());
    byID_.push_back(&def);
    byName_.emplace(def.getNamespace() + L":" + def.getClassID(), &def);
    return id;
}

NodeDef const* Registry::getNodeDef(std::wstring const& nameSpace, std::wstring const& classID, bool) const {
    auto const it = byName_.find(nameSpace + L":" + classID);
    return it == byName_.end() ? nullptr : it->second;
}

NodeDef const* Registry::getNodeDef(int typeID) const {
    return typeID >= 0 && std::size_t(typeID) < byID_.size() ? byID_[std::size_t(typeID)] : nullptr;
}

}  // namespace db
