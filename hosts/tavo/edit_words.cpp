#include "hosts/tavo/edit_words.h"

#include "hosts/tavo/console.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/values.h"
#include "qel/utils/text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numbers>

namespace host {

using namespace Tavo;

namespace {

using Numbers = std::vector<float>;

std::optional<float> parseFinite(std::string const& text) {
    float value = 0;
    return Qelutils::parseNumber(text, value) && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

// All of them numbers, or none.
Numbers parseNumbers(std::vector<std::string> const& texts) {
    Numbers numbers;
    for (std::string const& text : texts)
        if (std::optional<float> const number = parseFinite(text)) numbers.push_back(*number);
    return numbers.size() == texts.size() ? numbers : Numbers();
}

Failure misread(std::string const& option, std::string const& takes, std::string const& text) {
    return wrongCall(fmt::format("{} takes {}, not \"{}\"", option, takes, text));
}

std::optional<int> parseAxis(std::string const& text) {
    std::wstring const axis = Qelutils::toLower(Qelutils::fromUtf8(text));
    std::size_t const at = axis.size() == 1 ? std::wstring(L"xyz").find(axis) : std::wstring::npos;
    return at < 3 ? std::optional(int(at)) : std::nullopt;
}

XVector3 about(int axis, float degrees) {
    float angles[3] = {};
    angles[axis] = float(double(degrees) * std::numbers::pi / 180);
    return XVector3(angles);
}

XVector3 scaleOf(std::string const& text) {
    Numbers const n = parseNumbers(splitAtCommas(text));
    if (n.size() == 1) return {n[0], n[0], n[0]};
    if (n.size() != 3) throw misread("--scale", "a factor, or three with commas", text);
    return XVector3(n.data());
}

XVector3 rotationOf(std::string const& text) {
    std::vector<std::string> const parts = splitAtCommas(text);
    std::optional<int> const axis = parseAxis(parts.front());
    std::optional<float> const angle = parts.size() == 2 ? parseFinite(parts[1]) : std::nullopt;
    if (!axis || !angle) throw misread("--rotate", "an axis x, y or z and degrees, as y,30", text);
    return about(*axis, *angle);
}

XVector3 bendOf(std::string const& text) {
    std::vector<std::string> const parts = splitAtCommas(text);
    std::optional<float> const angle = parseFinite(parts.front());
    std::optional<int> const axis = parts.size() == 1 ? 1 : parseAxis(parts[1]);
    if (!angle || !axis || parts.size() > 2) throw misread("--bend", "degrees, or degrees and an axis, as 90,y", text);
    return about(*axis, *angle);
}

struct Range {
    int first = 0, last = 0;
};

Range parseRange(std::string const& text) {
    std::size_t const dots = text.find("..");
    Range range;
    bool const good = Qelutils::parseNumber(text.substr(0, dots), range.first) &&
                      Qelutils::parseNumber(dots == std::string::npos ? text : text.substr(dots + 2), range.last);
    if (!good || range.first > range.last) throw misread("--keys", "keys as 3 or 3..7, with commas", text);
    return range;
}

Qelutils::Vector<int> keysOf(std::string const& text, XTrajectory const& path) {
    Qelutils::Vector<int> keys;
    for (std::string const& part : splitAtCommas(text)) {
        Range const range = parseRange(part);
        for (int end : {range.first, range.last}) keyPosition(path, end, "--keys");
        for (int key = range.first; key <= range.last; ++key) keys.push_back(key);
    }
    return keys;
}

Ball ballOf(std::string const& text) {
    Numbers const n = parseNumbers(splitAtCommas(text));
    if (n.size() != 4 || n[3] < 0) throw misread("--ball", "a centre and a radius, as X,Y,Z,R", text);
    return {XVector3(n.data()), n[3]};
}

}  // namespace

XVector3 vectorOf(std::string const& option, std::string const& text) {
    Numbers const n = parseNumbers(splitAtCommas(text));
    if (n.size() != 3) throw misread(option, "three numbers with commas", text);
    return XVector3(n.data());
}

PathChange changeOf(EditTrajectoryVerb const& verb) {
    int given = 0;
    for (std::string const* text : {&verb.move, &verb.scale, &verb.rotate, &verb.bend}) given += !text->empty();
    if (given != 1) throw wrongCall("an edit takes one of --move, --scale, --rotate and --bend");
    if (!verb.move.empty()) return {PathChange::move, vectorOf("--move", verb.move)};
    if (!verb.scale.empty()) return {PathChange::scale, scaleOf(verb.scale)};
    if (!verb.rotate.empty()) return {PathChange::rotate, rotationOf(verb.rotate)};
    return {PathChange::bend, bendOf(verb.bend)};
}

PathPlace placeOf(EditTrajectoryVerb const& verb, XTrajectory const& path) {
    if (verb.keys.empty() == verb.ball.empty()) throw wrongCall("an edit takes one of --keys and --ball");
    if (!verb.ball.empty()) return {{}, ballOf(verb.ball)};
    return {keysOf(verb.keys, path), {}};
}

int keepModeOf(std::string const& word) {
    std::vector<std::wstring> const words{L"feel", L"constraints", L"none"};
    auto const found = std::find(words.begin(), words.end(), Qelutils::toLower(Qelutils::fromUtf8(word)));
    if (found == words.end())
        throw wrongCall(fmt::format("--keep is feel, constraints or none, not \"{}\"", word), word, words);
    return int(found - words.begin());
}

}  // namespace host
