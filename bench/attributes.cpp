// What the handles cost: reads and writes through XAttribute against the attribute itself, making like-named objects,
// and lookups. Read the pairs against each other: a read through a handle stays below five direct ones; and the sizes:
// the time per object must not grow.
#include "tavo/tavo.h"
#include <benchmark/benchmark.h>

using namespace Tavo;

namespace {

class Document : public XDatabase {
public:
    Document() {
        Register();
        XCoreTypes::RegisterSceneTypes(*this);
    }
    void reparent(XObject& object, XObject const& parent, bool, bool) override {
        parent.getNode()->addChild(*object.getNode());
    }
};

void ReadDirect(benchmark::State& state) {
    Document document;
    XAttribute const a = document.CreateObject(L"Joint").Attribute(21);
    db::FloatAttribute const* direct = a.getAttribute()->asFloat();
    for (auto _ : state) {
        benchmark::DoNotOptimize(direct);
        benchmark::DoNotOptimize(direct->getValue());
    }
}
BENCHMARK(ReadDirect);

void ReadThroughHandle(benchmark::State& state) {
    Document document;
    XAttribute const a = document.CreateObject(L"Joint").Attribute(21);
    for (auto _ : state) {
        benchmark::DoNotOptimize(&a);
        benchmark::DoNotOptimize(a.Float());
    }
}
BENCHMARK(ReadThroughHandle);

void WriteDirect(benchmark::State& state) {
    Document document;
    XAttribute const a = document.CreateObject(L"Joint").Attribute(21);
    db::FloatAttribute* direct = a.getAttribute()->asFloat();
    document.BeginChangeBlock();
    float value = 0;
    for (auto _ : state) direct->setValue(value += 1);
    document.EndChangeBlock();
}
BENCHMARK(WriteDirect);

void WriteThroughHandle(benchmark::State& state) {
    Document document;
    XAttribute a = document.CreateObject(L"Joint").Attribute(21);
    document.BeginChangeBlock();
    float value = 0;
    for (auto _ : state) a.SetFloat(value += 1);
    document.EndChangeBlock();
}
BENCHMARK(WriteThroughHandle);

void AttributeByIndex(benchmark::State& state) {
    Document document;
    XObject const joint = document.CreateObject(L"Joint");
    for (auto _ : state) benchmark::DoNotOptimize(joint.Attribute(21));
}
BENCHMARK(AttributeByIndex);

// Time per object must not grow.
void CreateLikeNamed(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto document = std::make_unique<Document>();
        state.ResumeTiming();
        document->BeginChangeBlock();
        for (int i = 0; i < state.range(0); ++i) document->CreateObject(L"Null");
        document->EndChangeBlock();
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(CreateLikeNamed)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Complexity();

void DeleteByPattern(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto document = std::make_unique<Document>();
        for (int i = 0; i < state.range(0); ++i) document->CreateObject(L"Null");
        state.ResumeTiming();
        document->DeleteObjects(L"Null*");
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(DeleteByPattern)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Complexity();

void LookUpPath(benchmark::State& state) {
    Document document;
    for (int i = 0; i < state.range(0); ++i) document.CreateObject(L"Null");
    std::wstring const path = L"Null" + std::to_wstring(state.range(0) / 2);
    for (auto _ : state) benchmark::DoNotOptimize(document.Object(path));
}
BENCHMARK(LookUpPath)->Arg(1000)->Arg(100000);

// Among the last seven ids, and beyond them.
void LookUpID(benchmark::State& state) {
    Document document;
    std::vector<int> ids;
    for (int i = 0; i < state.range(0); ++i) ids.push_back(document.CreateObject(L"Null").ObjectID());
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(document.Object(ids[++i % ids.size()]));
}
BENCHMARK(LookUpID)->Arg(1)->Arg(7)->Arg(8)->Arg(1000);

}  // namespace

BENCHMARK_MAIN();
