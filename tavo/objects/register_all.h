// Registers definitions of the core with a document, in the order in which they are listed.
#pragma once
#include "tavo/objects/database.h"

namespace Tavo {

template<class... Definitions> void registerAll(XDatabase& database) {
    (database.CoreModule().Register(new Definitions), ...);
}

}  // namespace Tavo
