#include "tavo/extension/lua/script_reference.h"
#include "qel/utils/text.h"
#include "tavo/extension/lua/script_events.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

constexpr char const* head = R"(# Scripting in Lua: reference

All that a script can call, table by table. This page is what `tavo run --reference` prints, from the rows in which the
functions are declared ([`tavo/extension/lua`](../tavo/extension/lua)). [The guide](lua.md) shows how scripts are
written and run.

## Conventions

- **Calls take a colon**, `joint:setName("hips")`: what a function is called on is its first argument. The functions of
  `app` take a dot as well.
- **Every argument may be left out**, or be nil. Then it is the default that stands behind it, or else an empty text, 0,
  false, the vector (0, 0, 0), the identity, no object. An argument of another kind is an error, which names function
  and argument.
- **Calls chain**: a function that has nothing to give gives what it was called on, `scene:clearSelection():selectAll()`.
- **Indices begin with 1**, those of Lua's tables as those of selected objects, children, keys and elements.
- **An object is a table, or a path** such as `"Scene|Hips|Spine"`: functions take either. What there is not is nil.
- **A vector is a table or three numbers**, a quaternion a table or four, a matrix a table or sixteen. A table has its
  numbers by name (`x`, `y`, `z`, `w`), of which some may be missing and are 0, or else by position. Matrices have them by
  position, row by row; places are rows, so that the last row is the translation, and `a:multiply(b)` lets a act first.
- **A drop-off** is the number that is its range, or a table with some of `range`, `mode`, `pinch` and `bubble`.
- **Units** are metres, kilograms, radians and seconds, whatever the scene shows.
- **A table names an object and does not hold it**: kept after the object was deleted, it is harmless. Its functions do
  nothing then, and `isValid` is false; an undo that brings the object back makes the table good again. Two tables of
  one object are equal (`==`).
- **Attributes are fields**: `joint.TranslationX:set(2)`, `joint.Colour.Red:get()`. They come when they are asked for;
  `pairs` shows them all, with the functions.
- **An object has the functions of all its types**: a joint those of Object, RenderObject, Transform and Joint.
)";

std::string plainKind(XScriptKind kind) {
    switch (kind) {
    case XScriptKind::Self: return "itself";
    case XScriptKind::Boolean: return "boolean";
    case XScriptKind::Integer: return "integer";
    case XScriptKind::Number: return "number";
    case XScriptKind::Text: return "text";
    case XScriptKind::Key: return "name or number";
    case XScriptKind::Vector: return "vector";
    case XScriptKind::Quaternion: return "quaternion";
    case XScriptKind::Matrix: return "matrix";
    case XScriptKind::Attribute: return "attribute";
    case XScriptKind::Keyframe: return "key";
    case XScriptKind::Scene: return "scene";
    case XScriptKind::Numbers: return "numbers";
    case XScriptKind::Integers: return "integers";
    case XScriptKind::Texts: return "texts";
    case XScriptKind::Objects: return "objects";
    case XScriptKind::Attributes: return "attributes";
    case XScriptKind::DropOff: return "drop-off";
    default: return {};
    }
}

std::string kindOf(XScriptType type) {
    return type.kind == XScriptKind::Object ? Qelutils::toUtf8(type.objectType) : plainKind(type.kind);
}

// A cell of a table.
std::string cell(std::string const& text) {
    std::string out;
    for (char c : text) {
        if (c == '|') out += '\\';
        out += c == '\n' ? ' ' : c;
    }
    return out;
}

std::string argumentText(XScriptArgument const& argument, XScriptType type) {
    std::string const kind = kindOf(type), otherwise = defaultOf(argument, type);
    bool const hasOwnDefault = argument.otherwise.index() != 0;
    return argument.name + (kind.empty() ? "" : ": " + kind) + (hasOwnDefault ? " = " + otherwise : "");
}

std::string resultText(XScriptSet const& set, XScriptType type) {
    if (type.kind == XScriptKind::Self && isApplicationSet(set)) return {};
    std::string const kind = kindOf(type);
    return kind.empty() ? "value" : kind;
}

std::string rowText(XScriptSet const& set, XScriptFunction const& function) {
    std::string arguments;
    for (std::size_t i = 0; i < function.Arguments().size(); ++i)
        arguments += (i ? ", " : "") + argumentText(function.Arguments()[i], function.ArgumentTypes()[i]);
    return "| `" + cell(function.Name() + ("(" + arguments + ")")) + "` | " + cell(function.Help()) + " | " +
           cell(resultText(set, function.Result())) + " |\n";
}

std::string sectionText(XScriptSet const& set) {
    std::string text = std::string("\n## ") + set.table + "\n\n" + set.help + "\n";
    if (!set.functions.empty()) text += "\n| function | does | gives |\n|---|---|---|\n";
    for (XScriptFunction const& function : set.functions) text += rowText(set, function);
    return text;
}

std::string contentsText() {
    std::string text = "\n## Contents\n\n";
    for (XScriptSet const* set : AllScriptSets()) {
        std::string const anchor = Qelutils::toUtf8(Qelutils::toLower(Qelutils::fromUtf8(set->table)));
        text += std::string("- [") + set->table + "](#" + anchor + "): " + set->help + "\n";
    }
    return text + "- [Events](#events): What scripts can listen to.\n";
}

std::string eventsText() {
    std::string text = R"(
## Events

`scene:addEventHandler(name, handler)` has the handler called when it has happened, with a new table: that of an object's
event has the object's `id`, for `scene:object(event.id)`; the others are empty.

| event | happens when |
|---|---|
)";
    for (XScriptEventRow const& event : ScriptEvents)
        text += std::string("| `") + event.name + "` | " + cell(event.help) + " |\n";
    return text;
}

}  // namespace

bool isApplicationSet(XScriptSet const& set) { return &set == &AppFunctions(); }

std::string defaultOf(XScriptArgument const& argument, XScriptType type) {
    if (bool const* value = std::get_if<bool>(&argument.otherwise)) return *value ? "true" : "false";
    if (double const* value = std::get_if<double>(&argument.otherwise)) return Qelutils::number(*value);
    if (char const* const* value = std::get_if<char const*>(&argument.otherwise))
        return '"' + std::string(*value) + '"';
    switch (type.kind) {
    case XScriptKind::Boolean: return "false";
    case XScriptKind::Integer:
    case XScriptKind::Number: return "0";
    case XScriptKind::Text: return "\"\"";
    default: return {};
    }
}

std::string ScriptReferencePage() {
    std::string text = head + contentsText();
    for (XScriptSet const* set : AllScriptSets()) text += sectionText(*set);
    return text + eventsText();
}

}  // namespace Tavo
