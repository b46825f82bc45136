// Values of every kind as plain numbers and texts, so that one test can write, read and compare them all.
#pragma once
#include "qel/db/database.h"
#include <ostream>
#include <random>

namespace db::test {

struct AnyValue {
    std::vector<double> numbers;
    std::vector<std::wstring> texts;
    bool operator==(AnyValue const&) const = default;
};
inline void PrintTo(AnyValue const& v, std::ostream* out) {
    for (double n : v.numbers) *out << n << ' ';
    for (auto const& t : v.texts) *out << '"' << std::string(t.begin(), t.end()) << "\" ";
}

// ---- one value of a C++ type to plain numbers and back ----

inline void append(AnyValue& v, int x) { v.numbers.push_back(x); }
inline void append(AnyValue& v, bool x) { v.numbers.push_back(x); }
inline void append(AnyValue& v, std::uint8_t x) { v.numbers.push_back(x); }
inline void append(AnyValue& v, float x) { v.numbers.push_back(x); }
inline void append(AnyValue& v, double x) { v.numbers.push_back(x); }
inline void append(AnyValue& v, std::wstring const& x) { v.texts.push_back(x); }
inline void append(AnyValue& v, Qelp::Vector3 const& x) { v.numbers.insert(v.numbers.end(), {x.x, x.y, x.z}); }
inline void append(AnyValue& v, Qelp::Quat const& x) { v.numbers.insert(v.numbers.end(), {x.x, x.y, x.z, x.w}); }
inline void append(AnyValue& v, Qelp::Matrix34 const& x) {
    for (auto const& r : x.m) v.numbers.insert(v.numbers.end(), {r[0], r[1], r[2]});
}
inline void append(AnyValue& v, AttributeHandle const& x) {
    v.numbers.push_back(x.getRef() ? x.getRef()->getID() : -1);
}

template<class T> constexpr std::size_t width = 1;
template<> inline constexpr std::size_t width<Qelp::Vector3> = 3;
template<> inline constexpr std::size_t width<Qelp::Quat> = 4;
template<> inline constexpr std::size_t width<Qelp::Matrix34> = 12;

// The i-th value of that type.
template<class T> T valueAt(AnyValue const& v, std::size_t i, Database const& d) {
    double const* n = v.numbers.data() + i * width<T>;
    if constexpr (std::is_same_v<T, std::wstring>)
        return v.texts[i];
    else if constexpr (std::is_same_v<T, Qelp::Vector3>)
        return {float(n[0]), float(n[1]), float(n[2]), 0};
    else if constexpr (std::is_same_v<T, Qelp::Quat>)
        return {float(n[0]), float(n[1]), float(n[2]), float(n[3])};
    else if constexpr (std::is_same_v<T, Qelp::Matrix34>) {
        Qelp::Matrix34 m;
        for (std::size_t k = 0; k < 12; ++k) m.m[k / 3][k % 3] = float(n[k]);
        return m;
    } else if constexpr (std::is_same_v<T, AttributeHandle>)
        return AttributeHandle(d.lookupAttribute(int(*n)));
    else
        return T(*n);
}

// ---- attributes ----

// Calls f with the attribute as what it is; for the kinds with values alone.
template<class F> auto visit(Attribute& a, F const& f) {
    switch (a.getAttributeType()) {
    case AttributeType::Boolean: return f(*a.asBool());
    case AttributeType::Enumeration: return f(*a.asEnum());
    case AttributeType::Float: return f(*a.asFloat());
    case AttributeType::Double: return f(*a.asDouble());
    case AttributeType::String: return f(*a.asString());
    case AttributeType::Vector3: return f(*a.asVector3());
    case AttributeType::Matrix: return f(*a.asMatrix34());
    case AttributeType::Pointer: return f(*a.asPointer());
    case AttributeType::Quaternion: return f(*a.asQuaternion());
    case AttributeType::IntegerArray: return f(*a.asIntArray());
    case AttributeType::BooleanArray: return f(*a.asBoolArray());
    case AttributeType::EnumerationArray: return f(*a.asEnumArray());
    case AttributeType::FloatArray: return f(*a.asFloatArray());
    case AttributeType::DoubleArray: return f(*a.asDoubleArray());
    case AttributeType::StringArray: return f(*a.asStringArray());
    case AttributeType::Vector3Array: return f(*a.asVector3Array());
    case AttributeType::MatrixArray: return f(*a.asMatrix34Array());
    case AttributeType::PointerArray: return f(*a.asPointerArray());
    case AttributeType::QuaternionArray: return f(*a.asQuaternionArray());
    case AttributeType::NodeContainer: return f(*a.asNodeContainer());
    default: return f(*a.asInt());
    }
}

// What stands in an array, or is the value itself.
template<class A> using StoredType = std::decay_t<decltype(std::declval<A&>().raw())>;
template<class A> constexpr bool isArrayClass = std::is_base_of_v<ArrayAttribute, A>;
template<class S> struct ElementOf { using Type = S; };
template<class T> struct ElementOf<std::vector<T>> { using Type = T; };
template<class A> using ValueType = typename ElementOf<StoredType<A>>::Type;

// Arrays of references say what they store through the class that they derive from.
template<class A>
using PlainBase =
    PlainArrayAttribute<ValueType<A>, std::is_same_v<A, PointerArrayAttribute> ? AttributeType::PointerArray
                                                                               : AttributeType::NodeContainer>;
template<class A> auto& plain(A& a) {
    if constexpr (std::is_same_v<A, PointerArrayAttribute> || std::is_same_v<A, NodeContainer>)
        return static_cast<PlainBase<A>&>(a);
    else if constexpr (std::is_same_v<A, PointerAttribute>)
        return static_cast<ValueAttribute<AttributeHandle, AttributeType::Pointer>&>(a);
    else
        return a;
}

inline AnyValue read(Attribute& attribute) {
    return visit(attribute, [](auto& a) {
        AnyValue v;
        if constexpr (isArrayClass<std::decay_t<decltype(a)>>)
            for (auto const& x : a.getValue()) append(v, x);
        else
            append(v, plain(a).getValue());
        return v;
    });
}

inline std::size_t widthOf(Attribute& attribute) {
    return visit(attribute, [](auto& a) { return width<ValueType<std::decay_t<decltype(a)>>>; });
}
inline bool hasTexts(Attribute& a) {
    return a.getAttributeType() == AttributeType::String || a.getAttributeType() == AttributeType::StringArray;
}
// A container of nodes is an array to its holder, though not by its kind.
inline bool isSeveral(Attribute& a) { return a.isArray() || a.isNodeContainer(); }
inline bool hasReferences(Attribute& a) { return a.isPointer() || a.isPointerArray() || a.isNodeContainer(); }

inline void write(Attribute& attribute, AnyValue const& v) {
    visit(attribute, [&](auto& a) {
        using T = ValueType<std::decay_t<decltype(a)>>;
        Database const& d = *a.getDatabase();
        if constexpr (isArrayClass<std::decay_t<decltype(a)>>) {
            std::vector<T> values;
            std::size_t const count = v.texts.empty() ? v.numbers.size() / width<T> : v.texts.size();
            for (std::size_t i = 0; i < count; ++i) values.push_back(valueAt<T>(v, i, d));
            a.setValue(std::move(values));
        } else
            plain(a).setValue(valueAt<T>(v, 0, d));
    });
}

inline bool setElement(Attribute& attribute, AnyValue const& v, std::size_t at) {
    return visit(attribute, [&](auto& a) {
        using A = std::decay_t<decltype(a)>;
        if constexpr (isArrayClass<A>)
            return plain(a).setElement(valueAt<ValueType<A>>(v, 0, *a.getDatabase()), at);
        else
            return false;
    });
}

inline bool insertElement(Attribute& attribute, AnyValue const& v, std::size_t at) {
    return visit(attribute, [&](auto& a) {
        using A = std::decay_t<decltype(a)>;
        if constexpr (isArrayClass<A>)
            return plain(a).insert(valueAt<ValueType<A>>(v, 0, *a.getDatabase()), at);
        else
            return false;
    });
}

// One value of the attribute's kind, or of one of its elements. References must be chosen by the caller.
inline AnyValue randomValue(Attribute& a, std::mt19937& random) {
    AnyValue v;
    if (hasTexts(a)) {
        v.texts.push_back(std::wstring(random() % 12, wchar_t(L'a' + random() % 26)));
        return v;
    }
    bool const isBool = a.isBool() || a.isBoolArray();
    for (std::size_t k = 0; k < widthOf(a); ++k) v.numbers.push_back(isBool ? random() % 2 : random() % 1000);
    return v;
}

// The value of a new element, or of a new attribute.
inline AnyValue defaultOf(Attribute& attribute) {
    return visit(attribute, [](auto& a) {
        AnyValue v;
        append(v, initialValue<ValueType<std::decay_t<decltype(a)>>>(a.getDef()));
        return v;
    });
}

}  // namespace db::test
