// What a scene remembers of a clip beyond its motion, so that the clip can be written again as it was read: texts in
// custom attributes of the joints. A joint without them, made by hand or by another importer, is exported with
// defaults.
//
//     BvhName       the joint's name in the file, where the scene had to give it another
//     BvhChannels   its channels in file order: "Xposition Yposition Zposition Zrotation Xrotation Yrotation"
//     BvhOffset     its OFFSET: three numbers in the file's unit
//     BvhEndSites   an array, each "x y z label"
//     BvhFrameTime  of roots alone: the frame time as the file spells it
//     BvhUnit       of roots alone: the unit in which the file's lengths were taken, "cm"
//     BvhPositions  of roots alone: how position channels were taken, "replace" or "add"
#pragma once
#include "plugins/bvh/analysis.h"
#include "tavo/kinematics/joint.h"

#include <optional>

namespace bvh {

struct JointNotes {
    std::string name;  // empty: as in the scene
    std::vector<Channel> channels;
    Vec3 offset{};
    std::vector<EndSite> endSites;
};

struct ClipNotes {
    std::string frameTime;
    Unit unit = Unit::centimetre;
    Positions positions = Positions::replace;
};

// Both write into the open change block.
void keep(Tavo::XJoint& joint, JointNotes const& notes);
void keep(Tavo::XJoint& root, ClipNotes const& notes);

// None where the joint has no such attributes or they have been edited into something else.
std::optional<JointNotes> recallJoint(Tavo::XJoint const& joint);
std::optional<ClipNotes> recallClip(Tavo::XJoint const& root);

// What the file calls it in a scene: a name that a path can hold, never empty.
std::wstring sceneName(std::string const& fileName);

}  // namespace bvh
