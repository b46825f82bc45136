#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& Vector3Functions() {
    static XScriptSet const set{"Vector3",
                                "Three numbers.",
                                {
                                    {"magnitude", &XVector3::Magnitude, {}, "Its length."},
                                    {"normalize", &XVector3::Normalize, {}, "Gives it the length 1."},
                                }};
    return set;
}

}  // namespace Tavo
