// What an object is: identity, type, names, and its life.
#include "tavo/objects/object.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/database.h"
#include "tavo/objects/graph_access.h"
#include "tavo/objects/object_pattern.h"
#include "tavo/objects/scene_graph.h"
#include <algorithm>
#include <memory>

namespace Tavo {
namespace {

class RootDef final : public XObjectDef {
public:
    XObject* CreateObject(XDatabase* database, int id) override {
        return new XObject(detail::objectByID(database, id));
    }
};

bool isLower(wchar_t c) { return c >= L'a' && c <= L'z'; }
bool isUpper(wchar_t c) { return c >= L'A' && c <= L'Z'; }

}  // namespace

XObject detail::objectByID(XDatabase* database, int id) {
    return database && id != XObject::InvalidID ? database->Object(id) : XObject();
}

// ---- identity ----

XObject::XObject(sg::Node* node) : XObject(static_cast<db::Node*>(node)) {}
XObject::XObject(db::Node* node) {
    setNode(node);
    ++_count;
}

XObject& XObject::operator=(XObject const& other) {
    _database = other._database;
    _node = other._node;
    onConstruct();
    return *this;
}

XObject& XObject::setNode(db::Node* node) {
    if (node && node->getDatabase() == node) node = nullptr;  // the database is no object
    _node.setAnchor(node ? node->getAnchor() : nullptr);
    _database = node ? databaseOf(*node) : nullptr;
    return *this;
}

XObjectDef& XObject::Definition() {
    static RootDef definition;
    return definition;
}

XObjectDef* XObject::definition() const { return &Definition(); }
bool XObject::isValid() const { return hasLiveNode(); }

int XObject::ObjectID() const {
    sg::Node const* node = getNode();
    return node ? node->getID() : InvalidID;
}

XDatabase& XObject::Database() const { return database() ? *database() : XDatabase::Undefined; }

// ---- type ----

XObjectDef* XObject::ObjectDefinition() const {
    XObjectDef* const registered = database() ? database()->ObjectDefinition(getNode()->getClassID()) : nullptr;
    return registered ? registered : definition();
}

std::wstring XObject::ObjectType() const {
    XObjectDef const* def = ObjectDefinition();
    std::wstring const type = def ? def->ObjectType() : std::wstring();
    if (type.empty() && IsValid())
        XApplication::Instance().LogError(L"The object \"%s\" does not have a type name", Path());
    return type;
}

std::vector<std::wstring>& XObject::ObjectTypes(std::vector<std::wstring>& out) const {
    XObjectDef const* def = ObjectDefinition();
    return out = def ? def->ObjectTypes() : std::vector<std::wstring>();
}

bool XObject::IsType(std::wstring_view type) const {
    XObjectDef const* def = ObjectDefinition();
    return def && def->ObjectType() == type;
}

bool XObject::SupportsType(std::wstring_view type) const {
    XObjectDef const* def = ObjectDefinition();
    return def && def->SupportsType(type);
}

bool XObject::Matches(std::wstring_view type, XComparisonMode mode) const {
    switch (mode) {
    case IsObjectType: return IsType(type);
    case SupportsObjectType: return SupportsType(type);
    }
    return false;
}

int XObject::SgNodeTypeID() const { return hasLiveNode() ? getNode()->getNodeDef().getTypeID() : InvalidID; }
std::wstring XObject::ObjectDisplayType() const { return convertToDisplayName(ObjectType()); }

std::wstring XObject::convertToDisplayName(std::wstring const& text) {
    if (text.size() < 2) return text;
    std::wstring result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isUpper(text[i]) && i + 1 < text.size() && isLower(text[i + 1])) result += L' ';
        result += text[i];
    }
    return Qelutils::trim(result);
}

// ---- names ----

std::wstring XObject::Name() const { return hasLiveNode() ? getNode()->getNodeName() : std::wstring(); }
std::wstring XObject::DisplayName() const { return convertToDisplayName(Name()); }
std::wstring XObject::Path() const { return hasLiveNode() ? getNode()->getPath() : std::wstring(); }

XObject& XObject::SetName(std::wstring const& name) { return SetName(name, false); }

// The database's index of names finds the number, so that n like-named siblings cost no walk.
XObject& XObject::SetName(std::wstring const& name, bool force) {
    if (!hasLiveNode() || !(force || dynamicSupportsRenaming())) return *this;
    XObjectEvents::Comparison const comparison(*this);
    getNode()->setName(name);
    return *this;
}

// ---- life ----

XObject* XObject::CreateObject() const {
    XObjectDef* const registered = database() ? database()->ObjectDefinition(getNode()->getClassID()) : nullptr;
    if (registered) return registered->CreateObject(database(), ObjectID());
    if (database()) return database()->CreateObject(*this);
    XObjectDef* const own = definition();
    return own ? own->CreateObject(nullptr, InvalidID) : nullptr;
}

XObject* XObject::CreateObject(XDatabase* other) const {
    XObjectDef* const def = other && getNode() ? other->ObjectDefinition(getNode()->getClassID()) : nullptr;
    return def ? def->CreateObject(other, ObjectID()) : nullptr;
}

XObject XObject::CreateObject(std::wstring const& typeName) { return Database().CreateObject(typeName); }

XObject& XObject::Initialize() {
    dynamicInitialize();
    return *this;
}

void XObject::dynamicInitialize() {
    if (std::unique_ptr<XObject> const typed{CreateObject()}) typed->onInitialize();
}

void XObject::dynamicOnDelete() {
    if (!IsValid()) return;
    if (std::unique_ptr<XObject> const typed{CreateObject()}) typed->onDelete();
}

bool XObject::askTyped(bool (XObject::*supports)() const) const {
    if (!IsValid() || !Database().queryIsEditable(*this)) return true;
    std::unique_ptr<XObject> const typed{CreateObject()};
    return !typed || (typed.get()->*supports)();
}

bool XObject::dynamicSupportsDeletion() const { return askTyped(&XObject::supportsDeletion); }
bool XObject::dynamicSupportsRenaming() const { return askTyped(&XObject::supportsRenaming); }
bool XObject::dynamicSupportsReparenting() const { return askTyped(&XObject::supportsReparenting); }
bool XObject::dynamicSupportsChildObjects() const { return IsValid() && getNode() && getNode()->supportsChildren(); }

bool XObject::IsEditable() const { return hasLiveNode() && database() && database()->queryIsEditable(*this); }
bool XObject::IsCopyable() const { return hasLiveNode() && database() && database()->queryIsCopyable(*this); }
bool XObject::SupportsEditMode(int mode) const {
    return hasLiveNode() && database() && database()->querySupportsEditMode(*this, mode);
}

XObject XObject::Copy() { return copy({}); }
XObject XObject::Copy(std::wstring const& name) { return copy(name); }

XObject XObject::copy(std::wstring const& name) {
    static std::wstring const label = L"Copying a node";
    if (!database() || !IsValid()) return {};
    if (!database()->queryIsCopyable(*this))  // said, and copied all the same: a decision of this system
        XApplication::Instance().LogError(L"You are not permitted to copy \"%s\"", Path());
    XChangeBlock const block(*database(), label);
    XObject copied(getNode()->makeCopy(name.empty() ? Name() + L"_copy" : name));
    XObject const parent = Parent();
    if (copied.IsValid() && copied.SupportsReparenting() && parent.IsValid()) {
        XObjectEvents::Pause const pause(*database());
        copied.SetParent(parent);
    }
    XObjectEvents::NoteCopies(copied);
    return copied;
}

}  // namespace Tavo
