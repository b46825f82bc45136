// Reading and writing the values of an attribute, alone and in arrays.
#include "qel/utils/text.h"
#include "tavo/objects/attribute_kinds.h"
#include "tavo/objects/database.h"
#include "tavo/objects/object_events.h"
#include <algorithm>
#include <new>
#include <stdexcept>

namespace Tavo {
namespace {

template<class Kind> void write(XAttribute const& attribute, typename Kind::Value const& value, int index) {
    if (mayWrite(attribute)) writeValue<Kind>(attribute.getAttribute(), value, index);
}

// An object's name is a text of it.
template<> void write<XStringKind>(XAttribute const& attribute, std::wstring const& value, int index) {
    if (!mayWrite(attribute)) return;
    XObject const object = attribute.Object();
    XObjectEvents::Comparison const comparison(object);
    writeValue<XStringKind>(attribute.getAttribute(), value, index);
}

template<class Kind> void append(XAttribute const& attribute, typename Kind::Value const& value) {
    if (auto* array = as<typename Kind::Array>(attribute.getAttribute()); array && mayWrite(attribute))
        array->add(stored(value));
}

// In ascending order, what is not a number last.
template<class Value> bool ascending(Value const& a, Value const& b) { return a < b || (a == a && b != b); }

template<class Kind> typename Kind::Value sortedValue(db::Attribute* a, int index) {
    if (!as<typename Kind::Array>(a)) return readValue<Kind>(a, index);
    Qelutils::Vector<typename Kind::Value> values;
    readValues<Kind>(a, values);
    if (index < 0 || std::size_t(index) >= values.size()) return {};
    std::nth_element(values.begin(), values.begin() + index, values.end(), ascending<typename Kind::Value>);
    return values[std::size_t(index)];
}

template<class Kind> int findValue(db::Attribute* a, typename Kind::Value const& value) {
    auto const* array = as<typename Kind::Array>(a);
    if (!array) return -1;
    auto const& values = array->getValue();
    auto const it = std::find(values.begin(), values.end(), value);
    return it == values.end() ? -1 : int(it - values.begin());
}

// Inserts a default element; false for an array of references and for what is no array.
template<class... Kinds> bool insertDefault(db::Attribute* a, std::size_t index) {
    auto into = [&](auto* array) { return array && array->insert(array->getDefaultElement(), index); };
    if (db::AttributeArray* array = a->asAttributeArray()) return array->insert(unsigned(index)) != nullptr;
    return (into(as<typename Kinds::Array>(a)) || ...);
}

// The words of an enumeration or of an array of them.
std::span<wchar_t const* const> wordsOf(db::Attribute const* a) {
    bool const hasWords = a && (a->isEnum() || a->isEnumArray());
    return hasWords ? a->getDef().getStrings() : std::span<wchar_t const* const>();
}

}  // namespace

// ---- the recurring operations of the kinds: name, reading function, name of the whole array ----

#define TAVO_VALUE_KIND(Name, readAt, Plural, Parameter, Kind)                                                         \
    Kind::Value XAttribute::readAt(int index) const { return readValue<Kind>(getAttribute(), index); }                 \
    void XAttribute::Plural(Qelutils::Vector<Kind::Value>& out) const { readValues<Kind>(getAttribute(), out); }       \
    XAttribute& XAttribute::Set##Name(Parameter value, int index) { return write<Kind>(*this, value, index), *this; }  \
    XAttribute& XAttribute::Add##Name(Parameter value) { return append<Kind>(*this, value), *this; }                   \
    XAttribute& XAttribute::Insert##Name(Parameter value, int index) {                                                 \
        return InsertValue(index) ? Set##Name(value, index) : *this;                                                   \
    }

TAVO_VALUE_KIND(Float, floatAt, Floats, float, XFloatKind)
TAVO_VALUE_KIND(Double, doubleAt, Doubles, double, XDoubleKind)
TAVO_VALUE_KIND(Integer, integerAt, Integers, int, XIntegerKind)
TAVO_VALUE_KIND(Enumeration, enumerationAt, Enumerations, int, XEnumerationKind)
TAVO_VALUE_KIND(Boolean, booleanAt, Booleans, bool, XBooleanKind)
TAVO_VALUE_KIND(String, String, Strings, std::wstring const&, XStringKind)
TAVO_VALUE_KIND(Vector, vectorAt, Vectors, XVector3 const&, XVectorKind)
TAVO_VALUE_KIND(Matrix, matrixAt, Matrices, XMatrix const&, XMatrixKind)
TAVO_VALUE_KIND(Quaternion, quaternionAt, Quaternions, XQuaternion const&, XQuaternionKind)
#undef TAVO_VALUE_KIND

#define TAVO_SORTED_KIND(Name, Parameter, Kind)                                                                        \
    Kind::Value XAttribute::Sorted##Name(int index) const { return sortedValue<Kind>(getAttribute(), index); }         \
    int XAttribute::Find##Name(Parameter value) const { return findValue<Kind>(getAttribute(), value); }

TAVO_SORTED_KIND(Float, float, XFloatKind)
TAVO_SORTED_KIND(Double, double, XDoubleKind)
TAVO_SORTED_KIND(Integer, int, XIntegerKind)
TAVO_SORTED_KIND(String, std::wstring const&, XStringKind)
#undef TAVO_SORTED_KIND

XAttribute& XAttribute::SetFloat(Qelutils::Vector<float> const& v) { return writeValues<XFloatKind>(*this, v), *this; }
XAttribute& XAttribute::SetDouble(Qelutils::Vector<double> const& v) {
    return writeValues<XDoubleKind>(*this, v), *this;
}
XAttribute& XAttribute::SetInteger(Qelutils::Vector<int> const& v) {
    return writeValues<XIntegerKind>(*this, v), *this;
}
XAttribute& XAttribute::SetEnumeration(Qelutils::Vector<int> const& v) {
    return writeValues<XEnumerationKind>(*this, v), *this;
}
XAttribute& XAttribute::SetInteger(int const* values, unsigned int count) {
    return values ? SetInteger(Qelutils::Vector<int>(values, values + count)) : *this;
}

Qelutils::Vector<std::wstring> XAttribute::Strings() const {
    Qelutils::Vector<std::wstring> out;
    Strings(out);
    return out;
}

float const* XAttribute::FloatData(int& count) const {
    auto const* array = as<db::FloatArrayAttribute>(getAttribute());
    bool const isPlain = array && array->isPlain(db::AttributeType::FloatArray);
    count = isPlain ? int(array->raw().size()) : 0;
    return isPlain ? array->raw().data() : nullptr;
}

// A node is no value: to copy one is XObject::Copy.
XAttribute& XAttribute::CopyValue(XAttribute const& other) {
    if (mayWrite(*this) && other.IsValid() && !IsNode()) getAttribute()->assign(*other.getAttribute());
    return *this;
}

// ---- enumerations ----

std::wstring XAttribute::EnumerationString() const { return EnumerationString(0); }
std::wstring XAttribute::EnumerationString(int index) const {
    auto const words = wordsOf(getAttribute());
    int const value = Enumeration(index);
    bool const inArray = !IsEnumArray() || (index >= 0 && index < ArraySize());
    return inArray && value >= 0 && std::size_t(value) < words.size() ? words[std::size_t(value)] : std::wstring();
}
std::wstring XAttribute::EnumerationDisplayString() const { return EnumerationDisplayString(0); }
std::wstring XAttribute::EnumerationDisplayString(int index) const {
    return ConvertToDisplayName(EnumerationString(index));
}
void XAttribute::EnumerationStrings(Qelutils::Vector<std::wstring>& out) const {
    auto const words = wordsOf(getAttribute());
    out.assign(words.begin(), words.end());
}
void XAttribute::EnumerationDisplayStrings(Qelutils::Vector<std::wstring>& out) const {
    EnumerationStrings(out);
    for (std::wstring& word : out) word = ConvertToDisplayName(word);
}
XAttribute& XAttribute::SetEnumeration(std::wstring const& word, int index) {
    auto const words = wordsOf(getAttribute());
    auto const it = std::find(words.begin(), words.end(), word);
    return it == words.end() ? *this : SetEnumeration(int(it - words.begin()), index);
}

// ---- references ----

XAttribute XAttribute::AttributeRef() const { return AttributeRef(0); }
XAttribute XAttribute::AttributeRef(int index) const { return readValue<XReferenceKind>(getAttribute(), index); }
XObject XAttribute::ObjectRef(int index) const { return AttributeRef(index).Object(); }

void XAttribute::ObjectRefs(Qelutils::Vector<XObject>& out) const {
    Qelutils::Vector<db::Attribute*> targets;
    readValues<XReferenceKind>(getAttribute(), targets);
    out.clear();
    for (db::Attribute* target : targets) out.push_back(XAttribute(target).Object());
}

XAttribute& XAttribute::SetAttributeRef(XAttribute const& value, int index) {
    if (mayWrite(*this)) writeValue<XReferenceKind>(getAttribute(), value.getAttribute(), index);
    return *this;
}
XAttribute& XAttribute::AddAttributeRef(XAttribute const& value) {
    return append<XReferenceKind>(*this, value.getAttribute()), *this;
}
XAttribute& XAttribute::SetObjectRef(XObject const& value, int index) {
    return SetAttributeRef(XAttribute(value.getNode()), index);
}
XAttribute& XAttribute::AddObjectRef(XObject const& value) { return AddAttributeRef(XAttribute(value.getNode())); }
XAttribute& XAttribute::InsertObjectRef(XObject const& value, int index) {
    auto* array = as<db::PointerArrayAttribute>(getAttribute());
    if (array && index >= 0 && mayWrite(*this)) array->insert(value.getNode(), std::size_t(index));
    return *this;
}
XAttribute& XAttribute::ClearObjectRef(int index) { return SetAttributeRef(Undefined, index); }
XAttribute& XAttribute::ClearAttributeRef(int index) { return SetAttributeRef(Undefined, index); }

// ---- arrays ----

int XAttribute::ArraySize() const {
    db::Attribute* const a = getAttribute();
    if (!a) return 0;
    if (db::AttributeArray const* array = a->asAttributeArray()) return int(array->size());
    db::ArrayAttribute const* array = a->asArray();
    return array ? int(array->size()) : 0;
}

bool XAttribute::SetArraySize(int count) {
    if (!IsArrayAttribute() || count < 0 || !mayWrite(*this)) return false;
    try {
        if (db::AttributeArray* array = getAttribute()->asAttributeArray())
            array->resize(std::size_t(count));
        else
            getAttribute()->asArray()->resize(std::size_t(count));
        return true;
    } catch (std::bad_alloc const&) { return false; } catch (std::length_error const&) {
        return false;
    }
}

bool XAttribute::AddValue() { return InsertValue(ArraySize()); }

bool XAttribute::InsertValue(int index) {
    return IsArrayAttribute() && index >= 0 && mayWrite(*this) &&
           insertDefault<XFloatKind, XDoubleKind, XIntegerKind, XEnumerationKind, XBooleanKind, XStringKind,
                         XVectorKind, XMatrixKind, XQuaternionKind>(getAttribute(), std::size_t(index));
}

XAttribute XAttribute::AddAttribute() {
    db::AttributeArray* const array = IsAttributeArray() ? getAttribute()->asAttributeArray() : nullptr;
    return array && mayWrite(*this) ? XAttribute(array->add()) : XAttribute();
}

XAttribute& XAttribute::Clear() {
    SetArraySize(0);
    return *this;
}

XAttribute& XAttribute::Delete(int index) {
    if (!IsArrayAttribute() || index < 0 || !mayWrite(*this)) return *this;
    if (db::AttributeArray* array = getAttribute()->asAttributeArray())
        array->removeAt(std::size_t(index));
    else
        getAttribute()->asArray()->removeAt(std::size_t(index));
    return *this;
}

}  // namespace Tavo
