// What scripts can call, told from the rows of the sets: a page for people, and annotations by which editors complete
// and check scripts. Both are the same text whenever they are asked for.
#pragma once
#include "tavo/extension/lua/script_function.h"
#include <string>

namespace Tavo {

class XDatabase;

// Markdown: the conventions, a table of contents, and a section with all functions for each table.
std::string ScriptReferencePage();
// A LuaCATS file ("---@meta"). The classes are the object types that the document knows, each with the attributes that
// it adds to its base, and the values and tables that are no objects.
std::string ScriptAnnotations(XDatabase& scene);

// ---- what both say alike ----
bool isApplicationSet(XScriptSet const& set);                              // whose functions are called with a dot
std::string defaultOf(XScriptArgument const& argument, XScriptType type);  // in Lua; empty for nil

}  // namespace Tavo
