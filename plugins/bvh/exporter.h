// Makes a motion clip of a scene's joints, sampled over the scene's time range.
//
// Joints that an import made give the clip back: names, channels, OFFSETs, End Sites, unit and frame time as they were,
// values to the precision of a float, and changes made since. Other joints get what is usual: their Euler order as
// channels, positions for roots and for joints that move against their parent, an End Site at leaves, centimetres, the
// scene's frame rate. A joint whose local place is more than a translation and Euler angles (pre or post rotations,
// parents that are no joints, another data source) is written as its place relative to the joint above. Scale has no
// place in the format.
//
// Where a channel is more than a curve with a key at each frame, the scene's time is moved to each frame and back, in a
// transient change block; inside a recorded one that makes a step, which changes nothing.
#pragma once
#include "plugins/bvh/analysis.h"
#include "tavo/objects/scene.h"

#include <optional>

namespace bvh {

inline constexpr double mostExportedValues = 2e8;  // frames times channels: a time range by mistake, not a clip

struct ExportOptions {
    std::optional<Unit> unit;  // none: the one it was imported with, or centimetres
    Angles angles = Angles::degrees;
    // Only what is selected and all below it. A joint whose parent is left out becomes a root where it stands in the
    // world.
    bool selectedOnly = false;
};

struct FrameTime {
    double seconds = 0;
    std::string text;  // as the file spells it
};
// From one frame to the next: the imported clip's own, as long as the scene's frame rate goes with it, otherwise one by
// the frame rate.
FrameTime frameTimeOf(Tavo::XScene const& scene);

// How many frames the scene's time range holds, both ends included.
double frameCountOf(Tavo::XScene const& scene, double frameTime);

// On failure (no joints, nothing selected, no end of frames, a clip that cannot be written) `clip` stays as it was.
bool exportClip(Tavo::XScene& scene, Clip& clip, Error& error, ExportOptions const& options = {});

}  // namespace bvh
