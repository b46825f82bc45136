#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& QuaternionFunctions() {
    static XScriptSet const set{"Quaternion",
                                "A rotation.",
                                {
                                    {"setIdentity", &XQuaternion::SetIdentity, {}, "No rotation."},
                                }};
    return set;
}

}  // namespace Tavo
