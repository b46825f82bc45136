#include "tavo/app/application.h"
#include "qel/lua/lua_types.h"
#include "qel/utils/text.h"
#include "qel/widgets/app_main_loop.h"
#include "tavo/app/script_engine.h"
#include <cstdarg>
#include <wx/string.h>

namespace Tavo {

XApplication* XApplication::_instance = nullptr;

XApplication& XApplication::Instance() {
    if (!_instance) _instance = new XApplication;
    return *_instance;
}

void XApplication::SetFrame(qellua::LuaFrame* frame, wxString name) {
    _frame = frame;
    _frameName = name.ToStdWstring();
}

void XApplication::UpdateFrame() {
    if (_frame && !_frameName.empty()) _frame->updateUI(_frameName);
}

void XApplication::UpdateDisplay() {
    if (Mirrel::gMirrel.mainLoop) Mirrel::gMirrel.mainLoop->redraw();
}

// ---- scripts ----

XApplication& XApplication::AddScriptEngine(XScriptEngine* engine) {
    if (engine) _scriptEngines.push_back(engine);
    return *this;
}

XApplication& XApplication::RemoveScriptEngine(XScriptEngine* engine) {
    remove(_scriptEngines, engine);
    return *this;
}

bool XApplication::RunScriptFromFile(std::wstring const& file) {
    bool done = false;
    ForEachScriptEngine([&](XScriptEngine& engine) { done = done || engine.RunFile(file); });
    return done;
}

void XApplication::RunStartupScripts(std::wstring const& directory) const {
    Instance().RunScriptFromFile(directory + InitializationScriptName);
}

void XApplication::NotifyOnIdle() {
    ForEachScriptEngine([](XScriptEngine& engine) { engine.NotifyIdle(); });
}

// ---- the scene list, as far as it needs no scene ----

unsigned int XApplication::SceneCount() const { return unsigned(_scenes.size()); }

XScene& XApplication::GetScene(int index) {
    return index >= 0 && index < int(_scenes.size()) ? *_scenes[std::size_t(index)] : *_activeScene;
}

int XApplication::ActiveSceneIndex() const {
    auto const it = std::find(_scenes.begin(), _scenes.end(), _activeScene);
    return it == _scenes.end() ? -1 : int(it - _scenes.begin());
}

// ---- observers ----

XApplication& XApplication::AddSceneObserver(XSceneObserver* observer) {
    if (observer) _sceneObservers.push_back(observer);
    return *this;
}

XApplication& XApplication::RemoveSceneObserver(XSceneObserver* observer) {
    remove(_sceneObservers, observer);
    return *this;
}

XApplication& XApplication::AddSettingsObserver(XSettingsObserver* observer) {
    if (observer) _settingsObservers.push_back(observer);
    return *this;
}

XApplication& XApplication::RemoveSettingsObserver(XSettingsObserver* observer) {
    remove(_settingsObservers, observer);
    return *this;
}

// ---- log ----

XApplication& XApplication::Log(Level level, std::wstring const& text) {
    if (_logger) _logger->Log(level, text);
    return *this;
}

XApplication& XApplication::Log(Level level, wchar_t const* text) {
    if (_logger) _logger->Log(level, text);
    return *this;
}

XApplication& XApplication::Log(Level level, char const* text) {
    if (_logger) _logger->Log(level, text);
    return *this;
}

XApplication& XApplication::logList(Level level, wchar_t const* format, ...) {
    if (!_logger) return *this;
    std::va_list arguments;
    va_start(arguments, format);
    std::wstring const text = Qelutils::formatList(format, arguments, SystemLogBufferSize - 1);
    va_end(arguments);
    return Log(level, text.c_str());
}

// ---- command names ----

XApplication& XApplication::SetActiveCommandName(std::wstring const& name) {
    _activeCommandName = name;
    return *this;
}

XApplication& XApplication::SetLastCommandName(std::wstring const& name) {
    _lastCommandName = name;
    return *this;
}

}  // namespace Tavo
