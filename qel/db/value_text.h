// Values of attributes as they stand in a file. What holds texts or references writes one element for each.
#pragma once
#include "qel/db/node.h"
#include "qel/db/xml_writer.h"

namespace db {

// "17" for a node, "17.Local[0].Path" for an attribute, empty for one that is gone.
std::wstring referenceTo(Attribute const* target);

void writeValue(XMLWriter& out, Attribute const& attribute);  // into the innermost element
// Puts the value in as it is, without record. False, and no change, when the text is none of that kind.
bool readValue(Attribute& attribute, std::string_view text);

constexpr bool holdsTexts(AttributeType t) { return t == AttributeType::StringArray; }
constexpr bool holdsReferences(AttributeType t) {
    return t == AttributeType::Pointer || t == AttributeType::PointerArray || t == AttributeType::NodeContainer;
}

}  // namespace db
