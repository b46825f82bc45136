// What rigs cost to make, to make again and to take back, on skeletons of limbs of twelve joints: the times of a joint
// must not grow with the skeleton.
#include "bench/timing.h"
#include "tavo/tavo.h"
#include "tests/commands/clip.h"
#include <cstdlib>

namespace {

using namespace Tavo;

constexpr int joints[] = {48, 144, 432};

class Silent : public Qelutils::BasicLogger {
public:
    void Log(Level, char const*) override {}
    void Log(Level, wchar_t const*) override {}
    void Log(Level, std::wstring const&) override {}
};

class Session {
public:
    explicit Session(int count) {
        application().AddSceneObserver(&types_).AddSettingsObserver(&types_);
        application().Startup(nullptr, &log_, L"");
        application().Settings().New();
        scene().New();
        for (wchar_t const* name : {L"first", L"second"}) {
            XObject top = scene().CreateObject(XTransform::TypeID);
            top.SetName(name);
            XObject root = importClipInto(scene(), count, 2);
            root.SetParent(top);
        }
        scene().SceneGraph()->ClearUndoHistory();
    }
    ~Session() { application().Shutdown(); }

    static XApplication& application() { return XApplication::Instance(); }
    static XScene& scene() { return application().ActiveScene(); }
    static XObject top(std::wstring const& name) { return scene().RootObject().Child(name); }
    // The root of the first skeleton and the last joint of each of its limbs.
    static void selectChains() {
        Qelutils::Vector<XObject> all;
        top(L"first").DescendantObjects(all, XJoint::TypeID, IsObjectType);
        scene().Selection().Select(all.front());
        for (XObject const& object : all)
            if (XJoint(object).IsTerminatingJoint()) scene().Selection().Append(object);
        scene().CommitTransient();
    }
    static void selectBoth() {
        scene().Selection().Select(top(L"first")).Append(top(L"second"));
        scene().CommitTransient();
    }

private:
    Silent log_;
    XCoreTypes types_;
};

// Times made, made again and undone, each per joint, and the exponents over the sizes.
template<class Select>
void makeRigs(benchmark::State& state, std::wstring const& make, std::wstring const& again, Select const& select) {
    std::vector<std::pair<double, double>> made, remade, undone;
    for (auto _ : state)
        for (int count : joints) {
            Session const session(count);
            select();
            made.emplace_back(count, bench::seconds([&] { session.scene().RunCommand(make); }));
            remade.emplace_back(count, bench::seconds([&] { session.scene().RunCommand(again); }));
            undone.emplace_back(count, bench::seconds([&] { session.scene().Undo().Undo(); }));
        }
    state.counters["us_a_joint"] = made.back().second / made.back().first * 1e6;
    state.counters["exponent"] = bench::exponent(made);
    state.counters["again_exponent"] = bench::exponent(remade);
    state.counters["undo_exponent"] = bench::exponent(undone);
}

void inverseKinematics(benchmark::State& state) {
    makeRigs(state, L"CreateIKRig", L"SetIKEndEffectors", Session::selectChains);
}
BENCHMARK(inverseKinematics)->Iterations(3)->Unit(benchmark::kMillisecond);

void retargeting(benchmark::State& state) {
    makeRigs(state, L"RetargetAttach", L"RetargetAttach", Session::selectBoth);
}
BENCHMARK(retargeting)->Iterations(3)->Unit(benchmark::kMillisecond);

// A handle is moved by a little and every joint's place is read, as a drag does; against the same reading alone.
void drag(benchmark::State& state) {
    Session const session(int(state.range(0)));
    Session::selectChains();
    XIKSolver const solver(session.scene().RunCommand(L"CreateIKRig"));
    XIKHandle handle(solver.IKHandleReferences().ObjectRef(0));
    Qelutils::Vector<XObject> joints;
    Session::top(L"first").DescendantObjects(joints, XJoint::TypeID, IsObjectType);
    auto const readAll = [&] {
        for (XObject const& joint : joints) benchmark::DoNotOptimize(XTransform(joint).WorldMatrix().Matrix());
    };
    std::vector<double> events, readings;
    int event = 0;
    for (auto _ : state) {
        events.push_back(bench::seconds([&] {
            handle.TranslationX().SetFloat(handle.TranslationX().Float() + (++event % 20 < 10 ? 0.002f : -0.002f));
            readAll();
        }));
        readings.push_back(bench::seconds(readAll));
    }
    state.counters["us"] = bench::median(events) * 1e6;
    state.counters["reading_us"] = bench::median(readings) * 1e6;
}
BENCHMARK(drag)->ArgName("joints")->Arg(12)->Arg(48)->Arg(144)->Iterations(60)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
