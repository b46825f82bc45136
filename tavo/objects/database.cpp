// The document: its life, change blocks, creation of objects, and what a derived document overrides.
#include "tavo/objects/database.h"
#include "tavo/app/application.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_def.h"
#include "tavo/objects/scene_graph.h"

namespace Tavo {

XDatabase& XDatabase::Undefined = *new XDatabase;  // serves until the very end of the program

XDatabase::XDatabase() = default;
XDatabase::~XDatabase() {
    if (_graph) XDatabase::Unregister();
}

void XDatabase::Register() {
    if (_graph) return;
    _graph = std::make_unique<XSceneGraph>(*this);
    _lookup = std::make_unique<XSceneLookup>(*this);
    _observer = std::make_unique<XSceneGraphObserver>(*this, *_graph);
    _observer->Register();
}

void XDatabase::Unregister() {
    if (!_graph) return;
    _observer->UnRegister();
    deleteDefinitions();
    _observer.reset();
    _lookup.reset();
    _graph.reset();
}

int XDatabase::DatabaseID() const { return _graph ? _graph->getNodeID() : InvalidID; }

// ---- change blocks ----

void XDatabase::BeginChangeBlock() { BeginChangeBlock(false); }
void XDatabase::BeginChangeBlock(bool transient) {
    if (IsValid()) _graph->BatchCommitBegin(transient);
}
void XDatabase::EndChangeBlock() { EndChangeBlock({}); }
void XDatabase::EndChangeBlock(std::wstring const& label) {
    if (IsValid()) _graph->BatchCommitEnd(label);
}
void XDatabase::CancelChangeBlock() {
    if (IsValid()) _graph->BatchCommitCancel();
}
void XDatabase::CommitTransient() {
    if (IsValid()) _graph->BatchCommitTransient();
}

void XDatabase::beginUnrecorded() {
    if (!IsValid()) return;
    _graph->setMaxUndoItems(0);
    BeginChangeBlock();
}

void XDatabase::endUnrecorded(int maximumUndoSteps) {
    if (!IsValid()) return;
    EndChangeBlock();
    _graph->clearUndoHistory();
    _graph->setCheckpoint();
    _graph->setMaxUndoItems(maximumUndoSteps);
}

// ---- objects ----

XObject XDatabase::CreateObject(std::wstring const& typeName, XObject const& parent) {
    XObjectDef const* def = ObjectDefinition(typeName);
    return def ? CreateNode(def->NodeType(), parent) : XObject();
}
XObject XDatabase::CreateObject(std::wstring const& typeName) { return CreateObject(typeName, XObject()); }

XObject* XDatabase::CreateObject(XObject const& object) const {
    XObjectDef* const def = object.definition();
    return def ? def->CreateObject(object.database(), object.ObjectID()) : nullptr;
}

// A new object is named after its type and made unique.
XObject XDatabase::CreateNode(std::wstring const& nodeType, XObject const& parent) {
    XObject object(_graph ? _graph->CreateNode(nodeType, {}) : nullptr);
    if (!object.IsValid()) return XObject::Undefined;
    {
        XObjectEvents::Pause const pause(*this);
        if (parent.IsValid()) object.SetParent(parent, false, false);
        object.SetName(nodeType).Initialize();
    }
    XObjectEvents::Note(XObjectEvents::Created, object);
    return object;
}
XObject XDatabase::CreateNode(std::wstring const& nodeType) { return CreateNode(nodeType, XObject()); }

bool XDatabase::deleteNode(XObject const& object) {
    sg::Node* const node = object.getNode();
    return node && !node->isRemovedNode() && node->remove();
}
void XDatabase::clearNodes() {
    if (_graph) _graph->Clear();
}
void XDatabase::repairSceneFileErrors() {
    if (_graph) _graph->removeInvalidConnections();
}

// ---- what a document may leave as it is ----

std::wstring XDatabase::Units(int) { return {}; }
void XDatabase::ConvertUnits(int, XUnitConversionType, float&) {}
void XDatabase::ConvertUnits(int, XUnitConversionType, double&) {}
void XDatabase::ConvertUnits(sg::AttributeUnit, XUnitConversionType, float&) {}
void XDatabase::ConvertUnits(sg::AttributeUnit, XUnitConversionType, XVector3&) {}
void XDatabase::ConvertUnits(XUnitConversionType, Qelutils::Vector<float>&) {}
void XDatabase::ConvertUnits(XUnitConversionType, XMatrix&) {}
void XDatabase::ReparentChildObjects(XObject&) {}
void XDatabase::onSceneLoaded(XDatabaseChange const&) {}
void XDatabase::onSceneChanged(XDatabaseChange const&, bool) {}
void XDatabase::onSceneChangedPreCommit(XDatabaseChange const&, bool) {}
void XDatabase::onSceneChangedPostCommit(XDatabaseChange const&, bool) {}
bool XDatabase::querySupportsEditMode(XObject const&, int) const { return true; }
bool XDatabase::queryIsCopyable(XObject const&) const { return true; }
bool XDatabase::queryIsEditable(XObject const&) const { return true; }
bool XDatabase::queryIsSelectable(XObject const&) const { return true; }
bool XDatabase::queryIsSelected(XObject const&) const { return false; }
bool XDatabase::queryIsVisible(XObject const&) const { return true; }
void XDatabase::queryDisplayGroup(XObject const&, XDisplayGroup&) const {}
void XDatabase::querySelectionGroups(XObject const&, Qelutils::Vector<XSelectionGroup>&) const {}

// ---- what a document with a display or a hierarchy must override ----

namespace {

bool pureVirtual(wchar_t const* name) {
    XApplication::Instance().LogError(L"Pure virtual \"%s\" is being invoked.", name);
    return false;
}

}  // namespace

bool XDatabase::onRequestColour(sg::Scene*, int, sg::Node*, float&, float&, float&, float&) {
    return pureVirtual(L"onRequestColour");
}
bool XDatabase::onRequestColour(sg::Scene*, int, sg::Node*, int, float&, float&, float&, float&) {
    return pureVirtual(L"onRequestColour");
}
bool XDatabase::onRequestSelectability(sg::Scene*, int, sg::Node*, bool&) {
    return pureVirtual(L"onRequestSelectability");
}
bool XDatabase::onRequestVisibility(sg::Scene*, int, sg::Node*, bool&) { return pureVirtual(L"onRequestVisibility"); }
bool XDatabase::onRequestEditMode(int&) { return pureVirtual(L"onRequestEditMode"); }
void XDatabase::onControllerEnter(sg::Scene*, int, int, bool, bool, bool) { pureVirtual(L"onControllerEnter"); }
void XDatabase::onControllerExit(sg::Scene*, int, int) { pureVirtual(L"onControllerExit"); }
void XDatabase::onControllerCancel(sg::Scene*, int, int) { pureVirtual(L"onControllerCancel"); }
void XDatabase::onControllerTranslation(sg::Scene*, XVector3 const&) { pureVirtual(L"onControllerTranslation"); }
void XDatabase::onControllerRotation(sg::Scene*, float, XVector3 const&) { pureVirtual(L"onControllerRotation"); }
void XDatabase::onControllerRotation(sg::Scene*, XVector3 const&, int) { pureVirtual(L"onControllerRotation"); }
void XDatabase::onControllerScaleEnter(sg::Scene*) { pureVirtual(L"onControllerScaleEnter"); }
void XDatabase::onControllerScale(sg::Scene*, XVector3 const&) { pureVirtual(L"onControllerScale"); }
void XDatabase::onControllerReportSelection(sg::Scene*, std::vector<int> const&, std::vector<int> const&, int) {
    pureVirtual(L"onControllerReportSelection");
}
void XDatabase::onControllerReportCamera(sg::Scene*, int) { pureVirtual(L"onControllerReportCamera"); }
void XDatabase::reparent(XObject&, XObject const&, bool, bool) { pureVirtual(L"reparent"); }
void XDatabase::unparent(XObject&) { pureVirtual(L"unparent"); }

}  // namespace Tavo
