// What one joint costs in a frame: its local matrix, in the common case and with everything set, and the product with
// the parent's world matrix.
#include "qel/sg/transform_evaluation.h"
#include "qel/utils/rotation.h"
#include <benchmark/benchmark.h>

namespace {

sg::TransformInputs common(int source) {
    sg::TransformInputs in;
    in.dataSource = source;
    for (int i = 0; i < 3; ++i) {
        in.translation[i] = 0.1F * static_cast<float>(i + 1);
        in.rotation[i] = 0.3F * static_cast<float>(i + 1);
    }
    in.quaternion[0] = 0.6F;
    in.quaternion[3] = 0.8F;
    return in;
}

void run(benchmark::State& state, sg::TransformInputs in) {
    Qelp::Matrix34 out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(in);
        sg::localMatrix(in, out);
        benchmark::DoNotOptimize(out);
    }
}

void localMatrixBySource(benchmark::State& state) { run(state, common(static_cast<int>(state.range(0)))); }
BENCHMARK(localMatrixBySource)->DenseRange(0, 3);

void localMatrixOfZeroRotation(benchmark::State& state) { run(state, {}); }
BENCHMARK(localMatrixOfZeroRotation);

void localMatrixWithEverything(benchmark::State& state) {
    sg::TransformInputs in = common(sg::EulerSource);
    for (int i = 0; i < 3; ++i) {
        in.scale[i] = 1.5F;
        in.scalePivot[i] = 0.2F;
        in.preRotation[i] = in.postRotation[i] = in.rotation[i];
    }
    run(state, in);
}
BENCHMARK(localMatrixWithEverything);

void worldMatrix(benchmark::State& state) {
    Qelp::Matrix34 local, world;
    Qelutils::eulerToMatrix({1, 2, 3}, 0, local);
    for (auto _ : state) {
        world = Qelutils::multiply(local, world);
        benchmark::DoNotOptimize(world);
    }
}
BENCHMARK(worldMatrix);

}  // namespace

BENCHMARK_MAIN();
