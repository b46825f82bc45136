#include "hosts/tavo/targets.h"
#include "hosts/tavo/console.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <numbers>
#include <vector>

namespace host {
namespace {

Failure noTarget(std::string const& text) {
    return wrongCall(fmt::format("\"{}\" is not PATH=x,y,z or PATH=x,y,z,rx,ry,rz", text));
}

std::vector<float> numbersOf(std::string const& text, std::size_t from) {
    std::vector<float> numbers;
    for (std::size_t start = from; start <= text.size();) {
        std::size_t const end = std::min(text.find(',', start), text.size());
        float value = 0;
        auto const [stop, error] = std::from_chars(text.data() + start, text.data() + end, value);
        if (error != std::errc() || stop != text.data() + end || !std::isfinite(value)) throw noTarget(text);
        numbers.push_back(value);
        start = end + 1;
    }
    return numbers;
}

}  // namespace

std::pair<std::string, IkTarget> parseTarget(std::string const& text) {
    std::size_t const split = text.rfind('=');
    if (split == 0 || split == std::string::npos) throw noTarget(text);
    std::vector<float> const n = numbersOf(text, split + 1);
    if (n.size() != 3 && n.size() != 6) throw noTarget(text);
    IkTarget target{{n[0], n[1], n[2]}, {}};
    constexpr float radians = std::numbers::pi_v<float> / 180;
    if (n.size() == 6)
        target.rotation = Tavo::XQuaternion(Tavo::XVector3(n[3] * radians, n[4] * radians, n[5] * radians));
    return {text.substr(0, split), target};
}

}  // namespace host
