#include "tavo/objects/database_change.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_def.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/settings.h"
#include <algorithm>
#include <unordered_set>

namespace Tavo {
namespace {

using Nodes = std::vector<db::Node*>;

bool isConnection(db::Node const* node) { return node->isOfType(sg::Connection::Def); }
bool holdsObject(Nodes const& nodes) { return !std::all_of(nodes.begin(), nodes.end(), isConnection); }
bool holdsConnection(Nodes const& nodes) { return std::any_of(nodes.begin(), nodes.end(), isConnection); }

db::Attribute* childOf(db::Attribute* parent, int index) {
    db::CompositeAttribute const* composite = parent ? parent->asComposite() : nullptr;
    return composite && index >= 0 ? composite->getAttribute(std::size_t(index)) : nullptr;
}

}  // namespace

// ---- single questions ----

bool XDatabaseChange::IsTypeChanged(XObjectDef* definition) const {
    return definition && _changes.hasTypeChanged(definition->NodeTypeID());
}

bool XDatabaseChange::IsObjectChanged(XObject const& object) const {
    return object.getNode() && _changes.hasChanged(object.getNode(), false, false);
}
bool XDatabaseChange::IsObjectChanged(Qelutils::Vector<XObject> const& objects) const {
    return std::any_of(objects.begin(), objects.end(), [this](auto const& object) { return IsObjectChanged(object); });
}

bool XDatabaseChange::IsNameChanged(XObject const& object) const {
    return object.getNode() && _changes.hasChanged(object.getNode()->nameAttribute(), false, false);
}
bool XDatabaseChange::IsNameChanged(Qelutils::Vector<XObject> const& objects) const {
    return std::any_of(objects.begin(), objects.end(), [this](auto const& object) { return IsNameChanged(object); });
}

bool XDatabaseChange::IsAttributeChanged(XAttribute const& attribute) const {
    return isChanged(attribute.getAttribute());
}
bool XDatabaseChange::isChanged(db::Attribute const* attribute) const {
    return attribute && _changes.hasChanged(attribute, false, false);
}

bool XDatabaseChange::IsAttributeChanged(int nodeType, int attribute) const {
    Nodes const& nodes = _changes.ChangedNodes(nodeType);
    return std::any_of(nodes.begin(), nodes.end(), [&](db::Node* node) { return isChanged(childOf(node, attribute)); });
}
bool XDatabaseChange::IsAttributeChanged(int nodeType, int attribute, int sub) const {
    Nodes const& nodes = _changes.ChangedNodes(nodeType);
    return std::any_of(nodes.begin(), nodes.end(),
                       [&](db::Node* node) { return isChanged(childOf(childOf(node, attribute), sub)); });
}
bool XDatabaseChange::IsAttributeChanged(XObjectDef* definition, int attribute) const {
    if (!definition) return false;
    auto const& types = definition->NodeTypeIDs();
    return std::any_of(types.begin(), types.end(), [&](int type) { return IsAttributeChanged(type, attribute); });
}

bool XDatabaseChange::IsSubAttributeInArrayChanged(int nodeType, int array, int sub) const {
    for (db::Node* node : _changes.ChangedNodes(nodeType)) {
        db::Attribute* const attribute = childOf(node, array);
        db::AttributeArray const* elements = attribute ? attribute->asAttributeArray() : nullptr;
        for (std::size_t i = 0; elements && i < elements->size(); ++i)
            if (isChanged(childOf(elements->getElement(i), sub))) return true;
    }
    return false;
}

bool XDatabaseChange::IsAttributeReferenceChanged() const {
    auto const& changed = _changes.ChangedAttributes();
    return std::any_of(changed.begin(), changed.end(),
                       [](db::Attribute* a) { return a->asPointer() || a->asPointerArray(); });
}
bool XDatabaseChange::IsAttributeTypeChanged(unsigned int type) const {
    auto const& changed = _changes.ChangedAttributes();
    return std::any_of(changed.begin(), changed.end(),
                       [&](db::Attribute* a) { return unsigned(a->getAttributeType()) == type; });
}

bool XDatabaseChange::IsAttributeDeleted() const { return !_changes.RemovedAttributes().empty(); }
bool XDatabaseChange::IsObjectCreated() const { return holdsObject(_changes.AddedNodes()); }
bool XDatabaseChange::IsObjectDeleted() const { return holdsObject(_changes.RemovedNodes()); }
bool XDatabaseChange::IsObjectReparented() const { return holdsObject(_changes.ReparentedNodes()); }
bool XDatabaseChange::IsConnectionCreated() const { return holdsConnection(_changes.AddedNodes()); }
bool XDatabaseChange::IsConnectionDeleted() const { return holdsConnection(_changes.RemovedNodes()); }

// ---- lists ----

namespace {

void assign(Qelutils::Vector<XObject>& out, Nodes const& nodes) { out.assign(nodes.begin(), nodes.end()); }

}  // namespace

void XDatabaseChange::CreatedObjects(Qelutils::Vector<XObject>& out) const { assign(out, _changes.AddedNodes()); }
void XDatabaseChange::DeletedObjects(Qelutils::Vector<XObject>& out) const { assign(out, _changes.RemovedNodes()); }
void XDatabaseChange::RenamedObjects(Qelutils::Vector<XObject>& out) const { assign(out, _changes.RenamedNodes()); }
void XDatabaseChange::ReparentedObjects(Qelutils::Vector<XObject>& out) const {
    assign(out, _changes.ReparentedNodes());
}

void XDatabaseChange::ModifiedObjects(XObjectDef* definition, Qelutils::Vector<XObject>& out) const {
    if (!definition) return;
    std::unordered_set<int> present;
    for (XObject const& object : out) present.insert(object.ObjectID());
    for (int type : definition->NodeTypeIDs())
        for (db::Node* node : _changes.ChangedNodes(type))
            if (present.insert(node->getID()).second) out.emplace_back(node);
}

// ---- the views of the two kinds of document ----

XSceneChange::XSceneChange(XScene& scene, db::ChangeSet const& changes) :
    XDatabaseChange(scene, changes), _scene(scene) {}

bool XSceneChange::IsSceneSettingsChange() const { return IsObjectChanged(_scene.SceneSettings()); }
bool XSceneChange::IsTimeChange() const { return IsAttributeChanged(_scene.SceneSettings().Time()); }

XSettingsChange::XSettingsChange(XSettings& settings, db::ChangeSet const& changes) :
    XDatabaseChange(settings, changes), _settings(settings) {}

}  // namespace Tavo
