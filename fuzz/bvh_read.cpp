// Any bytes are either refused with a message and a place, or give a clip that can be written and comes back the same.
#include "plugins/bvh/analysis.h"
#include "plugins/bvh/reader.h"
#include "plugins/bvh/writer.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool condition, char const* what, bvh::Error const& error) {
    if (condition) return;
    std::fprintf(stderr, "%s: %s\n", what, error.text().c_str());
    std::abort();
}

void judge(bvh::Clip const& clip, bvh::Error const& error) {
    require(bvh::findPositions(clip).positions != bvh::Positions::automatic, "no decision", error);
    require(!bvh::guessUnit(clip).reason.empty(), "no reason", error);
    require(std::isfinite(bvh::frameRate(clip)), "no frame rate", error);
    bvh::channelOrders(clip);
    bvh::repeatedNames(clip);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    bvh::Clip clip;
    bvh::Clip back;
    bvh::Error error;
    if (!bvh::read({reinterpret_cast<char const*>(data), size}, clip, error)) {
        require(!error.message.empty() && error.line > 0 && error.column > 0, "refused without a reason", error);
        return 0;
    }
    std::string text;
    require(bvh::write(clip, text, error), "cannot be written", error);
    require(bvh::read(text, back, error), "cannot be read again", error);
    require(clip == back, "comes back changed", error);
    judge(clip, error);
    return 0;
}
