#include "tavo/extension/lua/script_call.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/native.h"
#include "tavo/extension/lua/script_function.h"
#include "tavo/extension/lua/script_tables.h"
#include "tavo/objects/scene.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <lua.hpp>
#include <optional>

namespace Tavo {
namespace {

std::string textOf(lua_State* state, int index) {
    std::size_t length = 0;
    char const* text = lua_tolstring(state, index, &length);
    return std::string(text, length);
}

bool isObjectTable(lua_State* state, int index) {
    return lua_istable(state, index) && XScriptTables::HasField(state, index, XScriptBase::ObjectID);
}

bool hasPosition(lua_State* state, int index, int position) {
    bool const has = lua_rawgeti(state, index, position) != LUA_TNIL;
    lua_pop(state, 1);
    return has;
}

bool isInt(double value) {
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max() &&
           value == std::floor(value);
}

}  // namespace

// ---- messages ----

void XScriptCall::Fail(std::string const& message) const {
    throw XScriptError(std::string(_binding.set->table) + ":" + _binding.function->Name() + ": " + message);
}

void XScriptCall::refuse(char const* wanted) const {
    Fail("argument " + std::to_string(_argument + 1) + " (" + argument().name + ") must be " + wanted + ", not " +
         luaL_typename(_state, _position));
}

// ---- the next argument ----

XScriptArgument const& XScriptCall::argument() const { return _binding.function->Argument(_argument); }

bool XScriptCall::HasNext() const { return !lua_isnoneornil(_state, _position); }

bool XScriptCall::IsNextNumber() const { return lua_type(_state, _position) == LUA_TNUMBER; }
bool XScriptCall::IsNextText() const { return lua_type(_state, _position) == LUA_TSTRING; }
bool XScriptCall::IsNextObject() const { return isObjectTable(_state, _position); }
bool XScriptCall::IsNextQuaternion() const {
    return lua_istable(_state, _position) && !IsNextMatrix() &&
           (XScriptTables::HasField(_state, _position, "w") || hasPosition(_state, _position, 4));
}
bool XScriptCall::IsNextMatrix() const { return lua_istable(_state, _position) && hasPosition(_state, _position, 16); }
bool XScriptCall::begin() {
    if (HasNext()) return true;
    end();
    return false;
}

bool XScriptCall::TakeBoolean() {
    bool const* const otherwise = std::get_if<bool>(&argument().otherwise);
    if (!begin()) return otherwise && *otherwise;
    bool const isNumber = lua_type(_state, _position) == LUA_TNUMBER;
    if (!isNumber && !lua_isboolean(_state, _position)) refuse("true or false");
    bool const value = isNumber ? lua_tonumber(_state, _position) != 0 : lua_toboolean(_state, _position) != 0;
    end();
    return value;
}

double XScriptCall::TakeNumber() {
    double const* const otherwise = std::get_if<double>(&argument().otherwise);
    if (!begin()) return otherwise ? *otherwise : 0;
    int isNumber = 0;
    double const value = lua_tonumberx(_state, _position, &isNumber);
    if (!isNumber) refuse("a number");
    end();
    return value;
}

int XScriptCall::TakeInteger() {
    double const* const otherwise = std::get_if<double>(&argument().otherwise);
    if (!begin()) return otherwise ? int(*otherwise) : 0;
    int isNumber = 0;
    double const value = lua_tonumberx(_state, _position, &isNumber);
    if (!isNumber) refuse("a whole number");
    if (!isInt(value))
        Fail("argument " + std::to_string(_argument + 1) + " (" + argument().name +
             ") must be a whole number that fits 32 bits");
    end();
    return int(value);
}

std::wstring XScriptCall::TakeText() {
    char const* const* const otherwise = std::get_if<char const*>(&argument().otherwise);
    if (!begin()) return otherwise ? Qelutils::fromUtf8(*otherwise) : std::wstring();
    if (!lua_isstring(_state, _position)) refuse("a text");
    std::wstring text = Qelutils::fromUtf8(textOf(_state, _position));
    end();
    return text;
}

XScriptKey XScriptCall::TakeKey() {
    if (!begin()) return {};
    if (IsNextNumber()) return {true, TakeInteger(), {}};
    if (!IsNextText()) refuse("a name or a number");
    return {false, 0, TakeText()};
}

// A table, or so many numbers in a row.
bool XScriptCall::takeComponents(float* out, int count) {
    if (lua_type(_state, _position) != LUA_TNUMBER) return false;
    for (int i = 0; i < count; ++i) {
        if (lua_type(_state, _position + i) != LUA_TNUMBER)
            Fail("argument " + std::to_string(_argument + 1) + " (" + argument().name + ") must be a table or " +
                 std::to_string(count) + " numbers");
        out[i] = float(lua_tonumber(_state, _position + i));
    }
    end(count);
    return true;
}

XVector3 XScriptCall::TakeVector() {
    if (!begin()) return {};
    float values[3];
    if (takeComponents(values, 3)) return XVector3(values);
    if (!lua_istable(_state, _position)) refuse("a vector");
    XVector3 const value = XScriptTables::VectorAt(_state, _position);
    end();
    return value;
}

XQuaternion XScriptCall::TakeQuaternion() {
    if (!begin()) return {};
    float values[4];
    if (takeComponents(values, 4)) return XQuaternion(values);
    if (!lua_istable(_state, _position)) refuse("a quaternion");
    XQuaternion const value = XScriptTables::QuaternionAt(_state, _position);
    end();
    return value;
}

XMatrix XScriptCall::TakeMatrix() {
    XMatrix value;
    if (!begin()) return value;
    float values[16];
    if (takeComponents(values, 16)) return XMatrix(values);
    if (!lua_istable(_state, _position)) refuse("a matrix");
    if (!XScriptTables::MatrixAt(_state, _position, value))
        Fail("argument " + std::to_string(_argument + 1) + " (" + argument().name + ") must be a matrix of 16 numbers");
    end();
    return value;
}

// A path is looked up in the document of self. One that leads nowhere is logged there, and gives the invalid handle.
XObject XScriptCall::objectAt(int index, bool& isObject) const {
    isObject = true;
    if (isObjectTable(_state, index)) return XScriptTables::ObjectAt(_state, index);
    if (lua_type(_state, index) == LUA_TSTRING)
        return _database ? _database->Object(Qelutils::fromUtf8(textOf(_state, index))) : XObject();
    isObject = false;
    return {};
}

XObject XScriptCall::TakeObject() {
    if (!begin()) return {};
    bool isObject = false;
    XObject const object = objectAt(_position, isObject);
    if (!isObject) refuse("an object or its path");
    end();
    return object;
}

XAttribute XScriptCall::TakeAttribute() {
    if (!begin()) return {};
    XAttribute attribute;
    if (isObjectTable(_state, _position))
        attribute = XScriptTables::AttributeAt(_state, _position);
    else if (lua_type(_state, _position) != LUA_TSTRING)
        refuse("an attribute or its path");
    else if (_database)
        attribute = _database->Attribute(Qelutils::fromUtf8(textOf(_state, _position)));
    end();
    return attribute;
}

XKeyframe XScriptCall::TakeKeyframe() {
    if (!begin()) return {};
    if (!isObjectTable(_state, _position)) refuse("a key");
    XKeyframe const key = XScriptTables::KeyframeAt(_state, _position);
    end();
    return key;
}

LuaPlus::LuaObject XScriptCall::TakeAny() {
    if (!begin()) return {};
    LuaPlus::LuaObject value(_state, _position);
    end();
    return value;
}

// Calls take(index) with each element on the stack; it says whether the element is of the kind.
template<class Take> void XScriptCall::forEachInList(char const* wanted, Take const& take) {
    if (!lua_istable(_state, _position)) refuse(wanted);
    for (lua_Integer i = 1;; ++i) {
        lua_rawgeti(_state, _position, i);
        bool const isEnd = lua_isnil(_state, -1);
        if (!isEnd && !take(lua_gettop(_state)))
            Fail("argument " + std::to_string(_argument + 1) + " (" + argument().name + ") must be " + wanted +
                 ", but entry " + std::to_string(i) + " is a " + luaL_typename(_state, -1));
        lua_pop(_state, 1);
        if (isEnd) break;
    }
    end();
}

Qelutils::Vector<float> XScriptCall::TakeNumbers() {
    Qelutils::Vector<float> values;
    if (!begin()) return values;
    if (lua_type(_state, _position) == LUA_TNUMBER) return values.push_back(float(TakeNumber())), values;
    forEachInList("a list of numbers", [&](int index) {
        if (lua_type(_state, index) != LUA_TNUMBER) return false;
        values.push_back(float(lua_tonumber(_state, index)));
        return true;
    });
    return values;
}

Qelutils::Vector<int> XScriptCall::TakeIntegers() {
    Qelutils::Vector<int> values;
    if (!begin()) return values;
    if (lua_type(_state, _position) == LUA_TNUMBER) return values.push_back(TakeInteger()), values;
    forEachInList("a list of whole numbers", [&](int index) {
        if (lua_type(_state, index) != LUA_TNUMBER || !isInt(lua_tonumber(_state, index))) return false;
        values.push_back(int(lua_tonumber(_state, index)));
        return true;
    });
    return values;
}

std::vector<std::wstring> XScriptCall::TakeTexts() {
    std::vector<std::wstring> values;
    if (!begin()) return values;
    if (lua_type(_state, _position) == LUA_TSTRING) return values.push_back(TakeText()), values;
    forEachInList("a list of texts", [&](int index) {
        if (lua_type(_state, index) != LUA_TSTRING) return false;
        values.push_back(Qelutils::fromUtf8(textOf(_state, index)));
        return true;
    });
    return values;
}

Qelutils::Vector<XObject> XScriptCall::TakeObjects() {
    Qelutils::Vector<XObject> values;
    if (!begin()) return values;
    if (lua_type(_state, _position) == LUA_TSTRING || isObjectTable(_state, _position))
        return values.push_back(TakeObject()), values;
    forEachInList("a list of objects or paths", [&](int index) {
        bool isObject = false;
        values.push_back(objectAt(index, isObject));
        return isObject;
    });
    return values;
}

// ---- drop-offs ----

namespace {

constexpr char const *rangeField = "range", *modeField = "mode", *pinchField = "pinch", *bubbleField = "bubble";

std::optional<unsigned> modeOf(lua_State* state, int index) {
    std::wstring const word = lua_type(state, index) == LUA_TSTRING ? Qelutils::fromUtf8(textOf(state, index)) : L"";
    bool const isNumber = lua_type(state, index) == LUA_TNUMBER;
    for (unsigned mode = 0; mode < std::size(XDropOff::ModeNames); ++mode)
        if (isNumber ? lua_tonumber(state, index) == double(mode) : XDropOff::ModeNames[mode] == word) return mode;
    return {};
}

}  // namespace

bool XScriptCall::IsNextDropOff() const {
    auto const has = [&](char const* field) { return XScriptTables::HasField(_state, _position, field); };
    return lua_istable(_state, _position) && (has(rangeField) || has(modeField) || has(pinchField) || has(bubbleField));
}

// Calls read(index) with the field on the stack, if it is there; it says whether the field will do.
template<class Take> void XScriptCall::takeField(char const* name, char const* wanted, Take const& read) {
    lua_pushstring(_state, name);
    lua_rawget(_state, _position);
    if (!lua_isnil(_state, -1) && !read(lua_gettop(_state)))
        Fail("argument " + std::to_string(_argument + 1) + " (" + argument().name + ") must have " + wanted +
             " as its " + name);
    lua_pop(_state, 1);
}

XDropOff XScriptCall::TakeDropOff() {
    if (!begin()) return {};
    if (IsNextNumber()) return {float(TakeNumber())};
    if (!IsNextDropOff()) refuse("a range, or a table with range, mode, pinch or bubble");
    XDropOff value;
    auto const takeNumber = [&](char const* name, float& out) {
        takeField(name, "a number", [&](int index) {
            out = float(lua_tonumber(_state, index));
            return lua_type(_state, index) == LUA_TNUMBER;
        });
    };
    takeNumber(rangeField, value.m_range);
    takeNumber(pinchField, value.m_innerTangent);
    takeNumber(bubbleField, value.m_outerTangent);
    takeField(modeField, "\"CurveDropoff\" or \"RadialDropoff\"", [&](int index) {
        std::optional<unsigned> const mode = modeOf(_state, index);
        value.m_mode = mode.value_or(value.m_mode);
        return mode.has_value();
    });
    end();
    return value;
}

// ---- arguments that decide among several ways to call ----

int XScriptCall::ArgumentsLeft() const {
    int last = lua_gettop(_state);
    while (last >= _position && lua_isnil(_state, last)) --last;
    return std::max(last - _position + 1, 0);
}

int XScriptCall::NumbersInARow() const {
    int count = 0;
    while (lua_type(_state, _position + count) == LUA_TNUMBER) ++count;
    return count;
}

// Three numbers are a vector and four a quaternion; a call takes too few of them for the odd ones to add up.
int XScriptCall::VectorsLeft() const {
    int const end = _position + ArgumentsLeft();
    int thirds = 0;
    for (int i = _position; i < end; ++i) thirds += lua_type(_state, i) == LUA_TNUMBER ? 1 : 3;
    return thirds / 3;
}

Qelutils::Vector<XObject> XScriptCall::TakeMatches() {
    Qelutils::Vector<XObject> all, found;
    auto const take = [&](int index) {
        bool const isPattern = lua_type(_state, index) == LUA_TSTRING;
        if (!isPattern && !isObjectTable(_state, index)) return false;
        if (!isPattern) return all.push_back(XScriptTables::ObjectAt(_state, index)), true;
        std::wstring const pattern = Qelutils::fromUtf8(textOf(_state, index));
        if (!_database || pattern.empty()) return true;
        _database->Objects(pattern, found);
        all.insert(all.end(), found.begin(), found.end());
        return true;
    };
    if (!begin()) return all;
    if (take(_position))
        end();
    else
        forEachInList("a list of objects or patterns of paths", take);
    return all;
}

// ---- what it is called on ----

namespace {

// The ids of a table, by one look at each, which stay on the stack; false without a scene's id.
bool readIDs(lua_State* state, long long& scene, long long& object) {
    lua_pushvalue(state, lua_upvalueindex(SceneIDUpvalue));
    lua_rawget(state, 1);
    lua_pushvalue(state, lua_upvalueindex(ObjectIDUpvalue));
    lua_rawget(state, 1);
    int hasScene = 0, hasObject = 0;
    scene = lua_tointegerx(state, -2, &hasScene);
    object = lua_tointegerx(state, -1, &hasObject);
    if (!hasObject) object = XObject::InvalidID;
    return hasScene != 0;
}

}  // namespace

// Reads the ids of self, and makes its document the one that paths are looked up in.
void XScriptCall::beginSelf(long long& object) {
    if (lua_type(_state, 1) != LUA_TTABLE) Fail("argument 1 is not the table that it belongs to: call it with a colon");
    long long scene = 0;
    if (!readIDs(_state, scene, object)) throw XScriptError("Invalid scene ID");
    if (!_binding.function->Arguments().empty()) lua_pop(_state, 2);  // or what was left out would be found there
    _database = XScriptTables::DatabaseOf(scene);
}

XObject XScriptCall::SelfObject() {
    long long object = 0;
    beginSelf(object);
    return XScriptTables::ObjectOf(_database, object);
}

XAttribute XScriptCall::SelfAttribute() {
    long long attribute = 0;
    beginSelf(attribute);
    return XScriptTables::AttributeOf(_database, attribute);
}

XKeyframe XScriptCall::SelfKeyframe() {
    long long object = 0;
    beginSelf(object);
    return XScriptTables::KeyframeAt(_state, 1);
}

XScene& XScriptCall::SelfScene() {
    long long object = 0;
    beginSelf(object);
    return _database && _database->IsScene() ? static_cast<XScene&>(*_database) : XScene::Undefined;
}

// With a colon, argument 1 is the table of the functions.
XApplication& XScriptCall::SelfApplication() {
    if (lua_istable(_state, 1) && XScriptTables::HasField(_state, 1, _binding.function->Name()))
        _position = 2;
    else
        _position = 1;
    XApplication& application = XApplication::Instance();
    if (application.IsStarted()) _database = &application.ActiveScene();
    return application;
}

XVector3 XScriptCall::SelfVector() {
    beginValue();
    return XScriptTables::VectorAt(_state, 1);
}

XQuaternion XScriptCall::SelfQuaternion() {
    beginValue();
    return XScriptTables::QuaternionAt(_state, 1);
}

XMatrix XScriptCall::SelfMatrix() {
    beginValue();
    XMatrix value;
    if (!XScriptTables::MatrixAt(_state, 1, value)) Fail("argument 1 must be a matrix of 16 numbers");
    return value;
}

// Values belong to a scene only by name: one without still is a value.
void XScriptCall::beginValue() {
    if (!lua_istable(_state, 1)) Fail("argument 1 is not the value that it belongs to: call it with a colon");
    long long scene = 0, object = 0;
    if (readIDs(_state, scene, object)) _database = XScriptTables::DatabaseOf(scene);
    lua_pop(_state, 2);
}

void XScriptCall::StoreSelf(XVector3 const& value) { XScriptTables::StoreValue(_state, 1, value); }
void XScriptCall::StoreSelf(XQuaternion const& value) { XScriptTables::StoreValue(_state, 1, value); }
void XScriptCall::StoreSelf(XMatrix const& value) { XScriptTables::StoreValue(_state, 1, value); }

int XScriptCall::GiveSelf() {
    lua_pushvalue(_state, 1);
    return 1;
}

// ---- results ----

int XScriptCall::sceneID() const { return _database ? _database->DatabaseID() : XDatabase::InvalidID; }

void XScriptCall::PushNil() { lua_pushnil(_state); }
void XScriptCall::PushBoolean(bool value) { lua_pushboolean(_state, value); }
void XScriptCall::PushInteger(long long value) { lua_pushinteger(_state, value); }
void XScriptCall::PushNumber(double value) { lua_pushnumber(_state, value); }
void XScriptCall::PushText(std::wstring const& value) { LuaPlus::LuaState(_state).PushString(value); }
void XScriptCall::Push(XVector3 const& value) { _script.Tables().PushValue(_state, value, sceneID()); }
void XScriptCall::Push(XQuaternion const& value) { _script.Tables().PushValue(_state, value, sceneID()); }
void XScriptCall::Push(XMatrix const& value) { _script.Tables().PushValue(_state, value, sceneID()); }
void XScriptCall::Push(XObject const& value) { _script.Tables().PushObject(_state, value); }
void XScriptCall::Push(XAttribute const& value) { _script.Tables().PushAttribute(_state, value); }
void XScriptCall::Push(XKeyframe const& value) { _script.Tables().PushKeyframe(_state, value); }
void XScriptCall::Push(XScene const& value) { _script.Tables().PushScene(_state, value); }
void XScriptCall::Push(LuaPlus::LuaObject const& value) { value.Push(_state); }

template<class Values, class PushOne> void XScriptCall::pushList(Values const& values, PushOne const& push) {
    lua_createtable(_state, int(std::min<std::size_t>(values.size(), 1u << 24)), 0);
    lua_Integer place = 0;
    for (auto const& value : values) {
        push(value);
        lua_rawseti(_state, -2, ++place);
    }
}

void XScriptCall::PushList(Qelutils::Vector<float> const& values) {
    pushList(values, [this](float value) { PushNumber(double(value)); });
}
void XScriptCall::PushList(Qelutils::Vector<int> const& values) {
    pushList(values, [this](int value) { PushInteger(value); });
}
void XScriptCall::PushList(std::vector<std::wstring> const& values) {
    pushList(values, [this](std::wstring const& value) { PushText(value); });
}
void XScriptCall::PushList(Qelutils::Vector<XObject> const& values) {
    pushList(values, [this](XObject const& value) { Push(value); });
}
void XScriptCall::PushList(Qelutils::Vector<XAttribute> const& values) {
    pushList(values, [this](XAttribute const& value) { Push(value); });
}

}  // namespace Tavo
