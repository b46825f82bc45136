#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& AttributeFunctions() {
    static XScriptSet const set{"Attribute",
                                "A value of an object.",
                                {
                                    {"id", &XAttribute::AttributeID, {}, "Its number."},
                                    {"isValid", &XAttribute::IsValid, {}, "Whether it is there."},
                                    {"name", &XAttribute::Name, {}, "Its name."},
                                }};
    return set;
}

}  // namespace Tavo
