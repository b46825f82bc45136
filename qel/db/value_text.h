// Values of attributes as they stand in a file. What holds texts or references writes one element for each.
#pragma once
#include "qel/db/node.h"
#include "qel/db/xml_writer.h"

namespace db {

// "17" for a node, "17.Local[0].Path" for an attribute; empty for what no file can name: one that is gone, is a
// connection's, or stands in another database than `database`.
std::wstring referenceTo(Attribute const* target, Database const& database);

// As a new attribute of its row is: it need not be written. Floats count bit for bit.
bool isInitialValue(Attribute const& attribute);

void writeValue(XMLWriter& out, Attribute const& attribute);  // into the innermost element
// Puts the value in as it is, without record. False, and no change, when the text is none of that kind.
bool readValue(Attribute& attribute, std::string_view text);

constexpr bool holdsTexts(AttributeType t) { return t == AttributeType::StringArray; }
constexpr bool holdsReferences(AttributeType t) {
    return t == AttributeType::Pointer || t == AttributeType::PointerArray || t == AttributeType::NodeContainer;
}

}  // namespace db
