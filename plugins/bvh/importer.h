// Brings a motion clip into a scene: joints under the scene's origin, in the clip's hierarchy, each with its OFFSET as
// translation and each channel as a sampled curve. Lengths become metres, angles radians.
//
// A joint's Euler order is that of its channels, so that curves hold the very angles of the file. Names are made unique
// in the clip; what else export needs is kept in custom attributes (scene_notes.h). The scene's time range becomes the
// clip's, its frame rate the nearest whole one, unless they are to stay; keys stand at frame times frame time exactly.
//
// Position channels replace the OFFSET or are added to it, and lengths have a unit: neither is in the file, so both are
// judged (analysis.h) unless the caller knows.
#pragma once
#include "plugins/bvh/analysis.h"
#include "tavo/objects/scene.h"

#include <optional>

namespace bvh {

struct ImportOptions {
    Positions positions = Positions::automatic;
    std::optional<Unit> unit;  // none: guessed
    Angles angles = Angles::degrees;
    bool replace = false;       // what stands under the origin with the name of a root goes first, with all below it;
                                // so does a character whose root has that name
    bool resetTimeline = true;  // false: the scene's time, its range and the frame rate stay as they are
    bool characterize = false;  // each skeleton becomes a character, and stays where it is
};

struct ImportReport {
    Unit unit = Unit::centimetre;
    std::string unitReason;
    PositionsFinding positions;
    struct Renamed {
        std::string from;
        std::wstring to;
    };
    std::vector<Renamed> renamed;
    std::vector<int> joints;  // object ids, in the clip's order
};

// The clip's invariants hold (what read() gives). The caller provides the change block. False without a valid scene.
bool importClip(Clip const& clip, Tavo::XScene& scene, ImportOptions const& options = {},
                ImportReport* report = nullptr);

// The row-vector order (a RotationEulerOrder) in which the channels' rotations apply: the last listed turns first.
// Axes without a channel, whose angle stays 0, follow.
int eulerOrder(std::vector<Channel> const& channels);

// What the scene's frame rate becomes: the nearest whole one, at least 1.
int wholeFrameRate(Clip const& clip);

}  // namespace bvh
