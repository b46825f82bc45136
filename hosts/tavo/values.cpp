#include "hosts/tavo/values.h"

#include "hosts/tavo/console.h"
#include "qel/utils/text.h"
#include "tavo/objects/units.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <optional>

namespace host {
namespace {

using namespace Tavo;
using db::AttributeType;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

constexpr double noLimit = db::AttributeDef().maximum;

constexpr ValueKind kinds[] = {
    {AttributeType::Float, XAttribute::FloatType, "a number"},
    {AttributeType::Double, XAttribute::DoubleType, "a number"},
    {AttributeType::Integer, XAttribute::IntegerType, "a whole number"},
    {AttributeType::Boolean, XAttribute::BooleanType, "true or false"},
    {AttributeType::Enumeration, XAttribute::EnumType, "a word"},
    {AttributeType::Vector3, XAttribute::VectorType, "three numbers with commas"},
    {AttributeType::String, XAttribute::StringType, "a text"},
    {AttributeType::Compound, L"compound", "its parts with commas"},
};

sg::AttributeUnit unitOf(XAttribute const& attribute) { return sg::AttributeUnit(attribute.Units()); }

template<class Content> std::optional<Content> when(bool fits, Content const& content) {
    return fits ? std::optional<Content>(content) : std::nullopt;
}

std::optional<bool> parseBoolean(std::string const& text) {
    std::wstring const word = Qelutils::toLower(fromUtf8(text));
    bool const yes = word == L"true" || word == L"1";
    return when(yes || word == L"false" || word == L"0", yes);
}

std::optional<int> parseInteger(std::string const& text) {
    int value = 0;
    bool const fits = Qelutils::parseNumber(text, value);
    return when(fits, value);
}

std::optional<double> parseNumber(XAttribute const& attribute, std::string const& text, XScene* display) {
    double value = 0;
    if (!Qelutils::parseNumber(text, value)) return {};
    if (display) display->ConvertUnits(UnitCodeOf(unitOf(attribute)), ToInternalUnits, value);
    if (attribute.IsFloat()) value = float(value);
    return when(std::isfinite(value), value);
}

std::optional<XVector3> parseVector(XAttribute const& attribute, std::string const& text, XScene* display) {
    std::vector<std::string> const parts = splitAtCommas(text);
    float v[3];
    if (parts.size() != 3) return {};
    for (std::size_t i = 0; i < 3; ++i)
        if (!Qelutils::parseNumber(parts[i], v[i]) || !std::isfinite(v[i])) return {};
    XVector3 value(v);
    if (display) display->ConvertUnits(unitOf(attribute), ToInternalUnits, value);
    return value;
}

std::string joined(Qelutils::Vector<std::wstring> const& words) {
    std::string text;
    for (std::wstring const& word : words) text += (text.empty() ? "" : ", ") + toUtf8(word);
    return text;
}

int parseWord(XAttribute const& attribute, std::string const& text) {
    Qelutils::Vector<std::wstring> words;
    attribute.EnumerationStrings(words);
    std::wstring const wanted = Qelutils::toLower(fromUtf8(text));
    auto const found =
        std::find_if(words.begin(), words.end(), [&](auto const& word) { return Qelutils::toLower(word) == wanted; });
    if (found != words.end()) return int(found - words.begin());
    std::optional<int> const number = parseInteger(text);
    if (number && *number >= 0 && *number < int(words.size())) return *number;
    throw wrongCall(fmt::format("{} has no value \"{}\"", toUtf8(attribute.ShortPath()), text), text, words,
                    "; it is one of " + joined(words));
}

[[noreturn]] void refuse(XAttribute const& attribute, std::string const& takes, std::string const& text) {
    throw wrongCall(fmt::format("{} takes {}, not \"{}\"", toUtf8(attribute.ShortPath()), takes, text));
}

void showLimits(db::AttributeDef& row, XScene& display) {
    for (double* limit : {&row.minimum, &row.maximum})
        if (std::abs(*limit) < noLimit)
            display.ConvertUnits(UnitCodeOf(sg::AttributeUnit(row.units)), ToExternalUnits, *limit);
}

// A float is compared with the floats that the limits are nearest to: 0.1 is within 0.1.
void checkRange(XAttribute const& attribute, double value, std::string const& text, XScene* display) {
    db::AttributeDef row = attribute.getAttribute()->getDef();
    auto const limit = [&](double x) { return attribute.IsFloat() && std::abs(x) < noLimit ? double(float(x)) : x; };
    if (value >= limit(row.minimum) && value <= limit(row.maximum)) return;
    if (display) showLimits(row, *display);
    refuse(attribute, kindOf(row.type)->takes + rangeText(row), text);
}

// The content, or the message that says what the attribute takes.
template<class Content>
Content fitting(XAttribute const& attribute, std::optional<Content> content, std::string const& text,
                XScene* display = nullptr) {
    if (!content) refuse(attribute, kindOf(AttributeType(attribute.Type()))->takes, text);
    if constexpr (std::is_same_v<Content, int> || std::is_same_v<Content, double>)
        checkRange(attribute, *content, text, display);
    return *content;
}

std::vector<Value> parseParts(XAttribute const& attribute, std::string const& text, XScene* display) {
    Qelutils::Vector<XAttribute> parts;
    attribute.Attributes(parts);
    std::vector<std::string> const texts = splitAtCommas(text);
    if (texts.size() != parts.size()) refuse(attribute, fmt::format("{} values with commas", parts.size()), text);
    std::vector<Value> values;
    for (std::size_t i = 0; i < parts.size(); ++i) values.push_back(Value::parse(parts[i], texts[i], display));
    return values;
}

// Whether a value may be written at all.
void checkAttribute(XAttribute const& attribute) {
    std::string const name = toUtf8(attribute.ShortPath());
    if (attribute.IsConnectedInput())
        throw wrongCall(fmt::format("{} is driven by {}; a value of its own would not show", name,
                                    toUtf8(attribute.InputObject().Name())));
    if (attribute.IsComputed()) throw wrongCall(fmt::format("{} is computed and cannot be set", name));
    if (!attribute.IsEditable()) throw wrongCall(fmt::format("{} cannot be edited", name));
    if (!kindOf(AttributeType(attribute.Type())))
        throw wrongCall(fmt::format("{} is of the kind {}, which cannot be set from a text", name,
                                    toUtf8(attribute.TypeAsString())));
}

}  // namespace

std::vector<std::string> splitAtCommas(std::string const& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1)
        parts.push_back(text.substr(start, comma - start));
    parts.push_back(text.substr(start));
    return parts;
}

ValueKind const* kindOf(AttributeType type) {
    auto const found = std::find_if(std::begin(kinds), std::end(kinds), [&](auto const& k) { return k.type == type; });
    return found == std::end(kinds) ? nullptr : found;
}

std::string rangeText(db::AttributeDef const& row) {
    bool const low = row.minimum > -noLimit, high = row.maximum < noLimit;
    std::string const least = Qelutils::number(row.minimum), most = Qelutils::number(row.maximum);
    if (low && high) return fmt::format(" from {} to {}", least, most);
    return low ? " of at least " + least : high ? " of at most " + most : "";
}

Value Value::parse(XAttribute const& a, std::string const& text, XScene* display) {
    checkAttribute(a);
    switch (AttributeType(a.Type())) {
    case AttributeType::Enumeration: return {a, parseWord(a, text)};
    case AttributeType::Integer: return {a, fitting(a, parseInteger(text), text)};
    case AttributeType::Boolean: return {a, fitting(a, parseBoolean(text), text)};
    case AttributeType::Vector3: return {a, fitting(a, parseVector(a, text, display), text)};
    case AttributeType::String: return {a, fromUtf8(text)};
    case AttributeType::Compound: return {a, parseParts(a, text, display)};
    default: return {a, fitting(a, parseNumber(a, text, display), text, display)};
    }
}

Value Value::present() const { return of(attribute_); }

Value Value::of(XAttribute const& a) {
    switch (AttributeType(a.Type())) {
    case AttributeType::Enumeration: return {a, a.Enumeration()};
    case AttributeType::Integer: return {a, a.Integer()};
    case AttributeType::Boolean: return {a, a.Boolean()};
    case AttributeType::Vector3: return {a, a.Vector()};
    case AttributeType::String: return {a, a.String()};
    case AttributeType::Float: return {a, double(a.Float())};
    case AttributeType::Double: return {a, a.Double()};
    default: break;
    }
    std::vector<Value> parts;
    for (int i = 0; i < a.AttributeCount(); ++i) parts.push_back(of(a.Attribute(i)));
    return {a, std::move(parts)};
}

void Value::write() const {
    XAttribute a = attribute_;
    struct Writer {
        XAttribute& a;
        void operator()(int value) { a.IsEnum() ? a.SetEnumeration(value) : a.SetInteger(value); }
        void operator()(bool value) { a.SetBoolean(value); }
        void operator()(double value) { a.IsDouble() ? a.SetDouble(value) : a.SetFloat(float(value)); }
        void operator()(XVector3 const& value) { a.SetVector(value); }
        void operator()(std::wstring const& value) { a.SetString(value); }
        void operator()(std::vector<Value> const& parts) {
            for (Value const& part : parts) part.write();
        }
    };
    std::visit(Writer{a}, content_);
}

}  // namespace host
