// set: new values for attributes, as one step of the history, and the document written anew.
#include "hosts/tavo/find.h"
#include "hosts/tavo/reading.h"
#include "hosts/tavo/session.h"
#include "qel/utils/text.h"

#include <cmath>
#include <fmt/format.h>
#include <optional>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

struct Assignment {
    std::vector<XAttribute> attributes;
    std::string value;
};

// The value may hold '=' and so may names: the split is the first whose left side is known.
Assignment parse(XScene& scene, std::string const& text) {
    std::optional<Failure> first;
    for (std::size_t split = text.find('='); split != std::string::npos; split = text.find('=', split + 1)) {
        try {
            return {findAttributes(scene, text.substr(0, split)), text.substr(split + 1)};
        } catch (Failure const& failure) {
            if (!first) first = failure;
        }
    }
    throw first.value_or(wrongCall(fmt::format("\"{}\" is not OBJECT.ATTRIBUTE=VALUE", text)));
}

std::vector<std::string> split(std::string const& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1)
        parts.push_back(text.substr(start, comma - start));
    parts.push_back(text.substr(start));
    return parts;
}

bool parseBoolean(std::string const& text, bool& value) {
    std::wstring const word = Qelutils::toLower(fromUtf8(text));
    value = word == L"true" || word == L"1";
    return value || word == L"false" || word == L"0";
}

bool setEnumeration(XAttribute& attribute, std::string const& text) {
    Qelutils::Vector<std::wstring> words;
    attribute.EnumerationStrings(words);
    int number = -1;
    for (std::size_t i = 0; i < words.size(); ++i)
        if (Qelutils::toLower(words[i]) == Qelutils::toLower(fromUtf8(text))) number = int(i);
    if (number < 0 && (!Qelutils::parseNumber(text, number) || number < 0 || number >= int(words.size())))
        throw wrongCall(fmt::format("{} has no value \"{}\"", toUtf8(attribute.ShortPath()), text), text, words);
    attribute.SetEnumeration(number);
    return true;
}

bool setVector(XAttribute& attribute, std::string const& text, bool display) {
    std::vector<std::string> const parts = split(text);
    float v[3];
    if (parts.size() != 3) return false;
    for (std::size_t i = 0; i < 3; ++i)
        if (!Qelutils::parseNumber(parts[i], v[i]) || !std::isfinite(v[i])) return false;
    XVector3 value(v);
    if (display) attribute.Database().ConvertUnits(sg::AttributeUnit(attribute.Units()), ToInternalUnits, value);
    attribute.SetVector(value);
    return true;
}

bool setNumber(XAttribute& attribute, std::string const& text, bool display) {
    double value = 0;
    if (!Qelutils::parseNumber(text, value) || !std::isfinite(float(value))) return false;
    if (display) value = convertUnits(attribute, ToInternalUnits, value);
    attribute.IsDouble() ? attribute.SetDouble(value) : attribute.SetFloat(float(value));
    return true;
}

bool setInteger(XAttribute& attribute, std::string const& text) {
    int value = 0;
    if (!Qelutils::parseNumber(text, value)) return false;
    attribute.SetInteger(value);
    return true;
}

bool setBoolean(XAttribute& attribute, std::string const& text) {
    bool value = false;
    if (!parseBoolean(text, value)) return false;
    attribute.SetBoolean(value);
    return true;
}

// What such an attribute takes, for the message.
char const* kindOf(XAttribute const& a) {
    return a.IsFloat() || a.IsDouble() ? "a number"
           : a.IsInt()                 ? "a whole number"
           : a.IsBool()                ? "true or false"
           : a.IsVector()              ? "three numbers with commas"
                                       : nullptr;
}

bool assign(XAttribute& a, std::string const& text, bool display) {
    if (a.IsEnum()) return setEnumeration(a, text);
    if (a.IsInt()) return setInteger(a, text);
    if (a.IsBool()) return setBoolean(a, text);
    if (a.IsVector()) return setVector(a, text, display);
    return setNumber(a, text, display);
}

void set(XAttribute attribute, std::string const& text, bool display) {
    std::string const name = toUtf8(attribute.ShortPath());
    if (attribute.IsConnectedInput())
        throw wrongCall(fmt::format("{} is driven by {}; a value of its own would not show", name,
                                    toUtf8(attribute.InputObject().Name())));
    if (attribute.IsComputed()) throw wrongCall(fmt::format("{} is computed and cannot be set", name));
    if (!attribute.IsEditable()) throw wrongCall(fmt::format("{} cannot be edited", name));
    if (attribute.IsString()) {
        attribute.SetString(fromUtf8(text));
        return;
    }
    if (!attribute.IsEnum() && !kindOf(attribute))
        throw wrongCall(fmt::format("{} is of the kind {}, which cannot be set from a text", name,
                                    toUtf8(attribute.TypeAsString())));
    if (!assign(attribute, text, display))
        throw wrongCall(fmt::format("{} takes {}, not \"{}\"", name, kindOf(attribute), text));
}

}  // namespace

void run(SetVerb const& verb) {
    static std::wstring const label = L"Set";
    Session session(verb.input);
    std::size_t count = 0;
    {
        XChangeBlock const block(session.scene(), label);
        for (std::string const& text : verb.assignments) {
            Assignment const assignment = parse(session.scene(), text);
            for (XAttribute const& attribute : assignment.attributes) set(attribute, assignment.value, verb.display);
            count += assignment.attributes.size();
        }
    }
    session.save(verb.output);
    writeResult(fmt::format("set {} attribute{}\nwrote {}\n", count, count == 1 ? "" : "s", verb.output));
}

}  // namespace host
