// An observer and a script engine that write down what they hear, in one list; and an engine that hears of objects.
#pragma once
#include "tavo/app/script_engine.h"
#include "tavo/tavo.h"
#include <functional>
#include <map>
#include <string>
#include <utility>
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

// A line is "Created 17": what happened, and the id of the object. Whatever is in `answers` under the first word is
// done once the line is written.
class ObjectListener : public XScriptEngine {
public:
    using Lines = std::vector<std::string>;
    using Answer = std::function<void(XObject const&)>;

    explicit ObjectListener(bool wants = true) : isWanting(wants) { XApplication::Instance().AddScriptEngine(this); }
    ~ObjectListener() override { XApplication::Instance().RemoveScriptEngine(this); }

    static std::string line(std::string const& what, XObject const& object) {
        return what + " " + std::to_string(object.ObjectID());
    }
    Lines take() { return std::exchange(lines, {}); }

    bool WantsObjectEvents() const override { return isWanting; }
    void NotifySceneChanged(XSceneChange const&, bool) override {
        if (withChanges) lines.push_back("Changed");
        if (onChanged) onChanged();
    }
    void NotifyObjectCreated(XObject const& object) override { hear("Created", object); }
    void NotifyObjectDeleted(XObject const& object) override { hear("Deleted", object); }
    void NotifyObjectRemoved(XObject const& object) override { hear("Removed", object); }
    void NotifyObjectRenamed(XObject const& object) override { hear("Renamed", object); }
    void NotifyObjectReparented(XObject const& object) override { hear("Reparented", object); }

    Lines lines;
    std::map<std::string, Answer> answers;
    std::function<void()> onChanged;
    bool isWanting, withChanges = false;

private:
    void hear(std::string const& what, XObject const& object) {
        lines.push_back(line(what, object));
        if (auto const answer = answers.find(what); answer != answers.end()) answer->second(object);
    }
};

}  // namespace Tavo
