// XCharacter: what groups a kinematic skeleton and its physics twin under one object, and decides what an edit of one
// of its parts acts on. The two skeletons bear the same names, so that the paths of twins differ only in the part of
// the character that they stand in.
//
// Operations on an invalid character, and on one that lacks a part, do nothing. What speaks of physics joints is
// defined with physics.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XJoint;
class XKinematicsCharacter;
class XPhysicsCharacter;
class XPhysicsJoint;

class XCharacter : public XTyped<XCharacter, XTransform, sg::CharacterNode> {
public:
    static constexpr XWord TypeID = L"Character", DefaultName = L"character";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(IsEditable, 51)  // its parts may be moved one by one

    XKinematicsCharacter KinematicsCharacter() const;  // the first of its type below this
    XPhysicsCharacter PhysicsCharacter() const;
    bool IsEnvironmentCharacter() const;  // by the name that a scene keeps for it

    // The twin in the other skeleton, by its path. A physics joint that follows a target is first asked for the joint
    // which drives that target. Invalid without a twin, and without a message.
    XPhysicsJoint EquivalentPhysicsJoint(XJoint const& joint) const;
    XJoint EquivalentKinematicsJoint(XPhysicsJoint const& joint) const;

    // Before a tool edits `part`: replaces it by what the edit is to act on, or leaves it as it is. The character and
    // its two halves stand for the character's root. Parts of an editable character may be edited. Of any other, a
    // physics part is turned as its kinematic twin, a part of a skeleton is moved as the root, and not scaled at all:
    // it becomes invalid.
    void OnBeginMove(XTransform& part);
    void OnBeginRotate(XTransform& part);
    void OnBeginScale(XTransform& part);  // goes back to the interactive mode first

    // The physics skeleton follows the kinematic one, from where that is now, by the constraints between them; or it is
    // free, with uniform keys at the simulation's rate for the engine to overwrite. Each opens a change block.
    XCharacter& SetInteractiveMode();
    XCharacter& SetSimulationMode();

    bool supportsReparenting() const override { return false; }
    void onInitialize() override;

private:
    bool isWhole(XTransform const& part) const;
    bool isLocked(XTransform const& part) const;
    XTransform root() const;
    void disconnectInternalConstraints();
    void initializeSimulatedAnimation();
};
using XCharacterDef = XTypedDef<XCharacter>;

}  // namespace Tavo
