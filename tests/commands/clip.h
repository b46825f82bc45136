// A motion clip such as cameras and suits record: a skeleton of many joints, a curve for each of its channels.
#pragma once
#include "plugins/bvh/importer.h"
#include "plugins/bvh/reader.h"
#include <cmath>
#include <string>

namespace Tavo {

// Limbs of twelve joints below a root; three rotations a joint, and the root's place.
class ClipText {
public:
    ClipText(int joints, int frames) : _joints(joints) {
        _text = "HIERARCHY\n";
        joint(0);
        _text += "MOTION\nFrames: " + std::to_string(frames) + "\nFrame Time: 0.0333333\n";
        for (int frame = 0; frame < frames; ++frame) numbers(frame);
    }
    std::string const& text() const { return _text; }

private:
    static constexpr int limb = 12;

    void joint(int i) {
        _text += (i == 0 ? "ROOT j" : "JOINT j") + std::to_string(i) + "\n{\nOFFSET 0 10 " + std::to_string(i % 3) +
                 "\nCHANNELS " + (i == 0 ? "6 Xposition Yposition Zposition" : "3") +
                 " Zrotation Xrotation Yrotation\n";
        bool isLeaf = true;
        for (int child = i + 1; child < _joints; ++child)
            if ((child % limb == 0 ? 0 : child - 1) == i) joint(child), isLeaf = false;
        _text += isLeaf ? "End Site\n{\nOFFSET 0 5 0\n}\n}\n" : "}\n";
    }
    void numbers(int frame) {
        for (int i = 0; i < 3 * _joints + 3; ++i)
            _text += std::to_string(20 * std::sin(0.1 * frame + i)) + (i == 3 * _joints + 2 ? "\n" : " ");
    }
    int _joints;
    std::string _text;
};

// One step; the skeleton's root joint.
inline XObject importClipInto(XScene& scene, int joints, int frames) {
    static std::wstring const label = L"Import";
    bvh::Clip clip;
    bvh::Error error;
    bvh::ImportReport report;
    if (!bvh::read(ClipText(joints, frames).text(), clip, error)) return {};
    XChangeBlock const block(scene, label);
    bvh::importClip(clip, scene, {}, &report);
    return report.joints.empty() ? XObject() : scene.Object(report.joints.front());
}

}  // namespace Tavo
