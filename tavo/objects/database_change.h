// Views of one commit, as observers get them. They copy nothing, are made anew for each notification and live only for
// its time. XObject lists hold handles; a removed object's handle is invalid but has its id.
#pragma once
#include "qel/db/change_set.h"
#include "qel/utils/vector.h"

namespace Tavo {

class XAttribute;
class XDatabase;
class XObject;
class XObjectDef;
class XScene;
class XSettings;

class XDatabaseChange {
public:
    XDatabaseChange(XDatabase& database, db::ChangeSet const& changes) : _database(database), _changes(changes) {}
    virtual ~XDatabaseChange() = default;

    XDatabase& Database() const { return _database; }
    db::ChangeSet const& ChangeSet() const { return _changes; }

    bool IsTypeChanged(XObjectDef* definition) const;   // of its own node type; false for null
    bool IsObjectChanged(XObject const& object) const;  // not counting children and connections
    bool IsObjectChanged(Qelutils::Vector<XObject> const& objects) const;
    bool IsNameChanged(XObject const& object) const;
    bool IsNameChanged(Qelutils::Vector<XObject> const& objects) const;
    bool IsAttributeChanged(XAttribute const& attribute) const;
    bool IsAttributeChanged(int nodeType, int attribute) const;
    bool IsAttributeChanged(int nodeType, int attribute, int sub) const;
    bool IsAttributeChanged(XObjectDef* definition, int attribute) const;  // of its node type or a derived one
    bool IsAttributeReferenceChanged() const;
    bool IsAttributeTypeChanged(unsigned int type) const;  // a db::AttributeType
    bool IsSubAttributeInArrayChanged(int nodeType, int array, int sub) const;
    bool IsAttributeDeleted() const;
    bool IsObjectCreated() const;  // connections do not count as objects here
    bool IsObjectDeleted() const;
    bool IsObjectReparented() const;
    bool IsConnectionCreated() const;
    bool IsConnectionDeleted() const;
    // Each empties `out`; connections are included.
    void CreatedObjects(Qelutils::Vector<XObject>& out) const;
    void DeletedObjects(Qelutils::Vector<XObject>& out) const;
    void RenamedObjects(Qelutils::Vector<XObject>& out) const;
    void ReparentedObjects(Qelutils::Vector<XObject>& out) const;
    // Of the definition's node type or a derived one; added to `out`, each object once.
    void ModifiedObjects(XObjectDef* definition, Qelutils::Vector<XObject>& out) const;

private:
    bool isChanged(db::Attribute const* attribute) const;

    XDatabase& _database;
    db::ChangeSet const& _changes;
};

class XSceneChange : public XDatabaseChange {
public:
    XSceneChange(XScene& scene, db::ChangeSet const& changes);

    XScene& Scene() const { return _scene; }
    // Defined on the interaction floor.
    bool IsSelectionChange() const;
    bool IsSceneSettingsChange() const;
    bool IsToolChange() const;
    bool IsTimeChange() const;
    bool IsSelectedObjectChanged() const;

private:
    XScene& _scene;
};

class XSettingsChange : public XDatabaseChange {
public:
    XSettingsChange(XSettings& settings, db::ChangeSet const& changes);

    XSettings& Settings() const { return _settings; }

private:
    XSettings& _settings;
};

}  // namespace Tavo
