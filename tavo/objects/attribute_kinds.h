// The value kinds of attributes: what XAttribute calls a value, and the two classes of the database that hold it, alone
// or in an array. All that the kinds have in common stands here once; for the files of this folder, and for what
// carries values of any kind elsewhere.
#pragma once
#include "tavo/objects/attribute.h"

namespace Tavo {

template<class Value_, class Single_, class Array_> struct XValueKind {
    using Value = Value_;
    using Single = Single_;
    using Array = Array_;
};
using XFloatKind = XValueKind<float, db::FloatAttribute, db::FloatArrayAttribute>;
using XDoubleKind = XValueKind<double, db::DoubleAttribute, db::DoubleArrayAttribute>;
using XIntegerKind = XValueKind<int, db::IntAttribute, db::IntArrayAttribute>;
using XEnumerationKind = XValueKind<int, db::EnumAttribute, db::EnumArrayAttribute>;
using XBooleanKind = XValueKind<bool, db::BoolAttribute, db::BoolArrayAttribute>;
using XStringKind = XValueKind<std::wstring, db::StringAttribute, db::StringArrayAttribute>;
using XVectorKind = XValueKind<XVector3, db::Vector3Attribute, db::Vector3ArrayAttribute>;
using XMatrixKind = XValueKind<XMatrix, db::Matrix34Attribute, db::Matrix34ArrayAttribute>;
using XQuaternionKind = XValueKind<XQuaternion, db::QuaternionAttribute, db::QuaternionArrayAttribute>;
using XReferenceKind = XValueKind<db::Attribute*, db::PointerAttribute, db::PointerArrayAttribute>;

// A value as the database keeps it.
template<class Value> Value const& stored(Value const& value) { return value; }
inline Qelp::Vector3 const& stored(XVector3 const& value) { return value.AsVector(); }
inline Qelp::Matrix34 const& stored(XMatrix const& value) { return value.AsMatrix(); }
inline Qelp::Quat const& stored(XQuaternion const& value) { return value.AsQuaternion(); }

template<class T, db::AttributeType kind> constexpr db::AttributeType kindOf(db::ValueAttribute<T, kind> const*) {
    return kind;
}
template<class T, db::AttributeType kind> constexpr db::AttributeType kindOf(db::PlainArrayAttribute<T, kind> const*) {
    return kind;
}

template<class Class> Class* as(db::Attribute* a) {
    bool const fits = a && a->getAttributeType() == kindOf(static_cast<Class*>(nullptr));
    return fits ? static_cast<Class*>(a) : nullptr;
}

template<class Kind> typename Kind::Value readValue(db::Attribute* a, int index) {
    using Value = typename Kind::Value;
    if (auto const* single = as<typename Kind::Single>(a)) return Value(single->getValue());
    auto const* array = as<typename Kind::Array>(a);
    if (!array || index < 0 || std::size_t(index) >= array->size()) return Value();
    return Value(array->getElement(std::size_t(index)));
}

template<class Kind> void readValues(db::Attribute* a, Qelutils::Vector<typename Kind::Value>& out) {
    out.clear();
    auto const* array = as<typename Kind::Array>(a);
    std::size_t const count = array ? array->size() : 0;
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) out.push_back(typename Kind::Value(array->getElement(i)));
}

// The attribute's own read-only flag is not asked: it is for the interface.
inline bool mayWrite(XAttribute const& attribute) { return attribute.IsValid() && attribute.Object().IsEditable(); }

// Element 0 of an empty array is appended; beyond the end of any other nothing is written.
template<class Kind> void writeValue(db::Attribute* a, typename Kind::Value const& value, int index) {
    if (auto* single = as<typename Kind::Single>(a)) return single->setValue(stored(value));
    auto* array = as<typename Kind::Array>(a);
    if (!array || index < 0) return;
    if (index == 0 && array->size() == 0)
        array->add(stored(value));
    else
        array->setElement(stored(value), std::size_t(index));
}

// A whole array, in one write.
template<class Kind>
void writeValues(XAttribute const& attribute, Qelutils::Vector<typename Kind::Value> const& values) {
    using Elements = std::decay_t<decltype(std::declval<typename Kind::Array>().raw())>;
    using Element = typename Elements::value_type;
    auto* const array = as<typename Kind::Array>(attribute.getAttribute());
    if (!array || !mayWrite(attribute)) return;
    if constexpr (std::is_same_v<Elements, Qelutils::Vector<typename Kind::Value>>)
        array->setValue(values);
    else {
        Elements elements;
        elements.reserve(values.size());
        for (auto const& value : values) elements.push_back(Element(stored(value)));
        array->setValue(std::move(elements));
    }
}

}  // namespace Tavo
