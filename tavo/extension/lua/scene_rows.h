// The functions of scenes by theme, each list in its order; scene_functions.cpp joins them.
#pragma once
#include "tavo/extension/lua/script_function.h"

namespace Tavo {

std::vector<XScriptFunction> sceneDocumentRows();
std::vector<XScriptFunction> scenePlaybackRows();
std::vector<XScriptFunction> sceneUnparentRows();
std::vector<XScriptFunction> sceneDisplayRows();
std::vector<XScriptFunction> sceneTimeRows();
std::vector<XScriptFunction> sceneSelectionRows();

}  // namespace Tavo
