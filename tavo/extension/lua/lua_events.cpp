// What scripts hear of the application. A handler is called with one table: of a scene's event an empty one, of an
// object's event one with the object's `id`.
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/script_events.h"
#include "tavo/objects/object.h"
#include <algorithm>
#include <lua.hpp>

namespace Tavo {
namespace {

int eventNumber(std::wstring const& name) {
    std::string const word = Qelutils::toUtf8(name);
    auto const found = std::find_if(std::begin(ScriptEvents), std::end(ScriptEvents),
                                    [&](XScriptEventRow const& row) { return word == row.name; });
    return found == std::end(ScriptEvents) ? -1 : int(found - std::begin(ScriptEvents));
}

constexpr int deepestNotice = 16;

void pushArgument(lua_State* state, XObject const* object) {
    lua_newtable(state);
    if (!object) return;
    lua_pushinteger(state, object->ObjectID());
    lua_setfield(state, -2, "id");
}

}  // namespace

bool XLuaScript::AddEventHandler(std::wstring const& name, LuaPlus::LuaObject const& function) {
    int const number = eventNumber(name);
    if (number < 0 || !function.IsFunction()) return false;
    _handlers[number].push_back(function);
    return true;
}

// Once, the first, where it was added more than once.
bool XLuaScript::RemoveEventHandler(std::wstring const& name, LuaPlus::LuaObject const& function) {
    int const number = eventNumber(name);
    if (number < 0 || !function.IsFunction()) return false;
    std::vector<LuaPlus::LuaObject>& handlers = _handlers[number];
    auto const found = std::find(handlers.begin(), handlers.end(), function);
    if (found != handlers.end()) handlers.erase(found);
    return true;
}

bool XLuaScript::WantsObjectEvents() const {
    return std::any_of(_handlers.lower_bound(OnObjectCreated), _handlers.end(),
                       [](auto const& entry) { return !entry.second.empty(); });
}

// A copy of the list is walked, so that handlers may add and remove handlers. What a handler changes is a step of its
// own, and told in its turn; one that changes the scene each time it hears of a change is stopped by the depth.
void XLuaScript::notify(int number, XObject const* object) {
    auto const found = _handlers.find(number);
    if (!State() || found == _handlers.end() || found->second.empty()) return;
    if (_notices == deepestNotice) {
        XApplication::Instance().LogError(L"Error running script: handlers of %s cause each other without end",
                                          Qelutils::fromUtf8(ScriptEvents[number].name));
        return;
    }
    ++_notices;
    std::vector<LuaPlus::LuaObject> const handlers = found->second;
    for (LuaPlus::LuaObject const& handler : handlers) runHandler(handler, object);
    --_notices;
}

void XLuaScript::runHandler(LuaPlus::LuaObject const& handler, XObject const* object) {
    lua_State* const state = State()->GetCState();
    std::string error;
    int const status = run([&] {
        int result = LUA_ERRRUN;
        try {
            State()->Protect([&] {
                luaL_checkstack(state, LUA_MINSTACK, nullptr);
                handler.Push(state);
                pushArgument(state, object);
                result = State()->Call(1, 0, error);
            });
        } catch (LuaPlus::LuaException const& failure) { error = failure.what(); }
        return result;
    });
    if (status != LUA_OK) XApplication::Instance().LogError(L"Error running script: %s", Qelutils::fromUtf8(error));
}

void XLuaScript::NotifySceneLoaded(XScene&) { notify(OnSceneLoaded); }
void XLuaScript::NotifySceneChanged(XSceneChange const&, bool) { notify(OnSceneChanged); }
void XLuaScript::NotifySceneSelectionChanged(XScene&, bool) { notify(OnSelectionChanged); }
void XLuaScript::NotifySceneTimeChanged(XScene&, bool) { notify(OnSceneTimeChanged); }
void XLuaScript::NotifyObjectCreated(XObject const& object) { notify(OnObjectCreated, &object); }
void XLuaScript::NotifyObjectDeleted(XObject const& object) { notify(OnObjectDeleted, &object); }
void XLuaScript::NotifyObjectRemoved(XObject const& object) { notify(OnObjectRemoved, &object); }
void XLuaScript::NotifyObjectRenamed(XObject const& object) { notify(OnObjectRenamed, &object); }
void XLuaScript::NotifyObjectReparented(XObject const& object) { notify(OnObjectReparented, &object); }

}  // namespace Tavo
