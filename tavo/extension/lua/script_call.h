// A call of one function by a script, under way: takes its arguments, one after the other, and pushes its results.
//
// Every argument may be left out: then its default stands. A value of another kind is refused with a message that names
// function and argument. Where a vector is wanted, a table or three numbers will do; where an object is wanted, its
// table or its path.
#pragma once
#include "qel/lua/lua_state.h"
#include "tavo/animation/keyframe.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/matrix.h"
#include "tavo/objects/object.h"
#include "tavo/objects/quaternion.h"
#include "tavo/objects/vector3.h"
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace Tavo {

class XApplication;
class XLuaScript;
class XScene;
class XScriptFunction;

enum class XScriptKind {
    Self,
    Any,
    Boolean,
    Integer,
    Number,
    Text,
    Key,  // a name or a number
    Vector,
    Quaternion,
    Matrix,
    Object,
    Attribute,
    Keyframe,
    Scene,
    Numbers,
    Integers,
    Texts,
    Objects,
    Attributes,
    DropOff,  // a number, its range, or a table
};

struct XScriptType {
    XScriptKind kind;
    wchar_t const* objectType = nullptr;  // of an object: the word of its type
};

// The name of an argument, and what stands for it when the script gives none.
struct XScriptArgument {
    XScriptArgument(char const* name_) : name(name_) {}
    XScriptArgument(char const* name_, bool value) : name(name_), otherwise(value) {}
    XScriptArgument(char const* name_, int value) : name(name_), otherwise(double(value)) {}
    XScriptArgument(char const* name_, double value) : name(name_), otherwise(value) {}
    XScriptArgument(char const* name_, char const* value) : name(name_), otherwise(value) {}

    char const* name;
    std::variant<std::monostate, bool, double, char const*> otherwise;
};

// What an object, an attribute and the like is found by: its number, or its name or path.
struct XScriptKey {
    bool isNumber = false;
    int number = 0;
    std::wstring text;
};

// A call that can't be made; its text is the script's error.
class XScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class XScriptCall {
public:
    // Inside a native function whose upvalues are those that XScriptTables gives to functions.
    XScriptCall(lua_State* state, XLuaScript& script, XScriptFunction const& function) :
        _state(state), _script(script), _function(function) {}
    XScriptCall(XScriptCall const&) = delete;
    XScriptCall& operator=(XScriptCall const&) = delete;

    lua_State* State() const { return _state; }
    XLuaScript& Script() const { return _script; }
    XDatabase* Database() const { return _database; }          // of self; null without one
    [[noreturn]] void Fail(std::string const& message) const;  // "Transform:alignAxis: ..."

    // ---- the next argument ----
    bool HasNext() const;  // it was given, and is not nil
    bool IsNextNumber() const;
    bool IsNextText() const;
    bool IsNextObject() const;      // or an attribute or a key: a table with an id
    bool IsNextQuaternion() const;  // a table with w or a fourth value, and not a matrix
    bool IsNextMatrix() const;      // a table with sixteen values
    bool TakeBoolean();
    int TakeInteger();
    double TakeNumber();
    std::wstring TakeText();
    XScriptKey TakeKey();
    XVector3 TakeVector();
    XQuaternion TakeQuaternion();
    XMatrix TakeMatrix();
    XObject TakeObject();
    XAttribute TakeAttribute();
    XKeyframe TakeKeyframe();
    LuaPlus::LuaObject TakeAny();
    Qelutils::Vector<float> TakeNumbers();
    Qelutils::Vector<int> TakeIntegers();
    std::vector<std::wstring> TakeTexts();
    Qelutils::Vector<XObject> TakeObjects();

    // ---- arguments that decide among several ways to call ----
    // The next argument was left out; what stands in its place is for the one after it.
    void PassOver() { ++_argument; }
    int ArgumentsLeft() const;  // nils at the end are none

    // ---- what it is called on ----
    XObject SelfObject();
    XAttribute SelfAttribute();
    XKeyframe SelfKeyframe();
    XScene& SelfScene();
    XApplication& SelfApplication();
    XVector3 SelfVector();
    XQuaternion SelfQuaternion();
    XMatrix SelfMatrix();
    void StoreSelf(XVector3 const& value);
    void StoreSelf(XQuaternion const& value);
    void StoreSelf(XMatrix const& value);
    int GiveSelf();  // pushes it; 1

    // ---- results ----
    void PushNil();
    void PushBoolean(bool value);
    void PushInteger(long long value);
    void PushNumber(double value);
    void PushText(std::wstring const& value);
    void Push(XVector3 const& value);
    void Push(XQuaternion const& value);
    void Push(XMatrix const& value);
    void Push(XObject const& value);  // nil for an invalid one
    void Push(XAttribute const& value);
    void Push(XKeyframe const& value);
    void Push(XScene const& value);
    void Push(LuaPlus::LuaObject const& value);
    void PushList(Qelutils::Vector<float> const& values);
    void PushList(Qelutils::Vector<int> const& values);
    void PushList(std::vector<std::wstring> const& values);
    void PushList(Qelutils::Vector<XObject> const& values);
    void PushList(Qelutils::Vector<XAttribute> const& values);

private:
    XScriptArgument const& argument() const;
    bool begin();  // whether the next argument was given; steps over it if it was not
    void end(int count = 1) { _position += count, ++_argument; }
    [[noreturn]] void refuse(char const* wanted) const;
    bool takeComponents(float* out, int count);
    template<class Take> void forEachInList(char const* wanted, Take const& take);
    XObject objectAt(int index, bool& isObject) const;
    void beginSelf(long long& object);
    void beginValue();
    int sceneID() const;
    template<class Values, class PushOne> void pushList(Values const& values, PushOne const& push);

    lua_State* _state;
    XLuaScript& _script;
    XScriptFunction const& _function;
    XDatabase* _database = nullptr;
    int _position = 2;  // on the stack, of the next argument
    int _argument = 0;  // its number in the row
};

}  // namespace Tavo
