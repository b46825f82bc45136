#include "tavo/commands/selection_commands.h"
#include "tavo/interaction/selection.h"
#include "tavo/objects/scene.h"

namespace Tavo {

void XSelectAll::onRun() { Scene().Selection().SelectAll(); }
void XClearSelection::onRun() { Scene().Selection().Clear(); }
void XSelectParent::onRun() { Scene().Selection().SelectParent(); }
void XSelectChild::onRun() { Scene().Selection().SelectChild(); }
void XSelectPrevious::onRun() { Scene().Selection().SelectPrevious(); }
void XSelectNext::onRun() { Scene().Selection().SelectNext(); }

}  // namespace Tavo
