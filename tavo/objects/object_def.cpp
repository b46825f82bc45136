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

int XObjectDef::NodeTypeID() const {
    db::NodeDef const* def = nodeDef(NodeType());
    return def ? def->getTypeID() : -1;
}

// Node types are only ever added, so a list that has looked at all of them is complete.
Qelutils::Vector<int> const& XObjectDef::NodeTypeIDs() const {
    db::NodeDef const* const def = nodeDef(NodeType());
    auto const& all = db::Registry::getInstance().all();
    for (; def && _nodeTypesSeen < all.size(); ++_nodeTypesSeen)
        if (all[_nodeTypesSeen]->isOfType(*def)) _nodeTypeIDs.push_back(all[_nodeTypesSeen]->getTypeID());
    return _nodeTypeIDs;
}

bool XObjectDef::SupportsType(std::wstring_view objectType) const {
    return std::find(_objectTypes.begin(), _objectTypes.end(), objectType) != _objectTypes.end();
}

}  // namespace Tavo
