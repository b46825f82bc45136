// XSelection: the scene's record of what is selected: an ordered list of objects and, while exactly one is selected and
// edited at a finer grain, an edit mode and an ordered list of sub-object indices. It is a node like any other, so that
// it takes part in change blocks, undo and files.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/scene_object.h"

namespace Tavo {

class XSelection : public XTyped<XSelection, XSceneObject, sg::SelectionNode> {
public:
    static constexpr XWord TypeID = L"Selection";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Entities, 13)       // references to the selected objects, in the order of selection
    TAVO_ATTRIBUTE(SubEntityType, 14)  // the stored edit mode: 0 objects, from 1 on sub-objects
    TAVO_ATTRIBUTE(SubEntities, 15)    // the selected sub-object indices

    // ---- the selected objects ----
    int EditMode() const;  // 0 unless exactly one object is selected
    bool IsObjectEditMode() const { return EditMode() == 0; }
    bool IsSubObjectEditMode() const { return EditMode() >= 1; }
    bool IsSubObjectEditMode(XObject const& object) const;
    bool IsSelected(XObject const& object) const;
    int Count() const { return Entities().ArraySize(); }
    int SubObjectCount() const { return SubEntities().ArraySize(); }
    bool HasSelection() const { return (IsSubObjectEditMode() ? SubObjectCount() : Count()) > 0; }
    XObject Object(int index) const;  // through the active scene; invalid beyond the ends
    XObject Object(std::wstring const& type, XComparisonMode mode) const;
    XSelection& SelectAll();
    XSelection& SelectParent();
    XSelection& SelectChild();
    XSelection& SelectNext();
    XSelection& SelectPrevious();
    Qelutils::Vector<XObject>& Objects(Qelutils::Vector<XObject>& out) const;

    // ---- changes, each one change block; an object is in the list once at most ----
    XSelection& Select(XObject const& object);  // alone; an invalid object changes nothing
    XSelection& Append(XObject const& object);
    XSelection& Deselect(XObject const& object);  // nothing while sub-objects are edited
    XSelection& Clear();
    XSelection& ClearSubObjects();
    XSelection& SetEditMode(int mode);  // without a block; a mode that the one object does not support changes nothing

    // False for the selection of the active scene, whichever scene this one belongs to: a decision of this system.
    bool supportsDeletion() const override { return !isSystemSelection(); }
    bool supportsRenaming() const override { return !isSystemSelection(); }
    void onInitialize() override;

private:
    bool isSystemSelection() const;
    void doAppend(XObject const& object);
    void doClear();
};
using XSelectionDef = XTypedDef<XSelection>;

}  // namespace Tavo
