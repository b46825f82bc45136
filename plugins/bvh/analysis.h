// What a clip does not say about itself, judged from its numbers: what its position channels mean, which unit its
// lengths are in, how its channels are ordered. Each judgement that may be wrong comes with a sentence that says why.
//
// All functions take a clip whose invariants hold (what read() gives, or what check() in writer.h accepts), change
// nothing, and cost at most one pass over the motion.
#pragma once
#include "plugins/bvh/clip.h"

#include <string_view>
#include <utility>

namespace bvh {

// Position channels ---------------------------------------------------------------------------------------------------

// Position channels stand in place of OFFSET (replace), or are differences from it (add). No file says which.
enum class Positions : std::uint8_t { automatic, replace, add };

// "auto", "replace", "add"; case aside. False for anything else.
bool parsePositions(std::string_view text, Positions& positions);

struct PositionsFinding {
    Positions positions = Positions::replace;  // replace or add
    std::string reason;                        // a sentence
};

// How to take the position channels. Anything but `automatic` is only passed on. The inner joints decide, one vote
// each: bones keep their length, so a joint's positions lie near its OFFSET or, as differences, near zero. Joints with
// OFFSET zero tell nothing and do not vote; without votes, or if they are even, positions replace.
PositionsFinding findPositions(Clip const& clip, Positions wanted = Positions::automatic);

// Size and unit -------------------------------------------------------------------------------------------------------

enum class Unit : std::uint8_t { millimetre, centimetre, metre, inch, foot, yard };

double metresPer(Unit unit);
char const* symbolOf(Unit unit);                    // "mm", "cm", "m", "in", "ft", "yd"
bool parseUnit(std::string_view text, Unit& unit);  // a symbol, case aside

// Files are in degrees, as all of the format's makers have it; radians occur, and only who has the file knows.
enum class Angles : std::uint8_t { degrees, radians };

// In the clip's own unit.
struct Size {
    int upAxis = 1;         // 1 y or 2 z: the one along which the rest pose extends further; x runs sideways
    double height = 0;      // extent of the rest pose (joints and end sites) along the up axis
    double rootHeight = 0;  // median over the frames of the first root's position along it; 0 without such a channel
};

Size measure(Clip const& clip);

struct UnitGuess {
    Unit unit = Unit::centimetre;
    double height = 0;     // the figure's height in metres, taken in that unit
    bool certain = false;  // exactly one unit makes a human of it
    std::string reason;    // a sentence or two
};

// The unit that makes a human of 1 to 2.5 metres of the rest pose or, failing that, of the height at which the root
// moves; if none does, the one that comes nearest.
UnitGuess guessUnit(Clip const& clip);

// Channels and names --------------------------------------------------------------------------------------------------

// "pos XYZ + rot ZYX", "rot ZXY", "pos Y + rot Z + pos X", "none".
std::string channelOrder(Joint const& joint);

// Each order that occurs with the number of joints that have it, most frequent first, then in order of appearance.
std::vector<std::pair<std::string, int>> channelOrders(Clip const& clip);

// How many joints have 0, 1, ... 6 channels.
std::array<int, channelKinds + 1> channelCounts(Clip const& clip);

// More than one count among the joints, apart from roots and joints without channels.
bool hasMixedChannelCounts(Clip const& clip);

struct RepeatedName {
    std::string name;
    std::vector<int> joints;  // indices of all that bear it, ascending

    friend bool operator==(RepeatedName const&, RepeatedName const&) = default;
};

// In order of first appearance. Names are compared byte by byte.
std::vector<RepeatedName> repeatedNames(Clip const& clip);

// Frame rate ----------------------------------------------------------------------------------------------------------

// Frames per second. Files round the frame time (".0083333"): the rate that rounds to the very digits written is taken
// for what was meant, a usual one first, then one of television's (29.97), then any whole one; else it is the plain
// inverse.
double frameRate(Clip const& clip);

}  // namespace bvh
