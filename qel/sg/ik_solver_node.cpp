#include "qel/sg/ik_solver_node.h"
#include "qel/sg/scene.h"
#include <algorithm>
#include <utility>

namespace sg {
namespace {

// What is up to date already: raw values, without asking the graph again.
db::Attribute const& child(db::Attribute const& compound, int i) {
    return *compound.asComposite()->getAttribute(std::size_t(i));
}
bool boolean(db::Attribute const& compound, int i) { return child(compound, i).asBool()->raw(); }
double real(db::Attribute const& compound, int i) { return double(child(compound, i).asFloat()->raw()); }
Qelp::Matrix34 const& matrix(db::Attribute const& compound, int i) { return child(compound, i).asMatrix34()->raw(); }

std::vector<Qelp::Matrix34> readMatrices(db::AttributeArray const& array) {
    std::vector<Qelp::Matrix34> matrices;
    for (std::size_t i = 0; i < array.size(); ++i) matrices.push_back(array.getElement(i)->asMatrix34()->raw());
    return matrices;
}

IKHandle readHandle(db::Attribute const& parameters) {
    IKHandle h;
    h.mode = child(parameters, IKSolverNode::Mode).asEnum()->raw();
    h.positionWeight = real(parameters, IKSolverNode::PositionWeight);
    h.orientationWeight = real(parameters, IKSolverNode::OrientationWeight);
    h.secondaryWeight = real(parameters, IKSolverNode::SecondaryWeight);
    h.isPinned = !boolean(parameters, IKSolverNode::Free);
    return h;
}

JointLimit readLimit(db::Attribute const& p) {
    JointLimit limit;
    limit.type = child(p, IKSolverNode::LimitType).asEnum()->raw();
    limit.fixedFrame = rotationOfFrame(matrix(p, IKSolverNode::LimitMatrix));
    limit.movingOffset = rotationOfFrame(matrix(p, IKSolverNode::MovingOffsetMatrix));
    limit.swing1Active = boolean(p, IKSolverNode::Swing1Active);
    limit.swing1Angle = real(p, IKSolverNode::Swing1Angle);
    limit.swing2Active = boolean(p, IKSolverNode::Swing2Active);
    limit.swing2Angle = real(p, IKSolverNode::Swing2Angle);
    limit.twistActive = boolean(p, IKSolverNode::TwistActive);
    limit.twistAngle = real(p, IKSolverNode::TwistAngle);
    limit.twistOffset = real(p, IKSolverNode::TwistOffset);
    return limit;
}

// A rig says of a joint without a limit that nothing is active and the type 0; a hinge limits whatever is active.
bool hasLimit(JointLimit const& l) { return l.type == HingeLimit || l.swing1Active || l.swing2Active || l.twistActive; }

IKJoint readJoint(db::Attribute const& p) {
    IKJoint j;
    j.isJoint = boolean(p, IKSolverNode::IsJoint);
    j.stiffness = real(p, IKSolverNode::Stiffness);
    for (int k = 0; k < 3; ++k) j.readiness[k] = real(p, IKSolverNode::RotationWeightX + k);
    j.limit = readLimit(p);
    j.isLimited = boolean(p, IKSolverNode::LimitActive) && hasLimit(j.limit);
    j.hasPoles = boolean(p, IKSolverNode::PoleVectorActive);
    j.controlPole = matrix(p, IKSolverNode::ControlPole);
    j.referencePole = matrix(p, IKSolverNode::ReferencePole);
    return j;
}

}  // namespace

bool IKSolverNode::flag(int row) const { return at<db::BoolAttribute>(row).raw(); }
float IKSolverNode::real(int row) const { return at<db::FloatAttribute>(row).raw(); }

std::vector<int> const& IKSolverNode::integers(int row) const {
    return std::as_const(at<db::IntArrayAttribute>(row)).raw();
}

void IKSolverNode::readGeometry() {
    geometry_ = readMatrices(at<db::AttributeArray>(InputGeometry));
    solver_.geometry = geometry_;
    solver_.hierarchy = integers(JointHierarchy);
    solver_.roots = integers(RootIndexList);
}

void IKSolverNode::readHandles() {
    db::AttributeArray const &targets = at<db::AttributeArray>(InputTargets),
                             &params = at<db::AttributeArray>(IKHandleParams);
    std::vector<int> const& effectors = integers(EndEffectorIndexList);
    handles_.clear();
    for (std::size_t i = 0; i < targets.size() && i < effectors.size(); ++i) {
        handles_.push_back(i < params.size() ? readHandle(*params.getElement(i)) : IKHandle());
        handles_.back().joint = effectors[i];
        handles_.back().target = targets.getElement(i)->asMatrix34()->raw();
    }
    solver_.handles = handles_;
}

void IKSolverNode::readJoints() {
    db::AttributeArray const& params = at<db::AttributeArray>(JointIKParams);
    joints_.clear();
    for (std::size_t i = 0; i < params.size(); ++i) joints_.push_back(readJoint(*params.getElement(i)));
    solver_.joints = joints_;
}

void IKSolverNode::readBindPoses() {
    db::AttributeArray const& poses = at<db::AttributeArray>(BindPoses);
    bindPoses_.clear();
    for (std::size_t i = 0; i < poses.size(); ++i)
        bindPoses_.push_back(std::as_const(*poses.getElement(i)).asMatrix34Array()->raw());
    solver_.bindPoses = bindPoses_;
}

void IKSolverNode::readSettings() {
    solver_.rootLocked = flag(RootLocked);
    for (int k = 0; k < 3; ++k) solver_.lockRoot[k] = flag(LockRootX + k);
    solver_.disableAllLimits = flag(DisableAllLimits);
    solver_.maxIterations = std::max(0, at<db::IntAttribute>(MaxIterations).raw());
    solver_.positionAccuracy = double(real(PositionAccuracy));
    solver_.orientationAccuracy = double(real(OrientationAccuracy));
    solver_.moreBias = double(real(MoreBias));
    solver_.reverseBias = double(real(ReverseBias));
}

void IKSolverNode::write(std::vector<Qelp::Matrix34> const& matrices) {
    db::AttributeArray const& out = at<db::AttributeArray>(OutputGeometry);
    for (std::size_t i = 0; i < out.size() && i < matrices.size(); ++i)
        out.getElement(i)->asMatrix34()->raw() = matrices[i];
}

void IKSolverNode::compute(std::uint64_t) {
    if (!flag(AllowCompute)) return;
    readGeometry();
    problem_.clear();
    if (!flag(IKSolverEnabled) || !flag(IKHandleEnabled)) return write(geometry_);
    readHandles();
    readJoints();
    readBindPoses();
    readSettings();
    bool const goesOn = flag(ContinuousMode) && hasPrevious_;
    if (!goesOn) previous_.clear();
    solver_.previous = previous_;
    problem_ = solver_.Validate();
    solver_.Run();
    write(solver_.result);
    previous_ = solver_.result;
    hasPrevious_ = problem_.empty();
}

void IKSolverNode::Initialise() {
    hasPrevious_ = false;
    problem_.clear();
    valueChanged(at<db::Attribute>(InputGeometry));
}

}  // namespace sg
