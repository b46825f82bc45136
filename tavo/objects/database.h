// XDatabase: the facade over one object database, base of the two kinds of document, XScene and XSettings. It owns the
// graph (the database proper), the definitions of object types and translators, and a small cache of lookups by id.
//
// It is inert until Register and after Unregister: IsValid is false, lookups give invalid handles, and change
// operations do nothing. Edits belong into change blocks; blocks nest and only the outermost end commits, as one undo
// step and one notification. Lookups that fail log an error and give an invalid handle; nothing throws. Main thread
// only.
//
// Patterns are paths in which '*' and '?' stand for any characters of a name.
#pragma once
#include "qel/sg/scene.h"
#include "qel/sg/units.h"
#include "qel/utils/vector.h"
#include "tavo/app/word.h"
#include "tavo/objects/object.h"
#include "tavo/objects/units.h"
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Tavo {

class XDatabase;
class XDatabaseChange;
class XDisplayGroup;
class XObjectDef;
class XSceneGraph;
class XSceneGraphObserver;
class XSceneLookup;
class XSceneObject;
class XSelectionGroup;
class XTranslatorDef;

// The registrar of one origin of definitions: the core, or a plug-in.
class XModule {
public:
    explicit XModule(XDatabase& database) : _database(&database) {}

    // The database takes the definition over; a type name that is already registered keeps its first definition.
    void Register(XObjectDef* definition);
    bool Unregister(XObjectDef* definition);
    bool Unregister();  // all of this module; false, and nothing changed, while handles of one of them are in use
    XDatabase& Database() const { return *_database; }

private:
    XDatabase* _database;
};

class XDatabase {
public:
    static constexpr XWord ObjectPathSeparator = L"|", AttributePathSeparator = L".",
                           ObjectNameInternalSeparator = L"_";
    static constexpr int InvalidID = -1;
    static XDatabase& Undefined;  // without a graph

    XDatabase();
    virtual ~XDatabase();
    XDatabase(XDatabase const&) = delete;
    XDatabase& operator=(XDatabase const&) = delete;

    // ---- virtual operations, in their order ----
    virtual void Register();  // derived classes call this one first
    virtual void Unregister();
    // A new object of a registered type, named after it; invalid for an unknown type.
    virtual XObject CreateObject(std::wstring const& typeName, XObject const& parent);
    virtual XObject CreateObject(std::wstring const& typeName);
    // A typed handle on the same node, which the caller deletes; null without a definition.
    virtual XObject* CreateObject(XObject const& object) const;
    virtual XObject CreateNode(std::wstring const& nodeType, XObject const& parent);
    virtual XObject CreateNode(std::wstring const& nodeType);
    virtual std::wstring Units(int code);  // " m"; empty without units
    virtual void ConvertUnits(int code, XUnitConversionType direction, float& value);
    virtual void ConvertUnits(int code, XUnitConversionType direction, double& value);
    virtual void ConvertUnits(sg::AttributeUnit unit, XUnitConversionType direction, float& value);
    virtual void ConvertUnits(sg::AttributeUnit unit, XUnitConversionType direction, XVector3& value);
    virtual void ConvertUnits(XUnitConversionType direction, Qelutils::Vector<float>& lengths);
    virtual void ConvertUnits(XUnitConversionType direction, XMatrix& value);
    virtual void ReparentChildObjects(XObject& object);
    virtual void onSceneLoaded(XDatabaseChange const& change);
    virtual void onSceneChanged(XDatabaseChange const& change, bool transient);
    virtual void onSceneChangedPreCommit(XDatabaseChange const& change, bool transient);
    virtual void onSceneChangedPostCommit(XDatabaseChange const& change, bool transient);
    // What the renderer asks while it draws; these and the controller's notices log an error unless overridden.
    virtual bool onRequestColour(sg::Scene* scene, int viewport, sg::Node* node, float& red, float& green, float& blue,
                                 float& alpha);
    virtual bool onRequestColour(sg::Scene* scene, int viewport, sg::Node* node, int subObject, float& red,
                                 float& green, float& blue, float& alpha);
    virtual bool onRequestSelectability(sg::Scene* scene, int viewport, sg::Node* node, bool& selectable);
    virtual bool onRequestVisibility(sg::Scene* scene, int viewport, sg::Node* node, bool& visible);
    virtual bool onRequestEditMode(int& mode);
    virtual void onControllerEnter(sg::Scene* scene, int viewport, int tool, bool, bool, bool);
    virtual void onControllerExit(sg::Scene* scene, int viewport, int tool);
    virtual void onControllerCancel(sg::Scene* scene, int viewport, int tool);
    virtual void onControllerTranslation(sg::Scene* scene, XVector3 const& delta);
    virtual void onControllerRotation(sg::Scene* scene, float angle, XVector3 const& axis);
    virtual void onControllerRotation(sg::Scene* scene, XVector3 const& eulerAngles, int order);
    virtual void onControllerScaleEnter(sg::Scene* scene);
    virtual void onControllerScale(sg::Scene* scene, XVector3 const& scale);
    virtual void onControllerReportSelection(sg::Scene* scene, std::vector<int> const& items,
                                             std::vector<int> const& subItems, int mode);
    virtual void onControllerReportCamera(sg::Scene* scene, int viewport);
    virtual void reparent(XObject& object, XObject const& parent, bool flag, bool keepWorld);
    virtual void unparent(XObject& object);
    virtual bool querySupportsEditMode(XObject const& object, int mode) const;
    virtual bool queryIsCopyable(XObject const& object) const;
    virtual bool queryIsEditable(XObject const& object) const;
    virtual bool queryIsSelectable(XObject const& object) const;
    virtual bool queryIsSelected(XObject const& object) const;
    virtual bool queryIsVisible(XObject const& object) const;
    virtual void queryDisplayGroup(XObject const& object, XDisplayGroup& out) const;
    virtual void querySelectionGroups(XObject const& object, Qelutils::Vector<XSelectionGroup>& out) const;

    // ---- state ----
    bool IsValid() const { return DatabaseID() != InvalidID; }
    int DatabaseID() const;
    bool IsScene() const { return (_flags & SceneFlag) != 0; }
    bool IsSettings() const { return (_flags & SettingsFlag) != 0; }
    XSceneGraph* SceneGraph() const { return _graph.get(); }  // null while inert
    XModule& CoreModule() { return _coreModule; }
    XObjectDef* ObjectDefinition(std::wstring const& name) const;      // by object type, then by node type; or null
    void ObjectDefinitions(Qelutils::Vector<XObjectDef*>& out) const;  // in the order of the types' words
    std::map<std::wstring, XTranslatorDef*> const& Translators() const { return _translators; }  // by extension

    // ---- change blocks ----
    void BeginChangeBlock();
    void BeginChangeBlock(bool transient);
    void EndChangeBlock();
    void EndChangeBlock(std::wstring const& label);  // the label names the undo step
    void CancelChangeBlock();                        // rolls the open block back
    void CommitTransient();

    // ---- lookup ----
    XObject Object(int id) const;
    XObject Object(std::wstring const& path) const;
    bool IsObject(std::wstring const& path) const;  // a failed probe logs as well
    bool IsObjectID(int id) const;
    void Objects(Qelutils::Vector<XObject>& out) const;
    void Objects(std::wstring const& typeName, XComparisonMode mode, Qelutils::Vector<XObject>& out) const;
    void Objects(std::wstring const& pattern, Qelutils::Vector<XObject>& out) const;  // an empty one: all
    void Objects(std::vector<std::wstring> const& patterns, Qelutils::Vector<XObject>& out) const;
    XAttribute Attribute(int id) const;
    XAttribute Attribute(std::wstring const& path) const;
    static std::wstring extractNameFromPath(std::wstring const& path);

    // ---- edits of many objects; each is one change block ----
    void CopyObjects(std::vector<std::wstring> const& patterns);
    void DeleteObjects(std::wstring const& pattern);  // with their children
    void DeleteObjects(std::vector<std::wstring> const& patterns);
    void RemoveObjects(std::wstring const& pattern);  // their children stay
    void RemoveObjects(std::vector<std::wstring> const& patterns);
    void RenameObjects(std::wstring const& pattern, std::wstring const& newName);
    void RenameObjects(std::vector<std::wstring> const& patterns, std::wstring const& newName);
    void ReparentObjects(std::wstring const& pattern, std::wstring const& parentPath);
    void ReparentObjects(std::vector<std::wstring> const& patterns, std::wstring const& parentPath);
    void UnparentObjects(std::wstring const& pattern);  // the caller provides the block
    void UnparentObjects(std::vector<std::wstring> const& patterns);

protected:
    friend class XModule;
    friend class XObject;
    friend class XAttribute;

    enum Flag : unsigned { ConstructedFlag = 1, SceneFlag = 2, SettingsFlag = 4 };
    void setFlag(Flag flag) { _flags |= flag; }

    // These log what they do not find.
    sg::Node* getNode(int id) const;
    sg::Node* getNode(std::wstring const& path) const;
    db::Attribute* getAttribute(int id) const;
    db::Attribute* getAttribute(int nodeID, int index) const;
    db::Attribute* getAttribute(int nodeID, std::wstring const& name) const;
    db::Attribute* getAttribute(std::wstring const& path) const;
    db::Attribute* getAttribute(std::wstring const& nodePath, int index) const;
    db::Attribute* getAttribute(std::wstring const& nodePath, std::wstring const& name) const;
    db::Attribute* getAttribute(sg::Node* node, int index) const;
    db::Attribute* getAttribute(sg::Node* node, std::wstring const& name) const;

    // What a path pattern matches. Edits work on these handles: a path that they change would find nothing any more.
    void findMatchingObjects(std::wstring const& pattern, Qelutils::Vector<XObject>& out) const;
    Qelutils::Vector<XObject> collect(std::vector<std::wstring> const& patterns,
                                      bool (XObject::*accepts)() const) const;

    // Empties `out`; whether anything was found.
    bool findMatchingPaths(std::wstring const& pattern, std::vector<std::wstring>& out) const;
    bool findMatchingDeletableObjectPaths(std::wstring const& pattern, std::vector<std::wstring>& out) const;
    bool deleteNode(XObject const& object);
    void clearNodes();
    void repairSceneFileErrors();
    // Nothing of what happens between the two can be undone; the end counts as clean.
    void beginUnrecorded();
    void endUnrecorded(int maximumUndoSteps);

    void registerDefinition(XModule* module, XObjectDef* definition);
    bool unregisterDefinition(XObjectDef* definition);
    bool unregisterModule(XModule* module);
    void deleteDefinitions();

private:
    std::multimap<XModule*, XObjectDef*> _moduleDefinitions;
    std::map<std::wstring, XObjectDef*> _nodeDefinitions;    // by node type
    std::map<std::wstring, XObjectDef*> _objectDefinitions;  // by object type; owns
    std::map<std::wstring, XTranslatorDef*> _translators;    // by extension
    std::unique_ptr<XSceneLookup> _lookup;
    std::unique_ptr<XSceneGraphObserver> _observer;
    std::unique_ptr<XSceneGraph> _graph;
    unsigned _flags = ConstructedFlag;
    XModule _coreModule{*this};
};

// Brackets an edit. The label is held by reference and must outlive the guard.
class [[nodiscard]] XChangeBlock {
public:
    XChangeBlock(XDatabase& database, std::wstring const& label, bool transient = false) :
        _database(database), _label(label) {
        _database.BeginChangeBlock(transient);
    }
    XChangeBlock(XDatabase& database, std::wstring&& label, bool transient = false) = delete;
    ~XChangeBlock() { _database.EndChangeBlock(_label); }
    XChangeBlock(XChangeBlock const&) = delete;
    XChangeBlock& operator=(XChangeBlock const&) = delete;

private:
    XDatabase& _database;
    std::wstring const& _label;
};

}  // namespace Tavo
