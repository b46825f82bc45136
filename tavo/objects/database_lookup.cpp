// Finding objects and attributes by id, path, pattern and type.
#include "tavo/app/application.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/database.h"
#include "tavo/objects/scene_graph.h"

namespace Tavo {
namespace {

template<class Target> Target* foundAt(Target* target, std::wstring const& path) {
    if (!target) XApplication::Instance().LogError(L"Unable to find a node with the path \"%s\"", path);
    return target;
}

template<class Target> Target* foundAt(Target* target, int id) {
    if (!target) XApplication::Instance().LogError(L"Unable to find a node with the id \"%d\"", id);
    return target;
}

std::wstring pathOf(std::wstring const& nodePath, std::wstring const& name) {
    return nodePath + XDatabase::AttributePathSeparator + name;
}

}  // namespace

// ---- one ----

sg::Node* XDatabase::getNode(int id) const { return _lookup ? foundAt(_lookup->Node(id), id) : nullptr; }
sg::Node* XDatabase::getNode(std::wstring const& path) const {
    return _graph ? foundAt(_graph->Node(path), path) : nullptr;
}

db::Attribute* XDatabase::getAttribute(int id) const { return _lookup ? foundAt(_lookup->Attribute(id), id) : nullptr; }
db::Attribute* XDatabase::getAttribute(int nodeID, int index) const { return getAttribute(getNode(nodeID), index); }
db::Attribute* XDatabase::getAttribute(int nodeID, std::wstring const& name) const {
    return getAttribute(getNode(nodeID), name);
}
db::Attribute* XDatabase::getAttribute(std::wstring const& path) const {
    return _graph ? foundAt(_graph->Attribute(path), path) : nullptr;
}
db::Attribute* XDatabase::getAttribute(std::wstring const& nodePath, int index) const {
    return getAttribute(getNode(nodePath), index);
}
db::Attribute* XDatabase::getAttribute(std::wstring const& nodePath, std::wstring const& name) const {
    return _graph ? foundAt(_graph->Attribute(nodePath, name), pathOf(nodePath, name)) : nullptr;
}
db::Attribute* XDatabase::getAttribute(sg::Node* node, int index) const {
    if (!node) return nullptr;
    db::Attribute* const attribute = index < 0 ? nullptr : node->getAttribute(std::size_t(index));
    return foundAt(attribute, pathOf(node->getPath(), std::to_wstring(index)));
}
db::Attribute* XDatabase::getAttribute(sg::Node* node, std::wstring const& name) const {
    return node ? foundAt(node->findAttribute(name), pathOf(node->getPath(), name)) : nullptr;
}

XObject XDatabase::Object(int id) const { return getNode(id); }
XObject XDatabase::Object(std::wstring const& path) const { return getNode(path); }
bool XDatabase::IsObject(std::wstring const& path) const { return Object(path).IsValid(); }
bool XDatabase::IsObjectID(int id) const { return Object(id).IsValid(); }
XAttribute XDatabase::Attribute(int id) const { return getAttribute(id); }
XAttribute XDatabase::Attribute(std::wstring const& path) const { return getAttribute(path); }

std::wstring XDatabase::extractNameFromPath(std::wstring const& path) {
    return path.substr(path.rfind(ObjectPathSeparator) + 1);  // the whole path without a separator
}

// ---- many ----

void XDatabase::Objects(Qelutils::Vector<XObject>& out) const {
    out.clear();
    std::vector<sg::Node*> nodes;
    if (_graph) _graph->Nodes(nodes);
    for (sg::Node* node : nodes)
        if (!node->isNotAnObject()) out.emplace_back(node);
}

void XDatabase::Objects(std::wstring const& typeName, XComparisonMode mode, Qelutils::Vector<XObject>& out) const {
    Objects(out);
    std::erase_if(out, [&](XObject const& object) { return !object.Matches(typeName, mode); });
}

void XDatabase::Objects(std::wstring const& pattern, Qelutils::Vector<XObject>& out) const {
    pattern.empty() ? Objects(out) : findMatchingObjects(pattern, out);
}

void XDatabase::Objects(std::vector<std::wstring> const& patterns, Qelutils::Vector<XObject>& out) const {
    if (patterns.empty()) return Objects(out);
    out.clear();
    Qelutils::Vector<XObject> matches;
    for (std::wstring const& pattern : patterns) {
        Objects(pattern, matches);
        out.insert(out.end(), matches.begin(), matches.end());
    }
}

void XDatabase::findMatchingObjects(std::wstring const& pattern, Qelutils::Vector<XObject>& out) const {
    std::vector<sg::Node*> nodes;
    if (_graph) _graph->Nodes(pattern, nodes);
    out.assign(nodes.begin(), nodes.end());
}

bool XDatabase::findMatchingPaths(std::wstring const& pattern, std::vector<std::wstring>& out) const {
    Qelutils::Vector<XObject> matches;
    findMatchingObjects(pattern, matches);
    out.clear();
    for (XObject const& match : matches) out.push_back(match.Path());
    return !out.empty();
}

bool XDatabase::findMatchingDeletableObjectPaths(std::wstring const& pattern, std::vector<std::wstring>& out) const {
    Qelutils::Vector<XObject> matches;
    findMatchingObjects(pattern, matches);
    out.clear();
    for (XObject const& match : matches)
        if (match.SupportsDeletion()) out.push_back(match.Path());
    return !out.empty();
}

}  // namespace Tavo
