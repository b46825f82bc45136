// The root of the library. The host obtains the one XApplication with Instance, starts it with Startup, and reaches
// scenes, settings, script engines and the log through it. It runs no loop of its own: the host calls Update once
// per cycle and NotifyOnIdle when idle.
//
// Three phases: constructed (only Instance, Startup and the log calls mean anything, and the log is silent), started
// (there is always at least one scene; scene 0 is permanent), shut down (the object is gone, Instance makes a new one).
// Main thread only. Scene list operations never fail: an index out of range stands for the active scene.
#pragma once
#include "qel/utils/logger.h"
#include "qel/utils/vector.h"
#include "tavo/app/script_base.h"
#include "tavo/app/word.h"
#include <algorithm>
#include <cwchar>
#include <string>

class wxString;

namespace LuaPlus {
class LuaStateOwner;
}  // namespace LuaPlus
namespace qellua {
class LuaFrame;
}

namespace Tavo {

class XCommand;
class XDatabase;
class XLuaScript;
class XObject;
class XScene;
class XSceneObserver;
class XScriptEngine;
class XSettings;
class XSettingsObserver;

class XApplication : public XScriptBase {
public:
    using Level = Qelutils::BasicLogger::Level;

    static constexpr int SystemLogBufferSize = 16384;  // characters of a formatted message, the final zero included
    static constexpr XWord InitializationScriptName = L"InitializeApplication.lua";

    // ---- life ----
    static XApplication& Instance() { return _instance ? *_instance : makeInstance(); }
    // `state` and `logger` are borrowed and may be null; `executableDir` ends as the host likes it.
    void Startup(LuaPlus::LuaStateOwner* state, Qelutils::BasicLogger* logger, wchar_t const* executableDir);
    void Shutdown();  // deletes this object
    // Runs InitializationScriptName of `directory`, which ends in a separator.
    void RunStartupScripts(std::wstring const& directory) const;
    void SetFrame(qellua::LuaFrame* frame, wxString name);  // borrowed
    void UpdateFrame();
    void UpdateDisplay();
    void Update();  // commits pending transient changes of all documents, then refreshes frame and display
    void NotifyOnIdle();

    // ---- parts; the references are valid while started ----
    std::wstring const& ExecutableDir() const { return _executableDir; }
    XSettings& Settings() const { return *_settings; }
    XScene& ActiveScene() const { return *_activeScene; }
    bool IsStarted() const { return _activeScene && _settings; }
    Qelutils::Vector<XSceneObserver*> const& SceneObservers() const { return _sceneObservers; }
    Qelutils::Vector<XSettingsObserver*> const& SettingsObservers() const { return _settingsObservers; }

    // ---- scenes; these, too, only while started ----
    unsigned int SceneCount() const;
    XScene& GetScene(int index);
    int ActiveSceneIndex() const;       // -1 when the active scene is not in the list
    XScene& SetActiveScene(int index);  // clears the selection of the scene that is left; told as a load
    XScene& ActivateNextScene();        // wraps around
    XScene& ActivatePreviousScene();
    int AddScene();                                    // the index of the new scene, which is active
    XScene& RemoveScene();                             // the active scene, unless it is scene 0; without its Unregister
    XScene& RemoveScene(int index);                    // not scene 0; with its Unregister
    XScene& RemoveScenes();                            // all but the first, which is made new
    XScene& ClearScenes();                             // New on each
    XDatabase* GetDatabaseByID(int id);                // scenes in order, then the settings; or null
    XScene* GetSceneByName(std::wstring const& name);  // exact, or null

    // ---- observers, called in the order of addition ----
    XApplication& AddSceneObserver(XSceneObserver* observer);
    XApplication& RemoveSceneObserver(XSceneObserver* observer);
    XApplication& AddSettingsObserver(XSettingsObserver* observer);
    XApplication& RemoveSettingsObserver(XSettingsObserver* observer);
    // Calls visit(observer&) for each in order. One that is removed under way is not called any more, one that is added
    // is called from the next time on.
    template<class Visit> void ForEachSceneObserver(Visit visit);
    template<class Visit> void ForEachSettingsObserver(Visit visit);

    // ---- script engines, which add and remove themselves ----
    XApplication& AddScriptEngine(XScriptEngine* engine);
    XApplication& RemoveScriptEngine(XScriptEngine* engine);
    template<class Visit> void ForEachScriptEngine(Visit visit);
    bool RunScriptFromFile(std::wstring const& file);  // by the first engine that can; false without one

    // ---- log: silent without a sink. Formats are printf-style; %s takes wide text ----
    Qelutils::BasicLogger* Logger() const { return _logger; }  // the host's sink, or null
    XApplication& Log(Level level, std::wstring const& text);
    XApplication& Log(Level level, wchar_t const* text);
    XApplication& Log(Level level, char const* text);
    template<class First, class... Rest>
    XApplication& Log(Level level, wchar_t const* format, First const& first, Rest const&... rest) {
        return logFormatted(level, format, first, rest...);
    }
    template<class... Values> XApplication& LogInformation(wchar_t const* format, Values const&... values) {
        return logFormatted(Level::Information, format, values...);
    }
    template<class... Values> XApplication& LogWarning(wchar_t const* format, Values const&... values) {
        return logFormatted(Level::Warning, format, values...);
    }
    template<class... Values> XApplication& LogError(wchar_t const* format, Values const&... values) {
        return logFormatted(Level::Error, format, values...);
    }
    template<class... Values> XApplication& LogDebug(wchar_t const* format, Values const&... values) {
        return logFormatted(Level::Debug, format, values...);
    }

    // ---- settings file ----
    bool SaveSettings(std::wstring const& file);
    // False: the settings are the defaults. A file that is there but cannot be read logs why.
    bool LoadSettings(std::wstring const& file);

    // ---- commands ----
    std::wstring const& ActiveCommandName() const { return _activeCommandName; }
    std::wstring const& LastCommandName() const { return _lastCommandName; }
    XApplication& SetActiveCommandName(std::wstring const& name);
    XApplication& SetLastCommandName(std::wstring const& name);
    XCommand ActiveCommand();  // the settings' nodes of these names; invalid, and logged, when there is none
    XCommand LastCommand();

    // ---- scripts ----
    XLuaScript* LuaScript() const { return _luaScript; }  // null unless started
    // What the table "app" offers to scripts: a command's node by its path, what its run made, the active scene.
    XObject Application_Command(std::wstring const& path);
    void Application_ResetActiveCommand();
    Qelutils::Vector<XObject> const& Application_RunActiveCommand();
    Qelutils::Vector<XObject> const& Application_RunLastCommand();
    Qelutils::Vector<XObject> const& Application_RunCommand(std::wstring const& name);  // not in the table, on purpose
    XScene* Application_Scene();

protected:
    XApplication();
    ~XApplication() override;

    // On the active scene. The results of the last run are kept until the next.
    void runCommand(std::wstring const& name);
    void runActiveCommand();
    void runLastCommand();
    void resetActiveCommand();  // its parameters to their defaults

private:
    // A text argument is passed as the pointer that the format reads.
    static wchar_t const* argument(std::wstring const& text) { return text.c_str(); }
    static wchar_t const* argument(XWord const& text) { return text.c_str(); }
    template<class Value> static Value argument(Value value) { return value; }
    template<class... Values> XApplication& logFormatted(Level level, wchar_t const* format, Values const&... values) {
        return logList(level, format, argument(values)...);
    }
    XApplication& logList(Level level, wchar_t const* format, ...);

    // While observers are told, removing one leaves a null entry, so that positions stay; the outermost end takes them
    // out of the list that it walked, and so does the next telling of another.
    template<class Observer, class Visit> void forEach(Qelutils::Vector<Observer*>& observers, Visit& visit) {
        ++_telling;
        for (std::size_t i = 0, count = observers.size(); i < count; ++i)
            if (i < observers.size() && observers[i]) visit(*observers[i]);
        if (--_telling == 0) std::erase(observers, nullptr);
    }
    template<class Observer> void remove(Qelutils::Vector<Observer*>& observers, Observer* observer) {
        if (_telling)
            std::replace(observers.begin(), observers.end(), observer, static_cast<Observer*>(nullptr));
        else
            std::erase(observers, observer);
    }

    static XApplication& makeInstance();
    XScene& activateNeighbour(int step);

    static XApplication* _instance;

    Qelutils::Vector<XScene*> _scenes;  // owned; index 0 is permanent
    Qelutils::Vector<XSceneObserver*> _sceneObservers;
    Qelutils::Vector<XSettingsObserver*> _settingsObservers;
    Qelutils::Vector<XScriptEngine*> _scriptEngines;
    int _telling = 0;                // nested calls of forEach
    XScene* _activeScene = nullptr;  // one of _scenes
    XSettings* _settings = nullptr;  // owned
    std::wstring _activeCommandName;
    std::wstring _lastCommandName;
    Qelutils::Vector<XObject> _commandResults;
    LuaPlus::LuaStateOwner* _luaState = nullptr;
    XLuaScript* _luaScript = nullptr;  // owned
    Qelutils::BasicLogger* _logger = nullptr;
    qellua::LuaFrame* _frame = nullptr;
    std::wstring _frameName;
    std::wstring _executableDir;
};

template<class Visit> void XApplication::ForEachSceneObserver(Visit visit) { forEach(_sceneObservers, visit); }

template<class Visit> void XApplication::ForEachSettingsObserver(Visit visit) { forEach(_settingsObservers, visit); }

template<class Visit> void XApplication::ForEachScriptEngine(Visit visit) { forEach(_scriptEngines, visit); }

}  // namespace Tavo
