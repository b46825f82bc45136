// What the rigs of inverse kinematics and of retargeting are made of: lists of joints whose matrices a node computes,
// and the parameters of each joint. For the files of this folder.
#pragma once
#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/joint_limit.h"
#include <unordered_map>

namespace Tavo {

// The parts of a joint's limit, among a joint's parameters: numbers from that of the first part on.
enum XLimitParameter : int {
    LimitTypeParameter = 0,
    LimitMatrixParameter = 1,
    MovingOffsetParameter = 2,
    Swing1ActiveParameter = 3,
    Swing1AngleParameter = 4,
    Swing2ActiveParameter = 5,
    Swing2AngleParameter = 6,
    TwistActiveParameter = 7,
    TwistAngleParameter = 8,
    TwistOffsetParameter = 9,
};

// A list of objects, each once, with their places in it.
class XObjectList {
public:
    XObjectList() = default;
    explicit XObjectList(Qelutils::Vector<XObject> const& objects);

    bool add(XObject const& object);           // false when it is there
    int indexOf(XObject const& object) const;  // -1 when it is not
    int size() const { return int(_objects.size()); }
    XObject const& operator[](int index) const { return _objects[std::size_t(index)]; }
    Qelutils::Vector<XObject> const& objects() const { return _objects; }

private:
    Qelutils::Vector<XObject> _objects;
    std::unordered_map<int, int> _places;  // by id
};

// Of the elements of an attribute array, the last one first: a node with many inputs lets go of its latest ones at
// once.
void disconnectElements(XAttribute const& array);
void clearConnected(XAttribute array);  // and empties it
// Deletes the objects that an array of references holds, last first, and empties it. What feeds them stays.
void deleteAssociated(XAttribute array);
void setReferences(XAttribute array, Qelutils::Vector<XObject> const& objects);

// Of rotation, pre and post rotation and scale; and of translation if told so. The values stay.
void clearJointAnimation(XTransform const& joint, bool translation);

// Makes `matrix`, local to the joint's parent, drive the joint's rotation and, if told so, its translation. The
// conversion between the two becomes one of `associated`. Its angles are of order "XYZ", so that the joint takes its
// rotation from its angles in this order from now on; the pose stays.
void driveJoint(XTransform joint, XAttribute const& matrix, bool translation, XAttribute associated);

// The value of `source` now, and a connection from it. Where the connection would close a cycle the value alone: a
// limit stands on its joint, so that the frame of a limit whose joint is driven depends on what drives the joint. A
// compound is connected as a whole, or child by child when some children would close a cycle.
void feed(XAttribute target, XAttribute const& source);
// The joint's limit, or that there is none, among its parameters.
void feedLimit(XAttribute const& parameters, int firstPart, XJoint const& joint);

}  // namespace Tavo
