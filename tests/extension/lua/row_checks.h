// What has to hold of every function that scripts can call, whatever it is called with: the program goes on, a failing
// call says something, and the document can be undone to its first byte and redone to its last. A check goes over the
// rows of a set; a new row, and a new set, are checked with no line of code.
//
// In Lua stand, for each set: `good_<table>`, which its functions are for; `foreign_<table>`, the same of another
// scene; `dead_<table>`, of what was destroyed; `removed_<table>`, of what an undo would bring back. Further
// `document`, an object of the settings document, S and O, the ids of the scene and of good_Object.
#include "tavo/extension/lua/script_tables.h"
#pragma once
#include "tavo/extension/lua/script_sets.h"
#include "tests/commands/fixture.h"
#include "tests/extension/lua/script_fixture.h"
#include <algorithm>
#include <lua.hpp>
#include <map>

namespace Tavo {

using ScriptTexts = std::vector<std::string>;

// What the checks leave out, and why.
struct UncheckedRow {
    char const *table, *function, *reason;
};
inline constexpr UncheckedRow uncheckedRows[] = {
    {"Scene", "clear", "it empties the document and its history, which the checks compare"},
};

inline bool isChecked(XScriptSet const& set, XScriptFunction const& row) {
    if (row.MayReachFiles()) return false;  // a check may leave no files
    for (UncheckedRow const& left : uncheckedRows)
        if (std::string(left.table) == set.table && std::string(left.function) == row.Name()) return false;
    return true;
}

// An object of each type that has functions of its own, in one scene.
class ScriptRig {
public:
    explicit ScriptRig(XScene& scene) : scene(&scene) {
        joint = make<XJoint>(scene.RootObject());
        make<XJoint>(joint).SetTranslation(0, 1, 0);
        joint.CreateJointLimit();
        for (int i = 0; i < 4; ++i) joint.RotationX().SetKeyframe(0.25f * float(i), 0.1f * float(i));
        path = make<XTrajectory>(XObject());
        for (int i = 0; i < 4; ++i) path.AppendTranslationKeyframe(XVector3(float(i), float(i * i), 0));
        handle = make<XIKHandle>(XObject());
    }
    // Of that type, by its word; invalid where there can be none.
    XObject of(std::string const& type) {
        if (type == "Object" || type == "RenderObject" || type == "Transform" || type == "Joint") return joint;
        if (type == "Trajectory") return path;
        if (type == "IKHandle") return handle;
        XObject& other = _others[type];
        if (!other.IsValid()) other = scene->CreateObject(Qelutils::fromUtf8(type));
        if (!other.IsValid()) other = ofDerived(Qelutils::fromUtf8(type));
        return other;
    }
    bool isWhole() const {
        return key().IsValid() && path.IsValid() && handle.IsValid() &&
               std::all_of(_others.begin(), _others.end(), [](auto const& other) { return other.second.IsValid(); });
    }
    XKeyframe key() const { return XKeyframe(XAnimation(joint.RotationX().InputObject()), 0); }
    void erase() {
        for (XObject object : {XObject(joint), XObject(path), XObject(handle)})
            if (object.IsValid()) object.Delete();
        for (auto& [type, object] : _others)
            if (object.IsValid()) object.Delete();
    }

    XScene* scene;
    XJoint joint;
    XTrajectory path;
    XIKHandle handle;

private:
    template<class Type> Type make(XObject const& parent) { return Type(scene->CreateObject(Type::TypeID, parent)); }

    // Of some type that derives from it: there are no objects of the type itself.
    XObject ofDerived(std::wstring const& type) {
        Qelutils::Vector<XObjectDef*> definitions;
        scene->ObjectDefinitions(definitions);
        for (XObjectDef* definition : definitions)
            if (definition->SupportsType(type))
                if (XObject const made = scene->CreateObject(definition->ObjectType()); made.IsValid()) return made;
        return {};
    }

    std::map<std::string, XObject> _others;
};

class RowChecks : public Scripts {
protected:
    RowChecks() : _good(scene()) {
        give("good", _good);
        ScriptRig lost(scene());
        give("dead", lost);
        lost.erase();
        giveClosedScene();
        _spare = std::make_unique<ScriptRig>(scene());
        give("removed", *_spare);
        _foreignIndex = application().AddScene();
        foreign().New();
        ScriptRig there(foreign());
        give("foreign", there);
        application().SetActiveScene(0);
        setNumber("S", scene().DatabaseID());
        setNumber("O", _good.joint.ObjectID());
        giveDocument();
        forget();
    }

    XScene& foreign() { return application().GetScene(_foreignIndex); }
    std::string bytes() { return documentBytes(scene()); }

    // Calls the function on what `self` is in Lua; what it failed with, or nothing. It ends well or with a text. What
    // it deleted of the good ones comes back.
    std::string call(XScriptSet const& set, XScriptFunction const& row, std::string const& self,
                     ScriptTexts const& arguments) {
        std::string list = &set == &AppFunctions() ? "" : self;
        for (std::string const& argument : arguments) list += (list.empty() ? "" : ", ") + argument;
        std::string const text = "local f = " + good(set) + "['" + row.Name() + "'] f(" + list + ")";
        int const status = lua().RunScript(Qelutils::fromUtf8(text));
        EXPECT_TRUE(status == LUA_OK || status == LUA_ERRRUN) << status << ": " << text;
        EXPECT_EQ(status == LUA_OK, lua().LastError().empty()) << text;
        while (!_good.isWhole() && steps(scene()) > 0) scene().Undo();
        return lua().LastError();
    }
    static std::string good(XScriptSet const& set) { return std::string("good_") + set.table; }

    // For each row that is checked: `check`, which calls it, and then whether the history holds.
    template<class Check> void forEachRow(XScriptSet const& set, Check const& check) {
        for (XScriptFunction const& row : set.functions) {
            if (!isChecked(set, row)) continue;
            SCOPED_TRACE(std::string(set.table) + ":" + row.Name());
            std::string const first = bytes(), firstThere = documentBytes(foreign());
            check(row);
            application().SetActiveScene(0);
            expectHistory(scene(), first);
            expectHistory(foreign(), firstThere);
            if (!_document.IsValid()) giveDocument();
            forget();
        }
    }
    // The same for each argument of each row, by its number.
    template<class Check> void forEachArgument(XScriptSet const& set, Check const& check) {
        forEachRow(set, [&](XScriptFunction const& row) {
            for (std::size_t i = 0; i < row.Arguments().size(); ++i) check(row, i);
        });
    }
    // Only the argument of that number is given.
    static ScriptTexts only(std::size_t index, std::string const& value) {
        ScriptTexts arguments(index, "nil");
        arguments.push_back(value);
        return arguments;
    }
    void removeSpares() {
        scene().BeginChangeBlock();
        _spare->erase();
        scene().EndChangeBlock();
    }

private:
    lua_State* state() { return lua().State()->GetCState(); }
    void setNumber(char const* name, int value) {
        lua_pushinteger(state(), value);
        lua_setglobal(state(), name);
    }
    void pushSelf(std::string const& table, ScriptRig& rig) {
        XScriptTables& tables = lua().Tables();
        int const scene = rig.scene->DatabaseID();
        if (table == AppFunctions().table)
            lua_getglobal(state(), table.c_str());
        else if (table == "Scene")
            tables.PushScene(state(), *rig.scene);
        else if (table == "Vector3")
            tables.PushValue(state(), XVector3(1, 2, 3), scene);
        else if (table == "Quaternion")
            tables.PushValue(state(), XQuaternion(), scene);
        else if (table == "Matrix")
            tables.PushValue(state(), XMatrix(), scene);
        else if (table == "Attribute")
            tables.PushAttribute(state(), rig.joint.RotationX());
        else if (table == "Keyframe")
            tables.PushKeyframe(state(), rig.key());
        else
            lua().PushObject(rig.of(table));
    }
    void give(std::string const& prefix, ScriptRig& rig) {
        for (XScriptSet const* set : AllScriptSets()) {
            pushSelf(set->table, rig);
            lua_setglobal(state(), (prefix + "_" + set->table).c_str());
        }
    }
    void giveClosedScene() {
        int const index = application().AddScene();
        lua().PushScene(application().GetScene(index));
        lua_setglobal(state(), "dead_Scene");
        application().SetActiveScene(0);
        application().RemoveScene(index);
    }
    void giveDocument() {
        application().Settings().New();
        _document = application().Settings().Object(L"Undo");
        lua().PushObject(_document);
        lua_setglobal(state(), "document");
    }

    void forget() {
        for (XScene* each : {&scene(), &foreign()}) {
            each->CommitTransient();
            each->SceneGraph()->ClearUndoHistory();
        }
    }
    static int steps(XScene& scene) { return int(scene.SceneGraph()->getUndoCount()); }
    // Leaves the scene as it was at first.
    static void expectHistory(XScene& scene, std::string const& first) {
        scene.Stop();
        scene.CommitTransient();
        std::string const last = documentBytes(scene);
        int const count = steps(scene);
        for (int i = 0; i < count; ++i) scene.Undo();
        EXPECT_TRUE(documentBytes(scene) == first) << "undone " << count;
        if (last == first) return;
        for (int i = 0; i < count; ++i) scene.Redo();
        EXPECT_TRUE(documentBytes(scene) == last) << "redone " << count;
        while (steps(scene) > 0) scene.Undo();
    }

    ScriptRig _good;
    std::unique_ptr<ScriptRig> _spare;
    int _foreignIndex = 0;
    XObject _document;
};

}  // namespace Tavo
