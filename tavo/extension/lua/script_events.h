// The events that scripts can listen to, by their numbers.
#pragma once

namespace Tavo {

enum XScriptEvent : int {
    OnSceneLoaded = 0,
    OnSceneChanged = 1,
    OnSelectionChanged = 2,
    OnSceneTimeChanged = 3,
    OnObjectCreated = 4,
    OnObjectDeleted = 5,
    OnObjectRemoved = 6,
    OnObjectRenamed = 7,
    OnObjectReparented = 8,
};

struct XScriptEventRow {
    char const* name;
    char const* help;
};

inline constexpr XScriptEventRow ScriptEvents[] = {
    {"OnSceneLoaded", "A scene was opened, emptied, or made the active one."},
    {"OnSceneChanged", "A step of the history was made, taken back or made again, or an edit is under way."},
    {"OnSelectionChanged", "Other objects, or other parts of one, are selected."},
    {"OnSceneTimeChanged", "The scene's time moved."},
    {"OnObjectCreated", "An object was made; the handler gets its `id`, as do the following."},
    {"OnObjectDeleted", "An object was deleted with what is below it."},
    {"OnObjectRemoved", "An object was removed alone: what was below it went to its parent."},
    {"OnObjectRenamed", "An object got another name."},
    {"OnObjectReparented", "An object got another parent, or none."},
};

}  // namespace Tavo
