#include "tavo/objects/object_def.h"
#include "qel/db/database.h"
#include "qel/sg/node.h"
#include "tavo/objects/object.h"
#include <algorithm>

namespace Tavo {
namespace {

db::NodeDef const* nodeDef(std::wstring const& classID) {
    return db::Registry::getInstance().getNodeDef(L"sg", classID);
}

std::wstring const& lastOf(std::vector<std::wstring> const& names) {
    return names.empty() ? db::EmptyString() : names.back();
}

}  // namespace

XObjectDef::XObjectDef() : _nodeTypes{sg::Node::ClassID}, _objectTypes{XObject::TypeID} {}

std::wstring const& XObjectDef::ObjectType() const { return lastOf(_objectTypes); }
std::wstring const& XObjectDef::NodeType() const { return lastOf(_nodeTypes); }

// A class is older than those derived from it, and so the first in their list.
int XObjectDef::NodeTypeID() const {
    auto const& ids = NodeTypeIDs();
    return ids.empty() ? -1 : ids.front();
}

// Node types are only ever added, so a list that has looked at all of them is complete.
Qelutils::Vector<int> const& XObjectDef::NodeTypeIDs() const {
    auto const& all = db::Registry::getInstance().all();
    if (_nodeTypesSeen == all.size()) return _nodeTypeIDs;
    db::NodeDef const* const def = nodeDef(NodeType());
    for (; def && _nodeTypesSeen < all.size(); ++_nodeTypesSeen)
        if (all[_nodeTypesSeen]->isOfType(*def)) _nodeTypeIDs.push_back(all[_nodeTypesSeen]->getTypeID());
    return _nodeTypeIDs;
}

bool XObjectDef::SupportsType(std::wstring_view objectType) const {
    return std::find(_objectTypes.begin(), _objectTypes.end(), objectType) != _objectTypes.end();
}

}  // namespace Tavo
