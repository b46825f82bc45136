#include "hosts/tavo/lua_words.h"

#include "tavo/app/script_base.h"
#include "tavo/extension/lua/script_sets.h"

#include <algorithm>
#include <lua.hpp>
#include <set>

namespace host {
namespace {

using namespace Tavo;
using Names = std::set<std::string>;

constexpr int deepest = 8;  // of tables that look into others

// Empty when the chunk is right.
std::string syntaxError(lua_State* state, std::string const& chunk) {
    int const status = luaL_loadbufferx(state, chunk.data(), chunk.size(), "=input", "t");
    std::string const error = status == LUA_OK ? "" : lua_tostring(state, -1);
    lua_pop(state, 1);
    return error;
}

// ---- words ----

bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t startOfWord(std::string const& line, std::size_t end) {
    while (end > 0 && isWordCharacter(line[end - 1])) --end;
    return end;
}

// Where the last word stands: "scene.a:b" are the names scene and a, a colon, and the beginning b.
struct Place {
    std::vector<std::string> names;
    char separator = '\0';
    std::size_t start = 0;
    bool isKnown = true;  // before the separator are names alone
};

Place placeOf(std::string const& line) {
    Place place;
    place.start = startOfWord(line, line.size());
    std::size_t at = place.start;
    auto const isSeparator = [&](std::size_t end) {
        if (end == 0) return false;
        bool const isDot = line[end - 1] == '.' && !(end > 1 && line[end - 2] == '.');  // two are an operator
        return isDot || line[end - 1] == ':';
    };
    if (!isSeparator(at)) return place;
    place.separator = line[at - 1];
    do {
        std::size_t const end = at - 1;
        at = startOfWord(line, end);
        place.isKnown &= at < end && !isDigit(line[at]);
        place.names.insert(place.names.begin(), line.substr(at, end - at));
    } while (place.isKnown && isSeparator(at) && line[at - 1] == '.');
    place.isKnown &= !isSeparator(at);
    return place;
}

bool isInText(std::string const& line) {
    char quote = '\0';
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (quote && line[i] == '\\')
            ++i;
        else if (quote ? line[i] == quote : line[i] == '"' || line[i] == '\'')
            quote = quote ? '\0' : line[i];
    }
    return quote != '\0';
}

// ---- values. The tables of the scene find their fields by functions of the system, which may be called ----

bool isOfScene(lua_State* state, int index) {
    if (!lua_istable(state, index)) return false;
    index = lua_absindex(state, index);
    lua_pushstring(state, XScriptBase::SceneID);
    bool const is = lua_rawget(state, index) != LUA_TNIL;
    lua_pop(state, 1);
    return is;
}

// What is on top of the stack gives its place to its field.
void replaceByField(lua_State* state, std::string const& name, int depth = 0) {
    luaL_checkstack(state, 4, nullptr);
    bool isFound = false;
    if (lua_istable(state, -1)) {
        lua_pushlstring(state, name.data(), name.size());
        isFound = lua_rawget(state, -2) != LUA_TNIL;
        if (!isFound) lua_pop(state, 1);
    }
    if (!isFound && luaL_getmetafield(state, -1, "__index") != LUA_TNIL) {
        isFound = lua_istable(state, -1) && depth < deepest;
        if (isFound) {
            replaceByField(state, name, depth + 1);
        } else {
            bool const mayCall = lua_iscfunction(state, -1) && isOfScene(state, -2);
            lua_pop(state, 1);
            if (mayCall) lua_getfield(state, -1, name.c_str());
            isFound = mayCall;
        }
    }
    if (!isFound) lua_pushnil(state);
    lua_replace(state, -2);
}

// So that all fields are in the table.
void fill(lua_State* state) {
    if (!isOfScene(state, -1) || luaL_getmetafield(state, -1, "__pairs") == LUA_TNIL) return;
    if (lua_iscfunction(state, -1)) {
        lua_pushvalue(state, -2);
        lua_call(state, 1, 0);
    } else {
        lua_pop(state, 1);
    }
}

bool isProperName(std::string const& name) {
    return !name.empty() && !isDigit(name[0]) && std::all_of(name.begin(), name.end(), isWordCharacter) &&
           !name.starts_with("__");
}

// Of the table on top of the stack; those of the scene have their functions after a colon alone.
void addFields(lua_State* state, char separator, Names& names) {
    bool const isScenes = isOfScene(state, -1);
    for (lua_pushnil(state); lua_next(state, -2); lua_pop(state, 1)) {
        bool const isFunction = lua_isfunction(state, -1);
        bool const isWanted = separator == ':' ? isFunction : !(isScenes && isFunction);
        if (!isWanted || lua_type(state, -2) != LUA_TSTRING) continue;
        if (std::string const name = lua_tostring(state, -2); isProperName(name)) names.insert(name);
    }
}

// Of any value, and of the tables that it looks into.
void addNames(lua_State* state, char separator, Names& names, int depth = 0) {
    luaL_checkstack(state, 8, nullptr);
    fill(state);
    if (lua_istable(state, -1)) addFields(state, separator, names);
    bool const isScenes = isOfScene(state, -1);
    if (depth == deepest || luaL_getmetafield(state, -1, "__index") == LUA_TNIL) return;
    if (lua_istable(state, -1) && (separator == ':' || !isScenes)) addNames(state, separator, names, depth + 1);
    lua_pop(state, 1);
}

void addKeywords(Names& names) {
    names.insert({"and", "break", "do",  "else", "elseif", "end",    "false",  "for",  "function", "goto",  "if",
                  "in",  "local", "nil", "not",  "or",     "repeat", "return", "then", "true",     "until", "while"});
}

Names rowNames() {
    Names names;
    for (XScriptSet const* set : AllScriptSets())
        for (XScriptFunction const& function : set->functions) names.insert(function.Name());
    return names;
}

Names namesAt(lua_State* state, Place const& place) {
    if (!place.isKnown) return place.separator == ':' ? rowNames() : Names();
    Names names;
    lua_pushglobaltable(state);
    for (std::string const& name : place.names) replaceByField(state, name);
    addNames(state, place.separator, names);
    lua_pop(state, 1);
    if (!place.separator) addKeywords(names);
    return names;
}

// ---- how values look ----

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '\n')
            out += "\\n";
        else if (c == '"' || c == '\\')
            out += {'\\', c};
        else
            out += c;
    }
    return out + '"';
}

bool hasMetafield(lua_State* state, int index, char const* name) {
    bool const has = luaL_getmetafield(state, index, name) != LUA_TNIL;
    if (has) lua_pop(state, 1);
    return has;
}

// Without the address behind the kind's name.
std::string ownText(lua_State* state, int index) {
    bool const isNamed = lua_istable(state, index) && !hasMetafield(state, index, "__tostring");
    std::size_t length = 0;
    char const* const text = luaL_tolstring(state, index, &length);
    std::string const all(text, length);
    lua_pop(state, 1);
    return isNamed ? all.substr(0, all.find(": 0x")) : all;
}

bool isPlainTable(lua_State* state, int index) {
    return lua_istable(state, index) && !hasMetafield(state, index, "__tostring") &&
           !hasMetafield(state, index, "__name");
}

// A table in a table is only hinted at.
std::string describeInside(lua_State* state, int index) {
    if (!isPlainTable(state, index)) return describe(state, index);
    lua_pushnil(state);
    bool const isEmpty = !lua_next(state, index);
    if (!isEmpty) lua_pop(state, 2);
    return isEmpty ? "{}" : "{...}";
}

// The sequence first, then the rest by name.
std::string describeTable(lua_State* state, int index) {
    constexpr std::size_t most = 20;
    lua_Integer const length = lua_Integer(lua_rawlen(state, index));
    std::vector<std::string> parts, named;
    for (lua_Integer i = 1; i <= length && parts.size() <= most; ++i) {
        lua_rawgeti(state, index, i);
        parts.push_back(describeInside(state, lua_gettop(state)));
        lua_pop(state, 1);
    }
    for (lua_pushnil(state); lua_next(state, index); lua_pop(state, 1)) {
        if (lua_isinteger(state, -2) && lua_tointeger(state, -2) >= 1 && lua_tointeger(state, -2) <= length) continue;
        bool const isName = lua_type(state, -2) == LUA_TSTRING && isProperName(lua_tostring(state, -2));
        int const value = lua_gettop(state);
        std::string const key = isName ? lua_tostring(state, -2) : '[' + describeInside(state, value - 1) + ']';
        named.push_back(key + " = " + describeInside(state, value));
    }
    std::sort(named.begin(), named.end());
    parts.insert(parts.end(), named.begin(), named.end());
    std::string text;
    for (std::size_t i = 0; i < std::min(parts.size(), most); ++i) text += (i ? ", " : "") + parts[i];
    return '{' + text + (parts.size() > most ? ", ...}" : "}");
}

}  // namespace

// With the line's end, beyond which no short text goes on.
bool isIncomplete(lua_State* state, std::string const& chunk) {
    return syntaxError(state, chunk + '\n').ends_with("<eof>");
}

bool isExpression(lua_State* state, std::string const& chunk) { return syntaxError(state, "return " + chunk).empty(); }

std::string describe(lua_State* state, int index) {
    luaL_checkstack(state, 8, nullptr);
    index = lua_absindex(state, index);
    if (lua_type(state, index) == LUA_TSTRING) {
        std::size_t length = 0;
        char const* const text = lua_tolstring(state, index, &length);
        return quoted({text, length});
    }
    return isPlainTable(state, index) ? describeTable(state, index) : ownText(state, index);
}

Completions completionsOf(lua_State* state, std::string const& line) {
    Place const place = placeOf(line);
    Completions completions{place.start, {}};
    std::string const begun = line.substr(place.start);
    if (isInText(line) || (!begun.empty() && isDigit(begun[0]))) return completions;
    for (std::string const& name : namesAt(state, place))
        if (name.starts_with(begun)) completions.words.push_back(name);
    return completions;
}

}  // namespace host
