#include "qel/db/node.h"
#include "qel/sg/units.h"
#include "qel/utils/text.h"
#include "tavo/extension/lua/script_events.h"
#include "tavo/extension/lua/script_reference.h"
#include "tavo/extension/lua/script_sets.h"
#include "tavo/objects/database.h"
#include "tavo/objects/object_def.h"
#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <set>

namespace Tavo {
namespace {

constexpr char const* head = R"(---@meta

-- What scripts can use, for editors that know LuaCATS annotations. This is what `tavo run --annotations` prints; it is
-- never run. Every argument may be left out.

---@alias VectorLike Vector3|Quaternion|number[]|{x?: number, y?: number, z?: number}
---@alias QuaternionLike Quaternion|Vector3|number[]|{x?: number, y?: number, z?: number, w?: number}
---@alias MatrixLike Matrix|number[]
---@alias DropOffLike number|{range?: number, mode?: string|integer, pinch?: number, bubble?: number}

)";

// ---- kinds ----

struct KindWords {
    XScriptKind kind;
    char const* taken;
    char const* given;
};
// What is not told here, such as what depends on the arguments, is any.
constexpr KindWords kindWords[] = {
    {XScriptKind::Boolean, "boolean", "boolean"},
    {XScriptKind::Integer, "integer", "integer"},
    {XScriptKind::Number, "number", "number"},
    {XScriptKind::Text, "string", "string"},
    {XScriptKind::Key, "string|integer", "string|integer"},
    {XScriptKind::Vector, "VectorLike", "Vector3"},
    {XScriptKind::Quaternion, "QuaternionLike", "Quaternion"},
    {XScriptKind::Matrix, "MatrixLike", "Matrix"},
    {XScriptKind::Attribute, "Attribute|string", "Attribute"},
    {XScriptKind::Keyframe, "Keyframe", "Keyframe?"},
    {XScriptKind::Scene, "Scene", "Scene"},
    {XScriptKind::Numbers, "number[]|number", "number[]"},
    {XScriptKind::Integers, "integer[]|integer", "integer[]"},
    {XScriptKind::Texts, "string[]|string", "string[]"},
    {XScriptKind::Objects, "(Object|string)[]|Object|string", "Object[]"},
    {XScriptKind::Attributes, "Attribute[]", "Attribute[]"},
    {XScriptKind::DropOff, "DropOffLike", "number"},
};

KindWords const* wordsOf(XScriptKind kind) {
    auto const found = std::find_if(std::begin(kindWords), std::end(kindWords),
                                    [kind](KindWords const& words) { return words.kind == kind; });
    return found == std::end(kindWords) ? nullptr : found;
}

std::string takenType(XScriptType type) {
    if (type.kind == XScriptKind::Object) return Qelutils::toUtf8(type.objectType) + "|string";
    KindWords const* const words = wordsOf(type.kind);
    return words ? words->taken : "any";
}

std::string givenType(XScriptSet const& set, XScriptType type) {
    if (type.kind == XScriptKind::Self) return isApplicationSet(set) ? "" : set.table;
    if (type.kind == XScriptKind::Object) return Qelutils::toUtf8(type.objectType) + "?";
    KindWords const* const words = wordsOf(type.kind);
    return words ? words->given : "any";
}

// ---- names and comments ----

std::string nameOf(char const* argument) {
    constexpr std::array reserved{"and",      "break",  "do",   "else", "elseif", "end",  "false", "for",
                                  "function", "goto",   "if",   "in",   "local",  "nil",  "not",   "or",
                                  "repeat",   "return", "then", "true", "until",  "while"};
    std::string const name = argument;
    return std::find(reserved.begin(), reserved.end(), name) == reserved.end() ? name : name + "_";
}

bool isIdentifier(std::string const& name) {
    auto const isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    auto const fits = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
    return !name.empty() && isLetter(name.front()) && std::all_of(name.begin(), name.end(), fits);
}

std::string keyOf(std::string const& name) { return isIdentifier(name) ? name : "[\"" + name + "\"]"; }

std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// ---- functions ----

constexpr std::string_view typeArgument = "type";

int countOfNumbers(XScriptKind kind) {
    return kind == XScriptKind::Vector ? 3 : kind == XScriptKind::Quaternion ? 4 : 0;
}

// The same call with numbers in place of the vectors; empty where there are none.
std::string overloadText(XScriptSet const& set, XScriptFunction const& function) {
    std::string text = std::string("---@overload fun(self: ") + set.table;
    bool hasNumbers = false;
    for (std::size_t i = 0; i < function.Arguments().size(); ++i) {
        XScriptType const type = function.ArgumentTypes()[i];
        std::string const name = nameOf(function.Arguments()[i].name);
        for (int n = 0; n < countOfNumbers(type.kind); ++n) text += ", " + name + "XYZW"[n] + ": number";
        if (countOfNumbers(type.kind) == 0) text += ", " + name + "?: " + takenType(type);
        hasNumbers |= countOfNumbers(type.kind) > 0;
    }
    std::string const given = givenType(set, function.Result());
    return hasNumbers && !isApplicationSet(set) ? text + ")" + (given.empty() ? "" : ": " + given) + "\n" : "";
}

// An editor that sees a word of a type learns by it what comes: an argument of that name is one.
bool isOfGivenType(XScriptFunction const& function) {
    XScriptKind const result = function.Result().kind;
    auto const& arguments = function.Arguments();
    return (result == XScriptKind::Object || result == XScriptKind::Objects) &&
           std::any_of(arguments.begin(), arguments.end(), [](auto const& a) { return a.name == typeArgument; });
}

std::string resultText(XScriptSet const& set, XScriptFunction const& function) {
    if (isOfGivenType(function)) return function.Result().kind == XScriptKind::Objects ? "T[]" : "T?";
    return givenType(set, function.Result());
}

std::string parameterText(XScriptFunction const& function, std::size_t i) {
    XScriptArgument const& argument = function.Arguments()[i];
    XScriptType const type = function.ArgumentTypes()[i];
    bool const isType = isOfGivenType(function) && argument.name == typeArgument;
    std::string const otherwise = defaultOf(argument, type);
    return "---@param " + nameOf(argument.name) + "? " + (isType ? "`T`" : takenType(type)) +
           (otherwise.empty() ? "" : " default " + otherwise) + "\n";
}

std::string handlersText(XScriptSet const& set, XScriptFunction const& function) {
    bool const isOfHandlers = &set == &SceneFunctions() && std::string_view(function.Name()).ends_with("EventHandler");
    return isOfHandlers
               ? "---@overload fun(self: Scene, event: SceneEventName, handler: SceneEventHandler): boolean\n"
                 "---@overload fun(self: Scene, event: ObjectEventName, handler: ObjectEventHandler): boolean\n"
               : "";
}

std::string functionText(XScriptSet const& set, XScriptFunction const& function) {
    std::string text = "---" + oneLine(function.Help()) + "\n", names;
    if (isOfGivenType(function)) text += "---@generic T : Object\n";
    for (std::size_t i = 0; i < function.Arguments().size(); ++i) {
        text += parameterText(function, i);
        names += (i ? ", " : "") + nameOf(function.Arguments()[i].name);
    }
    std::string const given = resultText(set, function);
    if (!given.empty()) text += "---@return " + given + "\n";
    text += overloadText(set, function) + handlersText(set, function);
    char const* const separator = isApplicationSet(set) ? "." : ":";
    return text + "function " + set.table + separator + function.Name() + "(" + names + ") end\n\n";
}

std::string functionsText(XScriptSet const& set) {
    std::string text = std::string(isApplicationSet(set) ? "" : "local ") + set.table + " = {}\n\n";
    for (XScriptFunction const& function : set.functions) text += functionText(set, function);
    return text;
}

std::string componentsText(XScriptSet const& set) {
    std::string text;
    if (&set == &Vector3Functions() || &set == &QuaternionFunctions())
        for (char const* name : {"x", "y", "z"}) text += std::string("---@field ") + name + " number\n";
    if (&set == &QuaternionFunctions()) text += "---@field w number\n";
    if (!text.empty() || &set == &MatrixFunctions()) text += "---@field [integer] number\n";
    return text;
}

std::string tableText(XScriptSet const& set) {
    std::string text = "---" + oneLine(set.help) + "\n---@class " + set.table + "\n" + componentsText(set);
    return text + functionsText(set);
}

// ---- attributes ----

std::string kindOf(db::AttributeDef const& def) {
    using enum db::AttributeType;
    constexpr std::pair<db::AttributeType, char const*> words[] = {
        {Integer, "integer"},
        {Boolean, "boolean"},
        {Enumeration, "word"},
        {Float, "number"},
        {Double, "number"},
        {String, "text"},
        {Vector3, "vector"},
        {Matrix, "matrix"},
        {Quaternion, "quaternion"},
        {Pointer, "reference"},
        {IntegerArray, "integers"},
        {BooleanArray, "booleans"},
        {EnumerationArray, "words"},
        {FloatArray, "numbers"},
        {DoubleArray, "numbers"},
        {StringArray, "texts"},
        {Vector3Array, "vectors"},
        {MatrixArray, "matrices"},
        {PointerArray, "references"},
        {QuaternionArray, "quaternions"},
        {AttributeArray, "attributes"},
        {Compound, "parts"},
        {NodeContainer, "objects"},
    };
    for (auto const& [type, word] : words)
        if (type == def.type) return word;
    return "value";
}

std::string unitOf(db::AttributeDef const& def) {
    constexpr std::pair<int, char const*> words[] = {{sg::Linear, "m"},    {sg::Velocity, "m/s"},
                                                     {sg::Angular, "rad"}, {sg::AngularVelocity, "rad/s"},
                                                     {sg::Time, "s"},      {sg::Mass, "kg"}};
    for (auto const& [unit, word] : words)
        if (unit == def.getUnits()) return std::string(" in ") + word;
    return {};
}

std::string describe(db::AttributeDef const& def) {
    std::string text = kindOf(def) + unitOf(def), separator = ": ";
    for (wchar_t const* word : def.getStrings()) {
        text += separator + Qelutils::toUtf8(word);
        separator = ", ";
    }
    std::string const documentation = Qelutils::toUtf8(def.documentation);
    return oneLine(documentation.empty() ? text : text + ". " + documentation);
}

// That of a compound has its parts as fields.
std::string typeOf(db::AttributeDef const& def) {
    if (def.type != db::AttributeType::Compound) return "Attribute";
    std::string parts;
    for (db::AttributeDef const& child : def.children)
        parts += (parts.empty() ? "" : ", ") + keyOf(Qelutils::toUtf8(child.name)) + ": " + typeOf(child);
    return "Attribute|{" + parts + "}";
}

// Those that `inherited` does not have yet, and adds to it.
std::string fieldsText(db::NodeDef const* node, std::set<std::wstring_view>& inherited) {
    std::string text;
    for (int i = 0; node && i < node->layout().topLevelCount; ++i) {
        db::AttributeDef const& def = *node->layout().rows[std::size_t(i)].def;
        if (def.hasFlag(db::FlagReserved) || !inherited.insert(def.name).second) continue;
        text += "---@field " + keyOf(Qelutils::toUtf8(def.name)) + " " + typeOf(def) + " " + describe(def) + "\n";
    }
    return text;
}

// ---- object types ----

struct ObjectType {
    std::wstring base;
    db::NodeDef const* node = nullptr;  // null of a type that is only a base
};
using ObjectTypes = std::map<std::wstring, ObjectType>;

db::NodeDef const* nodeDef(std::wstring const& classID) {
    return db::Registry::getInstance().getNodeDef(L"sg", classID);
}

// A key is an object to C++, and a table of its own kind to scripts.
ObjectTypes typesOf(XDatabase& scene) {
    ObjectTypes types;
    Qelutils::Vector<XObjectDef*> definitions;
    scene.ObjectDefinitions(definitions);
    for (XObjectDef const* definition : definitions) {
        if (definition->IsTranslator() || definition->ObjectType() == XKeyframe::TypeID) continue;
        std::wstring base;
        for (std::wstring const& word : definition->ObjectTypes()) {
            types[word].base = base;
            base = word;
        }
        types[base].node = nodeDef(definition->NodeType());
        types[definition->ObjectTypes().front()].node = nodeDef(definition->NodeTypes().front());
    }
    return types;
}

std::set<std::wstring_view> attributesOfBases(ObjectTypes const& types, ObjectType const& type) {
    std::set<std::wstring_view> names;
    for (auto base = types.find(type.base); base != types.end(); base = types.find(base->second.base))
        fieldsText(base->second.node, names);
    return names;
}

std::string typeText(ObjectTypes const& types, std::wstring const& word) {
    ObjectType const& type = types.at(word);
    XScriptSet const* const set = FunctionsOfType(word);
    std::string text = set ? "---" + oneLine(set->help) + "\n" : "";
    text +=
        "---@class " + Qelutils::toUtf8(word) + (type.base.empty() ? "" : " : " + Qelutils::toUtf8(type.base)) + "\n";
    std::set<std::wstring_view> inherited = attributesOfBases(types, type);
    text += fieldsText(type.node, inherited);
    return text + (set ? functionsText(*set) : "\n");
}

// ---- events ----

std::string eventsText() {
    std::string text = "---What a handler of a scene's event gets: nothing.\n---@class SceneEvent\n\n"
                       "---What a handler of an object's event gets.\n---@class ObjectEvent\n"
                       "---@field id integer for scene:object\n\n"
                       "---@alias SceneEventHandler fun(event: SceneEvent)\n"
                       "---@alias ObjectEventHandler fun(event: ObjectEvent)\n";
    for (int i = 0; i < int(std::size(ScriptEvents)); ++i) {
        if (i == 0) text += "---@alias SceneEventName\n";
        if (i == OnObjectCreated) text += "---@alias ObjectEventName\n";
        text += std::string("---| \"") + ScriptEvents[i].name + "\" # " + oneLine(ScriptEvents[i].help) + "\n";
    }
    return text + "\n";
}

}  // namespace

std::string ScriptAnnotations(XDatabase& scene) {
    ObjectTypes const types = typesOf(scene);
    std::string text = head + eventsText();
    for (XScriptSet const* set : AllScriptSets())
        if (!types.contains(Qelutils::fromUtf8(set->table))) text += tableText(*set);
    for (auto const& [word, type] : types) text += typeText(types, word);
    return text;
}

}  // namespace Tavo
