#include "qel/lua/lua_argument_processor.h"
#include "qel/utils/text.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <lua.hpp>

namespace wxUtils {
namespace {

// What the script called it, as far as Lua knows.
std::string runningFunction(lua_State* state) {
    lua_Debug call;
    bool const isKnown = lua_getstack(state, 0, &call) && lua_getinfo(state, "n", &call) && call.name;
    return isKnown ? call.name : "?";
}

}  // namespace

void LuaArgumentProcessor::addOptional(std::string name) { arguments_.push_back({std::move(name), false}); }
void LuaArgumentProcessor::addRequired(std::string name) { arguments_.push_back({std::move(name), true}); }

void LuaArgumentProcessor::process(LuaPlus::LuaState const* state, bool isMethod) {
    state_ = state->GetCState();
    luaL_checkstack(state_, 3, nullptr);
    function_ = runningFunction(state_);
    int const first = isMethod ? 2 : 1, count = std::max(lua_gettop(state_) - first + 1, 0);
    isByName_ = count == 1 && areNamed(first);
    for (std::size_t i = 0; i < arguments_.size(); ++i) {
        if (isByName_) {
            lua_pushlstring(state_, arguments_[i].name.data(), arguments_[i].name.size());
            lua_rawget(state_, first);
            read(arguments_[i], lua_gettop(state_));
            lua_pop(state_, 1);
        } else {
            read(arguments_[i], i < static_cast<std::size_t>(count) ? first + static_cast<int>(i) : 0);
        }
    }
    checkRequired();
}

// At index 0 there is nothing.
void LuaArgumentProcessor::read(Argument& argument, int index) const {
    argument.items.clear();
    argument.value = index ? itemAt(state_, index) : Item();
    if (!index || !lua_istable(state_, index)) return;
    for (lua_Integer i = 1; lua_rawgeti(state_, index, i) != LUA_TNIL; ++i) {
        argument.items.push_back(itemAt(state_, -1));
        lua_pop(state_, 1);
    }
    lua_pop(state_, 1);
}

bool LuaArgumentProcessor::areNamed(int index) const {
    if (!lua_istable(state_, index)) return false;
    bool areAll = true, isEmpty = true;
    lua_pushnil(state_);
    while (areAll && lua_next(state_, index)) {
        lua_pop(state_, 1);
        isEmpty = false;
        std::size_t length = 0;
        char const* const key = lua_type(state_, -1) == LUA_TSTRING ? lua_tolstring(state_, -1, &length) : nullptr;
        areAll = key && find({key, length});
    }
    if (!areAll) lua_pop(state_, 1);
    return areAll && !isEmpty;
}

void LuaArgumentProcessor::checkRequired() const {
    for (Argument const& argument : arguments_)
        if (argument.isRequired && !hasArg(argument.name)) fail(argument, "value", "nothing");
}

LuaArgumentProcessor::Argument const* LuaArgumentProcessor::find(std::string_view name) const {
    auto const found =
        std::find_if(arguments_.begin(), arguments_.end(), [&](auto const& a) { return a.name == name; });
    return found == arguments_.end() ? nullptr : &*found;
}

bool LuaArgumentProcessor::hasArg(std::string_view name) const {
    Argument const* const argument = find(name);
    return argument && argument->value.index() != 0;
}

void LuaArgumentProcessor::fail(Argument const& argument, std::string const& wanted, std::string const& got) const {
    std::string const number = "#" + std::to_string(&argument - arguments_.data() + 1) + " ";
    luaL_error(state_, "bad argument %s'%s' to '%s' (%s expected, got %s)", isByName_ ? "" : number.c_str(),
               argument.name.c_str(), function_.c_str(), wanted.c_str(), got.c_str());
}

// ---- values ----

LuaArgumentProcessor::Item LuaArgumentProcessor::itemAt(lua_State* state, int index) {
    switch (lua_type(state, index)) {
    case LUA_TNIL: return {};
    case LUA_TBOOLEAN: return lua_toboolean(state, index) != 0;
    case LUA_TNUMBER:
        if (lua_isinteger(state, index)) return static_cast<long long>(lua_tointeger(state, index));
        return static_cast<double>(lua_tonumber(state, index));
    case LUA_TSTRING: {
        std::size_t length = 0;
        char const* const text = lua_tolstring(state, index, &length);
        return std::string(text, length);
    }
    default: return Other{luaL_typename(state, index)};
    }
}

std::string LuaArgumentProcessor::kindOf(Item const& item) {
    if (std::holds_alternative<bool>(item)) return "boolean";
    if (auto const* whole = std::get_if<long long>(&item)) return "number " + std::to_string(*whole);
    if (auto const* number = std::get_if<double>(&item)) return "number " + Qelutils::number(*number);
    if (std::holds_alternative<std::string>(item)) return "string";
    auto const* other = std::get_if<Other>(&item);
    return other ? other->kind : "nil";
}

bool LuaArgumentProcessor::convert(Item const& item, bool& value) {
    bool const* const given = std::get_if<bool>(&item);
    if (given) value = *given;
    return given;
}

bool LuaArgumentProcessor::convert(Item const& item, double& value) {
    if (auto const* whole = std::get_if<long long>(&item)) return value = static_cast<double>(*whole), true;
    double const* const given = std::get_if<double>(&item);
    if (given) value = *given;
    return given;
}

bool LuaArgumentProcessor::convert(Item const& item, float& value) {
    double given = 0;
    if (!convert(item, given)) return false;
    if (std::isfinite(given) && std::abs(given) > std::numeric_limits<float>::max()) return false;
    return value = static_cast<float>(given), true;
}

// Each int is a double of the same value, and each comparison with NaN is false.
bool LuaArgumentProcessor::convert(Item const& item, int& value) {
    using Limits = std::numeric_limits<int>;
    double given = 0;
    if (!convert(item, given) || !(given >= Limits::min() && given <= Limits::max()) || given != std::trunc(given))
        return false;
    return value = static_cast<int>(given), true;
}

bool LuaArgumentProcessor::convert(Item const& item, std::wstring& value) {
    std::string text;
    if (auto const* given = std::get_if<std::string>(&item))
        text = *given;
    else if (auto const* whole = std::get_if<long long>(&item))
        text = std::to_string(*whole);
    else if (auto const* number = std::get_if<double>(&item))
        text = Qelutils::number(*number);
    else
        return false;
    return value = Qelutils::fromUtf8(text), true;
}

// ---- reading ----

LuaArgumentProcessor::Argument const& LuaArgumentProcessor::argumentOf(std::string_view name) const {
    Argument const* const argument = find(name);
    if (!argument) luaL_error(state_, "'%s' has no argument '%s'", function_.c_str(), std::string(name).c_str());
    return *argument;
}

template<class Value> bool LuaArgumentProcessor::get(std::string_view name, Value& value, char const* wanted) const {
    if (!state_) return false;
    Argument const& argument = argumentOf(name);
    if (argument.value.index() == 0) return false;
    if (!convert(argument.value, value)) fail(argument, wanted, kindOf(argument.value));
    return true;
}

template<class Value>
bool LuaArgumentProcessor::getList(std::string_view name, std::vector<Value>& value, char const* wanted) const {
    if (!state_) return false;
    Argument const& argument = argumentOf(name);
    if (argument.value.index() == 0) return false;
    auto const* const other = std::get_if<Other>(&argument.value);
    if (!other || other->kind != std::string_view("table")) fail(argument, wanted, kindOf(argument.value));
    std::vector<Value> list(argument.items.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        if (!convert(argument.items[i], list[i]))
            fail(argument, wanted, kindOf(argument.items[i]) + " at position " + std::to_string(i + 1));
    value = std::move(list);
    return true;
}

bool LuaArgumentProcessor::getArgAsBool(std::string_view name, bool& value) const {
    return get(name, value, "boolean");
}
bool LuaArgumentProcessor::getArgAsInt(std::string_view name, int& value) const { return get(name, value, "integer"); }
bool LuaArgumentProcessor::getArgAsFloat(std::string_view name, float& value) const {
    return get(name, value, "number of single precision");
}
bool LuaArgumentProcessor::getArgAsFloat(std::string_view name, double& value) const {
    return get(name, value, "number");
}
bool LuaArgumentProcessor::getArgAsString(std::string_view name, std::wstring& value) const {
    return get(name, value, "string");
}
bool LuaArgumentProcessor::getArgAsFloatList(std::string_view name, std::vector<float>& value) const {
    return getList(name, value, "list of numbers");
}
bool LuaArgumentProcessor::getArgAsStringList(std::string_view name, std::vector<std::wstring>& value) const {
    return getList(name, value, "list of strings");
}

}  // namespace wxUtils
