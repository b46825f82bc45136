#include "tavo/extension/lua/script_sets.h"
#include "tavo/kinematics/render_object.h"

namespace Tavo {

XScriptSet const& ObjectFunctions() {
    static XScriptSet const set{"Object",
                                "Anything in a scene.",
                                {
                                    {"isValid",
                                     &XObject::IsValid,
                                     {},
                                     "Whether the object is there: not deleted, and in a scene that is open."},
                                    {"id", &XObject::ObjectID, {}, "The number by which scene:object finds it."},
                                    {"name", &XObject::Name, {}, "Its name."},
                                    {"setName",
                                     [](XObject& object, std::wstring const& name) { object.SetName(name); },
                                     {"name"},
                                     "Renames it; the name is made unique among its siblings."},
                                }};
    return set;
}

XScriptSet const& RenderObjectFunctions() {
    static XScriptSet const set{"RenderObject",
                                "An object that is drawn.",
                                {
                                    {"visible",
                                     [](XRenderObject const& object) { return object.Visible().Boolean(); },
                                     {},
                                     "Whether it is shown."},
                                    {"setVisible", &XRenderObject::SetVisible, {"visible"}, "Shows or hides it."},
                                }};
    return set;
}

}  // namespace Tavo
