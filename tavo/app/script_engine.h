// A script engine as the core sees it: what it hears, and how it is asked to run a file. Engines stand on a higher
// floor and add themselves to the application, which tells them in the order of addition and does not own them. The
// defaults do nothing, so that an engine overrides what its language offers.
//
// Notices come after the observers have heard the same, but for NotifySceneSelectionChanging. Those on objects come
// behind NotifySceneChanged, one by one in the order in which it happened; tavo/objects/object_events.h says what
// counts. Whoever is told may edit, also what later notices are about: then their handle is invalid and has its id
// still. Main thread only.
#pragma once
#include "tavo/app/script_base.h"
#include <string>

namespace Tavo {

class XObject;
class XScene;
class XSceneChange;

class XScriptEngine : public XScriptBase {
public:
    // False when the file is not one of this engine's, is missing, or fails.
    virtual bool RunFile(std::wstring const& /*file*/) { return false; }
    virtual void NotifySceneLoaded(XScene&) {}
    virtual void NotifySceneChanged(XSceneChange const&, bool /*transient*/) {}
    virtual void NotifySceneSelectionChanging(XScene&) {}  // before the commit, and before anybody else hears of it
    virtual void NotifySceneSelectionChanged(XScene&, bool /*transient*/) {}
    virtual void NotifySceneTimeChanged(XScene&, bool /*transient*/) {}
    virtual void NotifyIdle() {}
    // Asked by each operation, so it must be quick: while no engine wants them, nothing is noted. All engines are told.
    virtual bool WantsObjectEvents() const { return false; }
    virtual void NotifyObjectCreated(XObject const&) {}
    virtual void NotifyObjectDeleted(XObject const&) {}
    virtual void NotifyObjectRemoved(XObject const&) {}  // its children stay
    virtual void NotifyObjectRenamed(XObject const&) {}
    virtual void NotifyObjectReparented(XObject const&) {}
};

}  // namespace Tavo
