// Playback, stepping, and moving through the history. None of them is a step of the history itself.
#pragma once
#include "tavo/commands/command_pattern.h"

namespace Tavo {

TAVO_DIRECT_COMMAND(XPlay, L"Play", L"Plays forward from the current time.")
TAVO_DIRECT_COMMAND(XPlayReverse, L"PlayReverse", L"Plays backward from the current time.")
TAVO_DIRECT_COMMAND(XPlayToggle, L"PlayToggle", L"Plays, or stops what is playing or simulating.")
TAVO_DIRECT_COMMAND(XStop, L"Stop", L"Stops playback or simulation.")
TAVO_DIRECT_COMMAND(XGoToFirstFrame, L"GoToFirstFrame", L"Goes to the start of the playback range.")
TAVO_DIRECT_COMMAND(XGoToPreviousFrame, L"GoToPreviousFrame", L"Goes one whole frame back, around the playback range.")
TAVO_DIRECT_COMMAND(XGoToNextFrame, L"GoToNextFrame", L"Goes one whole frame on, around the playback range.")
TAVO_DIRECT_COMMAND(XGoToLastFrame, L"GoToLastFrame", L"Goes to the end of the playback range.")
TAVO_DIRECT_COMMAND(XUndo, L"Undo", L"Takes the last step back.")
TAVO_DIRECT_COMMAND(XRedo, L"Redo", L"Makes the step again that was taken back last.")

}  // namespace Tavo
