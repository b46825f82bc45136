#include "hosts/tavo/figures.h"
#include "hosts/tavo/time_steps.h"
#include "plugins/bvh/exporter.h"
#include "plugins/bvh/scene_notes.h"
#include "tavo/objects/matrix.h"

#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

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

}  // namespace

Motion Motion::read(Input const& input) {
    Session session(input);
    if (session.clip()) {
        bvh::ImportReport const& report = session.clip()->report;
        return {session.clip()->clip, {report.positions.positions, report.unit}};
    }
    Motion motion;
    bvh::Error error;
    if (!bvh::exportClip(session.scene(), motion.clip, error))
        throw Failure{ExitCode::badInput, fmt::format("{}: {}", input.file, error.text())};
    Qelutils::Vector<XObject> joints;
    session.scene().RootObject().DescendantObjects(joints, XJoint::TypeID, SupportsObjectType);
    std::optional<bvh::ClipNotes> const notes = bvh::recallClip(XJoint(joints.front()));
    motion.options.unit = notes ? notes->unit : bvh::Unit::centimetre;
    motion.options.positions = notes ? notes->positions : bvh::Positions::replace;
    return motion;
}

Figure Figure::ofScene(XScene& scene) {
    Figure figure;
    Qelutils::Vector<XObject> joints;
    scene.RootObject().DescendantObjects(joints, XJoint::TypeID, SupportsObjectType);
    if (joints.empty()) throw wrongCall("the figure that is to move has no joints");
    for (XObject const& object : joints) {
        XJoint const joint(object);
        figure.joints.push_back(joint);
        if (joint.ParentJoint().IsValid()) continue;
        XTransform const above = joint.ParentTransform();
        if (figure.root.IsValid() && figure.root != above)
            throw wrongCall("the file holds several figures; one alone can take over a motion");
        figure.root = above;
    }
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
    figure.root = XTransform(scene.CreateObject(XTransform::TypeID, scene.RootObject()));
    for (std::size_t i = 0; i < report.joints.size(); ++i) {
        XJoint joint(scene.Object(report.joints[i]));
        if (motion.clip.joints[i].parent < 0) {
            joint.SetParent(figure.root);
            joint.SetName(bvh::sceneName(motion.clip.joints[i].name));
        }
        figure.joints.push_back(joint);
    }
    figure.takeRest();
    return figure;
}

void Figure::takeRest() {
    double const metres = metresOf(joints.front());
    for (XJoint const& joint : joints) origin.push_back(restOf(joint, metres));
}

void Figure::takeOrigin(XScene& scene, int frame) {
    double const step = bvh::frameTimeOf(scene).seconds;
    double const count = bvh::frameCountOf(scene, step);
    if (frame < 0 || double(frame) >= count)
        throw wrongCall(fmt::format("there is no frame {}: they are 0 to {}", frame, count - 1));
    TimeSteps steps(scene);
    steps.go(float(double(scene.SceneSettings().StartTime().Float()) + frame * step));
    for (std::size_t i = 0; i < joints.size(); ++i) origin[i] = joints[i].LocalMatrix().Matrix();
}

}  // namespace host
