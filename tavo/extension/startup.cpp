// The one place that knows all parts of the application: what is made when it starts, in which order, and what goes
// when it shuts down. Documents outlive the scripts and the plug-ins, and the settings outlive the scenes.
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/objects/object.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/settings.h"

namespace Tavo {

XApplication::XApplication() = default;

XApplication::~XApplication() = default;

// The first scene stays without content until the host makes it new or opens a file.
void XApplication::Startup(LuaPlus::LuaStateOwner* state, Qelutils::BasicLogger* logger, wchar_t const* executableDir) {
    if (IsStarted()) return;
    _logger = logger;
    _luaState = state;
    _settings = new XSettings;
    _settings->Register();
    _activeScene = _scenes.emplace_back(new XScene);
    _activeScene->Register();
    _luaScript = new XLuaScript(state);
    AddScriptEngine(_luaScript);
    _executableDir = executableDir ? executableDir : L"";
}

void XApplication::Shutdown() {
    // Of the active scene alone, as often as there are scenes: a decision of this system.
    for (std::size_t i = _scenes.size(); i-- > 0;) _activeScene->Term();
    RemoveScriptEngine(_luaScript);
    delete _luaScript;
    _luaScript = nullptr;
    for (std::size_t i = _scenes.size(); i-- > 0;) {
        _activeScene = _scenes[i];
        _activeScene->Unregister();
        delete _activeScene;
    }
    _scenes.clear();
    if (_settings) _settings->Unregister();
    delete _settings;
    _activeScene = nullptr;
    _settings = nullptr;
    _luaState = nullptr;
    _logger = nullptr;
    _commandResults.clear();
    _sceneObservers.clear();
    _instance = nullptr;
    delete this;
}

}  // namespace Tavo
