// ik: builds a rig of inverse kinematics on a figure, moves its handles, and tells how near the effectors come.
#include "hosts/tavo/find.h"
#include "hosts/tavo/json.h"
#include "hosts/tavo/rig_verbs.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/targets.h"
#include "qel/utils/text.h"
#include "tavo/interaction/selection.h"
#include "tavo/kinematics/ik_handle.h"
#include "tavo/kinematics/ik_solver.h"
#include "tavo/kinematics/joint.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numbers>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

constexpr double degrees = 180 / std::numbers::pi;

// An effector, the handle that draws it, and where that is to be.
struct Goal {
    XTransform effector;
    IkTarget target;
    XIKHandle handle;
};

XTransform findTransform(XScene& scene, std::string const& pattern) {
    std::vector<XObject> found = findObjects(scene, pattern);
    std::erase_if(found, [](XObject const& object) { return !XTransform(object).IsValid(); });
    if (found.empty()) throw wrongCall(fmt::format("nothing that matches \"{}\" has a place in space", pattern));
    if (found.size() > 1)
        throw wrongCall(fmt::format("\"{}\" matches {} objects: {} and {} among them", pattern, found.size(),
                                    toUtf8(found[0].Path()), toUtf8(found[1].Path())));
    return XTransform(found.front());
}

std::vector<Goal> goalsOf(XScene& scene, IkVerb const& verb, XTransform const& root) {
    std::vector<Goal> goals;
    auto const add = [&](std::string const& pattern, IkTarget target) {
        XTransform const effector = findTransform(scene, pattern);
        if (effector != root && !root.IsParentOf(effector))
            throw wrongCall(fmt::format("{} is not below {}", toUtf8(effector.Path()), toUtf8(root.Path())));
        for (Goal const& goal : goals)
            if (goal.effector == effector) throw wrongCall(fmt::format("{} is given twice", toUtf8(effector.Path())));
        goals.push_back({effector, target, {}});
    };
    for (std::string const& text : verb.effectors) {
        auto const [pattern, target] = parseTarget(text);
        add(pattern, target);
    }
    for (std::string const& pattern : verb.pins) {
        XTransform const pinned = findTransform(scene, pattern);
        add(pattern, {pinned.WorldTranslation(), pinned.WorldRotation()});
    }
    if (goals.size() == 1 && goals.front().effector == root)
        throw wrongCall(fmt::format("{} is the root; which effector below it?", toUtf8(root.Path())));
    return goals;
}

// A limb stays on its body: its root only turns. That of a whole figure moves too.
XIKSolver buildRig(Session& session, XTransform const& root, std::vector<Goal>& goals) {
    XScene& scene = session.scene();
    XSelection selection = scene.Selection();
    selection.Clear();
    selection.Append(root);
    for (Goal const& goal : goals) selection.Append(goal.effector);
    Qelutils::Vector<XObject> results;
    std::vector<std::string> const errors = session.errorsOf([&] { scene.RunCommand(L"CreateIKRig", results); });
    XIKSolver const solver(results.empty() ? XObject() : results.front());
    if (!errors.empty() || !solver.IsValid())
        throw Failure{ExitCode::failed, errors.empty() ? "no rig could be built" : errors.front()};
    XAttribute const effectors = solver.EndEffectorTransforms(), handles = solver.IKHandleReferences();
    solver.RootLocked().SetBoolean(XJoint(root).IsValid() && XJoint(root).ParentJoint().IsValid());
    for (int i = 0; i < effectors.ArraySize(); ++i)
        for (Goal& goal : goals)
            if (effectors.ObjectRef(i) == goal.effector) goal.handle = XIKHandle(handles.ObjectRef(i));
    return solver;
}

// A handle whose turn is not given leaves the effector free to turn.
void moveHandles(XScene& scene, std::vector<Goal>& goals) {
    static std::wstring const label = L"Move handles";
    XChangeBlock const block(scene, label);
    for (Goal& goal : goals) {
        goal.handle.SetWorldTranslation(goal.target.position);
        if (goal.target.rotation) goal.handle.SetWorldRotationQuaternion(*goal.target.rotation);
        goal.handle.SolverParameters().Attribute(0).SetEnumeration(
            goal.target.rotation ? XIKHandle::PositionAndOrientation : XIKHandle::Position);
    }
}

// Between two turns, in degrees; exact also where it is small.
double angleBetween(XQuaternion const& a, XQuaternion const& b) {
    double const p[] = {double(a.X()), double(a.Y()), double(a.Z()), double(a.W())},
                 q[] = {double(b.X()), double(b.Y()), double(b.Z()), double(b.W())};
    double apart = 0, together = 0;
    for (int i = 0; i < 4; ++i) {
        apart += (p[i] - q[i]) * (p[i] - q[i]);
        together += (p[i] + q[i]) * (p[i] + q[i]);
    }
    double const halves[] = {std::sqrt(apart), std::sqrt(together)};
    return 4 * std::atan2(std::min(halves[0], halves[1]), std::max(halves[0], halves[1])) * degrees;
}

struct Error {
    double millimetres = 0;
    std::optional<double> degrees;
};

Error errorOf(Goal const& goal) {
    Error error;
    error.millimetres = 1000 * double(goal.effector.WorldTranslation().DistanceTo(goal.target.position));
    if (!goal.target.rotation) return error;
    error.degrees = angleBetween(goal.effector.WorldRotation(), *goal.target.rotation);
    return error;
}

std::string reportText(std::vector<Goal> const& goals, std::string const& wrote) {
    std::string text;
    for (Goal const& goal : goals) {
        Error const error = errorOf(goal);
        text += fmt::format("{}  {:.2f} mm", toUtf8(goal.effector.Path()), error.millimetres);
        text += error.degrees ? fmt::format("  {:.2f}°\n", *error.degrees) : "\n";
    }
    return wrote.empty() ? text : text + fmt::format("wrote {}\n", wrote);
}

std::string reportJson(IkVerb const& verb, XTransform const& root, std::vector<Goal> const& goals,
                       std::string const& wrote) {
    Json json;
    json.open('{').member("file", verb.input.file).member("root", root.Path()).key("effectors").open('[');
    for (Goal const& goal : goals) {
        Error const error = errorOf(goal);
        json.open('{').member("path", goal.effector.Path()).member("millimetres", error.millimetres);
        if (error.degrees) json.member("degrees", *error.degrees);
        json.close('}');
    }
    json.close(']').key("wrote").open('[');
    if (!wrote.empty()) json.value(wrote);
    return json.close(']').close('}').take();
}

// What the gate says, empty if nothing.
std::string missed(IkVerb const& verb, std::vector<Goal> const& goals) {
    for (Goal const& goal : goals)
        if (double const error = errorOf(goal).millimetres; verb.maxError && !(error <= *verb.maxError))
            return fmt::format("{} is {:.2f} mm from its target, more than {} mm; nothing is written",
                               toUtf8(goal.effector.Path()), error, *verb.maxError);
    return {};
}

void check(IkVerb const& verb) {
    if (verb.effectors.empty() && verb.pins.empty()) throw wrongCall("which effector? --effector PATH=x,y,z");
    if (verb.at && !std::isfinite(float(*verb.at))) throw wrongCall("--at is a time, in seconds");
    if (verb.maxError && !(*verb.maxError >= 0)) throw wrongCall("--max-error is a length of at least 0");
}

}  // namespace

// The report is told also when the pose is not good enough; then it says how far it got.
void run(IkVerb const& verb) {
    check(verb);
    Session session(verb.input);
    XScene& scene = session.scene();
    if (verb.at) session.settings().Time().SetFloat(float(*verb.at));
    XTransform const root = findTransform(scene, verb.root);
    std::vector<Goal> goals = goalsOf(scene, verb, root);
    XIKSolver const solver = buildRig(session, root, goals);
    if (verb.noLimits) solver.DisableAllLimits().SetBoolean(true);
    moveHandles(scene, goals);
    std::string const failure = missed(verb, goals), wrote = failure.empty() ? verb.output : "";
    if (!wrote.empty()) session.save(wrote);
    writeResult(verb.json ? reportJson(verb, root, goals, wrote) : reportText(goals, wrote));
    if (!failure.empty()) throw Failure{ExitCode::missed, failure};
}

}  // namespace host
