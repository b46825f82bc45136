#include "tavo/extension/lua/script_sets.h"
#include "tavo/kinematics/ik_handle.h"
#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/joint_limit.h"
#include "tavo/trajectories/trajectory.h"
#include <algorithm>
#include <span>

namespace Tavo {
namespace {

constexpr XWord axes[] = {L"XAxis", L"YAxis", L"ZAxis"};
constexpr XWord alignments[] = {L"AlignToFirstChild", L"AlignToChildAverage"};
constexpr XWord orders[] = {L"XYZ", L"XZY", L"YXZ", L"YZX", L"ZXY", L"ZYX"};
constexpr XWord freezable[] = {L"all", L"translation", L"rotation"};

// The number of a choice that a script makes by word or number; the first when it makes none.
int choiceOf(XScriptCall const& call, XScriptKey const& key, std::span<XWord const> words) {
    int const count = int(words.size());
    auto const found = std::find(words.begin(), words.end(), key.text);
    int const choice = key.isNumber ? key.number : key.text.empty() ? 0 : int(found - words.begin());
    if (choice >= 0 && choice < count) return choice;
    std::string list;
    for (XWord const& word : words) list += (list.empty() ? "" : ", ") + std::string(word.begin(), word.end());
    call.Fail("there is no such choice; there are " + list + ", or their numbers from 0 to " +
              std::to_string(count - 1));
}

XDirection directionOf(XScriptCall const& call, XScriptKey const& axis) {
    return XDirection(choiceOf(call, axis, axes));
}
XAlignmentMode alignmentOf(XScriptCall const& call, XScriptKey const& mode) {
    return XAlignmentMode(choiceOf(call, mode, alignments));
}

// Turns by an axis of any length.
XVector3 direction(XVector3 const& axis) { return XVector3(axis).Normalize(); }

void alignAxis(XScriptCall& call, XTransform& object, XScriptKey const& axis, XScriptKey const& mode) {
    XDirection const direction = directionOf(call, axis);
    XAlignmentMode const alignment = alignmentOf(call, mode);
    if (object.IsValid()) object.AlignAxis(direction, alignment);
}

XTrajectory createTrajectory(XTransform const& object) {
    return object.IsValid() ? object.CreateTrajectory() : XTrajectory();
}

// Translation first, as the command does.
void freeze(XScriptCall& call, XTransform& object, XScriptKey const& what) {
    int const choice = choiceOf(call, what, freezable);
    if (choice != 2) object.FreezeTranslation();
    if (choice != 1) object.FreezeRotation();
}

// As they stand in the attributes: a matrix would give other angles for those beyond a quarter turn.
XVector3 anglesOf(XTransform const& object) {
    return {object.RotationX().Float(), object.RotationY().Float(), object.RotationZ().Float()};
}

XMatrix worldOf(XTransform const& object) { return object.WorldMatrix().Matrix(); }

void alignLimit(XScriptCall& call, XJoint& joint, XScriptKey const& axis, XScriptKey const& mode) {
    XDirection const direction = directionOf(call, axis);
    joint.JointLimit().AlignJointLimit(direction, alignmentOf(call, mode));
}

}  // namespace

XScriptSet const& TransformFunctions() {
    // clang-format off
    static XScriptSet const set{"Transform", "An object that has a place in space.", {
        {"alignAxis", &alignAxis, {"axis", "mode"},
         "Points its XAxis, YAxis or ZAxis at its first child, or with AlignToChildAverage at the middle of its "
         "children; what hangs below it stays where it is, and the skeleton loses its animation."},
        {"createTrajectory", &createTrajectory, {},
         "A new path through the places that it has over the scene's time."},
        {"freeze", &freeze, {"what"},
         "Lets its present translation, rotation or all, as it is told, be the one from which its channels count."},
        {"matrix", [](XTransform const& object) { return object.LocalMatrix().Matrix(); }, {},
         "Its place below its parent as a matrix, what is frozen included."},
        {"translation", &XTransform::LocalTranslation, {},
         "Its place below its parent in metres, what is frozen included."},
        {"rotation", &anglesOf, {},
         "Its Euler angles in radians, turned about X, Y and Z in this order, without what is frozen."},
        {"rotationOrder", [](XTransform const& object) { return object.RotationEulerOrder().EnumerationString(); }, {},
         "The word of the order in which its node turns by its angles, such as \"XYZ\"."},
        {"rotationAxis", [](XTransform const& object) { return object.Rotation().RotationAxis(); }, {},
         "The axis that its angles turn about, without what is frozen."},
        {"rotationAngle", [](XTransform const& object) { return object.Rotation().RotationAngle(); }, {},
         "How far its angles turn about that axis, in radians."},
        {"scale", &XTransform::LocalScale, {},
         "Its scale along its own axes."},
        {"worldMatrix", &worldOf, {},
         "Its place in the world as a matrix."},
        {"worldTranslation", &XTransform::WorldTranslation, {},
         "Its place in the world in metres."},
        {"worldRotation",
         [](XTransform const& object) {
             return worldOf(object).RotationEulerAngles(object.RotationEulerOrder().Enumeration());
         },
         {}, "Its Euler angles in the world in radians, by its rotation order."},
        {"worldRotationAxis", [](XTransform const& object) { return object.WorldRotation().RotationAxis(); }, {},
         "The axis that it is turned about in the world."},
        {"worldRotationAngle", [](XTransform const& object) { return object.WorldRotation().RotationAngle(); }, {},
         "How far it is turned about that axis, in radians."},
        {"worldScale", &XTransform::WorldScale, {},
         "The diagonal of its world matrix: its scale where it is not turned."},
        {"setIdentity", [](XTransform& object) { object.SetIdentity(); }, {},
         "Puts it where its parent is, unturned and unscaled."},
        {"setMatrix", [](XTransform& object, XMatrix const& matrix) { object.SetLocalMatrix(matrix); }, {"matrix"},
         "Gives it that place below its parent."},
        {"setTranslation", [](XTransform& object, XVector3 const& value) { object.SetTranslation(value); }, {"value"},
         "Moves it there below its parent, in metres from what is frozen."},
        {"setRotation", [](XTransform& object, XVector3 const& angles) { object.SetRotationEulerAngles(angles); },
         {"angles"}, "Turns it by those Euler angles in radians, about X, Y and Z in this order, from what is frozen."},
        {"setRotationOrder",
         [](XScriptCall& call, XTransform& object, XScriptKey const& order) {
             object.RotationEulerOrder().SetEnumeration(choiceOf(call, order, orders));
         },
         {"order"}, "Lets its node turn by its angles in that order: \"XYZ\", \"XZY\" and the like."},
        {"setRotationAxisAngle",
         [](XTransform& object, XVector3 const& axis, float angle) { object.SetRotationAxisAngle(axis, angle); },
         {"axis", "angle"}, "Turns it about an axis of any length by an angle in radians, from what is frozen."},
        {"setScale", [](XTransform& object, XVector3 const& value) { object.SetScale(value); }, {"value"},
         "Scales it along its own axes."},
        {"setWorldTranslation", [](XTransform& object, XVector3 const& value) { object.SetWorldTranslation(value); },
         {"value"}, "Moves it there in the world, in metres."},
        {"setWorldMatrix", [](XTransform& object, XMatrix const& matrix) { object.SetWorldMatrix(matrix); },
         {"matrix"}, "Gives it that place in the world."},
        {"setWorldRotation",
         [](XTransform& object, XVector3 const& angles) { object.SetWorldRotationEulerAngles(angles); }, {"angles"},
         "Turns it to those Euler angles in the world, in radians and by its rotation order."},
        {"setWorldRotationAxisAngle",
         [](XTransform& object, XVector3 const& axis, float angle) { object.SetWorldRotationAxisAngle(axis, angle); },
         {"axis", "angle"}, "Turns it to an angle in radians about an axis of the world of any length."},
        {"translate", [](XTransform& object, XVector3 const& delta) { object.Translate(delta); }, {"delta"},
         "Moves it on along the axes of its parent, in metres."},
        {"rotate", [](XTransform& object, XVector3 const& angles) { object.RotateByEulerAngles(angles); }, {"angles"},
         "Turns it on by Euler angles in radians, about its parent's X, Y and Z in this order."},
        {"rotateAxisAngle",
         [](XTransform& object, XVector3 const& axis, float angle) {
             object.RotateByAxisAngle(direction(axis), angle);
         },
         {"axis", "angle"}, "Turns it on about an axis of its parent of any length, by an angle in radians."},
        {"worldTranslate", [](XTransform& object, XVector3 const& delta) { object.WorldTranslate(delta); }, {"delta"},
         "Moves it on along the axes of the world, in metres."},
        {"worldRotate", [](XTransform& object, XVector3 const& angles) { object.WorldRotateByEulerAngles(angles); },
         {"angles"}, "Turns it on by Euler angles in radians about the axes of the world, by its rotation order."},
        {"worldRotateAxisAngle",
         [](XTransform& object, XVector3 const& axis, float angle) {
             object.WorldRotateByAxisAngle(direction(axis), angle);
         },
         {"axis", "angle"}, "Turns it on about an axis of the world of any length, by an angle in radians."},
    }};
    // clang-format on
    return set;
}

XScriptSet const& JointFunctions() {
    // clang-format off
    static XScriptSet const set{"Joint", "A joint of a skeleton.", {
        {"alignLimit", &alignLimit, {"axis", "mode"},
         "Points an axis of its limit's frames at its first child, or with AlignToChildAverage at the middle of its "
         "children; nothing for a joint without a limit."},
        {"snapOffsetClosestAxis",
         [](XJoint& joint, bool moveLimit) { joint.JointLimit().SnapOffsetClosestAxis(moveLimit); }, {"moveLimit"},
         "Lays the axis of its limit's moving frame that is nearest to the bone along it, and the fixed frame with it "
         "if so told."},
    }};
    // clang-format on
    return set;
}

XScriptSet const& IKHandleFunctions() {
    // clang-format off
    static XScriptSet const set{"IKHandle", "What a chain is posed by.", {
        {"solver", &XIKHandle::Solver, {},
         "The solver that it belongs to, or nil."},
        {"root", &XIKHandle::RootJoint, {},
         "The first joint of the chain that it poses, or nil."},
        {"endEffector", &XIKHandle::EndEffectorTransform, {},
         "What it draws along: the end of the chain, or nil."},
    }};
    // clang-format on
    return set;
}

}  // namespace Tavo
