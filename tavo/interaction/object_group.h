// Groups of objects: display, collision and selection groups. Groups form trees of folders (which hold groups), plain
// groups (which hold objects) and separators (which hold nothing); the tree is held by references and not by the
// database's parents. Each scene has one root folder of each kind.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/colour.h"
#include "tavo/objects/scene_object.h"

namespace Tavo {

class XObjectGroup : public XTyped<XObjectGroup, XSceneObject, sg::GroupNode> {
public:
    static constexpr XWord TypeID = L"ObjectGroup", DefaultName = L"objectGroup";
    static constexpr float HueDivisions = 14, Saturation = 0.55f, Luminescence = 0.5f;
    static constexpr int RandomHueCount = 1000;
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Label, 8)
    TAVO_ATTRIBUTE(ParentGroupReference, 9)
    TAVO_ATTRIBUTE(ChildGroupReferenceArray, 10)
    TAVO_ATTRIBUTE(IsGroupFolder, 11)
    TAVO_ATTRIBUTE(IsGroupSeparator, 12)
    TAVO_ATTRIBUTE(ObjectReferenceArray, 13)
    TAVO_ATTRIBUTE(SubObjectType, 14)
    TAVO_ATTRIBUTE(SubObjectArray, 15)
    TAVO_ATTRIBUTE(IsFocused, 16)
    TAVO_ATTRIBUTE(IsExpanded, 17)
    TAVO_ATTRIBUTE(IsActive, 18)
    TAVO_ATTRIBUTE(IsEditable, 19)
    TAVO_ATTRIBUTE(IsSelectable, 20)
    TAVO_ATTRIBUTE(IsVisible, 21)
    TAVO_ATTRIBUTE(Colour, 22)  // four floats

    bool IsFolder() const { return IsGroupFolder().Boolean(); }
    bool IsSeparator() const { return IsGroupSeparator().Boolean(); }
    XObjectGroup& SetIsFolder(bool value);
    XObjectGroup& SetIsSeparator(bool value);
    XObjectGroup& SetLabel(std::wstring const& label);

    bool supportsDeletion() const override { return !isSystemObjectGroup(); }
    void onInitialize() override;

private:
    bool isSystemObjectGroup() const;  // one of the three roots of the active scene
};
using XObjectGroupDef = XTypedDef<XObjectGroup>;

class XDisplayGroup : public XTyped<XDisplayGroup, XObjectGroup, sg::DisplayGroupNode> {
public:
    static constexpr XWord TypeID = L"DisplayGroup";
    using XTyped::XTyped;
};
using XDisplayGroupDef = XTypedDef<XDisplayGroup>;

class XCollisionGroup : public XTyped<XCollisionGroup, XObjectGroup, sg::CollisionGroupNode> {
public:
    static constexpr XWord TypeID = L"CollisionGroup";
    using XTyped::XTyped;
};
using XCollisionGroupDef = XTypedDef<XCollisionGroup>;

class XSelectionGroup : public XTyped<XSelectionGroup, XObjectGroup, sg::SelectionGroupNode> {
public:
    static constexpr XWord TypeID = L"SelectionGroup";
    using XTyped::XTyped;
};
using XSelectionGroupDef = XTypedDef<XSelectionGroup>;

}  // namespace Tavo
