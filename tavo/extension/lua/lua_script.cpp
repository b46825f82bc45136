#include "tavo/extension/lua/lua_script.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/extension/lua/script_sets.h"
#include "tavo/extension/lua/script_tables.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"
#include <filesystem>
#include <lua.hpp>
#include <set>

namespace Tavo {
namespace {

std::wstring const stepLabel = L"Execute Lua Script";

constexpr int noState = -1;

}  // namespace

// A script or a handler under way, and the blocks that it holds open.
struct XLuaScript::Run {
    Run* outer;
    int database;             // the active scene's at the beginning, on which it holds one
    bool isOutermost;         // no block was open there before
    std::map<int, int> open;  // those of beginUndo, by the document's id
    std::set<int> outside;    // documents on which its blocks, and those of the runs around it, are ended for a while

    int blocksOn(int id) const {
        if (outside.count(id)) return 0;
        auto const found = open.find(id);
        return (database == id ? 1 : 0) + (found == open.end() ? 0 : found->second) + (outer ? outer->blocksOn(id) : 0);
    }
};

XLuaScript::XLuaScript(LuaPlus::LuaStateOwner* owner) :
    _ownState(owner ? nullptr : std::make_unique<LuaPlus::LuaStateOwner>()), _owner(owner ? owner : _ownState.get()) {
    if (!*State()) {
        _owner = nullptr;
        return;
    }
    try {
        State()->Protect([this] { registerFunctions(); });
    } catch (LuaPlus::LuaException const& error) {
        XApplication::Instance().LogError(L"Error running script: %s", Qelutils::fromUtf8(error.what()));
        _owner = nullptr;
    }
}

// A state of its own goes while all else stands: scripts may have finalizers. One that is borrowed is left without us.
XLuaScript::~XLuaScript() {
    _handlers.clear();
    if (_ownState)
        _ownState.reset();
    else if (_tables)
        _tables->Disconnect();
}

void XLuaScript::registerFunctions() {
    lua_State* const state = State()->GetCState();
    _tables = std::make_unique<XScriptTables>(*this, state);
    lua_getglobal(state, AppFunctions().table);
    if (!lua_istable(state, -1)) lua_newtable(state);
    _tables->RegisterFunctions(state, AppFunctions());
    lua_setglobal(state, AppFunctions().table);
}

// ---- running ----

int XLuaScript::run(std::function<int()> const& action) {
    XDatabase& database = XApplication::Instance().ActiveScene();
    Run current{_run, database.DatabaseID(), database.IsValid() && !database.SceneGraph()->isInChangeBlock(), {}, {}};
    database.BeginChangeBlock();
    _run = &current;
    int const status = action();
    _run = current.outer;
    for (auto const& [id, count] : current.open) {
        if (count > 0) XApplication::Instance().LogWarning(L"A script began an undo step that it did not end");
        XDatabase* const other = XScriptTables::DatabaseOf(id);
        for (int i = 0; i < count && other; ++i) other->EndChangeBlock(stepLabel);
    }
    XDatabase* const still = XScriptTables::DatabaseOf(current.database);
    if (!still) return status;
    if (status != LUA_OK && _takesBackFailures && current.isOutermost)
        still->CancelChangeBlock();
    else
        still->EndChangeBlock(stepLabel);
    return status;
}

int XLuaScript::RunChunk(std::function<int(std::string& error)> const& chunk) {
    if (!State()) return noState;
    return run([&] {
        std::string error;
        int const status = chunk(error);
        _lastError = error;
        if (status != LUA_OK) XApplication::Instance().LogError(L"Error running script: %s", Qelutils::fromUtf8(error));
        return status;
    });
}

int XLuaScript::RunScript(std::wstring const& text) { return RunScript(text, L"script"); }

int XLuaScript::RunScript(std::wstring const& text, std::wstring const& name) {
    return RunChunk([&](std::string& error) {
        return State()->DoString(Qelutils::toUtf8(text), "=" + Qelutils::toUtf8(name), error);
    });
}

int XLuaScript::RunScriptFromFile(std::wstring const& path) {
    return RunChunk([&](std::string& error) { return State()->DoFile(path, error); });
}

bool XLuaScript::RunFile(std::wstring const& file) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(Qelutils::toUtf8(file), ignored)) return false;
    return RunScriptFromFile(file) == LUA_OK;
}

// ---- the history ----

void XLuaScript::OutsideBlocks(XScene& scene, std::function<void()> const& action) {
    int const id = scene.DatabaseID();
    int const count = _run ? _run->blocksOn(id) : 0;
    if (count == 0) return action();
    Run& current = *_run;
    current.outside.insert(id);  // handlers may run from here on
    for (int i = 0; i < count; ++i) scene.EndChangeBlock(stepLabel);
    action();
    for (int i = 0; i < count; ++i) scene.BeginChangeBlock();
    current.outside.erase(id);
}

void XLuaScript::Undo(XScene& scene) {
    OutsideBlocks(scene, [&] { scene.Undo(); });
}
void XLuaScript::Redo(XScene& scene) {
    OutsideBlocks(scene, [&] { scene.Redo(); });
}

void XLuaScript::BeginUndo(XScene& scene) {
    if (_run && scene.IsValid()) ++_run->open[scene.DatabaseID()];
    scene.BeginChangeBlock();
}

bool XLuaScript::EndUndo(XScene& scene, std::wstring const& name) {
    if (_run && _run->open[scene.DatabaseID()] == 0) return false;
    if (_run) --_run->open[scene.DatabaseID()];
    scene.EndChangeBlock(name);
    return true;
}

// ---- values ----

void XLuaScript::PushScene(XScene& scene) {
    if (State()) _tables->PushScene(State()->GetCState(), scene);
}
void XLuaScript::PushObject(XObject const& object) {
    if (State()) _tables->PushObject(State()->GetCState(), object);
}
void XLuaScript::PushString(std::wstring const& text) {
    if (State()) State()->PushString(text);
}
void XLuaScript::PushNil() {
    if (State()) State()->PushNil();
}

void XLuaScript::PushObjects(Qelutils::Vector<XObject> const& objects) {
    if (!State()) return;
    lua_State* const state = State()->GetCState();
    lua_newtable(state);
    lua_Integer place = 0;
    for (XObject const& object : objects) {
        _tables->PushObject(state, object);
        lua_rawseti(state, -2, ++place);
    }
}

void XLuaScript::RegisterObjectFunctions(LuaPlus::LuaObject const& table, std::wstring const& typeName) {
    XScriptSet const* const set = FunctionsOfType(typeName);
    if (!State() || !set || !table.IsTable()) return;
    State()->Protect([&] {
        table.Push(State()->GetCState());
        _tables->RegisterFunctions(State()->GetCState(), *set);
    });
}

}  // namespace Tavo
