// What retargeting costs: a frame beside a plain loop that carries each joint's local rotation over, and the matching
// of two skeletons.
#include "bench/timing.h"
#include "qel/solvers/retarget.h"
#include "tests/qel/solvers/humanoid.h"

namespace {

using Pose = std::vector<Qelp::Matrix34>;

// As who copies rotations would do it: read the rotation, write it with the bone of the target.
void copyRotations(Pose const& source, Pose const& origins, Pose& target) {
    for (std::size_t i = 0; i < source.size(); ++i) {
        Qelutils::quatToMatrix(Qelutils::matrixToQuat(source[i]), target[i]);
        std::copy_n(origins[i].m[3], 4, target[i].m[3]);
    }
}

sg::Skeleton skeletonOf(int joints, bool turned) {
    sg::HumanoidOptions o = joints == 31 ? sg::small() : sg::large();
    o.turnsAxes = turned, o.armsDown = turned ? 0.8 : 0, o.size = turned ? 1.4 : 1;
    return sg::humanoid(o);
}

void frame(benchmark::State& state) {
    sg::Skeleton const source = skeletonOf(int(state.range(0)), false), target = skeletonOf(int(state.range(0)), true);
    sg::SkeletonMatch match;
    match.source = &source, match.target = &target;
    match.Run();
    sg::RetargetRig rig;
    rig.source = &source, rig.target = &target, rig.matches = match.matches;
    rig.Run();
    Pose const pose = moved(source, 1);
    Pose out(target.size()), plain(source.size());
    sg::Retarget job;
    job.rig = &rig, job.source = pose, job.target = out;
    constexpr int rounds = 1000;
    bench::compare(
        state, double(rounds) * double(source.size()),
        [&] {
            for (int i = 0; i < rounds; ++i) job.Run(), benchmark::DoNotOptimize(out.data());
        },
        [&] {
            for (int i = 0; i < rounds; ++i)
                copyRotations(pose, source.origins, plain), benchmark::DoNotOptimize(plain.data());
        },
        [] {});
}
BENCHMARK(frame)->Arg(31)->Arg(60)->UseManualTime()->Iterations(15)->Unit(benchmark::kMicrosecond);

void matching(benchmark::State& state) {
    sg::HumanoidOptions o = sg::large();
    sg::Skeleton const source = sg::humanoid(o);
    o.naming = state.range(0) ? sg::Naming::Scrambled : sg::Naming::Anatomy;
    sg::Skeleton const target = sg::humanoid(o);
    for (auto _ : state) {
        sg::SkeletonMatch match;
        match.source = &source, match.target = &target;
        match.Run();
        benchmark::DoNotOptimize(match.matches.data());
    }
}
BENCHMARK(matching)->ArgName("scrambled")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
