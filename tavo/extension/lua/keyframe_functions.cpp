#include "tavo/animation/keyframe.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& KeyframeFunctions() {
    static XScriptSet const set{"Keyframe",
                                "A key of a curve.",
                                {
                                    {"x", &XKeyframe::InputValue, {}, "Where it is, in seconds."},
                                    {"setX", &XKeyframe::SetInputValue, {"value"}, "Moves it."},
                                }};
    return set;
}

}  // namespace Tavo
