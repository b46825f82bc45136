// Any bytes are refused with a message and a place, and nothing changes; or they are a document, which then comes back
// from a file byte for byte, can be evaluated and edited, and undone to the same bytes.
#include "tests/qel/sg/random_scene.h"
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool condition, char const* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::string const& openDocument() {
    static std::string const text =
        "<tavo format=\"1\" name=\"open\"><node id=\"16\" type=\"Joint\" name=\"a\"/></tavo>";
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace sg::test;
    sg::Scene scene, other;
    require(load(scene, openDocument()).ok, "the open document");
    scene.commitTransient();
    std::string const before = saved(scene);
    Loaded const result = load(scene, std::string(data, data + size));
    if (!result.ok) {
        require(result.error.find(L"line ") == 0 && result.error.find(L", column ") < 20, "refused without a place");
        require(saved(scene) == before, "refused, but changed");
        return 0;
    }
    scene.commitTransient();
    std::string const once = saved(scene);
    require(load(other, once).ok, "can't be loaded again");
    require(saved(other) == once, "comes back changed");
    if (size > 20000) return 0;
    readings(scene);
    RandomScene edits(scene, unsigned(size) * 31 + (size ? data[size / 2] : 0));
    for (int i = 0; i < 60; ++i) edits.edit();
    edits.finish();
    while (scene.undo()) {}
    require(saved(scene) == once, "not undone to the same bytes");
    return 0;
}
