#include "tavo/extension/lua/scene_rows.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

std::vector<XScriptFunction> valueRows() {
    return {
        {"vector",
         [](XScene const&, XVector3 const& value) { return value; },
         {"value"},
         "A vector of three numbers, or of a table; zero when nothing is given."},
        {"quaternion",
         [](XScene const&, XQuaternion const& value) { return value; },
         {"value"},
         "A quaternion of four numbers x, y, z and w, or of a table; the identity when nothing is given."},
        {"matrix",
         [](XScene const&, XMatrix const& value) { return value; },
         {"value"},
         "A matrix of a table of 16 numbers, row by row; the identity when nothing is given."},
    };
}

std::vector<XScriptFunction> joined(std::initializer_list<std::vector<XScriptFunction>> themes) {
    std::vector<XScriptFunction> all;
    for (auto const& theme : themes) all.insert(all.end(), theme.begin(), theme.end());
    return all;
}

}  // namespace

XScriptSet const& SceneFunctions() {
    static XScriptSet const set{"Scene", "A document.",
                                joined({sceneDocumentRows(), scenePlaybackRows(), sceneUnparentRows(),
                                        sceneDisplayRows(), sceneTimeRows(), sceneSelectionRows(), valueRows()})};
    return set;
}

}  // namespace Tavo
