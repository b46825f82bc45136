// The definition of an object type: its names from the root type down, its node classes likewise, and how a typed
// handle is made for a node. A database owns the definitions registered with it; each type also has one class-level
// definition that handles answer with.
#pragma once
#include "qel/utils/vector.h"
#include <string>
#include <vector>

namespace Tavo {

class XDatabase;
class XModule;
class XObject;

class XObjectDef {
public:
    XObjectDef();  // "Object" over the root node class
    virtual ~XObjectDef() = default;
    XObjectDef(XObjectDef const&) = delete;
    XObjectDef& operator=(XObjectDef const&) = delete;

    // A new typed handle on the node with that id, which the caller deletes. An unknown id gives an invalid handle.
    virtual XObject* CreateObject(XDatabase* database, int id) = 0;
    virtual bool CanUnregister() const { return true; }  // false while handles of the type are in use
    virtual bool IsTranslator() const { return false; }
    // Whether the type leaves it at the base's word that any object may be selected: then no handle need be asked.
    virtual bool AlwaysSupportsSelection() const { return false; }

    std::wstring const& ObjectType() const;  // the most derived
    std::wstring const& NodeType() const;
    std::vector<std::wstring> const& ObjectTypes() const { return _objectTypes; }
    std::vector<std::wstring> const& NodeTypes() const { return _nodeTypes; }
    int NodeTypeID() const;                                 // of NodeType(); -1 when the class is unknown
    Qelutils::Vector<int> const& NodeTypeIDs() const;       // of NodeType() and every node class derived from it
    bool SupportsType(std::wstring_view objectType) const;  // anywhere in ObjectTypes()

    XModule* InitialModule() const { return _module; }
    void setInitialModule(XModule* module) { _module = module; }

protected:
    void appendNodeType(std::wstring const& classID) { _nodeTypes.push_back(classID); }
    void appendObjectType(std::wstring const& typeID) { _objectTypes.push_back(typeID); }

private:
    XModule* _module = nullptr;
    std::vector<std::wstring> _nodeTypes;
    mutable Qelutils::Vector<int> _nodeTypeIDs;  // of the types that were known when last asked
    mutable std::size_t _nodeTypesSeen = 0;
    std::vector<std::wstring> _objectTypes;
};

}  // namespace Tavo
