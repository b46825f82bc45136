#include "tavo/extension/lua/attribute_values.h"
#include "qel/utils/text.h"
#include "tavo/app/script_base.h"
#include "tavo/extension/lua/script_tables.h"
#include "tavo/objects/attribute_kinds.h"
#include <cmath>
#include <limits>
#include <lua.hpp>

namespace Tavo {
namespace {

constexpr int valueAt = 2;  // on the stack, of the first argument

// Calls action(kind) with the kind of the values, alone or in an array. False for what holds no values itself.
template<class Action> bool withKind(XAttribute const& attribute, Action const& action) {
    using enum db::AttributeType;
    switch (attribute.getAttribute()->getAttributeType()) {
    case Float:
    case FloatArray: return action(XFloatKind()), true;
    case Double:
    case DoubleArray: return action(XDoubleKind()), true;
    case Integer:
    case IntegerArray: return action(XIntegerKind()), true;
    case Enumeration:
    case EnumerationArray: return action(XEnumerationKind()), true;
    case Boolean:
    case BooleanArray: return action(XBooleanKind()), true;
    case String:
    case StringArray: return action(XStringKind()), true;
    case Vector3:
    case Vector3Array: return action(XVectorKind()), true;
    case Quaternion:
    case QuaternionArray: return action(XQuaternionKind()), true;
    case Matrix:
    case MatrixArray: return action(XMatrixKind()), true;
    case Pointer:
    case PointerArray: return action(XReferenceKind()), true;
    default: return false;
    }
}

std::span<wchar_t const* const> wordsOf(XAttribute const& attribute) {
    return attribute.getAttribute()->getDef().getStrings();
}

// ---- to scripts ----

void push(XScriptCall& call, XAttribute const&, XFloatKind, float value) { call.PushNumber(double(value)); }
void push(XScriptCall& call, XAttribute const&, XDoubleKind, double value) { call.PushNumber(value); }
void push(XScriptCall& call, XAttribute const&, XIntegerKind, int value) { call.PushInteger(value); }
void push(XScriptCall& call, XAttribute const&, XBooleanKind, bool value) { call.PushBoolean(value); }
void push(XScriptCall& call, XAttribute const&, XStringKind, std::wstring const& value) { call.PushText(value); }
void push(XScriptCall& call, XAttribute const&, XVectorKind, XVector3 const& value) { call.Push(value); }
void push(XScriptCall& call, XAttribute const&, XQuaternionKind, XQuaternion const& value) { call.Push(value); }
void push(XScriptCall& call, XAttribute const&, XMatrixKind, XMatrix const& value) { call.Push(value); }

void push(XScriptCall& call, XAttribute const& attribute, XEnumerationKind, int value) {
    auto const words = wordsOf(attribute);
    if (value >= 0 && std::size_t(value) < words.size())
        call.PushText(words[std::size_t(value)]);
    else
        call.PushInteger(value);
}

void push(XScriptCall& call, XAttribute const&, XReferenceKind, db::Attribute* target) {
    XAttribute const reference(target);
    if (!reference.IsValid() || reference.IsNode())
        call.Push(reference.Object());
    else
        call.Push(reference);
}

// A list has no gaps: nothing becomes false.
void appendToList(lua_State* state, int place) {
    if (lua_isnil(state, -1)) {
        lua_pop(state, 1);
        lua_pushboolean(state, false);
    }
    lua_rawseti(state, -2, place);
}

template<class Kind> void pushAll(XScriptCall& call, XAttribute const& attribute) {
    Qelutils::Vector<typename Kind::Value> values;
    readValues<Kind>(attribute.getAttribute(), values);
    lua_createtable(call.State(), int(values.size()), 0);
    int place = 0;
    for (auto const& value : values) {
        push(call, attribute, Kind(), value);
        appendToList(call.State(), ++place);
    }
}

void pushWhole(XScriptCall& call, XAttribute const& attribute) {
    luaL_checkstack(call.State(), 8, nullptr);
    bool const hasValues = withKind(attribute, [&]<class Kind>(Kind) {
        if (as<typename Kind::Array>(attribute.getAttribute()))
            pushAll<Kind>(call, attribute);
        else
            push(call, attribute, Kind(), readValue<Kind>(attribute.getAttribute(), 0));
    });
    if (hasValues) return;
    if (attribute.IsNode()) return call.Push(attribute.Object());
    lua_newtable(call.State());
    for (int i = 0, count = attribute.AttributeCount(); i < count; ++i) {
        pushWhole(call, attribute.Attribute(i));
        appendToList(call.State(), i + 1);
    }
}

void pushElement(XScriptCall& call, XAttribute const& attribute, int index) {
    if (index < 0 || index >= std::max(attribute.ArraySize(), attribute.AttributeCount())) return call.PushNil();
    bool const hasValues = withKind(attribute, [&]<class Kind>(Kind) {
        push(call, attribute, Kind(), readValue<Kind>(attribute.getAttribute(), index));
    });
    if (!hasValues) pushWhole(call, attribute.Attribute(index));
}

// ---- from scripts ----

// A value that a script gave: where it is on the stack, what it is for, and its place in a list, if it is in one.
struct Given {
    XScriptCall& call;
    XAttribute const& attribute;
    int at = valueAt;
    int entry = 0;

    lua_State* State() const { return call.State(); }
    int Type() const { return lua_type(State(), at); }
};

std::string shown(lua_State* state, int at) {
    if (lua_type(state, at) != LUA_TNUMBER) return luaL_typename(state, at);
    std::string const text = luaL_tolstring(state, at, nullptr);
    lua_pop(state, 1);
    return text;
}

[[noreturn]] void refuse(Given const& given, std::string const& wanted) {
    std::string const entry = given.entry ? "entry " + std::to_string(given.entry) + " of " : "";
    given.call.Fail(entry + "argument 1 (value) for " + Qelutils::toUtf8(given.attribute.Path()) + " must be " +
                    wanted + ", not " + shown(given.State(), given.at));
}

double numberFrom(Given const& given, double most) {
    int isNumber = 0;
    double const value = lua_tonumberx(given.State(), given.at, &isNumber);
    if (!isNumber || !(std::abs(value) <= most)) refuse(given, "a finite number");
    return value;
}

void read(Given const& given, XFloatKind, float& out) {
    out = float(numberFrom(given, double(std::numeric_limits<float>::max())));
}

void read(Given const& given, XDoubleKind, double& out) { out = numberFrom(given, std::numeric_limits<double>::max()); }

void read(Given const& given, XIntegerKind, int& out) {
    int isNumber = 0;
    double const value = lua_tonumberx(given.State(), given.at, &isNumber);
    bool const fits = isNumber && value >= std::numeric_limits<int>::min() &&
                      value <= std::numeric_limits<int>::max() && value == std::floor(value);
    if (!fits) refuse(given, "a whole number that fits 32 bits");
    out = int(value);
}

void read(Given const& given, XBooleanKind, bool& out) {
    bool const isNumber = given.Type() == LUA_TNUMBER;
    if (!isNumber && given.Type() != LUA_TBOOLEAN) refuse(given, "true or false");
    out = isNumber ? lua_tonumber(given.State(), given.at) != 0 : lua_toboolean(given.State(), given.at) != 0;
}

std::wstring textAt(lua_State* state, int at) {
    std::size_t length = 0;
    lua_pushvalue(state, at);  // a number there stays a number
    char const* const text = lua_tolstring(state, -1, &length);
    std::wstring wide = Qelutils::fromUtf8({text, length});
    lua_pop(state, 1);
    return wide;
}

void read(Given const& given, XStringKind, std::wstring& out) {
    if (!lua_isstring(given.State(), given.at)) refuse(given, "a text");
    out = textAt(given.State(), given.at);
}

void read(Given const& given, XEnumerationKind, int& out) {
    auto const words = wordsOf(given.attribute);
    if (given.Type() == LUA_TNUMBER) {
        read(given, XIntegerKind(), out);
        if (words.empty() || (out >= 0 && std::size_t(out) < words.size())) return;
    } else if (given.Type() == LUA_TSTRING) {
        auto const found = std::find(words.begin(), words.end(), textAt(given.State(), given.at));
        out = int(found - words.begin());
        if (found != words.end()) return;
    }
    std::string all;
    for (wchar_t const* word : words) all += (all.empty() ? "one of " : ", ") + Qelutils::toUtf8(word);
    refuse(given, all.empty() ? "a whole number" : all + " or a number from 0 to " + std::to_string(words.size() - 1));
}

bool isHandle(Given const& given) {
    return given.Type() == LUA_TTABLE && XScriptTables::HasField(given.State(), given.at, XScriptBase::ObjectID);
}

bool isFinite(float const* values, int count) {
    return std::all_of(values, values + count, [](float value) { return std::isfinite(value); });
}

void read(Given const& given, XVectorKind, XVector3& out) {
    if (given.Type() != LUA_TTABLE || isHandle(given)) refuse(given, "a vector");
    out = XScriptTables::VectorAt(given.State(), given.at);
    float const values[] = {out.X(), out.Y(), out.Z()};
    if (!isFinite(values, 3)) refuse(given, "a vector of finite numbers");
}

void read(Given const& given, XQuaternionKind, XQuaternion& out) {
    if (given.Type() != LUA_TTABLE || isHandle(given)) refuse(given, "a quaternion");
    out = XScriptTables::QuaternionAt(given.State(), given.at);
    float const values[] = {out.X(), out.Y(), out.Z(), out.W()};
    if (!isFinite(values, 4)) refuse(given, "a quaternion of finite numbers");
}

void read(Given const& given, XMatrixKind, XMatrix& out) {
    if (given.Type() != LUA_TTABLE || !XScriptTables::MatrixAt(given.State(), given.at, out))
        refuse(given, "a matrix of 16 numbers");
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column)
            if (!std::isfinite(out.Element(row, column))) refuse(given, "a matrix of finite numbers");
}

// A path with a dot is that of an attribute. An object that is not there is logged as well.
db::Attribute* found(XDatabase& database, std::wstring const& path) {
    if (path.find(XDatabase::AttributePathSeparator) != std::wstring::npos)
        return XAttribute(database, path).getAttribute();
    return database.Object(path).getNode();
}

// By its id alone, since objects and attributes are numbered together. False is how a list shows that there is none.
void read(Given const& given, XReferenceKind, db::Attribute*& out) {
    out = nullptr;
    if (given.Type() == LUA_TBOOLEAN && !lua_toboolean(given.State(), given.at)) return;
    XDatabase& database = given.attribute.Database();
    if (given.Type() == LUA_TSTRING) {
        std::wstring const path = textAt(given.State(), given.at);
        out = path.empty() ? nullptr : found(database, path);
        if (!out && !path.empty()) refuse(given, "the path of an object");
        return;
    }
    if (!isHandle(given)) refuse(given, "an object, its path or nil");
    if (XScriptTables::DatabaseAt(given.State(), given.at) != &database) refuse(given, "an object of the same scene");
    out = XScriptTables::AttributeAt(given.State(), given.at).getAttribute();
}

// ---- single values, which may be so many numbers in a row ----

template<class Kind> constexpr int componentCount = 0;
template<> constexpr int componentCount<XVectorKind> = 3;
template<> constexpr int componentCount<XQuaternionKind> = 4;

template<class Kind> typename Kind::Value componentsOf(Given const& given) {
    float values[componentCount<Kind>];
    for (int i = 0; i < componentCount<Kind>; ++i) {
        Given const component{given.call, given.attribute, given.at + i};
        if (component.Type() != LUA_TNUMBER)
            refuse(component, "a table or " + std::to_string(componentCount<Kind>) + " numbers");
        read(component, XFloatKind(), values[i]);
    }
    return typename Kind::Value(values);
}

// The value in the first argument; `after` is where the next stands.
template<class Kind> typename Kind::Value valueOf(Given const& given, int& after) {
    typename Kind::Value value{};
    after = given.at + 1;
    if (lua_isnoneornil(given.State(), given.at)) return value;
    if constexpr (componentCount < Kind >> 0)
        if (given.Type() == LUA_TNUMBER) {
            after = given.at + componentCount<Kind>;
            return componentsOf<Kind>(given);
        }
    read(given, Kind(), value);
    return value;
}

// The place that an index argument means; 0, the first, without one.
int placeAt(XScriptCall& call, int at) {
    if (lua_isnoneornil(call.State(), at)) return 0;
    int isNumber = 0;
    double const index = lua_tonumberx(call.State(), at, &isNumber);
    if (!isNumber || index != std::floor(index))
        call.Fail("argument 2 (index) must be a whole number, not " + shown(call.State(), at));
    return index >= 1 && index <= std::numeric_limits<int>::max() ? int(index) - 1 : -1;
}

// ---- lists ----

bool hasComponents(lua_State* state, int at) {
    lua_rawgeti(state, at, 1);
    bool has = lua_type(state, -1) == LUA_TNUMBER;
    lua_pop(state, 1);
    for (char const* name : {"x", "y", "z", "w"}) has = has || XScriptTables::HasField(state, at, name);
    return has;
}

// Whether it is a list of values, and not one value.
template<class Kind> bool isList(Given const& given) {
    if (given.Type() != LUA_TTABLE) return false;
    if constexpr (std::is_same_v<Kind, XReferenceKind>) return !isHandle(given);
    if constexpr (componentCount < Kind >> 0 || std::is_same_v<Kind, XMatrixKind>)
        return !hasComponents(given.State(), given.at);
    return true;
}

// Calls take(entry) with each entry of a list, which is on the stack's top.
template<class Take> void forEntries(Given const& list, Take const& take) {
    luaL_checkstack(list.State(), 8, nullptr);
    for (int i = 1;; ++i) {
        lua_rawgeti(list.State(), list.at, i);
        bool const isEnd = lua_isnil(list.State(), -1);
        if (!isEnd) take(Given{list.call, list.attribute, lua_gettop(list.State()), i});
        lua_pop(list.State(), 1);
        if (isEnd) return;
    }
}

template<class Kind> Qelutils::Vector<typename Kind::Value> valuesOf(Given const& list) {
    Qelutils::Vector<typename Kind::Value> values;
    forEntries(list, [&](Given const& entry) {
        typename Kind::Value value{};
        read(entry, Kind(), value);
        values.push_back(value);
    });
    return values;
}

// ---- composites: a list of their parts' values, looked at first and written then ----

void setPart(Given const& given, XAttribute const& part, bool write);

void setParts(Given const& list, bool write) {
    if (list.Type() != LUA_TTABLE) refuse(list, "a list of the values of its parts");
    int const count = list.attribute.AttributeCount();
    forEntries(list, [&](Given const& entry) {
        if (entry.entry > count) refuse(list, "a list of at most " + std::to_string(count) + " values");
        setPart(entry, list.attribute.Attribute(entry.entry - 1), write);
    });
}

void setPart(Given const& given, XAttribute const& part, bool write) {
    Given const own{given.call, part, given.at, given.entry};
    bool const hasValues = withKind(part, [&]<class Kind>(Kind kind) {
        if (as<typename Kind::Array>(part.getAttribute())) {
            if (!isList<Kind>(own)) refuse(own, "a list");
            auto const values = valuesOf<Kind>(own);
            if (write) writeValues<Kind>(part, values);
            return;
        }
        typename Kind::Value value{};
        read(own, kind, value);
        if (write) writeValue<Kind>(part.getAttribute(), value, 0);
    });
    if (!hasValues) setParts(own, write);
}

void setComposite(XScriptCall& call, XAttribute const& attribute) {
    Given const given{call, attribute};
    if (!attribute.IsCompositeAttribute() || attribute.IsNode() || !isArgumentGiven(call, 1))
        call.Fail(Qelutils::toUtf8(attribute.Path()) + " is not set as a whole");
    setParts(given, false);
    if (mayWrite(attribute)) setParts(given, true);
}

template<class Kind> void setValue(XScriptCall& call, XAttribute const& attribute) {
    Given const given{call, attribute};
    db::Attribute* const own = attribute.getAttribute();
    if (as<typename Kind::Array>(own) && isList<Kind>(given) && lua_isnoneornil(call.State(), valueAt + 1))
        return writeValues<Kind>(attribute, valuesOf<Kind>(given));
    int after = 0;
    typename Kind::Value const value = valueOf<Kind>(given, after);
    int const place = placeAt(call, after);
    if (mayWrite(attribute)) writeValue<Kind>(own, value, place);
}

template<class Kind> void insertValue(XScriptCall& call, XAttribute const& attribute, bool atEnd) {
    auto* const array = as<typename Kind::Array>(attribute.getAttribute());
    if (!array) return;
    int after = 0;
    typename Kind::Value const value = valueOf<Kind>({call, attribute}, after);
    int const place = atEnd ? int(array->size()) : placeAt(call, after);
    if (place >= 0 && mayWrite(attribute)) array->insert(stored(value), std::size_t(place));
}

}  // namespace

bool isArgumentGiven(XScriptCall const& call, int argument) {
    return !lua_isnoneornil(call.State(), valueAt - 1 + argument);
}

XScriptPushed getAttributeValue(XScriptCall& call, XAttribute const& attribute, int index) {
    if (!attribute.IsValid())
        call.PushNil();
    else if (isArgumentGiven(call, 1) && (attribute.IsArrayAttribute() || attribute.AttributeCount() > 0))
        pushElement(call, attribute, fromScriptIndex(index));
    else
        pushWhole(call, attribute);
    return {1};
}

void setAttributeValue(XScriptCall& call, XAttribute const& attribute) {
    if (!attribute.IsValid()) return;
    if (!withKind(attribute, [&]<class Kind>(Kind) { setValue<Kind>(call, attribute); })) setComposite(call, attribute);
}

void addAttributeValue(XScriptCall& call, XAttribute const& attribute) {
    if (!attribute.IsValid()) return;
    if (attribute.IsAttributeArray()) XAttribute(attribute).AddAttribute();
    withKind(attribute, [&]<class Kind>(Kind) { insertValue<Kind>(call, attribute, true); });
}

// A new element of an attribute array has no value to give.
void insertAttributeValue(XScriptCall& call, XAttribute const& attribute) {
    if (!attribute.IsValid()) return;
    if (attribute.IsAttributeArray()) XAttribute(attribute).InsertValue(placeAt(call, valueAt + 1));
    withKind(attribute, [&]<class Kind>(Kind) { insertValue<Kind>(call, attribute, false); });
}

// What a slip of the pen could ask for would not fit the memory; an element of an attribute array is an object almost.
void setAttributeSize(XScriptCall& call, XAttribute const& attribute, int count) {
    int const most = attribute.IsAttributeArray() ? 1 << 16 : 1 << 24;
    if (count > most) call.Fail("argument 1 (count) must be at most " + std::to_string(most));
    XAttribute(attribute).SetArraySize(count);
}

}  // namespace Tavo
