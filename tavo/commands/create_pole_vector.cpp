// Where the pole of a chain goes, and how it stays with the chain.
#include "tavo/app/application.h"
#include "tavo/commands/constraint_commands.h"
#include "tavo/commands/selected.h"
#include "tavo/kinematics/kinematics_constraint.h"
#include "tavo/kinematics/pole_vector.h"
#include <algorithm>

namespace Tavo {
namespace {

using Chain = Qelutils::Vector<XTransform>;

// A bend that is flatter than this part of the chain's length has no direction that could be relied on.
constexpr float straight = 1e-4f;
constexpr float defaultDistance = 1;  // metres; of a chain without a length

XVector3 difference(XVector3 const& a, XVector3 const& b) { return XVector3().Subtract(a, b); }

// What is left of `v` across the unit vector.
XVector3 across(XVector3 const& v, XVector3 const& unit) {
    return difference(v, XVector3().Multiply(v.DotProduct(unit), unit));
}

// Of the axes of the frame the one that is most across the unit vector, made so entirely; of equal ones the first.
XVector3 mostAcross(XMatrix const& frame, XVector3 const& unit) {
    XVector3 best;
    for (XVector3 axis : {frame.YAxis(), frame.ZAxis(), frame.XAxis()})
        if (XVector3 const side = across(axis.Normalize(), unit); side.Magnitude() > best.Magnitude() + 1e-5f)
            best = side;
    return best.Normalize();
}

// With the chain's first point r, the joint that bends m and the end e: the line from r to e is left, through m and at
// a right angle, towards where the chain is bent, for half of the length of the two bones. That is in their plane. A
// straight chain, and one of two points, where m is the end, has no such plane: its pole stands on the axis of the
// joint that is most across the line, of its Y, Z and X axes. The pole's X axis goes along the line, its Y axis to the
// side.
XMatrix placeOf(Chain const& chain) {
    XVector3 const first = chain.front().WorldTranslation(), joint = chain[1].WorldTranslation(),
                   end = chain.back().WorldTranslation();
    float const length = difference(joint, first).Magnitude() + difference(end, joint).Magnitude();
    XVector3 const line = difference(end, first).Normalize();
    XVector3 side = across(difference(joint, first), line);
    if (side.Magnitude() > straight * length)
        side.Normalize();
    else
        side = mostAcross(chain[1].WorldMatrix().Matrix(), line);
    XVector3 const step = XVector3().Multiply(length > 0 ? length / 2 : defaultDistance, side);
    return XMatrix(line, side, XVector3().CrossProduct(line, side), XVector3().Add(joint, step));
}

// From the top down; empty when they do not stand below one another.
Chain chainOf(Chain transforms) {
    std::stable_sort(transforms.begin(), transforms.end(),
                     [](XTransform const& a, XTransform const& b) { return a.Depth() < b.Depth(); });
    for (std::size_t i = 1; i < transforms.size(); ++i)
        if (!transforms[i - 1].IsParentOf(transforms[i])) return {};
    return transforms;
}

XPoleVector poleOf(Chain const& chain, XScene& scene) {
    XPoleVector pole(scene.CreateObject(XPoleVector::TypeID));
    bool const isControl = chain.size() == 3;
    pole.ControlJoint().SetObjectRef(chain[1]);
    if (isControl) pole.EndEffector().SetObjectRef(chain[2]);
    pole.SetName(chain[1].Name() +
                 (isControl ? XPoleVector::DefaultControlPoleSuffix : XPoleVector::DefaultReferencePoleSuffix));
    pole.SetLocalMatrix(placeOf(chain));
    return pole;
}

// The pole follows a referent that stands at the pole's place below the top of the chain: what the chain as a whole
// does, the pole does too. Its own world matrix could not be the target, since it hangs on what the constraint gives.
void tieTo(XTransform const& top, XPoleVector const& pole, XScene& scene) {
    XTransform referent(scene.CreateObject(XTransform::TypeID, top));
    referent.SetName(pole.Name() + XPoleVector::DefaultReferentSuffix);
    referent.SetWorldMatrix(pole.WorldMatrix().Matrix());
    XKinematicsConstraint constraint(scene.CreateObject(XKinematicsConstraint::TypeID, pole));
    constraint.AddTarget(referent);
    constraint.ParentWorldIn().ConnectInputTo(pole.ParentWorldMatrix());
    pole.TranslationX().ConnectInputTo(constraint.LocalTranslationOutX());
    pole.TranslationY().ConnectInputTo(constraint.LocalTranslationOutY());
    pole.TranslationZ().ConnectInputTo(constraint.LocalTranslationOutZ());
}

}  // namespace

void XCreatePoleVector::onRun() {
    Chain selected;
    forEachSelected<XTransform>(Scene(), [&](XTransform const& transform) { selected.push_back(transform); });
    XApplication& application = XApplication::Instance();
    if (selected.size() != 2 && selected.size() != 3) return void(application.LogError(L"Select 2 or 3 transforms"));
    Chain const chain = chainOf(selected);
    if (chain.empty()) return void(application.LogError(L"Selected transforms must be in same hierarchy branch"));
    XPoleVector const pole = poleOf(chain, Scene());
    tieTo(chain.front(), pole, Scene());
    Scene().Selection().Select(pole);
    addResult(pole);
}

}  // namespace Tavo
