// Writing and reading XML through memory: bytes a second, for long lists and for many small elements.
#include "qel/db/xml_reader.h"
#include "qel/db/xml_writer.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

// Forgets what it is given, but counts it.
class Sink : public db::OutputStream {
public:
    bool write(char const*, std::size_t size) override {
        count += size;
        return true;
    }
    bool commit() override { return true; }
    std::size_t count = 0;
};

std::vector<float> samples(std::size_t count) {
    std::vector<float> values(count);
    for (std::size_t i = 0; i < count; ++i) values[i] = std::sin(0.1f * float(i)) * 100;
    return values;
}

void writeLists(db::XMLWriter& writer, std::vector<float> const& values) {
    writer.startElement("lists");
    for (int i = 0; i < 10; ++i) {
        writer.startElement("list");
        writer.values(values);
        writer.endElement();
    }
    writer.endElement();
}

void writeNodes(db::XMLWriter& writer, int count) {
    writer.startElement("nodes");
    for (int i = 0; i < count; ++i) {
        writer.startElement("node");
        writer.attribute("id", i);
        writer.attribute("name", L"LeftUpperArm");
        writer.attribute("value", 0.25f * float(i));
        writer.endElement();
    }
    writer.endElement();
}

class Lists : public db::XMLHandler {
public:
    void startElement(db::XMLReader&, db::XMLElement const&) override {}
    void endElement(db::XMLReader&, std::string_view, std::string_view text) override {
        values.clear();
        benchmark::DoNotOptimize(db::parseXMLNumbers(text, values));
    }
    std::vector<float> values;
};

class Nodes : public db::XMLHandler {
public:
    void startElement(db::XMLReader&, db::XMLElement const& element) override {
        int id = 0;
        float value = 0;
        std::wstring name;
        benchmark::DoNotOptimize(element.get("id", id) && element.get("name", name) && element.get("value", value));
    }
    void endElement(db::XMLReader&, std::string_view, std::string_view) override {}
};

template<class Write> void writing(benchmark::State& state, Write write) {
    Sink sink;
    for (auto _ : state) {
        db::XMLWriter writer(sink);
        write(writer);
        if (!writer.finish()) state.SkipWithError("not written");
    }
    state.SetBytesProcessed(std::int64_t(sink.count));
}

template<class Handler, class Write> void reading(benchmark::State& state, Write write) {
    db::StringOutputStream document;
    db::XMLWriter writer(document);
    write(writer);
    writer.finish();
    for (auto _ : state) {
        db::StringInputStream stream(document.text());
        db::XMLReader reader(stream);
        Handler handler;
        if (!reader.read(handler)) state.SkipWithError("not read");
    }
    state.SetBytesProcessed(std::int64_t(document.text().size()) * std::int64_t(state.iterations()));
}

void writeFloats(benchmark::State& state) {
    auto values = samples(std::size_t(state.range(0)));
    writing(state, [&](db::XMLWriter& writer) { writeLists(writer, values); });
}
void readFloats(benchmark::State& state) {
    auto values = samples(std::size_t(state.range(0)));
    reading<Lists>(state, [&](db::XMLWriter& writer) { writeLists(writer, values); });
}
void writeElements(benchmark::State& state) {
    writing(state, [&](db::XMLWriter& writer) { writeNodes(writer, int(state.range(0))); });
}
void readElements(benchmark::State& state) {
    reading<Nodes>(state, [&](db::XMLWriter& writer) { writeNodes(writer, int(state.range(0))); });
}
// One attribute that fills the document: a reader that begins anew with each piece would grow with the square.
void readLongAttribute(benchmark::State& state) {
    std::wstring text(std::size_t(state.range(0)), L'x');
    reading<Nodes>(state, [&](db::XMLWriter& writer) {
        writer.startElement("a");
        writer.attribute("name", text);
        writer.endElement();
    });
}

BENCHMARK(writeFloats)->Arg(1'000)->Arg(100'000);
BENCHMARK(readFloats)->Arg(1'000)->Arg(100'000);
BENCHMARK(writeElements)->Arg(1'000)->Arg(100'000);
BENCHMARK(readElements)->Arg(1'000)->Arg(100'000);
BENCHMARK(readLongAttribute)->Arg(1'000'000)->Arg(10'000'000);

}  // namespace

BENCHMARK_MAIN();
