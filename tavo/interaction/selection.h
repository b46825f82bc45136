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

    // False for the selection of the active scene, whichever scene this one belongs to: a decision of this system.
    bool supportsDeletion() const override { return !isSystemSelection(); }
    bool supportsRenaming() const override { return !isSystemSelection(); }
    void onInitialize() override;

private:
    bool isSystemSelection() const;
};
using XSelectionDef = XTypedDef<XSelection>;

}  // namespace Tavo
