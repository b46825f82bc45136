// The values of attributes as scripts have them.
//
// | kind                                | in Lua                                                                     |
// |-------------------------------------|----------------------------------------------------------------------------|
// | integer, float, double              | a number                                                                   |
// | boolean                             | true or false; a number is taken too                                       |
// | string                              | a text                                                                     |
// | enumeration                         | its word; a number, from 0, is taken too, and given where there is no word |
// | vector, quaternion, matrix          | their tables; three or four numbers are taken too                          |
// | reference                           | the table of the object, or of the attribute; nil for none; a path is      |
// |                                     | taken too                                                                  |
// | array                               | the list of all values; with an index, which counts from 1, one of them;   |
// |                                     | nil for an index out of range. An empty reference in a list is false       |
// | composite, attribute array          | the list of the values of what is in it, for instance {r, g, b, a}         |
// | node, node container                | the object; the list of the objects                                        |
//
// Writing follows XAttribute: nothing happens where the object can't be edited, and where an array has no such place,
// except that place 1 of an empty array appends. A value of another kind, or a number that isn't finite, is an error
// that names function, argument and the attribute's path; then nothing was written. A missing value is the kind's empty
// one: 0, false, no text, no object.
#pragma once
#include "tavo/extension/lua/script_function.h"

namespace Tavo {

// What the rows `get`, `set`, `add` and `insert` do with the arguments of their call.
XScriptPushed getAttributeValue(XScriptCall& call, XAttribute const& attribute, int index);
void setAttributeValue(XScriptCall& call, XAttribute const& attribute);  // value, index; or a list: one write
void addAttributeValue(XScriptCall& call, XAttribute const& attribute);
void insertAttributeValue(XScriptCall& call, XAttribute const& attribute);  // value, index
void setAttributeSize(XScriptCall& call, XAttribute const& attribute, int count);

// From the indices of scripts, which count from 1: -1, which is nowhere, for all below.
inline int fromScriptIndex(int index) { return index > 0 ? index - 1 : -1; }
// Whether the script gave the argument with that number.
bool isArgumentGiven(XScriptCall const& call, int argument);

}  // namespace Tavo
