// retarget: two figures in one scene, the rig between them built by the same commands as anywhere, played frame by
// frame into keys, and taken away again.
#include "tavo/kinematics/retarget.h"
#include "hosts/tavo/baking.h"
#include "hosts/tavo/figures.h"
#include "hosts/tavo/joint_map.h"
#include "hosts/tavo/retarget_grade.h"
#include "hosts/tavo/rig_verbs.h"
#include "hosts/tavo/time_steps.h"
#include "plugins/bvh/scene_notes.h"
#include "tavo/interaction/selection.h"

#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;

void runCommand(Session& session, std::wstring const& name, Qelutils::Vector<XObject>& results) {
    std::vector<std::string> const errors = session.errorsOf([&] { session.scene().RunCommand(name, results); });
    if (!errors.empty()) throw Failure{ExitCode::failed, errors.front()};
}

XRetarget attach(Session& session, Figure const& source, Figure const& target) {
    XSelection selection = session.scene().Selection();
    selection.Clear();
    selection.Append(source.root);
    selection.Append(target.root);
    Qelutils::Vector<XObject> results;
    runCommand(session, L"RetargetAttach", results);
    XRetarget const rig(results.empty() ? XObject() : results.front());
    if (!rig.IsValid()) throw Failure{ExitCode::failed, "no rig could be built between the figures"};
    return rig;
}

void setOrigins(XScene& scene, Figure const& figure) {
    static std::wstring const label = L"Set origins";
    XChangeBlock const block(scene, label);
    for (std::size_t i = 0; i < figure.joints.size(); ++i)
        if (XJointRetargetParams const params(
                figure.joints[i].FindChildObject(XJointRetargetParams::TypeID, IsObjectType));
            params.IsValid())
            params.Parameters().Attribute(XJointRetargetParams::OriginPart).SetMatrix(figure.origin[i]);
}

void play(XScene& scene, Frames const& frames, Baking& baking, RetargetGrade& grade) {
    Progress progress("retargeting", frames.count);
    TimeSteps steps(scene);
    for (std::int64_t i = 0; i < frames.count; ++i) {
        steps.go(frames.time(i));
        baking.sample(frames.time(i));
        grade.sample();
        progress.advance(i + 1);
    }
}

// The source and all of the rig go; the motion stays as keys.
void finish(Session& session, Figure& source, Figure& target, Baking& baking, Motion const& motion) {
    static std::wstring const label = L"Bake";
    XScene& scene = session.scene();
    Qelutils::Vector<XObject> none;
    scene.Selection().Clear();
    scene.Selection().Append(source.root);
    runCommand(session, L"RetargetDetach", none);
    XChangeBlock const block(scene, label);
    scene.Selection().Clear();
    for (XJoint const& joint : target.joints)
        if (XObject params = joint.FindChildObject(XJointRetargetParams::TypeID, IsObjectType); params.IsValid())
            params.Delete();
    source.root.Delete();
    baking.write();
    bvh::ClipNotes notes = bvh::recallClip(target.joints.front()).value_or(bvh::ClipNotes());
    notes.frameTime = motion.clip.frameTimeText;
    bvh::keep(target.joints.front(), notes);
}

void checkNumbers(RetargetVerb const& verb) {
    if (verb.maxSlide && !(*verb.maxSlide >= 0)) throw wrongCall("--max-slide is a length of at least 0");
    if (verb.maxPenetration && !(*verb.maxPenetration >= 0))
        throw wrongCall("--max-penetration is a length of at least 0");
    if (verb.minConfidence && !(*verb.minConfidence >= 0 && *verb.minConfidence <= 1))
        throw wrongCall("--min-confidence is a number from 0 to 1");
}

}  // namespace

void run(RetargetVerb const& verb) {
    checkNumbers(verb);
    std::vector<JointMapLine> const map = verb.map.empty() ? std::vector<JointMapLine>() : readMap(verb.map);
    Motion const motion = Motion::read(verb.input);
    Input figureFile = verb.input;
    figureFile.file = verb.to;
    Session session(figureFile);
    XScene& scene = session.scene();
    Figure target = Figure::ofScene(scene);
    if (verb.toFrame) target.takeOrigin(scene, Frames::of(scene), *verb.toFrame);
    Figure source = Figure::of(motion, scene);
    if (verb.originFrame) source.takeOrigin(scene, motion.frames(), *verb.originFrame);
    Baking baking(target.joints);  // before the rig takes the orders of angles over
    XRetarget const rig = attach(session, source, target);
    if (verb.noLimits) rig.DisableAllLimits().SetBoolean(true);
    setOrigins(scene, source);
    setOrigins(scene, target);
    applyMap(rig, map);
    RetargetGrade grade(rig);
    play(scene, motion.frames(), baking, grade);
    grade.finish(motion.clip.frameTime);
    checkGates(verb, grade.report());
    finish(session, source, target, baking, motion);
    session.save(verb.output);
    if (!verb.writeMap.empty()) writeResult(grade.mapText(), verb.writeMap);
    if (verb.json) return writeResult(grade.json(verb));
    writeResult(fmt::format("{}wrote {}\n", verb.report ? grade.text() : "", verb.output));
}

}  // namespace host
