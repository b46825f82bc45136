// What a host or a plug-in overrides to hear of documents. All operations do nothing by default. An observer is never
// owned: it registers with XApplication and must unregister before it dies. Everything is told on the main thread.
// An observer may open change blocks and register or remove observers while it is told.
//
// `transient` is true for a change of a gesture or of playback, which a final change follows: keep expensive work for
// that one. Change views live only during the call.
#pragma once

namespace Tavo {

class XScene;
class XSceneChange;
class XSettings;
class XSettingsChange;

class XSceneObserver {
public:
    virtual ~XSceneObserver() = default;
    virtual void OnSceneRegistered(XScene&) {}  // the place to register object definitions
    virtual void OnSceneCreated(XScene&) {}     // the fixed objects stand, the content may not
    virtual void OnSceneLoaded(XScene&) {}      // also after a switch of the active scene
    virtual void OnSceneSelectionChanged(XScene&, bool /*transient*/) {}
    virtual void OnSceneTimeChanged(XScene&, bool /*transient*/) {}
    virtual void OnSceneChanged(XSceneChange const&, bool /*transient*/) {}
};

class XSettingsObserver {
public:
    virtual ~XSettingsObserver() = default;
    virtual void OnSettingsCreated(XSettings&) {}
    virtual void OnSettingsLoaded(XSettings&) {}
    virtual void OnSettingsChanged(XSettingsChange const&, bool /*transient*/) {}
    virtual void OnSettingsRegistered(XSettings&) {}  // the place to register commands and translators
};

}  // namespace Tavo
