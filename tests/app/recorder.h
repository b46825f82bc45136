// An observer and a script engine that write down what they hear, in one list.
#pragma once
#include "tavo/app/script_engine.h"
#include "tavo/tavo.h"
#include <string>
#include <vector>

namespace Tavo {

class Recorder : public XSceneObserver, public XSettingsObserver {
public:
    // A line is "Loaded 1": the notice and the scene's place in the list.
    explicit Recorder(bool withChanges = false) : _withChanges(withChanges) {
        XApplication::Instance().AddSceneObserver(this).AddSettingsObserver(this);
    }
    ~Recorder() override { XApplication::Instance().RemoveSceneObserver(this).RemoveSettingsObserver(this); }

    void OnSceneRegistered(XScene& scene) override { note("Registered", scene); }
    void OnSceneCreated(XScene& scene) override { note("Created", scene); }
    void OnSceneLoaded(XScene& scene) override { note("Loaded", scene); }
    void OnSceneSelectionChanged(XScene& scene, bool transient) override { noteChange("Selection", scene, transient); }
    void OnSceneTimeChanged(XScene& scene, bool transient) override { noteChange("Time", scene, transient); }
    void OnSceneChanged(XSceneChange const& change, bool transient) override {
        noteChange("Changed", change.Scene(), transient);
    }
    void OnSettingsCreated(XSettings&) override { events.push_back("SettingsCreated"); }
    void OnSettingsLoaded(XSettings&) override { events.push_back("SettingsLoaded"); }
    void OnSettingsRegistered(XSettings&) override { events.push_back("SettingsRegistered"); }
    void OnSettingsChanged(XSettingsChange const&, bool transient) override {
        if (_withChanges) events.push_back(transient ? "SettingsChanged transient" : "SettingsChanged");
    }

    std::vector<std::string> take() { return std::exchange(events, {}); }

    std::vector<std::string> events;

private:
    static int indexOf(XScene const& scene) {
        XApplication& application = XApplication::Instance();
        for (int i = 0; i < int(application.SceneCount()); ++i)
            if (&application.GetScene(i) == &scene) return i;
        return -1;
    }
    void note(std::string const& what, XScene const& scene) {
        events.push_back(what + " " + std::to_string(indexOf(scene)));
    }
    void noteChange(std::string const& what, XScene const& scene, bool transient) {
        if (_withChanges) note(transient ? what + " transient" : what, scene);
    }

    bool _withChanges;
};

class RecordingEngine : public XScriptEngine {
public:
    explicit RecordingEngine(std::vector<std::string>& events) : _events(events) {
        XApplication::Instance().AddScriptEngine(this);
    }
    ~RecordingEngine() override { XApplication::Instance().RemoveScriptEngine(this); }

    bool RunFile(std::wstring const& file) override {
        files.push_back(file);
        if (onRun) onRun();
        return succeeds;
    }
    void NotifySceneLoaded(XScene&) override { _events.push_back("script Loaded"); }
    void NotifySceneChanged(XSceneChange const&, bool) override { _events.push_back("script Changed"); }
    void NotifySceneSelectionChanging(XScene&) override { _events.push_back("script SelectionChanging"); }
    void NotifySceneSelectionChanged(XScene&, bool) override { _events.push_back("script Selection"); }
    void NotifySceneTimeChanged(XScene&, bool) override { _events.push_back("script Time"); }
    void NotifyIdle() override { _events.push_back("script Idle"); }

    std::vector<std::wstring> files;
    std::function<void()> onRun;
    bool succeeds = true;

private:
    std::vector<std::string>& _events;
};

}  // namespace Tavo
