// Values between the texts of a command line and attributes: "0.5", "true", a word of an enumeration, "1,0,0".
#pragma once
#include "tavo/objects/scene.h"

#include <string>
#include <variant>
#include <vector>

namespace host {

std::vector<std::string> splitAtCommas(std::string const& text);  // never none

// A kind of value that a command line can give.
struct ValueKind {
    db::AttributeType type;
    Tavo::XWord word;   // the kind for machines
    char const* takes;  // and for messages: "takes a whole number"
};
// Null for kinds that no text stands for.
ValueKind const* kindOf(db::AttributeType type);

// "", " from 0 to 1", " of at least 0": what a row says of its values, in the units of its limits.
std::string rangeText(db::AttributeDef const& row);

// A value that fits its attribute. Nothing is written until `write`.
class Value {
public:
    // Throws a wrong call when the attribute cannot be given a value, or the text is none for it: another kind, a word
    // that the enumeration lacks, beyond the row's range. A compound takes the values of its parts, with commas.
    // `display`: numbers are in the display units of that scene; null: metres, radians, seconds.
    static Value parse(Tavo::XAttribute const& attribute, std::string const& text, Tavo::XScene* display);

    Value present() const;  // what the attribute holds now
    void write() const;     // the caller provides the block

private:
    using Content = std::variant<int, bool, double, Tavo::XVector3, std::wstring, std::vector<Value>>;

    static Value of(Tavo::XAttribute const& attribute);
    Value(Tavo::XAttribute const& attribute, Content content) : attribute_(attribute), content_(std::move(content)) {}

    Tavo::XAttribute attribute_;
    Content content_;
};

}  // namespace host
