// XSelection: the scene's record of what is selected: an ordered list of objects and, while exactly one is selected and
// edited at a finer grain, an edit mode and an ordered list of sub-object indices. It is a node like any other, so that
// it takes part in change blocks, undo and files, and the three attributes are the truth, whoever writes them.
//
// Nothing here reports an error: invalid handles, indices out of range, unknown paths, objects that can't be selected
// and modes that are not supported change nothing, or give an invalid or empty result. Asking whether an object is
// selected is constant on average; the changes are linear in what they are given, SelectAll and SelectByType in the
// scene.
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
    TAVO_ATTRIBUTE(SubEntities, 15)    // the selected sub-object indices, in the order of selection

    using XSceneObject::Deselect, XSceneObject::IsSelected, XSceneObject::Path, XSceneObject::Select;  // of itself

    // ---- the edit mode: in force while exactly one object is selected, and 0 otherwise ----
    int EditMode() const;
    bool IsObjectEditMode() const { return EditMode() == 0; }
    bool IsSubObjectEditMode() const { return EditMode() >= 1; }
    bool IsSubObjectEditMode(XObject const& object) const;

    // ---- the selected objects; one that was removed meanwhile counts, and reads invalid ----
    bool IsSelected(XObject const& object) const;
    bool IsSelectedSubObject(int index) const;  // false in object mode
    int Count() const { return Entities().ArraySize(); }
    int SubObjectCount() const { return SubEntities().ArraySize(); }  // whatever the edit mode
    bool HasSelection() const { return (IsSubObjectEditMode() ? SubObjectCount() : Count()) > 0; }
    std::wstring Path(int index) const;  // empty beyond the ends
    std::vector<std::wstring> Paths() const;
    std::vector<std::wstring>& Paths(std::vector<std::wstring>& out) const;  // of those that are valid
    XObject Object(int index) const;  // what the active scene has under that path; invalid beyond the ends
    // The first object if it is of that type, and otherwise none: the others are not looked at, on purpose.
    XObject Object(std::wstring const& type, XComparisonMode mode) const;
    Qelutils::Vector<XObject>& Objects(Qelutils::Vector<XObject>& out) const;
    // Those of exactly that type; all for an empty one.
    Qelutils::Vector<XObject>& Objects(std::wstring const& type, Qelutils::Vector<XObject>& out) const;

    // ---- where tools stand: orthonormal, in world space ----
    XMatrix ObjectToolFrame() const;  // of the last object, or of the parent of a shape; otherwise the identity
    XMatrix ObjectToolFrameWorldAligned() const;  // its place alone, but for a physics body that is scaled
    // What the controller of the first object says in a sub-object edit mode. No type has a controller: the identity.
    XMatrix SubObjectToolFrame(float step) const;
    XMatrix SubObjectToolFrameWorldAligned(float step) const;

    // ---- changes, each one change block; an object is in the list once at most ----
    XSelection& Select(XObject const& object);     // alone; an invalid object changes nothing
    XSelection& Select(std::wstring const& path);  // in the selection's own database, as all paths here
    XSelection& Select(std::vector<std::wstring> const& paths);
    XSelection& Select(Qelutils::Vector<XObject> const& objects);
    XSelection& Append(XObject const& object);
    XSelection& Append(std::wstring const& path);
    XSelection& Append(std::vector<std::wstring> const& paths);
    // Nothing while sub-objects are edited.
    XSelection& Deselect(XObject const& object);
    XSelection& Deselect(std::wstring const& path);
    XSelection& Deselect(std::vector<std::wstring> const& paths);
    XSelection& Clear();
    XSelection& ClearSubObjects();
    XSelection& AppendSubObject(int index);  // nothing in object mode or for a negative index, as the following
    XSelection& DeselectSubObject(int index);
    XSelection& SetEditMode(int mode);  // without a block; a mode that the one object does not support changes nothing
    XSelection& SelectAll();            // transforms, then shapes
    XSelection& SelectByType(std::wstring const& type, XComparisonMode mode);
    // Each object gives way to its relative; when none has one that can be selected, the selection stands. Among
    // siblings those that can't be selected are passed over, around the end and back to the object itself.
    XSelection& SelectParent();
    XSelection& SelectChild();
    XSelection& SelectPrevious();
    XSelection& SelectNext();

    // False for the selection of the active scene, whichever scene this one belongs to: a decision of this system.
    bool supportsDeletion() const override { return !isSystemSelection(); }
    bool supportsRenaming() const override { return !isSystemSelection(); }
    void onInitialize() override;

private:
    sg::SelectionNode* selectionNode() const;  // null without one
    XObject find(std::wstring const& path) const;
    XObject lastObject() const { return Object(Count() - 1); }
    bool isSystemSelection() const;

    // Without a change block.
    void doAppend(XObject const& object);
    void doClear();
    template<class Type> void appendOfType();
    template<class Relative> XSelection& selectRelatives(Relative const& relativeOf);
};
using XSelectionDef = XTypedDef<XSelection>;

}  // namespace Tavo
