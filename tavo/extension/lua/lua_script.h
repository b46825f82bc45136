// XLuaScript: the Lua side of the application. There is one, which the application makes over the host's state, or over
// one of its own. It registers the functions that scripts call, gives objects to scripts as tables and takes them back,
// runs scripts, and calls the handlers that scripts add for events.
//
// One script is one undo step: RunScript opens a change block on the active scene. A script that undoes or redoes ends
// what it did so far as a step of its own. Errors in scripts are logged, with a traceback, and never leave this class.
// Main thread only; runs, handlers and notices may nest.
#pragma once
#include "qel/lua/lua_state.h"
#include "tavo/app/script_engine.h"
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Tavo {

class XDatabase;
class XObject;
class XScriptTables;

class XLuaScript : public XScriptEngine {
public:
    // Null: a state of its own, with the standard libraries.
    explicit XLuaScript(LuaPlus::LuaStateOwner* owner);
    ~XLuaScript() override;

    LuaPlus::LuaState* State() const { return _owner ? _owner->Get() : nullptr; }
    XScriptTables& Tables() { return *_tables; }
    // Whether scripts are kept from files and processes, which the state's libraries say.
    bool IsSandboxed() const { return _owner && _owner->Libraries() == LuaPlus::LuaLibraries::Sandboxed; }

    // ---- running: Lua's own result, 0 for a script that ended well; -1 without a state ----
    int RunScript(std::wstring const& text);
    int RunScript(std::wstring const& text, std::wstring const& name);  // what messages call it
    int RunScriptFromFile(std::wstring const& path);
    // As a script: what `chunk` does in the state, of which it gives Lua's result and the error.
    int RunChunk(std::function<int(std::string& error)> const& chunk);
    bool RunFile(std::wstring const& file) override;  // silent when there is none
    // What the last script that failed said, with the traceback; empty when the last one ended well.
    std::string const& LastError() const { return _lastError; }
    // Whether what a failing script changed in the active scene is taken back. It is kept unless this is set.
    void SetTakesBackFailures(bool takesBack) { _takesBackFailures = takesBack; }

    // ---- values on the state's stack, for other modules ----
    void PushScene(XScene& scene);
    void PushObject(XObject const& object);
    void PushObjects(Qelutils::Vector<XObject> const& objects);
    void PushString(std::wstring const& text);
    void PushNil();
    // The functions of that type word ("Transform"), and no others, into the table; an unknown word adds none.
    void RegisterObjectFunctions(LuaPlus::LuaObject const& table, std::wstring const& typeName);

    // ---- events. False for a value that is no function, and for an unknown name ----
    bool AddEventHandler(std::wstring const& name, LuaPlus::LuaObject const& function);
    bool RemoveEventHandler(std::wstring const& name, LuaPlus::LuaObject const& function);
    bool WantsObjectEvents() const override;
    void NotifySceneLoaded(XScene& scene) override;
    void NotifySceneChanged(XSceneChange const& change, bool transient) override;
    void NotifySceneSelectionChanged(XScene& scene, bool transient) override;
    void NotifySceneTimeChanged(XScene& scene, bool transient) override;
    void NotifyObjectCreated(XObject const& object) override;
    void NotifyObjectDeleted(XObject const& object) override;
    void NotifyObjectRemoved(XObject const& object) override;
    void NotifyObjectRenamed(XObject const& object) override;
    void NotifyObjectReparented(XObject const& object) override;

    // ---- what scripts do to the history ----
    void BeginUndo(XScene& scene);
    bool EndUndo(XScene& scene, std::wstring const& name);  // false without a beginning in the same run
    void Undo(XScene& scene);
    void Redo(XScene& scene);
    // Does what no open block may surround, such as emptying the document: the run's blocks are ended first, and opened
    // again after.
    void OutsideBlocks(XScene& scene, std::function<void()> const& action);

private:
    struct Run;  // a script or handler under way
    int run(std::function<int()> const& action);
    void registerFunctions();
    void notify(int event, XObject const* object = nullptr);
    void runHandler(LuaPlus::LuaObject const& handler, XObject const* object);

    std::unique_ptr<LuaPlus::LuaStateOwner> _ownState;
    LuaPlus::LuaStateOwner* _owner;
    std::unique_ptr<XScriptTables> _tables;
    std::map<int, std::vector<LuaPlus::LuaObject>> _handlers;  // by event number
    Run* _run = nullptr;                                       // the innermost
    std::string _lastError;
    bool _takesBackFailures = false;
    int _notices = 0;  // that are being told, one within the other
};

}  // namespace Tavo
