// The scene's fixed objects: the handles on them, and how they are found or made.
#include "tavo/interaction/scene_objects.h"
#include "tavo/objects/scene_graph.h"
#include <utility>

namespace Tavo {

XScene::XScene() : _objects(std::make_unique<XSceneObjects>()) { setFlag(SceneFlag); }

// A scene may be deleted without Unregister; the main loop must not tick it any more.
XScene::~XScene() {
    if (Mirrel::gMirrel.mainLoop) Mirrel::gMirrel.mainLoop->removeTimerClient(this);
}

XGrid XScene::Grid() const { return objects().grid; }
XTransform XScene::RootObject() const { return objects().root; }
XSelection XScene::Selection() const { return objects().selection; }
XSelection XScene::DynamicSelection() const { return objects().dynamicSelection; }
XAnimationLayers XScene::AnimationLayers() const { return objects().animationLayers; }
XDisplayGroup XScene::DisplayGroups() const { return objects().displayGroups; }
XCollisionGroup XScene::CollisionGroups() const { return objects().collisionGroups; }
XSelectionGroup XScene::SelectionGroups() const { return objects().selectionGroups; }
XCamera XScene::PerspectiveCamera() const { return objects().perspectiveCamera; }
XCamera XScene::TopCamera() const { return objects().topCamera; }
XCamera XScene::FrontCamera() const { return objects().frontCamera; }
XCamera XScene::SideCamera() const { return objects().sideCamera; }
XSelectTool XScene::SelectTool() const { return objects().selectTool; }
XMoveTool XScene::MoveTool() const { return objects().moveTool; }
XRotateTool XScene::RotateTool() const { return objects().rotateTool; }
XScaleTool XScene::ScaleTool() const { return objects().scaleTool; }
XTimingTool XScene::TimingTool() const { return objects().timingTool; }
XViewportSettings XScene::ViewportSettings() const { return objects().viewportSettings; }

bool XScene::IsRootObject(XObject const& object) const {
    return object.ObjectID() != InvalidID && object.ObjectID() == objects().root.ObjectID();
}

namespace {

// A fixed object stands at the top under its name, or anywhere below: cameras stand under the root object, the grid
// under a transform of its own. The one nearest to the top counts.
template<class Object> Object findFixed(XSceneGraph const& graph, XWord const& name) {
    Object const top(graph.Node(name));
    if (top.IsValid()) return top;
    std::vector<sg::Node*> nodes;
    graph.Nodes(name, nodes);
    for (sg::Node* node : nodes)
        if (Object const found(node); found.IsValid()) return found;
    return Object::Undefined;
}

struct FixedCamera {
    XCamera XSceneObjects::*handle;
    XWord name;
    wchar_t const* type;
    float x, y, z;  // metres
};
constexpr FixedCamera cameras[] = {
    {&XSceneObjects::perspectiveCamera, XCamera::PerspectiveCameraName, L"Perspective", XCamera::DefaultPerspectiveTX,
     XCamera::DefaultPerspectiveTY, XCamera::DefaultPerspectiveTZ},
    {&XSceneObjects::topCamera, XCamera::TopCameraName, L"Top", XCamera::DefaultTopTX, XCamera::DefaultTopTY,
     XCamera::DefaultTopTZ},
    {&XSceneObjects::frontCamera, XCamera::FrontCameraName, L"Front", XCamera::DefaultFrontTX, XCamera::DefaultFrontTY,
     XCamera::DefaultFrontTZ},
    {&XSceneObjects::sideCamera, XCamera::SideCameraName, L"Side", XCamera::DefaultSideTX, XCamera::DefaultSideTY,
     XCamera::DefaultSideTZ},
};

// Takes the fixed object of that name, or makes it; whether it was made.
template<class Object> bool bind(XScene& scene, Object& handle, XWord const& name) {
    handle = findFixed<Object>(*scene.SceneGraph(), name);
    if (handle.IsValid()) return false;
    handle = Object(scene.CreateObject(Object::TypeID));
    handle.SetName(name, true);
    return true;
}

template<class Group> void bindRootGroup(XScene& scene, Group& handle, XWord const& name, XWord const& label) {
    bind(scene, handle, name);
    handle.SetIsFolder(true).SetLabel(label);
}

void bindCamera(XScene& scene, XCamera& handle, FixedCamera const& camera) {
    if (!bind(scene, handle, camera.name)) return;
    handle.Attribute(L"CameraType").SetEnumeration(camera.type);
    handle.SetTranslation(camera.x, camera.y, camera.z);
}

void bindTools(XScene& scene, XSceneObjects& objects) {
    bind(scene, objects.selectTool, ToolNames[SelectTool]);
    bind(scene, objects.moveTool, ToolNames[MoveTool]);
    bind(scene, objects.rotateTool, ToolNames[RotateTool]);
    bind(scene, objects.scaleTool, ToolNames[ScaleTool]);
    bind(scene, objects.timingTool, ToolNames[TimingTool]);
}

}  // namespace

// A document is set up in full also while users may not edit: the read-only mode is set aside for that time.
void XScene::bindSceneObjects() {
    XSceneMode const mode = std::exchange(_mode, InteractiveMode);
    XSceneObjects& o = objects();
    bind(*this, _sceneSettings, XSceneSettings::DefaultName);
    bind(*this, o.selection, XSelection::TypeID);
    bind(*this, o.dynamicSelection, DynamicSelectionName);
    bind(*this, o.animationLayers, XAnimationLayers::TypeID);
    bindRootGroup(*this, o.displayGroups, DisplayGroupsName, DisplayGroupsLabel);
    bindRootGroup(*this, o.selectionGroups, SelectionGroupsName, SelectionGroupsLabel);
    bindRootGroup(*this, o.collisionGroups, CollisionGroupsName, CollisionGroupsLabel);
    bind(*this, o.root, OriginName);
    bind(*this, o.grid, XGrid::DefaultName);
    for (FixedCamera const& camera : cameras) bindCamera(*this, o.*camera.handle, camera);
    bindTools(*this, o);
    bind(*this, o.viewportSettings, XViewportSettings::TypeID);
    createObjectControllers();
    _mode = mode;
}

// No type has a controller of its own.
void XScene::createObjectControllers() {}
void XScene::deleteObjectControllers() {}

}  // namespace Tavo
