// A deletion under way; for the files of this folder. Hierarchies and chains of inputs may be of any depth: what is
// under way is kept in a list and not on the call stack.
#pragma once
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_events.h"

namespace Tavo {

struct XObject::Deletion {
    // `kind` is what engines hear of the object itself.
    explicit Deletion(XObjectEvents::Kind kind) : departures(kind) {}
    void Run(XObject const& object);

private:
    // An object between its onDelete and its end, with what goes before it: its inputs that nothing else needs, then
    // its children.
    struct Level {
        XObject object;
        Qelutils::Vector<XAttribute> inputs;
        Qelutils::Vector<XObject> children;
        std::size_t nextInput = 0, nextChild = 0;
        bool areChildrenListed = false;

        XObject next();  // invalid when there is no more
    };

    void enter(XObject object);
    void leave();

    std::vector<Level> levels;
    XObjectEvents::Departures departures;
};

}  // namespace Tavo
