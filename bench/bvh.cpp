// Reading and writing motion clips, against the bare conversion of the same numbers: one std::from_chars pass over the
// same motion block, one std::to_chars pass over the same values. Prints the ratios; reading should stay below 1.5,
// writing below 2, import into a scene (reading included) below 4, export from it (writing included) below 2.
#include "plugins/bvh/exporter.h"
#include "plugins/bvh/importer.h"
#include "plugins/bvh/reader.h"
#include "plugins/bvh/writer.h"
#include "tavo/tavo.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

std::filesystem::path const& sourceFolder() {
    static std::filesystem::path const folder = std::filesystem::path{__FILE__}.parent_path().parent_path();
    return folder;
}

std::string load(std::filesystem::path const& path) {
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

// From the first number of the motion on.
std::string_view motionOf(std::string_view text) {
    std::size_t const time = text.find("Frame Time:");
    return text.substr(std::min(text.size(), text.find('\n', time) + 1));
}

// The clip's motion again and again, as a capture of some minutes would be.
std::string lengthened(std::string const& text, int times) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::read(text, clip, error)) return text;
    std::vector<double> const once = clip.values;
    for (int i = 1; i < times; ++i) clip.values.insert(clip.values.end(), once.begin(), once.end());
    clip.frames *= times;
    std::string result;
    bvh::write(clip, result, error);
    return result;
}

double parseAll(std::string_view motion, std::vector<double>& values) {
    char const* p = motion.data();
    char const* const end = p + motion.size();
    values.clear();
    for (;;) {
        while (p != end && (*p == ' ' || (*p >= '\t' && *p <= '\r'))) ++p;
        if (p == end) break;
        double value = 0;
        p = std::from_chars(p, end, value).ptr;
        values.push_back(value);
    }
    return values.empty() ? 0 : values.back();
}

std::size_t formatAll(std::vector<double> const& values, std::vector<char>& text) {
    char* p = text.data();
    for (double const value : values) {
        p = std::to_chars(p, p + 32, value).ptr;
        *p++ = ' ';
    }
    return static_cast<std::size_t>(p - text.data());
}

// The best of several runs: the machine may be busy with other things.
template<class Work> double seconds(Work const& work) {
    double best = 1e9;
    for (int i = 0; i < 9; ++i) {
        auto const start = std::chrono::steady_clock::now();
        work();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

void printRatios(std::string const& name, std::string const& text) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::read(text, clip, error)) {
        std::printf("%-28s %s\n", name.c_str(), error.text().c_str());
        return;
    }
    std::string_view const motion = motionOf(text);
    std::vector<double> values;
    std::vector<char> characters(clip.values.size() * 33);
    std::string written;
    double const parse = seconds([&] { benchmark::DoNotOptimize(parseAll(motion, values)); });
    double const read = seconds([&] { benchmark::DoNotOptimize(bvh::read(text, clip, error)); });
    double const format = seconds([&] { benchmark::DoNotOptimize(formatAll(clip.values, characters)); });
    double const write = seconds([&] { benchmark::DoNotOptimize(bvh::write(clip, written, error)); });
    std::printf("%-28s %8zu values  read %6.1f MB/s = %.2f x from_chars   write %6.1f MB/s = %.2f x to_chars\n",
                name.c_str(), clip.values.size(), static_cast<double>(text.size()) / read * 1e-6, read / parse,
                static_cast<double>(written.size()) / write * 1e-6, write / format);
}

// Brings the clip into an emptied scene; the seconds that this took alone, the best of several runs.
double secondsOfImport(Tavo::XScene& scene, std::string const& text) {
    static std::wstring const label = L"Import";
    double best = 1e9;
    for (int i = 0; i < 9; ++i) {
        scene.New();
        auto const start = std::chrono::steady_clock::now();
        bvh::Clip clip;
        bvh::Error error;
        bvh::read(text, clip, error);
        {
            Tavo::XChangeBlock const block(scene, label);
            bvh::importClip(clip, scene);
        }
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

void printSceneRatios(Tavo::XScene& scene, std::string const& name, std::string const& text) {
    std::vector<double> values;
    double const parse = seconds([&] { benchmark::DoNotOptimize(parseAll(motionOf(text), values)); });
    double const import = secondsOfImport(scene, text);
    std::vector<char> characters(values.size() * 33);
    double const format = seconds([&] { benchmark::DoNotOptimize(formatAll(values, characters)); });
    bvh::Clip clip;
    bvh::Error error;
    std::string written;
    double const save = seconds([&] {
        bvh::exportClip(scene, clip, error);
        benchmark::DoNotOptimize(bvh::write(clip, written, error));
    });
    std::printf("%-28s import %6.2f ms = %.2f x from_chars   export %6.2f ms = %.2f x to_chars\n", name.c_str(),
                import * 1e3, import / parse, save * 1e3, save / format);
}

std::string const& walk() {
    static std::string const text = lengthened(load(sourceFolder() / "examples" / "walk.bvh"), 50);
    return text;
}

void readWalk(benchmark::State& state) {
    bvh::Clip clip;
    bvh::Error error;
    for (auto _ : state) benchmark::DoNotOptimize(bvh::read(walk(), clip, error));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(walk().size()));
}
BENCHMARK(readWalk);

void writeWalk(benchmark::State& state) {
    bvh::Clip clip;
    bvh::Error error;
    bvh::read(walk(), clip, error);
    std::string text;
    for (auto _ : state) benchmark::DoNotOptimize(bvh::write(clip, text, error));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(writeWalk);

}  // namespace

int main(int argc, char** argv) {
    Tavo::XCoreTypes types;
    Tavo::XApplication& application = Tavo::XApplication::Instance();
    application.AddSceneObserver(&types).AddSettingsObserver(&types);
    application.Startup(nullptr, nullptr, L"");
    auto const print = [&application](std::string const& name, std::string const& text) {
        printRatios(name, text);
        printSceneRatios(application.ActiveScene(), name, text);
    };
    print("walk.bvh, 50 times", walk());
    std::error_code problem;
    std::filesystem::path const shared = sourceFolder() / ".." / "shared" / "data";
    for (auto const& entry : std::filesystem::directory_iterator{shared, problem}) {
        // Smaller files are nearly all hierarchy, which the bare passes do not read.
        bool const motion = entry.path().extension() == ".bvh" && entry.file_size() > 50000;
        if (motion) print(entry.path().filename().string(), load(entry.path()));
    }
    application.Shutdown();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
