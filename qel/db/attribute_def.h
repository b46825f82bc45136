// What every instance of an attribute shares: its row in the table of its type. From the rows of a type follow its
// memory layout, defaults, persistence, names, units and what a write makes out of date. Rows are literals, written
// with the functions at the end of this file, checked when they are compiled, and never copied.
#pragma once
#include "qel/utils/values.h"
#include <cstdint>
#include <span>
#include <string_view>

namespace db {

// The numbers are the system's vocabulary of value kinds and stand in files and interfaces.
enum class AttributeType : std::uint8_t {
    None = 0,
    Integer = 1,
    Boolean,
    Enumeration,
    Float,
    Double,
    String,
    Vector3,
    Matrix,
    Pointer,
    IntegerArray,
    BooleanArray,
    EnumerationArray,
    FloatArray,
    DoubleArray,
    StringArray,
    Vector3Array,
    MatrixArray,
    PointerArray,
    NodeContainer,
    AttributeArray,
    Compound,
    Node,
    EmbeddedNode,
    Quaternion,
    QuaternionArray,
};

constexpr bool isArrayType(AttributeType t) {
    return (t >= AttributeType::IntegerArray && t <= AttributeType::PointerArray) ||
           t == AttributeType::QuaternionArray;
}
constexpr bool isCompoundType(AttributeType t) {
    return t == AttributeType::Compound || t == AttributeType::EmbeddedNode;
}

enum AttributeFlag : unsigned {
    FlagReadOnly = 16,    // the interface does not offer to edit it; writes by code go through
    FlagHidden = 32,      // not shown
    FlagAnimatable = 64,  // may carry a curve
    FlagUnsaved = 256,    // not written to files
    FlagInternal = 512,   // not shown and not animated
    FlagReserved = 1024,  // fills a gap in the numbering; implies hidden and unsaved
};

class AttributeDef {
public:
    int number = 0;  // index in the node, the compound or the element
    wchar_t const* name = L"";
    AttributeType type = AttributeType::None;
    int units = 0;  // sg::AttributeUnit
    unsigned flags = 0;
    double initial[4] = {0, 0, 0, 0};  // of a number, a vector, a quaternion; and of a new element of an array
    wchar_t const* initialText = L"";
    Qelp::Matrix34 const* initialMatrix = nullptr;  // of a matrix; null: the identity
    double minimum = -1e308, maximum = 1e308;
    std::span<wchar_t const* const> strings;  // the words of an enumeration
    std::span<AttributeDef const> children;   // of a compound; of an attribute array: one row, its element
    std::uint32_t affectedOutputs = 0;        // a bit per output of the node that must be computed again
    int outputBit = -1;                       // this attribute is that output
    bool isHot = false;                       // lies beside the evaluation state of its node
    wchar_t const* documentation = L"";

    int getUnits() const { return units; }
    bool hasFlag(int flag) const { return (flags & unsigned(flag)) != 0; }
    std::span<wchar_t const* const> getStrings() const { return strings; }
    wchar_t const* getString(int value) const {
        return value >= 0 && std::size_t(value) < strings.size() ? strings[std::size_t(value)] : L"";
    }
    bool isSaved() const { return outputBit < 0 && !(flags & (FlagUnsaved | FlagReserved)); }

    // How a row is completed. Each gives a changed copy, so that rows read as one line.
    constexpr AttributeDef unit(int u) const {
        AttributeDef d = *this;
        d.units = u;
        return d;
    }
    constexpr AttributeDef with(unsigned f) const {
        AttributeDef d = *this;
        d.flags |= f;
        return d;
    }
    constexpr AttributeDef affects(std::uint32_t bits) const {
        AttributeDef d = *this;
        d.affectedOutputs = bits;
        return d;
    }
    constexpr AttributeDef output(int bit) const {
        AttributeDef d = *this;
        d.outputBit = bit;
        d.flags |= FlagReadOnly;
        return d;
    }
    constexpr AttributeDef hot() const {
        AttributeDef d = *this;
        d.isHot = true;
        return d;
    }
    constexpr AttributeDef range(double low, double high) const {
        AttributeDef d = *this;
        d.minimum = low;
        d.maximum = high;
        return d;
    }
    constexpr AttributeDef doc(wchar_t const* text) const {
        AttributeDef d = *this;
        d.documentation = text;
        return d;
    }
};

// ---- the rows ----
namespace row {

constexpr AttributeDef value(int number, wchar_t const* name, AttributeType type, double initial = 0) {
    AttributeDef d;
    d.number = number;
    d.name = name;
    d.type = type;
    d.initial[0] = initial;
    return d;
}
constexpr AttributeDef integer(int n, wchar_t const* name, int initial = 0) {
    return value(n, name, AttributeType::Integer, initial);
}
constexpr AttributeDef boolean(int n, wchar_t const* name, bool initial = false) {
    return value(n, name, AttributeType::Boolean, initial);
}
constexpr AttributeDef real(int n, wchar_t const* name, double initial = 0) {
    return value(n, name, AttributeType::Float, initial);
}
constexpr AttributeDef doublePrecision(int n, wchar_t const* name, double initial = 0) {
    return value(n, name, AttributeType::Double, initial);
}
constexpr AttributeDef vector(int n, wchar_t const* name) { return value(n, name, AttributeType::Vector3); }
constexpr AttributeDef matrix(int n, wchar_t const* name) { return value(n, name, AttributeType::Matrix); }
constexpr AttributeDef pointer(int n, wchar_t const* name) { return value(n, name, AttributeType::Pointer); }
constexpr AttributeDef quaternion(int n, wchar_t const* name) {
    AttributeDef d = value(n, name, AttributeType::Quaternion);
    d.initial[3] = 1;
    return d;
}
constexpr AttributeDef text(int n, wchar_t const* name, wchar_t const* initial = L"") {
    AttributeDef d = value(n, name, AttributeType::String);
    d.initialText = initial;
    return d;
}
constexpr AttributeDef enumeration(int n, wchar_t const* name, std::span<wchar_t const* const> strings,
                                   int initial = 0) {
    AttributeDef d = value(n, name, AttributeType::Enumeration, initial);
    d.strings = strings;
    return d;
}
// An array of one of the plain kinds; `initial` is the value of a new element.
constexpr AttributeDef array(int n, wchar_t const* name, AttributeType type, double initial = 0) {
    AttributeDef d = value(n, name, type, initial);
    if (type == AttributeType::QuaternionArray) d.initial[3] = 1;
    return d;
}
constexpr AttributeDef enumerationArray(int n, wchar_t const* name, std::span<wchar_t const* const> strings,
                                        int initial = 0) {
    AttributeDef d = value(n, name, AttributeType::EnumerationArray, initial);
    d.strings = strings;
    return d;
}
// `children` must live as long as the program: a constexpr array.
constexpr AttributeDef compound(int n, wchar_t const* name, std::span<AttributeDef const> children) {
    AttributeDef d = value(n, name, AttributeType::Compound);
    d.children = children;
    return d;
}
// An array whose elements are attributes; `element` is an array of exactly one row.
constexpr AttributeDef attributeArray(int n, wchar_t const* name, std::span<AttributeDef const> element) {
    AttributeDef d = value(n, name, AttributeType::AttributeArray);
    d.children = element;
    return d;
}
constexpr AttributeDef nodeContainer(int n, wchar_t const* name) {
    return value(n, name, AttributeType::NodeContainer);
}

// True when the numbers of a table rise from `first` on and no name stands twice, children included. Gaps are allowed
// at the top level, where reserved attributes fill them, and nowhere else.
constexpr bool isSound(std::span<AttributeDef const> rows, int first, bool gaps = true) {
    int least = first;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (gaps ? rows[i].number < least : rows[i].number != least) return false;
        least = rows[i].number + 1;
        if (rows[i].name[0] == 0) return false;
        for (std::size_t j = 0; j < i; ++j)
            if (std::wstring_view(rows[i].name) == rows[j].name) return false;
        if (rows[i].type == AttributeType::AttributeArray && rows[i].children.size() != 1) return false;
        if (!rows[i].children.empty() && !isSound(rows[i].children, 0, false)) return false;
    }
    return true;
}

}  // namespace row
}  // namespace db
