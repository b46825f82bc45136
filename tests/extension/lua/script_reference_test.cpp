#include "tavo/extension/lua/script_events.h"
#include "tavo/extension/lua/script_reference.h"
#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/value_fixture.h"
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace Tavo {
namespace {

using testing::HasSubstr;
using testing::Not;

// What the annotations say, as an editor would read them.
struct Annotated {
    std::string base;
    std::set<std::string> fields, functions;
};
using Classes = std::map<std::string, Annotated>;

Classes parse(std::string const& text) {
    static std::regex const classLine(R"(---@class (\w+)(?: : (\w+))?)"), fieldLine(R"(---@field (\w+) .*)"),
        functionLine(R"(function (\w+)[.:](\w+)\(.*\) end)");
    Classes classes;
    std::istringstream lines(text);
    std::string line, current;
    for (std::smatch match; std::getline(lines, line);) {
        if (std::regex_match(line, match, classLine)) classes[current = match[1]].base = match[2];
        if (std::regex_match(line, match, fieldLine)) classes[current].fields.insert(match[1]);
        if (std::regex_match(line, match, functionLine)) classes[match[1]].functions.insert(match[2]);
    }
    return classes;
}

// With those of its bases.
std::set<std::string> membersOf(Classes const& classes, std::string const& name) {
    std::set<std::string> members;
    for (auto at = classes.find(name); at != classes.end(); at = classes.find(at->second.base)) {
        members.insert(at->second.fields.begin(), at->second.fields.end());
        members.insert(at->second.functions.begin(), at->second.functions.end());
    }
    return members;
}

class ScriptReference : public ScriptValues {
protected:
    static Classes annotated() { return parse(ScriptAnnotations(scene())); }

    // Everything that a script finds in the table, but what scripts have no business with.
    std::set<std::string> keysOf(std::string const& expression) {
        std::istringstream words(
            eval("local found, of = {}, " + expression +
                 "\nif not of then return '-' end\n"
                 "for key in pairs(of) do if type(key) == 'string' and key:sub(1, 2) ~= '__' then found[#found + 1] = "
                 "key end end\n"
                 "local index = (getmetatable(of) or {}).__index\n"
                 "if type(index) == 'table' then for key in pairs(index) do found[#found + 1] = key end end\n"
                 "return table.concat(found, ' ')"));
        std::set<std::string> keys;
        std::regex const reserved("Reserved[0-9]+");  // what fills the gaps of a numbering
        for (std::string key; words >> key;)
            if (!std::regex_match(key, reserved)) keys.insert(key);
        return keys;
    }
    std::string firstMissing(std::string const& expression, std::set<std::string> const& members) {
        std::string names;
        for (std::string const& member : members) names += "'" + member + "', ";
        return eval("local of = " + expression + "\nfor _, name in ipairs{" + names +
                    "} do if of[name] == nil then return name end end return 'none'");
    }
};

TEST_F(ScriptReference, ThePageIsTheSameEachTime) { EXPECT_EQ(ScriptReferencePage(), ScriptReferencePage()); }

TEST_F(ScriptReference, TheAnnotationsAreTheSameEachTimeAndInEachScene) {
    std::string const before = ScriptAnnotations(scene());
    scene().CreateObject(XJoint::TypeID).AddFloatAttribute(L"Custom");
    EXPECT_EQ(before, ScriptAnnotations(scene()));
    application().AddScene();
    EXPECT_EQ(before, ScriptAnnotations(scene()));
}

TEST_F(ScriptReference, EveryFunctionStandsInBoth) {
    std::string const page = ScriptReferencePage();
    Classes const classes = annotated();
    for (XScriptSet const* set : AllScriptSets()) {
        EXPECT_THAT(page, HasSubstr("\n## " + std::string(set->table) + "\n\n" + set->help + "\n"));
        ASSERT_TRUE(classes.contains(set->table)) << set->table;
        EXPECT_EQ(set->functions.size(), classes.at(set->table).functions.size()) << set->table;
        for (XScriptFunction const& function : set->functions) {
            EXPECT_THAT(page, HasSubstr("| `" + std::string(function.Name()) + "("));
            EXPECT_TRUE(classes.at(set->table).functions.contains(function.Name())) << set->table << function.Name();
        }
    }
}

TEST_F(ScriptReference, EveryEventStandsInBoth) {
    std::string const page = ScriptReferencePage(), annotations = ScriptAnnotations(scene());
    for (XScriptEventRow const& event : ScriptEvents) {
        EXPECT_THAT(page, HasSubstr("| `" + std::string(event.name) + "` | " + event.help + " |\n"));
        EXPECT_THAT(annotations, HasSubstr("---| \"" + std::string(event.name) + "\" # " + event.help + "\n"));
    }
    EXPECT_THAT(annotations, HasSubstr("---@alias ObjectEventHandler fun(event: ObjectEvent)\n"));
}

TEST_F(ScriptReference, ThePageTellsKindsDefaultsAndResults) {
    std::string const page = ScriptReferencePage();
    EXPECT_THAT(page,
                HasSubstr("| `isEqual(other: vector, tolerance: number = 1e-06)` | Whether no number differs from "
                          "the other's by more than the tolerance. | boolean |\n"));
    EXPECT_THAT(page, HasSubstr("| `normalize()` | Gives it the length 1; zero becomes (1, 0, 0). | itself |\n"));
    EXPECT_THAT(page,
                HasSubstr("| `resetActiveCommand()` | Gives the active command's parameters their defaults. |  |\n"));
    EXPECT_THAT(page, HasSubstr("- [Vector3](#vector3): "));
}

TEST_F(ScriptReference, AnnotationsTellKindsDefaultsResultsAndNumbersInPlaceOfVectors) {
    EXPECT_THAT(ScriptAnnotations(scene()),
                HasSubstr("---Whether no number differs from the other's by more than the tolerance.\n"
                          "---@param other? VectorLike\n"
                          "---@param tolerance? number default 1e-06\n"
                          "---@return boolean\n"
                          "---@overload fun(self: Vector3, otherX: number, otherY: number, otherZ: number, tolerance?: "
                          "number): boolean\n"
                          "function Vector3:isEqual(other, tolerance) end\n"));
}

TEST_F(ScriptReference, AWordOfATypeTellsEditorsWhatComes) {
    EXPECT_THAT(ScriptAnnotations(scene()), HasSubstr("---@generic T : Object\n---@param type? `T` default \"\"\n"));
    EXPECT_THAT(ScriptAnnotations(scene()), HasSubstr("---@return T?\n"));
}

TEST_F(ScriptReference, HandlersAreAnnotatedByTheKindOfEvent) {
    std::string const text = ScriptAnnotations(scene());
    std::size_t functions = 0, overloads = 0;
    for (std::string const& name : namesOf(SceneFunctions())) functions += name.ends_with("EventHandler");
    std::string const wanted = "(self: Scene, event: ObjectEventName, handler: ObjectEventHandler): boolean\n";
    for (auto at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) ++overloads;
    EXPECT_EQ(functions, overloads);
}

TEST_F(ScriptReference, AttributesAreFieldsOfTheTypeThatAddsThem) {
    Classes const classes = annotated();
    EXPECT_TRUE(classes.at("Transform").fields.contains("TranslationX"));
    EXPECT_FALSE(classes.at("Joint").fields.contains("TranslationX"));
    EXPECT_TRUE(classes.at("Object").fields.contains("Name"));
    EXPECT_FALSE(classes.at("Null").fields.contains("Name"));
    EXPECT_EQ("Transform", classes.at("Joint").base);
    EXPECT_EQ("RenderObject", classes.at("Transform").base);
    EXPECT_TRUE(classes.at("Camera").functions.empty());
    EXPECT_FALSE(classes.at("Camera").fields.empty());
    EXPECT_THAT(ScriptAnnotations(scene()),
                HasSubstr("---@field Colour Attribute|{Red: Attribute, Green: Attribute, Blue: Attribute, "
                          "Alpha: Attribute} parts. Red, green, blue, alpha.\n"));
    EXPECT_THAT(ScriptAnnotations(scene()), Not(HasSubstr("Reserved")));
}

TEST_F(ScriptReference, EveryBaseIsAClass) {
    Classes const classes = annotated();
    for (auto const& [name, annotation] : classes)
        EXPECT_TRUE(annotation.base.empty() || classes.contains(annotation.base)) << name;
}

TEST_F(ScriptReference, TheAnnotationsAreLua) {
    std::string const text = ScriptAnnotations(scene());
    lua_State* const state = lua().State()->GetCState();
    EXPECT_EQ(LUA_OK, luaL_loadbuffer(state, text.data(), text.size(), "annotations")) << lua_tostring(state, -1);
    lua_pop(state, 1);
}

// Types that are only bases make no objects; that they are few says that the others do.
TEST_F(ScriptReference, WhatAnObjectHasIsAnnotatedAndWhatIsAnnotatedItHas) {
    Classes const classes = annotated();
    int made = 0;
    for (auto const& [name, annotation] : classes) {
        if (scene().ObjectDefinition(Qelutils::fromUtf8(name)) == nullptr || name == "Keyframe") continue;
        std::string const object = "scene:createObject('" + name + "')";
        std::set<std::string> const found = keysOf(object), members = membersOf(classes, name);
        if (found.contains("-")) continue;
        ++made;
        EXPECT_EQ(members, found) << name;
        EXPECT_EQ("none", firstMissing(object, members)) << name;
    }
    EXPECT_GE(made, 30);
}

TEST_F(ScriptReference, WhatTheOtherTablesHaveIsAnnotatedAndWhatIsAnnotatedTheyHave) {
    Classes const classes = annotated();
    for (auto const& [name, expression] : {std::pair<std::string, std::string>{"app", "app"},
                                           {"Scene", "scene"},
                                           {"Attribute", "scene:createObject('Joint').TranslationX"},
                                           {"Vector3", "sampleVector"},
                                           {"Quaternion", "sampleQuaternion"},
                                           {"Matrix", "sampleMatrix"}}) {
        EXPECT_EQ(membersOf(classes, name), keysOf(expression)) << name;
        EXPECT_EQ("none", firstMissing(expression, membersOf(classes, name))) << name;
    }
}

}  // namespace
}  // namespace Tavo
