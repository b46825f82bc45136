#include "qel/db/layout.h"
#include "qel/db/node.h"
#include <cassert>
#include <new>

namespace db {
namespace {

// What belongs to a kind: its class, once.
template<class F> auto withClass(AttributeType type, F const& f) {
    switch (type) {
#define DB_CASE(name, class_, kind)                                                                                    \
    case AttributeType::kind: return f(static_cast<class_*>(nullptr));
// clang-format off
#define DB_ROW_KINDS(X)                                                                                                \
    X(Int, IntAttribute, Integer)                                                                                      \
    X(Bool, BoolAttribute, Boolean)                                                                                    \
    X(Enum, EnumAttribute, Enumeration)                                                                                \
    X(Float, FloatAttribute, Float)                                                                                    \
    X(Double, DoubleAttribute, Double)                                                                                 \
    X(String, StringAttribute, String)                                                                                 \
    X(Vector3, Vector3Attribute, Vector3)                                                                              \
    X(Matrix34, Matrix34Attribute, Matrix)                                                                             \
    X(Pointer, PointerAttribute, Pointer)                                                                              \
    X(Quaternion, QuaternionAttribute, Quaternion)                                                                     \
    X(IntArray, IntArrayAttribute, IntegerArray)                                                                       \
    X(BoolArray, BoolArrayAttribute, BooleanArray)                                                                     \
    X(EnumArray, EnumArrayAttribute, EnumerationArray)                                                                 \
    X(FloatArray, FloatArrayAttribute, FloatArray)                                                                     \
    X(DoubleArray, DoubleArrayAttribute, DoubleArray)                                                                  \
    X(StringArray, StringArrayAttribute, StringArray)                                                                  \
    X(Vector3Array, Vector3ArrayAttribute, Vector3Array)                                                               \
    X(Matrix34Array, Matrix34ArrayAttribute, MatrixArray)                                                              \
    X(PointerArray, PointerArrayAttribute, PointerArray)                                                               \
    X(QuaternionArray, QuaternionArrayAttribute, QuaternionArray)                                                      \
    X(NodeContainer, NodeContainer, NodeContainer)                                                                     \
    X(AttributeArray, AttributeArray, AttributeArray)
        // clang-format on
        DB_ROW_KINDS(DB_CASE)
#undef DB_ROW_KINDS
#undef DB_CASE
    default: return f(static_cast<CompoundAttribute*>(nullptr));
    }
}

template<class A> using ClassOf = std::remove_pointer_t<A>;

}  // namespace

std::size_t attributeSize(AttributeType type) {
    return withClass(type, [](auto* a) { return (sizeof(ClassOf<decltype(a)>) + 7) / 8 * 8; });
}

Attribute* constructAttribute(void* at, AttributePlace place, AttributeDef const& def) {
    return withClass(def.type, [&](auto* a) -> Attribute* { return new (at) ClassOf<decltype(a)>(place, def); });
}

Layout::Layout(std::vector<AttributeDef const*> const& topLevel, std::size_t header, std::uint32_t inheritedAffects) {
    for (AttributeDef const* def : topLevel)
        rows.push_back({def, 0, def->affectedOutputs | inheritedAffects, -1, -1, nullptr});
    topLevelCount = int(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) addChildren(int(i));  // grows while it runs: children of children
    std::uint32_t at = std::uint32_t((header + 7) / 8 * 8);
    for (bool hot : {true, false}) {
        for (RowInfo& r : rows)
            if (r.def->isHot == hot) r.offset = at, at += std::uint32_t(attributeSize(r.def->type));
        if (hot) hotEnd = at;
    }
    size = at;
    for (RowInfo const& r : rows) offsets.push_back(r.offset);
    assert(size < 4096 * 8 && rows.size() < 1024 && "more than an attribute's word can address");
    for (int i = 0; i < topLevelCount; ++i) byName_.emplace(rows[std::size_t(i)].def->name, i);
}

void Layout::addChildren(int row) {
    AttributeDef const* def = rows[std::size_t(row)].def;
    std::uint32_t const affects = rows[std::size_t(row)].affects;
    if (def->type == AttributeType::AttributeArray && !def->children.empty()) {
        rows[std::size_t(row)].element = std::make_unique<Layout const>(
            std::vector<AttributeDef const*>{&def->children[0]}, sizeof(ElementBlock), affects);
    } else if (isCompoundType(def->type)) {
        rows[std::size_t(row)].firstChild = int(rows.size());
        for (AttributeDef const& child : def->children)
            rows.push_back({&child, 0, child.affectedOutputs | affects, row, -1, nullptr});
    }
}

int Layout::find(std::wstring_view name) const {
    auto const it = byName_.find(name);
    return it == byName_.end() ? -1 : it->second;
}

void Layout::construct(char* block, bool outside) const {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        RowInfo const& r = rows[i];
        Attribute* a = constructAttribute(block + r.offset, {r.offset / 8, std::uint32_t(i), outside}, *r.def);
        if (r.affects) a->set(Attribute::feeds);
        if (r.def->outputBit >= 0) a->set(Attribute::live | Attribute::feeds);
    }
}

void Layout::destruct(char* block) const {
    for (RowInfo const& r : rows) reinterpret_cast<Attribute*>(block + r.offset)->~Attribute();
}

}  // namespace db
