#include "tavo/trajectories/trajectory.h"
#include "qel/sg/trajectory_node.h"

namespace Tavo {
namespace {

// The four floats of the compound; an invalid handle when it is none.
XAttribute rotationIn(XAttribute const& key, int sub) {
    if (!key.IsCompositeAttribute() || sub < 0 || sub >= key.AttributeCount()) return {};
    XAttribute const compound = key.Attribute(sub);
    bool const fits = compound.IsCompositeAttribute() && compound.AttributeCount() == 4;
    return fits && compound.Attribute(0).IsFloat() ? compound : XAttribute();
}

}  // namespace

void XTrajectory::onInitialize() {
    XTyped::onInitialize();
    initializeAs(DefaultName, DefaultColour);
    for (XAttribute shown : {ShowCurrentFrame(), ShowRotationCurves(), ShowTiming()}) shown.SetBoolean(false);
}

// ---- geometry ----

int XTrajectory::ParameterIndex(float parameter) const {
    bool const isNumber = parameter > -2147483648.F && parameter < 2147483648.F;
    sg::TrajectoryNode* const node = pathNode();
    return node && isNumber ? node->isTranslationKeyframe(int(parameter)) : -1;
}

bool XTrajectory::GetInputTangentControlPoint(int parameter, XVector3& point) const {
    Qelp::Vector3 found;
    sg::TrajectoryNode* const node = pathNode();
    if (!node || !node->getTranslationInputTangentControlPoint(parameter, found)) return false;
    point.Set(found);
    return true;
}

bool XTrajectory::GetOutputTangentControlPoint(int parameter, XVector3& point) const {
    Qelp::Vector3 found;
    sg::TrajectoryNode* const node = pathNode();
    if (!node || !node->getTranslationOutputTangentControlPoint(parameter, found)) return false;
    point.Set(found);
    return true;
}

float XTrajectory::ArcLengthMap(float parameter) const {
    sg::TrajectoryNode* const node = pathNode();
    return node ? float(node->arcLengthMap(double(parameter))) : 0;
}

float XTrajectory::InverseArcLengthMap(float fraction) const {
    sg::TrajectoryNode* const node = pathNode();
    return node ? float(node->inverseArcLengthMap(double(fraction))) : 0;
}

bool XTrajectory::ComputePosition(float fraction, XVector3& position) const {
    Qelp::Vector3 found;
    sg::TrajectoryNode* const node = pathNode();
    if (!node || !node->computePosition(double(fraction), found, double(0.01F))) return false;
    position.Set(found);
    return true;
}

bool XTrajectory::FindRayClosestPointOnCurveParallelProjection(XVector3 const& origin, XVector3 const& direction,
                                                               float& fraction) const {
    double found = 0;
    sg::TrajectoryNode* const node = pathNode();
    if (!node || !node->findRaysClosestPointOnCurveParallelProjection(origin.AsVector(), direction.AsVector(), found))
        return false;
    fraction = float(found);
    return true;
}

bool XTrajectory::FindRayClosestPointOnCurvePerspectiveProjection(XVector3 const& eye, XVector3 const& origin,
                                                                  XVector3 const& direction, float& fraction) const {
    double found = 0;
    sg::TrajectoryNode* const node = pathNode();
    if (!node || !node->findRaysClosestPointOnCurvePerspectiveProjection(eye.AsVector(), origin.AsVector(),
                                                                         direction.AsVector(), found))
        return false;
    fraction = float(found);
    return true;
}

bool XTrajectory::QuaternionFromAttribute(XAttribute const& key, int sub, XQuaternion& rotation) {
    XAttribute const from = rotationIn(key, sub);
    if (!from.IsValid()) return false;
    float components[4];
    for (int i = 0; i < 4; ++i) components[i] = from.Attribute(i).Float();
    rotation.Set(components);
    return true;
}

bool XTrajectory::SetQuaternionFromAttribute(XAttribute& key, int sub, XQuaternion const& rotation) {
    XAttribute const to = rotationIn(key, sub);
    if (!to.IsValid()) return false;
    for (int i = 0; i < 4; ++i) to.Attribute(i).SetFloat(rotation[unsigned(i)]);
    return true;
}

XAnimation XTrajectory::TimingCurve() const { return XAnimation(IsValid() ? InputValue().InputObject() : XObject()); }

}  // namespace Tavo
