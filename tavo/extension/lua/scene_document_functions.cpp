// What scripts do with a document as a whole, its history, and the objects in it.
#include "tavo/app/application.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/scene_rows.h"
#include "tavo/extension/lua/script_commands.h"

namespace Tavo {
namespace {

using Objects = Qelutils::Vector<XObject>;

bool isIn(XScene const& scene, XObject const& object) { return object.IsValid() && &object.Database() == &scene; }

void endUndo(XScriptCall& call, XScene& scene, std::wstring const& name) {
    if (scene.IsValid() && !call.Script().EndUndo(scene, name)) call.Fail("there is no beginUndo before it");
}

// A parent that is gone, or another document's, gives no object.
template<class Create> XObject createBelow(XScene& scene, std::optional<XObject> const& parent, Create const& create) {
    if (!parent) return create(XObject());
    return isIn(scene, *parent) ? create(*parent) : XObject();
}

XObject createObject(XScene& scene, std::wstring const& type, std::optional<XObject> const& parent) {
    return createBelow(scene, parent, [&](XObject const& above) { return scene.CreateObject(type, above); });
}
XObject createNode(XScene& scene, std::wstring const& type, std::optional<XObject> const& parent) {
    return createBelow(scene, parent, [&](XObject const& above) { return scene.CreateNode(type, above); });
}

// ---- edits of many objects, as those of XDatabase, which takes patterns alone ----

std::wstring const copyLabel = L"Copying objects", deleteLabel = L"Deleting objects", removeLabel = L"Removing objects",
                   renameLabel = L"Renaming objects", reparentLabel = L"Reparenting objects",
                   unparentLabel = L"Unparent Objects";

// One step; an object that an edit before took along is passed over.
template<class Edit>
void edit(XScene& scene, std::wstring const& label, Objects const& objects, bool (XObject::*accepts)() const,
          Edit const& apply) {
    XChangeBlock const block(scene, label);
    for (XObject object : objects)
        if (isIn(scene, object) && (object.*accepts)()) apply(object);
}

void copyObjects(XScene& scene, XScriptMatches const& matches) {
    edit(scene, copyLabel, matches.objects, &XObject::IsValid, [](XObject& object) { object.Copy(); });
}

void deleteObjects(XScene& scene, XScriptMatches const& matches) {
    edit(scene, deleteLabel, matches.objects, &XObject::SupportsDeletion, [](XObject& object) {
        object.DeleteChildObjects();
        object.Delete();
    });
}

// From the last to the first: what lies deeper moves up before its parent goes.
void removeObjects(XScene& scene, XScriptMatches const& matches) {
    Objects const reversed(matches.objects.rbegin(), matches.objects.rend());
    edit(scene, removeLabel, reversed, &XObject::SupportsDeletion, [&](XObject& object) {
        scene.ReparentChildObjects(object);
        object.Delete();
    });
}

void renameObjects(XScene& scene, XScriptMatches const& matches, std::wstring const& name) {
    if (name.empty()) return;
    edit(scene, renameLabel, matches.objects, &XObject::SupportsRenaming,
         [&](XObject& object) { object.SetName(name); });
}

void reparentObjects(XScene& scene, XScriptMatches const& matches, XObject const& parent) {
    if (!isIn(scene, parent)) return;
    edit(scene, reparentLabel, matches.objects, &XObject::SupportsReparenting,
         [&](XObject& object) { object.SetParent(parent); });
}

void unparentObjects(XScene& scene, XScriptMatches const& matches) {
    edit(scene, unparentLabel, matches.objects, &XObject::SupportsReparenting,
         [](XObject& object) { object.Unparent(); });
}

// ---- questions ----

XObject findObject(XScene const& scene, XScriptKey const& key) {
    return key.isNumber ? scene.Object(key.number) : scene.Object(key.text);
}

Objects findObjects(XScene const& scene, std::wstring const& pattern) {
    Objects out;
    scene.Objects(pattern, out);
    return out;
}

Objects objectsOf(XScene const& scene, std::wstring const& type, XComparisonMode mode) {
    Objects out;
    scene.Objects(type, mode, out);
    return out;
}

XAttribute findAttribute(XScene const& scene, XScriptKey const& path, int id) {
    if (path.isNumber) return scene.Attribute(path.number);
    return path.text.empty() ? scene.Attribute(id) : scene.Attribute(path.text);
}

}  // namespace

std::vector<XScriptFunction> sceneDocumentRows() {
    return {
        {"clear",
         [](XScriptCall& call, XScene& scene) { call.Script().OutsideBlocks(scene, [&] { scene.New(); }); },
         {},
         "Empties the document and its history; this can't be taken back."},
        {"run",
         [](XScriptCall& call, XScene& scene, std::wstring const& command) {
             XObject result;
             if (!scene.IsValid()) return result;
             runAsScript(call, scene, command, [&] { result = scene.RunCommand(command); });
             return result;
         },
         {"command"},
         "Runs the command of that name; the first object that it made or changed. A command that moves the history or "
         "the time ends the script's step before it."},
        {"undo",
         [](XScriptCall& call, XScene& scene) { call.Script().Undo(scene); },
         {},
         "Takes the last step back. What the script did so far becomes a step of its own before."},
        {"redo",
         [](XScriptCall& call, XScene& scene) { call.Script().Redo(scene); },
         {},
         "Takes the step that was taken back again."},
        {"beginUndo",
         [](XScriptCall& call, XScene& scene, std::wstring const&) { call.Script().BeginUndo(scene); },
         {"name"},
         "Begins a step of the history; endUndo gives it its name."},
        {"endUndo", endUndo, {"name"}, "Ends the step that beginUndo began, under that name."},
        {"reloadScripts",
         [](XScene& scene, std::wstring const& directory) { return scene.LoadScripts(directory); },
         {"directory"},
         "Runs the files *.lua of a directory; false after the first that fails.",
         XScriptFunction::ReachesFiles},
        {"addEventHandler",
         [](XScriptCall& call, XScene&, std::wstring const& event, LuaPlus::LuaObject const& handler) {
             return call.Script().AddEventHandler(event, handler);
         },
         {"event", "handler"},
         "Has a function called at an event; false for an unknown event and for what is no function."},
        {"copy", copyObjects, {"objects"}, "Copies objects, which are given as such or as patterns of paths."},
        {"createObject", createObject, {"type", "parent"}, "A new object of that type."},
        {"createNode", createNode, {"type", "parent"}, "A new object with a node of that type."},
        {"delete",
         deleteObjects,
         {"objects"},
         "Deletes objects with their children; they are given as such or as patterns of paths."},
        {"object", findObject, {"pathOrId"}, "An object, by its path or its identifier."},
        {"objects", findObjects, {"pattern"}, "The objects whose paths match the pattern; all without one."},
        {"attribute",
         findAttribute,
         {"path", "id"},
         "An attribute by its path or, when that is empty, its identifier."},
        {"isValid", [](XScene const& scene) { return scene.IsValid(); }, {}, "Whether the scene is open."},
        {"isPlaying", &XScene::IsPlaying, {}, "Whether it plays, forward or backward."},
        {"objectsByType",
         [](XScene const& scene, std::wstring const& type) { return objectsOf(scene, type, IsObjectType); },
         {"type"},
         "The objects of exactly that type."},
        {"objectsSupportingType",
         [](XScene const& scene, std::wstring const& type) { return objectsOf(scene, type, SupportsObjectType); },
         {"type"},
         "The objects of that type and of those that derive from it."},
        {"error",
         [](XScene&, std::wstring const& text) { XApplication::Instance().LogError(L"%s", text); },
         {"text"},
         "Logs an error; the script goes on."},
        {"info",
         [](XScene&, std::wstring const& text) { XApplication::Instance().LogInformation(L"%s", text); },
         {"text"},
         "Logs an information."},
        {"warning",
         [](XScene&, std::wstring const& text) { XApplication::Instance().LogWarning(L"%s", text); },
         {"text"},
         "Logs a warning."},
        {"removeEventHandler",
         [](XScriptCall& call, XScene&, std::wstring const& event, LuaPlus::LuaObject const& handler) {
             return call.Script().RemoveEventHandler(event, handler);
         },
         {"event", "handler"},
         "Has a function no longer called at an event; false for an unknown event and for what is no function."},
        {"remove",
         removeObjects,
         {"objects"},
         "Deletes objects, whose children move up; they are given as such or as patterns of paths."},
        {"rename",
         renameObjects,
         {"objects", "name"},
         "Renames objects, which are given as such or as patterns of paths; names are made unique among siblings."},
        {"setParent",
         reparentObjects,
         {"objects", "parent"},
         "Moves objects below another; they are given as such or as patterns of paths."},
    };
}

std::vector<XScriptFunction> sceneUnparentRows() {
    return {{"unparent",
             unparentObjects,
             {"objects"},
             "Moves objects to the top; they are given as such or as patterns of paths."}};
}

}  // namespace Tavo
