// From nodes and attributes of the graph to the objects of a database; for the files of this folder.
#pragma once
#include "tavo/objects/attribute.h"

namespace Tavo {

// The database whose graph holds the attribute; null when its graph is not one of a database.
XDatabase* databaseOf(db::Attribute const& attribute);

// The attributes of the object that something is connected to, at any depth, in the order of the node's table. Only
// what is connected is looked at.
Qelutils::Vector<XAttribute> connectedInputs(XObject const& object);
Qelutils::Vector<XAttribute> connectedOutputs(XObject const& object);

}  // namespace Tavo
