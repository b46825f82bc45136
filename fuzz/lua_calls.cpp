// Any bytes as a script of calls: each of a function that scripts have, on a table of any kind, with arguments of all
// kinds, results of earlier calls among them. Every script ends in time with a result or a message, and what it did to
// the document can be undone to the first byte.
#include "qel/db/saver_xml.h"
#include "qel/utils/text.h"
#include "tavo/extension/lua/script_sets.h"
#include "tavo/extension/lua/script_tables.h"
#include "tavo/tavo.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <lua.hpp>

namespace {

using namespace Tavo;

constexpr LuaPlus::LuaLimits limits{.bytes = 64u << 20, .seconds = 0.5};
constexpr int mostCalls = 60, mostArguments = 6;

void require(bool condition, std::string const& what, std::string const& script) {
    if (condition) return;
    std::fprintf(stderr, "%s\n%s\n", what.c_str(), script.c_str());
    std::abort();
}

// Zeroes once the bytes are used up.
class Bytes {
public:
    Bytes(std::uint8_t const* data, std::size_t size) : _at(data), _end(data + size) {}
    bool areLeft() const { return _at != _end; }
    std::size_t below(std::size_t count) { return (areLeft() ? *_at++ : 0u) % count; }
    template<std::size_t count> char const* oneOf(char const* const (&words)[count]) { return words[below(count)]; }

private:
    std::uint8_t const *_at, *_end;
};

// `v` holds what calls are made on, and their results. It begins with one of each kind, with the dead and the forged.
char const* const start = R"lua(
local scene = app.scene()
local joint, path = scene:createObject('Joint'), scene:createObject('Trajectory')
local handle, box = scene:createObject('IKHandle'), scene:createObject('Primitive')
local child, dead = joint:createObject('Joint'), scene:createObject('Joint')
joint:addCustomFloat('Load', 1)
joint.TranslationX:setKey(0, 0)
joint.TranslationX:setKey(1, 2)
local deadAttribute = dead.Visible
dead:delete()
local S = scene.__sceneID
v = {scene, joint, path, handle, box, child, dead, joint.TranslationX, joint.Colour, joint.Load, deadAttribute,
     joint.TranslationX:keyAtIndex(1) or {}, joint:translation(), joint:rotation(), joint:matrix(), {},
     {__sceneID = S}, {__sceneID = S, __objectID = -1}, {__sceneID = S, __objectID = 2 ^ 53},
     {__sceneID = S, __objectID = 0 / 0}, {__sceneID = S, __objectID = joint:id(), __objectSubID = 2147483647},
     {__sceneID = 5, __objectID = joint:id()}, {__sceneID = S, __objectID = math.maxinteger},
     {__sceneID = S, x = 1 / 0, y = 0 / 0, z = 'z'}, setmetatable({}, getmetatable(joint))}
handlers = {function() end, function() error('no') end, function() app.scene():createObject('Joint') end}
function call(f, ...)
    local result = table.pack(pcall(f, ...))
    for i = 2, math.min(result.n, 4) do
        if result[1] and type(result[i]) == 'table' then
            v[#v + 1] = result[i]
            if result[i][1] then v[#v + 1] = result[i][1] end
        end
    end
end
)lua";

char const* const numbers[] = {"0",
                               "1",
                               "2",
                               "3",
                               "-1",
                               "0.5",
                               "1.5",
                               "100",
                               "1e-30",
                               "1e9",
                               "1e38",
                               "1e300",
                               "1/0",
                               "-1/0",
                               "0/0",
                               "2147483647",
                               "-2147483648",
                               "math.maxinteger",
                               "math.mininteger"};
char const* const texts[] = {"''",
                             "'Joint'",
                             "'Trajectory'",
                             "'IKHandle'",
                             "'IKSolver'",
                             "'Scene'",
                             "'Scene|joint'",
                             "'Scene|*'",
                             "'*'",
                             "'Load'",
                             "'TranslationX'",
                             "'Undo'",
                             "'CreateJoint'",
                             "'\\255\\0'",
                             "'OnSceneChanged'",
                             "'OnObjectDeleted'",
                             "'Linear'",
                             "'a|b.c'",
                             "string.rep('x', 3000)"};
char const* const others[] = {"nil",
                              "true",
                              "false",
                              "{}",
                              "{1, 2, 3}",
                              "{1, 2, 3, 4}",
                              "{x = 1}",
                              "{{1, 2, 3}, {4}}",
                              "{range = 1, mode = 1}",
                              "{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}",
                              "{'Scene|joint'}",
                              "print",
                              "handlers[1]",
                              "handlers[2]",
                              "handlers[3]",
                              "coroutine.create(print)"};

std::string table(Bytes& bytes) { return "v[1 + " + std::to_string(bytes.below(255)) + " % #v]"; }

std::string argument(Bytes& bytes) {
    switch (bytes.below(6)) {
    case 0: return table(bytes);
    case 1: return "{" + table(bytes) + ", " + table(bytes) + "}";
    case 2: return bytes.oneOf(texts);
    case 3: return bytes.oneOf(others);
    default: return bytes.oneOf(numbers);
    }
}

// What empties the document and its history can't be undone; that has tests of its own.
bool isLeftOut(XScriptFunction const& row) { return !std::strcmp(row.Name(), "clear"); }

// What the functions of a set are for, at its place in `v`; the first one for sets that come later.
std::string usualSelf(XScriptSet const& set) {
    char const* const tables[] = {"Scene",     "Object",   "Trajectory", "IKHandle",   "RenderObject",
                                  "Transform", "",         "",           "",           "Attribute",
                                  "",          "Keyframe", "Vector3",    "Quaternion", "Matrix"};
    std::size_t place = 0;
    for (std::size_t i = 0; i < std::size(tables); ++i)
        if (!std::strcmp(tables[i], set.table)) place = i;
    return "v[" + std::to_string(!std::strcmp(set.table, "Joint") ? 2 : place + 1) + "]";
}

std::string usualArgument(XScriptType const& type, Bytes& bytes) {
    switch (type.kind) {
    case XScriptKind::Integer:
    case XScriptKind::Number: return bytes.oneOf(numbers);
    case XScriptKind::Text:
    case XScriptKind::Key: return bytes.oneOf(texts);
    case XScriptKind::Vector: return "{0.5, 1, -2}";
    case XScriptKind::Object: return "v[" + std::to_string(2 + bytes.below(5)) + "]";
    default: return argument(bytes);
    }
}

// Every other one as it is meant; anything in the others.
std::string call(Bytes& bytes) {
    XScriptSet const& set = *AllScriptSets()[bytes.below(AllScriptSets().size())];
    XScriptFunction const& row = set.functions[bytes.below(set.functions.size())];
    if (isLeftOut(row) && &set == &SceneFunctions()) return {};
    bool const isUsual = bytes.below(2) == 1;
    std::string text = std::string("call(F.") + set.table + "['" + row.Name() + "']";
    if (&set != &AppFunctions()) text += ", " + (isUsual ? usualSelf(set) : table(bytes));
    std::size_t const count = bytes.below(isUsual ? row.Arguments().size() + 1 : mostArguments);
    for (std::size_t i = 0; i < count; ++i)
        text += ", " + (isUsual ? usualArgument(row.ArgumentTypes()[i], bytes) : argument(bytes));
    return text + ")\n";
}

std::string script(Bytes& bytes) {
    std::string text;
    for (int i = 0; i < mostCalls && bytes.areLeft(); ++i) text += call(bytes);
    return text;
}

class Application {
public:
    Application() : owner(LuaPlus::LuaLibraries::Sandboxed) {
        application().AddSceneObserver(&types).AddSettingsObserver(&types);
        application().Startup(&owner, nullptr, L"");
        application().Settings().New();
        scene().New();
        giveFunctions();
        owner.SetLimits(limits);
    }
    ~Application() { application().Shutdown(); }
    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;

    static XApplication& application() { return XApplication::Instance(); }
    static XScene& scene() { return application().ActiveScene(); }
    static int run(std::string const& text) { return lua().RunScript(Qelutils::fromUtf8(text)); }
    static std::string const& error() { return lua().LastError(); }
    static std::string bytes() {
        db::StringOutputStream stream;
        db::SaverXML(stream).save(*scene().SceneGraph());
        return stream.text();
    }
    static void undoAll() {
        scene().Stop();
        scene().CommitTransient();
        while (scene().SceneGraph()->getUndoCount() > 0) scene().Undo();
    }

private:
    static XLuaScript& lua() { return *application().LuaScript(); }
    // All functions of all sets, in the global `F`.
    void giveFunctions() {
        lua_State* const state = owner->GetCState();
        lua_newtable(state);
        for (XScriptSet const* set : AllScriptSets()) {
            lua_newtable(state);
            lua().Tables().RegisterFunctions(state, *set);
            lua_setfield(state, -2, set->table);
        }
        lua_setglobal(state, "F");
    }

    LuaPlus::LuaStateOwner owner;
    XCoreTypes types;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Application application;
    Bytes bytes(data, size);
    std::string const text = script(bytes), before = application.bytes();
    require(application.run(start) == LUA_OK, application.error(), start);
    int const status = application.run(text);
    require((status == LUA_OK) == application.error().empty(), "a result without a message", text);
    require(!application.scene().SceneGraph()->isInChangeBlock() || application.scene().IsPlaying() ||
                application.scene().IsSimulating(),
            "a block is left open", text);
    application.undoAll();
    require(application.bytes() == before, "not undone to the first byte", text);
    return 0;
}
