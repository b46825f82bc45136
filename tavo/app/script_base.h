// The base of what offers functions to scripts. It carries no state: the keys of the tables that scripts see, and
// helpers for calls into scripts, which are defined on the script floor and work on the application's Lua state.
#pragma once
#include "qel/utils/vector.h"
#include <initializer_list>
#include <string>
#include <variant>
#include <vector>

namespace LuaPlus {
class LuaException;
class LuaObject;
}  // namespace LuaPlus

namespace Tavo {

class XObject;

class XScriptBase {
public:
    static constexpr char SceneMetaTable[] = "__sceneMetaTable", IndexMetaMethod[] = "__index",
                          LightUserDataObject[] = "__object", ObjectID[] = "__objectID",
                          ObjectSubID[] = "__objectSubID", SceneID[] = "__sceneID";
    static constexpr char Argument01[] = "argument01", Argument02[] = "argument02", Argument03[] = "argument03",
                          Argument04[] = "argument04", Argument05[] = "argument05", Argument06[] = "argument06",
                          Argument07[] = "argument07", Argument08[] = "argument08", Argument09[] = "argument09",
                          Argument10[] = "argument10", Argument11[] = "argument11", Argument12[] = "argument12",
                          Argument13[] = "argument13", Argument14[] = "argument14";

    virtual ~XScriptBase() = default;

protected:
    // Calls a function of a global table, which gets the table itself first, as a call with a colon does. False, and
    // logged, when there is none or it fails; the object is what it gives back, or invalid.
    bool runLuaFunction(std::wstring const& tableName, std::wstring const& functionName) const;
    // With up to three further arguments, each a text or a whole number.
    template<class... Values, class Result = XObject>
    Result runLuaFunctionReturnObject(std::wstring const& tableName, std::wstring const& functionName,
                                      Values const&... values) const {
        static_assert(sizeof...(Values) <= 3);
        return callLuaFunction(tableName, functionName, {Argument(values)...});
    }
    // The entries of a list, up to the first of another kind. Each empties `out`.
    void buildXStringArray(LuaPlus::LuaObject const& list, std::vector<std::wstring>& out) const;
    void buildXFloatArray(LuaPlus::LuaObject const& list, Qelutils::Vector<float>& out) const;
    void buildXIntegerArray(LuaPlus::LuaObject const& list, Qelutils::Vector<int>& out) const;
    void logLuaFunctionError(std::wstring const& tableName, std::wstring const& functionName) const;
    void logLuaExceptionError(LuaPlus::LuaException const& exception) const;
    bool assertPreconditions() const;  // that the application is started and has a Lua state; logged when not

private:
    using Argument = std::variant<std::wstring, int>;
    XObject callLuaFunction(std::wstring const& tableName, std::wstring const& functionName,
                            std::initializer_list<Argument> arguments) const;
    bool callLua(std::wstring const& tableName, std::wstring const& functionName,
                 std::initializer_list<Argument> arguments, XObject* result) const;
};

}  // namespace Tavo
