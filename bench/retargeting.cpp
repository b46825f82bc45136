// What retargeting costs: a frame beside a plain loop that carries each joint's local rotation over, alone and as a
// node of the graph, and the matching of two skeletons. Promised: a frame at most 3 times the loop, and no allocation.
#include "bench/allocations.h"
#include "bench/timing.h"
#include "qel/sg/scene.h"
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
    job.Run();
    std::size_t const before = bench::allocations;
    job.Run();
    state.counters["allocations"] = double(bench::allocations - before);
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

using Node = sg::RetargetNode;

void fill(Node& node, sg::Skeleton const& s, int geometry, int hierarchy, int params) {
    node.at<db::AttributeArray>(geometry).resize(s.size());
    node.at<db::AttributeArray>(params).resize(s.size());
    node.at<db::IntArrayAttribute>(hierarchy).setValue(s.parents);
    for (std::size_t i = 0; i < s.size(); ++i) {
        auto const& joint = *node.at<db::AttributeArray>(params)[i]->asComposite();
        joint.getAttribute(Node::JointName)->asString()->setValue(s.names[i]);
        joint.getAttribute(Node::Origin)->asMatrix34()->setValue(s.origins[i]);
    }
}

// A matrix of the source is written, all of the target are read.
void nodeFrame(benchmark::State& state) {
    sg::Skeleton const source = skeletonOf(int(state.range(0)), false), target = skeletonOf(int(state.range(0)), true);
    sg::Scene scene;
    auto& node = static_cast<Node&>(*scene.makeNode(L"Retarget", L"retarget"));
    fill(node, source, Node::InputSourceGeometry, Node::SourceHierarchy, Node::SourceJointParams);
    fill(node, target, Node::OutputTargetGeometry, Node::TargetHierarchy, Node::TargetJointParams);
    auto& outputs = node.at<db::AttributeArray>(Node::OutputTargetGeometry);
    Qelp::Matrix34 first = source.origins[0];
    float sum = 0;
    auto const frame = [&] {
        first.m[3][2] += 0.01F;
        node.at<db::AttributeArray>(Node::InputSourceGeometry)[0]->asMatrix34()->setValue(first);
        for (std::size_t i = 0; i < outputs.size(); ++i) sum += outputs[i]->asMatrix34()->getValue().m[3][0];
        benchmark::DoNotOptimize(sum);
    };
    frame(), frame();
    std::size_t const before = bench::allocations;
    frame();
    state.counters["allocations"] = double(bench::allocations - before);
    for (auto _ : state) frame();
}
BENCHMARK(nodeFrame)->Arg(31)->Arg(60)->Unit(benchmark::kMicrosecond);

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
