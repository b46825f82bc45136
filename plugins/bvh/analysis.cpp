#include "plugins/bvh/analysis.h"

#include "plugins/bvh/lexical.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>

namespace bvh {
namespace {

// For sentences: about three digits, without an exponent for all sizes a figure may have.
std::string rounded(double value) {
    char digits[32];
    bool const usual = value >= 0.1 && value < 1e9;
    int const precision = !usual ? 3 : value >= 100 ? 0 : value >= 10 ? 1 : 2;
    auto const format = usual ? std::chars_format::fixed : std::chars_format::general;
    return {digits, std::to_chars(digits, digits + sizeof digits, value, format, precision).ptr};
}

std::string counted(int count, std::string const& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

// Position channels ---------------------------------------------------------------------------------------------------

enum class Vote { none, replace, add };

// Over all frames: are the positions nearer to zero or to the offset, along the axes that have a channel?
Vote voteOf(Clip const& clip, Joint const& joint) {
    double toZero = 0;
    double toOffset = 0;
    for (int frame = 0; frame < clip.frames; ++frame) {
        Vec3 position{};
        Vec3 difference{};
        for (std::size_t i = 0; i < joint.channels.size(); ++i) {
            if (!isPosition(joint.channels[i])) continue;
            auto const axis = static_cast<std::size_t>(axisOf(joint.channels[i]));
            position[axis] = clip.value(frame, joint.column + static_cast<int>(i));
            difference[axis] = position[axis] - joint.offset[axis];
        }
        toZero += std::hypot(position[0], position[1], position[2]);
        toOffset += std::hypot(difference[0], difference[1], difference[2]);
    }
    if (toZero == toOffset) return Vote::none;
    return toZero < toOffset ? Vote::add : Vote::replace;
}

bool hasPositions(Joint const& joint) { return std::any_of(joint.channels.begin(), joint.channels.end(), isPosition); }

PositionsFinding judge(int voters, int replace, int add) {
    if (voters == 0)
        return {Positions::replace, "No inner joint has position channels: the roots' replace their OFFSET."};
    std::string const of = " of " + counted(voters, "inner joint") + " with position channels lie nearer to ";
    if (add > replace) {
        return {Positions::add, "The positions of " + std::to_string(add) + of +
                                    "zero than to the joint's OFFSET: they are differences from it."};
    }
    if (replace > add) {
        return {Positions::replace, "The positions of " + std::to_string(replace) + of +
                                        "the joint's OFFSET than to zero: they stand in its place."};
    }
    return {Positions::replace,
            "The positions of the inner joints do not tell whether they replace OFFSET or add to it: they replace it."};
}

// Size and unit -------------------------------------------------------------------------------------------------------

struct UnitRow {
    Unit unit;
    char const* symbol;
    char const* plural;
    double metres;
    double handicap;  // how much nearer (as a logarithm of size) it must come: hardly anybody models in yards
};

constexpr std::array<UnitRow, 6> units{{
    {Unit::millimetre, "mm", "millimetres", 0.001, 0},
    {Unit::centimetre, "cm", "centimetres", 0.01, 0},
    {Unit::metre, "m", "metres", 1, 0},
    {Unit::inch, "in", "inches", 0.0254, 0.02},
    {Unit::foot, "ft", "feet", 0.3048, 0.02},
    {Unit::yard, "yd", "yards", 0.9144, 0.1},
}};

constexpr double smallestHuman = 1.0;
constexpr double tallestHuman = 2.5;
constexpr double hipsOfHeight = 0.53;  // where the hips of a standing adult are, as a part of the height

// The distance of a height from the human range, as a logarithm; 0 within.
double misfit(double metres) {
    if (metres < smallestHuman) return std::log(smallestHuman / metres);
    return metres > tallestHuman ? std::log(metres / tallestHuman) : 0;
}

struct Fit {
    UnitRow const* best = nullptr;
    double height = 0;  // metres, in the best unit
    int fitting = 0;    // how many units make a human
    std::string others;
};

Fit fitUnits(double height) {
    Fit fit;
    double least = 0;
    for (UnitRow const& row : units) {
        double const distance = misfit(height * row.metres);
        if (distance == 0) ++fit.fitting;
        if (fit.best && distance + row.handicap >= least) continue;
        fit.best = &row;
        least = distance + row.handicap;
    }
    fit.height = height * fit.best->metres;
    for (UnitRow const& row : units) {
        if (&row != fit.best && misfit(height * row.metres) == 0) fit.others += std::string{", "} + row.plural;
    }
    return fit;
}

UnitGuess explain(Fit const& fit, std::string const& what) {
    UnitGuess guess{fit.best->unit, fit.height, fit.fitting == 1 && fit.others.empty(), {}};
    std::string const name = fit.best->plural;
    std::string const metres = rounded(fit.height) + " m";
    if (guess.certain) {
        guess.reason = what + "; only in " + name + " is that a human (" + metres + ").";
    } else if (fit.fitting > 0) {
        guess.reason = what + "; in " + name + " that is a human of " + metres +
                       ". Other units would do as well: " + fit.others.substr(2) + ". The most usual one is taken.";
    } else {
        guess.reason = what + "; none of the usual units makes that a human of 1 to 2.5 m. The nearest is " + name +
                       " (" + metres + "): the file may have a unit of its own, such as 2.2 inches, or no human in it.";
    }
    return guess;
}

// The lowest and highest of joints and end sites of the rest pose, per axis.
struct Extent {
    Vec3 low{};
    Vec3 high{};

    double along(std::size_t axis) const { return high[axis] - low[axis]; }
    void include(Vec3 const& point, bool first) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = first ? point[axis] : std::min(low[axis], point[axis]);
            high[axis] = first ? point[axis] : std::max(high[axis], point[axis]);
        }
    }
};

Vec3 sum(Vec3 const& a, Vec3 const& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }

// Of the first root alone: several figures in one file may stand anywhere.
Extent restExtent(Clip const& clip) {
    Extent extent;
    std::vector<Vec3> places;
    for (Joint const& joint : clip.joints) {
        if (joint.parent < 0 && !places.empty()) break;
        places.push_back(joint.parent < 0 ? joint.offset
                                          : sum(places[static_cast<std::size_t>(joint.parent)], joint.offset));
        extent.include(places.back(), places.size() == 1);
        for (EndSite const& site : joint.endSites) extent.include(sum(places.back(), site.offset), false);
    }
    return extent;
}

double medianOfColumn(Clip const& clip, int column) {
    std::vector<double> values;
    for (int frame = 0; frame < clip.frames; ++frame) values.push_back(clip.value(frame, column));
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Frame rate ----------------------------------------------------------------------------------------------------------

// Television's rates differ from the whole ones by a thousandth: only enough digits tell them apart.
constexpr std::array<double, 16> usualRates{10, 12, 12.5, 15, 24, 25, 30, 48, 50, 60, 72, 90, 100, 120, 200, 240};
constexpr std::array<double, 3> televisionRates{24000.0 / 1001, 30000.0 / 1001, 60000.0 / 1001};

// Half a unit of the last digit written, in seconds; as good as nothing for a text with an exponent or without point.
double roundingOf(std::string_view text) {
    auto const point = text.find('.');
    if (point == std::string_view::npos || text.find_first_of("eE") != std::string_view::npos) return 1e-12;
    return 0.5 * std::pow(10, -static_cast<double>(text.size() - point - 1));
}

}  // namespace

bool parsePositions(std::string_view text, Positions& positions) {
    static constexpr std::array<char const*, 3> names{"auto", "replace", "add"};
    auto const found = std::find_if(names.begin(), names.end(), [&](char const* name) { return sameWord(name, text); });
    if (found == names.end()) return false;
    positions = static_cast<Positions>(found - names.begin());
    return true;
}

PositionsFinding findPositions(Clip const& clip, Positions wanted) {
    if (wanted == Positions::replace) return {wanted, "Positions replace OFFSET, as asked."};
    if (wanted == Positions::add) return {wanted, "Positions add to OFFSET, as asked."};
    std::array<int, 3> votes{};
    int voters = 0;
    for (Joint const& joint : clip.joints) {
        if (joint.parent < 0 || !hasPositions(joint)) continue;
        ++voters;
        ++votes[static_cast<std::size_t>(voteOf(clip, joint))];
    }
    return judge(voters, votes[static_cast<std::size_t>(Vote::replace)], votes[static_cast<std::size_t>(Vote::add)]);
}

double metresPer(Unit unit) { return units[static_cast<std::size_t>(unit)].metres; }

char const* symbolOf(Unit unit) { return units[static_cast<std::size_t>(unit)].symbol; }

bool parseUnit(std::string_view text, Unit& unit) {
    auto const found =
        std::find_if(units.begin(), units.end(), [&](UnitRow const& row) { return sameWord(row.symbol, text); });
    if (found == units.end()) return false;
    unit = found->unit;
    return true;
}

Size measure(Clip const& clip) {
    Extent const extent = restExtent(clip);
    Size size;
    size.upAxis = extent.along(2) > extent.along(1) ? 2 : 1;
    size.height = extent.along(static_cast<std::size_t>(size.upAxis));
    if (clip.joints.empty()) return size;
    Joint const& root = clip.joints.front();
    Channel const up = size.upAxis == 1 ? Channel::yPosition : Channel::zPosition;
    auto const found = std::find(root.channels.begin(), root.channels.end(), up);
    if (found != root.channels.end()) {
        size.rootHeight = medianOfColumn(clip, root.column + static_cast<int>(found - root.channels.begin()));
    }
    return size;
}

UnitGuess guessUnit(Clip const& clip) {
    Size const size = measure(clip);
    double const byRoot = std::fabs(size.rootHeight) / hipsOfHeight;
    bool const restFits = size.height > 0 && fitUnits(size.height).fitting > 0;
    bool const rootFits = byRoot > 0 && fitUnits(byRoot).fitting > 0;
    if (size.height > 0 && (restFits || !rootFits)) {
        return explain(fitUnits(size.height), "The rest pose is " + rounded(size.height) + " units high");
    }
    if (byRoot > 0) {
        return explain(fitUnits(byRoot), "The root moves " + rounded(std::fabs(size.rootHeight)) +
                                             " units above the ground, which makes a figure of about " +
                                             rounded(byRoot));
    }
    return {Unit::centimetre, 0, false, "The rest pose has no height to judge by; centimetres are taken as usual."};
}

std::string channelOrder(Joint const& joint) {
    std::string text;
    for (std::size_t i = 0; i < joint.channels.size(); ++i) {
        Channel const channel = joint.channels[i];
        if (i == 0 || isPosition(channel) != isPosition(joint.channels[i - 1])) {
            text += i == 0 ? "" : " + ";
            text += isPosition(channel) ? "pos " : "rot ";
        }
        text += "XYZ"[axisOf(channel)];
    }
    return text.empty() ? "none" : text;
}

std::vector<std::pair<std::string, int>> channelOrders(Clip const& clip) {
    std::vector<std::pair<std::string, int>> orders;
    for (Joint const& joint : clip.joints) {
        std::string order = channelOrder(joint);
        auto const found = std::find_if(orders.begin(), orders.end(), [&](auto const& o) { return o.first == order; });
        if (found == orders.end()) {
            orders.emplace_back(std::move(order), 1);
        } else {
            ++found->second;
        }
    }
    std::stable_sort(orders.begin(), orders.end(), [](auto const& a, auto const& b) { return a.second > b.second; });
    return orders;
}

std::array<int, channelKinds + 1> channelCounts(Clip const& clip) {
    std::array<int, channelKinds + 1> counts{};
    for (Joint const& joint : clip.joints) ++counts[joint.channels.size()];
    return counts;
}

bool hasMixedChannelCounts(Clip const& clip) {
    std::size_t seen = 0;
    for (Joint const& joint : clip.joints) {
        std::size_t const count = joint.channels.size();
        if (joint.parent < 0 || count == 0 || count == seen) continue;
        if (seen != 0) return true;
        seen = count;
    }
    return false;
}

std::vector<RepeatedName> repeatedNames(Clip const& clip) {
    std::unordered_map<std::string_view, std::size_t> places;
    std::vector<RepeatedName> names;
    for (std::size_t i = 0; i < clip.joints.size(); ++i) {
        std::string const& name = clip.joints[i].name;
        auto const place = places.try_emplace(name, names.size());
        if (place.second) names.push_back({name, {}});
        names[place.first->second].joints.push_back(static_cast<int>(i));
    }
    names.erase(std::remove_if(names.begin(), names.end(), [](auto const& name) { return name.joints.size() < 2; }),
                names.end());
    return names;
}

double frameRate(Clip const& clip) {
    double const rate = 1 / clip.frameTime;
    double const rounding = roundingOf(clip.frameTimeText) * 1.001;
    double best = 0;
    auto const consider = [&](double candidate) {
        bool const meant = candidate >= 1 && std::fabs(1 / candidate - clip.frameTime) <= rounding;
        if (meant && std::fabs(candidate - rate) < std::fabs(best - rate)) best = candidate;
    };
    std::for_each(usualRates.begin(), usualRates.end(), consider);
    if (best == 0) std::for_each(televisionRates.begin(), televisionRates.end(), consider);
    if (best == 0) consider(std::round(rate));
    return best == 0 ? rate : best;
}

}  // namespace bvh
