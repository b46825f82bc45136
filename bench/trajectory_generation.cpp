// Trajectories from the motion of 10 objects at the end of a chain of 60 moving transforms, over 1,000 frames.
//
// Promised: the scene is evaluated once a frame, however many objects are followed. What is counted are the nodes that
// the graph evaluates: of a generation over all objects against the same number of frames played by hand, each read
// once; and, against that, of ten generations over one object each. The summary prints the ratios, and the time of a
// generation against that of playing.
#include "bench/application.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>

namespace {

using namespace Tavo;
using Objects = Qelutils::Vector<XObject>;

constexpr int objects = 10, chain = 60, frames = 1000, rate = 100;

class Stage : public bench::Application {
public:
    Stage() {
        scene().SceneGraph()->setMaxUndoItems(0);
        settings().FrameRate().SetInteger(rate);
        settings().EndTime().SetFloat(float(frames - 1) / rate);
        XTransform end = link(scene().RootObject(), 0);
        for (int i = 1; i < chain; ++i) end = link(end, i);
        for (int i = 0; i < objects; ++i) ends.push_back(link(end, i));
    }
    XSceneSettings settings() const { return scene().SceneSettings(); }

    // Without what was made: the scene stays as it is.
    void generate(Objects const& sources) {
        Objects paths;
        XTrajectories::Instance().Generate(sources, paths);
        made += int(paths.size());
        for (XObject path : paths) {
            XTrajectory(path).TimingCurve().Delete();
            path.Delete();
        }
    }
    void generateAll() { generate(ends); }
    void generateEach() {
        for (XObject const& end : ends) generate({end});
    }
    void play() {
        float sum = 0;
        for (int f = 0; f < frames; ++f) {
            settings().Time().SetFloat(float(f) / rate);
            for (XObject const& end : ends) sum += XTransform(end).WorldTranslation().X();
        }
        benchmark::DoNotOptimize(sum);
    }
    template<class Work> double evaluations(Work const& work) {
        std::uint64_t const before = scene().SceneGraph()->evaluations();
        work();
        return double(scene().SceneGraph()->evaluations() - before);
    }

    Objects ends;
    int made = 0;

private:
    XTransform link(XObject const& parent, int seed) {
        XTransform made(scene().CreateObject(XTransform::TypeID, parent));
        made.RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation);
        made.SetTranslation(0.1F, 0, 0);
        key(made.RotationX(), seed);
        key(made.RotationZ(), seed + 5);
        return made;
    }
    static void key(XAttribute channel, int seed) {
        XAnimation curve = channel.CreateAnimation();
        for (int i = 0; i <= 10; ++i) curve.SetKeyframe(float(i), 0.1F * float((i * 7 + seed * 3) % 11));
    }
};

void Generation(benchmark::State& state) {
    Stage stage;
    Objects const sources(stage.ends.begin(), stage.ends.begin() + state.range(0));
    for (auto _ : state) stage.generate(sources);
}
BENCHMARK(Generation)->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond)->MinTime(0.2);

template<class Work> double fastest(Work const& work) {
    double best = 1e300;
    for (int run = 0; run < 5; ++run) {
        auto const start = std::chrono::steady_clock::now();
        work();
        best =
            std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

void summary() {
    Stage stage;
    auto const play = [&] { stage.play(); };
    auto const all = [&] { stage.generateAll(); };
    auto const each = [&] { stage.generateEach(); };
    play();
    double const played = stage.evaluations(play), together = stage.evaluations(all), apart = stage.evaluations(each);
    std::printf("\n%d objects, %d frames; %d paths made\n", objects, frames, stage.made);
    std::printf("nodes evaluated a frame:    played %.1f, generated %.1f, one object after the other %.1f\n",
                played / frames, together / frames, apart / frames);
    std::printf("against played:             generated %.3f, one object after the other %.2f\n", together / played,
                apart / played);
    double const playTime = fastest(play), allTime = fastest(all);
    std::printf("milliseconds:               played %.1f, generated %.1f, ratio %.2f\n", playTime, allTime,
                allTime / playTime);
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    summary();
}
