#include "plugins/bvh/importer.h"

#include "plugins/bvh/scene_notes.h"
#include "plugins/bvh/units.h"
#include "tavo/animation/animation.h"
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/kinematics_character.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

namespace bvh {
namespace {

using namespace Tavo;
using Floats = Qelutils::Vector<float>;

// Names that no other joint of the clip has. A number is appended to the later ones.
class UniqueNames {
public:
    std::wstring take(std::wstring const& wanted) {
        if (taken_.insert(wanted).second) return wanted;
        for (int& number = last_[wanted];;) {
            std::wstring name = wanted + std::to_wstring(++number);
            if (taken_.insert(name).second) return name;
        }
    }

private:
    std::unordered_set<std::wstring> taken_;
    std::unordered_map<std::wstring, int> last_;
};

class Importer {
public:
    Importer(Clip const& clip, XScene& scene, ClipNotes const& notes, Angles angles, ImportReport& report) :
        clip_(clip), scene_(scene), notes_(notes), report_(report), unit_(metresPer(notes.unit)),
        angle_(radiansPer(angles)) {
        auto const count = static_cast<std::size_t>(clip.frames);
        inputs_.resize(count);
        for (int k = 0; k < clip.frames; ++k) inputs_[static_cast<std::size_t>(k)] = float(k * clip.frameTime);
        outputs_.resize(count);
        tangents_.resize(count, 0.0f);
        interpolations_.resize(count, LinearInterpolation);
        continuities_.resize(count, CoupledContinuity);
        UniqueNames names;
        for (Joint const& joint : clip.joints) names_.push_back(names.take(sceneName(joint.name)));
    }

    void deleteNamesakes() {
        XObject const origin = scene_.RootObject();
        for (std::size_t i = 0; i < clip_.joints.size(); ++i)
            if (clip_.joints[i].parent < 0) deleteNamesakes(origin, names_[i]);
    }
    void characterize() {
        for (std::size_t i = 0; i < clip_.joints.size(); ++i)
            if (clip_.joints[i].parent < 0) joints_[i].Characterize();
    }
    void createJoints() {
        joints_.reserve(clip_.joints.size());
        for (Joint const& joint : clip_.joints) createJoint(joint);
    }
    void setTimeRange() {
        XSceneSettings settings = scene_.SceneSettings();
        float const end = inputs_.empty() ? 0 : inputs_.back();
        for (XAttribute first : {settings.StartTime(), settings.PlaybackStartTime(), settings.Time()})
            first.SetFloat(0);
        for (XAttribute last : {settings.EndTime(), settings.PlaybackEndTime()}) last.SetFloat(end);
        settings.FrameRate().SetInteger(wholeFrameRate(clip_));
    }

private:
    static void deleteNamesakes(XObject const& origin, std::wstring const& name) {
        if (XObject old = origin.Child(name); old.IsValid()) old.Delete();
        Qelutils::Vector<XObject> characters;
        origin.ChildObjects(characters, XCharacter::TypeID);
        for (XObject& character : characters)
            if (XCharacter(character).KinematicsCharacter().CharacterRoot().Name() == name) character.Delete();
    }
    void createJoint(Joint const& joint) {
        XObject const parent = joint.parent < 0 ? XObject(scene_.RootObject()) : joints_[std::size_t(joint.parent)];
        XJoint made(scene_.CreateObject(XJoint::TypeID, parent));
        joints_.push_back(made);
        report_.joints.push_back(made.ObjectID());
        setName(made, joint);
        if (joint.parent < 0) keep(made, notes_);
        place(made, joint);
        for (std::size_t i = 0; i < joint.channels.size(); ++i)
            createCurve(made, joint, joint.channels[i], joint.column + int(i));
    }
    void setName(XJoint& made, Joint const& joint) {
        made.SetName(names_[joints_.size() - 1]);
        std::wstring const name = made.Name();
        bool const renamed = name != Qelutils::fromUtf8(joint.name);
        if (renamed) report_.renamed.push_back({joint.name, name});
        keep(made, {renamed ? joint.name : "", joint.channels, joint.offset, joint.endSites});
    }
    void place(XJoint& made, Joint const& joint) {
        made.RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation);
        made.RotationEulerOrder().SetEnumeration(eulerOrder(joint.channels));
        for (int axis = 0; axis < 3; ++axis)
            translation(made, axis).SetFloat(toMetres(joint.offset[std::size_t(axis)], unit_));
    }
    void createCurve(XJoint& made, Joint const& joint, Channel channel, int column) {
        int const axis = axisOf(channel);
        if (isRotation(channel)) {
            for (int k = 0; k < clip_.frames; ++k) outputs_[std::size_t(k)] = toRadians(clip_.value(k, column), angle_);
        } else {
            double const rest = notes_.positions == Positions::add ? joint.offset[std::size_t(axis)] : 0;
            for (int k = 0; k < clip_.frames; ++k)
                outputs_[std::size_t(k)] = toMetres(rest + clip_.value(k, column), unit_);
        }
        writeCurve(isRotation(channel) ? rotation(made, axis) : translation(made, axis));
    }
    void writeCurve(XAttribute attribute) {
        XAnimation curve = attribute.CreateAnimation();
        curve.IsCurveSampled().SetBoolean(true);
        curve.KeyframeInputValues().SetFloat(inputs_);
        curve.KeyframeOutputValues().SetFloat(outputs_);
        for (XAttribute tangent : {curve.KeyframeInTangentsX(), curve.KeyframeInTangentsY(),
                                   curve.KeyframeOutTangentsX(), curve.KeyframeOutTangentsY()})
            tangent.SetFloat(tangents_);
        curve.KeyframeInterpolations().SetEnumeration(interpolations_);
        curve.KeyframeContinuities().SetEnumeration(continuities_);
    }

    Clip const& clip_;
    XScene& scene_;
    ClipNotes const& notes_;
    ImportReport& report_;
    double unit_, angle_;
    std::vector<XJoint> joints_;
    std::vector<std::wstring> names_;  // of each joint of the clip
    Floats inputs_, outputs_, tangents_;
    Qelutils::Vector<int> interpolations_, continuities_;
};

}  // namespace

int eulerOrder(std::vector<Channel> const& channels) {
    std::vector<int> axes;
    for (auto channel = channels.rbegin(); channel != channels.rend(); ++channel)
        if (isRotation(*channel)) axes.push_back(axisOf(*channel));
    for (int axis = 0; axis < 3; ++axis)
        if (std::find(axes.begin(), axes.end(), axis) == axes.end()) axes.push_back(axis);
    return axes[0] * 2 + (axes[1] > axes[2]);  // the place in XYZ, XZY, YXZ, YZX, ZXY, ZYX
}

int wholeFrameRate(Clip const& clip) { return std::max(1, int(std::lround(std::min(frameRate(clip), 1e6)))); }

bool importClip(Clip const& clip, XScene& scene, ImportOptions const& options, ImportReport* report) {
    if (!scene.IsValid()) return false;
    ImportReport own;
    ImportReport& found = report ? *report : own;
    found = {};
    found.positions = findPositions(clip, options.positions);
    if (options.unit) {
        found.unit = *options.unit;
        found.unitReason = "As told.";
    } else {
        UnitGuess guess = guessUnit(clip);
        found.unit = guess.unit;
        found.unitReason = std::move(guess.reason);
    }
    ClipNotes const notes{clip.frameTimeText.empty() ? Qelutils::number(clip.frameTime) : clip.frameTimeText,
                          found.unit, found.positions.positions};
    Importer importer(clip, scene, notes, options.angles, found);
    if (options.replace) importer.deleteNamesakes();
    importer.createJoints();
    if (options.characterize) importer.characterize();
    if (options.resetTimeline) importer.setTimeRange();
    return true;
}

}  // namespace bvh
