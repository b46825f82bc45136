#include "hosts/tavo/figures.h"
#include "hosts/tavo/time_steps.h"
#include "plugins/bvh/exporter.h"
#include "plugins/bvh/scene_notes.h"
#include "qel/utils/text.h"
#include "tavo/objects/matrix.h"

#include <algorithm>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

// As it was imported, without rotation; a joint of another making stands as it does now.
XMatrix restOf(XJoint const& joint, double metres) {
    XMatrix rest = joint.LocalMatrix().Matrix();
    std::optional<bvh::JointNotes> const notes = bvh::recallJoint(joint);
    if (!notes) return rest;
    auto const& [x, y, z] = notes->offset;
    return XMatrix().SetTranslation(XVector3(float(x * metres), float(y * metres), float(z * metres)));
}

double metresOf(XJoint const& root) {
    std::optional<bvh::ClipNotes> const notes = bvh::recallClip(root);
    return bvh::metresPer(notes ? notes->unit : bvh::Unit::metre);
}

Qelutils::Vector<XObject> jointsOf(XScene& scene) {
    Qelutils::Vector<XObject> joints;
    scene.RootObject().DescendantObjects(joints, XJoint::TypeID, SupportsObjectType);
    return joints;
}

Motion ofScene(XScene& scene, std::string const& file) {
    Motion motion;
    bvh::Error error;
    if (!bvh::exportClip(scene, motion.clip, error))
        throw Failure{ExitCode::badInput, fmt::format("{}: {}", file, error.text())};
    bvh::ClipNotes const notes = bvh::recallClip(XJoint(jointsOf(scene).front())).value_or(bvh::ClipNotes());
    motion.options.unit = notes.unit;
    motion.options.positions = notes.positions;
    return motion;
}

}  // namespace

Frames Frames::of(XScene const& scene) {
    double const step = bvh::frameTimeOf(scene).seconds;
    return {double(scene.SceneSettings().StartTime().Float()), step, std::int64_t(bvh::frameCountOf(scene, step))};
}

Motion Motion::read(Input const& input) {
    Session session(input);
    Motion motion;
    if (session.clip()) {
        bvh::ImportReport const& report = session.clip()->report;
        motion = {session.clip()->clip, {report.positions.positions, report.unit}};
    } else {
        motion = ofScene(session.scene(), input.file);
    }
    auto const isTopmost = [](bvh::Joint const& joint) { return joint.parent < 0; };
    if (std::count_if(motion.clip.joints.begin(), motion.clip.joints.end(), isTopmost) > 1)
        throw wrongCall(fmt::format("{} holds several figures; the motion of one alone can be taken over", input.file));
    return motion;
}

Figure Figure::ofScene(XScene& scene) {
    Figure figure;
    for (XObject const& object : jointsOf(scene)) {
        XJoint const& joint = figure.joints.emplace_back(object);
        if (joint.ParentJoint().IsValid()) continue;
        if (figure.root.IsValid())
            throw wrongCall(fmt::format("there are several figures, {} and {} among them; one alone can take over a "
                                        "motion",
                                        toUtf8(figure.joints.front().Path()), toUtf8(joint.Path())));
        figure.root = joint.ParentTransform();
    }
    if (figure.joints.empty()) throw wrongCall("the figure that is to move has no joints");
    figure.takeRest();
    return figure;
}

Figure Figure::of(Motion const& motion, XScene& scene) {
    static std::wstring const label = L"Import";
    Figure figure;
    XChangeBlock const block(scene, label);
    bvh::ImportReport report;
    if (!bvh::importClip(motion.clip, scene, motion.options, &report))
        throw Failure{ExitCode::failed, "the motion could not be brought into the scene"};
    for (int const id : report.joints) figure.joints.emplace_back(scene.Object(id));
    figure.root = XTransform(scene.CreateObject(XTransform::TypeID, scene.RootObject()));
    XJoint& topmost = figure.joints.front();
    topmost.SetParent(figure.root);
    topmost.SetName(bvh::sceneName(motion.clip.joints.front().name));  // beside the other figure it had to differ
    figure.takeRest();
    return figure;
}

void Figure::takeRest() {
    double const metres = metresOf(joints.front());
    for (XJoint const& joint : joints) origin.push_back(restOf(joint, metres));
}

void Figure::takeOrigin(XScene& scene, Frames const& frames, int frame) {
    if (frame < 0 || frame >= frames.count)
        throw wrongCall(fmt::format("there is no frame {}: they are 0 to {}", frame, frames.count - 1));
    TimeSteps steps(scene);
    steps.go(frames.time(frame));
    for (std::size_t i = 0; i < joints.size(); ++i) origin[i] = joints[i].LocalMatrix().Matrix();
}

}  // namespace host
