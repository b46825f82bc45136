// What limits and constraints cost for one joint, each against a bare quaternion product in the same program: `ratio`
// is how many products the operation takes. A product alone is a few nanoseconds; a measurement has an arc tangent, a
// clamp beyond the border also a square root or two and the sines of the way back.
#include "bench/timing.h"
#include "qel/solvers/aim.h"
#include "qel/solvers/joint_limit.h"
#include "qel/solvers/rotation_average.h"
#include "qel/solvers/target_blend.h"
#include <random>

namespace {

using namespace sg;
using namespace Qelutils::rotation;

constexpr std::size_t count = 10000;

class Poses {
public:
    // Turns of up to `reach` radians.
    explicit Poses(double reach) {
        std::mt19937 engine(5);
        std::uniform_real_distribution<double> any(-1, 1);
        for (Quaternion& q : all) q = fromAxisAngle({any(engine), any(engine), any(engine)}, reach * any(engine));
    }
    void multiply() {
        for (std::size_t i = 0; i + 1 < count; ++i)
            benchmark::DoNotOptimize(Qelutils::rotation::multiply(all[i], all[i + 1]));
    }
    std::vector<Quaternion> all = std::vector<Quaternion>(count);
};

template<class F> void perPose(benchmark::State& state, double reach, F const& operation) {
    Poses poses(reach);
    auto const ours = [&] {
        for (std::size_t i = 0; i < count; ++i) benchmark::DoNotOptimize(operation(poses.all, i));
    };
    bench::compare(
        state, double(count), ours, [&] { poses.multiply(); }, [] {});
}

JointLimit limitOf(bool soft) {
    JointLimit limit;
    limit.swing2Angle = 0.5;
    limit.fixedFrame = fromTwistSwing({0.3, 0.2, 0.1});
    limit.movingOffset = fromTwistSwing({0.1, -0.2, 0.3});
    limit.softSwingActive = limit.softTwistActive = soft;
    return limit;
}

void measure(benchmark::State& state) {
    JointLimit const limit = limitOf(false);
    perPose(state, 3, [&](auto const& q, std::size_t i) { return measureJointRotation(limit, q[i]); });
}
BENCHMARK(measure)->UseManualTime()->Iterations(21);

void clamp(benchmark::State& state, double reach, bool soft) {
    JointLimit const limit = limitOf(soft);
    perPose(state, reach, [&](auto const& q, std::size_t i) { return clampJointRotation(limit, q[i]); });
}
BENCHMARK_CAPTURE(clamp, inside, 0.1, false)->UseManualTime()->Iterations(21);
BENCHMARK_CAPTURE(clamp, beyond, 3, false)->UseManualTime()->Iterations(21);
BENCHMARK_CAPTURE(clamp, soft, 3, true)->UseManualTime()->Iterations(21);

void averageOfFour(benchmark::State& state) {
    perPose(state, 3, [](auto const& q, std::size_t i) {
        RotationAverage average;
        for (std::size_t k = 0; k < 4; ++k) average.add(q[(i + k) % count], 1);
        return average.get();
    });
}
BENCHMARK(averageOfFour)->UseManualTime()->Iterations(21);

void blendOfFour(benchmark::State& state) {
    TargetBlend blend;
    blend.targets.resize(4);
    perPose(state, 3, [&](auto const& q, std::size_t i) {
        for (std::size_t k = 0; k < 4; ++k)
            blend.targets[k].world = toMatrix(toAffine(fromQuaternion(q[(i + k) % count]), {1, double(k), 2}));
        blend.Run();
        return blend.quaternion;
    });
}
BENCHMARK(blendOfFour)->UseManualTime()->Iterations(21);

void aim(benchmark::State& state) {
    Aim aim;
    aim.upWorld.m[3][1] = 5;
    perPose(state, 3, [&](auto const& q, std::size_t i) {
        aim.targetWorld.m[3][0] = float(q[i].x), aim.targetWorld.m[3][2] = float(q[i].z);
        aim.Run();
        return aim.quaternion;
    });
}
BENCHMARK(aim)->UseManualTime()->Iterations(21);

}  // namespace

BENCHMARK_MAIN();
