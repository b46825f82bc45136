// An object's place among the others.
#include "tavo/objects/database.h"
#include "tavo/objects/object.h"
#include "tavo/objects/scene_graph.h"
#include <algorithm>

namespace Tavo {
namespace {

// Where the node is a child: its primary parent, or the database for one at the top; null for a connection.
db::Node* familyOf(sg::Node const* node) {
    if (!node || node->isNotAnObject()) return nullptr;
    db::Node* const parent = node->db::Node::getParent();
    return parent ? parent : node->getDatabase();
}

}  // namespace

XObject XObject::Parent() const { return hasLiveNode() ? XObject(getNode()->getParent()) : XObject(); }
bool XObject::HasParent() const { return Parent().IsValid(); }

XObject& XObject::SetParent(XObject const& parent) { return SetParent(parent, false, true); }
XObject& XObject::SetParent(XObject const& parent, bool flag) { return SetParent(parent, flag, true); }
XObject& XObject::SetParent(XObject const& parent, bool flag, bool keepWorld) {
    if (database()) database()->reparent(*this, parent, flag, keepWorld);
    return *this;
}
XObject& XObject::SetParent(std::wstring const& path) {
    if (!database()) return *this;
    XObject const parent = database()->Object(path);
    return parent.IsValid() ? SetParent(parent) : *this;
}

XObject& XObject::Unparent() {
    if (database()) database()->unparent(*this);
    return *this;
}

void XObject::reparentChildObjectsTo(XObject const& target) {
    if (!target.IsValid()) return;
    Qelutils::Vector<XObject> children;
    ChildObjects(children);
    for (XObject& child : children)
        if (child.IsValid()) Database().reparent(child, target, false, true);
}

// ---- children ----

XObject XObject::Child(int index) const {
    return hasLiveNode() && index >= 0 ? XObject(getNode()->getChild(std::size_t(index))) : XObject();
}
XObject XObject::Child(std::wstring const& name) const {
    return hasLiveNode() ? XObject(getNode()->findChild(name)) : XObject();
}
int XObject::ChildCount() const { return hasLiveNode() ? int(getNode()->getChildCount()) : 0; }
bool XObject::HasChildObjects() const { return ChildCount() > 0; }

void XObject::ChildObjects(Qelutils::Vector<XObject>& out) const {
    out.clear();
    for (int i = 0; i < ChildCount(); ++i) out.push_back(Child(i));
}
void XObject::ChildObjects(Qelutils::Vector<XObject>& out, std::wstring const& type) const {
    ChildObjects(out, type, IsObjectType);
}
void XObject::ChildObjects(Qelutils::Vector<XObject>& out, std::wstring const& type, XComparisonMode mode) const {
    ChildObjects(out);
    std::erase_if(out, [&](XObject const& child) { return !child.Matches(type, mode); });
}

void XObject::DescendantObjects(Qelutils::Vector<XObject>& out) const {
    out.clear();
    if (!hasLiveNode()) return;
    std::vector<db::Node*> nodes;
    getNode()->getDescendents(nodes);
    out.assign(nodes.begin(), nodes.end());
}
void XObject::DescendantObjects(Qelutils::Vector<XObject>& out, std::wstring const& type) const {
    DescendantObjects(out, type, IsObjectType);
}
void XObject::DescendantObjects(Qelutils::Vector<XObject>& out, std::wstring const& type, XComparisonMode mode) const {
    DescendantObjects(out, std::vector<std::wstring>{type}, mode);
}
void XObject::DescendantObjects(Qelutils::Vector<XObject>& out, std::vector<std::wstring> const& types,
                                XComparisonMode mode) const {
    DescendantObjects(out);
    std::erase_if(out, [&](XObject const& object) {
        return std::none_of(types.begin(), types.end(), [&](auto const& type) { return object.Matches(type, mode); });
    });
}

XObject XObject::FindChildObject(std::wstring const& type, XComparisonMode mode) const {
    for (int i = 0; i < ChildCount(); ++i)
        if (XObject child = Child(i); child.Matches(type, mode)) return child;
    return {};
}

// ---- siblings ----

int XObject::SiblingCount() const {
    db::Node const* family = hasLiveNode() ? familyOf(getNode()) : nullptr;
    return family ? int(family->getChildCount()) - 1 : 0;
}

void XObject::SiblingObjects(Qelutils::Vector<XObject>& out) const {
    out.clear();
    db::Node const* family = hasLiveNode() ? familyOf(getNode()) : nullptr;
    for (std::size_t i = 0; family && i < family->getChildCount(); ++i)
        if (family->getChild(i) != getNode()) out.push_back(family->getChild(i));
}

XObject XObject::Next() const {
    db::Node const* family = hasLiveNode() ? familyOf(getNode()) : nullptr;
    if (!family) return *this;
    db::Node* const next = getNode()->nextSibling();
    return next ? next : family->firstChild();
}

XObject XObject::Previous() const {
    db::Node const* family = hasLiveNode() ? familyOf(getNode()) : nullptr;
    if (!family) return *this;
    db::Node* const previous = getNode()->previousSibling();
    return previous ? previous : family->lastChild();
}

// ---- ancestors ----

bool XObject::IsParentOf(XObject const& other) const {
    int distance;
    return IsParentOf(other, distance);
}
bool XObject::IsParentOf(XObject const& other, int& distance) const {
    distance = 0;
    if (!hasLiveNode() || !other.hasLiveNode()) return false;
    int steps = 1;
    for (sg::Node const* n = other.getNode()->getParent(); n; n = n->getParent(), ++steps)
        if (n == getNode()) return distance = steps, true;
    return false;
}
bool XObject::IsChildOf(XObject const& other) const { return other.IsParentOf(*this); }
bool XObject::IsChildOf(XObject const& other, int& distance) const { return other.IsParentOf(*this, distance); }

XObject XObject::FindParentObject(std::wstring const& type, XComparisonMode mode) const {
    for (XObject up = Parent(); up.IsValid(); up = up.Parent())
        if (up.Matches(type, mode)) return up;
    return {};
}

XObject XObject::FindAncestor(std::wstring const& type, XComparisonMode mode) const {
    XObject found;
    for (XObject up = Parent(); up.IsValid(); up = up.Parent())
        if (up.Matches(type, mode)) found = up;
    return found;
}

}  // namespace Tavo
