#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& MatrixFunctions() {
    static XScriptSet const set{"Matrix",
                                "A transform.",
                                {
                                    {"setIdentity", &XMatrix::SetIdentity, {}, "No transform."},
                                }};
    return set;
}

}  // namespace Tavo
