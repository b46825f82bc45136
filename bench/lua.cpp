// What a script costs: a bound call against a bare C function that checks one userdata, and what scripts do by the
// thousand against the same loop in C++.
#include "bench/application.h"
#include "bench/timing.h"
#include "qel/utils/text.h"
#include <benchmark/benchmark.h>
#include <lua.hpp>

namespace {

using namespace Tavo;

int checkOne(lua_State* state) {
    lua_pushboolean(state, *static_cast<int*>(luaL_checkudata(state, 1, "Checked")));
    return 1;
}

class Session : public bench::Application {
public:
    Session() {
        run("scene = app.scene() joint = scene:createObject('Joint')");
        makeUserdata();
    }
    static XObject joint() { return scene().Object(L"Scene|joint"); }
    static void run(std::string const& text) {
        if (application().LuaScript()->RunScript(Qelutils::fromUtf8(text)) == 0) return;
        std::fprintf(stderr, "%s\n", application().LuaScript()->LastError().c_str());
        std::exit(1);
    }
    // Defines the function `name` and calls it, so that only the call is timed.
    static void define(std::string const& name, std::string const& body) {
        run("function " + name + "() " + body + " end");
    }
    static void call(char const* name) {
        LuaPlus::LuaState const& lua = *application().LuaScript()->State();
        std::string error;
        lua.GetGlobal(name).Push(lua.GetCState());
        if (lua.Call(0, 0, error) == 0) return;
        std::fprintf(stderr, "%s\n", error.c_str());
        std::exit(1);
    }

private:
    static void makeUserdata() {
        lua_State* const state = application().LuaScript()->State()->GetCState();
        luaL_newmetatable(state, "Checked");
        lua_newtable(state);
        lua_pushcfunction(state, checkOne);
        lua_setfield(state, -2, "check");
        lua_setfield(state, -2, "__index");
        *static_cast<int*>(lua_newuserdatauv(state, sizeof(int), 0)) = 1;
        lua_insert(state, -2);
        lua_setmetatable(state, -2);
        lua_setglobal(state, "checked");
    }
};

std::string loop(int count, std::string const& body) {
    return "for i = 1, " + std::to_string(count) + " do " + body + " end";
}

constexpr int calls = 100'000;

// Aim: at most 1.3.
void BoundCallAgainstCheckedUserdata(benchmark::State& state) {
    Session const session;
    Session::define("bound", "local joint = joint " + loop(calls, "joint:isValid()"));
    Session::define("bare", "local checked = checked " + loop(calls, "checked:check()"));
    bench::compare(
        state, calls, [] { Session::call("bound"); }, [] { Session::call("bare"); }, [] {});
}

void ReadAttribute(benchmark::State& state) {
    Session const session;
    Session::define("read", "local value = joint.TranslationX " + loop(calls, "value:get()"));
    XAttribute const value = Session::joint().Attribute(L"TranslationX");
    float sum = 0;
    bench::compare(
        state, calls, [] { Session::call("read"); },
        [&] {
            for (int i = 0; i < calls; ++i) benchmark::DoNotOptimize(sum += value.Float());
        },
        [] {});
}

void WriteAttribute(benchmark::State& state) {
    Session const session;
    Session::define("write", "local value = joint.TranslationX " + loop(calls, "value:set(i)"));
    XAttribute value = Session::joint().Attribute(L"TranslationX");
    static std::wstring const label = L"Write";
    bench::compare(
        state, calls,
        [] {
            XChangeBlock const block(Session::scene(), label);
            Session::call("write");
        },
        [&] {
            XChangeBlock const block(Session::scene(), label);
            for (int i = 0; i < calls; ++i) value.SetFloat(float(i));
        },
        [] { Session::scene().SceneGraph()->ClearUndoHistory(); });
}

// Against making a table with three fields.
void PushObject(benchmark::State& state) {
    Session const session;
    Session::define("push", "local scene, id = scene, joint:id() " + loop(calls, "local o = scene:object(id)"));
    Session::define("make", loop(calls, "local o = {__object = 1, __sceneID = 2, __objectID = i}"));
    bench::compare(
        state, calls, [] { Session::call("push"); }, [] { Session::call("make"); }, [] {});
}

constexpr int objects = 10'000;

void Walk(benchmark::State& state) {
    Session const session;
    Session::run(loop(objects, "scene:createObject('Joint')"));
    Session::define("walk", "local n = 0 for _, o in ipairs(scene:objectsByType('Joint')) do n = n + #o:name() end");
    std::size_t sum = 0;
    bench::compare(
        state, objects, [] { Session::call("walk"); },
        [&] {
            Qelutils::Vector<XObject> found;
            Session::scene().Objects(XJoint::TypeID, IsObjectType, found);
            for (XObject const& object : found) benchmark::DoNotOptimize(sum += object.Name().size());
        },
        [] {});
}

constexpr int curves = 100, keys = 1000;

// Aim: at most 3. The keys of a hundred curves: setting one searches the keys that are there, in either language.
void KeyValues(benchmark::State& state) {
    Session const session;
    Session::run("ours, others = {}, {} " + loop(curves, "ours[i] = scene:createObject('Joint').TranslationX "
                                                         "others[i] = scene:createObject('Joint').TranslationX"));
    Session::run(loop(curves, "others[i]:object():setName('other' .. i)"));
    Session::define("key", "for _, value in ipairs(ours) do " + loop(keys, "value:setKey(i / 30, i % 7)") + " end");
    std::vector<XAttribute> others;
    for (int i = 1; i <= curves; ++i)
        others.push_back(Session::scene().Object(L"Scene|other" + std::to_wstring(i)).Attribute(L"TranslationX"));
    static std::wstring const label = L"Key";
    Session::scene().SceneGraph()->ClearUndoHistory();
    bench::compare(
        state, curves * keys,
        [] {
            XChangeBlock const block(Session::scene(), label);
            Session::call("key");
        },
        [&] {
            XChangeBlock const block(Session::scene(), label);
            for (XAttribute& value : others)
                for (int i = 1; i <= keys; ++i) value.SetKeyframe(float(i) / 30, float(i % 7));
        },
        [] {
            while (Session::scene().SceneGraph()->getUndoCount() > 0) Session::scene().Undo();
            Session::scene().SceneGraph()->ClearUndoHistory();
        });
}

BENCHMARK(BoundCallAgainstCheckedUserdata)->UseManualTime()->Iterations(21);
BENCHMARK(ReadAttribute)->UseManualTime()->Iterations(21);
BENCHMARK(WriteAttribute)->UseManualTime()->Iterations(21);
BENCHMARK(PushObject)->UseManualTime()->Iterations(21);
BENCHMARK(Walk)->UseManualTime()->Iterations(21);
BENCHMARK(KeyValues)->UseManualTime()->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
