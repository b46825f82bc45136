// What the database costs: each figure beside a plain loop that does the bare work, or beside itself at another size,
// as a ratio of medians. Both are timed in turn, so that a busy machine disturbs them alike.
#include "qel/db/database.h"
#include "bench/timing.h"
#include <random>

namespace {

using namespace bench;
using namespace db;

// ---- the scene: nodes of 58 attributes, as many as a joint has ----

constexpr int attributeCount = 58;
std::vector<AttributeDef> const& rows() {
    static std::vector<std::wstring> const names = [] {
        std::vector<std::wstring> n;
        for (int i = 0; i < attributeCount; ++i) n.push_back(L"A" + std::to_wstring(i));
        return n;
    }();
    static std::vector<AttributeDef> const all = [] {
        std::vector<AttributeDef> r{row::text(0, L"Name"), row::array(1, L"Array", AttributeType::FloatArray)};
        for (int i = 2; i < attributeCount; ++i) r.push_back(row::real(i, names[std::size_t(i)].c_str()));
        return r;
    }();
    return all;
}
Node* makeNode(void* at, NodeDef const& def) { return new (at) Node(def); }
NodeDef const& jointDef() {
    static NodeDef const def(L"bench", L"Joint", nullptr, rows(), sizeof(Node), makeNode);
    return def;
}

struct Listener : DatabaseObserver {
    void onDatabaseChanged(ChangeSet const& set, bool) override { heard += set.ChangedAttributes().size(); }
    std::size_t heard = 0;
};

struct Scene {
    explicit Scene(std::size_t count) {
        database.addObserver(&listener);
        for (std::size_t i = 0; i < count; ++i)
            nodes.push_back(database.createNode(jointDef(), L"n" + std::to_wstring(i)));
        for (Node* n : nodes) values.push_back(&n->at<FloatAttribute>(20));
        database.commitTransient();
        database.clearUndoHistory();
    }
    FloatAttribute& value(std::size_t i) { return *values[i]; }
    Database database;
    Listener listener;
    std::vector<Node*> nodes;
    std::vector<FloatAttribute*> values;  // one of each
};

// The scenes are big: each size is made once.
Scene& scene(std::size_t count) {
    jointDef();  // goes after the scenes
    static std::vector<std::pair<std::size_t, std::unique_ptr<Scene>>> made;
    for (auto& [size, s] : made)
        if (size == count) return *s;
    return *made.emplace_back(count, std::make_unique<Scene>(count)).second;
}

std::vector<std::size_t> randomPlaces(std::size_t count, std::size_t below) {
    std::mt19937 random(1);
    std::vector<std::size_t> places(count);
    for (auto& p : places) p = random() % below;
    return places;
}

// ---- reading and writing ----

void ReadThroughAHandle(benchmark::State& state) {
    Scene& s = scene(std::size_t(state.range(0)));
    std::vector<AttributeHandle> handles;
    std::vector<FloatAttribute const*> direct;
    for (std::size_t i = 0; i < s.nodes.size(); ++i) handles.emplace_back(&s.value(i)), direct.push_back(&s.value(i));
    // Into an array, not into a sum: what keeps a sum in memory would be timed instead.
    std::vector<float> out(handles.size());
    compare(
        state, double(handles.size()),
        [&] {
            for (std::size_t i = 0; i < handles.size(); ++i) {
                Attribute* a = handles[i].getRef();
                out[i] = a && a->isFloat() ? a->asFloat()->getValue() : 0;
            }
            benchmark::DoNotOptimize(out.data());
            benchmark::ClobberMemory();
        },
        [&] {
            for (std::size_t i = 0; i < direct.size(); ++i) out[i] = direct[i]->raw();
            benchmark::DoNotOptimize(out.data());
            benchmark::ClobberMemory();
        },
        [] {});
}
BENCHMARK(ReadThroughAHandle)->Arg(100)->Arg(1000)->Arg(100000)->UseManualTime()->Iterations(101);

// The bare work: the value in an object of the same size, an undo record of 24 bytes, a journal that becomes an item.
struct PlainObject {
    float value;
    char rest[1212];
};
struct PlainRecord {
    float* at;
    double old;
    std::uint64_t id;
};
struct PlainHistory {
    std::vector<PlainRecord> journal;
    std::vector<std::vector<PlainRecord>> items;
    void write(float& at, float v) {
        journal.push_back({&at, at, 1});
        at = v;
    }
    void commit() {
        items.emplace_back(journal);
        journal.clear();
    }
};

constexpr std::size_t writesPerStep = 1000;

// Writes to `count` objects, either the first ones in turn or random ones; one step and one telling for 1,000.
void RecordedWrite(benchmark::State& state) {
    Scene& s = scene(std::size_t(state.range(0)));
    bool const isRandom = state.range(1) != 0;
    auto places = randomPlaces(writesPerStep, s.nodes.size());
    std::mt19937 random(2);
    std::vector<PlainObject> plain(s.nodes.size());
    PlainHistory history;
    float v = 0;
    if (!isRandom)
        for (std::size_t i = 0; i < places.size(); ++i) places[i] = i % 100;
    compare(
        state, writesPerStep,
        [&] {
            s.database.beginChangeBlock();
            for (std::size_t p : places) s.value(p).setValue(v);
            s.database.endChangeBlock(L"step");
        },
        [&] {
            for (std::size_t p : places) history.write(plain[p].value, v);
            history.commit();
        },
        [&] {
            s.database.clearUndoHistory();
            history.items.clear();
            v += 1;
            if (isRandom)
                for (std::size_t& p : places) p = random() % s.nodes.size();
        });
}
BENCHMARK(RecordedWrite)
    ->ArgNames({"objects", "random"})
    ->Args({100, 0})
    ->Args({1000, 1})
    ->Args({100000, 1})
    ->UseManualTime()
    ->Iterations(301);

// The worst case of a hot write: each is the first of its attribute in its step, none a repetition.
void RecordedFirstWrite(benchmark::State& state) {
    Scene& s = scene(1000);
    std::vector<PlainObject> plain(s.nodes.size());
    PlainHistory history;
    float v = 0;
    constexpr int steps = 20;
    compare(
        state, 100 * steps,
        [&] {
            for (int k = 0; k < steps; ++k) {
                s.database.beginChangeBlock();
                for (std::size_t p = 0; p < 100; ++p) s.value(p).setValue(v);
                s.database.endChangeBlock(L"step");
            }
        },
        [&] {
            for (int k = 0; k < steps; ++k) {
                for (std::size_t p = 0; p < 100; ++p) history.write(plain[p].value, v);
                history.commit();
            }
        },
        [&] { s.database.clearUndoHistory(), history.items.clear(), v += 1; });
}
BENCHMARK(RecordedFirstWrite)->UseManualTime()->Iterations(301);

void UndoRecordSize(benchmark::State& state) {
    Scene& s = scene(1000);
    auto bytesOf = [&](std::size_t writes) {
        s.database.clearUndoHistory();
        s.database.beginChangeBlock();
        for (std::size_t i = 0; i < writes; ++i) s.value(i).setValue(float(i));
        s.database.endChangeBlock();
        return double(s.database.getHistoryBytes());
    };
    for (auto _ : state) state.SetIterationTime(1e-6);
    state.counters["bytes_per_write"] = (bytesOf(1000) - bytesOf(1)) / 999;
    state.counters["bytes_of_an_item_of_one"] = bytesOf(1);
}
BENCHMARK(UndoRecordSize)->UseManualTime()->Iterations(1);

// ---- one change among many ----

constexpr std::size_t commits = 500;

// `use` says what is done to one attribute; the reference is the same among 1,000.
template<class F> void amongMany(benchmark::State& state, F const& use) {
    Scene &many = scene(100000), &few = scene(1000);
    bool const isRandom = state.range(0) != 0;
    auto places = [&](Scene& s) {
        auto p = randomPlaces(commits, s.nodes.size());
        if (!isRandom)
            for (std::size_t i = 0; i < p.size(); ++i) p[i] = i % 10;
        return p;
    };
    auto const inMany = places(many), inFew = places(few);
    use(state, many, few, inMany, inFew);
}

void commitEach(Scene& s, std::vector<std::size_t> const& places) {
    for (std::size_t p : places) {
        s.database.beginChangeBlock();
        s.value(p).setValue(float(p));
        s.database.endChangeBlock();
    }
}
using Places = std::vector<std::size_t>;

void CommitOfOneAmong100000(benchmark::State& state) {
    amongMany(state, [](benchmark::State& st, Scene& many, Scene& few, Places const& a, Places const& b) {
        compare(
            st, commits, [&] { commitEach(many, a); }, [&] { commitEach(few, b); },
            [&] { many.database.clearUndoHistory(), few.database.clearUndoHistory(); });
    });
}
BENCHMARK(CommitOfOneAmong100000)->ArgName("random")->Arg(0)->Arg(1)->UseManualTime()->Iterations(301);

void UndoOfOneAmong100000(benchmark::State& state) {
    amongMany(state, [](benchmark::State& st, Scene& many, Scene& few, Places const& a, Places const& b) {
        auto undoAll = [](Scene& s) {
            while (s.database.undo()) {}
        };
        auto fill = [&] { commitEach(many, a), commitEach(few, b); };
        fill();
        compare(
            st, commits, [&] { undoAll(many); }, [&] { undoAll(few); }, fill);
        many.database.clearUndoHistory(), few.database.clearUndoHistory();
    });
}
BENCHMARK(UndoOfOneAmong100000)->ArgName("random")->Arg(0)->Arg(1)->UseManualTime()->Iterations(301);

// ---- growth ----

// All ask for one name, in one step with its undo records and one telling; the reference is 1,000 of them.
double createLikeNamed(std::size_t count) {
    Database database;
    Listener listener;
    database.addObserver(&listener);
    return seconds([&] {
        database.beginChangeBlock();
        for (std::size_t i = 0; i < count; ++i) benchmark::DoNotOptimize(database.createNode(jointDef(), L"Joint"));
        database.endChangeBlock(L"create");
    });
}

void CreateLikeNamed(benchmark::State& state) {
    std::size_t const count = std::size_t(state.range(0));
    std::vector<double> many, few;
    for (auto _ : state) {
        many.push_back(createLikeNamed(count) / double(count));
        for (int i = 0; i < 15; ++i) few.push_back(createLikeNamed(1000) / 1000);
        state.SetIterationTime(many.back() * double(count));
    }
    state.counters["ns"] = median(many) * 1e9;
    state.counters["reference_ns"] = median(few) * 1e9;
    state.counters["ratio"] = median(many) / median(few);
}
BENCHMARK(CreateLikeNamed)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(200000)->UseManualTime()->Iterations(7);

void FindByPath(benchmark::State& state) {
    grow(state, [](std::size_t count) {
        Scene& s = scene(count);
        std::vector<std::wstring> paths;
        for (std::size_t p : randomPlaces(count, count)) paths.push_back(s.nodes[p]->getPath());
        return seconds([&] {
            for (std::wstring const& p : paths) benchmark::DoNotOptimize(s.database.findNodeByPath(p));
        });
    });
}
BENCHMARK(FindByPath)->UseManualTime()->Iterations(15);

void RemoveAndUndo(benchmark::State& state) {
    bool const isUndo = state.range(0) != 0;
    grow(state, [&](std::size_t count) {
        Scene& s = scene(count);
        auto const remove = [&] {
            s.database.beginChangeBlock();
            for (Node* n : s.nodes) n->remove();
            s.database.endChangeBlock();
        };
        double const removal = seconds(remove), undo = seconds([&] { s.database.undo(); });
        return isUndo ? undo : removal;
    });
}
BENCHMARK(RemoveAndUndo)->ArgName("undo")->Arg(0)->Arg(1)->UseManualTime()->Iterations(9);

void UndoAndRedoOfNChanges(benchmark::State& state) {
    bool const isRedo = state.range(0) != 0;
    grow(state, [&](std::size_t count) {
        Scene& s = scene(count);
        s.database.beginChangeBlock();
        for (std::size_t i = 0; i < count; ++i) s.value(i).setValue(float(i));
        s.database.endChangeBlock();
        double const undo = seconds([&] { s.database.undo(); }), redo = seconds([&] { s.database.redo(); });
        s.database.clearUndoHistory();
        return isRedo ? redo : undo;
    });
}
BENCHMARK(UndoAndRedoOfNChanges)->ArgName("redo")->Arg(0)->Arg(1)->UseManualTime()->Iterations(15);

// ---- long arrays ----

constexpr std::size_t longArray = 100000, events = 1000, writesPerEvent = 200;

// 1,000 events of 200 writes each to one run of elements, or to scattered ones; then one step of it all.
void DragOnALongArray(benchmark::State& state) {
    Scene& s = scene(1000);
    auto& array = s.nodes[0]->at<FloatArrayAttribute>(1);
    array.resize(longArray);
    s.database.clearUndoHistory();
    auto places = randomPlaces(writesPerEvent, longArray);
    if (state.range(0) == 0)
        for (std::size_t i = 0; i < writesPerEvent; ++i) places[i] = longArray / 2 + i;
    std::vector<float> plain(longArray);
    std::size_t bytes = 0;
    compare(
        state, events,
        [&] {
            for (std::size_t e = 0; e < events; ++e) {
                s.database.beginChangeBlock(ChangeMode::Transient);
                for (std::size_t p : places) array.setElement(float(e), p);
                s.database.endChangeBlock();
            }
            s.database.commitTransient();
        },
        [&] {
            for (std::size_t e = 0; e < events; ++e) {
                for (std::size_t p : places) plain[p] = float(e);
                benchmark::ClobberMemory();
            }
        },
        [&] { bytes = s.database.getHistoryBytes(), s.database.clearUndoHistory(); });
    state.counters["us_per_event"] = double(state.counters["ns"]) / 1000;
    state.counters["history_bytes"] = double(bytes);
    state.counters["bytes_to_copy"] = double(bytes) / double(longArray * sizeof(float));
    array.clearArray();
    s.database.commitTransient();
    s.database.clearUndoHistory();
}
BENCHMARK(DragOnALongArray)->ArgName("scattered")->Arg(0)->Arg(1)->UseManualTime()->Iterations(15);

// One element at a time into 10,000, at random places, recorded; the reference only moves the rest up.
void InsertIntoAnArray(benchmark::State& state) {
    Scene& s = scene(1000);
    auto& array = s.nodes[0]->at<FloatArrayAttribute>(1);
    array.resize(10000);
    std::vector<float> plain(10000);
    s.database.clearUndoHistory();
    auto const places = randomPlaces(200, 10000);
    compare(
        state, double(places.size()),
        [&] {
            s.database.beginChangeBlock();
            for (std::size_t p : places) array.insert(1, p);
            s.database.endChangeBlock();
        },
        [&] {
            for (std::size_t p : places) plain.insert(plain.begin() + long(p), 1);
            benchmark::DoNotOptimize(plain.data());
        },
        [&] { s.database.undo(), s.database.clearUndoHistory(), plain.resize(10000); });
    array.clearArray();
    s.database.commitTransient();
    s.database.clearUndoHistory();
}
BENCHMARK(InsertIntoAnArray)->UseManualTime()->Iterations(101);

}  // namespace

BENCHMARK_MAIN();
