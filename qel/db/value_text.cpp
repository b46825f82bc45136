#include "qel/db/value_text.h"
#include "qel/db/xml_text.h"
#include <cstring>

namespace db {
namespace {

// Vectors, quaternions and matrices are runs of floats; of a vector's four, three stand in a file.
template<class T> constexpr std::size_t floatsOf = std::is_same_v<T, Qelp::Vector3> ? 3 : sizeof(T) / sizeof(float);

template<class T> void appendFloats(std::vector<float>& out, T const& value) {
    float all[sizeof(T) / sizeof(float)];
    std::memcpy(all, &value, sizeof value);
    out.insert(out.end(), all, all + floatsOf<T>);
}

template<class T> void writeFloats(XMLWriter& out, T const* values, std::size_t count) {
    std::vector<float> floats;
    floats.reserve(count * floatsOf<T>);
    for (std::size_t i = 0; i < count; ++i) appendFloats(floats, values[i]);
    out.values(floats);
}

template<class T> bool readFloats(std::string_view text, std::vector<T>& values) {
    std::vector<float> floats;
    if (!parseXMLNumbers(text, floats) || floats.size() % floatsOf<T>) return false;
    values.assign(floats.size() / floatsOf<T>, T());
    for (std::size_t i = 0; i < values.size(); ++i)
        std::memcpy(static_cast<void*>(&values[i]), &floats[i * floatsOf<T>], floatsOf<T> * sizeof(float));
    return true;
}

template<class A> bool readOneOfFloats(Attribute& a, std::string_view text) {
    std::vector<typename A::Value> values;
    if (!readFloats(text, values) || values.size() != 1) return false;
    static_cast<A&>(a).raw() = values[0];
    return true;
}

template<class A> bool readListOfFloats(Attribute& a, std::string_view text) {
    std::vector<typename A::Element> values;
    if (!readFloats(text, values)) return false;
    static_cast<A&>(a).raw() = std::move(values);
    return true;
}

template<class A> bool readNumber(Attribute& a, std::string_view text) {
    return parseXMLNumber(text, static_cast<A&>(a).raw());
}

template<class A, class T> bool readNumbers(Attribute& a, std::string_view text) {
    std::vector<T> values;
    if (!parseXMLNumbers(text, values)) return false;
    static_cast<A&>(a).raw().assign(values.begin(), values.end());
    return true;
}

template<class A> auto const& rawOf(Attribute const& a) { return static_cast<A const&>(a).raw(); }

void writeReferences(XMLWriter& out, std::vector<AttributeHandle> const& targets) {
    for (AttributeHandle const& target : targets) {
        out.startElement("r");
        out.text(referenceTo(target.getRef()));
        out.endElement();
    }
}

void writeTexts(XMLWriter& out, std::vector<std::wstring> const& texts) {
    for (std::wstring const& t : texts) {
        out.startElement("s");
        out.text(t);
        out.endElement();
    }
}

template<class A> void writeArrayOfFloats(XMLWriter& out, Attribute const& a) {
    auto const& v = rawOf<A>(a);
    writeFloats(out, v.data(), v.size());
}

}  // namespace

std::wstring referenceTo(Attribute const* target) {
    if (!target || target->isRemoved()) return {};
    std::wstring const id = std::to_wstring(target->getParentNode()->getID());
    return target->isNode() ? id : id + L"." + target->getLocalPathName();
}

void writeValue(XMLWriter& out, Attribute const& a) {
    switch (a.getAttributeType()) {
    case AttributeType::Integer: return out.text(a.asInt()->raw());
    case AttributeType::Boolean: return out.text(a.asBool()->raw());
    case AttributeType::Enumeration: return out.text(a.asEnum()->raw());
    case AttributeType::Float: return out.text(a.asFloat()->raw());
    case AttributeType::Double: return out.text(a.asDouble()->raw());
    case AttributeType::String: return out.text(a.asString()->raw());
    case AttributeType::Vector3: return writeFloats(out, &a.asVector3()->raw(), 1);
    case AttributeType::Matrix: return writeFloats(out, &a.asMatrix34()->raw(), 1);
    case AttributeType::Quaternion: return writeFloats(out, &a.asQuaternion()->raw(), 1);
    case AttributeType::Pointer: return out.text(referenceTo(a.asPointer()->raw().getRef()));
    case AttributeType::IntegerArray: return out.values(rawOf<IntArrayAttribute>(a));
    case AttributeType::EnumerationArray: return out.values(rawOf<EnumArrayAttribute>(a));
    case AttributeType::FloatArray: return out.values(rawOf<FloatArrayAttribute>(a));
    case AttributeType::DoubleArray: return out.values(rawOf<DoubleArrayAttribute>(a));
    case AttributeType::BooleanArray: {
        auto const& v = rawOf<BoolArrayAttribute>(a);
        return out.values(std::vector<int>(v.begin(), v.end()));
    }
    case AttributeType::StringArray: return writeTexts(out, rawOf<StringArrayAttribute>(a));
    case AttributeType::Vector3Array: return writeArrayOfFloats<Vector3ArrayAttribute>(out, a);
    case AttributeType::MatrixArray: return writeArrayOfFloats<Matrix34ArrayAttribute>(out, a);
    case AttributeType::QuaternionArray: return writeArrayOfFloats<QuaternionArrayAttribute>(out, a);
    case AttributeType::PointerArray: return writeReferences(out, rawOf<PointerArrayAttribute>(a));
    case AttributeType::NodeContainer: return writeReferences(out, rawOf<NodeContainer>(a));
    default: return;
    }
}

bool readValue(Attribute& a, std::string_view text) {
    switch (a.getAttributeType()) {
    case AttributeType::Integer: return readNumber<IntAttribute>(a, text);
    case AttributeType::Boolean: return readNumber<BoolAttribute>(a, text);
    case AttributeType::Enumeration: return readNumber<EnumAttribute>(a, text);
    case AttributeType::Float: return readNumber<FloatAttribute>(a, text);
    case AttributeType::Double: return readNumber<DoubleAttribute>(a, text);
    case AttributeType::String: a.asString()->raw() = decodeXMLText(text); return true;
    case AttributeType::Vector3: return readOneOfFloats<Vector3Attribute>(a, text);
    case AttributeType::Matrix: return readOneOfFloats<Matrix34Attribute>(a, text);
    case AttributeType::Quaternion: return readOneOfFloats<QuaternionAttribute>(a, text);
    case AttributeType::IntegerArray: return readNumbers<IntArrayAttribute, int>(a, text);
    case AttributeType::EnumerationArray: return readNumbers<EnumArrayAttribute, int>(a, text);
    case AttributeType::FloatArray: return readNumbers<FloatArrayAttribute, float>(a, text);
    case AttributeType::DoubleArray: return readNumbers<DoubleArrayAttribute, double>(a, text);
    case AttributeType::BooleanArray: return readNumbers<BoolArrayAttribute, int>(a, text);
    case AttributeType::Vector3Array: return readListOfFloats<Vector3ArrayAttribute>(a, text);
    case AttributeType::MatrixArray: return readListOfFloats<Matrix34ArrayAttribute>(a, text);
    case AttributeType::QuaternionArray: return readListOfFloats<QuaternionArrayAttribute>(a, text);
    default: return false;
    }
}

}  // namespace db
