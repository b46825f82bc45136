// XObject: a value handle on a node of the object database. It is small, owns nothing, allocates nothing and may go
// stale: when its node is removed it reads invalid, an undo that brings the node back makes it valid again, and when
// the node is destroyed it is invalid for good. Identity is the node's id, which survives removal and undo.
//
// An operation on an invalid handle does nothing and yields an invalid handle, false or an empty value. Operations that
// change the document expect an open change block when they are to be one undo step. Nothing throws.
//
// A plain XObject behaves like its true type where it matters (deletion, renaming, initialisation): those operations
// make the typed handle for the call through the type's definition.
#pragma once
#include "qel/sg/node.h"
#include "qel/utils/vector.h"
#include "tavo/app/word.h"
#include <string>
#include <string_view>
#include <vector>

namespace Tavo {

class XAnimation;
class XAttribute;
class XCharacter;
class XDatabase;
class XDisplayGroup;
class XMatrix;
class XObjectDef;
class XScene;
class XSelectionGroup;
class XVector3;

// How a search compares types.
enum XComparisonMode : int {
    IsObjectType = 0,        // the most derived type alone
    SupportsObjectType = 1,  // any type that the object derives from
};

// Constructs a class-level invalid handle: a constant, made when the program is loaded, which no count includes.
struct XUndefined {};

// Storage of such a handle. It is never destroyed, so that it serves until the very end of the program.
template<class Object> union XUndefinedStorage {
    constexpr XUndefinedStorage() : value(XUndefined{}) {}
    ~XUndefinedStorage() {}
    Object value;
};
namespace detail {
template<class Object> inline XUndefinedStorage<Object> undefined;
}

class XObject {
public:
    static constexpr XWord TypeID = L"Object";
    static constexpr int InvalidID = -1;
    static XObject const& Undefined;

    XObject() { ++_count; }
    constexpr XObject(XUndefined) {}
    XObject(sg::Node* node);
    XObject(db::Node* node);
    // Of a node that is known to be one of this database, and not the database itself.
    XObject(XDatabase const& database, db::Node& node) : _database(const_cast<XDatabase*>(&database)) {
        _node.setAnchor(node.getAnchor());
        ++_count;
    }
    XObject(XObject const& other) : _database(other._database), _node(other._node) { ++_count; }
    XObject& operator=(XObject const& other);  // then calls onConstruct, so that cached members are rebuilt
    virtual ~XObject() { --_count; }
    // The handles alive, those of derived types included, plus one for Undefined.
    static int ObjectRefCount() { return _count; }
    static XObjectDef& Definition();

    // ---- identity ----
    int ObjectID() const;  // of the node, also while it is removed; InvalidID without a node
    bool IsValid() const { return isValid(); }
    sg::Node* getNode() const { return _node.getRef(); }  // null without a node; a removed one is still returned
    XDatabase& Database() const;                          // XDatabase::Undefined without one
    bool Is(XObject const& other) const { return *this == other; }
    bool operator==(XObject const& other) const { return _node.getRef() == other._node.getRef(); }
    bool operator!=(XObject const& other) const { return !(*this == other); }
    bool operator<(XObject const& other) const { return ObjectID() < other.ObjectID(); }

    // ---- type ----
    XObjectDef* ObjectDefinition() const;  // of the true type, or of this handle's class; null when unknown
    std::wstring ObjectType() const;       // an error is logged when a valid object has no type name
    std::vector<std::wstring>& ObjectTypes(std::vector<std::wstring>& out) const;  // from "Object" down
    bool IsType(std::wstring_view type) const;
    bool SupportsType(std::wstring_view type) const;
    bool Matches(std::wstring_view type, XComparisonMode mode) const;
    int SgNodeTypeID() const;
    std::wstring ObjectDisplayType() const;  // "Mesh Instance"
    static std::wstring convertToDisplayName(std::wstring const& text);

    // ---- names ----
    std::wstring Name() const;
    std::wstring DisplayName() const;
    std::wstring Path() const;  // from the root down, joined with "|"
    // Names are made unique among the siblings with a number. `force` skips the question whether renaming is supported.
    XObject& SetName(std::wstring const& name);
    XObject& SetName(std::wstring const& name, bool force);

    // ---- hierarchy; what a transform keeps of its place in the world is the scene's matter ----
    XObject Parent() const;
    virtual bool HasParent() const;
    XObject& SetParent(XObject const& parent);
    XObject& SetParent(XObject const& parent, bool flag);
    XObject& SetParent(XObject const& parent, bool flag, bool keepWorld);
    XObject& SetParent(std::wstring const& path);
    XObject& Unparent();
    XObject Child(int index) const;
    XObject Child(std::wstring const& name) const;
    int ChildCount() const;
    bool HasChildObjects() const;
    // Each form empties `out` and fills it; descendants come depth first, parents before children.
    void ChildObjects(Qelutils::Vector<XObject>& out) const;
    void ChildObjects(Qelutils::Vector<XObject>& out, std::wstring const& type) const;  // of exactly that type
    void ChildObjects(Qelutils::Vector<XObject>& out, std::wstring const& type, XComparisonMode mode) const;
    void DescendantObjects(Qelutils::Vector<XObject>& out) const;
    void DescendantObjects(Qelutils::Vector<XObject>& out, std::wstring const& type) const;
    void DescendantObjects(Qelutils::Vector<XObject>& out, std::wstring const& type, XComparisonMode mode) const;
    void DescendantObjects(Qelutils::Vector<XObject>& out, std::vector<std::wstring> const& types,
                           XComparisonMode mode) const;
    // Without this object. Those that stand at the top are siblings of one another.
    int SiblingCount() const;
    void SiblingObjects(Qelutils::Vector<XObject>& out) const;
    XObject Next() const;  // wraps around
    XObject Previous() const;
    bool IsParentOf(XObject const& other) const;  // at any distance
    bool IsParentOf(XObject const& other, int& distance) const;
    bool IsChildOf(XObject const& other) const;
    bool IsChildOf(XObject const& other, int& distance) const;
    XObject FindParentObject(std::wstring const& type, XComparisonMode mode) const;      // the nearest
    virtual XObject FindAncestor(std::wstring const& type, XComparisonMode mode) const;  // the farthest
    XObject FindChildObject(std::wstring const& type, XComparisonMode mode) const;
    XCharacter Character() const;  // itself or the nearest above; defined on the kinematics floor

    // ---- attributes; an unknown name or index gives an invalid handle ----
    XAttribute Attribute(int index) const;
    XAttribute Attribute(std::wstring const& name) const;
    bool HasAttribute(std::wstring const& name) const;
    int AttributeCount() const;
    void Attributes(Qelutils::Vector<XAttribute>& out) const;
    void AttributeNames(Qelutils::Vector<std::wstring>& out) const;
    void AttributePaths(Qelutils::Vector<std::wstring>& out) const;
    bool HasInputAttributes() const;
    bool HasOutputAttributes() const;
    void CustomAttributes(Qelutils::Vector<XAttribute>& out) const;
    int CustomAttributeCount() const;
    bool HasCustomAttributes() const;
    XAttribute AddBooleanAttribute(std::wstring const& name, bool initial = false, bool isArray = false);
    XAttribute AddFloatAttribute(std::wstring const& name);
    XAttribute AddFloatAttribute(std::wstring const& name, float initial, float minimum, float maximum,
                                 bool isArray = false);
    XAttribute AddIntegerAttribute(std::wstring const& name);
    XAttribute AddIntegerAttribute(std::wstring const& name, int initial, int minimum, int maximum,
                                   bool isArray = false);
    XAttribute AddStringAttribute(std::wstring const& name, std::wstring const& initial = {}, bool isArray = false);
    XAttribute AddVectorAttribute(std::wstring const& name);
    XAttribute AddVectorAttribute(std::wstring const& name, XVector3 const& initial, bool isArray = false);
    XAttribute AddMatrixAttribute(std::wstring const& name);
    XAttribute AddMatrixAttribute(std::wstring const& name, XMatrix const& initial, bool isArray = false);

    // ---- graph ----
    void InputObjects(Qelutils::Vector<XObject>& out) const;
    void OutputObjects(Qelutils::Vector<XObject>& out) const;
    void ConnectedObjects(Qelutils::Vector<XObject>& out) const;
    XObject& DisconnectInputAttributes();
    XObject& DisconnectOutputAttributes();
    XAnimation Animation(int attribute) const;  // the curve that feeds the attribute

    // ---- life ----
    XObject& Initialize();  // attributes to the defaults of the true type
    XObject Copy();         // named after this object with "_copy"
    XObject Copy(std::wstring const& name);
    XObject CreateObject(std::wstring const& typeName);  // a new object in the same database
    XObject* CreateObject() const;                       // a handle of the true type, which the caller deletes; or null
    XObject* CreateObject(XDatabase* database) const;    // the same, the type looked up in that database
    void Delete();                                       // with its inputs that nothing else needs, and its children
    void Remove();                                       // alone: its children move to its parent
    XObject& DeleteChild(std::wstring const& name);
    XObject& DeleteChild(int index);
    XObject& DeleteChildObjects();
    void DeleteIfUnconnected();
    void DeleteInputObjects();
    bool IsEditable() const;
    bool IsCopyable() const;
    bool SupportsChildObjects() const { return dynamicSupportsChildObjects(); }
    bool SupportsDeletion() const { return dynamicSupportsDeletion(); }
    bool SupportsRenaming() const { return dynamicSupportsRenaming(); }
    bool SupportsReparenting() const { return dynamicSupportsReparenting(); }
    bool SupportsEditMode(int mode) const;

    // ---- what a type overrides ----
    virtual XObject copy(std::wstring const& name);
    virtual XObjectDef* definition() const;
    virtual bool isValid() const;
    virtual bool supportsChildObjects() const { return true; }
    virtual bool supportsDeletion() const { return true; }
    virtual bool supportsRenaming() const { return true; }
    virtual bool supportsReparenting() const { return true; }
    virtual void onConstruct() {}  // after an assignment; what a constructor sets up stands in the member initialisers
    virtual void onDestruct() {}
    virtual void onDelete() {}      // before this object is deleted
    virtual void onInitialize() {}  // overrides call the base first

protected:
    // Null without a node: the database of a node that is destroyed may be gone with it.
    XDatabase* database() const { return _node.getRef() ? _database : nullptr; }
    bool hasLiveNode() const { return _node.isAlive(); }  // not removed
    bool isNodeOfType(db::NodeDef const& def) const { return _node.isAlive() && _node.getRef()->isOfType(def); }
    XObject& setNode(db::Node* node);
    bool mustDeleteParent() const;  // the sole primitive of a transform goes with it; defined on the kinematics floor
    XObject deleteNode();           // the parent, if it must go too
    void reparentChildObjectsTo(XObject const& target);

    bool askTyped(bool (XObject::*supports)() const) const;
    void dynamicInitialize();
    void dynamicOnDelete();
    bool dynamicSupportsChildObjects() const;
    bool dynamicSupportsDeletion() const;
    bool dynamicSupportsRenaming() const;
    bool dynamicSupportsReparenting() const;

private:
    friend class XAttribute;
    friend class XDatabase;
    struct Deletion;  // what is under way in Delete

    bool isUnconnected() const;                     // has attributes, of which none is connected
    XObject releaseInput(XAttribute& input) const;  // disconnects it; its object, or invalid where that one has to stay

    static inline int _count = 1;

    XDatabase* _database = nullptr;
    sg::NodeHandle _node;
};

inline XObject const& XObject::Undefined = detail::undefined<XObject>.value;

}  // namespace Tavo
