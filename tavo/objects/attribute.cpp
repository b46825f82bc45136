// What an attribute is: identity, names, kind, and what it encloses.
#include "tavo/objects/attribute.h"
#include "tavo/app/application.h"
#include "tavo/objects/database.h"
#include "tavo/objects/graph_access.h"
#include "tavo/objects/scene_graph.h"
#include <algorithm>
#include <typeinfo>

namespace Tavo {
namespace {

// By db::AttributeType. The two misspelt words are the system's vocabulary and stay.
constexpr XWord typeWords[] = {
    L"",
    L"Integer",
    L"Boolean",
    L"Enumeration",
    L"Float",
    L"Double",
    L"String",
    L"Vector3",
    L"Matrix",
    L"Pointer",
    L"IntegerArray",
    L"BooleanArray",
    L"EnumerationArray",
    L"FloatArrat",
    L"DoulbrArray",
    L"StringArray",
    L"Vector3Array",
    L"Matrix34Array",
    L"PointerArray",
    L"NodeContainer",
    L"AttributeArray",
    L"Compound",
    L"Node",
    L"EmbeddedNode",
    L"Quaternion",
    L"QuaternionArray",
};
// By sg::AttributeUnit.
constexpr XWord unitWords[] = {
    L"dimensionless",  L"external",  L"linear",          L"velocity",
    L"acceleration",   L"angular",   L"angularVelocity", L"angularAcceleration",
    L"time",           L"mass",      L"density",         L"force",
    L"torque",         L"stiffness", L"damping",         L"angularStiffness",
    L"angularDamping", L"framerate", L"filename",
};

template<std::size_t count> std::wstring wordAt(XWord const (&words)[count], int index) {
    return index >= 0 && std::size_t(index) < count ? words[index].str() : std::wstring();
}

db::Attribute* found(db::Attribute* a, wchar_t const* message, auto const& wanted, XAttribute const& in) {
    if (!a) XApplication::Instance().LogError(message, wanted, in.Path());
    return a;
}

}  // namespace

// Documents have graphs of exactly one class, so the costly test is for strangers only.
XDatabase* databaseOf(db::Attribute const& attribute) {
    db::Database* const database = attribute.getDatabase();
    if (!database) return nullptr;
    db::Database const& graph = *database;
    auto* const owned = typeid(graph) == typeid(XSceneGraph) ? static_cast<XSceneGraph*>(database)
                                                             : dynamic_cast<XSceneGraph*>(database);
    return owned ? &owned->Database() : nullptr;
}

XAttribute::XAttribute(db::Attribute* attribute) {
    if (!attribute || attribute->isDatabase()) return;
    _attribute.setAnchor(attribute);
    _database = databaseOf(*attribute);
}

XAttribute::XAttribute(XObject const& object, std::wstring const& name) {
    if (object.hasLiveNode()) *this = XAttribute(object.getNode()->findAttribute(name));
}
XAttribute::XAttribute(XObject const* object, std::wstring const& name) {
    if (object) *this = XAttribute(*object, name);
}
XAttribute::XAttribute(XObject const& object, int index) {
    if (!object.hasLiveNode() || index < 0) return;
    db::Attribute* const attribute = object.getNode()->getAttribute(std::size_t(index));
    if (!attribute) return;
    _attribute.setAnchor(attribute);
    _database = object.database();
}
XAttribute::XAttribute(XDatabase& database, int attributeID) : XAttribute(database.getAttribute(attributeID)) {}
XAttribute::XAttribute(XDatabase& database, int nodeID, std::wstring const& name) {
    if (XSceneGraph const* graph = database.SceneGraph()) *this = XAttribute(graph->Attribute(nodeID, name));
}
XAttribute::XAttribute(XDatabase& database, int nodeID, int index) {
    if (XSceneGraph const* graph = database.SceneGraph()) *this = XAttribute(graph->Attribute(nodeID, index));
}
XAttribute::XAttribute(XDatabase& database, std::wstring const& path) {
    if (XSceneGraph const* graph = database.SceneGraph()) *this = XAttribute(graph->Attribute(path));
}
XAttribute::XAttribute(XDatabase& database, std::wstring const& nodePath, std::wstring const& name) {
    if (XSceneGraph const* graph = database.SceneGraph()) *this = XAttribute(graph->Attribute(nodePath, name));
}

// ---- identity ----

XDatabase& XAttribute::Database() const { return database() ? *database() : XDatabase::Undefined; }
int XAttribute::AttributeID() const { return IsValid() ? getAttribute()->getID() : InvalidID; }
int XAttribute::ObjectID() const { return IsValid() ? getAttribute()->node().getID() : InvalidID; }
XObject XAttribute::Object() const { return IsValid() ? XObject(&getAttribute()->node()) : XObject(); }
int XAttribute::Index() const { return IsValid() ? getAttribute()->getIndex() : -1; }
XAttribute XAttribute::ParentAttribute() const {
    return IsValid() ? XAttribute(getAttribute()->getParentAttribute()) : XAttribute();
}

// ---- names ----

std::wstring XAttribute::Name() const { return IsValid() ? getAttribute()->getName() : std::wstring(); }
std::wstring XAttribute::LocalPathName() const {
    return IsValid() ? getAttribute()->getLocalPathName() : std::wstring();
}

std::wstring XAttribute::Path() const {
    std::vector<std::wstring> paths;
    if (sg::Scene const* scene = graph()) scene->getPathNames(*getAttribute(), paths);
    return paths.empty() ? std::wstring() : paths.front();
}

std::wstring XAttribute::ShortPath() const {
    return IsValid() ? Object().Name() + XDatabase::AttributePathSeparator + LocalPathName() : std::wstring();
}
std::wstring XAttribute::EquivalentObjectName() const {
    return IsValid() ? Object().Name() + XDatabase::ObjectNameInternalSeparator + LocalPathName() : std::wstring();
}

// ---- kind ----

int XAttribute::Type() const { return IsValid() ? int(getAttribute()->getAttributeType()) : -1; }
std::wstring XAttribute::TypeAsString() const { return wordAt(typeWords, Type()); }
int XAttribute::Units() const { return IsValid() && !IsNode() ? getAttribute()->getDef().getUnits() : -1; }
std::wstring XAttribute::UnitsAsString() const { return wordAt(unitWords, Units()); }
bool XAttribute::IsCompositeAttribute() const { return IsValid() && getAttribute()->isComposite(); }
bool XAttribute::IsArrayAttribute() const { return IsValid() && (getAttribute()->isArray() || IsAttributeArray()); }

bool XAttribute::IsEditable() const {
    return IsValid() && (IsNode() || !getAttribute()->getDef().hasFlag(db::FlagReadOnly)) && Object().IsEditable();
}
bool XAttribute::IsVisible() const {
    return IsValid() &&
           (IsNode() || !getAttribute()->getDef().hasFlag(db::FlagHidden | db::FlagInternal | db::FlagReserved));
}

// ---- composites and attribute arrays ----

XAttribute XAttribute::Attribute(int index) const {
    db::Attribute* const a = getAttribute();
    std::size_t const i = index < 0 ? std::size_t(-1) : std::size_t(index);
    constexpr wchar_t const* missing =
        L"Unable to find an attribute with the index of \"%d\" in the composite attribute \"%s\".";
    if (!a)
        XApplication::Instance().LogError(L"This is not a valid attribute");
    else if (db::CompositeAttribute* composite = a->asComposite())
        return found(composite->getAttribute(i), missing, index, *this);
    else if (db::AttributeArray* array = a->asAttributeArray())
        return found(array->getElement(i), missing, index, *this);
    else if (db::NodeContainer* container = a->asNodeContainer())
        return found(container->getNode(i), missing, index, *this);
    else
        XApplication::Instance().LogError(L"%s is not a composite attribute", Path());
    return {};
}

XAttribute XAttribute::Attribute(std::wstring const& name) const {
    db::Attribute* const a = getAttribute();
    if (!a)
        XApplication::Instance().LogError(L"This is not a valid attribute");
    else if (db::CompositeAttribute* composite = a->asComposite())
        return found(composite->findAttribute(name),
                     L"Unable to find an attribute named \"%s\" in the composite attribute \"%s\".", name, *this);
    else
        XApplication::Instance().LogError(L"%s is not a composite attribute", Path());
    return {};
}

int XAttribute::AttributeCount() const {
    db::Attribute* const a = getAttribute();
    if (!a) return 0;
    if (db::CompositeAttribute const* composite = a->asComposite()) return int(composite->getAttributeCount());
    if (db::NodeContainer const* container = a->asNodeContainer()) return int(container->size());
    db::AttributeArray const* array = a->asAttributeArray();
    return array ? int(array->size()) : 0;
}

void XAttribute::Attributes(Qelutils::Vector<XAttribute>& out) const {
    out.clear();
    for (int i = 0; i < AttributeCount(); ++i) out.push_back(Attribute(i));
}

// ---- images ----

void XTextureAttribute::SetWidthHeightDepth(int width, int height, int depth) {
    if (!isImage()) return;
    Attribute(L"Width").SetInteger(width);
    Attribute(L"Height").SetInteger(height);
    Attribute(L"Depth").SetInteger(depth);
}

// One write of the whole array, which grows to hold them.
void XTextureAttribute::SetPixels(unsigned char const* data, int count) {
    if (!isImage() || !data || count <= 0) return;
    XAttribute pixels = Attribute(L"Pixels");
    Qelutils::Vector<int> values;
    pixels.Integers(values);
    if (values.size() < std::size_t(count)) values.resize(std::size_t(count));
    std::copy_n(data, count, values.begin());
    pixels.SetInteger(values);
}

bool XTextureAttribute::isImage() const {
    db::CompositeAttribute const* image =
        Type() == int(db::AttributeType::Compound) ? getAttribute()->asComposite() : nullptr;
    if (!image) return false;
    db::Attribute const* pixels = image->findAttribute(L"Pixels");
    return pixels && pixels->isIntArray() && image->findAttribute(L"Width") && image->findAttribute(L"Height") &&
           image->findAttribute(L"Depth");
}

}  // namespace Tavo
