// What is selected: an ordered list of nodes and, at a finer grain, an ordered list of numbers. The two arrays are the
// truth, whoever writes them; the node answers questions about them without a search.
//
// An entity may be a reference to an attribute, and then stands for the attribute's node. One whose target is removed
// or gone stands for no node, which is what null means here.
#pragma once
#include "qel/db/member_index.h"
#include "qel/sg/node.h"

namespace sg {

class SelectionNode : public Node {
public:
    static inline std::wstring const ClassID = L"Selection";
    static db::NodeDef const Def;
    enum Number : int { Entities = 13, SubEntityType = 14, SubEntities = 15 };
    explicit SelectionNode(db::NodeDef const& def = Def) : Node(def) {}

    bool hasEntity(db::Node const* node) const;
    void removeEntity(db::Node const* node);                         // the first that stands for it
    void removeEntities(std::vector<db::Node const*> const& nodes);  // for each of them the first, in one pass
    bool hasSubEntity(int index) const;
    void removeSubEntity(int index);  // the first

private:
    std::size_t findEntity(db::Node const* node) const;  // the first; their number when there is none

    struct EntityKey {  // also of a removed target, since an undo brings it back without touching the array
        db::Slot const* operator()(db::AttributeHandle const& entity) const;
    };
    struct NumberKey {
        int operator()(int number) const { return number; }
    };
    db::PointerArrayAttribute& entities() const { return at<db::PointerArrayAttribute>(Entities); }
    db::IntArrayAttribute& subEntities() const { return at<db::IntArrayAttribute>(SubEntities); }

    mutable db::MemberIndex<db::Slot const*, EntityKey> entityIndex_;
    mutable db::MemberIndex<int, NumberKey> subEntityIndex_;
};

}  // namespace sg
