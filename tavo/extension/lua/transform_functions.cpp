#include "tavo/extension/lua/script_sets.h"
#include "tavo/kinematics/ik_handle.h"
#include "tavo/kinematics/joint.h"

namespace Tavo {

XScriptSet const& TransformFunctions() {
    static XScriptSet const set{
        "Transform",
        "An object that has a place in space.",
        {
            {"translation", &XTransform::LocalTranslation, {}, "Its place below its parent, in metres."},
            {"setTranslation",
             [](XTransform& object, XVector3 const& value) { object.SetTranslation(value); },
             {"value"},
             "Moves it."},
        }};
    return set;
}

XScriptSet const& JointFunctions() {
    static XScriptSet const set{"Joint", "A joint of a skeleton.", {}};
    return set;
}

XScriptSet const& IKHandleFunctions() {
    static XScriptSet const set{"IKHandle",
                                "What a chain is posed by.",
                                {
                                    {"solver", &XIKHandle::Solver, {}, "The solver that it belongs to."},
                                }};
    return set;
}

}  // namespace Tavo
