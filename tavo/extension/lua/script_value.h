// How a value of a C++ type goes to a script and comes back: one specialisation of XScriptValue a type. Read takes the
// next argument of a call, or the argument's default where the script gave none; it throws an XScriptError for a value
// of another kind. Push puts a value on the script's stack.
#pragma once
#include "tavo/extension/lua/script_call.h"
#include "tavo/objects/scene.h"
#include <concepts>
#include <functional>
#include <optional>

namespace Tavo {

template<class Value> struct XScriptValue;

template<> struct XScriptValue<bool> {
    static XScriptType Type() { return {XScriptKind::Boolean}; }
    static bool Read(XScriptCall& call) { return call.TakeBoolean(); }
    static void Push(XScriptCall& call, bool value) { call.PushBoolean(value); }
};
template<> struct XScriptValue<int> {
    static XScriptType Type() { return {XScriptKind::Integer}; }
    static int Read(XScriptCall& call) { return call.TakeInteger(); }
    static void Push(XScriptCall& call, int value) { call.PushInteger(value); }
};
template<std::floating_point Value> struct XScriptValue<Value> {
    static XScriptType Type() { return {XScriptKind::Number}; }
    static Value Read(XScriptCall& call) { return Value(call.TakeNumber()); }
    static void Push(XScriptCall& call, Value value) { call.PushNumber(value); }
};
template<> struct XScriptValue<std::wstring> {
    static XScriptType Type() { return {XScriptKind::Text}; }
    static std::wstring Read(XScriptCall& call) { return call.TakeText(); }
    static void Push(XScriptCall& call, std::wstring const& value) { call.PushText(value); }
};
template<> struct XScriptValue<XScriptKey> {
    static XScriptType Type() { return {XScriptKind::Key}; }
    static XScriptKey Read(XScriptCall& call) { return call.TakeKey(); }
};
template<> struct XScriptValue<XVector3> {
    static XScriptType Type() { return {XScriptKind::Vector}; }
    static XVector3 Read(XScriptCall& call) { return call.TakeVector(); }
    static void Push(XScriptCall& call, XVector3 const& value) { call.Push(value); }
};
template<> struct XScriptValue<XQuaternion> {
    static XScriptType Type() { return {XScriptKind::Quaternion}; }
    static XQuaternion Read(XScriptCall& call) { return call.TakeQuaternion(); }
    static void Push(XScriptCall& call, XQuaternion const& value) { call.Push(value); }
};
template<> struct XScriptValue<XMatrix> {
    static XScriptType Type() { return {XScriptKind::Matrix}; }
    static XMatrix Read(XScriptCall& call) { return call.TakeMatrix(); }
    static void Push(XScriptCall& call, XMatrix const& value) { call.Push(value); }
};
template<> struct XScriptValue<XAttribute> {
    static XScriptType Type() { return {XScriptKind::Attribute}; }
    static XAttribute Read(XScriptCall& call) { return call.TakeAttribute(); }
    static void Push(XScriptCall& call, XAttribute const& value) { call.Push(value); }
};
template<> struct XScriptValue<XKeyframe> {
    static XScriptType Type() { return {XScriptKind::Keyframe}; }
    static XKeyframe Read(XScriptCall& call) { return call.TakeKeyframe(); }
    static void Push(XScriptCall& call, XKeyframe const& value) { call.Push(value); }
};
// The object as one of that type, or else an invalid handle: members go to attributes by number, and those of another
// type mean something else.
template<std::derived_from<XObject> Handle> Handle handleOf(XObject const& object) {
    Handle const handle(object);
    return handle.IsValid() ? handle : Handle();
}
template<> inline XObject handleOf<XObject>(XObject const& object) { return object; }
// Any handle: a table, or a path.
template<std::derived_from<XObject> Handle> struct XScriptValue<Handle> {
    static XScriptType Type() { return {XScriptKind::Object, Handle::TypeID.c_str()}; }
    static Handle Read(XScriptCall& call) { return handleOf<Handle>(call.TakeObject()); }
    static void Push(XScriptCall& call, Handle const& value) { call.Push(value); }
};
template<> struct XScriptValue<XScene*> {
    static XScriptType Type() { return {XScriptKind::Scene}; }
    static void Push(XScriptCall& call, XScene const* value) { call.Push(*value); }
};
// Any Lua value, such as a handler.
template<> struct XScriptValue<LuaPlus::LuaObject> {
    static XScriptType Type() { return {XScriptKind::Any}; }
    static LuaPlus::LuaObject Read(XScriptCall& call) { return call.TakeAny(); }
    static void Push(XScriptCall& call, LuaPlus::LuaObject const& value) { call.Push(value); }
};
// What may be missing, where that differs from a default: nil.
template<class Value> struct XScriptValue<std::optional<Value>> {
    static XScriptType Type() { return XScriptValue<Value>::Type(); }
    static std::optional<Value> Read(XScriptCall& call) {
        bool const isGiven = call.HasNext();
        Value value = XScriptValue<Value>::Read(call);
        return isGiven ? std::optional<Value>(std::move(value)) : std::nullopt;
    }
    static void Push(XScriptCall& call, std::optional<Value> const& value) {
        value ? XScriptValue<Value>::Push(call, *value) : call.PushNil();
    }
};
// The same of a value of several numbers in front of a number, which may stand in its place.
template<class Value> struct XScriptOperand { std::optional<Value> value; };
template<class Value> struct XScriptValue<XScriptOperand<Value>> {
    static XScriptType Type() { return XScriptValue<Value>::Type(); }
    static XScriptOperand<Value> Read(XScriptCall& call) {
        if (!call.IsNextNumber() || call.ArgumentsLeft() > 2) return {XScriptValue<std::optional<Value>>::Read(call)};
        call.LeaveOut();
        return {};
    }
};

// ---- lists. Each is a table; where texts or objects are wanted, a single one stands for a list of one ----

template<> struct XScriptValue<Qelutils::Vector<float>> {
    static XScriptType Type() { return {XScriptKind::Numbers}; }
    static Qelutils::Vector<float> Read(XScriptCall& call) { return call.TakeNumbers(); }
    static void Push(XScriptCall& call, Qelutils::Vector<float> const& value) { call.PushList(value); }
};
template<> struct XScriptValue<Qelutils::Vector<int>> {
    static XScriptType Type() { return {XScriptKind::Integers}; }
    static Qelutils::Vector<int> Read(XScriptCall& call) { return call.TakeIntegers(); }
    static void Push(XScriptCall& call, Qelutils::Vector<int> const& value) { call.PushList(value); }
};
template<> struct XScriptValue<std::vector<std::wstring>> {
    static XScriptType Type() { return {XScriptKind::Texts}; }
    static std::vector<std::wstring> Read(XScriptCall& call) { return call.TakeTexts(); }
    static void Push(XScriptCall& call, std::vector<std::wstring> const& value) { call.PushList(value); }
};
template<> struct XScriptValue<Qelutils::Vector<XObject>> {
    static XScriptType Type() { return {XScriptKind::Objects}; }
    static Qelutils::Vector<XObject> Read(XScriptCall& call) { return call.TakeObjects(); }
    static void Push(XScriptCall& call, Qelutils::Vector<XObject> const& value) { call.PushList(value); }
};
template<> struct XScriptValue<Qelutils::Vector<XAttribute>> {
    static XScriptType Type() { return {XScriptKind::Attributes}; }
    static void Push(XScriptCall& call, Qelutils::Vector<XAttribute> const& value) { call.PushList(value); }
};
template<> struct XScriptValue<XDropOff> {
    static XScriptType Type() { return {XScriptKind::DropOff}; }
    static XDropOff Read(XScriptCall& call) { return call.TakeDropOff(); }
};
// Of a document that is edited: objects, and all that match the patterns among them.
struct XScriptMatches {
    Qelutils::Vector<XObject> objects;
};
template<> struct XScriptValue<XScriptMatches> {
    static XScriptType Type() { return {XScriptKind::Objects}; }
    static XScriptMatches Read(XScriptCall& call) { return {call.TakeMatches()}; }
};

// ---- what a function is called on: the table in argument 1 ----

template<class Self> struct XScriptSelf;

// Handles: nothing is written back.
struct XScriptHandleSelf {
    void Store(XScriptCall&) const {}
    int GiveBack(XScriptCall& call, bool) const { return call.GiveSelf(); }
};
template<> struct XScriptSelf<XObject> : XScriptHandleSelf {
    explicit XScriptSelf(XScriptCall& call) : value(call.SelfObject()) {}
    XObject value;
};
template<std::derived_from<XObject> Handle> struct XScriptSelf<Handle> : XScriptHandleSelf {
    explicit XScriptSelf(XScriptCall& call) : value(handleOf<Handle>(call.SelfObject())) {}
    Handle value;
};
template<> struct XScriptSelf<XAttribute> : XScriptHandleSelf {
    explicit XScriptSelf(XScriptCall& call) : value(call.SelfAttribute()) {}
    XAttribute value;
};
template<> struct XScriptSelf<XKeyframe> : XScriptHandleSelf {
    explicit XScriptSelf(XScriptCall& call) : value(call.SelfKeyframe()) {}
    XKeyframe value;
};
template<> struct XScriptSelf<XScene> : XScriptHandleSelf {
    explicit XScriptSelf(XScriptCall& call) : value(call.SelfScene()) {}
    XScene& value;
};
// The application is no table's own: its functions are called with a dot, and with a colon too.
template<> struct XScriptSelf<XApplication> : XScriptHandleSelf {
    explicit XScriptSelf(XScriptCall& call) : value(call.SelfApplication()) {}
    XApplication& value;
};

// Values: what changed goes back into the table.
template<class Value> struct XScriptValueSelf {
    explicit XScriptValueSelf(Value const& value_) : value(value_) {}
    void Store(XScriptCall& call) const { call.StoreSelf(value); }
    int GiveBack(XScriptCall& call, bool changed) const {
        if (changed) Store(call);
        return call.GiveSelf();
    }
    Value value;
};
template<> struct XScriptSelf<XVector3> : XScriptValueSelf<XVector3> {
    explicit XScriptSelf(XScriptCall& call) : XScriptValueSelf(call.SelfVector()) {}
};
template<> struct XScriptSelf<XQuaternion> : XScriptValueSelf<XQuaternion> {
    explicit XScriptSelf(XScriptCall& call) : XScriptValueSelf(call.SelfQuaternion()) {}
};
template<> struct XScriptSelf<XMatrix> : XScriptValueSelf<XMatrix> {
    explicit XScriptSelf(XScriptCall& call) : XScriptValueSelf(call.SelfMatrix()) {}
};

}  // namespace Tavo
