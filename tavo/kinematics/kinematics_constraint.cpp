#include "tavo/kinematics/kinematics_constraint.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/kinematics/wiring.h"
#include "tavo/objects/database.h"

namespace Tavo {
namespace {

using Node = sg::TransformNode;
using Split = sg::MatrixConversionNode;

bool isDriven(XTransform const& transform, int first) {
    for (int axis = 0; axis < 3; ++axis)
        if (transform.Attribute(first + axis).InputObject().IsValid()) return true;
    return false;
}

XMatrixConversion conversionFor(XTransform const& transform, XKinematicsConstraint const& constraint) {
    XMatrixConversion conversion(constraint.Database().CreateObject(XMatrixConversion::TypeID));
    conversion.SetParent(constraint);
    conversion.InputMatrix().ConnectInputTo(constraint.LocalMatrix());
    feedThree(conversion, Split::PreTranslation, transform, Node::PreTranslation);
    feedThree(conversion, Split::PreRotation, transform, Node::PreRotation);
    feedThree(conversion, Split::PostRotation, transform, Node::PostRotation);
    return conversion;
}

}  // namespace

XKinematicsConstraint& XKinematicsConstraint::AddTarget(XTransform const& target) {
    if (!IsValid() || !target.IsValid()) return *this;
    InputMatrices().AddAttribute().Attribute(0).ConnectInputTo(target.WorldMatrix());
    int const count = InputMatrices().ArraySize();
    for (int i = 0; i < count; ++i) InputMatrices().Attribute(i).Attribute(2).SetFloat(1 / float(count));
    return *this;
}

XKinematicsConstraint& XKinematicsConstraint::ClearTargets() {
    for (int i = 0, count = InputMatrices().ArraySize(); i < count; ++i)
        InputMatrices().Attribute(i).Attribute(0).DisconnectInput();
    InputMatrices().Clear();
    return *this;
}

XKinematicsConstraint& XKinematicsConstraint::Constrain(XTransform const& transform, XTransform const& target,
                                                        bool lockTranslation, bool lockRotation) {
    return Constrain(transform, Qelutils::Vector<XTransform>{target}, lockTranslation, lockRotation);
}

XKinematicsConstraint& XKinematicsConstraint::Constrain(XTransform const& transform,
                                                        Qelutils::Vector<XTransform> const& targets,
                                                        bool lockTranslation, bool lockRotation) {
    if (!IsValid() || !transform.IsValid() || targets.empty() || !(lockTranslation || lockRotation)) return *this;
    bool const takesTranslation = lockTranslation && !isDriven(transform, Node::Translation);
    bool const takesRotation = lockRotation && !isDriven(transform, Node::Rotation);
    ClearTargets();
    for (XTransform const& target : targets) AddTarget(target);
    ParentWorldIn().DisconnectInput();
    ParentWorldIn().ConnectInputTo(transform.ParentWorldMatrix());
    XMatrixConversion const conversion = conversionFor(transform, *this);
    if (takesTranslation) feedThree(transform, Node::Translation, conversion, Split::Translation);
    if (takesRotation) feedThree(transform, Node::Rotation, conversion, Split::Rotation);
    return *this;
}

}  // namespace Tavo
