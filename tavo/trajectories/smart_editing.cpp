// Repairing the timing of a motion when its path changes.
#include "tavo/animation/timing_edits.h"
#include "tavo/app/application.h"
#include "tavo/trajectories/timing_curve.h"
#include "tavo/trajectories/trajectory_edit.h"

namespace Tavo {
namespace {

std::wstring const label = L"Repair Timing";
constexpr float shortestDistance = 0.0001F;  // metres: between timing keys that are nearer the time stays

constexpr wchar_t const* notConnected =
    L"Smart editing impossible as the trajectory is not connected to a timing curve.";
constexpr wchar_t const* curveNotSampled = L"Smart editing is only available on sampled timing curves.";
constexpr wchar_t const* pathNotSampled = L"Smart editing is only available on sampled trajectories.";

enum Mode { RetainFeelMode = 0, RetainConstraintsMode = 1, NotUsedMode = 2 };

using Node = sg::TrajectoryNode;

// The node is asked and not its handle: this comes twice with each event of a drag.
Node& nodeOf(XTrajectory const& trajectory) { return *static_cast<Node*>(trajectory.getNode()); }
int modeOf(Node const& node) { return node.at<db::EnumAttribute>(Node::SmartEditing).getValue(); }

// Why the timing cannot be repaired, or null.
wchar_t const* obstacle(XTrajectory const& trajectory) {
    Node const& node = nodeOf(trajectory);
    if (!node.graph().getInputAttribute(&node.at<db::Attribute>(Node::InputValue))) return notConnected;
    if (!XTimingCurve(trajectory).isSampled()) return curveNotSampled;
    return node.at<db::BoolAttribute>(Node::IsTranslationCurveSampled).getValue() ? nullptr : pathNotSampled;
}

bool isWanted(XTrajectory const& trajectory) {
    return trajectory.IsValid() && trajectory.IsEditable() && modeOf(nodeOf(trajectory)) != NotUsedMode;
}

// Fractions are floats, as the curve will hold them: a speed is kept between what is stored.
Qelutils::Vector<double> fractionsOf(sg::PathGeometry const& path, Qelutils::Vector<float> const& parameters) {
    Qelutils::Vector<double> out;
    path.fractionsAt(parameters, out);
    for (double& fraction : out) fraction = double(float(fraction));
    return out;
}

}  // namespace

bool XTrajectory::smartEditInit(float& length, Floats& parameters) const {
    if (!isWanted(*this)) return false;
    if (wchar_t const* const why = obstacle(*this)) {
        XApplication::Instance().LogWarning(why);
        return false;
    }
    length = pathNode()->at<db::FloatAttribute>(Node::MaxArcLength).getValue();
    pathNode()->getPath().parametersAt(XTimingCurve(*this).outputs(), parameters);
    return true;
}

bool XTrajectory::smartEditCore(float oldLength, Floats const& parameters) {
    if (!isWanted(*this) || obstacle(*this)) return false;
    XTrajectoryEdit const edit(*this, label);
    int const mode = modeOf(*pathNode());
    if (mode == RetainFeelMode) smartEditCore_retainFeel_noCheck(oldLength, parameters, shortestDistance);
    if (mode == RetainConstraintsMode) smartEditCore_retainConstraints_noCheck(oldLength, parameters, shortestDistance);
    return true;
}

void XTrajectory::smartEditCore_retainFeel_noCheck(float oldLength, Floats const& parameters, float eps) {
    sg::PathGeometry const& path = pathNode()->getPath();
    XTimingCurve const curve(*this);
    XTimingKeys keys = curve.keys();
    if (RetainFeel(fractionsOf(path, parameters), curve.order(), double(oldLength), double(float(path.length())),
                   double(eps), keys))
        curve.write(keys);
}

void XTrajectory::smartEditCore_retainConstraints_noCheck(float, Floats const& parameters, float) {
    XTimingCurve const curve(*this);
    XTimingKeys keys = curve.keys();
    if (RetainConstraints(fractionsOf(pathNode()->getPath(), parameters), keys)) curve.write(keys);
}

}  // namespace Tavo
