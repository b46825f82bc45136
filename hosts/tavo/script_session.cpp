#include "hosts/tavo/script_session.h"

#include "qel/utils/text.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/objects/scene_graph.h"

#include <algorithm>
#include <fmt/format.h>
#include <lua.hpp>

namespace host {
namespace {

constexpr char const* errorPrefix = "Error running script: ";  // the application's log puts it before what it tells
constexpr double grace = 2;                                    // seconds for Lua to stop a script by itself
constexpr double bytesPerMegabyte = 1e6;

void checkLimit(char const* option, std::optional<double> const& value) {
    if (value && !(*value > 0 && *value <= 1e9))
        throw wrongCall(fmt::format("{} is a number above 0, and at most 1e9", option));
}

LuaPlus::LuaLibraries librariesFor(ScriptOptions const& options) {
    checkLimit("--max-seconds", options.maxSeconds);
    checkLimit("--max-memory", options.maxMemory);
    return options.sandbox ? LuaPlus::LuaLibraries::Sandboxed : LuaPlus::LuaLibraries::Standard;
}

bool isWord(std::string const& text) {
    auto const isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    auto const isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !text.empty() && isLetter(text[0]) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return isLetter(c) || isDigit(c); });
}

// Lua decides what is a word of its own.
bool isName(lua_State* state, std::string const& text) {
    if (!isWord(text)) return false;
    std::string const statement = "local " + text;
    int const status = luaL_loadbufferx(state, statement.data(), statement.size(), "=", "t");
    lua_pop(state, 1);
    return status == LUA_OK;
}

void pushValue(lua_State* state, std::string const& text) {
    if (text == "true" || text == "false")
        lua_pushboolean(state, text == "true");
    else if (lua_stringtonumber(state, text.c_str()) != text.size() + 1)
        lua_pushlstring(state, text.data(), text.size());
}

// Without the mark of UTF-8 and the first line of one that a shell runs; the line's end stays, for the lines' numbers.
std::string_view sourceOf(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    if (text.starts_with('#')) text.remove_prefix(std::min(text.find('\n'), text.size()));
    return text;
}

lua_State* mainThread(lua_State* state) {
    lua_rawgeti(state, LUA_REGISTRYINDEX, LUA_RIDX_MAINTHREAD);
    lua_State* const main = lua_tothread(state, -1);
    lua_pop(state, 1);
    return main;
}

}  // namespace

ScriptSession::ScriptSession(ScriptOptions const& options) :
    maxSeconds_(options.maxSeconds), owner_(librariesFor(options)), session_(&owner_) {
    if (!lua().State()) throw Failure{ExitCode::failed, "there is not enough memory for scripts"};
    session_.log().passOver([this](std::string const& error) { return isTold(error); });
    owner_->Protect([this] { replaceExit(); });
    for (std::string const& text : options.assignments) assign(text);
    options.input.file.empty() ? void(scene().New()) : session_.open(options.input);
    scene().SceneGraph()->ClearUndoHistory();
    owner_.SetLimits({std::size_t(options.maxMemory.value_or(0) * bytesPerMegabyte), maxSeconds_.value_or(0)});
}

ScriptSession::~ScriptSession() {
    if (maxSeconds_) closing_.emplace(*maxSeconds_ + grace, "the script's finalizers did not end");
}

bool ScriptSession::isTold(std::string const& error) const {
    return error.starts_with(errorPrefix) && (exitCode_ || (!error_.empty() && error == errorPrefix + error_));
}

// ---- what a script finds ----

void ScriptSession::assign(std::string const& text) {
    std::size_t const split = text.find('=');
    std::string const name = text.substr(0, split);
    if (split == std::string::npos) throw wrongCall(fmt::format("--set takes NAME=VALUE, not \"{}\"", text));
    if (!isName(state(), name)) throw wrongCall(fmt::format("--set: \"{}\" can not be the name of a variable", name));
    if (!owner_->GetGlobal(name.c_str()).IsNil())
        throw wrongCall(fmt::format("--set: there is a \"{}\" already", name));
    owner_->Protect([&] {
        pushValue(state(), text.substr(split + 1));
        lua_setglobal(state(), name.c_str());
    });
}

void ScriptSession::setArguments(std::string const& script, std::vector<std::string> const& arguments) {
    owner_->Protect([&] {
        lua_newtable(state());
        lua_pushlstring(state(), script.data(), script.size());
        lua_rawseti(state(), -2, 0);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            lua_pushlstring(state(), arguments[i].data(), arguments[i].size());
            lua_rawseti(state(), -2, lua_Integer(i + 1));
        }
        lua_setglobal(state(), "arg");
    });
}

// ---- os.exit ----

void ScriptSession::replaceExit() {
    lua_getglobal(state(), LUA_OSLIBNAME);
    lua_pushlightuserdata(state(), this);
    lua_pushcclosure(state(), exitScript, 1);
    lua_setfield(state(), -2, "exit");
}

// The hook stays until the run has ended, so that no pcall keeps the script going.
void ScriptSession::keepEnding(lua_State* state, lua_Debug*) {
    lua_pushliteral(state, "the script was ended by os.exit");
    lua_error(state);
}

int ScriptSession::exitScript(lua_State* state) {
    auto& session = *static_cast<ScriptSession*>(lua_touserdata(state, lua_upvalueindex(1)));
    bool const isBoolean = lua_isboolean(state, 1);
    lua_Integer const code = isBoolean ? !lua_toboolean(state, 1) : luaL_optinteger(state, 1, 0);
    session.exitCode_ = int(code & 0xFF);
    for (lua_State* each : {mainThread(state), state}) lua_sethook(each, keepEnding, LUA_MASKCOUNT, 1);
    keepEnding(state, nullptr);
    return 0;
}

// ---- running ----

struct ScriptSession::Running {
    ScriptChunk const& chunk;
    OnResults const& onResults;
};

// The chunk, and what to do with its results.
int ScriptSession::runLoaded(lua_State* state) {
    Running const& running = *static_cast<Running*>(lua_touserdata(state, 2));
    std::vector<std::string> const& arguments = running.chunk.arguments;
    lua_settop(state, 1);
    luaL_checkstack(state, int(arguments.size()), "too many arguments");
    for (std::string const& argument : arguments) lua_pushlstring(state, argument.data(), argument.size());
    lua_call(state, int(arguments.size()), LUA_MULTRET);
    if (running.onResults) running.onResults(state, lua_gettop(state));
    return 0;
}

ScriptEnding ScriptSession::run(ScriptChunk const& chunk, OnResults const& onResults) {
    Running running{chunk, onResults};
    std::optional<Watchdog> watchdog;
    if (maxSeconds_)
        watchdog.emplace(*maxSeconds_ + grace,
                         fmt::format("the script was stopped: it took more than {} seconds", *maxSeconds_));
    error_.clear();
    lua().RunChunk([&](std::string& error) {
        std::string_view const source = sourceOf(chunk.text);
        int status = luaL_loadbufferx(state(), source.data(), source.size(), chunk.name.c_str(), "t");
        if (status == LUA_OK) {
            lua_pushcfunction(state(), runLoaded);
            lua_insert(state(), -2);
            lua_pushlightuserdata(state(), &running);
            status = owner_->Call(2, 0, error);
        } else {
            error = lua_tostring(state(), -1);
            lua_pop(state(), 1);
        }
        error_ = status != LUA_OK && error.empty() ? "an error without a message" : error;
        return status;
    });
    if (lua_gethook(state()) == keepEnding) lua_sethook(state(), nullptr, 0, 0);
    return {exitCode_ ? std::string() : error_, exitCode_};
}

}  // namespace host
