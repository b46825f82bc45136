// The handlers that scripts add for events.
#include "tavo/extension/lua/lua_script.h"

namespace Tavo {

bool XLuaScript::AddEventHandler(std::wstring const&, LuaPlus::LuaObject const&) { return false; }
bool XLuaScript::RemoveEventHandler(std::wstring const&, LuaPlus::LuaObject const&) { return false; }

}  // namespace Tavo
