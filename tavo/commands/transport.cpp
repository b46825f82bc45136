#include "tavo/commands/transport.h"
#include "tavo/objects/scene.h"

namespace Tavo {

void XPlay::onRun() { Scene().Play(); }
void XPlayReverse::onRun() { Scene().PlayReverse(); }
void XPlayToggle::onRun() {
    bool const isRunning = Scene().IsPlaying() || Scene().IsSimulating();
    isRunning ? Scene().Stop() : Scene().Play();
}
void XStop::onRun() { Scene().Stop(); }
void XGoToFirstFrame::onRun() { Scene().GoToFirstFrame(); }
void XGoToPreviousFrame::onRun() { Scene().GoToPreviousFrame(); }
void XGoToNextFrame::onRun() { Scene().GoToNextFrame(); }
void XGoToLastFrame::onRun() { Scene().GoToLastFrame(); }
void XUndo::onRun() { Scene().Undo(); }
void XRedo::onRun() { Scene().Redo(); }

}  // namespace Tavo
