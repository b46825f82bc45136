// The base of what offers functions to scripts. It carries no state: the keys of the tables that scripts see, and
// helpers for calls into scripts, which are defined on the script floor and work on the application's Lua state.
#pragma once
#include "qel/utils/vector.h"
#include <exception>
#include <string>
#include <variant>
#include <vector>

namespace LuaPlus {
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
};

}  // namespace Tavo
