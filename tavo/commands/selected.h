// What commands act on: the selected objects of their scene.
#pragma once
#include "tavo/interaction/selection.h"
#include "tavo/objects/scene.h"

namespace Tavo {

// A copy, since edits change the selection.
inline Qelutils::Vector<XObject> selectedObjects(XScene& scene) {
    Qelutils::Vector<XObject> objects;
    return scene.Selection().Objects(objects);
}

// Calls edit(typed object) for each that is valid as that type, in the order of the selection.
template<class Type, class Edit> void forEachSelected(XScene& scene, Edit const& edit) {
    for (XObject const& object : selectedObjects(scene))
        if (Type typed(object); typed.IsValid()) edit(typed);
}

}  // namespace Tavo
