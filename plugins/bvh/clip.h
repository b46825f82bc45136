// A motion clip as its file holds it, free of any scene: a hierarchy of joints and a table of numbers, one row a frame.
//
// Nothing is converted: lengths are in the file's own unit (which the file does not name, see analysis.h), angles in
// degrees unless who has the file knows better, axes as the file's maker chose. Text is UTF-8, for these names only
// pass through on their way to and from the file. The reader fills a clip whose invariants hold (see check() in
// writer.h); who builds one by hand keeps them: a joint stands after its parent, depth first, and its columns follow
// those of the joint before it.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bvh {

using Vec3 = std::array<double, 3>;

enum class Channel : std::uint8_t { xPosition, yPosition, zPosition, xRotation, yRotation, zRotation };

inline constexpr int channelKinds = 6;

// What the files call them, in the order of Channel.
inline constexpr std::array<char const*, channelKinds> channelNames{"Xposition", "Yposition", "Zposition",
                                                                    "Xrotation", "Yrotation", "Zrotation"};

constexpr bool isPosition(Channel channel) { return channel < Channel::xRotation; }
constexpr bool isRotation(Channel channel) { return !isPosition(channel); }
constexpr int axisOf(Channel channel) { return static_cast<int>(channel) % 3; }  // 0 x, 1 y, 2 z

// The end of a limb: a point without motion. It is not a joint, even when a joint bears its name.
struct EndSite {
    std::string label = "Site";  // what follows the word End in the file
    Vec3 offset{};               // from the joint that holds it

    friend bool operator==(EndSite const&, EndSite const&) = default;
};

struct Joint {
    std::string name;               // as in the file: the rest of the line, trimmed; may be empty or repeated
    int parent = -1;                // index among the joints; -1 for a root, of which there may be several
    Vec3 offset{};                  // rest position relative to the parent
    std::vector<Channel> channels;  // in file order, which is the order the rotations apply in; no kind twice
    int column = 0;                 // where channels[0] stands in a frame
    std::vector<EndSite> endSites;  // none, one, rarely several

    bool hasEndSite() const { return !endSites.empty(); }
    friend bool operator==(Joint const&, Joint const&) = default;
};

struct Clip {
    std::vector<Joint> joints;
    int frames = 0;
    int channels = 0;           // values a frame: the sum over the joints
    double frameTime = 0;       // seconds from one frame to the next
    std::string frameTimeText;  // the same number as the file spells it; a writer falls back on frameTime if it differs
    std::vector<double> values;  // frames x channels, frame by frame

    double value(int frame, int column) const { return values[static_cast<std::size_t>(frame) * channels + column]; }
    friend bool operator==(Clip const&, Clip const&) = default;
};

// Why a clip could not be read or written. Line and column count from 1, the column in characters; 0 where the trouble
// is not at a place in a text.
struct Error {
    std::string message;
    int line = 0;
    int column = 0;

    // "line 12, column 3: ..." or the bare message.
    std::string text() const {
        if (line == 0) return message;
        return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message;
    }
};

}  // namespace bvh
