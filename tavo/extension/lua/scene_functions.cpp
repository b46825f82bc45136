#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& SceneFunctions() {
    static XScriptSet const set{
        "Scene",
        "A document.",
        {
            {"undo",
             [](XScriptCall& call, XScene& scene) { call.Script().Undo(scene); },
             {},
             "Takes the last step back. What the script did so far becomes a step of its own before."},
            {"redo",
             [](XScriptCall& call, XScene& scene) { call.Script().Redo(scene); },
             {},
             "Takes the step that was taken back again."},
            {"createObject",
             [](XScene& scene, std::wstring const& type) { return scene.CreateObject(type); },
             {"type"},
             "A new object of that type."},
            {"object",
             [](XScene const& scene, XScriptKey const& key) {
                 return key.isNumber ? scene.Object(key.number) : scene.Object(key.text);
             },
             {"pathOrId"},
             "An object, by its path or its identifier."},
            {"isValid", [](XScene const& scene) { return scene.IsValid(); }, {}, "Whether the scene is open."},
        }};
    return set;
}

}  // namespace Tavo
