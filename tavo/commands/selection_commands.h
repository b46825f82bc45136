// What is selected. Each is one call of the scene's selection.
#pragma once
#include "tavo/commands/command_pattern.h"

namespace Tavo {

TAVO_COMMAND(XSelectAll, L"SelectAll", L"Selects all transforms and shapes.")
TAVO_COMMAND(XClearSelection, L"ClearSelection", L"Selects nothing.")
TAVO_COMMAND(XSelectParent, L"SelectParent", L"Selects the parents of the selected objects.")
TAVO_COMMAND(XSelectChild, L"SelectChild", L"Selects the first children of the selected objects.")
TAVO_COMMAND(XSelectPrevious, L"SelectPrevious", L"Selects the previous siblings of the selected objects.")
TAVO_COMMAND(XSelectNext, L"SelectNext", L"Selects the next siblings of the selected objects.")

}  // namespace Tavo
