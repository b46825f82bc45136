// What rigs cost to make, to make again and to take back, on skeletons of limbs of twelve joints: the times of a joint
// must not grow with the skeleton.
#include "bench/application.h"
#include "bench/timing.h"
#include "tests/commands/clip.h"
#include <cstdlib>

namespace {

using namespace Tavo;

constexpr int joints[] = {48, 144, 432};

class Session : public bench::Application {
public:
    explicit Session(int count) {
        for (wchar_t const* name : {L"first", L"second"}) {
            XObject top = scene().CreateObject(XTransform::TypeID);
            top.SetName(name);
            XObject root = importClipInto(scene(), count, 2);
            root.SetParent(top);
        }
        scene().SceneGraph()->ClearUndoHistory();
    }
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

Qelutils::Vector<XObject> jointsBelow(std::wstring const& name) {
    Qelutils::Vector<XObject> joints;
    Session::top(name).DescendantObjects(joints, XJoint::TypeID, IsObjectType);
    return joints;
}

// Moves an object to and fro, by a little at a time, and reads the place of every joint.
double secondsOfAMove(XTransform moved, Qelutils::Vector<XObject> const& joints, int event) {
    return bench::seconds([&] {
        moved.TranslationX().SetFloat(moved.TranslationX().Float() + (event % 20 < 10 ? 0.002f : -0.002f));
        for (XObject const& joint : joints) benchmark::DoNotOptimize(XTransform(joint).WorldMatrix().Matrix());
    });
}

// An event of a drag on a handle, against what it cannot do without: the solve alone, and the same skeleton without a
// rig, moved as a whole.
void drag(benchmark::State& state) {
    Session const session(int(state.range(0)));
    Session::selectChains();
    XIKSolver const solver(session.scene().RunCommand(L"CreateIKRig"));
    auto& solve = const_cast<sg::IKSolver&>(static_cast<sg::IKSolverNode&>(*solver.getNode()).solver());
    XTransform const handle(solver.IKHandleReferences().ObjectRef(0)), unrigged(Session::top(L"second"));
    Qelutils::Vector<XObject> const rigged = jointsBelow(L"first"), plain = jointsBelow(L"second");
    std::vector<double> events, solves, moves;
    int event = 0;
    for (auto _ : state) {
        events.push_back(secondsOfAMove(handle, rigged, ++event));
        solves.push_back(bench::seconds([&] { solve.Run(); }));
        moves.push_back(secondsOfAMove(unrigged, plain, event));
    }
    state.counters["us"] = bench::median(events) * 1e6;
    state.counters["solve_us"] = bench::median(solves) * 1e6;
    state.counters["unrigged_us"] = bench::median(moves) * 1e6;
    state.counters["ratio"] = bench::median(events) / (bench::median(solves) + bench::median(moves));
}
BENCHMARK(drag)->ArgName("joints")->Arg(12)->Arg(60)->Arg(144)->Iterations(200)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
