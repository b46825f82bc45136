// Choosing a tool, its axes, the grain of editing, and what the view shows.
#pragma once
#include "tavo/commands/command_pattern.h"

namespace Tavo {

TAVO_COMMAND(XActivateSelectTool, L"ActivateSelectTool", L"Makes the select tool the active one.")
TAVO_COMMAND(XActivateMoveTool, L"ActivateMoveTool", L"Makes the move tool the active one.")
TAVO_COMMAND(XActivateRotateTool, L"ActivateRotateTool", L"Makes the rotate tool the active one.")
TAVO_COMMAND(XActivateScaleTool, L"ActivateScaleTool", L"Makes the scale tool the active one.")
TAVO_COMMAND(XActivateTimingTool, L"ActivateTimingTool", L"Makes the timing tool the active one.")
TAVO_COMMAND(XToggleToolAxis, L"ToggleToolAxis", L"Turns the active tool between the axes of the world and the object.")
TAVO_COMMAND(XToggleSelectedObjectSubObjectEditMode_1, L"ToggleSelectedObjectSubObjectEditMode_1",
             L"Edits the selected object's parts of kind 1, or the object again.")
TAVO_COMMAND(XToggleSelectedObjectSubObjectEditMode_2, L"ToggleSelectedObjectSubObjectEditMode_2",
             L"Edits the selected object's parts of kind 2, or the object again.")
TAVO_COMMAND(XToggleSelectedObjectSubObjectEditMode_3, L"ToggleSelectedObjectSubObjectEditMode_3",
             L"Edits the selected object's parts of kind 3, or the object again.")
TAVO_COMMAND(XToggleSelectedObjectSubObjectEditMode_4, L"ToggleSelectedObjectSubObjectEditMode_4",
             L"Edits the selected object's parts of kind 4, or the object again.")
TAVO_COMMAND(XZoomToFit, L"ZoomToFit", L"Brings what is selected, or everything, into view.")

}  // namespace Tavo
