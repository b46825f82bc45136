// What a script pays for values and keys: loops in Lua against the same loops in C++, on attributes of their own. A
// loop over values shows the price of a call; setting keys is what scripts do, and should cost at most three times what
// it costs in C++.
#include "bench/timing.h"
#include "tavo/tavo.h"

namespace {

using namespace Tavo;

constexpr int curves = 100, keys = 1000, count = curves * keys;

class Silent : public Qelutils::BasicLogger {
public:
    void Log(Level, char const*) override {}
    void Log(Level, wchar_t const*) override {}
    void Log(Level, std::wstring const&) override {}
};

// Two rows of joints alike, one for each side of a comparison.
class Session {
public:
    Session() {
        application().AddSceneObserver(&types_).AddSettingsObserver(&types_);
        application().Startup(nullptr, &log_, L"");
        application().Settings().New();
        scene().New();
        for (int i = 0; i < 2 * curves; ++i) scene().CreateObject(XJoint::TypeID).SetName(L"j" + std::to_wstring(i));
        scene().SceneGraph()->ClearUndoHistory();
        run(L"rows = {} for i = 1, 100 do rows[i] = app.scene():object('Scene|j' .. i - 1).TranslationX end");
    }
    ~Session() { application().Shutdown(); }

    static XApplication& application() { return XApplication::Instance(); }
    static XScene& scene() { return application().ActiveScene(); }
    static void run(wchar_t const* script) { application().LuaScript()->RunScript(script); }
    // In a step of the history, as a script is.
    template<class Action> static void forEachOfOurs(Action const& action) {
        static std::wstring const label = L"Loop";
        XChangeBlock const block(scene(), label);
        for (int i = curves; i < 2 * curves; ++i)
            action(scene().Object(L"Scene|j" + std::to_wstring(i)).Attribute(L"TranslationX"));
    }
    static void takeBack() {
        while (scene().SceneGraph()->getUndoCount() > 0) scene().Undo();
        scene().SceneGraph()->ClearUndoHistory();
    }

private:
    Silent log_;
    XCoreTypes types_;
};

void SetKeysInLua(benchmark::State& state) {
    Session session;
    bench::compare(
        state, count,
        [] { Session::run(L"for _, a in ipairs(rows) do for k = 1, 1000 do a:setKey(k / 30, k) end end"); },
        [] {
            Session::forEachOfOurs([](XAttribute a) {
                for (int k = 1; k <= keys; ++k) a.SetKeyframe(float(k) / 30, float(k));
            });
        },
        Session::takeBack);
}
BENCHMARK(SetKeysInLua)->UseManualTime()->Unit(benchmark::kMillisecond);

void SetValuesInLua(benchmark::State& state) {
    Session session;
    bench::compare(
        state, count, [] { Session::run(L"for _, a in ipairs(rows) do for k = 1, 1000 do a:set(k) end end"); },
        [] {
            Session::forEachOfOurs([](XAttribute a) {
                for (int k = 1; k <= keys; ++k) a.SetFloat(float(k));
            });
        },
        Session::takeBack);
}
BENCHMARK(SetValuesInLua)->UseManualTime()->Unit(benchmark::kMillisecond);

void GetValuesInLua(benchmark::State& state) {
    Session session;
    bench::compare(
        state, count,
        [] {
            Session::run(L"local sum = 0 for _, a in ipairs(rows) do for k = 1, 1000 do sum = sum + a:get() end end");
        },
        [] {
            Session::forEachOfOurs([](XAttribute a) {
                float sum = 0;
                for (int k = 1; k <= keys; ++k) benchmark::DoNotOptimize(sum += a.Float());
            });
        },
        [] {});
}
BENCHMARK(GetValuesInLua)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
