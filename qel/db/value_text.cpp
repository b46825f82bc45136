#include "qel/db/value_text.h"
#include "qel/db/database.h"
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

// Bit for bit, so that -0 is told from 0 and not a number is itself.
template<class T> bool sameFloats(T const& a, T const& b) {
    return std::memcmp(&a, &b, sizeof(float) * (std::is_floating_point_v<T> ? 1 : floatsOf<T>)) == 0;
}
bool sameFloats(double const& a, double const& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

template<class A> bool hasInitialFloats(Attribute const& a) {
    return sameFloats(static_cast<A const&>(a).raw(), initialValue<typename A::Value>(a.getDef()));
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

bool readBooleans(Attribute& a, std::string_view text) {
    std::vector<int> values;
    if (!parseXMLNumbers(text, values)) return false;
    a.asBoolArray()->raw().clear();
    for (int value : values) a.asBoolArray()->raw().push_back(value != 0);
    return true;
}

template<class A> auto const& rawOf(Attribute const& a) { return static_cast<A const&>(a).raw(); }

void writeReferences(XMLWriter& out, std::vector<AttributeHandle> const& targets, Database const& database) {
    for (AttributeHandle const& target : targets) {
        out.startElement("r");
        out.text(referenceTo(target.getRef(), database));
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

std::wstring referenceTo(Attribute const* target, Database const& database) {
    if (!target || target->isRemoved() || target->getDatabase() != &database || target->isDatabase()) return {};
    Node const& n = *target->getParentNode();
    if (n.isNotAnObject()) return {};
    std::wstring const id = std::to_wstring(n.getID());
    return target->isNode() ? id : id + L"." + target->getLocalPathName();
}

bool isInitialValue(Attribute const& a) {
    switch (a.getAttributeType()) {
    case AttributeType::Float: return hasInitialFloats<FloatAttribute>(a);
    case AttributeType::Double: return hasInitialFloats<DoubleAttribute>(a);
    case AttributeType::Vector3: return hasInitialFloats<Vector3Attribute>(a);
    case AttributeType::Matrix: return hasInitialFloats<Matrix34Attribute>(a);
    case AttributeType::Quaternion: return hasInitialFloats<QuaternionAttribute>(a);
    case AttributeType::Pointer: return referenceTo(a.asPointer()->raw().getRef(), *a.getDatabase()).empty();
    case AttributeType::String: return a.asString()->raw() == a.getDef().initialText;
    default: return a.isDefaultValue();
    }
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
    case AttributeType::Pointer: return out.text(referenceTo(a.asPointer()->raw().getRef(), *a.getDatabase()));
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
    case AttributeType::PointerArray: return writeReferences(out, rawOf<PointerArrayAttribute>(a), *a.getDatabase());
    case AttributeType::NodeContainer: return writeReferences(out, rawOf<NodeContainer>(a), *a.getDatabase());
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
    case AttributeType::BooleanArray: return readBooleans(a, text);
    case AttributeType::Vector3Array: return readListOfFloats<Vector3ArrayAttribute>(a, text);
    case AttributeType::MatrixArray: return readListOfFloats<Matrix34ArrayAttribute>(a, text);
    case AttributeType::QuaternionArray: return readListOfFloats<QuaternionArrayAttribute>(a, text);
    default: return false;
    }
}

}  // namespace db
