// The keys of a trajectory as what they are in its node: attributes in a block of memory for each key. For the files of
// this folder, whose loops over many keys would pay for a handle on every field. Writes are recorded as any others;
// whether the trajectory may be edited is asked once, by the edit (XTrajectoryEdit).
#pragma once
#include "qel/sg/trajectory_node.h"
#include <algorithm>
#include <limits>

namespace Tavo {

// An element of an attribute array, whose row 0 it is. Its parts follow as rows, in their order.
class XKeyParts {
public:
    explicit XKeyParts(db::Attribute& element) : XKeyParts(element.block(), *element.block().layout) {}
    XKeyParts(db::ElementBlock& block, db::Layout const& layout) : _block(&block), _layout(&layout) {}

    template<class A> A& part(int index) const { return row<A>(index + 1); }
    db::CompositeAttribute& compound(int index) const { return part<db::CompositeAttribute>(index); }

protected:
    template<class A> A& row(int index) const {
        return *reinterpret_cast<A*>(reinterpret_cast<char*>(_block) + _layout->offsets[std::size_t(index)]);
    }
    int firstChild(int index) const { return _layout->rows[std::size_t(index + 1)].firstChild; }

    db::ElementBlock* _block;
    db::Layout const* _layout;  // not asked of the block: its head lies on a cache line that a loop need not touch
};

class XTranslationKey : public XKeyParts {
public:
    using Part = sg::TrajectoryNode::TranslationKeyPart;
    using XKeyParts::XKeyParts;

    int number() const { return part<db::IntAttribute>(Part::KeyParameter).getValue(); }
    Qelp::Vector3 const& inHandle() const { return point(Part::InHandle).getValue(); }
    Qelp::Vector3 const& position() const { return point(Part::Position).getValue(); }
    Qelp::Vector3 const& outHandle() const { return point(Part::OutHandle).getValue(); }
    int interpolation() const { return part<db::EnumAttribute>(Part::Interpolation).getValue(); }
    int continuity() const { return part<db::EnumAttribute>(Part::Continuity).getValue(); }

    void setNumber(int value) const { part<db::IntAttribute>(Part::KeyParameter).setValue(value); }
    void raise(int by) const { setNumber(int(std::min(long(number()) + by, long(std::numeric_limits<int>::max())))); }
    void setInHandle(Qelp::Vector3 const& value) const { point(Part::InHandle).setValue(value); }
    void setPosition(Qelp::Vector3 const& value) const { point(Part::Position).setValue(value); }
    void setOutHandle(Qelp::Vector3 const& value) const { point(Part::OutHandle).setValue(value); }
    void setInterpolation(int value) const { part<db::EnumAttribute>(Part::Interpolation).setValue(value); }
    void setContinuity(int value) const { part<db::EnumAttribute>(Part::Continuity).setValue(value); }

    db::Vector3Attribute& point(int index) const { return part<db::Vector3Attribute>(index); }
};

class XRotationKey : public XKeyParts {
public:
    using Part = sg::TrajectoryNode::RotationKeyPart;
    static constexpr int Continuity = 5;
    using XKeyParts::XKeyParts;

    float attachPoint() const { return part<db::FloatAttribute>(Part::AttachPoint).getValue(); }
    Qelp::Vector3 const& inTangent() const { return part<db::Vector3Attribute>(Part::InTangent).getValue(); }
    Qelp::Vector3 const& outTangent() const { return part<db::Vector3Attribute>(Part::OutTangent).getValue(); }
    Qelp::Quat orientation() const { return {component(0), component(1), component(2), component(3)}; }
    int continuity() const { return part<db::EnumAttribute>(Continuity).getValue(); }

    void setAttachPoint(float value) const { part<db::FloatAttribute>(Part::AttachPoint).setValue(value); }
    void setInTangent(Qelp::Vector3 const& value) const { part<db::Vector3Attribute>(Part::InTangent).setValue(value); }
    void setOutTangent(Qelp::Vector3 const& value) const {
        part<db::Vector3Attribute>(Part::OutTangent).setValue(value);
    }
    void setOrientation(Qelp::Quat const& value) const {
        float const components[] = {value.x, value.y, value.z, value.w};
        for (int i = 0; i < 4; ++i) attributeOf(i).setValue(components[i]);
    }
    void setInterpolation(int value) const { part<db::EnumAttribute>(Part::KeyInterpolation).setValue(value); }
    void setContinuity(int value) const { part<db::EnumAttribute>(Continuity).setValue(value); }

private:
    db::FloatAttribute& attributeOf(int component) const {
        return row<db::FloatAttribute>(firstChild(Part::Orientation) + component);
    }
    float component(int i) const { return attributeOf(i).getValue(); }
};

// One of the node's arrays of keys. An index beyond the end must not be asked for.
template<class Key, int number> class XKeyArray {
public:
    explicit XKeyArray(sg::TrajectoryNode const& node) :
        _array(node.at<db::AttributeArray>(number)), _layout(_array.elementLayout()) {}

    int count() const { return int(_array.size()); }
    Key operator[](int slot) const { return Key(*_array.blocks()[std::size_t(slot)], _layout); }
    db::AttributeArray& array() const { return _array; }

private:
    db::AttributeArray& _array;
    db::Layout const& _layout;
};
using XTranslationKeys = XKeyArray<XTranslationKey, sg::TrajectoryNode::TranslationKeyframesArray>;
using XRotationKeys = XKeyArray<XRotationKey, sg::TrajectoryNode::RotationKeyframesArray>;

}  // namespace Tavo
