#include "tavo/extension/lua/script_sets.h"
#include "qel/utils/text.h"
#include <algorithm>

namespace Tavo {

std::vector<XScriptSet const*> const& AllScriptSets() {
    static std::vector<XScriptSet const*> const sets{
        &AppFunctions(),       &SceneFunctions(),   &ObjectFunctions(),     &RenderObjectFunctions(),
        &TransformFunctions(), &JointFunctions(),   &IKHandleFunctions(),   &TrajectoryFunctions(),
        &KeyframeFunctions(),  &Vector3Functions(), &QuaternionFunctions(), &MatrixFunctions(),
        &AttributeFunctions(),
    };
    return sets;
}

XScriptSet const* FunctionsOfType(std::wstring_view type) {
    std::string const word = Qelutils::toUtf8(type);
    auto const& sets = AllScriptSets();
    auto const found = std::find_if(sets.begin() + 2, sets.end() - 1, [&](auto set) { return set->table == word; });
    return found == sets.end() - 1 ? nullptr : *found;
}

}  // namespace Tavo
